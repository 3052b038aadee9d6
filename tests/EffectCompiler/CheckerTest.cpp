// What the checker says: in the effect's own lines and type names, of all functions of a file.
#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include <gtest/gtest.h>

#include <string>

using namespace EffectCompiler;

namespace {

std::string listingOf(const std::string& source)
{
    Context context;
    const auto effect = context.createFromText(source, "e.fx", {});
    EXPECT_EQ(effect != nullptr, context.error() == Error::eNone) << source;
    return context.listing();
}

struct Case
{
    const char* source;
    const char* listing; ///< without "e.fx("; empty where nothing is wrong
};

void expectListings(std::initializer_list<Case> cases)
{
    for (const Case& each : cases) {
        const std::string said = listingOf(each.source);
        const std::string wanted = *each.listing ? std::string("e.fx(") + each.listing + "\n" : "";
        EXPECT_EQ(said, wanted) << each.source;
    }
}

} // namespace

TEST(Checker, FindsNamesThatAreNotThere)
{
    expectListings({
        {"float f() { return nosuch; }", "1) : error : undefined variable 'nosuch'"},
        {"float f() { return nosuch(1); }", "1) : error : undefined function 'nosuch'"},
        {"float f() { { float a; } return a; }", "1) : error : undefined variable 'a'"},
        {"float f() { for (int i = 0; i < 2; i++) {} return i; }",
         "1) : error : undefined variable 'i'"},
        {"static float a = b; static float b = 1;", "1) : error : undefined variable 'b'"},
        {"struct A { float x; }; float f(A a) { return a.y; }",
         "1) : error : 'A' has no field 'y'"},
        {"struct A { float x; }; float f(A a) { return a.get(); }",
         "1) : error : 'A' has no method 'get'"},
        {"float f(float3 v) { return v.w; }", "1) : error : 'float3' has no member 'w'"},
        {"float f(float3 v) { return v.xg; }", "1) : error : 'float3' has no member 'xg'"},
        {"float f(float2x2 m) { return m._m02; }", "1) : error : 'float2x2' has no member '_m02'"},
        {"float f(float2x2 m) { return m._11_00; }",
         "1) : error : 'float2x2' has no member '_11_00'"},
        {"float f(); float g() { return f(); }",
         "1) : error : function 'f' is declared but not defined"},
        {"float4 f(float4x4 m) { return glstate.matrix.nosuch[0]; }",
         "1) : error : undefined variable 'glstate'"},
    });
}

TEST(Checker, FindsTypesThatDoNotFit)
{
    expectListings({
        {"float4 f(float3 v) { float4 c = v; return c; }",
         "1) : error : cannot convert from 'float3' to 'float4' in initialization"},
        {"float4 f(float3 v)\n{\n    float4 c;\n    c = v;\n    return c;\n}",
         "4) : error : cannot convert from 'float3' to 'float4' in assignment"},
        {"float4 f(float2x2 m) { return m; }",
         "1) : error : cannot convert from 'float2x2' to 'float4' in 'return'"},
        {"struct A { float x; }; struct B { float x; }; A f(B b) { return b; }",
         "1) : error : cannot convert from 'B' to 'A' in 'return'"},
        {"float g(float2 v) { return v.x; } float f(float x[2]) { return g(x); }",
         "1) : error : cannot convert from 'float[2]' to 'float2' in argument 1 of 'g'"},
        {"float f(float a[3], float b[2]) { a = b; return a[0]; }",
         "1) : error : cannot convert from 'float[2]' to 'float[3]' in assignment"},
        {"float3 f(float3x3 m, float2 v) { return mul(m, v); }",
         "1) : error : no function 'mul' takes (float3x3, float2)"},
        {"float2x2 f(float2x2 a, float2 b) { return a * b; }",
         "1) : error : operator '*' cannot take 'float2x2' and 'float2'"},
        {"float f(sampler2D s) { return s + 1; }",
         "1) : error : operator '+' cannot take 'sampler2D' and 'int'"},
        {"int f(float x) { return x << 1; }", "1) : error : operator '<<' needs whole numbers"},
        {"int f(float x) { return ~x; }", "1) : error : operator '~' cannot take 'float'"},
        {"bool f(float2x2 m) { return m == m; }",
         "1) : error : operator '==' cannot compare matrices"},
        {"float f(float3 v) { if (v > 0) return 1; return 0; }",
         "1) : error : the condition of 'if' must be one value, not 'bool3'"},
        {"float f(float x) { return x[0]; }", "1) : error : 'float' has no elements"},
        {"float f(float x[2]) { return x[2]; }", "1) : error : index 2 is outside of 'float[2]'"},
        {"float f(float3 v) { return v[3]; }", "1) : error : index 3 is outside of 'float3'"},
        {"float f(float3 v) { return v[1 - 2]; }", "1) : error : index -1 is outside of 'float3'"},
        {"float f(float2 v) { return v[v]; }",
         "1) : error : an index must be one number, not 'float2'"},
        {"struct A { float x; }; A f(float4 v) { return (A)v; }",
         "1) : error : cannot cast from 'float4' to 'A'"},
        {"sampler2D a; sampler3D b; float4 f(bool c) { return tex2D(c ? a : b, 0); }",
         "1) : error : '?:' cannot choose between 'sampler2D' and 'sampler3D' by 'bool'"},
        {"float4 f(sampler3D s) { return tex2D(s, 0); }",
         "1) : error : no function 'tex2D' takes (sampler3D, int)"},
        {"float4 f() { sampler2D s; return 0; }",
         "1) : error : a local variable cannot be of type 'sampler2D'"},
        {"sampler s; float4 f() { return tex2D(s, 0) + tex3D(s, 0); }",
         "1) : error : 's' is used as sampler2D and as sampler3D"},
    });
}

