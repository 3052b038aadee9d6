#include "OS/Mac/Media/MediaServices.h"

#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Core/ReplacementFile.h"
#include "OS/Mac/Media/TiffWriter.h"
#include "OS/Mac/Painting/HostPixels.h"
#include "OS/Mac/Painting/QtFont.h"
#include "OS/Mac/Painting/QtImage.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>

#include <QFile>
#include <QImageWriter>

namespace {

bool isTiff(const LightweightString<char>& extension)
{
    return extension == "tif" || extension == "tiff";
}

bool saveWithToolkit(const Tq::Ptr<iHostImage>& image, const LightweightString<char>& path,
                     const QByteArray& format)
{
    const HostPixels pixels(image);
    // Asked before the file is touched: an unknown format must not cost what is there.
    if (pixels.image().isNull() || !QImageWriter::supportedImageFormats().contains(format))
        return false;
    OSInternal::ReplacementFile file(path);
    QFile device;
    if (!file.openAnyway() || !device.open(file.descriptor(), QIODevice::WriteOnly))
        return false;
    QImageWriter writer(&device, format);
    const bool written = writer.write(pixels.image());
    device.close();
    return written && device.error() == QFileDevice::NoError && file.commit();
}

} // namespace

void MediaServices::getLoadableImageTypes(std::vector<ImageType>& types)
{
    types.insert(types.end(), {{{L"PNG"}, L"Portable Network Graphic"},
                               {{L"JPG", L"JPEG"}, L"Jpeg"},
                               {{L"BMP"}, L"Windows Bitmap"},
                               {{L"TIF", L"TIFF"}, L"Tagged Image File Format"},
                               {{L"PPM"}, L"Portable PixMap"}});
}

void MediaServices::getSavableImageTypes(std::vector<ImageType>& types)
{
    getLoadableImageTypes(types);
}

Tq::Ptr<iHostImage> MediaServices::loadImage(const LightweightString<wchar_t>& path)
{
    if (!OS()->fileMgr()->fileExists(path))
        return {};
    return new QtImage(path);
}

Tq::Ptr<iHostImage> MediaServices::loadImage(const iDLL::Resource&)
{
    return {};
}

Tq::Ptr<iHostImage> MediaServices::loadThumbnail(const LightweightString<wchar_t>&, unsigned int)
{
    return {};
}

bool MediaServices::saveImage(const Tq::Ptr<iHostImage>& image,
                              const LightweightString<wchar_t>& path)
{
    const LightweightString<char> systemPath = OSInternal::pathToSystem(path);
    const LightweightString<char> extension = OSInternal::extensionOf(systemPath);
    return isTiff(extension) ? TiffWriter::saveTIFF(image, systemPath)
                             : saveWithToolkit(image, systemPath, extension.c_str());
}

Tq::Ptr<iHostImage> MediaServices::createHostSurface(const XY<int>& size)
{
    Tq::Ptr<QtImage> surface(new QtImage(size, QtImage::getDefaultFormat(), 1));
    if (!surface->image())
        return {};
    return surface;
}

Tq::Ptr<iFont> MediaServices::createHostSurfaceFont(const LightweightString<wchar_t>& name,
                                                    unsigned int size, unsigned int flags)
{
    return QtFont::make(name, size, 0, flags);
}
