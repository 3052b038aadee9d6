#include "OpenGL/ImageRig.h"
#include "support/BackgroundThread.h"
#include "support/OutputCapture.h"
#include "support/TemporaryFolder.h"

#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Effects/OpenGLShaderEffect.h"
#include "OS/Mac/Effects/ShaderPrograms.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kPicture[] = R"(
texture Picture : SOURCE;
sampler2D PictureSampler = sampler_state { Texture = <Picture>; };
)";

constexpr char kTint[] = R"(
float4 Tint < string UIName = "Tint"; > = { 1.0, 0.5, 0.25, 1.0 };
float4 tinted(float2 place : TEXCOORD0) : COLOR { return tex2D(PictureSampler, place) * Tint; }
technique Tinted { pass p0 { FragmentProgram = compile PROFILE tinted(); } }
)";

class ShaderEffectLoading : public GPUImageTest
{
protected:
    LightweightString<wchar_t> write(const std::string& name, const std::string& text)
    {
        return OSInternal::pathFromSystem(folder.write(name, text).c_str());
    }
    OpenGLShaderEffect::Loaded load(const LightweightString<wchar_t>& path,
                                    const char* profile = "glslf")
    {
        OutputCapture errors(OutputCapture::eStderr);
        EffectCompiler::Context context;
        OpenGLShaderEffect::Loaded loaded;
        printed = outputOf([&] { loaded = OpenGLShaderEffect::load(&context, profile, path); });
        printedErrors = errors.text();
        return loaded;
    }
    Tq::Ptr<OpenGLShaderEffect> loadText(const std::string& text)
    {
        return load(write("effect.fx", text)).effect;
    }
    // What an effect makes of white.
    static QRgb drawn(OpenGLShaderEffect& effect)
    {
        const Tq::Ptr<OpenGLImage> white = makeImage({8, 8}), target = makeImage({8, 8});
        clear(*white, {1, 1, 1});
        clear(*target, {});
        effect.render({{"Picture", white}}, target);
        return textureOf(target).pixel(4, 4);
    }

    TemporaryFolder folder;
    std::string printed, printedErrors;
};

std::string pathOf(const TemporaryFolder& folder)
{
    return folder.path("effect.fx");
}

} // namespace

TEST_F(ShaderEffectLoading, SaysWhatItCompiles)
{
    EXPECT_TRUE(loadText(std::string(kPicture) + kTint));
    EXPECT_EQ(printedErrors, "Compiling shader : " + pathOf(folder) + " .. done\n");
    EXPECT_EQ(printed, "");
}

TEST_F(ShaderEffectLoading, FailuresPrintTheListing)
{
    const OpenGLShaderEffect::Loaded loaded = load(write("effect.fx", "float4 x = ;\n"));
    EXPECT_FALSE(loaded.effect);
    EXPECT_EQ(printedErrors, "Compiling shader : " + pathOf(folder) + " .. FAILED\n");
    const std::string listing(loaded.listing.view());
    EXPECT_THAT(listing, StartsWith(pathOf(folder) + "(1) : error : "));
    EXPECT_EQ(printed, "Failed to load shader : " + pathOf(folder) + " (" + listing + ")\n");

    EXPECT_FALSE(load(OSInternal::pathFromSystem((folder.path("none.fx")).c_str())).effect);
    EXPECT_THAT(printed, StartsWith("Failed to load shader : " + folder.path("none.fx")));
    EXPECT_FALSE(load(write("effect.fx", std::string(kPicture) + kTint), "nosuchprofile").effect);
    EXPECT_EQ(printed,
              "Failed to load shader : " + pathOf(folder) + " (CG_INVALID_PROFILE_ERROR)\n");
}

TEST_F(ShaderEffectLoading, AnEffectWithoutAValidTechniqueIsNone)
{
    EXPECT_FALSE(loadText(std::string(kPicture) +
                          "technique t { pass p { FragmentProgram = asm { nothing }; } }\n"));
    EXPECT_EQ(printed,
              "OpenGLShaderEffect::load( " + pathOf(folder) + " ) : no valid techniques\n");
    EXPECT_EQ(printedErrors, "Compiling shader : " + pathOf(folder) + " .. done\n");
    EXPECT_FALSE(loadText(kPicture));
    EXPECT_THAT(printed, HasSubstr("no valid techniques"));
    EXPECT_FALSE(OpenGLShaderEffect::load(nullptr, "glslf", L"/x.fx").effect);
}

