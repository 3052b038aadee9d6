#ifndef COMMON_FXH
#define COMMON_FXH
#define PS(fn, ...) { PixelShader = compile PROFILE fn(__VA_ARGS__); }
#define LUMA float3(0.299, 0.587, 0.114)
#define DECLARE_INPUT(tex, samp) texture tex : SOURCE; sampler2D samp = sampler_state { Texture = <tex>; AddressU = Clamp; AddressV = ClampToEdge; MinFilter = Linear; MagFilter = Linear; };
#define DECLARE_TARGET(tex, samp) texture tex : RENDERCOLORTARGET; sampler2D samp = sampler_state { Texture = (tex); ADDRESSU = Clamp; addressv = Mirror; MinFilter = Linear; MagFilter = Linear; };
struct v2p { float2 uv : TEXCOORD0; };
#endif
DECLARE_INPUT(Input, InputSampler)
texture Cube : LUT3D;
sampler3D CubeSampler = sampler_state { Texture = <Cube>; AddressU = Clamp; AddressV = Clamp; AddressW = Clamp; MinFilter = Linear; MagFilter = Linear; };
float LutSize = 8;
float4 main(float2 uv : TEXCOORD0) : COLOR0 { float4 c = tex2D(InputSampler, uv); float3 p = c.rgb * ((LutSize - 1) / LutSize) + 0.5 / LutSize; return float4(tex3D(CubeSampler, p).rgb, c.a); }
technique Apply { pass P0 { FragmentProgram = compile PROFILE main(); } }
