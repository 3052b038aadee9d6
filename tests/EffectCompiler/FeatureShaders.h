#pragma once

#include <array>
#include <span>

/// A fragment program "main" that shows one feature of the effect language, and what it draws with
/// the inputs of EffectRig.
struct FeatureShader
{
    const char* name;
    std::array<float, 4> pixel;
    const char* source;
};

/// One for each feature.
std::span<const FeatureShader> featureShaders();
/// Where features meet: order of evaluation, values given out, what GLSL lacks.
std::span<const FeatureShader> trapShaders();
/// What GLSL 1.20 cannot express.
std::span<const FeatureShader> laterShaders();