TEST_F(ShaderEffectLoading, TheFirstValidTechniqueIsCurrent)
{
    const Tq::Ptr<OpenGLShaderEffect> effect =
        loadText(std::string(kPicture) +
                 "technique Bad { pass p { FragmentProgram = asm { nothing }; } }\n" + kTint +
                 "float4 red() : COLOR { return float4(1, 0, 0, 1); }\n"
                 "technique Red { pass p { FragmentProgram = compile PROFILE red(); } }\n");
    ASSERT_TRUE(effect);
    EXPECT_EQ(effect->getNumTechniques(), 2u);
    EXPECT_EQ(effect->getTechniqueName(), "Tinted");
    EXPECT_EQ(effect->getTechniqueName(1), "Red");
    EXPECT_EQ(effect->getTechniqueName(2), "");
    EXPECT_FALSE(effect->setTechnique("Bad"));
    EXPECT_FALSE(effect->setTechnique(2u));
    EXPECT_NEAR(qGreen(drawn(*effect)), 128, 1);
    EXPECT_TRUE(effect->setTechnique("Red"));
    EXPECT_EQ(drawn(*effect), 0xFFFF0000);
    EXPECT_TRUE(effect->setTechnique(0u));
    EXPECT_EQ(effect->getTechniqueName(), "Tinted");
}

TEST_F(ShaderEffectLoading, ParametersAreSortedByWhatTheyAre)
{
    const Tq::Ptr<OpenGLShaderEffect> effect = loadText(R"(
float Amount < string UIName = "How much"; float UIMin = -1.0; float UIMax = 2.5; bool Hidden = true; > = 0.75;
texture Second : SOURCE;
texture First : SOURCE;
texture Pass1 : RENDERCOLORTARGET;
texture Plain;
sampler2D FirstSampler = sampler_state { Texture = <First>; AddressU = Clamp; addressv = Wrap; };
sampler2D AgainSampler = sampler_state { Texture = <First>; AddressU = ClampToBorder; };
int Count = 3;
sampler2D PassSampler = sampler_state { texture = <Pass1>; };
sampler2D SecondSampler = sampler_state { texture = <Second>; };
sampler2D PlainSampler = sampler_state { texture = <Plain>; };
bool Flag = true;
float4 Colour = { 0.1, 0.2, 0.3, 0.4 };
float3x3 Matrix;
string Note = "text";
float4 f(float2 place : TEXCOORD0) : COLOR
{
    return tex2D(FirstSampler, place) * Amount + Colour * Count + tex2D(PassSampler, place);
}
technique t
{
    pass a < string Script = "RENDERCOLORTARGET0 = Pass1;"; > { FragmentProgram = compile PROFILE f(); }
    pass b < string Script = "rendercolortarget0 = Pass1;"; > { FragmentProgram = compile PROFILE f(); }
    pass c < string Script = "RENDERCOLORTARGET0=Pass1;"; > { FragmentProgram = compile PROFILE f(); }
    pass d < string Script = "RENDERCOLORTARGET0 = Other;"; > { FragmentProgram = compile PROFILE f(); }
    pass e < string script = "RENDERCOLORTARGET0 = Pass1;"; > { FragmentProgram = compile PROFILE f(); }
    pass g < string Script = "RENDERCOLORTARGET0 = "; > { FragmentProgram = compile PROFILE f(); }
    pass h { FragmentProgram = compile PROFILE f(); }
}
)");
    ASSERT_TRUE(effect) << printed;
    EXPECT_EQ(printed, "assertion failed semantic != NULL at OS/Mac/OpenGLShaderEffect line 214\n");
    const EffectContents& contents = *effect->contents();
    std::vector<int> targets;
    for (const EffectPass& pass : contents.techniques()[0].passes)
        targets.push_back(pass.target);
    EXPECT_THAT(targets, ElementsAre(0, 0, -1, -1, -1, -1, -1));
    EXPECT_THAT(contents.inputs(), ElementsAre("First", "Second", "Plain"));
    EXPECT_EQ(effect->getInputName(1), "Second");
    EXPECT_EQ(effect->getInputName(3), "");
    ASSERT_EQ(contents.samplers().size(), 5u);
    EXPECT_EQ(contents.samplers()[0].states.addressU, 0x812Fu);
    EXPECT_EQ(contents.samplers()[0].states.addressV, 0x2901u);
    EXPECT_EQ(contents.samplers()[1].states.addressU, 0x812Du);
    EXPECT_EQ(contents.samplers()[2].texture, "Pass1");

    using Param = iShaderParam;
    const std::pair<const char*, Param::eType> expected[] = {
        {"Amount", Param::eFloat},  {"Count", Param::eInt},      {"Flag", Param::eBool},
        {"Colour", Param::eColour}, {"Matrix", Param::eUnknown}, {"Note", Param::eString}};
    ASSERT_EQ(effect->getNumParams(), std::size(expected));
    for (unsigned int i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(effect->getParam(i)->getName(), expected[i].first);
        EXPECT_EQ(effect->getParam(i)->getType(), expected[i].second) << expected[i].first;
    }
    const Tq::Ptr<iShaderParam> amount = effect->getParam("Amount");
    EXPECT_FLOAT_EQ(amount->getFloatValue(), 0.75f);
    EXPECT_TRUE(amount->hasAnnotation("UIName", Param::eString));
    EXPECT_FALSE(amount->hasAnnotation("UIName", Param::eFloat));
    EXPECT_FALSE(amount->hasAnnotation("uiname", Param::eString));
    EXPECT_EQ(amount->getAnnotationStringValue("UIName"), "How much");
    EXPECT_FLOAT_EQ(amount->getAnnotationFloatValue("UIMin"), -1.0f);
    EXPECT_FLOAT_EQ(amount->getAnnotationFloatValue("UIMax"), 2.5f);
    EXPECT_TRUE(amount->getAnnotationBoolValue("Hidden"));
    EXPECT_FALSE(amount->getAnnotationBoolValue("nosuch"));
    EXPECT_EQ(effect->getParam("Colour")->getColourValue(), NormalisedRGB(0.1f, 0.2f, 0.3f, 0.4f));
    EXPECT_TRUE(effect->setColour("Colour", {1, 2, 3, 4}));
    EXPECT_TRUE(effect->setInt("Count", 7));
    EXPECT_FALSE(effect->setFloat("Note", 1.0f));
    EXPECT_FLOAT_EQ(effect->getParam("Count")->getFloatValue(), 7.0f);
    EXPECT_EQ(effect->getParam("Colour")->getColourValue(), NormalisedRGB(1, 2, 3, 4));
    EXPECT_EQ(effect->getParam("Colour")->getDefaultColourValue(),
              NormalisedRGB(0.1f, 0.2f, 0.3f, 0.4f));
    EXPECT_FALSE(effect->getParam("FirstSampler"));
    EXPECT_FALSE(effect->getParam(99u));
}

