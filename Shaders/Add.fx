// Light on light: Picture + Light * Amount, limited to white.
#include "Common.fxh"

PICTURE(Picture, PictureSampler)
PICTURE(Light, LightSampler)

float Amount < string UIName = "Amount"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.01; > = 1.0;

float4 add(float2 place : TEXCOORD0, float2 lightPlace : TEXCOORD1) : COLOR
{
    return saturate(tex2D(PictureSampler, place) + tex2D(LightSampler, lightPlace) * Amount);
}

technique Add
{
    pass P0 PASS(add)
}
