#pragma once

#include <OS/Core/iObject.h>

/// A buffer of sound. There are none: iMediaServices::createAudioBuffer is always null.
class OS_API iAudioBuffer : public iObject
{
};
