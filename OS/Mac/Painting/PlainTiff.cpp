#include "OS/Mac/Painting/PlainTiff.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>
#include <vector>

namespace {

// Small enough to stay in the processor's cache while its colours change places.
constexpr std::uint64_t kBlockBytes = 256 * 1024;

std::uint32_t numberOf(TIFF* tiff, std::uint32_t tag)
{
    std::uint32_t value = 0;
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

std::uint16_t shortOf(TIFF* tiff, std::uint32_t tag)
{
    std::uint16_t value = 0;
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

struct Layout
{
    explicit Layout(TIFF* tiff)
        : width(numberOf(tiff, TIFFTAG_IMAGEWIDTH)), height(numberOf(tiff, TIFFTAG_IMAGELENGTH)),
          samples(shortOf(tiff, TIFFTAG_SAMPLESPERPIXEL)),
          rowBytes(static_cast<std::uint64_t>(width) * samples),
          stripRows(std::min(numberOf(tiff, TIFFTAG_ROWSPERSTRIP), height))
    {
    }
    std::uint32_t strips() const { return (height + stripRows - 1) / stripRows; }
    std::uint32_t rowsOf(std::uint32_t strip) const
    {
        return std::min(stripRows, height - strip * stripRows);
    }

    std::uint32_t width, height;
    std::uint16_t samples;
    std::uint64_t rowBytes;
    std::uint32_t stripRows;
};

// The fourth sample is one that the library does not multiply the colours by.
bool hasPlainAlpha(TIFF* tiff)
{
    std::uint16_t count = 0;
    std::uint16_t* kinds = nullptr;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds);
    return count == 0 || (count == 1 && (kinds[0] == EXTRASAMPLE_UNSPECIFIED ||
                                         kinds[0] == EXTRASAMPLE_ASSOCALPHA));
}

bool hasPlainSamples(TIFF* tiff, const Layout& layout)
{
    std::uint16_t photometric = 0;
    const std::uint16_t format = shortOf(tiff, TIFFTAG_SAMPLEFORMAT);
    return !TIFFIsTiled(tiff) && TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric) == 1 &&
           photometric == PHOTOMETRIC_RGB &&
           shortOf(tiff, TIFFTAG_COMPRESSION) == COMPRESSION_NONE &&
           shortOf(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_CONTIG &&
           shortOf(tiff, TIFFTAG_ORIENTATION) == ORIENTATION_TOPLEFT &&
           shortOf(tiff, TIFFTAG_FILLORDER) == FILLORDER_MSB2LSB &&
           shortOf(tiff, TIFFTAG_BITSPERSAMPLE) == 8 &&
           (format == SAMPLEFORMAT_UINT || format == SAMPLEFORMAT_VOID) &&
           (layout.samples == 3 || (layout.samples == 4 && hasPlainAlpha(tiff)));
}

bool readAt(int file, std::uint64_t offset, std::uint8_t* bytes, std::uint64_t count)
{
    while (count > 0) {
        const ssize_t now = pread(file, bytes, count, static_cast<off_t>(offset));
        if (now < 0 && errno == EINTR)
            continue;
        if (now < 1)
            return false;
        bytes += now;
        offset += static_cast<std::uint64_t>(now);
        count -= static_cast<std::uint64_t>(now);
    }
    return true;
}

std::uint32_t swapped(std::uint32_t word)
{
    return (word & 0xFF00FF00u) | (word & 0xFFu) << 16 | (word >> 16 & 0xFFu);
}

// Red, green, blue and alpha bytes become our words, in place. In blocks of a fixed length, which
// compilers turn into wide instructions without being told to.
void turnToWords(std::uint8_t* pixels, std::uint64_t count)
{
    constexpr std::uint64_t kBlock = 16;
    auto* words = reinterpret_cast<std::uint32_t*>(pixels);
    std::uint64_t i = 0;
    for (; i + kBlock <= count; i += kBlock)
        for (std::uint64_t k = i; k < i + kBlock; ++k)
            words[k] = swapped(words[k]);
    for (; i < count; ++i)
        words[i] = swapped(words[i]);
}

void spreadToWords(const std::uint8_t* from, std::uint8_t* to, std::uint64_t pixels)
{
    auto* words = reinterpret_cast<std::uint32_t*>(to);
    for (std::uint64_t i = 0; i < pixels; ++i, from += 3)
        words[i] = 0xFF000000u | static_cast<std::uint32_t>(from[0]) << 16 |
                   static_cast<std::uint32_t>(from[1]) << 8 | from[2];
}

} // namespace

bool PlainTiff::isPlain(TIFF* tiff, std::uint64_t fileBytes)
{
    const Layout layout(tiff);
    if (layout.stripRows == 0 || !hasPlainSamples(tiff, layout) ||
        TIFFNumberOfStrips(tiff) != layout.strips())
        return false;
    for (std::uint32_t strip = 0; strip < layout.strips(); ++strip) {
        const std::uint64_t bytes = layout.rowsOf(strip) * layout.rowBytes;
        const std::uint64_t offset = TIFFGetStrileOffset(tiff, strip);
        if (TIFFGetStrileByteCount(tiff, strip) < bytes || offset > fileBytes ||
            fileBytes - offset < bytes)
            return false;
    }
    return true;
}

bool PlainTiff::read(TIFF* tiff, QImage& image)
{
    const Layout layout(tiff);
    const auto blockRows =
        static_cast<std::uint32_t>(std::max<std::uint64_t>(kBlockBytes / layout.rowBytes, 1));
    std::vector<std::uint8_t> block(layout.samples == 3 ? blockRows * layout.rowBytes : 0);
    std::uint8_t* to = image.bits();
    for (std::uint32_t strip = 0; strip < layout.strips(); ++strip) {
        std::uint64_t offset = TIFFGetStrileOffset(tiff, strip);
        for (std::uint32_t left = layout.rowsOf(strip); left > 0;) {
            const std::uint32_t rows = std::min(left, blockRows);
            const std::uint64_t bytes = rows * layout.rowBytes;
            if (!readAt(TIFFFileno(tiff), offset, block.empty() ? to : block.data(), bytes))
                return false;
            const std::uint64_t pixels = static_cast<std::uint64_t>(rows) * layout.width;
            if (block.empty())
                turnToWords(to, pixels);
            else
                spreadToWords(block.data(), to, pixels);
            to += pixels * 4;
            offset += bytes;
            left -= rows;
        }
    }
    return true;
}
