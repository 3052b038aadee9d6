#pragma once

#include <QImage>

/// Reads the first picture of a TIFF file into a picture of format 5 (32-bit ARGB), top row first.
///
/// All of libtiff's kinds: strips and tiles, palettes, 1 to 16 bits, CMYK, YCbCr. Trusts no header:
/// the picture is capped (PictureLimits), single allocations of the library too, and nothing is
/// mapped. The library's messages are not printed.
class TiffReader
{
public:
    /// @param descriptor open for reading; closed by read
    explicit TiffReader(int descriptor) : descriptor_(descriptor) {}
    ~TiffReader();
    TiffReader(const TiffReader&) = delete;
    TiffReader& operator=(const TiffReader&) = delete;

    /// @return the picture; null when a side is 0, the file is broken or too large, or there is no
    /// memory
    QImage read();

private:
    int descriptor_;
};