TEST(Checker, CountsValues)
{
    expectListings({
        {"float4 f() { return float4(1, 2, 3); }", "1) : error : 'float4' needs 4 values, not 3"},
        {"float2 f() { return float2(1, float2(2, 3)); }",
         "1) : error : 'float2' needs 2 values, not 3"},
        {"float3 f() { float3 v = {1, 2}; return v; }", "1) : error : too few values for 'float3'"},
        {"float3 f() { float3 v = {1, 2, 3, 4}; return v; }",
         "1) : error : too many values for 'float3'"},
        {"static const float2 a[2] = {1, 2, 3};", "1) : error : too few values for 'float2'"},
        {"float g(float a, float b = 1) { return a; } float f() { return g(); }",
         "1) : error : function 'g' takes 2 arguments, not 0"},
        {"float f() { return dot(float3(1, 2, 3)); }",
         "1) : error : no function 'dot' takes (float3)"},
        {"float g(float2 a) { return 1; } float g(float3 a) { return 1; }"
         " float f() { return g(1); }",
         "1) : error : several functions 'g' take (int)"},
        {"float g(float2 a) { return 1; } float g(float3 a) { return 1; }"
         " float f(float2x2 m) { return g(m); }",
         "1) : error : no function 'g' takes (float2x2)"},
        {"float4 p(uniform float k) : COLOR { return k; }\n"
         "technique t { pass p { PixelShader = compile glslf p(1, 2); } }",
         "2) : error : function 'p' has only 1 uniform parameters"},
        {"sampler2D s; float4 p(uniform float k) : COLOR { return k; }\n"
         "technique t { pass p { PixelShader = compile glslf p(s); } }",
         "2) : error : cannot convert from 'sampler2D' to 'float' for 'k' of 'p'"},
    });
}

TEST(Checker, KnowsWhatMayBeWritten)
{
    expectListings({
        {"void f(float x) { x + 1 = 2; }", "1) : error : this expression cannot be assigned to"},
        {"void f(float2 v) { v.xx = 2; }", "1) : error : this expression cannot be assigned to"},
        {"void f() { 1++; }", "1) : error : this expression cannot be assigned to"},
        {"static const float k = 1; void f() { k = 2; }", "1) : error : 'k' is constant"},
        {"void f(const float k) { k *= 2; }", "1) : error : 'k' is constant"},
        {"void g(out float x) { x = 1; } void f() { g(1); }",
         "1) : error : this expression cannot be assigned to"},
        {"void g(out float x) { x = 1; } void f() { const float k = 1; g(k); }",
         "1) : error : 'k' is constant"},
        {"void g(inout float3 x) { x = 1; } void f(float4x4 m) { g(m); }",
         "1) : error : cannot convert from 'float3' to 'float4x4' in argument 1 of 'g'"},
        {"sampler2D a, b; void f() { a = b; }", "1) : error : a sampler2D cannot be assigned"},
        {"float4 k; void f() { k.x = 1; }", ""}, // a uniform may: its copy is
    });
}

