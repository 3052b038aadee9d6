#pragma once

#include <OS/Devices/iMIDI.h>

/// iMIDI.
class MIDI final : public iMIDI
{
};
