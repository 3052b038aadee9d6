#ifndef COMMON_FXH
#define COMMON_FXH
#define PS(fn, ...) { PixelShader = compile PROFILE fn(__VA_ARGS__); }
#define LUMA float3(0.299, 0.587, 0.114)
#define DECLARE_INPUT(tex, samp) texture tex : SOURCE; sampler2D samp = sampler_state { Texture = <tex>; AddressU = Clamp; AddressV = ClampToEdge; MinFilter = Linear; MagFilter = Linear; };
#define DECLARE_TARGET(tex, samp) texture tex : RENDERCOLORTARGET; sampler2D samp = sampler_state { Texture = (tex); ADDRESSU = Clamp; addressv = Mirror; MinFilter = Linear; MagFilter = Linear; };
struct v2p { float2 uv : TEXCOORD0; };
#endif
DECLARE_INPUT(fg, FgSampler)
DECLARE_INPUT(bg, BgSampler)
float Amount = 0.5;
float4 mainPS(float2 xy1 : TEXCOORD0, float2 xy2 : TEXCOORD1) : COLOR { return lerp(tex2D(FgSampler, xy1), tex2D(BgSampler, xy2), Amount); }
technique Broken { pass P0 { PixelShader = compile PROFILE missing(); } }
technique Dissolve { pass P0 { PixelShader = compile PROFILE mainPS(); } }
