#include "OS/Mac/Painting/QtImage.h"

#include "Painting/Canvas.h"
#include "support/ImageCompare.h"
#include "support/OutputCapture.h"
#include "support/Pictures.h"

#include <OS/Core/Exception.h>

#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <sys/resource.h>
#include <thread>

namespace {

using Bytes = Pictures::Bytes;

// The process's largest resident size so far, in bytes.
long peakBytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss * 1024L;
}

std::string failureLine(const Pictures& pictures, const std::string& name)
{
    return "QtImage::QtImage( " + pictures.path(name) + " ) failed\n";
}

// Loads a picture that cannot be read, and checks that nothing but the one line comes of it.
void expectFailure(const Pictures& pictures, const std::string& name)
{
    OutputCapture errors(OutputCapture::eStderr);
    Tq::Ptr<QtImage> image;
    EXPECT_EQ(outputOf([&] { image = new QtImage(pictures.wide(name)); }),
              failureLine(pictures, name));
    EXPECT_EQ(errors.text(), "") << name;
    EXPECT_EQ(image->getSize(), (XY<int>{0, 0}));
    EXPECT_FALSE(image->lock());
    EXPECT_EQ(image->getBitsPerPixel(), 0);
    Canvas canvas;
    ImageDescription blit;
    blit.image_ = image;
    blit.sourceROI_ = blit.destROI_ = {0, 0, 5, 5};
    canvas.draw(blit);
    EXPECT_EQ(canvas.at(1, 1), Canvas::kGround);
}

void expectBrokenJpeg(const Pictures& pictures, const std::string& name)
{
    OutputCapture errors(OutputCapture::eStderr);
    try {
        const QtImage image(pictures.wide(name));
        ADD_FAILURE() << name << " was read";
    } catch (const Tq::Exception::RuntimeError& error) {
        EXPECT_EQ(error.message(), "QtImage::loadJPEG(" + pictures.path(name) + ") failed");
    }
    EXPECT_EQ(errors.text(), "") << name;
}

Bytes gradient(int width, int height, int components)
{
    Bytes samples;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < components; ++c)
                samples.push_back(static_cast<unsigned char>((x * 2 + y + c * 50) % 256));
    return samples;
}

void expectNear(QRgb got, int red, int green, int blue, int tolerance = 3)
{
    EXPECT_NEAR(qRed(got), red, tolerance);
    EXPECT_NEAR(qGreen(got), green, tolerance);
    EXPECT_NEAR(qBlue(got), blue, tolerance);
    EXPECT_EQ(qAlpha(got), 255);
}

} // namespace

TEST(QtImage, StartsTransparentWithRowsNextToEachOther)
{
    for (const auto format : {QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied}) {
        const Tq::Ptr<QtImage> image = new QtImage({10, 6}, format, 2);
        EXPECT_EQ(image->getSize(), (XY<int>{10, 6}));
        EXPECT_EQ(image->getPhysicalSize(), (XY<int>{20, 12}));
        EXPECT_EQ(image->getBitsPerPixel(), 32);
        EXPECT_EQ(image->isAlphaPreMultiplied(), format == QImage::Format_ARGB32_Premultiplied);
        EXPECT_EQ(static_cast<iHostImage&>(*image).getStride(), 40) << "logical width x 4";
        const Tq::Ptr<iPixelGuard> guard = image->lock();
        EXPECT_EQ(guard->getStride(), 80);
        EXPECT_EQ(guard->getSize(), (XY<int>{20, 12}));
        EXPECT_EQ(Bytes(guard->getPixels(), guard->getPixels() + 80 * 12), Bytes(80 * 12));
    }
}

TEST(QtImage, OfAnotherFormatIsReportedAndMadeAllTheSame)
{
    Tq::Ptr<QtImage> image;
    EXPECT_EQ(outputOf([&] {
                  image = new QtImage({5, 5}, QImage::Format_RGB32, 1);
              }),
              "assertion failed false at OS/Mac/QtImage line 93\n");
    EXPECT_EQ(image->getBitsPerPixel(), 0) << "32-bit RGB too";
    EXPECT_EQ(image->image()->pixel(2, 2), 0xFF000000);
}

