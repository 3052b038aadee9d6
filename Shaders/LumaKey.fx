// Keeps what is as bright as Low to High, by BT.709's luma, fading over Softness on both sides.
// Techniques as ChromaKey has them.
#include "Common.fxh"

PICTURE(Picture, PictureSampler)

float Low < string UIName = "Low"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.005; > = 0.2;
float High < string UIName = "High"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.005; > = 1.0;
float Softness < string UIName = "Softness"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.005; > = 0.1;
bool Invert < string UIName = "Invert"; > = false;

float4 keyed(float2 place)
{
    float4 pixel = tex2D(PictureSampler, place);
    float3 colour = straightOf(pixel);
    float luma = lumaOf(colour);
    float soft = max(Softness, 0.001);
    float share = smoothstep(Low - soft, Low, luma) * (1.0 - smoothstep(High, High + soft, luma));
    if (Invert)
        share = 1.0 - share;
    return float4(colour, pixel.a * share);
}

float4 key(float2 place : TEXCOORD0) : COLOR
{
    float4 left = keyed(place);
    return premultiplied(left.rgb, left.a);
}

float4 keyBlend(float2 place : TEXCOORD0) : COLOR
{
    return keyed(place);
}

technique Key
{
    pass P0 PASS(key)
}
technique KeyBlend
{
    pass P0 PASS(keyBlend)
}
