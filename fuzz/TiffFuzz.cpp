// Any bytes as a TIFF file: a picture, or none.
#include "OS/Mac/Painting/TiffReader.h"

#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const int file = memfd_create("tiff", MFD_CLOEXEC);
    if (file < 0 || write(file, data, size) != static_cast<ssize_t>(size)) {
        close(file);
        return 0;
    }
    lseek(file, 0, SEEK_SET);
    const QImage image = TiffReader(file).read();
    volatile QRgb sum = 0; // every pixel can be read
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            sum = sum + row[x];
    }
    return 0;
}