TEST(QtImage, OfAnImpossibleSizeHasNoPixels)
{
    constexpr int kMax = std::numeric_limits<int>::max();
    for (const XY<int>& size :
         {XY<int>{0, 5}, {5, 0}, {-3, 4}, {kMax, kMax}, {kMax, 1}, {32'768, 32'768}}) {
        const QtImage image(size, QtImage::getDefaultFormat(), 1);
        EXPECT_EQ(image.getSize(), (XY<int>{0, 0})) << size.x << " x " << size.y;
        EXPECT_FALSE(image.lock());
    }
    EXPECT_FALSE(QtImage({5, 5}, QtImage::getDefaultFormat(), 0).lock());
}

TEST(QtImage, GuardsAndRenderersKeepThePixelsAlive)
{
    Tq::Ptr<QtImage> image = new QtImage({8, 8}, QtImage::getDefaultFormat(), 1);
    const Tq::Ptr<iPixelGuard> guard = image->lock();
    const Tq::Ptr<iGraphicPrimitivesRenderer> renderer = image->getPrimitivesRenderer(true);
    image.reset();
    RectDescription desc;
    desc.rect_ = {0, 0, 8, 8};
    desc.topColour_ = desc.bottomColour_ = {1, 0, 0};
    renderer->render(desc);
    const std::uint8_t red[] = {0, 0, 255, 255}; // blue, green, red, alpha
    EXPECT_EQ(Bytes(guard->getPixels(), guard->getPixels() + 4), Bytes(red, red + 4));
}

TEST(QtImage, CompatibleImagesAreAlwaysPremultipliedAtScaleOne)
{
    QtImage image({4, 4}, QImage::Format_ARGB32, 2);
    const auto other = image.createCompatibleImage({7, 3}).dynamicCast<QtImage>();
    EXPECT_EQ(other->getPhysicalSize(), (XY<int>{7, 3}));
    EXPECT_TRUE(other->isAlphaPreMultiplied());
}

TEST(QtImage, ReadsTheToolkitsFormatsAs32BitWordsWhateverTheCaseOfTheExtension)
{
    const Pictures pictures;
    QImage source(9, 7, QImage::Format_RGB32);
    for (int y = 0; y < 7; ++y)
        for (int x = 0; x < 9; ++x)
            source.setPixel(x, y, qRgb(x * 20, y * 30, 77));
    const struct
    {
        const char* name;
        QImage::Format written;
    } cases[] = {
        {"rgb.png", QImage::Format_RGB32},       {"words.PNG", QImage::Format_ARGB32},
        {"deep.png", QImage::Format_RGBA64},     {"palette.png", QImage::Format_Indexed8},
        {"grey.png", QImage::Format_Grayscale8}, {"colour.bmp", QImage::Format_RGB32},
        {"colour.Ppm", QImage::Format_RGB32},    {"bits.pbm", QImage::Format_Mono},
        {"grey.pgm", QImage::Format_Grayscale8}, {"colour.xpm", QImage::Format_RGB32},
    };
    for (const auto& c : cases) {
        const QImage written = source.convertToFormat(c.written);
        ASSERT_TRUE(written.save(QString::fromStdString(pictures.path(c.name)))) << c.name;
        const QtImage image(pictures.wide(c.name));
        ASSERT_EQ(image.getSize(), (XY<int>{9, 7})) << c.name;
        EXPECT_EQ(image.image()->depth(), 32) << c.name;
        EXPECT_TRUE(
            imagesAgree(*image.image(), written.convertToFormat(QImage::Format_ARGB32), c.name));
    }
}

