// Any bytes as a JPEG stream: a picture with every pixel opaque, or none.
#include "OS/Mac/Painting/JpegReader.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    std::FILE* file = fmemopen(const_cast<std::uint8_t*>(data), size, "rb");
    if (!file)
        return 0;
    const QImage image = JpegReader(file).read();
    std::fclose(file);
    QRgb opaque = 0xFFFFFFFF;
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            opaque &= row[x] | 0x00FFFFFF;
    }
    if (opaque != 0xFFFFFFFF)
        std::abort();
    return 0;
}
