#include "OS/Mac/Effects/ShaderParamValue.h"

Tq::Ptr<iShaderParamValue> iShaderParamValue::makeFloat(const LightweightString<char>& name,
                                                        float value)
{
    return new ShaderParamValue(eFloat, name, value, 0, {}, {});
}

Tq::Ptr<iShaderParamValue> iShaderParamValue::makeInt(const LightweightString<char>& name,
                                                      int value)
{
    return new ShaderParamValue(eInt, name, 0.0f, value, {}, {});
}

Tq::Ptr<iShaderParamValue> iShaderParamValue::makeColour(const LightweightString<char>& name,
                                                         const NormalisedRGB& value)
{
    return new ShaderParamValue(eColour, name, 0.0f, 0, value, {});
}

Tq::Ptr<iShaderParamValue> iShaderParamValue::makeSource(const LightweightString<char>& name,
                                                         const Tq::Ptr<iGPUResource>& resource)
{
    return new ShaderParamValue(eSource, name, 0.0f, 0, {}, resource);
}
