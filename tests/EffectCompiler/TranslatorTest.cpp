// Passes as a whole: both programs, what joins them, their uniforms, and their text.
#include "EffectRig.h"
#include "GlslJudge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

using namespace EffectCompiler;

namespace {

EffectRig& rig()
{
    static EffectRig only;
    return only;
}

std::unique_ptr<Effect> load(const std::string& source)
{
    Context context;
    auto effect = context.createFromText(source, "e.fx", {"-DPROFILE=glslf"});
    EXPECT_TRUE(effect) << context.listing();
    return effect;
}

void expectPixel(const std::string& source, const EffectRig::Pixel& expected)
{
    const auto effect = load(source);
    ASSERT_TRUE(effect);
    for (const int version : {130, 120}) {
        EffectRig::Pixel pixel{};
        ASSERT_EQ(rig().draw(*effect, version, pixel), "") << source;
        std::string listing;
        const auto text = effect->translate(0, 0, version, listing);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(pixel[i], expected[i], 0.01F)
                << "component " << i << " in " << version << "\n"
                << text->vertex << text->fragment;
        GlslJudge judge;
        judge.add("pass", *text);
        EXPECT_EQ(judge.verdict(), "");
    }
}

std::string refusal(const std::string& source, int version = 130)
{
    const auto effect = load(source);
    if (!effect)
        return "not loaded";
    std::string listing;
    EXPECT_FALSE(effect->translate(0, 0, version, listing)) << source;
    return listing;
}

const char* const kBothPrograms = R"(
technique t { pass p { VertexProgram = compile glslv vs(); FragmentProgram = compile glslf ps(); } }
)";

} // namespace

TEST(Translator, VertexProgramsPassOnWhatTheyOutput)
{
    expectPixel(std::string(R"(
float4 vs(float4 p : POSITION, float2 uv : TEXCOORD0, float4 c : COLOR, out float3 n : TEXCOORD5,
          out float4 d : COLOR0) : POSITION
{
    n = float3(uv, uv.x + uv.y); d = c * .5; return mul(glstate.matrix.mvp, p);
}
float4 ps(float4 n : TEXCOORD5, float4 c : COLOR) : COLOR { return n + c; }
)") + kBothPrograms,
                {0.75F, 0.25F, 1.0F, 1.5F});
}

TEST(Translator, VertexProgramsTakeStructsArraysAndMatrices)
{
    expectPixel(std::string(R"(
struct In { float4 p : POSITION; float3 n : NORMAL; float2 uv[2] : TEXCOORD0; };
struct Out { float4 p : HPOS; float2 t[2] : TEXCOORD2; float2x3 m : TEXCOORD4; };
Out vs(In i) { Out o; o.p = i.p; o.t = i.uv; o.m = float2x3(i.n, i.n * .5); return o; }
float4 ps(float2 t[2] : TEXCOORD2, float2x3 m : TEXCOORD4) : COLOR
{
    return float4(t[0].x, t[1].x, m[1][2], m[0][2]);
}
)") + kBothPrograms,
                {0.25F, 0.75F, 0.5F, 1.0F});
}

TEST(Translator, WhatNobodyWritesIsBlack)
{
    expectPixel(std::string("float4 vs(float4 p : POSITION) : POSITION { return p; }"
                            "float4 ps(float4 a : TEXCOORD3, float4 b : MYOWN) : COLOR"
                            " { return a + b * .5; }") +
                    kBothPrograms,
                {0, 0, 0, 1.5F});
}

TEST(Translator, AMissingProgramIsThatOfThePlainPipeline)
{
    expectPixel(
        "float4 ps(float4 a : TEXCOORD0, float4 b : COLOR0, float4 c : TEXCOORD1) : COLOR"
        " { return float4(a.x, b.y, c.xw); }"
        "technique t { pass p { VertexProgram = NULL; PixelShader = compile glslf ps(); } }",
        {0.25F, 0, 0.75F, 1});
    expectPixel("float4 vs(float4 p : POSITION, out float4 c : COLOR) : POSITION"
                " { c = float4(.25, .5, .75, 1); return p; }"
                "technique t { pass p { VertexShader = compile glslv vs(); } }",
                {0.25F, 0.5F, 0.75F, 1});
    expectPixel("technique t { pass p { } }", {1, 0, 1, 1});
}

