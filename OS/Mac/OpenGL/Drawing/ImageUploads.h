#pragma once

#include "OS/Mac/OpenGL/Drawing/TexturePool.h"

#include <OS/Core/Ptr.h>
#include <OS/Painting/iHostImage.h>
#include <OS/Primitives/Rectangle.h>

#include <QImage>

#include <map>

namespace GLDrawing {

/// The pixels of a host image, not copied where they are 32-bit words; open while this lives.
class HostPixels
{
public:
    explicit HostPixels(const iHostImage& image);

    /// RGB32, ARGB32, or ARGB32 premultiplied; null when the image has no pixels that can be drawn.
    const QImage& image() const { return view_; }
    /// Pixels for each logical one, both ways.
    int scale() const { return scale_; }

private:
    Tq::Ptr<iPixelGuard> guard_;
    QImage view_;
    int scale_ = 1;
};

/// A part of a host image in a texture.
struct UploadedPart
{
    GLuint texture = 0;      ///< 0: there is none
    Tq::Rectangle<int> part; ///< of the image, pixels
    bool isOpaque = false;   ///< the image has no alpha
    bool isStraight = false; ///< its colours are not premultiplied
};

/// Host images on their way to GL, for one call of a renderer.
///
/// Anyone may write to a host image between two calls, through a guard that it keeps, and leave no
/// trace: so every call uploads what it draws, once for each image. What is kept from call to call
/// are the textures.
class ImageUploads
{
public:
    explicit ImageUploads(TexturePool& pool) : pool_(pool) { pool_.beginRound(); }

    /// Says before anything is drawn what part of an image will be.
    void announce(const iHostImage& image, const Tq::Rectangle<int>& part);
    /// Whether a texture holds the announced part already.
    bool holds(const iHostImage& image) const;
    /// The texture that holds the announced part. Unless one holds it already, what was drawn with
    /// earlier textures must have been sent to GL.
    UploadedPart upload(const iHostImage& image, const HostPixels& pixels);

private:
    struct Entry
    {
        UploadedPart part;
        std::uint64_t round = 0;
    };
    TexturePool& pool_;
    std::map<const iHostImage*, Entry> images_;
};

} // namespace GLDrawing
