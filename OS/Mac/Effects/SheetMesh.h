#pragma once

#include <OS/Effects/i3DEffect.h>

#include <optional>
#include <vector>

/// A sheet as GL draws it: points in clip space, and triangles between them. Pure.
struct SheetMesh
{
    struct Point
    {
        float place[4]; ///< in clip space, y downwards: row 0 of a texture is its top one
        float u, v;
        float facing; ///< cosine between the normal and the way to the light; below 0 from behind
    };

    std::vector<Point> points;
    std::vector<unsigned int>
        triangles; ///< three each; from the front against the clock, y upwards

    static constexpr int kMostQuads = 1 << 20;

    /// How space is seen.
    struct Camera
    {
        i3DEffect::Matrix view;
        i3DEffect::Matrix projection;
    };

    /// @param size the picture's
    /// @param lightDirection null without light
    /// @return nothing where the sheet cannot be drawn
    static std::optional<SheetMesh> of(const i3DEffect::Sheet& sheet, const XY<int>& size,
                                       const Camera& camera, const XYZ<float>* lightDirection);
};
