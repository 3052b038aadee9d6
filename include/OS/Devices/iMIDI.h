#pragma once

#include <OS/Core/iObject.h>

/// MIDI devices, reached as OS()->midi().
class OS_API iMIDI : public iObject
{
};
