#include "OS/Mac/Effects/SamplerStates.h"

#include "OS/Mac/Effects/EffectText.h"

#include <algorithm>

using namespace EffectCompiler;
using EffectText::equalsNoCase;

namespace {

GLenum addressOf(GLenum value)
{
    return value == GL_CLAMP ? GL_CLAMP_TO_EDGE : value;
}

GLenum filterOf(GLenum value)
{
    switch (value) {
    case GL_NEAREST:
    case GL_NEAREST_MIPMAP_NEAREST:
    case GL_NEAREST_MIPMAP_LINEAR:
        return GL_NEAREST;
    default:
        return GL_LINEAR;
    }
}

} // namespace

SamplerStates SamplerStates::of(const std::vector<StateAssignment>& states)
{
    SamplerStates result;
    const auto is = [](const StateAssignment& state, const char* name, const char* alias) {
        return equalsNoCase(state.name, name) || equalsNoCase(state.name, alias);
    };
    for (const StateAssignment& state : states) {
        const std::vector<double>& numbers = state.value.numbers;
        if (numbers.empty())
            continue;
        const auto value = static_cast<GLenum>(std::clamp(numbers[0], 0.0, 65535.0));
        if (is(state, "AddressU", "WrapS"))
            result.addressU = addressOf(value);
        else if (is(state, "AddressV", "WrapT"))
            result.addressV = addressOf(value);
        else if (is(state, "AddressW", "WrapR"))
            result.addressW = addressOf(value);
        else if (is(state, "MinFilter", ""))
            result.minFilter = filterOf(value);
        else if (is(state, "MagFilter", ""))
            result.magFilter = filterOf(value);
        else if (is(state, "BorderColor", ""))
            for (std::size_t i = 0; i < std::min<std::size_t>(numbers.size(), 4); ++i)
                result.border[i] = static_cast<float>(numbers[i]);
    }
    return result;
}
