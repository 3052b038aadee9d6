// What effects draw: translated, compiled by the real GL, and read back.
#include "EffectRig.h"
#include "FeatureShaders.h"
#include "GlslJudge.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

EffectRig& rig()
{
    static EffectRig only;
    return only;
}

GlslJudge& judge()
{
    static GlslJudge only;
    return only;
}

bool isNear(const EffectRig::Pixel& left, const std::array<float, 4>& right)
{
    for (std::size_t i = 0; i < 4; ++i) {
        if (!(std::fabs(left[i] - right[i]) < 0.01F)) // not of NaN either
            return false;
    }
    return true;
}

std::string textOf(const std::array<float, 4>& pixel)
{
    std::string text;
    for (const float each : pixel)
        text += std::to_string(each) + " ";
    return text;
}

/// What a pass without programs of its own would draw is no success: so pixels must match exactly
/// what the table says.
void expectPixel(const FeatureShader& shader, int version)
{
    std::string listing;
    const auto effect = loadFragment(shader.source, listing);
    ASSERT_TRUE(effect) << shader.name << "\n" << listing;
    EffectRig::Pixel pixel{};
    const std::string fault = rig().draw(*effect, version, pixel);
    ASSERT_EQ(fault, "") << shader.name << " in GLSL " << version;
    const auto text = effect->translate(0, 0, version, listing);
    EXPECT_TRUE(isNear(pixel, shader.pixel))
        << shader.name << " in GLSL " << version << "\ndrew " << textOf(pixel) << "\nnot  "
        << textOf(shader.pixel) << "\n"
        << text->fragment;
    judge().add(shader.name + std::to_string(version), *text);
}

void expectRefused(const FeatureShader& shader, const std::string& reason)
{
    std::string listing;
    const auto effect = loadFragment(shader.source, listing);
    ASSERT_TRUE(effect) << shader.name << "\n" << listing;
    EXPECT_FALSE(effect->translate(0, 0, 120, listing)) << shader.name;
    EXPECT_NE(listing.find(reason), std::string::npos) << shader.name << "\n" << listing;
}

} // namespace

TEST(ShaderPixels, EveryFeatureDrawsWhatItShouldInGlsl130)
{
    for (const FeatureShader& shader : featureShaders())
        expectPixel(shader, 130);
    EXPECT_EQ(judge().verdict(), "");
}

TEST(ShaderPixels, EveryFeatureDrawsWhatItShouldInGlsl120)
{
    for (const FeatureShader& shader : featureShaders()) {
        if (std::string_view(shader.name) == "Switch")
            expectRefused(shader, "GLSL 1.20 has no 'switch'");
        else
            expectPixel(shader, 120);
    }
    EXPECT_EQ(judge().verdict(), "");
}

TEST(ShaderPixels, WhereFeaturesMeetTheyHoldToTheRules)
{
    for (const int version : {130, 120}) {
        for (const FeatureShader& shader : trapShaders())
            expectPixel(shader, version);
    }
    EXPECT_EQ(judge().verdict(), "");
}

TEST(ShaderPixels, WhatGlsl120LacksIsRefusedWithAReason)
{
    for (const FeatureShader& shader : laterShaders()) {
        expectPixel(shader, 130);
        expectRefused(shader, "GLSL 1.20 ");
    }
    EXPECT_EQ(judge().verdict(), "");
}
