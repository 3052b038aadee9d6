#include "FeatureShaders.h"

namespace {

// clang-format off
constexpr FeatureShader kShaders[] = {
    // Values given out of another type, into what GLSL cannot be given.
    {"OutOfAnotherScalar", {0.75F, 0, 0, 1}, R"(
void f(out int i) { i = 3; }
float4 main() : COLOR { float x; f(x); return float4(x / 4, 0, 0, 1); }
)"},
    {"InOutOfAnotherScalar", {0.5F, 0, 0, 1}, R"(
void f(inout int i) { i = i * 2; }
float4 main() : COLOR { float x = 1.5; f(x); return float4(x / 4, 0, 0, 1); }
)"},
    {"OutIntoSwizzle", {0.5F, 0, 0.25F, 0}, R"(
void f(out float2 v) { v = float2(.25, .5); }
float4 main() : COLOR { float4 c = 0; f(c.zx); return c; }
)"},
    {"OutIntoMatrixElements", {0.25F, 0.5F, 0, 0}, R"(
void f(out float2 v) { v = float2(.25, .5); }
float4 main() : COLOR { float2x2 m = 0; f(m._m00_m11); return float4(m._m00_m11, m._m01_m10); }
)"},
    {"OutWithIndexThatCounts", {0.5F, 0, 0.25F, 1}, R"(
void f(out int v) { v = 2; }
float4 main() : COLOR { float a[2] = {0, 0}; int i = 0; f(a[i++]); return float4(a[0] * .25, a[1], i * .25, 1); }
)"},
    {"OutIntoComponentByIndex", {0, 0.5F, 0, 1}, R"(
int ki;
void f(out float v) { v = .5; }
float4 main() : COLOR { float3 v = 0; f(v[ki - 1]); return float4(v, 1); }
)"},
    {"OutKeepsWhatIsNotSet", {0, 0.25F, 0, 1}, R"(
struct S { float a, b; };
void f(out S s, bool set) { if (set) s.a = 9; s.b = .25; }
float4 main() : COLOR { S s; f(s, false); return float4(s.a, s.b, 0, 1); }
)"},
    {"OutComesAfterCallsInLaterArguments", {0.5F, 0.25F, 0.75F, 1}, R"(
int one(int i) { return i; }
float f(inout int v, float b) { v = 2; return b; }
float4 main() : COLOR { float x = 0; int j = 1; float r = f(x, .25 * one(j++) + x); return float4(x / 4, r, (j + one(1)) * .25, 1); }
)"},
    {"ArgumentWithEffectsBeforeTheNext", {0.5F, 0.75F, 0, 1}, R"(
int add(int a, inout int v) { v += a; return v; }
float4 main() : COLOR { float a[3] = {0, 0, 2}; int i = 1; int r = add(i -= 1, a[i + 2]); r += add(++i, a[i]); return float4(a[2] * .25, r * .25, a[0], 1); }
)"},
    {"OutOfACallInACall", {0.75F, 0.5F, 0, 1}, R"(
float f(inout int i) { i += 1; return i; }
float4 main() : COLOR { float x = 0; float y = f(x) + f(x); return float4(y / 4, x / 4, 0, 1); }
)"},

    // Conversions where a statement has no room: loop headers, operands that may be skipped.
    {"WhileWithConversion", {0.75F, 0, 0, 1}, R"(
bool next(inout int i) { i++; return i < 4; }
float4 main() : COLOR { float x = 0, s = 0; while (next(x)) s += .25; return float4(s, 0, 0, 1); }
)"},
    {"ForConditionWithConversionAndContinue", {0.5F, 0, 0, 1}, R"(
bool next(inout int i) { i++; return i < 4; }
float4 main() : COLOR
{
    float s = 0;
    for (float x = 0; next(x); ) { if (x == 2) continue; s += .25; }
    return float4(s, 0, 0, 1);
}
)"},
    {"ForStepWithConversionAndContinue", {0.75F, 0, 0, 1}, R"(
void next(inout int i) { i++; }
float4 main() : COLOR
{
    float s = 0;
    for (float x = 0; x < 4; next(x)) { if (x == 1) continue; s += .25; }
    return float4(s, 0, 0, 1);
}
)"},
    {"DoWithConversionAndContinue", {0.75F, 0.75F, 0, 1}, R"(
bool next(inout int i) { i++; return i < 3; }
float4 main() : COLOR
{
    float n = 0, x = 0;
    do { n += .25; if (n == .5) continue; } while (next(x));
    return float4(n, x / 4, 0, 1);
}
)"},
    {"NestedLoopsWithConversion", {1.5F, 0, 0, 1}, R"(
bool next(inout int i) { i++; return i < 4; }
float4 main() : COLOR
{
    float s = 0;
    for (float a = 0; next(a); ) { float b = a - 1; while (next(b)) s += .25; }
    return float4(s, 0, 0, 1);
}
)"},
    {"AndSkipsItsRightSide", {0, 0.25F, 1, 1}, R"(
float kf;
bool touch(inout int i) { i++; return true; }
float4 main() : COLOR
{
    float x = 0, y = 0;
    bool no = kf > 1 && touch(x);
    bool yes = kf < 1 && touch(y);
    return float4(x, y * .25, !no && yes, 1);
}
)"},
    {"OrSkipsItsRightSide", {0, 0.25F, 1, 1}, R"(
float kf;
bool touch(inout int i) { i++; return true; }
float4 main() : COLOR
{
    float x = 0, y = 0;
    bool a = kf < 1 || touch(x);
    bool b = kf > 1 || touch(y);
    return float4(x, y * .25, a && b, 1);
}
)"},
    {"LogicSkipsCounting", {0, 0.25F, 0, 1}, R"(
float kf;
float4 main() : COLOR
{
    int i = 0, j = 0;
    if (kf > 1 && i++ >= 0) i = 8;
    if (kf < 1 && j++ >= 0) ;
    return float4(i, j * .25, 0, 1);
}
)"},
    {"ConditionalSkipsTheOther", {0.25F, 0, 0.5F, 1}, R"(
float kf;
float take(inout int i) { i++; return .25; }
float4 main() : COLOR
{
    float x = 0, y = 0;
    float r = kf < 1 ? take(x) : take(y);
    return float4(r, y, x * .5, 1);
}
)"},
    {"ElseIfWithConversion", {0.5F, 0.25F, 0, 1}, R"(
float kf;
bool touch(inout int i) { i++; return true; }
float4 main() : COLOR
{
    float x = 0, r = 0;
    if (kf > 1) r = 1; else if (touch(x)) r = .5; else r = .75;
    return float4(r, x * .25, 0, 1);
}
)"},

    // From left to right.
    {"GlobalBeforeWhoChangesIt", {0.75F, 0.5F, 0, 1}, R"(
static float g = .25;
float twice() { g *= 2; return g; }
float4 main() : COLOR { float r = g + twice(); return float4(r, g, 0, 1); }
)"},
    {"ArgumentBeforeWhoChangesIt", {0.25F, 0.5F, 0, 1}, R"(
static float g = .25;
float twice() { g *= 2; return g; }
float2 both(float a, float b) { return float2(a, b); }
float4 main() : COLOR { return float4(both(g, twice()), 0, 1); }
)"},
    {"ConstructorFromLeftToRight", {0, 0.25F, 0.5F, 0.75F}, R"(
float4 main() : COLOR { int i = 0; return float4(i++, i++, i++, i++) * .25; }
)"},
    {"OldValueBeforeIncrement", {0.875F, 0, 0, 1}, R"(
float4 main() : COLOR { float i = .25; float r = i + i++ + i; return float4(r * .5, 0, 0, 1); }
)"},
    {"CompoundTakesTheOldTarget", {0.5F, 0, 0, 1}, R"(
float set(inout float v) { v = .75; return .25; }
float4 main() : COLOR { float x = .25; x += set(x); return float4(x, 0, 0, 1); }
)"},
    {"IndexBeforeTheValue", {0.25F, 0, 0, 1}, R"(
float4 main() : COLOR { float a[2] = {0, 0}; int i = 0; a[i] = .25 * ++i; return float4(a[0], a[1], 0, 1); }
)"},
    {"IndexCountsOnce", {0.5F, 0.25F, 0.25F, 1}, R"(
float4 main() : COLOR { int a[2] = {1, 1}; int i = 0; a[i++] *= 2.5; return float4(a[0] * .25, a[1] * .25, i * .25, 1); }
)"},
    {"CommaRunsBothInOrder", {0.5F, 0.5F, 0, 1}, R"(
void f(inout int i) { i++; }
float4 main() : COLOR { float x = 0; float y = (f(x), f(x), x / 4); return float4(y, x / 4, 0, 1); }
)"},
    {"CommaInPlacesOfItsOwn", {0.75F, 0.5F, 0.25F, 1}, R"(
float2 both(float a, float b) { return float2(a, b); }
float4 main() : COLOR
{
    float x = 0, y = (x = .5, x + .25), z = max((x += 0, y), (y = .25, 0));
    float2 v = (y += 0, x);
    return float4((x += 0, z), both((x += 0, v.x), (y += 0, y)), all((x += 0, v) == (y += 0, v)));
}
)"},
    {"ChainedAssignmentConverts", {0.5F, 0.25F, 0, 1}, R"(
float4 main() : COLOR { int i; float f, g; g = (f = i = 1.75) / 2; return float4(g, i * .25, 0, 1); }
)"},
    {"AssignmentIsAValue", {0.75F, 0.25F, 0, 1}, R"(
float4 main() : COLOR { float a = .5, b; a += b = .25; return float4(a, b, 0, 1); }
)"},
    {"SwapOfMatrixElements", {0.5F, 0.25F, 0, 1}, R"(
float4 main() : COLOR { float2x2 m = {0, .25, .5, 0}; m._m01_m10 = m._m10_m01; return float4(m._m01_m10, m[0][0], 1); }
)"},
    {"SwapOfComponents", {0.5F, 0.25F, 0, 1}, R"(
float4 main() : COLOR { float2 v = float2(.25, .5); v.xy = v.yx; return float4(v, 0, 1); }
)"},

    // Operators on what GLSL has no such operator for.
    {"IntVectorTimesFraction", {0.25F, 0.5F, 0, 1}, R"(
float4 main() : COLOR { int2 v = int2(3, 5); v *= .5; return float4(v * .25, 0, 1); }
)"},
    {"IncrementOfMatrixElements", {0.25F, 0.25F, 0, 0}, R"(
float4 main() : COLOR { float2x2 m = 0; float2 old = m._m01_m10++; return float4(m._m01_m10 * .25, old); }
)"},
    {"SelectionLetsNothingThrough", {0.25F, 0.5F, 0, 1}, R"(
float kf;
float4 main() : COLOR { float2 z = kf - .5; float2 r = (z > 0) ? 1 / z : float2(.25, .5); return float4(r, 0, 1); }
)"},
    {"RemainderOfNegatives", {0.25F, 0.5F, 0.75F, 1}, R"(
int ki;
float4 main() : COLOR { int a = (ki - 9) % 3, b = 7 % -(ki + 3), c = (ki - 9) / ki; return float4(-a * .25, b * .25, -c * .25, 1); }
)"},
    {"LogicOfVectors", {1, 0, 1, 0}, R"(
float4 k;
float4 main() : COLOR { bool3 a = k.xyz > .3 || k.xyz < .3; bool3 b = !(k.xyz > .3) && a; return float4(all(a), all(b), any(b), b.y); }
)"},
    {"ScalarWithItsLastSwizzle", {0.5F, 0.5F, 0.5F, 1}, R"(
float kf;
float4 main() : COLOR { float a = kf.x; a.x *= 1; float3 b = a.xxx.zyx; return float4(b, 1); }
)"},
    {"Float1IsAScalar", {0.5F, 0.25F, 0, 1}, R"(
float4 main() : COLOR { float1 a = .5; float1 b[2] = {.25, 0}; a[0] += 0; return float4(a, b[0].x, b[1], 1); }
)"},

    // Matrices.
    {"RowsAndColumns", {0.25F, 0.5F, 0.125F, 0.25F}, R"(
float4 main() : COLOR
{
    float2x1 c = {.5, 1}; float1x2 r = {.5, .25};
    float2x2 m = mul(c, r);
    float1x1 one = mul(r, c);
    return float4(m[0][0], m[1][0], m[0][1], m[1][1]) + (one._m00 - .5);
}
)"},
    {"RowsByIndex", {0.25F, 0.5F, 0.75F, 1}, R"(
int ki;
float4 main() : COLOR { float3x2 m = {0, 0, 0, 0, .25, .5}; m[ki - 1][ki - 2] = .75; return float4(m[ki], m[ki - 1].x, 1); }
)"},
    {"InverseUndoes", {1, 0, 0, 1}, R"(
float4 main() : COLOR
{
    float4x4 m = {2, 0, 1, 3, 0, 1, 4, 1, 5, 2, 0, 1, 1, 0, 0, 2};
    float4x4 e = mul(m, inverse(m));
    float3x3 n = {2, 0, 1, 0, 1, 4, 5, 2, 0};
    float3x3 f = mul(inverse(n), n);
    float2x2 p = {2, 1, 1, 3};
    return float4(e[0][0] * e[1][1] * e[2][2] * e[3][3] * f[0][0] * f[1][1] * f[2][2],
                  abs(e[0][1]) + abs(e[1][2]) + abs(e[3][0]) + abs(e[2][3]) + abs(f[0][1]) + abs(f[2][0]),
                  mul(inverse(p), p)[0][1], mul(p, inverse(p))[1][1]);
}
)"},
    {"Determinants", {0.5F, 0.25F, 0.5F, 1}, R"(
float4 main() : COLOR
{
    float2x2 a = {2, 1, 1, .75};
    float3x3 b = {.5, 0, 0, 9, .5, 0, 9, 9, 1};
    float4x4 c = {0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, .5, 0, 0, 1, 0};
    return float4(determinant(a), determinant(b), determinant(c), 1);
}
)"},
    {"MatrixOfMatrixAndCasts", {0.25F, 0.5F, 0.75F, 1}, R"(
float4 main() : COLOR { float2x2 m = {.25, .5, .75, 1}; float4 v = (float4)m; float2x2 n = (float2x2)v; return float4(n[0], n[1]); }
)"},
    {"MatrixFilledByANumber", {0.5F, 0.5F, 1, 0.25F}, R"(
float kf;
float4 main() : COLOR { float2x2 m = kf; m *= m; m += .25; float3x3 n = kf * 2; return float4(m[0][1], m[1][0], n[2][1], (m - .25)[0][0]); }
)"},
    {"StaticMatrixOfMatrices", {0.25F, 0.5F, 0, 1}, R"(
static const float2x2 a = {.25, 0, 0, .5};
static const float2x2 b = float2x2((float2x2)((float2x2)a._m00)._m00 * 0 + a);
float4 main() : COLOR { return float4(b[0][0], b[1][1], b[0][1], 1); }
)"},

    // Arrays of arrays.
    {"RowOfAnArray", {0.75F, 0.5F, 0, 1}, R"(
float sum(float a[3]) { return a[0] + a[1] + a[2]; }
float4 main() : COLOR
{
    float a[2][3] = {{0, 0, 0}, {.25, .25, .25}};
    float r = sum(a[1]);
    a[0] = a[1]; a[0][2] = 0;
    return float4(r, sum(a[0]), 0, 1);
}
)"},
    {"RowGivenOut", {0.25F, 0.5F, 0, 1}, R"(
int ki;
void fill(out float a[2], float x) { a[0] = x; a[1] = 2 * x; }
float4 main() : COLOR { float a[3][2]; fill(a[ki], .25); return float4(a[2][0], a[ki][1], 0, 1); }
)"},
    {"ThreeDimensionsByIndex", {0.25F, 0.5F, 0, 1}, R"(
int ki;
static const float2 t[2][2][2] = {{{float2(0, 0), {0, 0}}, {{0, 0}, {0, 0}}}, {{{0, 0}, {0, 0}}, {{0, 0}, {.25, .5}}}};
float4 main() : COLOR { int i = ki - 1; return float4(t[i][i][i], t[0][i][1].x, 1); }
)"},
    {"ArrayOfArraysInAStruct", {0.25F, 0.5F, 0, 1}, R"(
struct S { float w[2][2]; float x; };
float get(S s, int i, int j) { return s.w[i][j]; }
float4 main() : COLOR { S s = {{{0, .25}, {.5, 0}}, 1}; s.w[1][1] += s.w[0][0]; return float4(get(s, 0, 1), get(s, 1, 0), s.w[1][1], s.x); }
)"},
    {"FlatListFillsAll", {0.5F, 0.25F, 0.75F, 1}, R"(
struct S { float2 a; float b[2]; };
float4 main() : COLOR { float2 h = {.5, .25}; S s[2] = {h, 0, 0, 0, 0, .75, 1}; return float4(s[0].a, s[1].b[0], s[1].b[1]); }
)"},

    // Structs, methods, interfaces.
    {"MethodsWriteAndCallEachOther", {0.75F, 0.5F, 0, 1}, R"(
struct Counter
{
    float n;
    void add(float n) { this.n += n; }
    float twice() { add(.25); add(n); return n; }
};
float4 main() : COLOR { Counter a[2]; a[0].n = 9; a[1].n = 0; float r = a[1].twice(); a[1].add(r / 2); return float4(a[1].n, r, a[0].n - 9, 1); }
)"},
    {"MethodOfWhatACallReturns", {0.5F, 0, 0, 1}, R"(
struct A { float x; float next() { x += .25; return x; } };
A make(float x) { A a = {x}; return a; }
float4 main() : COLOR { return float4(make(.25).next(), 0, 0, 1); }
)"},
    {"MethodOfAUniform", {0.75F, 0.5F, 0.25F, 1}, R"(
struct A { float x; float y; float sum() { return x + y; } void swap() { float t = x; x = y; y = t; } };
uniform A ustr;
float4 main() : COLOR { float s = ustr.sum(); float x = ustr.x; ustr.swap(); return float4(s, x, ustr.x, 1); }
)"},
    {"InterfaceAsParameter", {0.25F, 0.75F, 0, 1}, R"(
interface Shape { float area(float s); };
struct Square : Shape { float w; float area(float s) { return w * w * s; } };
struct Nothing : Shape { float area(float s) { return .75 * s; } };
float measure(Shape shape, float s) { return shape.area(s); }
float outer(Shape shape) { return measure(shape, 1); }
float4 main() : COLOR { Square a; a.w = .5; Nothing b; return float4(outer(a), outer(b), 0, 1); }
)"},
    {"InterfaceFromThePass", {0.5F, 0, 0, 1}, R"(
interface Light { float power(); };
struct Lamp : Light { float p; float power() { return p * 2; } };
static Lamp lamp = {.25};
float4 main(uniform Light light) : COLOR { return float4(light.power(), 0, 0, 1); }
technique t { pass p { FragmentProgram = compile glslf main(lamp); } }
)"},
    {"CastClearsAStruct", {0, 0.25F, 0, 0}, R"(
struct S { float4 c; float a[2]; int i; bool b; float2x2 m; };
float4 main() : COLOR { S s = (S)0; s.c.y = .25; return s.c + s.a[1] + s.i + s.b + s.m[1][0]; }
)"},
    {"WhatIsNotSetIsZero", {0, 0.25F, 0, 0}, R"(
struct PO { float4 c : COLOR; };
PO main() { PO o; o.c.y = .25; return o; }
)"},
    {"NoReturnIsZero", {0, 0, 0, 0}, R"(
float kf;
float4 main() : COLOR { if (kf > 1) return 1; }
)"},

    // Names.
    {"NamesThatGlslKeeps", {0.25F, 0.5F, 0.75F, 1}, R"(
float texture2D__x(float texture) { return texture; }
float result(float fx_fmod) { return fx_fmod; }
struct vec4 { float self; float gl_x; };
float4 main() : COLOR { vec4 tmp; tmp.self = .25; tmp.gl_x = .5; float main_1 = .75; return float4(texture2D__x(tmp.self), result(tmp.gl_x), main_1, 1); }
)"},
    {"NamesInInnerBlocks", {0.25F, 0.5F, 0.75F, 1}, R"(
float a;
float b(float a) { { float a = .5; { float a = .75; return a; } } }
float4 main() : COLOR { float a = .25; float c = a; { float a = .5; c += a - .25; } { int a = 1; c += a - 1; } return float4(a, c, b(a), 1); }
)"},
    {"VariableNamedAsItsFunction", {0.25F, 0, 0, 1}, R"(
float blur(float blur) { return blur; }
float4 main() : COLOR { float main = .25; return float4(blur(main), 0, 0, 1); }
)"},

    // Globals.
    {"GlobalsSetInOrder", {0.25F, 0.5F, 0.75F, 1}, R"(
float kf;
float half_of(float x) { return x / 2; }
static float a = half_of(kf);
static float b = a * 2;
static float c = a + b;
float4 main() : COLOR { return float4(a, b, c, 1); }
)"},
    {"UniformWrittenByACall", {0.5F, 0.25F, 0, 1}, R"(
float4 k;
float2 m4u = {.5, 0};
void f(inout float x) { x *= 2; }
float4 main() : COLOR { float old = k.x; f(k.x); return float4(k.x, old, m4u.y, 1); }
)"},
    {"OverloadsByScalar", {0.25F, 0.5F, 0.75F, 1}, R"(
float f(int x) { return .25; }
float f(float x) { return .5; }
float f(bool x) { return .75; }
float f(float3 x) { return 1; }
float4 main() : COLOR { return float4(f(1), f(1.0h), f(true), f(float3(1, 2, 3))); }
)"},

    // Functions of the language.
    {"ResultsGivenOut", {0.5F, 0.5F, 0.25F, 1}, R"(
float4 main() : COLOR
{
    float2 c; half s; sincos(0, s, c.y);
    int i; float f = modf(2.25, i);
    float e; float m = frexp(4, e);
    return float4(s + c.y / 2, i * .25, f, ldexp(m, e) / 4);
}
)"},
    {"Rounding", {0.25F, 0.5F, 0.75F, 1}, R"(
float kf;
float4 main() : COLOR { float x = kf * 3; return float4(trunc(-x) * -.25, round(x) * .25, ceil(x + 1) * .25, sign(x)); }
)"},
    {"NotFinite", {0, 1, 0, 1}, R"(
float kf;
float4 main() : COLOR { float z = kf - .5; float3 v = float3(1 / z, kf, 1); return float4(isfinite(v).x, isinf(v).x, isnan(v).y, isfinite(v).y); }
)"},
    {"HyperbolicFunctions", {0.75F, 0.6F, 0.5F, 1}, R"(
float4 main() : COLOR { float l = log(2); return float4(sinh(l), tanh(l), cosh(l) - .75, tanh(1000)); }
)"},
    {"TexturesByArgument", {1, 0, 0, 1}, R"(
sampler2D Tex0[2];
sampler1D Ramp;
float4 pick(sampler s, float2 at) { return tex2D(s, at); }
float4 main(float2 uv : TEXCOORD0) : COLOR { return pick(Tex0[0], uv) * h3tex2D(Tex0[1], uv).xxxx * f1tex1D(Ramp, .5) * float4(1, 1, 1, 1); }
)"},
    {"TextureLevels", {1, 0, 0, 1}, R"(
sampler2D Tex0; samplerCUBE Cube; sampler3D Lut; samplerRECT Rect0; sampler1D Ramp;
float4 main(float2 uv : TEXCOORD0) : COLOR
{
    float4 c = tex2Dlod(Tex0, float4(uv, 0, 0)) * texRECTproj(Rect0, float3(1, 1, 2));
    c *= tex2Dgrad(Tex0, uv, 0, 0) * texRECTlod(Rect0, .5) * tex1Dlod(Ramp, .5) * tex1Dbias(Ramp, 0);
    return c + texCUBElod(Cube, float4(0, 0, 1, 0)).r + tex3Dlod(Lut, .5).g - tex3Dproj(Lut, 1).g;
}
)"},
    {"CallsThatOnlyDiscardAreMade", {-9, -9, -9, -9}, R"(
float kf;
float stop(float x) { if (x > 0) discard; return x; }
float4 main() : COLOR { stop(kf), 1; return 0; }
)"},
    {"ConstantsOfFunctions", {0.5F, 0.25F, 0, 1}, R"(
static const float a = saturate(sin(0) + .5), b[2] = {max(a, .25) / 2, a > .25 && a < 1 ? 0 : 1};
static const float3 c = normalize(float3(0, 0, 1)) * round(a + .1);
float4 main() : COLOR { return float4(a, b[0], b[1], c.z); }
)"},
    {"SamplerInAStruct", {1, 0, 0, 1}, R"(
struct Layer { sampler2D picture; float kf; };
uniform Layer layer;
float4 main(float2 uv : TEXCOORD0) : COLOR { return tex2D(layer.picture, uv) + layer.kf; }
)"},
    {"DiscardInACall", {0.25F, 0, 0, 1}, R"(
float kf;
float stop(float x) { if (x < 0) discard; return x; }
float4 main() : COLOR { clip(float3(kf, 1, 2)); return float4(stop(kf) / 2, 0, 0, 1); }
)"},
};

/// What GLSL 1.20 cannot express.
constexpr FeatureShader kLaterShaders[] = {
    {"SwitchFallsThrough", {0.75F, 0.25F, 0, 1}, R"(
int ki;
float f(int i) { switch (i) { case 0: return 0; case -1: default: return .25; case 2: case 3: return .75; } }
float4 main() : COLOR { float r = 0; switch (ki) { case 1: r = 9; case 2: r += .25; case 3: r += .5; break; default: r = 9; } return float4(r, f(-1), f(0), 1); }
)"},
    {"SwitchInALoop", {0.75F, 0, 0, 1}, R"(
static const int kTwo = 2;
float4 main() : COLOR
{
    float r = 0;
    for (int i = 0; i < 5; i++) { switch (i) { case 1: continue; case kTwo: { float r = 9; break; } case 4: break; default: r += .25; } if (i == 4) r += .25; }
    return float4(r, 0, 0, 1);
}
)"},
    {"Bits", {0.75F, 0.25F, 0.5F, 1}, R"(
int ki;
float4 main() : COLOR { int a = (ki | 1) & 7; int2 b = int2(ki, 4) >> 1; a ^= 0; a <<= 1; return float4(a / 8.0, b.x * .25, b.y * .25, ~ki == -3); }
)"},
    {"UnsignedNumbers", {0.5F, 1, 0.25F, 1}, R"(
unsigned int half_of(unsigned int x) { return x / 2u; }
float4 main() : COLOR { unsigned int a = 4, b = a - 3; return float4(half_of(a) * .25, b > 0, b * .25, a == 4); }
)"},
    {"TextureSizes", {0.5F, 0.5F, 0, 1}, R"(
sampler2D Tex0;
float4 main() : COLOR { int3 s = tex2Dsize(Tex0, 0); return float4(s / 4.0, tex2Dfetch(Tex0, 0).r); }
)"},
};
// clang-format on

} // namespace

std::span<const FeatureShader> trapShaders()
{
    return kShaders;
}

std::span<const FeatureShader> laterShaders()
{
    return kLaterShaders;
}