// -- Loading anew
// ----------------------------------------------------------------------------------

TEST_F(ShaderEffectLoading, AChangedFileIsTakenOverAndValuesStay)
{
    folder.write("tint.fxh", kTint);
    const Tq::Ptr<OpenGLShaderEffect> effect =
        loadText(std::string(kPicture) + "#include \"tint.fxh\"\n"
                                         "float Other = 1.0;\n");
    ASSERT_TRUE(effect) << printed;
    EXPECT_EQ(effect->getFiles().size(), 2u);
    effect->setColour("Tint", {0, 1, 0, 1});
    const Tq::Ptr<iShaderParam> old = effect->getParam("Other");
    std::string changed = kTint;
    changed.replace(changed.find("* Tint"), 6, "* Tint.grba + New");
    folder.write("tint.fxh", "float4 New = { 0.0, 0.0, 1.0, 0.0 };" + changed);
    OutputCapture quiet(OutputCapture::eStderr);
    EXPECT_TRUE(waitUntil([&] { return effect->reloadIfChanged(); }));
    EXPECT_EQ(effect->getRevision(), 1u);
    EXPECT_EQ(drawn(*effect), 0xFFFF00FF) << "the value kept, the new one's from the file";
    EXPECT_TRUE(effect->getParam("New"));
    old->setFloatValue(5.0f); // of the version before
    EXPECT_EQ(effect->getParam("Other")->getFloatValue(), 1.0f);
}

