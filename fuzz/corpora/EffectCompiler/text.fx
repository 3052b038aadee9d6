#ifndef COMMON_FXH
#define COMMON_FXH
#define PS(fn, ...) { PixelShader = compile PROFILE fn(__VA_ARGS__); }
#define LUMA float3(0.299, 0.587, 0.114)
#define DECLARE_INPUT(tex, samp) texture tex : SOURCE; sampler2D samp = sampler_state { Texture = <tex>; AddressU = Clamp; AddressV = ClampToEdge; MinFilter = Linear; MagFilter = Linear; };
#define DECLARE_TARGET(tex, samp) texture tex : RENDERCOLORTARGET; sampler2D samp = sampler_state { Texture = (tex); ADDRESSU = Clamp; addressv = Mirror; MinFilter = Linear; MagFilter = Linear; };
struct v2p { float2 uv : TEXCOORD0; };
#endif
DECLARE_INPUT(Glyphs, GlyphSampler)
float4 FaceColour1 = float4(1, 1, 1, 1);
struct OUT { float4 pos : POSITION; float2 uv : TEXCOORD0; };
OUT mainVS(float4 p : POSITION, float2 uv : TEXCOORD0, uniform float4x4 mvp : ModelViewProjection) { OUT o; o.pos = mul(mvp, p); o.uv = uv; return o; }
float4 mainPS(OUT IN) : COLOR { float3 cov = tex2D(GlyphSampler, IN.uv).rgb; float a = dot(cov, 1.0 / 3) * FaceColour1.a; return float4(FaceColour1.rgb * cov, a); }
technique ClearTypeBlend { pass P0 { BlendEnable = true; BlendFunc = int2(SrcAlpha, OneMinusSrcAlpha); VertexProgram = compile vp40 mainVS(); PixelShader = compile PROFILE mainPS(); } }
