#ifndef COMMON_FXH
#define COMMON_FXH
#define PS(fn, ...) { PixelShader = compile PROFILE fn(__VA_ARGS__); }
#define LUMA float3(0.299, 0.587, 0.114)
#define DECLARE_INPUT(tex, samp) texture tex : SOURCE; sampler2D samp = sampler_state { Texture = <tex>; AddressU = Clamp; AddressV = ClampToEdge; MinFilter = Linear; MagFilter = Linear; };
#define DECLARE_TARGET(tex, samp) texture tex : RENDERCOLORTARGET; sampler2D samp = sampler_state { Texture = (tex); ADDRESSU = Clamp; addressv = Mirror; MinFilter = Linear; MagFilter = Linear; };
struct v2p { float2 uv : TEXCOORD0; };
#endif
DECLARE_INPUT(Input, InputSampler)
float4 KeyColour = { 0, 1, 0, 1 };
float Tol = 0.3, Soft = 0.2;
bool Invert = false;
fixed2 chroma(fixed3 c) { float3x3 m = { LUMA, -0.169, -0.331, 0.5, 0.5, -0.419, -0.081 }; float3 y = mul(m, c); return y.yz; }
float4 main(v2p IN) : COLOR { float4 c = tex2D(InputSampler, IN.uv); float d = distance(chroma(c.rgb), chroma(KeyColour.rgb)); float a = smoothstep(Tol, Tol + Soft, d); if (Invert) a = 1 - a; c.a *= a; c.rgb *= c.a; return c; }
technique Key { pass P0 { AlphaBlendEnable = false; PixelShader = compile PROFILE main(); } }
