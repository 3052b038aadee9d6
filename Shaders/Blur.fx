// A Gaussian blur in two passes, first along rows, then along columns. Radius counts pixels of what
// is drawn; the bell's standard deviation is half of it, and it ends there.
#include "Common.fxh"

PICTURE(Picture, PictureSampler)
BETWEEN(Rows, RowsSampler)

float Radius < string UIName = "Radius"; float UIMin = 0.0; float UIMax = 32.0; float UIStep = 0.5; > = 4.0;

static const int kMost = 32;

// Next is the way from one pixel to the next.
float4 blurred(sampler2D source, float2 place, float2 next)
{
    float radius = clamp(Radius, 0.0, float(kMost));
    float slope = -2.0 / max(radius * radius, 0.01);
    float4 sum = tex2D(source, place);
    float weights = 1.0;
    for (int i = 1; i <= kMost; i++)
    {
        if (float(i) <= radius)
        {
            float weight = exp(slope * float(i * i));
            sum += weight * (tex2D(source, place + next * float(i)) + tex2D(source, place - next * float(i)));
            weights += 2.0 * weight;
        }
    }
    return sum / weights;
}

float4 alongRows(float2 place : TEXCOORD0) : COLOR
{
    return blurred(PictureSampler, place, float2(ddx(place.x), 0.0));
}

float4 alongColumns(float2 place : TEXCOORD7) : COLOR
{
    return blurred(RowsSampler, place, float2(0.0, ddy(place.y)));
}

technique Blur
{
    pass Horizontal < string Script = "RENDERCOLORTARGET0 = Rows;"; > PASS(alongRows)
    pass Vertical PASS(alongColumns)
}
