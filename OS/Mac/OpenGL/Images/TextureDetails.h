#pragma once

#include <OS/Primitives/XY.h>

#include <tuple>

/// What storage a GPU image takes: images of the same details can take over each other's texture.
struct TextureDetails
{
    unsigned int glType = 0; ///< of a component, or of a packed pixel
    XY<int> physicalSize;    ///< texels

    /// By type, then width, then height: the texture cache gives up the smallest first.
    friend bool operator<(const TextureDetails& a, const TextureDetails& b)
    {
        return std::tie(a.glType, a.physicalSize.x, a.physicalSize.y) <
               std::tie(b.glType, b.physicalSize.x, b.physicalSize.y);
    }
};
