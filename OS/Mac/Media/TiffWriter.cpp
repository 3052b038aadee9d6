#include "OS/Mac/Media/TiffWriter.h"

#include "OS/Mac/Media/HostPixels.h"
#include "OS/Mac/Painting/TiffFile.h"

#include <QImage>

#include <cstdint>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

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

} // namespace

bool TiffWriter::saveTIFF(const Tq::Ptr<iHostImage>& image, const LightweightString<char>& path)
{
    const HostPixels host(image);
    const QImage& pixels = host.image();
    if (pixels.isNull())
        return false;
    constexpr int kReadableByAll = 0666; // less the process's mask
    const int descriptor =
        open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, kReadableByAll);
    if (descriptor < 0)
        return false;
    const TiffFile::Handle tiff = TiffFile::open(descriptor, "w");
    if (!tiff)
        return false;

    setTags(tiff.get(), static_cast<std::uint32_t>(pixels.width()),
            static_cast<std::uint32_t>(pixels.height()));
    // The strip is the whole picture: without this the library would buffer all of it.
    TIFFWriteBufferSetup(tiff.get(), nullptr, kBufferBytes);
    QImage row;
    for (int y = 0; y < pixels.height(); ++y) {
        convertRow(pixels, y, row);
        if (TIFFWriteScanline(tiff.get(), row.bits(), static_cast<std::uint32_t>(y), 0) < 0)
            return false;
    }
    return TIFFFlush(tiff.get()) == 1;
}
