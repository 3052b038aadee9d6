#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Painting/iHostImage.h>

/// Writes pictures as TIFF: uncompressed, four 8-bit samples for each pixel (red, green, blue,
/// alpha, not premultiplied), in one plane, top row first.
///
/// The file is written through a buffer of one megabyte, whatever the picture's size.
namespace TiffWriter {

/// @param path UTF-8; an existing file is replaced when the whole picture has been written
/// @return false when the image has no pixels, or the file cannot be opened or written to its end
bool saveTIFF(const Tq::Ptr<iHostImage>& image, const LightweightString<char>& path);

} // namespace TiffWriter
