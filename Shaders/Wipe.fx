// An edge moves across the picture; behind it is the other one.
//   Straight: at an angle, 0 to the right, 90 downwards
//   Clock:    a hand turns clockwise from the top
//   Circle:   opens from the middle
// Each gives a place 0 to 1; the edge is there when Progress is, and Softness is the share of the
// way that it takes.
#include "Common.fxh"

PICTURE(From, FromSampler)
PICTURE(To, ToSampler)

float Progress < string UIName = "Progress"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.01; > = 0.5;
float Angle < string UIName = "Angle"; float UIMin = 0.0; float UIMax = 360.0; float UIStep = 1.0; > = 0.0;
float Softness < string UIName = "Softness"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.01; > = 0.1;
SIZE_OF("From", FromSize)

static const float kTurn = 6.28318531;

float4 wiped(float at, float2 from, float2 to)
{
    float soft = max(Softness, 0.001);
    float share = saturate((Progress * (1.0 + soft) - at) / soft);
    return lerp(tex2D(FromSampler, from), tex2D(ToSampler, to), share);
}

float4 straight(float2 from : TEXCOORD0, float2 to : TEXCOORD1) : COLOR
{
    float sine, cosine;
    sincos(Angle * (kTurn / 360.0), sine, cosine);
    float2 direction = float2(cosine, sine);
    float at = dot(from - 0.5, direction) / (abs(direction.x) + abs(direction.y)) + 0.5;
    return wiped(at, from, to);
}

float4 clock(float2 from : TEXCOORD0, float2 to : TEXCOORD1) : COLOR
{
    float2 hand = (from - 0.5) * FromSize;
    float at = frac(atan2(hand.x, -hand.y) / kTurn + 1.0);
    return wiped(at, from, to);
}

float4 circle(float2 from : TEXCOORD0, float2 to : TEXCOORD1) : COLOR
{
    float at = length((from - 0.5) * FromSize) / length(0.5 * FromSize);
    return wiped(at, from, to);
}

technique Straight
{
    pass P0 PASS(straight)
}
technique Clock
{
    pass P0 PASS(clock)
}
technique Circle
{
    pass P0 PASS(circle)
}
