#include "FeatureShaders.h"

namespace {

// clang-format off
constexpr FeatureShader kShaders[] = {
    {"Basic", {1, 0, 0, 1}, R"(
sampler2D Tex0;
float4 main(float2 uv:TEXCOORD0):COLOR { return tex2D(Tex0,uv);})"},
    {"UniformDefault", {0.25F, 0.5F, 0.75F, 1}, R"(
uniform float4 k = {.25,.5,.75,1};
float4 main(float2 uv:TEXCOORD0):COLOR0 { return k;})"},
    {"GenericSampler", {1, 0, 0, 1}, R"(
sampler Tex0;
float4 main(float2 uv:TEXCOORD0):COLOR { return tex2D(Tex0,uv);})"},
    {"SamplerStateBlock", {1, 0, 0, 1}, R"(
texture T;
sampler2D Tex0 = sampler_state { Texture = <T>; MinFilter = Linear; };
float4 main(float2 uv:TEXCOORD0):COLOR { return tex2D(Tex0,uv);})"},
    {"Annotations", {0.5F, 0.5F, 0.5F, 0.5F}, R"(
float kf < string UIName="x";
float UIMin=0.0;
> = 0.5;
float4 main(float2 uv:TEXCOORD0):COLOR { return kf;})"},
    {"HalfFixed", {0.25F, 0.5F, 0.75F, 1}, R"(
float4 k;
fixed4 f(half3 a){ fixed3 b=a; return fixed4(b,1.0h);}
half4 main(half2 uv:TEXCOORD0):COLOR { return f(k.rgb);})"},
    {"SplatTrunc", {0.5F, 0.5F, 0.5F, 0.25F}, R"(
float4 k;
float4 main(float2 uv:TEXCOORD0):COLOR { float4 a=0.5; float3 b=a; float2 c=b; a.a=k;
    return float4(c,c.x,a.a);})"},
    {"ImplicitIntFloat", {0.5F, 1, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { int i=1; float x=i*0.5; float y=max(0,1); int
    j=0.75; return float4(x,y,j,1);})"},
    {"BoolArith", {1, 0, 1, 1}, R"(
bool kb;
float4 main(float2 uv:TEXCOORD0):COLOR { bool b=uv.x<0.5; float f=b; float
    g=(uv.x>0.5)*1.0; return float4(f,g,kb?1:0,1);})"},
    {"TernaryVec", {1, 0, 0.5F, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float3 a={0,1,0.5}; float3
    r=(a<0.5)?float3(1,1,1):float3(0,0,0.5); r=(a>0.4 && a<0.6)? 0.5:r; return
    float4(r,1);})"},
    {"SwizzleScalar", {0.5F, 0.5F, 0.5F, 1}, R"(
float kf;
float4 main(float2 uv:TEXCOORD0):COLOR { float3 a=kf.xxx; a.rg*=1; return
    a.xyzz.xyzw*float4(1,1,1,2);})"},
    {"SwizzleLvalue", {0.5F, 0.25F, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float4 c=0; c.gr=float2(0.25,0.5); c.a+=1;
    return c;})"},
    {"MatrixCtorMul", {0.0625F, 0.125F, 0.1875F, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float3x3 m=float3x3(1,0,0, 2,0,0, 3,0,0);
    float3 v=mul(m,float3(0.0625,9,9)); return float4(v,1);})"},
    {"MatrixVm", {1, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float3x3 m=float3x3(1,0,0, 2,0,0, 3,0,0);
    float3 v=mul(float3(0.5,0.25,0),m); return float4(v,1);})"},
    {"MatrixIndex", {0.5F, 0.25F, 0.75F, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float2x3 m={0,.5,0, 0,.25,.75}; return
    float4(m[0][1],m._m11,m[1].z,1);})"},
    {"MatrixUniform", {0.0625F, 0.25F, 0.75F, 1}, R"(
float4x4 m4;
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(m4[0].y,m4._m10,m4[3][0],1);})"},
    {"MatrixUniformMul", {0.1875F, 0.4375F, 0.6875F, 0.9375F}, R"(
float4x4 m4;
float4 main(float2 uv:TEXCOORD0):COLOR { return mul(m4,float4(0,0,0,1));})"},
    {"NonsquareUniform", {0.0F, 0.25F, 0.5F, 1}, R"(
float3x4 m34;
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(mul(m34,float4(1,0,0,0)),1);})"},
    {"MatrixRowsCtor", {0.5F, 0.25F, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float3x3
    m=float3x3(float3(.5,0,0),float3(.25,0,0),float3(0,0,0)); m[2]=float3(0,0,0); float3
    c0=transpose(m)[0]; return float4(c0,1);})"},
    {"MatrixScaleArith", {0.5F, 0.25F, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float2x2 m={1,0,0,.5}; m=m*0.5; m=m+m-m; return
    float4(m[0][0],m[1][1],m[0][1],1);})"},
    {"StaticConstArr", {0.5F, 0.25F, 0.125F, 1}, R"(
static const float w[3]={.5,.25,.125};
float4 main(float2 uv:TEXCOORD0):COLOR { float3 r=0; for(int i=0;i<3;i++) r[i]=w[i];
    return float4(r,1);})"},
    {"ConstArrLocal", {0.875F, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { const float w[]={.5,.25,.125}; float s=0;
    for(int i=0;i<3;++i) s+=w[i]; return float4(s,0,0,1);})"},
    {"ConstArrVec", {0.5F, 0.25F, 0, 1}, R"(
const float2 o[2]={{.5,0},{0,.25}};
float4 main(float2 uv:TEXCOORD0):COLOR { float2 s=0; for(int i=0;i<2;++i) s+=o[i];
    return float4(s,0,1);})"},
    {"ConstGlobalNonstatic", {0.5F, 0, 0, 1}, R"(
const float PI2 = 0.5;
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(PI2,0,0,1);})"},
    {"UniformArray", {0.1F, 0.2F, 0.3F, 1}, R"(
float ua[3];
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(ua[0],ua[1],ua[2],1);})"},
    {"StaticMutable", {0.5F, 0, 0, 1}, R"(
static float g=0.25;
void f(){ g*=2; }
float4 main(float2 uv:TEXCOORD0):COLOR { f(); return float4(g,0,0,1);})"},
    {"OutInout", {0.5F, 0.75F, 0, 1}, R"(
void f(in float a, out float b, inout float c){ b=a*2; c+=b; }
float4 main(float2 uv:TEXCOORD0):COLOR { float x,y=uv.y; f(uv.x,x,y); return
    float4(x,y,0,1);})"},
    {"OutImplicitConv", {0.5F, 0, 0, 1}, R"(
void f(out half3 b){ b=half3(.5,0,0);}
float4 main(float2 uv:TEXCOORD0):COLOR { float4 r=1; f(r.rgb); return r;})"},
    {"ParamDefault", {0.75F, 0, 0, 1}, R"(
float f(float a, float b=0.5){return a+b;}
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(f(uv.x),0,0,1);})"},
    {"Overload", {0.25F, 0.5F, 0, 1}, R"(
float f(float a){return a;}
float f(float2 a){return a.x+a.y;}
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(f(uv.x),f(uv),0,1);})"},
    {"StructIo", {0.25F, 0.25F, 0, 1}, R"(
struct VO{ float4 pos:POSITION; float4 col:COLOR0; float2 uv:TEXCOORD0; float3
    n:TEXCOORD3; };
struct PO{ float4 c:COLOR0; };
PO main(VO IN){ PO o; o.c=float4(IN.uv,0,1); return o;})"},
    {"StructOutParam", {0.25F, 0.25F, 0, 1}, R"(
struct PO{ float4 c:COLOR0; };
void main(in float2 uv:TEXCOORD0, out PO o){ o.c=float4(uv,0,1);})"},
    {"OutColorParam", {0.25F, 0.25F, 0, 1}, R"(
void main(float2 uv:TEXCOORD0, out float4 oc:COLOR){ oc=float4(uv,0,1);})"},
    {"Mrt", {0.25F, 0.25F, 0, 1}, R"(
struct PO{ float4 c:COLOR0; float4 d:COLOR1;};
PO main(float2 uv:TEXCOORD0){ PO o; o.c=float4(uv,0,1); o.d=0; return o;})"},
    {"Wpos", {0.5F, 0.5F, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0, float4 p:WPOS):COLOR { return
    float4(abs(p.x-4.0)<1,0.5,0,1)*float4(.5,1,1,1);})"},
    {"Vpos", {0.5F, 0.5F, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0, float2 p:VPOS):COLOR { return
    float4(abs(p.x-4.0)<1.6,0.5,0,1)*float4(.5,1,1,1);})"},
    {"Face", {1, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0, float f:FACE):COLOR { return float4(f>0?1:0,0,0,1);})"},
    {"ColorIn", {1, 0, 1, 1}, R"(
float4 main(float4 c:COLOR0, float2 uv:TEXCOORD0):COLOR { return c;})"},
    {"TexcoordMulti", {0.25F, 0.75F, 0, 1}, R"(
float4 main(float2 a:TEXCOORD0, float2 b:TEXCOORD1):COLOR { return float4(a.x,b.x,0,1);})"},
    {"TexcoordFloat4", {0.25F, 0.25F, 0, 1}, R"(
float4 main(float4 a:TEXCOORD0):COLOR { return float4(a.xyz,1);})"},
    {"InputModified", {0.5F, 0.25F, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { uv.x*=2; return float4(uv,0,1);})"},
    {"UniformEntryParam", {0.5F, 0.5F, 0.5F, 0.5F}, R"(
float4 main(float2 uv:TEXCOORD0, uniform float amt=0.5):COLOR { return amt;})"},
    {"UniformEntrySampler", {1, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0, uniform sampler2D Tex0):COLOR { return tex2D(Tex0,uv);})"},
    {"SamplerFnParam", {1, 0, 0, 1}, R"(
sampler2D Tex0;
float4 g(sampler2D s,float2 u){return tex2D(s,u);}
float4 main(float2 uv:TEXCOORD0):COLOR { return g(Tex0,uv);})"},
    {"SamplerFnParam2", {1, 0, 0, 1}, R"(
sampler2D Tex0;
sampler2D Tex1;
float4 h(sampler2D s,float2 u){return tex2D(s,u);}
float4 g(uniform sampler2D s,float2 u){return h(s,u);}
float4 main(float2 uv:TEXCOORD0):COLOR { return max(g(Tex0,uv),g(Tex1,uv)*0);})"},
    {"SamplerGenericParam", {1, 0, 0, 1}, R"(
sampler Tex0;
float4 g(sampler s,float2 u){return tex2D(s,u);}
float4 main(float2 uv:TEXCOORD0):COLOR { return g(Tex0,uv);})"},
    {"Tex2Dlod", {1, 0, 0, 1}, R"(
sampler2D Tex0;
float4 main(float2 uv:TEXCOORD0):COLOR { return tex2Dlod(Tex0,float4(uv,0,0));})"},
    {"Tex2Dbias", {1, 0, 0, 1}, R"(
sampler2D Tex0;
float4 main(float2 uv:TEXCOORD0):COLOR { return tex2Dbias(Tex0,float4(uv,0,0));})"},
    {"Tex2Dproj", {1, 0, 0, 1}, R"(
sampler2D Tex0;
float4 main(float2 uv:TEXCOORD0):COLOR { return
    tex2Dproj(Tex0,float4(uv*2,0,2))+0*tex2Dproj(Tex0,float3(uv,1));})"},
    {"Tex2Dgrad", {1, 0, 0, 1}, R"(
sampler2D Tex0;
float4 main(float2 uv:TEXCOORD0):COLOR { return tex2D(Tex0,uv,ddx(uv),ddy(uv));})"},
    {"Tex2DFloat4arg", {1, 0, 0, 1}, R"(
sampler2D Tex0;
float4 main(float4 uv:TEXCOORD0):COLOR { return tex2D(Tex0,uv);})"},
    {"TextureAliasH4", {1, 0, 0, 1}, R"(
sampler2D Tex0;
half4 main(float2 uv:TEXCOORD0):COLOR { half4 c=h4tex2D(Tex0,uv); return c;})"},
    {"Tex1D", {1, 0, 0, 1}, R"(
sampler1D Ramp;
float4 main(float2 uv:TEXCOORD0):COLOR { return tex1D(Ramp,uv.x);})"},
    {"Tex3D", {0.25F, 0.25F, 0.5F, 1}, R"(
sampler3D Lut;
float4 main(float2 uv:TEXCOORD0):COLOR { return tex3D(Lut,float3(uv,0.5));})"},
    {"TexCUBE", {0.0F, 1, 0, 1}, R"(
samplerCUBE Cube;
float4 main(float2 uv:TEXCOORD0):COLOR { return texCUBE(Cube,float3(0,0,1));})"},
    {"TexRECT", {1, 0, 0, 1}, R"(
samplerRECT Rect0;
float4 main(float2 uv:TEXCOORD0):COLOR { return texRECT(Rect0,float2(0.5,0.5));})"},
    {"Tex2DOffset", {1, 0, 0, 1}, R"(
sampler2D Tex0;
float4 main(float2 uv:TEXCOORD0):COLOR { float2 s=1.0/2.0; return
    tex2D(Tex0,uv+s*0).rgba;})"},
    {"Intrinsics1", {0.5F, 0.5F, 0.25F, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float a=saturate(1.5)*frac(2.5); float
    b=lerp(0,1,0.5); float c=fmod(2.25,1); return float4(a,b,c,step(0.5,0.6));})"},
    {"Intrinsics2", {1, 0.5F, 0.5F, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float s,c; sincos(0,s,c); float a=atan2(0,1)+c;
    float b=rsqrt(4); float d=exp2(-1); return float4(a,b,d,log2(2));})"},
    {"Intrinsics3", {1, 1, 0.5F, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { bool a=any(float2(0,1)); bool
    b=all(float3(1,1,1)); float l=log10(10)*0.5; return float4(a,b,l,isnan(uv.x)?0:1);})"},
    {"Intrinsics4", {0.5F, 1, 0.25F, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float i; float f=modf(1.5,i); float
    s=smoothstep(0,1,2); float d=distance(uv,float2(0.5,0.25)); return
    float4(f,s,d,length(normalize(uv)));})"},
    {"IntrinsicsLit", {1, 0.5F, 0.25F, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { return lit(.5,.5,2);})"},
    {"IntrinsicsScalarvec", {0.5F, 0.5F, 0.5F, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float3 a=max(float3(0,.5,.25),0.5);
    a=clamp(a,0,1); a=min(1,a); a=pow(a,1); a=lerp(a,float3(.5,.5,.5),1); return
    float4(a,1);})"},
    {"FloatMod", {0.25F, 0.5F, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float a=2.25%1.0; int b=5%3; return
    float4(a,b*0.25,0,1);})"},
    {"LoopsBreak", {0.75F, 0.5F, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float s=0; int i=0; while(true){ i++; if(i>10)
    break; if(i%2==0) continue; if(i>5) break; s+=0.25;} float u=0;
    do{u+=0.25;}while(u<0.5); return float4(s,u,0,1);})"},
    {"LoopFloatCounter", {0.75F, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float s=0; for(float x=-1;x<=1;x+=1.0) s+=0.25;
    return float4(s,0,0,1);})"},
    {"EarlyReturn", {0.25F, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { if(uv.x<0.5) return float4(uv.x,0,0,1); else
    if(uv.y<.5) return 0; return 1;})"},
    {"Discard", {0.25F, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { if(uv.x>0.9) discard; clip(1-uv.x); return
    float4(uv.x,0,0,1);})"},
    {"CommaShadow", {0.5F, 0.25F, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float a=0,b=0; for(int i=0,j=1;i<2;i++,j++){
    float a=1; b+=0.125*a; } a=.5; return float4(a,b,0,1);})"},
    {"ForScopeRedecl", {0.5F, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float a=0; for(int i=0;i<2;i++) a+=.125;
    for(int i=0;i<2;i++) a+=.125; return float4(a,0,0,1);})"},
    {"KeywordIds", {0.25F, 0.25F, 0.5F, 1}, R"(
float4 main(float2 input:TEXCOORD0):COLOR { float sample=input.x; float point_=0; float4
    output=float4(sample,input.y,.5,1); return output;})"},
    {"KeywordIds2", {0.25F, 0.5F, 0.5F, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float point=uv.x; float line=.5; float
    texture1=.5; float filter=1; return float4(point,line,texture1,filter);})"},
    {"KeywordTarget", {0.25F, 0.5F, 0.5F, 1}, R"(
float mod(float a){return a;}
float4 mix(float4 v){return v;}
float4 main(float2 attribute:TEXCOORD0):COLOR { float vec3=attribute.x; float
    varying=.5; return mix(float4(mod(vec3),varying,.5,1));})"},
    {"KeywordIds3", {0.25F, 0.5F, 0.5F, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float linear=uv.x; float centroid=.5; float
    precise=.5; float shared=1; float triangle=0; float unorm=0;  return
    float4(linear,centroid,precise,shared);})"},
    {"CastC", {0.5F, 0.25F, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float3 a=(float3)0.5; int i=(int)1.9; float2
    b=(float2)float4(.5,.25,0,0); float x=(half)b.y; return float4(a.x*i,x,0,1);})"},
    {"ArrayParam", {0.75F, 0, 0, 1}, R"(
float s(float a[3]){ return a[0]+a[1]+a[2];}
float4 main(float2 uv:TEXCOORD0):COLOR { float v[3]; v[0]=v[1]=v[2]=.25; return
    float4(s(v),0,0,1);})"},
    {"StructNested", {0.5F, 0.25F, 0, 1}, R"(
struct A{float x; float2 y[2];};
struct B{A a; float z;};
float4 main(float2 uv:TEXCOORD0):COLOR { B b; b.a.x=.5; b.a.y[1]=uv; b.z=0; return
    float4(b.a.x,b.a.y[1].y,b.z,1);})"},
    {"StructInit", {0.5F, 0.25F, 0, 1}, R"(
struct A{float x; float y;};
float4 main(float2 uv:TEXCOORD0):COLOR { A a={.5,.25}; return float4(a.x,a.y,0,1);})"},
    {"StructUniform", {0.5F, 0.25F, 0, 1}, R"(
struct A{float x; float y;};
uniform A ustr;
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(ustr.x,ustr.y,0,1);})"},
    {"Typedef", {0.25F, 0, 0, 1}, R"(
typedef float3 vec_t;
typedef float arr[2];
float4 main(float2 uv:TEXCOORD0):COLOR { vec_t a=0; a.x=uv.x; return float4(a,1);})"},
    {"MacroPaste", {0.25F, 0, 0, 1}, R"(
#define CAT(a,b) a##b
#define MK(n) float CAT(f_,n)(float x){return x;}
MK(one)
#if defined(PROFILE) || 1
#define E f_one
#endif
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(E(uv.x),0,0,1);})"},
    {"FnPrototype", {0.25F, 0, 0, 1}, R"(
float f(float a);
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(f(uv.x),0,0,1);}
float f(float a){return a;})"},
    {"VoidParam", {0.5F, 0, 0, 1}, R"(
float f(void){return .5;}
float4 main(void):COLOR { return float4(f(),0,0,1);})"},
    {"ConstIn", {0.25F, 0, 0, 1}, R"(
float f(const in float a, const float b){return a*b;}
float4 main(const in float2 uv:TEXCOORD0):COLOR { return float4(f(uv.x,1),0,0,1);})"},
    {"InlineFn", {0.25F, 0, 0, 1}, R"(
inline float f(float a){return a;}
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(f(uv.x),0,0,1);})"},
    {"VectorMatrixKw", {0.25F, 0, 0, 1}, R"(
vector<float,3> f(float a){return a;}
float4 main(float2 uv:TEXCOORD0):COLOR { matrix<float,2,2> m={1,0,0,1}; return
    float4(f(uv.x).x*m[0][0],0,0,1);})"},
    {"LogicShort", {0.5F, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float a=0; if(!(uv.x>.5) && (uv.y<.5 ||
    uv.x==1)) a=.5; return float4(a,0,0,1);})"},
    {"IfFloatCond", {0.5F, 0, 0, 1}, R"(
float kf;
float4 main(float2 uv:TEXCOORD0):COLOR { float a=0; if(kf) a=.5; if(!kf) a=1; return
    float4(a,0,0,1);})"},
    {"VecAssignFromInt", {1, 1, 1, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float4 a=1; int3 b=int3(1,1,1); a.rgb=b; return
    a;})"},
    {"StructMethod", {0.25F, 0, 0, 1}, R"(
struct A{ float x; float get(){return x;} };
float4 main(float2 uv:TEXCOORD0):COLOR { A a; a.x=uv.x; return float4(a.get(),0,0,1);})"},
    {"Interface", {0.25F, 0, 0, 1}, R"(
interface I{ float get(float x); };
struct A:I{ float s; float get(float x){return x*s;} };
float4 main(float2 uv:TEXCOORD0):COLOR { A a; a.s=1; return float4(a.get(uv.x),0,0,1);})"},
    {"VecIndexDyn", {0.5F, 0, 0, 1}, R"(
int ki;
float4 k;
float4 main(float2 uv:TEXCOORD0):COLOR { float4 a=float4(0,0,.5,0); return
    float4(a[ki],0,0,1);})"},
    {"ArrIndexDyn", {0.5F, 0, 0, 1}, R"(
int ki;
float4 main(float2 uv:TEXCOORD0):COLOR { float a[4]; a[0]=0;a[1]=0;a[2]=.5;a[3]=0;
    return float4(a[ki],0,0,1);})"},
    {"LengthAttr", {0.75F, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float a[3]; return float4(a.length*0.25,0,0,1);})"},
    {"PackMatrixCol", {0.25F, 0.5F, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float4x4 m=0; m[0]=float4(.25,0,0,0);
    m._m10=.5; return float4(m._m00_m10,0,1);})"},
    {"SemanticOnGlobal", {0.5F, 0.5F, 0.5F, 0.5F}, R"(
float kf : AMOUNT = 0.5;
float4 main(float2 uv:TEXCOORD0):COLOR { return kf;})"},
    {"RegisterBind", {1, 0, 0, 1}, R"(
float4 k : register(c0);
sampler2D Tex0 : register(s0) ;
float4 main(float2 uv:TEXCOORD0):COLOR { return tex2D(Tex0,uv);})"},
    {"UnrollAttr", {0.5F, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float a=0; [unroll] for(int i=0;i<2;i++)
    a+=.25; return float4(a,0,0,1);})"},
    {"NestedFnGradient", {0.0F, 0, 0, 1}, R"(
sampler2D Tex0;
float4 main(float2 uv:TEXCOORD0):COLOR { float4 c=0; for(int i=-1;i<=1;i++) for(int
    j=-1;j<=1;j++) c+=tex2D(Tex0,uv+float2(i,j)*.0001)/9.0; return
    float4(1-c.r,c.g,c.b,1);})"},
    {"HalfSuffixLits", {0.5F, 0.25F, 0.0F, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(0.5h,.25f,0x0,1.f);})"},
    {"UnusedBadProfileFn", {0.25F, 0, 0, 1}, R"(
float4 vs(float4 p:POSITION, uniform float4x4 mvp : WORLDVIEWPROJ):POSITION { return
    mul(mvp,p);}
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(uv.x,0,0,1);})"},
    {"IntDivShift", {0.5F, 0.5F, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { int a=7/2; float b=a/6.0; int c=1<<1; return
    float4(b,c*.25,0,1);})"},
    {"BoolVecAny", {0.5F, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { bool2 b=uv>=float2(.1,.9); return
    float4(any(b)?.5:0, all(b)?1:0,0,1);})"},
    {"VecCtorMixed", {0.25F, 0.25F, 0.5F, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float2 a=uv; int i=1; bool b=true; return
    float4(a,.5*i,b);})"},
    {"AddrCompoundConv", {0.5F, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { int i=1; i*=1.5; float3 a=1; a*=.5;
    a-=float4(0,.5,.5,0); return float4(a*i,1);})"},
    {"DynAnyAll", {1, 0, 1, 1}, R"(
float4 k;
float4 main(float2 uv:TEXCOORD0):COLOR { float a=any(k.xyz); float
    b=all(k.xyz-float3(0,.5,0)); bool c=any(k>0.9); return float4(a,b,c,1);})"},
    {"DynFloatMod", {0.25F, 0.5F, 0.75F, 1}, R"(
float kf;
float4 k;
float4 main(float2 uv:TEXCOORD0):COLOR { float a=(kf*4.5)%1.0; float3 b=(k.xyz+1)%1.0;
    return float4(a,b.yz,1);})"},
    {"DynNegMod", {0.5F, 0, 0, 1}, R"(
float kf;
float4 main(float2 uv:TEXCOORD0):COLOR { float a=fmod(-kf,1.0); float b=(-kf)%1.0;
    return float4(-a, a-b,0,1);})"},
    {"DynNegFrac", {0.75F, 0, 0, 1}, R"(
float4 k;
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(frac(-k.x),0,0,1);})"},
    {"SamplerArrayPick", {1, 0, 0, 1}, R"(
sampler2D Tex0;
sampler2D Tex1;
float4 g(int i,float2 u){ if(i==1) return tex2D(Tex1,u); else return tex2D(Tex0,u);}
float4 main(float2 uv:TEXCOORD0, uniform int which=1):COLOR { return g(which,uv);})"},
    {"UniformWrite", {0.5F, 0, 0, 1}, R"(
float4 k;
float4 main(float2 uv:TEXCOORD0):COLOR { k.x=0.5; return float4(k.x,0,0,1);})"},
    {"UniformBoolParam", {1, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0, uniform bool f=true):COLOR { return float4(f,0,0,1);})"},
    {"ConstFoldMix", {1, 0.5F, 0.25F, 1}, R"(
static const float PI=3.14159265;
static const float2 OFF=float2(.5,.25)*2;
float4 main(float2 uv:TEXCOORD0):COLOR { float a=sin(PI/2); return float4(a,OFF*0.5,1);})"},
    {"StaticArrayOfStruct", {0.5F, 0, 0, 1}, R"(
struct S{float w; float2 o;};
static const S tab[2]={{.25,{0,0}},{.25,{1,1}}};
float4 main(float2 uv:TEXCOORD0):COLOR { float a=0; for(int i=0;i<2;i++) a+=tab[i].w;
    return float4(a,0,0,1);})"},
    {"Arr2d", {0.75F, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float a[2][3]; for(int i=0;i<2;i++) for(int
    j=0;j<3;j++) a[i][j]=.125; float s=0; for(int i=0;i<2;i++) for(int j=0;j<3;j++)
    s+=a[i][j]; return float4(s,0,0,1);})"},
    {"ReturnInLoop", {0.25F, 0, 0, 1}, R"(
float f(float x){ for(int i=0;i<4;i++){ if(i*.25>=x) return i*.25; } return 1;}
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(f(.2),0,0,1);})"},
    {"Switch", {0.5F, 0, 0, 1}, R"(
int ki;
float4 main(float2 uv:TEXCOORD0):COLOR { float a=0; switch(ki){ case 1: a=1; break; case
    2: a=.5; break; default: a=.1; } return float4(a,0,0,1);})"},
    {"MatrixInout", {0.5F, 0, 0, 1}, R"(
void f(inout float3x3 m){ m[0][0]*=.5; m[1]=float3(1,2,3);}
float4 main(float2 uv:TEXCOORD0):COLOR { float3x3 m={1,0,0,0,1,0,0,0,1}; f(m); return
    float4(m[0][0],m[1].x-1,0,1);})"},
    {"MatrixTrunc", {0.0625F, 0, 0, 1}, R"(
float4x4 m4;
float4 main(float2 uv:TEXCOORD0):COLOR { float3x3 m=(float3x3)m4; return
    float4(m[0][1],0,0,1);})"},
    {"Mul3343", {0.5F, 0.25F, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float3x4 m={.5,0,0,0, 0,.25,0,0, 0,0,0,0};
    float4 v=float4(1,1,1,1); return float4(mul(m,v),1);})"},
    {"StructReturnNested", {0.25F, 0.5F, 0, 1}, R"(
struct P{float4 c;float2 d;};
P mk(float2 u){ P p; p.c=float4(u,0,1); p.d=u*2; return p;}
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(mk(uv).c.x, mk(uv).d.y,0,1);})"},
    {"CondNestedTern", {0.5F, 0.25F, 0.0F, 1}, R"(
float4 k;
float4 main(float2 uv:TEXCOORD0):COLOR { float a=k.x<.1?0:k.x<.3?.5:1; float4 c = k.y>.4
    ? float4(.5,.25,0,1) : k; return float4(a,c.yz,1);})"},
    {"GlobalInitExpr", {0.5F, 0, 0, 1}, R"(
static float g=0.25*2;
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(g,0,0,1);})"},
    {"CommaOp", {0.5F, 0, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float a=0,b; a=(b=.25,b*2); return
    float4(a,0,0,1);})"},
    {"ChainedAssign", {0.5F, 0.5F, 0.5F, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float a,b,c; a=b=c=.5; return float4(a,b,c,1);})"},
    {"IncrVec", {0.5F, 0.5F, 0, 1}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { float2 a=-.5; a++; return float4(a,0,1);})"},
    {"HalfCtor1", {0.5F, 0.5F, 0.5F, 0.5F}, R"(
half4 main(half2 uv:TEXCOORD0):COLOR { return half4(.5,.5,half2(half(.5)).xx); })"},
    {"Float4CtorScalar", {0.5F, 0.5F, 0.5F, 0.5F}, R"(
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(.5); })"},
    {"IntUniformArith", {0.5F, 0, 0, 1}, R"(
int ki;
float4 main(float2 uv:TEXCOORD0):COLOR { float a=1.0/ki; return float4(a,0,0,1);})"},
    {"LoopUniformBound", {0.5F, 0, 0, 1}, R"(
int ki;
float4 main(float2 uv:TEXCOORD0):COLOR { float a=0; for(int i=0;i<ki;i++) a+=.25; return
    float4(a,0,0,1);})"},
    {"FloatLoopIntCmp", {0.5F, 0, 0, 1}, R"(
float kf;
float4 main(float2 uv:TEXCOORD0):COLOR { float a=0; for(int i=0;i<kf*4;i++) a+=.25;
    return float4(a,0,0,1);})"},
};
// clang-format on

} // namespace

std::span<const FeatureShader> featureShaders()
{
    return kShaders;
}
