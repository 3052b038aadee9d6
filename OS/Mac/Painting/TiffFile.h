#pragma once

#include <memory>

#include <tiffio.h>

/// A file open in libtiff, without a word on standard error.
namespace TiffFile {

struct Closer
{
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Handle = std::unique_ptr<TIFF, Closer>;

/// Takes over a descriptor, also when it fails: the descriptor is closed then.
/// @param mode as TIFFOpen takes it @return null when the file cannot be opened that way
Handle open(int descriptor, const char* mode);

} // namespace TiffFile
