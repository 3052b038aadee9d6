// One picture becomes another.
//   Dissolve: From * (1 - Progress) + To * Progress
//   Additive: both at full strength in the middle, their sum limited to white
#include "Common.fxh"

PICTURE(From, FromSampler)
PICTURE(To, ToSampler)

float Progress < string UIName = "Progress"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.01; > = 0.5;

float4 dissolve(float2 from : TEXCOORD0, float2 to : TEXCOORD1) : COLOR
{
    return lerp(tex2D(FromSampler, from), tex2D(ToSampler, to), Progress);
}

float4 additive(float2 from : TEXCOORD0, float2 to : TEXCOORD1) : COLOR
{
    return saturate(tex2D(FromSampler, from) * saturate(2.0 - 2.0 * Progress) +
                    tex2D(ToSampler, to) * saturate(2.0 * Progress));
}

technique Dissolve
{
    pass P0 PASS(dissolve)
}
technique Additive
{
    pass P0 PASS(additive)
}
