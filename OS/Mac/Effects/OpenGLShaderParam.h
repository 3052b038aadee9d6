#pragma once

#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include <OS/Effects/iShaderParam.h>

#include <memory>
#include <mutex>
#include <vector>

/// A plain parameter of a loaded effect: neither a texture nor a sampler.
class OpenGLShaderParam final : public iShaderParam
{
public:
    /// @param effect keeps the parameter @param defaults what it starts with, padded with 0
    OpenGLShaderParam(std::shared_ptr<const EffectCompiler::Effect> effect,
                      const EffectCompiler::Parameter& parameter, std::vector<float> defaults);

    LightweightString<char> getName() const override;
    eType getType() const override;
    LightweightString<char> getSemantic() const override;
    unsigned int getNumComponents() const override;
    float getFloatValue() const override;
    NormalisedRGB getColourValue() const override;
    void setFloatValue(float value) override;
    void setColourValue(const NormalisedRGB& value) override;
    void setValues(const float* values, unsigned int count) override;
    float getDefaultFloatValue() const override;
    NormalisedRGB getDefaultColourValue() const override;
    bool hasAnnotation(const LightweightString<char>& name, eType type) const override;
    LightweightString<char>
    getAnnotationStringValue(const LightweightString<char>& name) const override;
    float getAnnotationFloatValue(const LightweightString<char>& name) const override;
    bool getAnnotationBoolValue(const LightweightString<char>& name) const override;

    const EffectCompiler::Parameter& parameter() const { return parameter_; }
    std::vector<float> values() const;
    /// Takes over the values of another one, if it has as many.
    void copyValues(const OpenGLShaderParam& other);

    static eType typeOf(const EffectCompiler::ValueType& type);

private:
    const EffectCompiler::Annotation* annotation(const LightweightString<char>& name) const;

    const std::shared_ptr<const EffectCompiler::Effect> effect_;
    const EffectCompiler::Parameter& parameter_;
    const std::vector<float> defaults_;
    mutable std::mutex guard_; // a leaf
    std::vector<float> values_;
};
