#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iDLL.h>
#include <OS/Core/iObject.h>
#include <OS/Painting/iFont.h>
#include <OS/Painting/iHostImage.h>

#include <vector>

/// Still images and surfaces, reached as OS()->mediaServices().
///
/// Loading and saving may run on any thread, each image on one thread at a time.
class OS_API iMediaServices : public iObject
{
public:
    /// One kind of image file.
    struct ImageType
    {
        std::vector<LightweightString<wchar_t>> extensions_; ///< upper case, without the dot
        LightweightString<wchar_t> description_;
    };

    /// Appends the kinds of image file that can be loaded.
    virtual void getLoadableImageTypes(std::vector<ImageType>& types) = 0;
    /// Appends exactly the loadable kinds.
    virtual void getSavableImageTypes(std::vector<ImageType>& types) = 0;

    /// Reads a picture; the reader is chosen by the file name's extension.
    ///
    /// @return null when there is no such file. A file that cannot be read gives an image without
    /// pixels,
    ///         after "QtImage::QtImage( %s ) failed\n".
    /// @throw Tq::Exception::RuntimeError when a JPEG stream is broken
    virtual Tq::Ptr<iHostImage> loadImage(const LightweightString<wchar_t>& path) = 0;
    /// Always null: pictures in resource files are not supported.
    virtual Tq::Ptr<iHostImage> loadImage(const iDLL::Resource& resource) = 0;
    /// Always null: thumbnails are the caller's to make.
    virtual Tq::Ptr<iHostImage> loadThumbnail(const LightweightString<wchar_t>& path,
                                              unsigned int size) = 0;

    /// Writes a picture in the format that the extension names.
    /// @return false when the image has no pixels, the format is unknown or the file cannot be
    /// written
    virtual bool saveImage(const Tq::Ptr<iHostImage>& image,
                           const LightweightString<wchar_t>& path) = 0;

    /// A picture in main memory, 32 bits premultiplied, transparent black, scale 1.
    /// @return null when a side is below 1 or the picture would exceed 512 megapixels
    virtual Tq::Ptr<iHostImage> createHostSurface(const XY<int>& size) = 0;
    /// A font for drawing on host surfaces.
    /// @param name a typeface; one that is not installed falls back to the default font's family
    /// @param size pixels
    /// @param flags iFont::eStyle bits
    virtual Tq::Ptr<iFont> createHostSurfaceFont(const LightweightString<wchar_t>& name,
                                                 unsigned int size, unsigned int flags) = 0;
};
