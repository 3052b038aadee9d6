// Draws text: a picture of it, white on black, is how much of each pixel's red, green and blue the
// glyphs cover. Each takes on the face colour by its own share: the constant colour of blending, which
// whoever draws text sets to the same as FaceColour1.
#include "Common.fxh"

EXACT_PICTURE(Text, TextSampler)

float4 FaceColour1 < string UIName = "Face colour"; string UIWidget = "Colour"; > = { 1.0, 1.0, 1.0, 1.0 };

float4 coverage(float2 place : TEXCOORD0) : COLOR
{
    float3 covered = tex2D(TextSampler, place).rgb * FaceColour1.a;
    return float4(covered, max(covered.r, max(covered.g, covered.b)));
}

technique ClearTypeBlend < bool UIHidden = true; >
{
    pass P0
    {
        BlendEnable = true;
        BlendFuncSeparate = int4(ConstantColor, OneMinusSrcColor, One, OneMinusSrcAlpha);
        FragmentProgram = compile PROFILE coverage();
    }
}
