#ifndef COMMON_FXH
#define COMMON_FXH
#define PS(fn, ...) { PixelShader = compile PROFILE fn(__VA_ARGS__); }
#define LUMA float3(0.299, 0.587, 0.114)
#define DECLARE_INPUT(tex, samp) texture tex : SOURCE; sampler2D samp = sampler_state { Texture = <tex>; AddressU = Clamp; AddressV = ClampToEdge; MinFilter = Linear; MagFilter = Linear; };
#define DECLARE_TARGET(tex, samp) texture tex : RENDERCOLORTARGET; sampler2D samp = sampler_state { Texture = (tex); ADDRESSU = Clamp; addressv = Mirror; MinFilter = Linear; MagFilter = Linear; };
struct v2p { float2 uv : TEXCOORD0; };
#endif
DECLARE_INPUT(Input, InputSampler)
float Gain < string UIName = "Gain"; float UIMin = 0.0; float UIMax = 4.0; bool Hidden = false; > = 1.0;
float4 Lift : COLOUR < string UIName = "Lift"; > = { 0.0, 0.0, 0.0, 1.0 };
int Mode = 0;
float4 main(v2p IN) : COLOR { half4 c = tex2D(InputSampler, IN.uv); half3 r = saturate(c.rgb * Gain + Lift.rgb); if (Mode == 1) r = dot(r, LUMA); return half4(r, c.a); }
technique Grade { pass P0 < string Script = "RenderColorTarget0 = ;"; > PS(main) }
