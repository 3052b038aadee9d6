#include "TreeText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

using namespace EffectCompiler;

namespace {

struct Case
{
    std::string source;
    std::string text;
};

void PrintTo(const Case& each, std::ostream* stream)
{
    *stream << each.source;
}

class ParserExpression : public testing::TestWithParam<Case>
{
};
class ParserStatement : public testing::TestWithParam<Case>
{
};
class ParserDeclaration : public testing::TestWithParam<Case>
{
};

std::string bodyOf(const std::string& source)
{
    const auto parsed =
        parse("struct Light { float x; }; typedef float4 colour; void f() {" + source + "}");
    EXPECT_EQ(parsed->listing, "") << source;
    if (parsed->tree.functions.empty())
        return "";
    const std::string text = textOf(parsed->tree.functions[0]->body);
    return text.substr(1, text.size() - 2);
}

} // namespace

TEST_P(ParserExpression, Binds)
{
    EXPECT_EQ(bodyOf(GetParam().source + ";"), GetParam().text + ";");
}

INSTANTIATE_TEST_SUITE_P(
    Operators, ParserExpression,
    testing::Values(Case{"a = b = c", "(a = (b = c))"}, Case{"a, b = c, d", "((a , (b = c)) , d)"},
                    Case{"a ? b : c ? d : e", "(a ? b : (c ? d : e))"},
                    Case{"a || b && c | d ^ e & f", "(a || (b && (c | (d ^ (e & f)))))"},
                    Case{"a == b < c << d + e * f", "(a == (b < (c << (d + (e * f)))))"},
                    Case{"a - b - c / d % e", "((a - b) - ((c / d) % e))"},
                    Case{"-a.x++ * !b[1]", "((-(a.x++)) * (!b[1]))"},
                    Case{"- -a + ++b", "((-(-a)) + (++b))"},
                    Case{"a <<= b |= c", "(a <<= (b |= c))"}, Case{"(a, b)", "(a , b)"}));

INSTANTIATE_TEST_SUITE_P(
    Primaries, ParserExpression,
    testing::Values(
        Case{"f(a, g(b)).xy[0].r", "f(a, g(b)).xy[0].r"}, Case{"a.f(b).g()", "a.f(b).g()"},
        Case{"float4(1, .5h, 0x10, 2u)", "float4(1, 0.5f, 16, 2)"},
        Case{"(float3)a.b + 1", "((float3)a.b + 1)"}, Case{"(Light)0", "(Light)0"},
        Case{"(float[2])a", "(float[2])a"}, Case{"(colour)-x", "(float4)(-x)"},
        Case{"vector<half,3>(a)", "float3(a)"}, Case{"(matrix<float,2,3>)a", "(float2x3)a"},
        Case{"texture - sampler", "(texture - sampler)"}, Case{"(texture) - 1", "(texture - 1)"},
        Case{"shared + point * line.sample", "(shared + (point * line.sample))"},
        Case{"m._m00_m10 * 1.0.xxx", "(m._m00_m10 * 1f.xxx)"},
        Case{"true ? \"a\" \"b\\n\" : \"\"", "(true ? \"ab\n\" : \"\")"},
        Case{"x = matrix(1)", "(x = float4x4(1))"}, Case{"010 + 1e3", "(8 + 1000f)"}));

