// Takes away what has the key's colour, whatever its brightness: the distance to it in the plane of
// BT.709's colour differences. Up to Tolerance nothing is left, beyond Tolerance and Softness
// everything is. Spill takes the key's colour out of what is left.
//   Key:      the picture that is left, premultiplied
//   KeyBlend: the same with straight colours, for drawing with blending
#include "Common.fxh"

PICTURE(Picture, PictureSampler)

float3 KeyColour < string UIName = "Key colour"; string UIWidget = "Colour"; > = { 0.0, 0.7, 0.2 };
float Tolerance < string UIName = "Tolerance"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.005; > = 0.15;
float Softness < string UIName = "Softness"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.005; > = 0.1;
float Spill < string UIName = "Spill"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.01; > = 0.5;
bool Invert < string UIName = "Invert"; > = false;

// Straight colours.
float4 keyed(float2 place)
{
    float4 pixel = tex2D(PictureSampler, place);
    float3 colour = straightOf(pixel);
    float2 difference = differenceOf(colour);
    float2 key = differenceOf(KeyColour);
    float share = smoothstep(Tolerance, Tolerance + max(Softness, 0.001), distance(difference, key));
    if (Invert)
        share = 1.0 - share;
    float2 direction = key / max(length(key), 0.001);
    difference -= direction * (Spill * max(dot(difference, direction), 0.0));
    return float4(saturate(colourOf(lumaOf(colour), difference)), pixel.a * share);
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
