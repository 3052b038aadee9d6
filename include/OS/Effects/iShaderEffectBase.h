#pragma once

#include <OS/Core/iObject.h>

/// A loaded shader effect, as a description carries it to the renderer.
class OS_API iShaderEffectBase : public iObject
{
};
