#include "OS/Mac/Media/TiffWriter.h"

#include "OS/Mac/Core/ReplacementFile.h"
#include "OS/Mac/Painting/HostPixels.h"
#include "OS/Mac/Painting/TiffFile.h"

#include <QImage>

#include <cstdint>
#include <fcntl.h>

namespace {

constexpr tmsize_t kBufferBytes = 1024 * 1024;

void setTags(TIFF* tiff, std::uint32_t width, std::uint32_t height)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 4);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, width * 4));
}

// One row of any 32-bit format of ours as red, green, blue and alpha bytes.
void convertRow(const QImage& pixels, int y, QImage& row)
{
    const QImage source(pixels.constScanLine(y), pixels.width(), 1, pixels.bytesPerLine(),
                        pixels.format());
    row = source.convertToFormat(QImage::Format_RGBA8888);
}

// @return whether everything has been written
bool writePicture(TIFF* tiff, const QImage& pixels)
{
    setTags(tiff, static_cast<std::uint32_t>(pixels.width()),
            static_cast<std::uint32_t>(pixels.height()));
    // The strip is the whole picture: without this the library would buffer all of it.
    TIFFWriteBufferSetup(tiff, nullptr, kBufferBytes);
    QImage row;
    for (int y = 0; y < pixels.height(); ++y) {
        convertRow(pixels, y, row);
        if (TIFFWriteScanline(tiff, row.bits(), static_cast<std::uint32_t>(y), 0) < 0)
            return false;
    }
    return TIFFFlush(tiff) == 1;
}

} // namespace

bool TiffWriter::saveTIFF(const Tq::Ptr<iHostImage>& image, const LightweightString<char>& path)
{
    const HostPixels host(image);
    const QImage& pixels = host.image();
    if (pixels.isNull())
        return false;
    OSInternal::ReplacementFile file(path);
    if (!file.openAnyway())
        return false;
    {
        const TiffFile::Handle tiff =
            TiffFile::open(fcntl(file.descriptor(), F_DUPFD_CLOEXEC, 0), "w");
        if (!tiff || !writePicture(tiff.get(), pixels))
            return false;
    }
    return file.commit();
}
