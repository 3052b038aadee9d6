#define CAT(a,b) a##b
#define MK(n) float CAT(f_,n)(float x){return x;}
MK(one)
#if defined(PROFILE) || 1
#define E f_one
#endif
float4 main(float2 uv:TEXCOORD0):COLOR { return float4(E(uv.x),0,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
