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
    volatile QRgb sum = 0; // every row can be read
    for (int y = 0; y < image.height(); ++y)
        sum = sum + image.pixel(0, y) + image.pixel(image.width() - 1, y);
    return 0;
}
