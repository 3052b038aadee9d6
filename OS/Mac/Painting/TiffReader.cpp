#include "OS/Mac/Painting/TiffReader.h"

#include "OS/Mac/Painting/PictureLimits.h"
#include "OS/Mac/Painting/PlainTiff.h"
#include "OS/Mac/Painting/TiffFile.h"

#include <cstdint>
#include <unistd.h>
#include <utility>

namespace {

// The library's words hold red in the lowest byte, ours blue.
void swapRedAndBlue(QImage& image)
{
    auto* pixel = reinterpret_cast<std::uint32_t*>(image.bits());
    const auto count =
        static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height());
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t value = pixel[i];
        pixel[i] = (value & 0xFF00FF00) | (value & 0xFF) << 16 | (value >> 16 & 0xFF);
    }
}

// Whether every strip or tile begins inside the file. The library fills in zeros for some that do
// not, so that a few bytes could promise a picture of gigabytes.
bool holdsItsPicture(TIFF* tiff, std::uint64_t fileBytes)
{
    const std::uint32_t count =
        TIFFIsTiled(tiff) ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
    for (std::uint32_t i = 0; i < count; ++i)
        if (TIFFGetStrileByteCount(tiff, i) == 0 || TIFFGetStrileOffset(tiff, i) >= fileBytes)
            return false;
    return count > 0;
}

bool readWithLibrary(TIFF* tiff, QImage& image)
{
    // Stops at the first strip that cannot be decoded: nobody is shown half a picture.
    constexpr int kStopOnError = 1;
    if (!TIFFReadRGBAImageOriented(tiff, static_cast<std::uint32_t>(image.width()),
                                   static_cast<std::uint32_t>(image.height()),
                                   reinterpret_cast<std::uint32_t*>(image.bits()),
                                   ORIENTATION_TOPLEFT, kStopOnError))
        return false;
    swapRedAndBlue(image);
    return true;
}

} // namespace

TiffReader::~TiffReader()
{
    if (descriptor_ >= 0)
        close(descriptor_);
}

QImage TiffReader::read()
{
    const std::uint64_t fileBytes = PictureLimits::fileBytes(descriptor_);
    // Not mapped: a mapped file that somebody shortens would end the process.
    const TiffFile::Handle tiff = TiffFile::open(std::exchange(descriptor_, -1), "rm");
    if (!tiff)
        return {};
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height);
    char reason[1024];
    if (!PictureLimits::admits(width, height) ||
        !PictureLimits::plausible(width, height, fileBytes) ||
        !TIFFRGBAImageOK(tiff.get(), reason) || !holdsItsPicture(tiff.get(), fileBytes))
        return {};

    QImage image = PictureLimits::allocate(static_cast<int>(width), static_cast<int>(height),
                                           QImage::Format_ARGB32);
    if (image.isNull())
        return {};
    const bool whole = PlainTiff::isPlain(tiff.get(), fileBytes)
                           ? PlainTiff::read(tiff.get(), image)
                           : readWithLibrary(tiff.get(), image);
    return whole ? image : QImage();
}
