#pragma once

#include <QImage>

#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>

/// Reads one JPEG stream into a picture of format 4 (32-bit RGB).
///
/// Trusts no header: the picture is capped (PictureLimits), the decoder's working memory and the
/// number of scans too, and warnings are not printed. Missing data at the end leaves what the
/// decoder fills in. The decoder's fatal exit is caught here, in C; no exception passes through the
/// decoder's frames.
class JpegReader
{
public:
    /// @param file open for reading; not owned, outlives the reader
    explicit JpegReader(std::FILE* file);
    ~JpegReader();
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    /// @return the picture; null when the stream is broken, too large or there is no memory
    QImage read();

private:
    struct Errors
    {
        jpeg_error_mgr manager; // first: the decoder knows its address only
        std::jmp_buf exit;
    };
    struct Progress
    {
        jpeg_progress_mgr manager; // first, like above
        int maxScans;
    };

    static void exitHandler(j_common_ptr info);
    static void watchScans(j_common_ptr info);

    bool start();
    bool finish();
    bool readRows(uchar* pixels, int rowBytes);
    bool readConvertedRows(uchar* pixels, int rowBytes, uchar* row);
    void chooseOutput();
    void limitEffort();
    bool needsConversion() const;
    void convertRow(const uchar* samples, uchar* pixels) const;

    std::FILE* file_;
    jpeg_decompress_struct info_{};
    Errors errors_{};
    Progress progress_{};
};
