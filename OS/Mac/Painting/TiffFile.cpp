#include "OS/Mac/Painting/TiffFile.h"

#include "OS/Mac/Painting/PictureLimits.h"

#include <cstdarg>
#include <unistd.h>

namespace {

// What a single buffer of the library's may take: a whole picture of the largest size, in one
// strip.
constexpr tmsize_t kLargestBlockBytes = static_cast<tmsize_t>(PictureLimits::kMaxPixels) * 4;

int swallow(TIFF*, void*, const char*, const char*, std::va_list)
{
    return 1;
}

struct OptionsDeleter
{
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

} // namespace

TiffFile::Handle TiffFile::open(int descriptor, const char* mode)
{
    std::unique_ptr<TIFFOpenOptions, OptionsDeleter> options(TIFFOpenOptionsAlloc());
    TIFF* tiff = nullptr;
    if (options) {
        TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kLargestBlockBytes);
        TIFFOpenOptionsSetErrorHandlerExtR(options.get(), swallow, nullptr);
        TIFFOpenOptionsSetWarningHandlerExtR(options.get(), swallow, nullptr);
        tiff = TIFFFdOpenExt(descriptor, "picture", mode, options.get());
    }
    if (!tiff)
        close(descriptor);
    return Handle(tiff);
}