TEST_P(ParserStatement, IsUnderstood)
{
    EXPECT_EQ(bodyOf(GetParam().source), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    All, ParserStatement,
    testing::Values(
        Case{"if (a) if (b) c; else d;", "if (a) if (b) c; else d;"},
        Case{"[unroll(4)] [loop] for (int i = 0, j = 1; i < 2; i++, j++) { a; }",
             "for (int i = 0; int j = 1; (i < 2); ((i++) , (j++))) {a;}"},
        Case{"for (;;) break;", "for (; ; ) break;"},
        Case{"while (a) { continue; }", "while (a) {continue;}"},
        Case{"do a; while (b);", "do a; while (b)"},
        Case{"return; return a, b;", "return ; return (a , b);"},
        Case{"switch (a) { case 1: case 2: b; break; default: discard; }",
             "switch (a) {case 1: case 2: b; break; default: discard;}"},
        Case{"float a[2][3] = {{1, 2, 3}, {4, 5, 6},}, b;",
             "float[2][3] a = {{1, 2, 3}, {4, 5, 6}}; float b;"},
        Case{"const float w[] = {1, 2}; Light l = {1};",
             "const float[2] w = {1, 2}; Light l = {1};"},
        Case{"static const int N = 2 * 3; float a[N + 1];",
             "static const int N = (2 * 3); float[7] a;"},
        Case{"vector<float, 3> v; unsigned int u; matrix m;", "float3 v; uint u; float4x4 m;"},
        Case{"float point, line = 1, sample, shared, technique; shared = 2;",
             "float point; float line = 1; float sample; float shared; float technique; (shared = "
             "2);"},
        Case{"struct { float a; } s; typedef float2 uv; uv x;", "struct#2 s;  float2 x;"},
        Case{";{;}", "; {;}"}));

TEST_P(ParserDeclaration, IsUnderstood)
{
    const auto parsed = parse(GetParam().source);
    EXPECT_EQ(parsed->listing, "");
    EXPECT_EQ(textOf(parsed->tree), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Variables, ParserDeclaration,
    testing::Values(
        Case{"extern shared row_major half3x4 m : register(vs, c0) : WORLD : packoffset(c1.x);",
             "float3x4 m : WORLD;\n"},
        Case{"uniform float4 k : COLOUR = {1, 2, 3, 4}, j;",
             "uniform float4 k : COLOUR = {1, 2, 3, 4};\nuniform float4 j;\n"},
        Case{"float4x4 m : state.matrix.mvp; float4 p : glstate.light[0].position;",
             "float4x4 m : state.matrix.mvp;\nfloat4 p : glstate.light[0].position;\n"},
        Case{"float a < float UIMax = 4; >= 0.5;", "float a = 0.5f;\n"},
        Case{"static const int N = 3, M = N * 2; float a[M][N];",
             "static const int N = 3;\nstatic const int M = (N * 2);\nfloat[6][3] a;\n"},
        Case{"typedef float arr[2]; typedef arr more[3]; more x[4]; arr y;",
             "float[4][3][2] x;\nfloat[2] y;\n"},
        Case{"const float2 o[] = {1, 2, 3, 4}; const float2 q[] = {{1, 2}, {3, 4}}; const float2 "
             "r[] = {float2(1, 2)};",
             "const float2[2] o = {1, 2, 3, 4};\nconst float2[2] q = {{1, 2}, {3, 4}};\nconst "
             "float2[1] r = {float2(1, 2)};\n"},
        Case{"Texture2D a; TEXTURE b; samplerRECT c; String d; sampler2D e : TEXUNIT0;",
             "texture2D a;\ntexture b;\nsamplerRECT c;\nstring d;\nsampler2D e : TEXUNIT0;\n"},
        Case{"float half4x = 1; fixed3 f; double2 d; bool4 b; uint u;",
             "float half4x = 1;\nfloat3 f;\nfloat2 d;\nbool4 b;\nuint u;\n"}));

INSTANTIATE_TEST_SUITE_P(
    FunctionsAndStructs, ParserDeclaration,
    testing::Values(
        Case{"float f(float a, float = 1); inline static float g(void) { return 1; }",
             "float f(float a, float = 1);\nfloat g() {return 1;}\n"},
        Case{"float4 main(in float2 uv : TEXCOORD0, inout float a[], out half3 b : COLOR1, const "
             "uniform sampler2D s = x) : COLOR { }",
             "float4 main(float2 uv : TEXCOORD0, inout float[] a, out float3 b : COLOR1, const "
             "uniform sampler2D s = x) : COLOR {}\n"},
        Case{"float4 main(float4x4 m : state.matrix.mvp, in out float p) : COLOR < string Script = "
             "\"x\"; > { }",
             "float4 main(float4x4 m : state.matrix.mvp, inout float p) : COLOR {}\n"},
        Case{"interface I { float get(float x); }; struct A : I { float s, t[2] : TEXCOORD0; float "
             "get(float x) { return s; } } a;",
             "interface I { }\nstruct A : I { float s; float[2] t : TEXCOORD0; }\nA a;\nfloat "
             "I.get(float x);\nfloat A.get(float x) {return s;}\n"},
        Case{
            "struct A { struct { float x; } b; centroid float c; }; struct A d; A f(A a);",
            "struct A { struct#2 b; float c; }\nstruct struct#2 { float x; }\nA d;\nA f(A a);\n"}));

TEST(Parser, ReadsSamplersTechniquesPassesAndStates)
{
    const auto parsed = parse(R"(
texture t; sampler s = Sampler_State { Texture = <t>; AddressU = Clamp; }; sampler r { Texture = (t) };
float4 p() : COLOR { return 1; }
TECHNIQUE A < string Script = "x;"; int n = 1 + 2; > {
  Pass P0 < bool first = true; > {
    VertexShader = NULL; PixelShader = Compile ps_2_0 p(s, 1 + 2);
    Texture[1] = <t[2]>; BlendFunc = { SrcAlpha, One }; ColorWriteEnable = RED | GREEN; BlendOp = int2(Add, 1);
  }
  pass { VertexProgram = asm { vs_1_1 ; a comment
    mov oPos, v0 { } }; FillMode = -1; }
};
technique { }
)");
    EXPECT_EQ(parsed->listing, "");
    const SyntaxTree& tree = parsed->tree;
    ASSERT_EQ(tree.globals.size(), 3u);
    ASSERT_TRUE(tree.globals[1]->states && tree.globals[2]->states);
    EXPECT_EQ(textOf(tree.globals[1]->states->at(0).value), "t");
    EXPECT_EQ(tree.globals[1]->states->at(1).name, "AddressU");
    EXPECT_EQ(textOf(tree.globals[2]->states->at(0).value), "t");
    ASSERT_EQ(tree.techniques.size(), 2u);
    const TechniqueSyntax& technique = tree.techniques[0];
    EXPECT_EQ(technique.annotations.at(0).value.text, "x;");
    EXPECT_EQ(technique.annotations.at(1).value.numbers, std::vector<double>{3});
    ASSERT_EQ(technique.passes.size(), 2u);
    const std::vector<State>& states = technique.passes[0].states;
    ASSERT_EQ(states.size(), 6u);
    EXPECT_EQ(technique.passes[0].name, "P0");
    EXPECT_EQ(textOf(states[0].value), "NULL");
    EXPECT_EQ(states[1].profile + " " + states[1].entry + "(" + textOf(states[1].arguments) + ")",
              "ps_2_0 p(s, (1 + 2))");
    EXPECT_EQ(states[2].index, 1);
    EXPECT_EQ(textOf(states[2].value), "t[2]");
    EXPECT_EQ(textOf(states[3].value), "{SrcAlpha, One}");
    EXPECT_EQ(textOf(states[4].value), "(RED | GREEN)");
    EXPECT_EQ(textOf(states[5].value), "int2(Add, 1)");
    EXPECT_EQ(technique.passes[1].states.at(0).profile, "asm");
    EXPECT_EQ(technique.passes[1].states.at(1).place.line, 10u);
    EXPECT_EQ(tree.techniques[1].name, "");
}

TEST(Parser, ReportsFaultsWhereTheyAre)
{
    const Case cases[] = {
        {"float a\nfloat b;", "e.fx(1) : error : expected ';' before 'float'\n"},
        {"float4 k = ;", "e.fx(1) : error : unexpected ';'\n"},
        {"nosuch x;", "e.fx(1) : error : unknown type 'nosuch'\n"},
        {"float float3;", "e.fx(1) : error : 'float3' is a type, not a name\n"},
        {"float a[n];", "e.fx(1) : error : the size of an array must be a constant whole number\n"},
        {"float a[0];", "e.fx(1) : error : an array cannot have 0 elements\n"},
        {"float a[65537];", "e.fx(1) : error : an array cannot have 65537 elements\n"},
        {"float a[256][257];", "e.fx(1) : error : the array has more than 65536 elements\n"},
        {"float a[1.5];",
         "e.fx(1) : error : the size of an array must be a constant whole number\n"},
        {"float a[] = b;", "e.fx(1) : error : the size of array 'a' is not known\n"},
        {"void f() {\n a = (1;\n}", "e.fx(2) : error : expected ')' before ';'\n"},
        {"void f() {\n a = 1 +;\n b = 2D;\n}",
         "e.fx(2) : error : unexpected ';'\ne.fx(3) : error : '2D' is no number\n"},
        {"void f() {\n for (int i = 0; i < ; i++) { a; }\n b c d;\n}",
         "e.fx(2) : error : unexpected ';'\ne.fx(3) : error : unknown type 'b'\n"},
        {"void f() { if (a) { else; } }\nvoid g(",
         "e.fx(1) : error : unexpected 'else'\ne.fx(2) : error : unexpected end of the file\n"},
        {"void f() { x = 'a'; }", "e.fx(1) : error : unexpected ''a''\n"},
        {"void f() {\n", "e.fx(1) : error : '{' without '}'\n"},
        {"}\nnosuch a;",
         "e.fx(1) : error : unexpected '}'\ne.fx(2) : error : unknown type 'nosuch'\n"},
        {"struct A { A a; };", "e.fx(1) : error : struct 'A' would contain itself\n"},
        {"struct A { float x }; A a;", "e.fx(1) : error : expected ';' before '}'\n"},
        {"struct A : B { };", "e.fx(1) : error : unknown interface 'B'\n"},
        {"struct A { }; struct A { };", "e.fx(1) : error : 'A' is a type already\n"},
        {"void v; float f(void v);", "e.fx(1) : error : variables cannot be void\ne.fx(1) : error "
                                     ": parameters cannot be void\n"},
        {"float a < texture t = x; >;",
         "e.fx(1) : error : annotations are bool, int, float or string, not texture\n"},
        {"float a < string s = 1; >;",
         "e.fx(1) : error : the value of annotation 's' is no constant string\n"},
        {"float a < float s = b; >;",
         "e.fx(1) : error : the value of annotation 's' is no constant float\n"},
        {"vector<float,5> v;",
         "e.fx(1) : error : vectors and matrices have from 1 to 4 rows and columns\n"},
        {"vector<sampler,2> v;", "e.fx(1) : error : vectors and matrices are made of numbers\n"},
        {"technique T { P0 { } }", "e.fx(1) : error : expected a pass before 'P0'\n"},
        {"technique T { pass {\n A B;\n C = ;\n D = 1; } }",
         "e.fx(2) : error : expected '=' before 'B'\ne.fx(3) : error : unexpected ';'\n"},
        {"float x = 99999999999;", "e.fx(1) : error : '99999999999' is no number\n"},
        {"float x = 1e999;", "e.fx(1) : error : '1e999' is no number\n"},
    };
    for (const Case& each : cases)
        EXPECT_EQ(parse(each.source)->listing, each.text) << each.source;
}

TEST(Parser, LeavesOutTechniquesOfOtherKinds)
{
    const auto parsed =
        parse("technique10 A { pass { SetVertexShader(CompileShader(vs_4_0, f())); } }\n"
              "technique B { } float technique10;");
    EXPECT_EQ(parsed->listing, "e.fx(1) : warning : techniques of this kind are left out\n");
    ASSERT_EQ(parsed->tree.techniques.size(), 1u);
    EXPECT_EQ(parsed->tree.techniques[0].name, "B");
    EXPECT_EQ(textOf(parsed->tree), "float technique10;\n");
}

TEST(Parser, GivesUpAfterAHundredErrors)
{
    std::string source;
    for (int i = 0; i < 200; ++i)
        source += "nosuch a;\n";
    const std::string listing = parse(source)->listing;
    EXPECT_EQ(std::count(listing.begin(), listing.end(), '\n'), 100);
}
