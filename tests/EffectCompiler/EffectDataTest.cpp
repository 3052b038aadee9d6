#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

using namespace EffectCompiler;

namespace {

struct Loaded
{
    std::unique_ptr<Effect> effect;
    std::string listing;
    Error error;
};

Loaded load(const std::string& text)
{
    Context context;
    Loaded loaded;
    loaded.effect = context.createFromText(text, "/nowhere/e.fx", {"-DPROFILE=glslf"});
    loaded.listing = context.listing();
    loaded.error = context.error();
    return loaded;
}

std::string textOf(const Value& value)
{
    std::ostringstream text;
    text << value.type.name;
    for (const int size : value.type.arraySizes)
        text << "[" << size << "]";
    if (!value.text.empty())
        text << " '" << value.text << "'";
    for (const double number : value.numbers)
        text << " " << number;
    return text.str();
}

/// The initial value of a parameter "x".
std::string initialOf(const std::string& declaration)
{
    const Loaded loaded = load(declaration);
    EXPECT_EQ(loaded.listing, "") << declaration;
    if (!loaded.effect)
        return "no effect";
    for (const Parameter& parameter : loaded.effect->parameters()) {
        if (parameter.name == "x")
            return parameter.initial ? textOf(*parameter.initial) : "none";
    }
    return "no x";
}

/// The value of a state of a pass, or what was wrong with it.
std::string stateOf(const std::string& state)
{
    const Loaded loaded =
        load("texture t; float k = 1; static const int kOne = 1; float4 f() : COLOR { return 0; }"
             "\ntechnique { pass { " +
             state + "; } }");
    if (!loaded.effect)
        return loaded.listing;
    const auto& states = loaded.effect->techniques()[0].passes[0].states;
    return states.empty() ? loaded.listing : textOf(states[0].value);
}

struct Case
{
    const char* source;
    const char* value;
};

} // namespace

TEST(EffectData, EvaluatesInitialValues)
{
    const Case cases[] = {
        {"float x;", "none"},
        {"float x = -1.5;", "float -1.5"},
        {"int x = 7 / 2;", "int 3"},
        {"int x = 1.9;", "int 1"},
        {"bool x = 2;", "bool 1"},
        {"bool x = true;", "bool 1"},
        {"half3 x = 0.5;", "float3 0.5 0.5 0.5"},
        {"float4 x = {1, .5, 2h, -3};", "float4 1 0.5 2 -3"},
        {"float4 x = float4(float2(1, 2), 3, 4);", "float4 1 2 3 4"},
        {"float4 x = float4(1).xxxx * 2 + float4(1, 2, 3, 4) / 2;", "float4 2.5 3 3.5 4"},
        {"float2 x = float4(1, 2, 3, 4).wx;", "float2 4 1"},
        {"float2 x = float4(1, 2, 3, 4);", "float2 1 2"},
        {"float2x2 x = {1, 2, 3, 4};", "float2x2 1 2 3 4"},
        {"float2x2 x = float2x2(float2(1, 2), 3, 4);", "float2x2 1 2 3 4"},
        {"float2x2 x = (float2x2)float3x3(1, 2, 3, 4, 5, 6, 7, 8, 9);", "float2x2 1 2 4 5"},
        {"float x = float2x2(1, 2, 3, 4)._m10;", "float 3"},
        {"float x[3] = {1, 2, 3};", "float[3] 1 2 3"},
        {"float2 x[2] = {{1, 2}, float2(3, 4)};", "float2[2] 1 2 3 4"},
        {"float x[] = {1, 2};", "float[2] 1 2"},
        {"static const float w[2] = {3, 4}; float x = w[1] + w.length;", "float 6"},
        {"static const float PI = 3.5; static const float TWO = 2 * PI; float x = TWO;", "float 7"},
        {"struct S { float a; int2 b; }; S x = {1.5, 2, 3};", "S 1.5 2 3"},
        {"struct S { float a; float b; }; static const S s = {1, 2}; float x = s.b;", "float 2"},
        {"float x = 1 > 2 ? 3 : 4;", "float 4"},
        {"int x = (1 << 4) | 3 & 2 ^ 8;", "int 26"},
        {"int x = ~0;", "int -1"},
        {"float x = 7.5 % 2;", "float 1.5"},
        {"string x = \"a\" \"\\\"b\\\"\";", "string 'a\"b\"'"},
        {"float y; float x = y;", "none"},
        {"float f() { return 1; } float x = f();", "none"},
    };
    for (const Case& each : cases)
        EXPECT_EQ(initialOf(each.source), each.value) << each.source;
}

