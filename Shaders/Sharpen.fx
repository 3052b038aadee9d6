// An unsharp mask: the picture, and Amount times what a small blur takes away from it. The blur is
// 1 2 1 along rows and columns; Radius is the distance of its neighbours, pixels of what is drawn.
#include "Common.fxh"

PICTURE(Picture, PictureSampler)

float Amount < string UIName = "Amount"; float UIMin = 0.0; float UIMax = 4.0; float UIStep = 0.05; > = 1.0;
float Radius < string UIName = "Radius"; float UIMin = 0.5; float UIMax = 8.0; float UIStep = 0.5; > = 1.0;

float4 sharpen(float2 place : TEXCOORD0) : COLOR
{
    float2 right = float2(ddx(place.x) * Radius, 0.0);
    float2 down = float2(0.0, ddy(place.y) * Radius);
    float4 pixel = tex2D(PictureSampler, place);
    float4 sum = pixel * 4.0;
    sum += 2.0 * (tex2D(PictureSampler, place + right) + tex2D(PictureSampler, place - right) +
                  tex2D(PictureSampler, place + down) + tex2D(PictureSampler, place - down));
    sum += tex2D(PictureSampler, place + right + down) + tex2D(PictureSampler, place + right - down) +
           tex2D(PictureSampler, place - right + down) + tex2D(PictureSampler, place - right - down);
    float3 sharper = pixel.rgb + Amount * (pixel.rgb - sum.rgb / 16.0);
    return float4(clamp(sharper, 0.0, pixel.a), pixel.a);
}

technique Sharpen
{
    pass P0 PASS(sharpen)
}
