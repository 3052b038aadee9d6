// Any bytes as a JPEG stream: a picture with every pixel opaque, or none.
#include "OS/Mac/Painting/JpegReader.h"

#include <cstdint>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const int descriptor = memfd_create("jpeg", MFD_CLOEXEC);
    if (descriptor < 0 || write(descriptor, data, size) != static_cast<ssize_t>(size)) {
        close(descriptor);
        return 0;
    }
    lseek(descriptor, 0, SEEK_SET);
    std::FILE* file = fdopen(descriptor, "rb");
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
