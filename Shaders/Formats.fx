// Between pixels and the storage of video: 4:2:2, where a texel holds two pixels, and three
// components next to each other, where three texels hold four. The bytes of a texel in memory are
// its blue, green, red and alpha. Luma and differences are BT.709 in video range, 8 bits: 16 to 235
// and 16 to 240.
//   FromUYVY and so on: storage to pixels; Picture is the storage, as 32-bit words
//   ToUYVY and so on:   pixels to storage, as 32-bit words: to be drawn as wide as the storage is
// Storage has no alpha: pixels become opaque, and go there over black.
#include "Common.fxh"

EXACT_PICTURE(Picture, PictureSampler)

SIZE_OF("Picture", PictureSize)

// Of the pixels that are in storage; 0: as many as its texels have room for.
float Width < string UIName = "Width in pixels"; float UIMin = 0.0; float UIMax = 16384.0; float UIStep = 1.0; > = 0.0;

static const float3 kNone = float3(16.0, 128.0, 128.0) / 255.0; // black

// -- Colours

float3 toColour(float3 video)
{
    float3 v = (video * 255.0 - float3(16.0, 128.0, 128.0)) / float3(219.0, 224.0, 224.0);
    return saturate(colourOf(v.x, v.yz));
}

float3 toVideo(float3 colour)
{
    float3 v = float3(lumaOf(colour), differenceOf(colour));
    return (v * float3(219.0, 224.0, 224.0) + float3(16.0, 128.0, 128.0)) / 255.0;
}

// -- Reading storage

// In the order of memory: x is the first byte.
float4 bytesAt(float index, float row)
{
    return tex2D(PictureSampler, float2((index + 0.5) / PictureSize.x, row)).bgra;
}

float byteOf(float4 bytes, float index)
{
    return index < 0.5 ? bytes.x : index < 1.5 ? bytes.y : index < 2.5 ? bytes.z : bytes.w;
}

float componentAt(float index, float row, float none)
{
    float texel = floor((index + 0.5) / 4.0);
    if (texel > PictureSize.x - 0.5)
        return none;
    return byteOf(bytesAt(texel, row), index - 4.0 * texel);
}

float3 threeAt(float2 place, float3 none)
{
    float width = Width > 0.0 ? Width : floor((PictureSize.x * 4.0 + 0.5) / 3.0);
    float first = 3.0 * floor(place.x * width);
    return float3(componentAt(first, place.y, none.x), componentAt(first + 1.0, place.y, none.y),
                  componentAt(first + 2.0, place.y, none.z));
}

// The bytes of the pair that a pixel belongs to. Which is 0 for its first pixel and 1 for its second;
// below 0 where it has no pair, because the picture's width is odd: it is not stored.
float4 pairAt(float2 place, out float which)
{
    float width = Width > 0.0 ? Width : PictureSize.x * 2.0;
    float x = floor(place.x * width);
    float texel = floor((x + 0.5) / 2.0);
    which = texel > PictureSize.x - 0.5 ? -1.0 : x - 2.0 * texel;
    return bytesAt(texel, place.y);
}

float4 fromRGB(float2 place : TEXCOORD0) : COLOR { return float4(threeAt(place, float3(0.0, 0.0, 0.0)), 1.0); }
float4 fromBGR(float2 place : TEXCOORD0) : COLOR { return float4(threeAt(place, float3(0.0, 0.0, 0.0)).bgr, 1.0); }
float4 fromYUV(float2 place : TEXCOORD0) : COLOR { return float4(toColour(threeAt(place, kNone)), 1.0); }

float4 pairColour(float4 uyvy, float which)
{
    float3 colour = toColour(float3(which > 0.5 ? uyvy.w : uyvy.y, uyvy.x, uyvy.z));
    return which < -0.5 ? float4(0.0, 0.0, 0.0, 1.0) : float4(colour, 1.0);
}

