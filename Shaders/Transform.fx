// The picture cropped, scaled, turned around its middle, moved, and framed. Edges are soft.
#include "Common.fxh"

PICTURE(Picture, PictureSampler)
SIZE_OF("Picture", PictureSize)

float CropLeft < string UIName = "Crop left"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.005; > = 0.0;
float CropTop < string UIName = "Crop top"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.005; > = 0.0;
float CropRight < string UIName = "Crop right"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.005; > = 0.0;
float CropBottom < string UIName = "Crop bottom"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.005; > = 0.0;
float Scale < string UIName = "Scale"; float UIMin = 0.01; float UIMax = 10.0; float UIStep = 0.01; > = 1.0;
float Rotation < string UIName = "Rotation"; float UIMin = -360.0; float UIMax = 360.0; float UIStep = 0.5; > = 0.0;
// Of the output's width and height.
float PositionX < string UIName = "Position x"; float UIMin = -2.0; float UIMax = 2.0; float UIStep = 0.005; > = 0.0;
float PositionY < string UIName = "Position y"; float UIMin = -2.0; float UIMax = 2.0; float UIStep = 0.005; > = 0.0;
// Of the picture's height; around what the cropping leaves.
float BorderWidth < string UIName = "Border"; float UIMin = 0.0; float UIMax = 0.5; float UIStep = 0.001; > = 0.0;
float4 BorderColour < string UIName = "Border colour"; string UIWidget = "Colour"; > = { 1.0, 1.0, 1.0, 1.0 };
float4 Ground < string UIName = "Ground"; string UIWidget = "Colour"; > = { 0.0, 0.0, 0.0, 0.0 };

float4 transform(float2 place : TEXCOORD0) : COLOR
{
    // From the output to the picture; lengths count the picture's height.
    float2 shape = float2(PictureSize.x / PictureSize.y, 1.0);
    float scale = max(Scale, 0.001);
    float sine, cosine;
    sincos(Rotation * (6.28318531 / 360.0), sine, cosine);
    float2 moved = (place - 0.5 - float2(PositionX, PositionY)) * shape;
    float2 turned = float2(cosine * moved.x + sine * moved.y, cosine * moved.y - sine * moved.x) / scale;
    float2 at = turned / shape + 0.5;
    float pixel = abs(ddy(place.y)) / scale;

    // How far outside of what the cropping leaves.
    float2 beyond = max(float2(CropLeft, CropTop) - at, at - (1.0 - float2(CropRight, CropBottom))) * shape;
    float outside = max(beyond.x, beyond.y);
    float inner = saturate(0.5 - outside / pixel);
    float outer = saturate(0.5 - (outside - BorderWidth) / pixel);

    return premultiplied(Ground.rgb, Ground.a) * (1.0 - outer) +
           premultiplied(BorderColour.rgb, BorderColour.a) * (outer - inner) +
           tex2D(PictureSampler, at) * inner;
}

technique Transform
{
    pass P0 PASS(transform)
}
