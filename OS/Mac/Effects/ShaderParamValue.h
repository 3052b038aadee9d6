#pragma once

#include <OS/Effects/iShaderParamValue.h>

/// iShaderParamValue: what its makers make.
class ShaderParamValue final : public iShaderParamValue
{
public:
    ShaderParamValue(eType type, const LightweightString<char>& name, float number, int whole,
                     const NormalisedRGB& colour, const Tq::Ptr<iGPUResource>& source)
        : type_(type), name_(name), number_(number), whole_(whole), colour_(colour), source_(source)
    {
    }

    eType getType() const override { return type_; }
    const LightweightString<char>& getName() const override { return name_; }
    float getFloat() const override { return number_; }
    int getInt() const override { return whole_; }
    NormalisedRGB getColour() const override { return colour_; }
    Tq::Ptr<iGPUResource> getSource() const override { return source_; }

private:
    eType type_;
    LightweightString<char> name_;
    float number_;
    int whole_;
    NormalisedRGB colour_;
    Tq::Ptr<iGPUResource> source_;
};
