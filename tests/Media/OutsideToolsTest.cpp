// Pictures between this library and programs of others, pixel for pixel.
#include "support/ImageCompare.h"
#include "support/OutputCapture.h"
#include "support/OutsideTool.h"
#include "support/Pictures.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <gtest/gtest.h>

#include <cstring>

namespace {

constexpr int kWidth = 61; // odd, so that rows are padded in many a file
constexpr int kHeight = 37;

iMediaServices* media()
{
    return OS()->mediaServices();
}

// Every pixel another colour, smooth enough for the lossy type.
QRgb colourAt(int x, int y)
{
    return qRgb(x * 4, y * 6, 255 - x * 2 - y * 3);
}

QImage pattern()
{
    QImage image(kWidth, kHeight, QImage::Format_ARGB32);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            image.setPixel(x, y, colourAt(x, y));
    return image;
}

Tq::Ptr<iHostImage> surfaceOf(const QImage& image)
{
    const Tq::Ptr<iHostImage> surface = media()->createHostSurface({image.width(), image.height()});
    const QImage pixels = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const Tq::Ptr<iPixelGuard> guard = surface->lock();
    for (int y = 0; y < image.height(); ++y)
        std::memcpy(guard->getPixels() + y * guard->getStride(), pixels.constScanLine(y),
                    static_cast<std::size_t>(image.width()) * 4);
    return surface;
}

QImage loaded(const Pictures& pictures, const std::string& name)
{
    const Tq::Ptr<iHostImage> image = media()->loadImage(pictures.wide(name));
    const Tq::Ptr<iPixelGuard> guard = image ? image->lock() : Tq::Ptr<iPixelGuard>();
    if (!guard)
        return {};
    return QImage(guard->getPixels(), guard->getSize().x, guard->getSize().y, guard->getStride(),
                  QImage::Format_ARGB32)
        .copy();
}

QImage fromPnm(const std::string& bytes)
{
    QImage image;
    image.loadFromData(reinterpret_cast<const uchar*>(bytes.data()), static_cast<int>(bytes.size()),
                       "PPM");
    return image.convertToFormat(QImage::Format_ARGB32);
}

std::string pnmOf(const QImage& image)
{
    std::string bytes =
        "P6\n" + std::to_string(image.width()) + " " + std::to_string(image.height()) + "\n255\n";
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            for (const int sample :
                 {qRed(image.pixel(x, y)), qGreen(image.pixel(x, y)), qBlue(image.pixel(x, y))})
                bytes.push_back(static_cast<char>(sample));
    return bytes;
}

// A decoder on the other side. %1 stands for the file.
struct Reader
{
    const char* file;
    const char* tool;
    const char* line;
    int tolerance;
};

std::string filledIn(std::string line, const std::string& file)
{
    for (auto at = line.find("%1"); at != std::string::npos; at = line.find("%1"))
        line.replace(at, 2, quoted(file));
    return line;
}

class OutsideTools : public testing::Test
{
protected:
    const Pictures pictures_;
};

} // namespace

TEST_F(OutsideTools, ReadWhatIsSaved)
{
    constexpr const char* kFfmpeg = "ffmpeg -v error -i %1 -f image2pipe -c:v ppm -";
    const Reader readers[] = {
        {"a.png", "pngtopam", "pngtopam %1", 0},
        {"a.png", "ffmpeg", kFfmpeg, 0},
        {"a.bmp", "bmptopnm", "bmptopnm %1", 0},
        {"a.bmp", "ffmpeg", kFfmpeg, 0},
        {"a.tif", "tifftopnm", "tifftopnm %1", 0},
        {"a.tif", "ffmpeg", kFfmpeg, 0},
        {"a.ppm", "pamtopnm", "pamtopnm %1", 0},
        {"a.ppm", "ffmpeg", kFfmpeg, 0},
        {"a.jpg", "jpegtopnm", "jpegtopnm %1", 24},
        {"a.jpg", "ffmpeg", kFfmpeg, 24},
        {"a.tiff", "tiffcp", "tiffcp -c lzw %1 %1.lzw && tifftopnm %1.lzw", 0},
    };
    const QImage source = pattern();
    const Tq::Ptr<iHostImage> surface = surfaceOf(source);
    int asked = 0;
    for (const Reader& reader : readers) {
        if (!hasTool(reader.tool))
            continue;
        ++asked;
        ASSERT_TRUE(media()->saveImage(surface, pictures_.wide(reader.file)));
        const ToolAnswer answer = runTool(filledIn(reader.line, pictures_.path(reader.file)));
        EXPECT_TRUE(
            imagesAgree(fromPnm(answer.output), source, "outside-reader", {reader.tolerance, 0.0}))
            << reader.tool << " " << reader.file << ", status " << answer.status;
    }
    if (asked == 0)
        GTEST_SKIP() << "neither netpbm nor ffmpeg is installed";
}

