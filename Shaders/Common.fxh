// What the effects of this folder share.
//
// Pictures are premultiplied, in the encoding of their video (gamma), row 0 on top. An effect returns
// premultiplied colours, except where its README says otherwise.
#ifndef COMMON_FXH
#define COMMON_FXH

// A picture that the host puts in, softened between its texels, and its sampler.
#define PICTURE(picture, pictureSampler) \
    texture picture : SOURCE; \
    sampler2D pictureSampler = sampler_state { \
        Texture = <picture>; \
        AddressU = ClampToEdge; \
        AddressV = ClampToEdge; \
        MinFilter = Linear; \
        MagFilter = Linear; \
    };

// The same, taken texel by texel.
#define EXACT_PICTURE(picture, pictureSampler) \
    texture picture : SOURCE; \
    sampler2D pictureSampler = sampler_state { \
        Texture = <picture>; \
        AddressU = ClampToEdge; \
        AddressV = ClampToEdge; \
        MinFilter = Point; \
        MagFilter = Point; \
    };

// Texels of a picture, which whoever draws fills in.
#define SIZE_OF(picture, name) float2 name : TEXTUREPIXELSIZE < string ResourceName = picture; >;

// A picture that one pass draws and a later one reads, at the place TEXCOORD7.
#define BETWEEN(picture, pictureSampler) \
    texture picture : RENDERCOLORTARGET; \
    sampler2D pictureSampler = sampler_state { \
        Texture = <picture>; \
        AddressU = ClampToEdge; \
        AddressV = ClampToEdge; \
        MinFilter = Linear; \
        MagFilter = Linear; \
    };

#define PASS(fragment) { FragmentProgram = compile PROFILE fragment(); }

// ITU-R BT.709-6, table 3: what red, green and blue add to luma.
static const float3 kLuma = float3(0.2126, 0.7152, 0.0722);

float lumaOf(float3 colour)
{
    return dot(colour, kLuma);
}

// Colour difference of BT.709: blue and red less luma, each -0.5 to 0.5.
float2 differenceOf(float3 colour)
{
    float luma = lumaOf(colour);
    return float2((colour.b - luma) / 1.8556, (colour.r - luma) / 1.5748);
}

// Back again.
float3 colourOf(float luma, float2 difference)
{
    float r = luma + 1.5748 * difference.y;
    float b = luma + 1.8556 * difference.x;
    return float3(r, (luma - kLuma.r * r - kLuma.b * b) / kLuma.g, b);
}

// The colour itself; black where nothing is.
float3 straightOf(float4 pixel)
{
    return pixel.a > 0.0 ? saturate(pixel.rgb / pixel.a) : float3(0.0, 0.0, 0.0);
}

float4 premultiplied(float3 colour, float alpha)
{
    return float4(colour * alpha, alpha);
}

#endif