TEST_F(ShaderEffectLoading, AFaultyFileLeavesTheEffectAsItWas)
{
    const Tq::Ptr<OpenGLShaderEffect> effect = loadText(std::string(kPicture) + kTint);
    ASSERT_TRUE(effect);
    const QRgb before = drawn(*effect);
    OutputCapture quiet(OutputCapture::eStderr);
    folder.write("effect.fx", "#include \"missing.fxh\"\n");
    const std::string said = outputOf([&] {
        EXPECT_TRUE(waitUntil([&] {
            drawn(*effect); // drawing notices
            return effect->isOutdated();
        }));
        for (int i = 0; i < 50; ++i)
            drawn(*effect);
    });
    EXPECT_THAT(said, StartsWith("Failed to load shader : " + pathOf(folder)));
    EXPECT_EQ(said.find("Failed", 1), std::string::npos) << "once";
    EXPECT_THAT(std::string(effect->getListing().view()), HasSubstr("(1) : error : "));
    EXPECT_EQ(drawn(*effect), before);
    EXPECT_EQ(effect->getRevision(), 0u);
    folder.write("effect.fx", std::string(kPicture) + kTint);
    EXPECT_TRUE(waitUntil([&] { return effect->reloadIfChanged(); }));
    EXPECT_FALSE(effect->isOutdated());
    EXPECT_EQ(effect->getListing(), "");
}

TEST_F(ShaderEffectLoading, AMissingFileIsWaitedFor)
{
    FileWatch watch;
    using Clock = FileWatch::Clock;
    Clock::time_point now = Clock::now();
    const auto asked = [&] {
        now += std::chrono::milliseconds(501);
        return watch.hasChanged(now);
    };
    const std::string path = folder.write("a", "1"), second = folder.write("b", "1");
    watch.watch({path, second});
    EXPECT_FALSE(asked());
    std::filesystem::remove(path);
    folder.write("b", "22");
    EXPECT_FALSE(asked());
    folder.write("a", "1");
    EXPECT_FALSE(watch.hasChanged(now)) << "at most twice a second";
    EXPECT_TRUE(asked());
    watch.watch({path, second});
    EXPECT_FALSE(asked());
    std::filesystem::remove(second);
    EXPECT_TRUE(asked());
}

// Each new text is a program; what nobody uses goes again.
TEST_F(ShaderEffectLoading, ProgramsOfOldVersionsDoNotPileUp)
{
    for (int i = 0; i < static_cast<int>(ShaderPrograms::kKept) + 40; ++i) {
        const std::string number = std::to_string(i);
        ASSERT_TRUE(loadText(std::string(kPicture) + "float4 f() : COLOR { return float4(" +
                             number +
                             ", 0, 0, 1); }\ntechnique t { pass p { FragmentProgram = "
                             "compile PROFILE f(); } }\n"));
    }
    EXPECT_LE(ShaderPrograms::instance().size(), ShaderPrograms::kKept);
}

TEST_F(ShaderEffectLoading, TheMediaServicesMakeEffects)
{
    iMediaServices* const services = OS()->mediaServices();
    OutputCapture quiet(OutputCapture::eStderr);
    const LightweightString<wchar_t> path = write("effect.fx", std::string(kPicture) + kTint);
    const Tq::Ptr<iShaderEffect> effect = services->createShaderEffect(path);
    ASSERT_TRUE(effect);
    EXPECT_EQ(effect->getPath(), path);
    const Tq::Ptr<iFXFile> file = services->compileFXFile(path);
    ASSERT_TRUE(file->isCompiled()) << file->getListing().c_str();
    ASSERT_EQ(file->getParameters().size(), 3u);
    EXPECT_EQ(file->getParameters()[0].semantic_, "SOURCE");
    EXPECT_EQ(file->getParameters()[1].states_.at(0).value_.text_, "Picture");
    EXPECT_EQ(file->getParameters()[2].type_, "float4");
    EXPECT_THAT(file->getParameters()[2].initial_.numbers_, ElementsAre(1.0, 0.5, 0.25, 1.0));
    ASSERT_EQ(file->getTechniques().at(0).passes_.size(), 1u);
    const iFXFile::Pass& pass = file->getTechniques()[0].passes_[0];
    EXPECT_TRUE(pass.isTranslated_);
    EXPECT_TRUE(pass.fragmentText_.startsWith("#version 130"));
    EXPECT_FALSE(pass.vertexText_.empty());
    const Tq::Ptr<iFXFile> faulty = services->compileFXFile(write("faulty.fx", "float4 x = ;"));
    EXPECT_FALSE(faulty->isCompiled());
    EXPECT_TRUE(faulty->getListing().contains("faulty.fx(1) : error : "));
    EXPECT_TRUE(services->create3DEffect());
}