TEST_F(OutsideTools, ReadTheTransparencyThatIsSaved)
{
    if (!hasTool("pngtopam") || !hasTool("tifftopnm"))
        GTEST_SKIP() << "netpbm is not installed";
    QImage source = pattern();
    for (int x = 0; x < kWidth; ++x)
        source.setPixel(x, 5, qRgba(0, 255, 0, x * 4));
    const Tq::Ptr<iHostImage> surface = surfaceOf(source);
    const std::pair<const char*, const char*> readers[] = {{"a.png", "pngtopam -alpha %1"},
                                                           {"a.tif", "tifftopnm -alphaout=- %1"}};
    for (const auto& [file, line] : readers) {
        ASSERT_TRUE(media()->saveImage(surface, pictures_.wide(file)));
        const QImage alpha = fromPnm(runTool(filledIn(line, pictures_.path(file))).output);
        ASSERT_EQ(alpha.size(), source.size()) << file;
        for (int x = 0; x < kWidth; ++x)
            EXPECT_EQ(qRed(alpha.pixel(x, 5)), x * 4) << file << " at " << x;
        EXPECT_EQ(qRed(alpha.pixel(3, 3)), 255) << file;
    }
}

TEST_F(OutsideTools, WriteWhatCanBeLoaded)
{
    constexpr const char* kFfmpeg = "ffmpeg -v error -y -i source.pnm %1";
    const Reader writers[] = {
        {"a.png", "pnmtopng", "pnmtopng source.pnm > %1", 0},
        {"b.png", "pnmtopng", "pnmtopng -interlace source.pnm > %1", 0},
        {"c.png", "ffmpeg", kFfmpeg, 0},
        {"a.bmp", "ppmtobmp", "ppmtobmp source.pnm > %1", 0},
        {"b.bmp", "ffmpeg", kFfmpeg, 0},
        {"a.ppm", "pnmtoplainpnm", "pnmtoplainpnm source.pnm > %1", 0},
        {"b.ppm", "ffmpeg", kFfmpeg, 0},
        {"a.tif", "pamtotiff", "pamtotiff -none -truecolor source.pnm > %1", 0},
        {"b.tif", "pamtotiff", "pamtotiff -lzw -truecolor source.pnm > %1", 0},
        {"c.tif", "pamtotiff", "pamtotiff -packbits -truecolor -rowsperstrip 3 source.pnm > %1", 0},
        {"d.tif", "pamtotiff", "pamtotiff -none -truecolor -rowsperstrip 5 source.pnm > %1", 0},
        {"e.tif", "ffmpeg", kFfmpeg, 0},
        {"f.tif", "tiffcp", "ppm2tiff -c none source.pnm f0.tif && tiffcp -B -s -r 4 f0.tif %1", 0},
        {"g.tif", "tiffcp", "ppm2tiff source.pnm g0.tif && tiffcp -t -w 16 -l 16 g0.tif %1", 0},
        {"h.tif", "tiffcp", "ppm2tiff source.pnm h0.tif && tiffcp -p separate h0.tif %1", 0},
        {"a.jpg", "pnmtojpeg", "pnmtojpeg -quality 100 source.pnm > %1", 12},
        {"b.jpg", "pnmtojpeg", "pnmtojpeg -quality 100 -progressive source.pnm > %1", 12},
        {"c.jpeg", "ffmpeg", "ffmpeg -v error -y -i source.pnm -q:v 1 %1", 24},
    };
    const QImage source = pattern();
    const std::string bytes = pnmOf(source);
    pictures_.write("source.pnm", {bytes.begin(), bytes.end()});
    int asked = 0;
    for (const Reader& writer : writers) {
        if (!hasTool(writer.tool))
            continue;
        ++asked;
        const ToolAnswer answer = runTool("cd " + quoted(pictures_.path("")) + " && " +
                                          filledIn(writer.line, pictures_.path(writer.file)));
        ASSERT_EQ(answer.status, 0) << writer.line;
        QImage image;
        EXPECT_EQ(outputOf([&] { image = loaded(pictures_, writer.file); }), "");
        EXPECT_TRUE(imagesAgree(image, source, "outside-writer", {writer.tolerance, 0.0}))
            << writer.tool << " " << writer.file;
    }
    if (asked == 0)
        GTEST_SKIP() << "neither netpbm nor ffmpeg is installed";
}

TEST_F(OutsideTools, FindThePublishedTags)
{
    if (!hasTool("tiffinfo"))
        GTEST_SKIP() << "tiffinfo (libtiff-tools) is not installed";
    ASSERT_TRUE(media()->saveImage(surfaceOf(pattern()), pictures_.wide("a.tiff")));
    const std::string facts = runTool("tiffinfo " + quoted(pictures_.path("a.tiff"))).output;
    for (const char* fact :
         {"Image Width: 61 Image Length: 37", "Bits/Sample: 8", "Samples/Pixel: 4",
          "Photometric Interpretation: RGB color", "Orientation: row 0 top, col 0 lhs",
          "Planar Configuration: single image plane", "Rows/Strip: 244"})
        EXPECT_NE(facts.find(fact), std::string::npos) << fact << " in\n" << facts;
    for (const char* absent : {"Compression Scheme: L", "Extra Samples", "Software", "DateTime"})
        EXPECT_EQ(facts.find(absent), std::string::npos) << facts;
}
