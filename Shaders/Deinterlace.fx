// A quick look at interlaced pictures.
//   TopField:    lines 0, 2, 4 ..; the others are the means of their neighbours
//   BottomField: lines 1, 3, 5 .., likewise
//   Blend:       each line with half of its neighbours, 1 2 1: both fields at once, without combs
#include "Common.fxh"

EXACT_PICTURE(Picture, PictureSampler)

SIZE_OF("Picture", PictureSize)

float4 lineAt(float2 place, float number)
{
    return tex2D(PictureSampler, float2(place.x, (clamp(number, 0.0, PictureSize.y - 1.0) + 0.5) / PictureSize.y));
}

float4 field(float2 place, float parity)
{
    float number = floor(place.y * PictureSize.y);
    if (fmod(number, 2.0) == parity)
        return lineAt(place, number);
    // At the edge there is one neighbour only.
    float above = number < 1.0 ? number + 1.0 : number - 1.0;
    float below = number + 1.0 > PictureSize.y - 1.0 ? number - 1.0 : number + 1.0;
    return (lineAt(place, above) + lineAt(place, below)) * 0.5;
}

float4 topField(float2 place : TEXCOORD0) : COLOR
{
    return field(place, 0.0);
}

float4 bottomField(float2 place : TEXCOORD0) : COLOR
{
    return field(place, 1.0);
}

float4 blend(float2 place : TEXCOORD0) : COLOR
{
    float number = floor(place.y * PictureSize.y);
    return lineAt(place, number) * 0.5 + (lineAt(place, number - 1.0) + lineAt(place, number + 1.0)) * 0.25;
}

technique TopField
{
    pass P0 PASS(topField)
}
technique BottomField
{
    pass P0 PASS(bottomField)
}
technique Blend
{
    pass P0 PASS(blend)
}
