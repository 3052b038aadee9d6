#include "Effects/LiveEffect.h"
#include "support/TemporaryFolder.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Media/iMediaServices.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

namespace Vantor {
namespace {

/// With GL: an effect's file, edited while it is used.
class OnDisplayLiveEffectTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!std::getenv("OPENCL_LAYERS"))
            GTEST_SKIP() << "GL and a compute device are brought by the suite";
        ASSERT_TRUE(OS()->mediaServices()->createGPUSurface({4, 4}, iGPUImage::eARGB8));
        path_ = folder_.path() + "/Tint.fx";
        panel_.files = {{OS()->utils()->fromUTF8(path_.c_str(), -1), L"Tint"},
                        {Text(), L"computed"}};
    }
    /// An effect with one slider of that name.
    void write(const std::string& slider, const std::string& most, bool mistake = false) const
    {
        std::ofstream(path_)
            << "texture Picture : SOURCE;\n"
               "sampler2D PictureSampler = sampler_state { Texture = <Picture>; };\n"
               "float "
            << slider << " < string UIName = \"Amount\"; float UIMin = 0; float UIMax = " << most
            << "; > = 0.5;\n"
               "float4 main(float2 at : TEXCOORD0) : COLOR {\n"
               "    return tex2D(PictureSampler, at) * "
            << (mistake ? "Nothing" : slider)
            << "; }\n"
               "technique T { pass P { FragmentProgram = compile PROFILE main(); } }\n";
    }
    bool comes(const std::function<bool()>& isSo)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        do {
            effect_.follow(panel_);
            if (isSo())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        } while (std::chrono::steady_clock::now() < end);
        return false;
    }

    TemporaryFolder folder_;
    std::string path_;
    EffectPanel panel_;
    LiveEffect effect_;
};

TEST_F(OnDisplayLiveEffectTest, FollowsItsFileThroughMistakes)
{
    write("Amount", "2");
    panel_.chosen = 0;
    effect_.follow(panel_);
    ASSERT_TRUE(effect_.path());
    ASSERT_EQ(panel_.controls.size(), 1u);
    EXPECT_FLOAT_EQ(panel_.controls[0].most, 2.0f);
    panel_.controls[0].value = 1.5f;
    effect_.follow(panel_);
    const LiveEffect::Path before = effect_.path();
    ASSERT_EQ(before->technique.values_.size(), 1u);
    EXPECT_FLOAT_EQ(before->technique.values_[0]->getFloat(), 1.5f);

    write("Amount", "2", true);
    EXPECT_TRUE(comes([&] { return !panel_.trouble.empty(); }));
    EXPECT_TRUE(panel_.trouble.startsWith(L"line 5: "))
        << OS()->utils()->toUTF8(panel_.trouble).c_str();
    EXPECT_EQ(effect_.path(), before) << "the last that was right goes on";

    write("Amount", "4");
    EXPECT_TRUE(comes([&] { return panel_.trouble.empty() && panel_.controls[0].most > 3.0f; }));
    EXPECT_FLOAT_EQ(panel_.controls[0].value, 1.5f) << "kept";
    EXPECT_NE(effect_.path(), before);
}

TEST_F(OnDisplayLiveEffectTest, WhatIsOfNoUseIsNotLoadedAgainUntilItIsAnother)
{
    std::ofstream(path_) << "float4 main() : COLOR { return 1; }\n";
    panel_.chosen = 0;
    effect_.follow(panel_);
    const Text trouble = panel_.trouble;
    EXPECT_FALSE(trouble.empty());
    testing::internal::CaptureStderr();
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(2500);
    while (std::chrono::steady_clock::now() < end) {
        effect_.follow(panel_);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(panel_.trouble == trouble);
    write("Amount", "2");
    EXPECT_TRUE(comes([&] { return bool(effect_.path()); }));
}

TEST_F(OnDisplayLiveEffectTest, IsTakenOnceItCanBeUsed)
{
    write("Amount", "2", true);
    panel_.chosen = 0;
    effect_.follow(panel_);
    EXPECT_FALSE(effect_.path());
    EXPECT_FALSE(panel_.trouble.empty());
    write("Other", "2");
    EXPECT_TRUE(comes([&] { return bool(effect_.path()); }));
    EXPECT_TRUE(panel_.trouble.empty());
    panel_.choose(1);
    effect_.follow(panel_);
    ASSERT_TRUE(effect_.path());
    EXPECT_TRUE(effect_.path()->grade) << "computed";
    EXPECT_EQ(panel_.controls.size(), 4u);
    panel_.choose(1);
    effect_.follow(panel_);
    EXPECT_FALSE(effect_.path());
    EXPECT_TRUE(panel_.controls.empty());
}

} // namespace
} // namespace Vantor