TEST(Translator, StateMatricesAreThoseOfGl)
{
    // Rotated: what is a row and what a column shows.
    expectPixel(std::string(R"(
float4 vs(float4 p : POSITION, uniform float4x4 m : state.matrix.mvp,
          uniform float4x4 inv : state.matrix.modelview.inverse, out float4 t : TEXCOORD0) : POSITION
{
    t = mul(inv, mul(glstate.matrix.modelview[0], float4(.25, .5, .75, 1)));
    return mul(p, glstate.matrix.mvp.transpose);
}
float4 ps(float4 t : TEXCOORD0) : COLOR { return t; }
)") + kBothPrograms,
                {0.25F, 0.5F, 0.75F, 1});
}

TEST(Translator, ArgumentsOfThePassBindUniformParameters)
{
    expectPixel(R"(
float kf; sampler2D Tex0; static const float kTwo = 2;
float4 ps(float2 uv : TEXCOORD0, uniform float a, uniform sampler2D s, uniform float3 b, uniform float c = .25) : COLOR
{
    return float4(a, tex2D(s, uv).r * b.y, c, b.z);
}
technique t { pass p { FragmentProgram = compile glslf ps(kf * kTwo - .25, Tex0, float3(0, .5, 1)); } }
)",
                {0.75F, 0.5F, 0.25F, 1});
}

TEST(Translator, NamesUniformsAsGlKnowsThem)
{
    const auto effect = load(R"(
struct Light { float3 at; float power[2]; };
Light lights[2]; float4 k; float4 mix; float2 unused; sampler S; float table[2][3];
float4 main(uniform float own) : COLOR
{
    k += lights[1].power[0] + table[1][2];
    return k * mix + tex2D(S, lights[0].at.xy) * own;
}
technique t { pass p { FragmentProgram = compile glslf main(); } }
)");
    ASSERT_TRUE(effect);
    std::string listing;
    const auto text = effect->translate(0, 0, 130, listing);
    ASSERT_TRUE(text) << listing;
    std::string names;
    for (const Uniform& uniform : text->uniforms) {
        names += uniform.parameter + "=" + uniform.name + ":" + uniform.type.name;
        for (const int size : uniform.type.arraySizes)
            names += "[" + std::to_string(size) + "]";
        names += " ";
    }
    EXPECT_EQ(names,
              "lights[0].at=lights[0].at:float3 lights[0].power=lights[0].power:float[2] "
              "lights[1].at=lights[1].at:float3 lights[1].power=lights[1].power:float[2] "
              "k=k:float4 mix=mix_1:float4 S=S:sampler2D table=table:float[2][3] own=own:float ");
}

TEST(Translator, TheSamePassGivesTheSameText)
{
    const char* const source = "float b, a; struct S { float x; }; float f(S s) { return s.x % a; }"
                               "float4 main(float2 uv : TEXCOORD1, float4 c : COLOR) : COLOR"
                               " { S s = {b}; return f(s) % b + sinh(uv.x) + cosh(c.y); }"
                               "technique t { pass p { FragmentProgram = compile glslf main(); } }";
    std::string listing;
    const auto first = load(source)->translate(0, 0, 130, listing);
    const auto second = load(source)->translate(0, 0, 130, listing);
    EXPECT_EQ(first->fragment, second->fragment);
    EXPECT_EQ(first->vertex, second->vertex);
}