TEST(Checker, FollowsTheFlow)
{
    expectListings({
        {"float f() { }", "1) : error : function 'f' returns no value"},
        {"float f(float x) { if (x) return 1; }",
         "1) : warning : not all paths of function 'f' return a value"},
        {"float f(float x) { if (x) return 1; else return 2; }", ""},
        {"float f(float x) { while (true) { if (x) return 1; } }", ""},
        {"float f(int x) { switch (x) { case 1: return 1; default: return 2; } }", ""},
        {"float f(int x) { switch (x) { case 1: break; default: return 2; } }",
         "1) : warning : not all paths of function 'f' return a value"},
        {"float f(float x) { discard; }", ""},
        {"float f() { return; }", "1) : error : function 'f' must return a value"},
        {"void f() { return 1; }", "1) : error : function 'f' cannot return a value"},
        {"void f() { break; }", "1) : error : 'break' outside of a loop or switch"},
        {"void f(int i) { switch (i) { case 1: continue; } }",
         "1) : error : 'continue' outside of a loop"},
        {"void f(int i) { case 1: ; }", "1) : error : a case must stand in the body of a switch"},
        {"void f(int i) { switch (i) { case 1: case 1: ; } }",
         "1) : error : this case is there twice"},
        {"void f(int i) { switch (i) { case i: ; } }",
         "1) : error : a case needs a constant whole number"},
        {"float f(float x); float g(float x) { return f(x); }\nfloat f(float x) { return g(x); }",
         "1) : error : function 'g' calls itself"},
        {"float f(float x) { return f(x); }", "1) : error : function 'f' calls itself"},
    });
}

TEST(Checker, RefusesWhatIsDeclaredTwice)
{
    expectListings({
        {"float a; float a;", "1) : error : 'a' is defined twice"},
        {"void f() { float a; float a; }", "1) : error : 'a' is defined twice"},
        {"void f(float a, float a) { }", "1) : error : parameter 'a' is defined twice"},
        {"struct A { float x; float x; };", "1) : error : field 'x' is defined twice"},
        {"void f(float a) { } void f(float b) { }",
         "1) : error : function 'f' is defined twice with the same parameters"},
        {"void f(float a); float f(float b) { return b; }",
         "1) : error : function 'f' differs from its other declaration only in its result"},
        {"void f(float a) { } void f(float2 a) { }", ""},
        {"void f(float a) { { float a; } for (int i = 0; i < 1; i++) { int i; } }", ""},
    });
}

TEST(Checker, HoldsStructsToTheirInterfaces)
{
    expectListings({
        {"interface I { float get(float x); };\nstruct A : I { float get(int x) { return 1; } };",
         "2) : error : 'A' lacks the method 'get' of 'I'"},
        {"struct B { float x; };\nstruct A : B { float y; };", "2) : error : 'B' is no interface"},
        {"interface I { float get(); };\nstruct A { I i; };",
         "2) : error : field 'i' cannot be of interface 'I'"},
        {"interface I { float get(); };\nvoid f() { I i; }",
         "2) : error : a local variable cannot be of type 'I'"},
        {"interface I { float get(); }; struct A { float x; };\n"
         "float f(I i) { return i.get(); } float g(A a) { return f(a); }",
         "2) : error : cannot convert from 'A' to 'I' in argument 1 of 'f'"},
    });
}

TEST(Checker, ReportsAllFaultsOfAFileOnceEach)
{
    EXPECT_EQ(listingOf("float a() { return one; }\n"
                        "float b(float3 v) { float4 w = v; return two(v) + w.z; }\n"
                        "float c() { return one + 1; }\n"
                        "float4 d() { float4 q = nosuch; q.xyzw.w = q.nosuch; return q; }\n"),
              "e.fx(1) : error : undefined variable 'one'\n"
              "e.fx(2) : error : cannot convert from 'float3' to 'float4' in initialization\n"
              "e.fx(2) : error : undefined function 'two'\n"
              "e.fx(3) : error : undefined variable 'one'\n"
              "e.fx(4) : error : undefined variable 'nosuch'\n"
              "e.fx(4) : error : 'float4' has no member 'nosuch'\n");
}

TEST(Checker, TakesWhatIsRight)
{
    expectListings({
        {"float3 f(float4 v, int i) { float3 a = v; a += i; a = i > 1 ? a : v; return a * 2; }",
         ""},
        {"float f(bool b, int i) { return b + i * 0.5 - !b; }", ""},
        {"float3 f(float3x3 m, float4 v) { return mul(m, v) + mul(v, m); }", ""},
        {"float f(float a = 1, float b = 2) { return a; } float g() { return f() + f(1); }", ""},
        {"half4 f(fixed3 x) : COLOR { return half4(x, 1.0h); }", ""},
        {"struct A { float x; float get() { return x + this.x; } }; float f(A a) { return a.get(); "
         "}",
         ""},
        {"float clamp(float x) { return x; } float f() { return clamp(1) + clamp(1, 0, 2); }", ""},
    });
}