TEST(QtImage, FilesThatAreNoPicturesGiveOneLineAndNoPixels)
{
    const Pictures pictures;
    const Bytes text = {'n', 'o', ' ', 'p', 'i', 'c', 't', 'u', 'r', 'e'};
    for (const char* name :
         {"text.png", "text.bmp", "text.ppm", "text.tif", "text.tiff", "text.xpm"}) {
        pictures.write(name, text);
        expectFailure(pictures, name);
        pictures.write(name, {});
        expectFailure(pictures, name);
    }
    for (const char* name :
         {"absent.png", "absent.jpg", "absent.tif", "text.gif", "text", ".png", "a/b.png/c"})
        expectFailure(pictures, name);
    QImage(40, 40, QImage::Format_RGB32).save(QString::fromStdString(pictures.path("whole.png")));
    const Bytes whole = pictures.read("whole.png");
    for (const std::size_t length :
         {whole.size() - 1, whole.size() - 12, whole.size() / 2, std::size_t(12)}) {
        pictures.write("cut.png",
                       Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
        expectFailure(pictures, "cut.png");
    }
    pictures.write("jpeg-inside.png", Pictures::jpeg(8, 8, 3, JCS_RGB, gradient(8, 8, 3)));
    expectFailure(pictures, "jpeg-inside.png");
    // A header of 40000 x 40000 pixels and nothing behind it.
    pictures.write("huge.ppm", {'P', '6', ' ', '4', '0', '0', '0', '0', ' ',  '4',
                                '0', '0', '0', '0', ' ', '2', '5', '5', '\n', 0});
    expectFailure(pictures, "huge.ppm");
}

TEST(Jpeg, ReadsColourAndGreyAndEveryKindOfInk)
{
    const Pictures pictures;
    const auto load = [&](const Bytes& file) {
        pictures.write("p.jpg", file);
        const QtImage image(pictures.wide("p.jpg"));
        EXPECT_EQ(image.getSize(), (XY<int>{16, 16}));
        if (!image.image())
            return QRgb(0);
        EXPECT_EQ(image.image()->format(), QImage::Format_RGB32);
        return image.image()->pixel(8, 8);
    };
    const auto flat = [](std::initializer_list<unsigned char> sample) {
        Bytes samples;
        for (int i = 0; i < 256; ++i)
            samples.insert(samples.end(), sample);
        return samples;
    };
    using Info = jpeg_compress_struct&;
    expectNear(load(Pictures::jpeg(16, 16, 3, JCS_RGB, flat({200, 100, 50}))), 200, 100, 50);
    expectNear(load(Pictures::jpeg(16, 16, 3, JCS_RGB, flat({200, 100, 50}),
                                   [](Info i) { jpeg_set_colorspace(&i, JCS_RGB); })),
               200, 100, 50);
    expectNear(load(Pictures::jpeg(16, 16, 3, JCS_RGB, flat({200, 100, 50}),
                                   [](Info i) { jpeg_simple_progression(&i); })),
               200, 100, 50);
    expectNear(load(Pictures::jpeg(16, 16, 1, JCS_GRAYSCALE, flat({90}))), 90, 90, 90);
    expectNear(load(Pictures::jpeg(16, 16, 2, JCS_UNKNOWN, flat({90, 7}))), 90, 90, 90);
    // Adobe's inks are stored as the light that is left: 255 is no ink.
    expectNear(load(Pictures::jpeg(16, 16, 4, JCS_CMYK, flat({255, 128, 0, 128}))), 128, 64, 0);
    expectNear(load(Pictures::jpeg(16, 16, 4, JCS_CMYK, flat({255, 128, 0, 128}),
                                   [](Info i) { jpeg_set_colorspace(&i, JCS_YCCK); })),
               128, 64, 0);
    expectNear(load(Pictures::jpeg(16, 16, 4, JCS_CMYK, flat({0, 127, 255, 127}),
                                   [](Info i) { i.write_Adobe_marker = FALSE; })),
               128, 64, 0);
}

TEST(Jpeg, BrokenStreamsThrowWithThePathAndPrintNothing)
{
    const Pictures pictures;
    const Bytes good = Pictures::jpeg(64, 48, 3, JCS_RGB, gradient(64, 48, 3));
    const auto damaged = [&](const std::function<void(Bytes&)>& damage) {
        Bytes bytes = good;
        damage(bytes);
        pictures.write("bad.jpg", bytes);
        expectBrokenJpeg(pictures, "bad.jpg");
    };
    std::size_t frame = 0; // of the marker that carries precision and size
    while (!(good[frame] == 0xFF && good[frame + 1] == 0xC0))
        ++frame;
    damaged([](Bytes& b) { b.clear(); });
    damaged([](Bytes& b) { b[0] = 'X'; });
    damaged([](Bytes& b) { b.resize(100); });
    damaged([&](Bytes& b) { b[frame + 4] = 16; });                                 // 16-bit samples
    damaged([&](Bytes& b) { b[frame + 5] = b[frame + 6] = 0; });                   // no height
    damaged([&](Bytes& b) { b[frame + 7] = b[frame + 8] = 0; });                   // no width
    damaged([&](Bytes& b) { std::fill_n(b.begin() + long(frame) + 5, 4, 0xFF); }); // 65535 x 65535
    damaged([&](Bytes& b) { b[frame + 9] = 99; });                                 // components
}

TEST(Jpeg, AStreamThatEndsTooSoonShowsWhatCame)
{
    const Pictures pictures;
    Bytes bytes = Pictures::jpeg(64, 64, 3, JCS_RGB, Bytes(64 * 64 * 3, 200));
    bytes.resize(bytes.size() - 40);
    pictures.write("cut.jpg", bytes);
    OutputCapture errors(OutputCapture::eStderr);
    const QtImage image(pictures.wide("cut.jpg"));
    EXPECT_EQ(errors.text(), "");
    ASSERT_EQ(image.getSize(), (XY<int>{64, 64}));
    expectNear(image.image()->pixel(2, 2), 200, 200, 200);
    EXPECT_EQ(qAlpha(image.image()->pixel(63, 63)), 255);
}

TEST(Jpeg, TextsOfTwoThreadsDoNotMix)
{
    const Pictures pictures;
    pictures.write("a.jpg", {1});
    pictures.write("b.jpg", {1});
    std::thread other([&] {
        for (int i = 0; i < 50; ++i)
            expectBrokenJpeg(pictures, "a.jpg");
    });
    other.join();
    expectBrokenJpeg(pictures, "b.jpg");
}

TEST(Jpeg, AHugeHeaderCostsNoMemory)
{
    const Pictures pictures;
    Bytes bytes = Pictures::jpeg(16, 16, 3, JCS_RGB, gradient(16, 16, 3),
                                 [](jpeg_compress_struct& i) { jpeg_simple_progression(&i); });
    std::size_t frame = 0;
    while (!(bytes[frame] == 0xFF && bytes[frame + 1] == 0xC2))
        ++frame;
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(frame) + 5, 4, 0xFF);
    pictures.write("huge.jpg", bytes);
    const long before = peakBytes();
    expectBrokenJpeg(pictures, "huge.jpg");
    const auto height =
        bytes.begin() + static_cast<std::ptrdiff_t>(frame) + 5; // now 16,384 x 16,384
    height[0] = height[2] = 0x40;
    height[1] = height[3] = 0;
    pictures.write("huge.jpg", bytes);
    expectBrokenJpeg(pictures, "huge.jpg");
    EXPECT_LT(peakBytes() - before, 50L * 1024 * 1024);
}

