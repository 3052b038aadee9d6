#include "OS/Mac/Painting/JpegReader.h"

#include "OS/Mac/Painting/PictureLimits.h"
#include "OS/Mac/Painting/StepTimer.h"

#include <algorithm>
#include <new>
#include <vector>

namespace {

constexpr long kWorkingMemoryBytes = 1l << 30;
constexpr int kMaxScans = 500;
// Every scan visits the whole picture: a small file of many scans must not keep the machine busy
// for minutes.
constexpr std::uint64_t kMaxScannedPixels = 16ull * 1024 * 1024 * 1024;
constexpr JDIMENSION kRowsPerCall = 16;

void storePixel(uchar* pixel, unsigned int red, unsigned int green, unsigned int blue)
{
    const QRgb value = qRgb(static_cast<int>(red), static_cast<int>(green), static_cast<int>(blue));
    *reinterpret_cast<QRgb*>(pixel) = value;
}

} // namespace

// Nothing between the two functions' frames and the decoder's has a destructor: a jump may pass
// them.

void JpegReader::exitHandler(j_common_ptr info)
{
    std::longjmp(reinterpret_cast<Errors*>(info->err)->exit, 1);
}

void JpegReader::watchScans(j_common_ptr info)
{
    const auto* progress = reinterpret_cast<const Progress*>(info->progress);
    if (info->is_decompressor &&
        reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > progress->maxScans)
        exitHandler(info);
}

JpegReader::JpegReader(std::FILE* file) : file_(file)
{
    info_.err = jpeg_std_error(&errors_.manager);
    errors_.manager.error_exit = exitHandler;
    errors_.manager.emit_message = [](j_common_ptr, int) {};
    errors_.manager.output_message = [](j_common_ptr) {};
    progress_.manager.progress_monitor = watchScans;
    progress_.maxScans = kMaxScans;
}

JpegReader::~JpegReader()
{
    jpeg_destroy_decompress(&info_); // harmless when it was never made
}

QImage JpegReader::read()
{
    StepTimer timer;
    if (!start())
        return {};
    timer.step("jpeg header");
    QImage image =
        PictureLimits::allocate(static_cast<int>(info_.output_width),
                                static_cast<int>(info_.output_height), QImage::Format_RGB32);
    if (image.isNull())
        return {};
    timer.step("jpeg image");

    const auto components = static_cast<std::size_t>(std::max(info_.output_components, 1));
    std::vector<uchar> row;
    if (needsConversion())
        row.resize(std::size_t(info_.output_width) * components);
    const bool complete = needsConversion()
                              ? readConvertedRows(image.bits(), image.bytesPerLine(), row.data())
                              : readRows(image.bits(), image.bytesPerLine());
    timer.step("jpeg rows");
    return complete && finish() ? image : QImage();
}

bool JpegReader::start()
{
    if (setjmp(errors_.exit))
        return false;
    jpeg_create_decompress(&info_);
    info_.progress = &progress_.manager;
    info_.mem->max_memory_to_use = kWorkingMemoryBytes;
    jpeg_stdio_src(&info_, file_);
    jpeg_read_header(&info_, TRUE);
    if (!PictureLimits::admits(info_.image_width, info_.image_height) ||
        !PictureLimits::plausible(info_.image_width, info_.image_height,
                                  PictureLimits::fileBytes(fileno(file_))))
        return false;
    limitEffort();
    chooseOutput();
    return jpeg_start_decompress(&info_) == TRUE;
}

void JpegReader::limitEffort()
{
    const std::uint64_t pixels = std::uint64_t(info_.image_width) * info_.image_height;
    progress_.maxScans =
        static_cast<int>(std::clamp<std::uint64_t>(kMaxScannedPixels / pixels, 1, kMaxScans));
}

// The decoder writes our pixels itself where it can: grey and colour. The rest comes as it is.
void JpegReader::chooseOutput()
{
    switch (info_.jpeg_color_space) {
    case JCS_GRAYSCALE:
    case JCS_RGB:
    case JCS_YCbCr:
        info_.out_color_space = JCS_EXT_BGRA; // the fourth byte becomes 255
        break;
    case JCS_CMYK:
    case JCS_YCCK:
        info_.out_color_space = JCS_CMYK;
        break;
    default:
        info_.out_color_space = info_.jpeg_color_space;
        break;
    }
}

bool JpegReader::needsConversion() const
{
    return info_.out_color_space != JCS_EXT_BGRA;
}

bool JpegReader::readRows(uchar* pixels, int rowBytes)
{
    if (setjmp(errors_.exit))
        return false;
    JSAMPROW rows[kRowsPerCall];
    while (info_.output_scanline < info_.output_height) {
        const JDIMENSION count =
            std::min(kRowsPerCall, info_.output_height - info_.output_scanline);
        for (JDIMENSION i = 0; i < count; ++i)
            rows[i] = pixels + std::size_t(info_.output_scanline + i) * std::size_t(rowBytes);
        if (jpeg_read_scanlines(&info_, rows, count) == 0)
            return false;
    }
    return true;
}

bool JpegReader::readConvertedRows(uchar* pixels, int rowBytes, uchar* row)
{
    if (setjmp(errors_.exit))
        return false;
    JSAMPROW rows[] = {row};
    while (info_.output_scanline < info_.output_height) {
        const std::size_t y = info_.output_scanline;
        if (jpeg_read_scanlines(&info_, rows, 1) == 0)
            return false;
        convertRow(row, pixels + y * std::size_t(rowBytes));
    }
    return true;
}

void JpegReader::convertRow(const uchar* samples, uchar* pixels) const
{
    const int components = info_.output_components;
    // Adobe's programs store how much light is left, everybody else how much ink is put on.
    const unsigned int flip = info_.saw_Adobe_marker ? 0 : 255;
    for (JDIMENSION x = 0; x < info_.output_width; ++x, samples += components, pixels += 4) {
        if (components < 3) {
            storePixel(pixels, samples[0], samples[0], samples[0]);
        } else if (info_.out_color_space == JCS_CMYK) {
            const unsigned int black = samples[3] ^ flip;
            storePixel(pixels, (samples[0] ^ flip) * black / 255, (samples[1] ^ flip) * black / 255,
                       (samples[2] ^ flip) * black / 255);
        } else {
            storePixel(pixels, samples[0], samples[1], samples[2]);
        }
    }
}

bool JpegReader::finish()
{
    if (setjmp(errors_.exit))
        return true; // all rows are there; what is wrong behind them does not matter
    jpeg_finish_decompress(&info_);
    return true;
}