TEST(Translator, SaysWhyAProgramCannotBeWritten)
{
    const struct
    {
        const char* source;
        const char* reason;
    } cases[] = {
        {"float4 vs(float4 p : POSITION) : TEXCOORD0 { return p; }\n"
         "technique t { pass p { VertexShader = compile glslv vs(); } }",
         "e.fx(1) : error : vertex program 'vs' has no output POSITION\n"},
        {"float4 vs(float4 p : POSITION) : POSITION {\n discard;\n return p; }\n"
         "technique t { pass p { VertexShader = compile glslv vs(); } }",
         "e.fx(2) : error : 'discard' in a vertex program\n"},
        {"float4 ps(float2 uv) : COLOR { return 1; }\n"
         "technique t { pass p { PixelShader = compile glslf ps(); } }",
         "e.fx(1) : error : parameter 'uv' of 'ps' needs a semantic, or to be uniform\n"},
        {"float4 ps(float2 uv : TEXCOORD0) { return 1; }\n"
         "technique t { pass p { PixelShader = compile glslf ps(); } }",
         "e.fx(1) : error : what 'ps' gives out needs a semantic\n"},
        {"float4 ps() : TEXCOORD0 { return 1; }\n"
         "technique t { pass p { PixelShader = compile glslf ps(); } }",
         "e.fx(1) : error : a fragment program has no output TEXCOORD\n"},
        {"float4 ps() : COLOR { int2x2 m = 1; return m[0][0]; }\n"
         "technique t { pass p { PixelShader = compile glslf ps(); } }",
         "e.fx(1) : error : GLSL cannot express 'int2x2'\n"},
        {"interface I { float get(); }; struct A : I { float get() { return 1; } };\n"
         "float4 ps(uniform I i) : COLOR { return i.get(); }\n"
         "technique t { pass p { PixelShader = compile glslf ps(); } }",
         "e.fx(2) : error : interface 'I' is not connected to a struct\n"},
        {"technique t { pass p { VertexShader = asm { vs.1.1 }; } }",
         "e.fx(1) : error : assembler programs are not supported\n"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(refusal(each.source), each.reason) << each.source;
}

TEST(Translator, FaultsThatOnlyTheDriverFindsAreOfTheRightLine)
{
    // A function of GLSL that no effect can name: what the driver says comes from its #line.
    const auto effect =
        load("// one\nfloat a;\n\nfloat f(float x)\n{\n    x += 1;\n\n    float y = x;"
             "\n    return y * 2;\n}\nfloat4 main() : COLOR { return f(a); }\n"
             "technique t { pass p { FragmentProgram = compile glslf main(); } }");
    std::string listing;
    for (const int version : {130, 120}) {
        auto text = effect->translate(0, 0, version, listing);
        ASSERT_TRUE(text);
        const std::string statement = "return y * 2.0;";
        text->fragment.replace(text->fragment.find(statement), statement.size(), "return nosuch;");
        std::string log;
        EXPECT_EQ(rig().link(*text, log), 0U);
        EXPECT_EQ(log.substr(0, 4), "0:9(") << log << text->fragment;
        GlslJudge judge;
        judge.add("pass", *text);
        const std::string verdict = judge.verdict();
        EXPECT_TRUE(verdict.empty() || verdict.find("ERROR: 0:9:") != std::string::npos) << verdict;
    }
}

TEST(Translator, TextStaysAsLongAsItsSource)
{
    // Each would double with every step, were functions or operands written more than once.
    std::string calls = "float f0(float x) { return x + 1; }\n";
    for (int i = 1; i < 60; ++i) {
        const std::string n = std::to_string(i);
        const std::string last = std::to_string(i - 1);
        calls += "float f" + n + "(float x) { return f" + last + "(x) + f" + last + "(x * 2); }\n";
    }
    std::string nested = "m";
    std::string cast = "kf";
    for (int i = 0; i < 20; ++i) {
        nested = "float2x2(" + nested + "._m00_m11, m._m01_m10)";
        cast = "((float2x2)(" + cast + "))[0][0]";
    }
    const std::string end = "technique t { pass p { FragmentProgram = compile glslf main(); } }";
    const std::string sources[] = {
        calls + "float4 main() : COLOR { return f59(.5); }\n" + end,
        "float2x2 m; float4 main() : COLOR { return " + nested + "[0].xyxy; }\n" + end,
        "float kf; float4 main() : COLOR { return " + cast + "; }\n" + end,
        "float kf; static float g = " + cast + "; float4 main() : COLOR { return g; }\n" + end,
        "int i; float4 main() : COLOR { float a[9]; a[" +
            [] {
                std::string index = "i";
                for (int n = 0; n < 20; ++n)
                    index = "a[" + index + "] += 1";
                return index;
            }() +
            "] = 0; return a[0]; }\n" + end,
    };
    for (const std::string& source : sources) {
        const auto effect = load(source);
        ASSERT_TRUE(effect);
        std::string listing;
        const auto text = effect->translate(0, 0, 130, listing);
        ASSERT_TRUE(text) << listing;
        EXPECT_LT(text->fragment.size(), 40 * source.size() + 4000) << source.substr(0, 300);
    }
}
