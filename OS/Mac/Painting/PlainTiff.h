#pragma once

#include <QImage>

#include <cstdint>

#include <tiffio.h>

/// Uncompressed TIFF pictures of three or four bytes for each pixel, top row first: what most
/// programs write, this one too. The library would read a strip, which may be the whole picture,
/// into a buffer beside the picture; these are read where they belong.
namespace PlainTiff {

/// Whether an open file is one, and all its rows lie inside the file. Anything else is the
/// library's.
bool isPlain(TIFF* tiff, std::uint64_t fileBytes);

/// @param image format 5, of the file's size
/// @return false when the file cannot be read to the end
bool read(TIFF* tiff, QImage& image);

} // namespace PlainTiff