float4 fromUYVY(float2 place : TEXCOORD0) : COLOR
{
    float which;
    float4 bytes = pairAt(place, which);
    return pairColour(bytes, which);
}
float4 fromYUY2(float2 place : TEXCOORD0) : COLOR
{
    float which;
    float4 bytes = pairAt(place, which);
    return pairColour(bytes.yxwz, which);
}
float4 fromYVYU(float2 place : TEXCOORD0) : COLOR
{
    float which;
    float4 bytes = pairAt(place, which);
    return pairColour(bytes.wxyz, which);
}
float4 fromVYUY(float2 place : TEXCOORD0) : COLOR
{
    float which;
    float4 bytes = pairAt(place, which);
    return pairColour(bytes.zyxw, which);
}

technique FromRGB8 < bool UIHidden = true; > { pass P0 PASS(fromRGB) }
technique FromBGR8 { pass P0 PASS(fromBGR) }
technique FromYUV8 { pass P0 PASS(fromYUV) }
technique FromUYVY { pass P0 PASS(fromUYVY) }
technique FromYUY2 { pass P0 PASS(fromYUY2) }
technique FromYVYU { pass P0 PASS(fromYVYU) }
technique FromVYUY { pass P0 PASS(fromVYUY) }

// -- Writing storage

float3 pixelAt(float x, float row)
{
    return tex2D(PictureSampler, float2((x + 0.5) / PictureSize.x, row)).rgb;
}

float rgbByte(float index, float row)
{
    float x = floor((index + 0.5) / 3.0);
    return byteOf(float4(pixelAt(x, row), 0.0), index - 3.0 * x);
}
float bgrByte(float index, float row)
{
    float x = floor((index + 0.5) / 3.0);
    return byteOf(float4(pixelAt(x, row).bgr, 0.0), index - 3.0 * x);
}
float yuvByte(float index, float row)
{
    float x = floor((index + 0.5) / 3.0);
    return byteOf(float4(toVideo(pixelAt(x, row)), 0.0), index - 3.0 * x);
}

float firstByte(float2 place)
{
    return 4.0 * floor(place.x * floor(PictureSize.x * 0.75));
}

float4 toRGB(float2 place : TEXCOORD0) : COLOR
{
    float i = firstByte(place);
    return float4(rgbByte(i, place.y), rgbByte(i + 1.0, place.y), rgbByte(i + 2.0, place.y),
                  rgbByte(i + 3.0, place.y)).bgra;
}
float4 toBGR(float2 place : TEXCOORD0) : COLOR
{
    float i = firstByte(place);
    return float4(bgrByte(i, place.y), bgrByte(i + 1.0, place.y), bgrByte(i + 2.0, place.y),
                  bgrByte(i + 3.0, place.y)).bgra;
}
float4 toYUV(float2 place : TEXCOORD0) : COLOR
{
    float i = firstByte(place);
    return float4(yuvByte(i, place.y), yuvByte(i + 1.0, place.y), yuvByte(i + 2.0, place.y),
                  yuvByte(i + 3.0, place.y)).bgra;
}

// The differences are the means of both pixels.
float4 uyvyOf(float2 place)
{
    float x = 2.0 * floor(place.x * floor(PictureSize.x * 0.5));
    float3 first = toVideo(pixelAt(x, place.y));
    float3 second = toVideo(pixelAt(x + 1.0, place.y));
    float2 difference = (first.yz + second.yz) * 0.5;
    return float4(difference.x, first.x, difference.y, second.x);
}

float4 toUYVY(float2 place : TEXCOORD0) : COLOR { return uyvyOf(place).bgra; }
float4 toYUY2(float2 place : TEXCOORD0) : COLOR { return uyvyOf(place).yxwz.bgra; }
float4 toYVYU(float2 place : TEXCOORD0) : COLOR { return uyvyOf(place).yzwx.bgra; }
float4 toVYUY(float2 place : TEXCOORD0) : COLOR { return uyvyOf(place).zyxw.bgra; }

technique ToRGB8 { pass P0 PASS(toRGB) }
technique ToBGR8 { pass P0 PASS(toBGR) }
technique ToYUV8 { pass P0 PASS(toYUV) }
technique ToUYVY { pass P0 PASS(toUYVY) }
technique ToYUY2 { pass P0 PASS(toYUY2) }
technique ToYVYU { pass P0 PASS(toYVYU) }
technique ToVYUY { pass P0 PASS(toVYUY) }
