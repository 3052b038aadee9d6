#include "OS/Mac/Painting/PictureLimits.h"

#include <cstdlib>
#include <sys/stat.h>

QImage PictureLimits::allocate(int width, int height, QImage::Format format)
{
    if (width < 1 || height < 1 ||
        !admits(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height)))
        return {};
    const auto rowBytes = static_cast<std::size_t>(width) * 4;
    // The C allocator gives fresh pages for large blocks, which need no clearing.
    auto* pixels = static_cast<uchar*>(std::calloc(static_cast<std::size_t>(height), rowBytes));
    if (!pixels)
        return {};
    QImage image(pixels, width, height, static_cast<int>(rowBytes), format, std::free, pixels);
    if (image.isNull())
        std::free(pixels);
    return image;
}

std::uint64_t PictureLimits::fileBytes(int descriptor)
{
    struct stat status = {};
    return fstat(descriptor, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}
