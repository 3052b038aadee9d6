#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Painting/iHostImage.h>

#include <QImage>

/// iHostImage on the toolkit's image.
///
/// Loading may run on any thread. Renderers and guards share the pixels and may outlive the image.
class QtImage final : public iHostImage
{
public:
    /// A picture of transparent black.
    ///
    /// @param size logical pixels; a side below 1 or a picture above the cap gives no pixels
    /// @param format 5 (ARGB) and 6 (ARGB premultiplied) get rows of exactly width x scale x 4
    /// bytes; any
    ///               other prints the assertion report for "false" at "OS/Mac/QtImage line 93" and
    ///               leaves the memory to the toolkit
    /// @param scale physical pixels for each logical one, both ways
    QtImage(const XY<int>& size, QImage::Format format, unsigned char scale);

    /// A picture from a file; the reader is chosen by the file name's extension, whatever its case.
    ///
    /// On failure prints "QtImage::QtImage( %s ) failed\n" with the path and stays without pixels.
    /// @throw Tq::Exception::RuntimeError "QtImage::loadJPEG(PATH) failed" when a JPEG stream is
    /// broken; the
    ///        text is valid until the thread's next
    explicit QtImage(const LightweightString<wchar_t>& path);

    /// 6: 32-bit premultiplied ARGB, which blends fastest.
    static QImage::Format getDefaultFormat() { return QImage::Format_ARGB32_Premultiplied; }

    XY<int> getSize() const override { return size_; }
    /// The dimensions of the pixels; (0, 0) without any.
    XY<int> getPhysicalSize() const;
    /// By format number: 1 gives 1, 5 and 6 give 32, everything else 0, 32-bit RGB too: deliberate.
    int getBitsPerPixel() const override;
    bool isAlphaPreMultiplied() const override;
    Tq::Ptr<iPixelGuard> lock() const override;
    /// A renderer that starts without antialiasing, whatever is asked for: deliberate.
    Tq::Ptr<iGraphicPrimitivesRenderer> getPrimitivesRenderer(bool antialias) override;
    /// In format 6 at scale 1, whatever this image's are: deliberate.
    Tq::Ptr<iImage> createCompatibleImage(const XY<int>& size) const override;

    unsigned char getScale() const { return scale_; }
    /// The pixels; null when there are none.
    const Tq::Ptr<QImage>& image() const { return image_; }

private:
    void allocate(QImage::Format format);
    static QImage loadJPEG(const LightweightString<wchar_t>& path);
    static QImage loadTIFF(const LightweightString<wchar_t>& path);
    static QImage loadWithToolkit(const LightweightString<wchar_t>& path, const char* format);

    Tq::Ptr<QImage> image_;
    unsigned char scale_ = 1;
    XY<int> size_;
};
