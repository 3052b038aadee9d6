// Colours looked up in a table that lies in a strip of pixels.
//   Curves: Size pixels in one row; red, green and blue each have their own curve in the component
//           of that name.
//   Cube:   Size squares of Size x Size pixels side by side, from dark to bright blue; in each, red
//           runs to the right and green downwards.
#include "Common.fxh"

PICTURE(Picture, PictureSampler)
PICTURE(Table, TableSampler)

float Size < string UIName = "Table size"; float UIMin = 2.0; float UIMax = 4096.0; float UIStep = 1.0; > = 256.0;
float Amount < string UIName = "Amount"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.01; > = 1.0;

float4 mixed(float4 pixel, float3 from, float3 to)
{
    return premultiplied(lerp(from, to, Amount), pixel.a);
}

float4 curves(float2 place : TEXCOORD0) : COLOR
{
    float4 pixel = tex2D(PictureSampler, place);
    float3 x = straightOf(pixel);
    float3 at = (x * (Size - 1.0) + 0.5) / Size;
    float3 y = float3(tex2D(TableSampler, float2(at.r, 0.5)).r,
                      tex2D(TableSampler, float2(at.g, 0.5)).g,
                      tex2D(TableSampler, float2(at.b, 0.5)).b);
    return mixed(pixel, x, y);
}

float4 cube(float2 place : TEXCOORD0) : COLOR
{
    float4 pixel = tex2D(PictureSampler, place);
    float3 x = straightOf(pixel);
    float2 at = (x.rg * (Size - 1.0) + 0.5) / Size;
    float blue = x.b * (Size - 1.0);
    float low = min(floor(blue), Size - 2.0);
    float3 darker = tex2D(TableSampler, float2((low + at.x) / Size, at.y)).rgb;
    float3 brighter = tex2D(TableSampler, float2((low + 1.0 + at.x) / Size, at.y)).rgb;
    return mixed(pixel, x, lerp(darker, brighter, blue - low));
}

technique Curves
{
    pass P0 PASS(curves)
}
technique Cube
{
    pass P0 PASS(cube)
}
