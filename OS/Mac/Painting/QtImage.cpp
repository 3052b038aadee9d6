#include "OS/Mac/Painting/QtImage.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/FileHandle.h"
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Painting/JpegReader.h"
#include "OS/Mac/Painting/PictureLimits.h"
#include "OS/Mac/Painting/PngStructure.h"
#include "OS/Mac/Painting/QtGraphicPrimitivesRenderer.h"
#include "OS/Mac/Painting/QtImageLock.h"
#include "OS/Mac/Painting/TiffReader.h"

#include <OS/Core/Exception.h>

#include <QFile>
#include <QImageReader>

#include <fcntl.h>
#include <string>
#include <string_view>

using OSInternal::FileHandle;

namespace {

FileHandle openForReading(const LightweightString<wchar_t>& path)
{
    return FileHandle(std::fopen(OSInternal::pathToSystem(path).c_str(), "rbe"));
}

bool isOneOf(const LightweightString<char>& name, std::initializer_list<const char*> names)
{
    for (const char* candidate : names)
        if (name == candidate)
            return true;
    return false;
}

[[noreturn]] void throwBrokenJpeg(const LightweightString<wchar_t>& path)
{
    // The exception only carries an address, so the text waits here until the thread's next one. No
    // buffer: what the library keeps for each thread has to fit where late-loaded ones keep theirs.
    thread_local std::string message;
    message =
        std::string("QtImage::loadJPEG(") + OSInternal::pathToSystem(path).c_str() + ") failed";
    throw Tq::Exception::RuntimeError(message.c_str(), "OS/Mac/QtImage", 215);
}

// Everything but 32-bit pixels is converted to them: iHostImage promises no other.
QImage toWords(QImage image)
{
    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
        return image;
    default:
        return std::move(image).convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32
                                                                        : QImage::Format_RGB32);
    }
}

} // namespace

QtImage::QtImage(const XY<int>& size, QImage::Format format, unsigned char scale)
    : scale_(scale), size_(size)
{
    allocate(format);
    if (!image_)
        size_ = {};
}

void QtImage::allocate(QImage::Format format)
{
    const bool ours =
        format == QImage::Format_ARGB32 || format == QImage::Format_ARGB32_Premultiplied;
    if (!ours)
        OSInternal::reportAssertion("false", "OS/Mac/QtImage line 93");
    if (size_.x < 1 || size_.y < 1 || scale_ < 1)
        return;
    const auto width = static_cast<std::uint64_t>(size_.x) * scale_;
    const auto height = static_cast<std::uint64_t>(size_.y) * scale_;
    if (!PictureLimits::admits(width, height))
        return;
    const auto w = static_cast<int>(width);
    const auto h = static_cast<int>(height);
    QImage image = ours ? PictureLimits::allocate(w, h, format) : QImage(w, h, format);
    if (image.isNull())
        return;
    if (!ours)
        image.fill(0u);
    image_ = new QImage(std::move(image));
}

QtImage::QtImage(const LightweightString<wchar_t>& path)
{
    const LightweightString<char> extension =
        OSInternal::extensionOf(OSInternal::pathToSystem(path));
    QImage image;
    if (isOneOf(extension, {"bmp", "png", "pbm", "pgm", "ppm", "xbm", "xpm"}))
        image = loadWithToolkit(path, extension.c_str());
    else if (isOneOf(extension, {"jpg", "jpeg"}))
        image = loadJPEG(path);
    else if (isOneOf(extension, {"tif", "tiff"}))
        image = loadTIFF(path);

    if (image.isNull()) {
        OSInternal::printLine("QtImage::QtImage( %s ) failed\n",
                              OSInternal::pathToSystem(path).c_str());
        return;
    }
    size_ = {image.width(), image.height()};
    image_ = new QImage(std::move(image));
}

QImage QtImage::loadJPEG(const LightweightString<wchar_t>& path)
{
    const FileHandle file = openForReading(path);
    if (!file)
        return {};
    QImage image = JpegReader(file.get()).read();
    if (image.isNull())
        throwBrokenJpeg(path);
    return image;
}

QImage QtImage::loadTIFF(const LightweightString<wchar_t>& path)
{
    const int descriptor = open(OSInternal::pathToSystem(path).c_str(), O_RDONLY | O_CLOEXEC);
    return descriptor < 0 ? QImage() : TiffReader(descriptor).read();
}

QImage QtImage::loadWithToolkit(const LightweightString<wchar_t>& path, const char* format)
{
    // Opened here: the toolkit would translate the name into the locale's bytes.
    const FileHandle file = openForReading(path);
    if (!file || (std::string_view(format) == "png" && !isWholePng(file.get())))
        return {};
    QFile device;
    if (!device.open(file.get(), QIODevice::ReadOnly))
        return {};
    QImageReader reader(&device, format);
    reader.setAutoDetectImageFormat(false);
    if (!reader.canRead()) // of another kind: said without a word of the decoder's
        return {};
    const QSize size = reader.size();
    if (size.isValid() && !PictureLimits::admits(static_cast<std::uint64_t>(size.width()),
                                                 static_cast<std::uint64_t>(size.height())))
        return {};
    QImage image;
    return reader.read(&image) ? toWords(std::move(image)) : QImage();
}

XY<int> QtImage::getPhysicalSize() const
{
    return image_ ? XY<int>(image_->width(), image_->height()) : XY<int>();
}

int QtImage::getBitsPerPixel() const
{
    switch (image_ ? image_->format() : QImage::Format_Invalid) {
    case QImage::Format_Mono:
        return 1;
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
        return 32;
    default:
        return 0;
    }
}

bool QtImage::isAlphaPreMultiplied() const
{
    return image_ && image_->format() == QImage::Format_ARGB32_Premultiplied;
}

Tq::Ptr<iPixelGuard> QtImage::lock() const
{
    if (!image_)
        return {};
    return new QtImageLock(Tq::Ptr<const QtImage>(this));
}

Tq::Ptr<iGraphicPrimitivesRenderer> QtImage::getPrimitivesRenderer(bool /*antialias*/)
{
    return new QtGraphicPrimitivesRenderer(image_, scale_);
}

Tq::Ptr<iImage> QtImage::createCompatibleImage(const XY<int>& size) const
{
    return new QtImage(size, getDefaultFormat(), 1);
}