namespace {

void setSize(TIFF* tiff, int width, int height, int samples, int bits, int photometric)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, photometric);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
}

template <class Sample>
void writeRows(TIFF* tiff, int height, std::vector<Sample> row)
{
    for (int y = 0; y < height; ++y)
        TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0);
}

template <class Sample>
std::vector<Sample> repeated(int count, std::initializer_list<Sample> pixel)
{
    std::vector<Sample> row;
    for (int i = 0; i < count; ++i)
        row.insert(row.end(), pixel);
    return row;
}

} // namespace

TEST(Tiff, ReadsStripsTilesPalettesAndDeepSamples)
{
    const Pictures pictures;
    const auto load = [&](const std::function<void(TIFF*)>& code) {
        pictures.tiff("p.tif", code);
        OutputCapture errors(OutputCapture::eStderr);
        const QtImage image(pictures.wide("p.tif"));
        EXPECT_EQ(errors.text(), "");
        if (!image.image())
            return QRgb(0);
        EXPECT_EQ(image.image()->format(), QImage::Format_ARGB32);
        return image.image()->pixel(image.getSize().x - 5, image.getSize().y - 12);
    };
    using Byte = std::uint8_t;
    using Word = std::uint16_t;
    expectNear(load([](TIFF* t) {
                   setSize(t, 32, 32, 3, 8, PHOTOMETRIC_RGB);
                   TIFFSetField(t, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
                   writeRows(t, 32, repeated<Byte>(32, {10, 20, 30}));
               }),
               10, 20, 30, 0);
    expectNear(load([](TIFF* t) {
                   setSize(t, 32, 32, 3, 16, PHOTOMETRIC_RGB);
                   writeRows(t, 32, repeated<Word>(32, {0x0A00, 0x1400, 0x1E00}));
               }),
               10, 20, 30, 1);
    expectNear(load([](TIFF* t) {
                   setSize(t, 32, 32, 1, 8, PHOTOMETRIC_PALETTE);
                   std::vector<Word> red(256), green(256), blue(256);
                   red[7] = 0xC800, green[7] = 0x6400, blue[7] = 0x3200;
                   TIFFSetField(t, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
                   writeRows(t, 32, repeated<Byte>(32, {7}));
               }),
               200, 100, 50, 1);
    expectNear(load([](TIFF* t) {
                   setSize(t, 64, 64, 3, 8, PHOTOMETRIC_RGB);
                   TIFFSetField(t, TIFFTAG_TILEWIDTH, 32);
                   TIFFSetField(t, TIFFTAG_TILELENGTH, 32);
                   for (const unsigned int y : {0u, 32u})
                       for (const unsigned int x : {0u, 32u}) {
                           auto tile = repeated<Byte>(32 * 32, {Byte(x + 1), Byte(y + 2), 3});
                           TIFFWriteTile(t, tile.data(), x, y, 0, 0);
                       }
               }),
               33, 34, 3, 0);
    expectNear(load([](TIFF* t) {
                   setSize(t, 32, 32, 1, 8, PHOTOMETRIC_MINISWHITE);
                   writeRows(t, 32, repeated<Byte>(32, {255 - 40}));
               }),
               40, 40, 40, 0);
    expectNear(load([](TIFF* t) {
                   setSize(t, 32, 32, 4, 8, PHOTOMETRIC_SEPARATED);
                   writeRows(t, 32, repeated<Byte>(32, {0, 127, 255, 127}));
               }),
               128, 64, 0);
}

TEST(Tiff, ReadsUncompressedRowsWhateverTheStrips)
{
    const Pictures pictures;
    constexpr int kWidth = 30'000; // two or three rows of it are read at a time
    constexpr int kHeight = 23;
    for (const int samples : {3, 4})
        for (const int stripRows : {1, 7, kHeight, 1'000'000})
            for (const bool readToTheEnd : {true, false}) {
                pictures.tiff("rows.tif", [&](TIFF* t) {
                    setSize(t, kWidth, kHeight, samples, 8, PHOTOMETRIC_RGB);
                    TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, stripRows);
                    std::vector<std::uint8_t> row(static_cast<std::size_t>(kWidth * samples));
                    for (int y = 0; y < kHeight; ++y) {
                        for (std::size_t i = 0; i < row.size(); ++i)
                            row[i] =
                                static_cast<std::uint8_t>(i * 3 + static_cast<std::size_t>(y) * 41);
                        TIFFWriteScanline(t, row.data(), static_cast<std::uint32_t>(y), 0);
                    }
                    if (!readToTheEnd) // strips that lie partly behind the file's end
                        TIFFSetField(t, TIFFTAG_IMAGELENGTH, kHeight + 1);
                });
                if (!readToTheEnd) {
                    expectFailure(pictures, "rows.tif");
                    continue;
                }
                const QtImage picture(pictures.wide("rows.tif"));
                ASSERT_TRUE(picture.image()) << samples << " " << stripRows;
                const QImage& image = *picture.image();
                int wrong = 0;
                for (int y = 0; y < kHeight; ++y)
                    for (int x = 0; x < kWidth; ++x) {
                        const auto sample = [&](int i) {
                            return ((x * samples + i) * 3 + y * 41) & 0xFF;
                        };
                        wrong += image.pixel(x, y) != qRgba(sample(0), sample(1), sample(2),
                                                            samples == 4 ? sample(3) : 255);
                    }
                EXPECT_EQ(wrong, 0) << samples << " samples, strips of " << stripRows;
            }
}

TEST(Tiff, ReadsTheTopRowFirstHoweverTheFileIsTurned)
{
    const Pictures pictures;
    for (const auto& [orientation, topRowInFile] :
         {std::pair(ORIENTATION_TOPLEFT, 0), std::pair(ORIENTATION_BOTLEFT, 31)}) {
        pictures.tiff("turned.tif", [turned = orientation](TIFF* t) {
            setSize(t, 8, 32, 1, 8, PHOTOMETRIC_MINISBLACK);
            TIFFSetField(t, TIFFTAG_ORIENTATION, turned);
            for (int y = 0; y < 32; ++y) {
                std::vector<std::uint8_t> row(8, static_cast<std::uint8_t>(y));
                TIFFWriteScanline(t, row.data(), static_cast<std::uint32_t>(y), 0);
            }
        });
        const QtImage image(pictures.wide("turned.tif"));
        EXPECT_EQ(qRed(image.image()->pixel(0, 0)), topRowInFile);
    }
}

TEST(Tiff, BadFilesGiveOneLineAndNoPixelsAndNoMemory)
{
    const Pictures pictures;
    pictures.tiff("good.tif", [](TIFF* t) {
        setSize(t, 64, 64, 3, 8, PHOTOMETRIC_RGB);
        TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, 8);
        writeRows(t, 64, repeated<std::uint8_t>(64, {10, 20, 30}));
    });
    const Bytes good = pictures.read("good.tif");
    const long before = peakBytes();

    Bytes cut = good;
    cut.resize(200); // the directory lay at the end
    pictures.write("cut.tif", cut);
    expectFailure(pictures, "cut.tif");
    pictures.write("cut.tif", Bytes(good.begin(), good.begin() + 6));
    expectFailure(pictures, "cut.tif");

    const auto withSize = [&](std::uint32_t width, std::uint32_t height) {
        // The directory's entries: tag, type 4 (32 bits), one value.
        Bytes bytes = good;
        for (const auto& [tag, value] : {std::pair(0x00, width), std::pair(0x01, height)}) {
            const Bytes entry = {static_cast<unsigned char>(tag), 1, 3, 0, 1, 0, 0, 0};
            const auto found = std::search(bytes.begin(), bytes.end(), entry.begin(), entry.end());
            ASSERT_NE(found, bytes.end());
            found[2] = 4;
            for (int i = 0; i < 4; ++i)
                found[8 + i] = static_cast<unsigned char>(value >> 8 * i);
        }
        pictures.write("size.tif", bytes);
        expectFailure(pictures, "size.tif");
    };
    withSize(64, 4'000); // strips that are not there
    withSize(64, 8'000'000);
    withSize(0, 10);
    withSize(10, 0);
    withSize(0xFFFFFFFF, 0xFFFFFFFF);
    withSize(40'000, 40'000);
    pictures.tiff("float.tif", [](TIFF* t) {
        setSize(t, 4, 4, 3, 64, PHOTOMETRIC_RGB);
        TIFFSetField(t, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
        writeRows(t, 4, repeated<double>(4, {0.1, 0.2, 0.3}));
    });
    expectFailure(pictures, "float.tif");
    EXPECT_LT(peakBytes() - before, 50L * 1024 * 1024);
}