TEST(EffectData, ListsParametersInFileOrder)
{
    const Loaded loaded = load(R"(
static float hidden; const float constant = 1; const float4x4 set : WORLD;
struct S { float a; } s;
texture image : SOURCE;
sampler3D look = sampler_state { texture = <image>; ADDRESSU = clamp; minfilter = LinearMipMapLinear; BorderColor = {1, 0, 0, 1}; };
float gain < string UIName = "Gain"; float2 range = {0, 4}; bool shown = true; string list[] = {"a", "b"}; > = 1;
float w[2][3];
float4 f(float2 uv : TEXCOORD0, uniform float local) : COLOR { return 1; }
)");
    ASSERT_TRUE(loaded.effect) << loaded.listing;
    const auto& parameters = loaded.effect->parameters();
    std::string names;
    for (const Parameter& each : parameters)
        names += each.name + " ";
    EXPECT_EQ(names, "set s image look gain w ");
    EXPECT_EQ(parameters[0].semantic, "WORLD");
    EXPECT_EQ(parameters[1].type.base, BaseType::eStruct);
    EXPECT_EQ(parameters[2].type.texture, TextureKind::eAny);
    EXPECT_EQ(parameters[2].semantic, "SOURCE");
    EXPECT_FALSE(parameters[4].semantic);
    EXPECT_EQ(parameters[5].type.arraySizes, (std::vector<int>{2, 3}));
    const Parameter& sampler = parameters[3];
    EXPECT_EQ(sampler.type.texture, TextureKind::e3D);
    ASSERT_EQ(sampler.states.size(), 4u);
    EXPECT_EQ(sampler.states[0].name + " " + textOf(sampler.states[0].value),
              "texture texture 'image'");
    EXPECT_EQ(sampler.states[1].name + " " + textOf(sampler.states[1].value), "ADDRESSU int 10496");
    EXPECT_EQ(textOf(sampler.states[2].value), "int 9987");
    EXPECT_EQ(textOf(sampler.states[3].value), "float4 1 0 0 1");
    std::string annotations;
    for (const Annotation& each : parameters[4].annotations)
        annotations += each.name + "=" + textOf(each.value) + ";";
    EXPECT_EQ(annotations,
              "UIName=string 'Gain';range=float2 0 4;shown=bool 1;list=string[2] 'a';");
}

TEST(EffectData, TranslatesNamesInStates)
{
    const Case cases[] = {
        {"BlendFunc = int2(SrcAlpha, OneMinusSrcAlpha)", "int2 770 771"},
        {"blendfunc = {ONE, invsrcalpha}", "int2 1 771"},
        {"AlphaFunc = float2(Greater, 0.5)", "float2 516 0.5"},
        {"StencilFunc = int3(LEqual, 1, 255)", "int3 515 1 255"},
        {"ColorWriteEnable = RED | green | ALPHA", "int 11"},
        {"ColorMask = bool4(true, FALSE, True, false)", "bool4 1 0 1 0"},
        {"ColorMask = false", "bool4 0 0 0 0"},
        {"AlphaBlendEnable = TRUE", "bool 1"},
        {"ZEnable = 0", "bool 0"},
        {"CullMode = None", "int 0"},
        {"MipFilter = None", "int 0"},
        {"FillMode = Point", "int 6912"},
        {"MinFilter[0] = POINT", "int 9728"},
        {"AddressU = 10497", "int 10497"},
        {"AddressU = kOne", "int 1"},
        {"AlphaRef = k", "float 'k'"}, // what the host sets decides
        {"Texture[0] = <t>", "texture 't'"},
        {"Texture[0] = null", "texture"},
        {"AddressU = Sideways", "/nowhere/e.fx(2) : error : 'Sideways' is no value of AddressU\n"},
        {"BlendFunc = int2(One, Two)",
         "/nowhere/e.fx(2) : error : 'Two' is no value of BlendFunc\n"},
        {"MinFilter = One", "/nowhere/e.fx(2) : error : 'One' is no value of MinFilter\n"},
        {"Texture = <gone>",
         "/nowhere/e.fx(2) : error : the value of Texture is no texture: 'gone'\n"},
        {"Texture = <k>", "/nowhere/e.fx(2) : error : the value of Texture is no texture: 'k'\n"},
        {"ZEnable = compile glslv f()", "/nowhere/e.fx(2) : error : ZEnable takes no program\n"},
        {"AlphaRef = k + 1",
         "/nowhere/e.fx(2) : warning : the value of AlphaRef is not constant\n"},
        {"FutureState = Sideways", " 'Sideways'"},
    };
    for (const Case& each : cases)
        EXPECT_EQ(stateOf(each.source), each.value) << each.source;
    EXPECT_EQ(load("technique { pass { Future = 1; } }").listing,
              "/nowhere/e.fx(1) : warning : unknown state 'Future'\n");
}

