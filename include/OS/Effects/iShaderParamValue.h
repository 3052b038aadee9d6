#pragma once

#include <OS/Core/iObject.h>

/// A value for one parameter of a shader effect, as a description carries it to the renderer.
class OS_API iShaderParamValue : public iObject
{
};
