#pragma once

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include <OS/Core/Ptr.h>
#include <OS/OpenGL/iGPUImage.h>
#include <OS/Primitives/ImageDescriptionEx.h>
#include <OS/Primitives/XY.h>

namespace GLDrawing {

/// How large an image is.
struct PixelMeasure
{
    XY<int> size;                ///< pixels; (0, 0) where there is nothing to draw
    XY<float> scale{1.0f, 1.0f}; ///< pixels for each logical one

    static PixelMeasure of(const iImageBase* image);
};

/// A picture in a texture that any program can read: 32-bit words or more, premultiplied. Row 0 is
/// the top one.
struct ReadablePicture
{
    GLuint texture = 0;      ///< 0: there is nothing to read
    XY<int> size;            ///< texels
    Tq::Ptr<iGPUImage> copy; ///< holds the texture, where it is not the image's own
    // The part that is asked for, texture coordinates.
    ImageDescriptionEx::Rect part{0.0f, 0.0f, 1.0f, 1.0f};
};

/// The texture of an image, or a copy where it is packed, has no alpha of its own, lies in main
/// memory, or is what GL draws into. Under the GL lock with a context current; leaves GL's state.
/// @param output the texture that is drawn into; 0 for none
ReadablePicture readablePicture(const iImageBase* image, GLuint output);

/// The same of a part: more than the part is only in the texture where it is the whole image, so
/// that what reads beyond the part's edges finds them repeated.
/// @param part in the image's pixels, inside of the image
/// @param scale the image's pixels for each logical one, both ways
ReadablePicture readablePicture(const iImageBase* image, const ImageDescriptionEx::Rect& part,
                                const XY<float>& scale, GLuint output);

/// The texture that the current framebuffer draws into; 0 for a window's.
GLuint drawnTexture();

} // namespace GLDrawing
