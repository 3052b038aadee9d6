#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace EffectCompiler;

namespace {

constexpr char kSample[] = R"(#define PS(f, ...) PixelShader = compile PROFILE f(__VA_ARGS__)
texture image : SOURCE < string ui = "Im\"age"; >;
sampler2D look = sampler_state { Texture = <image>; AddressU = Clamp; };
static const float w[] = { 0.25, 1e-1h, 0x3 }; float2x2 m = { 1, 2, 3, 4 };
struct I { float2 uv : TEXCOORD0; float4 f(float x) { return x; } };
float4 main(I i, uniform float k = 2) : COLOR { /* c */
  float4 c = tex2D(look, i.uv) * (half4)k; [unroll] for (int n = 0; n < 3; n++) c.rgb += w[n];
  if (c.a > .5 && c.r != 1) discard; else c = c.r < 0 ? -c : mul(m, c.xy).xyxy; return c; }
technique T < int n = 1; > { pass P { BlendFunc = int2(One, Zero); PS(main, w[1]); } }
)";

/// Translates all that loads, as an editor would.
bool survives(const std::string& text, std::string* listing = nullptr)
{
    Context context;
    const auto effect = context.createFromText(text, "/nowhere/e.fx", {"-DPROFILE=glslf"});
    if (listing)
        *listing = context.listing();
    EXPECT_LE(std::count(context.listing().begin(), context.listing().end(), '\n'), 200);
    if (!effect) {
        EXPECT_NE(context.listing(), "");
        return false;
    }
    std::string why;
    for (std::size_t t = 0; t < effect->techniques().size(); ++t) {
        for (std::size_t p = 0; p < effect->techniques()[t].passes.size(); ++p)
            effect->translate(t, p, 130, why);
    }
    return true;
}

std::string repeated(const std::string& text, int times)
{
    std::string result;
    for (int i = 0; i < times; ++i)
        result += text;
    return result;
}

} // namespace

TEST(HostileInput, TruncatedAnywhere)
{
    const std::string sample = kSample;
    std::string listing;
    ASSERT_TRUE(survives(sample, &listing)) << listing;
    for (std::size_t length = 0; length < sample.size(); ++length)
        survives(sample.substr(0, length));
    // And with a piece missing.
    for (std::size_t start = 0; start < sample.size(); start += 3)
        survives(std::string(sample).erase(start, 7));
}

TEST(HostileInput, AnyByteChanged)
{
    for (const char byte : {'\0', '{', '}', '(', '<', '>', ';', '"', '#', '\\', '9', '\xFF'}) {
        for (std::size_t i = 0; i < sizeof(kSample) - 1; i += 5) {
            std::string changed = kSample;
            changed[i] = byte;
            survives(changed);
        }
    }
}

TEST(HostileInput, NestsDeeply)
{
    constexpr int kMany = 20'000;
    const std::string body = "float4 main() : COLOR { ";
    const std::string cases[] = {
        "float x = " + repeated("(", kMany),
        "float x = " + repeated("-", kMany) + "1;",
        "float x = " + repeated("{", kMany),
        "float x = " + repeated("1?", kMany),
        "float x = " + repeated("a=", kMany),
        "float x = " + repeated("f(", kMany),
        "float x = a" + repeated("[a", kMany),
        "float x = 1" + repeated("+1", kMany) + ";",
        "float x = a" + repeated(".x", kMany) + ";",
        "float x = (float)" + repeated("(float)", kMany) + "1;",
        body + repeated("{", kMany),
        body + repeated("if(a)", kMany),
        body + repeated("if(a);else ", kMany),
        body + repeated("for(;;)", kMany),
        body + repeated("do ", kMany),
        body + repeated("switch(a){case 1:", kMany),
        repeated("struct A{", kMany),
        "technique T { pass P { A = asm " + repeated("{", kMany),
        "float a" + repeated("[1]", kMany) + ";",
        repeated("vector<", kMany),
    };
    for (const std::string& each : cases) {
        std::string listing;
        EXPECT_FALSE(survives(each, &listing)) << each.substr(0, 60);
        EXPECT_LE(std::count(listing.begin(), listing.end(), '\n'), 2)
            << each.substr(0, 60) << listing;
    }
}

TEST(HostileInput, HoldsMuch)
{
    std::string parameters, functions,
        structs = "struct S0 { float a; };", constants = "static const float c0 = 1;",
        doubled = "struct D0 { float a; };", tables, labels = "switch (1) {";
    for (int i = 1; i <= 10'000; ++i) {
        const std::string n = std::to_string(i), before = std::to_string(i - 1);
        parameters += "float4 p" + n + " < string ui = \"x\"; > = {1, 2, 3, 4};\n";
        functions += "float f" + n + "(float x) { return x" +
                     (i > 1 ? " + f" + before + "(x)" : "") + "; }\n";
        structs += "struct S" + n + " { S" + before + " a; };";
        constants += "static const float c" + n + " = c" + before + " + c" + before + ";";
        doubled += "struct D" + n + " { D" + before + " a, b; };";
        tables += "float t" + n + "[65536] = {0};";
        labels += "case " + n + ": break;";
    }
    std::string listing;
    std::string locals, lines;
    for (int i = 0; i < 20'000; ++i) {
        locals += "const int v" + std::to_string(i) + " = " + std::to_string(i) + ";";
        lines += "#line 1 \"f" + std::to_string(i) + "\"\n";
    }
    EXPECT_TRUE(survives("void f() {" + locals + "}\n" + lines, &listing)) << listing;
    EXPECT_TRUE(survives(parameters, &listing)) << listing;
    survives(functions + "float4 main() : COLOR { return f10000(1); } technique { pass { "
                         "PixelShader = compile glslf main(); } }");
    EXPECT_FALSE(survives(structs, &listing));
    EXPECT_EQ(listing, "/nowhere/e.fx(1) : error : struct 'S200' is too large\n");
    EXPECT_TRUE(survives(constants + "float x = c20;", &listing)) << listing;
    EXPECT_FALSE(survives(doubled, &listing));
    EXPECT_EQ(listing, "/nowhere/e.fx(1) : error : struct 'D17' is too large\n");
    survives(tables);
    survives("float4 main() : COLOR { " + labels +
             "} return 1; } technique { pass { PixelShader = compile glslf main(); } }");
}

TEST(HostileInput, RefersToItself)
{
    survives("static const float a = a; float x = a;");
    survives("static const float a = b; static const float b = a; float x[a];");
    survives("float f(float x); float g(float x) { return f(x); } float f(float x) { return g(x); }"
             "float4 main() : COLOR { return f(1); } technique { pass { PixelShader = compile "
             "glslf main(); } }");
    survives("interface A : A { }; struct B : B { };");
    survives("struct B { B f(B b) { B c; return c; } }; B b;");
    survives("typedef T T; T x;");
}
