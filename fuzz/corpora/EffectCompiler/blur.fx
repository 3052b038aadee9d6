#ifndef COMMON_FXH
#define COMMON_FXH
#define PS(fn, ...) { PixelShader = compile PROFILE fn(__VA_ARGS__); }
#define LUMA float3(0.299, 0.587, 0.114)
#define DECLARE_INPUT(tex, samp) texture tex : SOURCE; sampler2D samp = sampler_state { Texture = <tex>; AddressU = Clamp; AddressV = ClampToEdge; MinFilter = Linear; MagFilter = Linear; };
#define DECLARE_TARGET(tex, samp) texture tex : RENDERCOLORTARGET; sampler2D samp = sampler_state { Texture = (tex); ADDRESSU = Clamp; addressv = Mirror; MinFilter = Linear; MagFilter = Linear; };
struct v2p { float2 uv : TEXCOORD0; };
#endif
DECLARE_INPUT(Input, InputSampler)
DECLARE_TARGET(Pass1, Pass1Sampler)
float Radius = 0.125; // uv step
static const float weights[3] = { 0.25, 0.5, 0.25 };
float4 blur(float2 uv : TEXCOORD0, uniform sampler2D s, uniform float2 dir) : COLOR { float4 sum = 0; for (int i = 0; i < 3; i++) sum += tex2D(s, uv + dir * (i - 1) * Radius) * weights[i]; return sum; }
technique Blur {
 pass P0 < string Script = "RENDERCOLORTARGET0 = Pass1;"; > { PixelShader = compile PROFILE blur(InputSampler, float2(1, 0)); }
 pass P1 PS(blur, Pass1Sampler, float2(0, 1))
}
