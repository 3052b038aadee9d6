#include "OS/Mac/Effects/OpenGLShaderParam.h"

#include "OS/Mac/Effects/EffectText.h"

#include <algorithm>
#include <utility>

using namespace EffectCompiler;

namespace {

NormalisedRGB colourOf(const std::vector<float>& numbers)
{
    const auto at = [&](std::size_t i, float missing) {
        return i < numbers.size() ? numbers[i] : missing;
    };
    return {at(0, 0.0f), at(1, 0.0f), at(2, 0.0f), at(3, 1.0f)};
}

} // namespace

OpenGLShaderParam::OpenGLShaderParam(std::shared_ptr<const Effect> effect,
                                     const Parameter& parameter, std::vector<float> defaults)
    : effect_(std::move(effect)), parameter_(parameter), defaults_(std::move(defaults)),
      values_(defaults_)
{
}

LightweightString<char> OpenGLShaderParam::getName() const
{
    return EffectText::text(parameter_.name);
}

OpenGLShaderParam::eType OpenGLShaderParam::typeOf(const ValueType& type)
{
    if (!type.arraySizes.empty())
        return eUnknown;
    const int components = type.rows * type.columns;
    const bool isMatrix = type.rows > 1 && type.columns > 1;
    switch (type.base) {
    case BaseType::eFloat:
        return isMatrix || components > 4 ? eUnknown : components > 2 ? eColour : eFloat;
    case BaseType::eInt:
        return isMatrix ? eUnknown : eInt;
    case BaseType::eBool:
        return isMatrix ? eUnknown : eBool;
    case BaseType::eString:
        return eString;
    default:
        return eUnknown;
    }
}

OpenGLShaderParam::eType OpenGLShaderParam::getType() const
{
    return typeOf(parameter_.type);
}

LightweightString<char> OpenGLShaderParam::getSemantic() const
{
    return EffectText::text(parameter_.semantic.value_or(""));
}

unsigned int OpenGLShaderParam::getNumComponents() const
{
    return static_cast<unsigned int>(defaults_.size());
}

std::vector<float> OpenGLShaderParam::values() const
{
    const std::lock_guard lock(guard_);
    return values_;
}

float OpenGLShaderParam::getFloatValue() const
{
    const std::lock_guard lock(guard_);
    return values_.empty() ? 0.0f : values_.front();
}

NormalisedRGB OpenGLShaderParam::getColourValue() const
{
    return colourOf(values());
}

void OpenGLShaderParam::setFloatValue(float value)
{
    const std::lock_guard lock(guard_);
    std::fill(values_.begin(), values_.end(), value);
}

void OpenGLShaderParam::setColourValue(const NormalisedRGB& value)
{
    const float components[] = {value.red, value.green, value.blue, value.alpha};
    setValues(components, 4);
}

void OpenGLShaderParam::setValues(const float* values, unsigned int count)
{
    const std::lock_guard lock(guard_);
    std::copy_n(values, std::min<std::size_t>(count, values_.size()), values_.begin());
}

void OpenGLShaderParam::copyValues(const OpenGLShaderParam& other)
{
    const std::vector<float> theirs = other.values();
    if (theirs.size() == defaults_.size() && theirs != other.defaults_)
        setValues(theirs.data(), static_cast<unsigned int>(theirs.size()));
}

float OpenGLShaderParam::getDefaultFloatValue() const
{
    return defaults_.empty() ? 0.0f : defaults_.front();
}

NormalisedRGB OpenGLShaderParam::getDefaultColourValue() const
{
    return colourOf(defaults_);
}

const Annotation* OpenGLShaderParam::annotation(const LightweightString<char>& name) const
{
    for (const Annotation& annotation : parameter_.annotations)
        if (annotation.name == name.view())
            return &annotation;
    return nullptr;
}

bool OpenGLShaderParam::hasAnnotation(const LightweightString<char>& name, eType type) const
{
    const Annotation* found = annotation(name);
    return found && typeOf(found->value.type) == type;
}

LightweightString<char>
OpenGLShaderParam::getAnnotationStringValue(const LightweightString<char>& name) const
{
    const Annotation* found = annotation(name);
    if (!found || found->value.type.base != BaseType::eString)
        return {};
    return EffectText::text(found->value.text);
}

float OpenGLShaderParam::getAnnotationFloatValue(const LightweightString<char>& name) const
{
    const Annotation* found = annotation(name);
    if (!found || found->value.numbers.empty())
        return 0.0f;
    return static_cast<float>(found->value.numbers.front());
}

bool OpenGLShaderParam::getAnnotationBoolValue(const LightweightString<char>& name) const
{
    return getAnnotationFloatValue(name) != 0.0f;
}
