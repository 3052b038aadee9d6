#pragma once

#include "OS/Mac/OpenGL/Drawing/Programs.h"

#include <OS/Primitives/XY.h>

class iImageBase;

namespace GLDrawing {

struct UploadedPart;

/// An image in a texture, and how its pixels are read from it.
struct ImageSource
{
    GLuint texture = 0; ///< 0: there is nothing to draw
    XY<int> size;       ///< pixels
    XY<int> texels;
    float scaleX = 1.0f; ///< pixels for each logical one
    float scaleY = 1.0f;
    float perPixelX = 1.0f; ///< what the program counts for each pixel
    float perPixelY = 1.0f;
    bool endsAtEdges = false; ///< softening repeats the outermost texels, instead of the other side
    ImageProgram program;

    /// Of an image on the GPU; null and others have no texture.
    static ImageSource of(const iImageBase* image);
    /// Of a texture that holds a part of a host image, counted from that part's corner.
    static ImageSource of(const UploadedPart& part);

    friend bool operator==(const ImageSource&, const ImageSource&) = default;
};

/// A texture bound for drawing; afterwards none is, and its filters are GL_LINEAR, as everybody
/// expects them.
class TextureInUse
{
public:
    /// @param nearest takes the nearest texel, without softening
    TextureInUse(GLuint texture, bool nearest);
    ~TextureInUse();
    TextureInUse(const TextureInUse&) = delete;
    TextureInUse& operator=(const TextureInUse&) = delete;

private:
    bool nearest_;
};

} // namespace GLDrawing