TEST(EffectData, DescribesTechniquesAndPasses)
{
    const Loaded loaded = load(R"(
float4 v(float4 p : POSITION) : POSITION { return p; }
float4 f() : COLOR { return 1; }
technique A < int order = 2; > {
  pass P0 < string Script = "RENDERCOLORTARGET0 = Pass1;"; > { VertexShader = null; PixelShader = compile PROFILE f(); }
  pass P1 { VertexProgram = compile vs_2_0 v(); fragmentprogram = compile latest f(); AlphaRef = 0.5; }
}
technique { pass { } }
)");
    ASSERT_TRUE(loaded.effect) << loaded.listing;
    const auto& techniques = loaded.effect->techniques();
    ASSERT_EQ(techniques.size(), 2u);
    EXPECT_EQ(techniques[0].name, "A");
    EXPECT_EQ(textOf(techniques[0].annotations.at(0).value), "int 2");
    const Pass& first = techniques[0].passes.at(0);
    EXPECT_EQ(first.annotations.at(0).value.text, "RENDERCOLORTARGET0 = Pass1;");
    EXPECT_FALSE(first.hasVertexProgram);
    EXPECT_TRUE(first.hasFragmentProgram);
    EXPECT_TRUE(first.states.empty());
    const Pass& second = techniques[0].passes.at(1);
    EXPECT_TRUE(second.hasVertexProgram && second.hasFragmentProgram);
    EXPECT_EQ(second.states.size(), 1u);
    EXPECT_EQ(techniques[1].passes.size(), 1u);
}

TEST(EffectData, TellsWhatFailedAPart)
{
    const Loaded profile = load("float4 f() : COLOR { return 0; } technique { pass { PixelShader = "
                                "compile nosuch f(); } }");
    EXPECT_FALSE(profile.effect);
    EXPECT_EQ(profile.error, Error::eInvalidProfile);
    EXPECT_EQ(profile.listing, "/nowhere/e.fx(1) : error : unknown profile 'nosuch'\n");

    const Loaded syntax = load("float x = ;");
    EXPECT_EQ(syntax.error, Error::eCompile);
    const Loaded include = load("#include \"gone\"");
    EXPECT_EQ(include.error, Error::eFile);

    const TemporaryFolder folder;
    Context context;
    EXPECT_FALSE(context.createFromFile(folder.path("gone.fx"), {}));
    EXPECT_EQ(context.error(), Error::eFile);
    EXPECT_EQ(context.listing(), folder.path("gone.fx") + " : error : cannot be read\n");
    EXPECT_FALSE(context.createFromFile(folder.path(), {}));

    folder.write("inc.fxh", "float a;");
    folder.write("e.fx", "#include \"INC.fxh\"\nfloat b;");
    const auto effect = context.createFromFile(folder.path("e.fx"), {});
    ASSERT_TRUE(effect) << context.listing();
    EXPECT_EQ(context.error(), Error::eNone);
    EXPECT_EQ(effect->files(),
              (std::vector<std::string>{folder.path("e.fx"), folder.path("inc.fxh")}));
    EXPECT_EQ(effect->parameters().size(), 2u);
}
