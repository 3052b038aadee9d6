// Lift, gamma, gain and saturation, each for red, green and blue:
//   y = (gain * (x + lift * (1 - x))) ^ (1 / gamma),   then   luma + saturation * (y - luma)
// Saturation is that of the ASC Color Decision List, with BT.709's luma.
#include "Common.fxh"

PICTURE(Picture, PictureSampler)

float3 Lift < string UIName = "Lift"; string UIWidget = "Colour"; float UIMin = -1.0; float UIMax = 1.0; float UIStep = 0.01; >
    = { 0.0, 0.0, 0.0 };
float3 Gamma < string UIName = "Gamma"; string UIWidget = "Colour"; float UIMin = 0.1; float UIMax = 4.0; float UIStep = 0.01; >
    = { 1.0, 1.0, 1.0 };
float3 Gain < string UIName = "Gain"; string UIWidget = "Colour"; float UIMin = 0.0; float UIMax = 4.0; float UIStep = 0.01; >
    = { 1.0, 1.0, 1.0 };
float Saturation < string UIName = "Saturation"; float UIMin = 0.0; float UIMax = 4.0; float UIStep = 0.01; > = 1.0;

float4 correct(float2 place : TEXCOORD0) : COLOR
{
    float4 pixel = tex2D(PictureSampler, place);
    float3 x = straightOf(pixel);
    float3 y = pow(max(Gain * (x + Lift * (1.0 - x)), 0.0), 1.0 / max(Gamma, 0.01));
    float luma = lumaOf(y);
    return premultiplied(saturate(luma + Saturation * (y - luma)), pixel.a);
}

technique ColourCorrect
{
    pass P0 PASS(correct)
}
