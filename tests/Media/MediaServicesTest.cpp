#include "support/ChildProcess.h"
#include "support/ImageCompare.h"
#include "support/OutputCapture.h"
#include "support/Pictures.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>
#include <unistd.h>

namespace {

iMediaServices* media()
{
    return OS()->mediaServices();
}

// Flat quarters, which even the lossy format keeps: opaque red, green, half-transparent blue,
// clear.
Tq::Ptr<iHostImage> quarters()
{
    const Tq::Ptr<iHostImage> surface = media()->createHostSurface({64, 32});
    const auto renderer = surface->getPrimitivesRenderer(false);
    const struct
    {
        Tq::Rectangle<int> area;
        NormalisedRGB colour;
    } parts[] = {{{0, 0, 32, 16}, {1, 0, 0}},
                 {{32, 0, 64, 16}, {0, 1, 0}},
                 {{0, 16, 32, 32}, {0, 0, 1, 0.5f}}};
    for (const auto& part : parts) {
        RectDescription desc;
        desc.rect_ = part.area;
        desc.topColour_ = desc.bottomColour_ = part.colour;
        renderer->render(desc);
    }
    return surface;
}

// Read through the interface, like a client would.
QImage pixelsOf(const Tq::Ptr<iHostImage>& image, QImage::Format format)
{
    const Tq::Ptr<iPixelGuard> guard = image->lock();
    const XY<int> size = guard->getSize();
    return QImage(guard->getPixels(), size.x, size.y, guard->getStride(), format)
        .convertToFormat(QImage::Format_ARGB32);
}

} // namespace

TEST(MediaServices, RefusesToGrabAScreenThatIsNotThere)
{
    OutputCapture output;
    EXPECT_FALSE(media()->grabScreen({}));
    EXPECT_EQ(output.text(),
              "MediaServices::grabScreen() : the desktop does not let its screen be seen\n");
}

TEST(MediaServices, RefusesToRecordAScreenThatIsNotThere)
{
    LightweightString<wchar_t> path = L"as it was";
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(media()->beginScreenCapture(path, "")); }),
              "MediaServices::beginScreenCapture() : the desktop does not let its screen be seen\n"
              "assertion failed b at OS/Mac/MediaServices line 364\n");
    EXPECT_EQ(path, L"as it was");
    EXPECT_EQ(outputOf([] { media()->endScreenCapture(); }), "");
}

TEST(MediaServices, HasNoSound)
{
    EXPECT_FALSE(media()->createAudioBuffer(4096));
    EXPECT_EQ(media()->getNumAudioOutputChannels(), 0u);
}

TEST(MediaServices, NamesTheSameTypesForLoadingAndSaving)
{
    const std::pair<std::vector<LightweightString<wchar_t>>, const wchar_t*> expected[] = {
        {{L"PNG"}, L"Portable Network Graphic"}, {{L"JPG", L"JPEG"}, L"Jpeg"},
        {{L"BMP"}, L"Windows Bitmap"},           {{L"TIF", L"TIFF"}, L"Tagged Image File Format"},
        {{L"PPM"}, L"Portable PixMap"},
    };
    std::vector<iMediaServices::ImageType> loadable, savable(1);
    media()->getLoadableImageTypes(loadable);
    media()->getSavableImageTypes(savable);
    ASSERT_EQ(loadable.size(), std::size(expected));
    ASSERT_EQ(savable.size(), std::size(expected) + 1) << "appended to what is there";
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(loadable[i].extensions_, expected[i].first);
        EXPECT_EQ(loadable[i].description_, expected[i].second);
        EXPECT_EQ(savable[i + 1].extensions_, expected[i].first);
    }
}

TEST(MediaServices, WhatIsSavedComesBackInEveryType)
{
    const Pictures pictures;
    const Tq::Ptr<iHostImage> source = quarters();
    const QImage lossless = pixelsOf(source, QImage::Format_ARGB32_Premultiplied);
    const QImage opaque = lossless.convertToFormat(QImage::Format_RGB32);
    const struct
    {
        const char* name;
        bool keepsAlpha;
        int tolerance;
    } cases[] = {{"a.png", true, 1},  {"a.PNG", true, 1},   {"a.tif", true, 1},
                 {"a.TIFF", true, 1}, {"a.bmp", false, 1},  {"a.ppm", false, 1},
                 {"a.jpg", false, 8}, {"a.jpeg", false, 8}, {"\u00e9\u65e5.png", true, 1}};
    for (const auto& c : cases) {
        ASSERT_TRUE(media()->saveImage(source, pictures.wide(c.name))) << c.name;
        const Tq::Ptr<iHostImage> back = media()->loadImage(pictures.wide(c.name));
        ASSERT_EQ(back->getSize(), (XY<int>{64, 32})) << c.name;
        EXPECT_FALSE(back->isAlphaPreMultiplied());
        const QImage pixels =
            pixelsOf(back, c.keepsAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
        // Where the colour of a clear or translucent pixel is the writer's choice, the opaque half
        // counts.
        const QRect compared = c.keepsAlpha ? pixels.rect() : QRect(0, 0, 64, 15);
        EXPECT_TRUE(imagesAgree(pixels.copy(compared),
                                (c.keepsAlpha ? lossless : opaque).copy(compared),
                                "saved-and-loaded", {c.tolerance, 0.08}))
            << c.name;
    }
}

TEST(MediaServices, WritesTiffWithThePublishedTags)
{
    const Pictures pictures;
    ASSERT_TRUE(media()->saveImage(quarters(), pictures.wide("p.tiff")));
    TIFF* tiff = TIFFOpen(pictures.path("p.tiff").c_str(), "r");
    ASSERT_TRUE(tiff);
    const auto tag = [&](std::uint32_t number) {
        std::uint16_t value = 0;
        EXPECT_TRUE(TIFFGetField(tiff, number, &value)) << number;
        return value;
    };
    std::uint32_t width = 0, height = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
    EXPECT_EQ(width, 64u);
    EXPECT_EQ(height, 32u);
    EXPECT_EQ(tag(277), 4); // samples per pixel
    EXPECT_EQ(tag(258), 8); // bits per sample
    EXPECT_EQ(tag(274), 1); // top left
    EXPECT_EQ(tag(284), 1); // contiguous
    EXPECT_EQ(tag(262), 2); // RGB
    std::vector<std::uint8_t> row(64 * 4);
    EXPECT_EQ(TIFFReadScanline(tiff, row.data(), 3, 0), 1);
    EXPECT_EQ((std::vector<std::uint8_t>(row.end() - 4, row.end())),
              (std::vector<std::uint8_t>{0, 255, 0, 255}));
    EXPECT_EQ(TIFFReadScanline(tiff, row.data(), 20, 0), 1);
    EXPECT_EQ(row[2], 255) << "colours are not premultiplied";
    EXPECT_EQ(row[3], 127);
    TIFFClose(tiff);
}

TEST(MediaServices, SavesScaledSurfacesWithAllTheirPixels)
{
    const Pictures pictures;
    const Tq::Ptr<iHostImage> loaded = [&] {
        media()->saveImage(quarters(), pictures.wide("a.jpg"));
        return media()->loadImage(pictures.wide("a.jpg"));
    }();
    EXPECT_EQ(loaded->getBitsPerPixel(), 0) << "32-bit RGB, deliberately";
    ASSERT_TRUE(media()->saveImage(loaded, pictures.wide("b.tif"))) << "and yet it can be saved";
    EXPECT_EQ(media()->loadImage(pictures.wide("b.tif"))->getSize(), (XY<int>{64, 32}));
}

TEST(MediaServices, RefusesToSaveWhatItCannot)
{
    const Pictures pictures;
    pictures.write("kept.xyz", {1, 2, 3});
    const Tq::Ptr<iHostImage> source = quarters();
    EXPECT_EQ(outputOf([&] {
                  for (const char* name : {"kept.xyz", "none", "no/such/folder/a.png",
                                           "no/such/folder/a.tif", "no/such/folder/a.jpg"})
                      EXPECT_FALSE(media()->saveImage(source, pictures.wide(name))) << name;
                  for (const char* name : {"empty.png", "empty.tif"})
                      EXPECT_FALSE(media()->saveImage(nullptr, pictures.wide(name)));
              }),
              "");
    EXPECT_EQ(pictures.read("kept.xyz"), (Pictures::Bytes{1, 2, 3})) << "untouched";
    EXPECT_FALSE(media()->saveImage(source, L"/dev/full/a.tif"));
}

TEST(MediaServices, AFullDiskIsReported)
{
    const Pictures pictures;
    const Tq::Ptr<iHostImage> large = media()->createHostSurface({2000, 1000});
    for (const char* name : {"full.tif", "full.bmp"}) {
        ASSERT_EQ(symlink("/dev/full", pictures.path(name).c_str()), 0);
        EXPECT_FALSE(media()->saveImage(large, pictures.wide(name))) << name;
    }
}

TEST(MediaServices, APictureThatCannotBeSavedLeavesTheOldOne)
{
    const Pictures pictures;
    const Pictures::Bytes old{1, 2, 3};
    for (const char* name : {"a.tif", "a.bmp", "a.png", "a.jpg", "a.ppm"})
        pictures.write(name, old);
    EXPECT_EQ(inChild([&] {
                  limitFileSize(4);
                  // Small enough that the toolkit needs no threads, which the child has not got.
                  const Tq::Ptr<iHostImage> picture = media()->createHostSurface({100, 100});
                  int saved = 0;
                  for (const char* name : {"a.tif", "a.bmp", "a.png", "a.jpg", "a.ppm"})
                      saved += media()->saveImage(picture, pictures.wide(name));
                  return saved;
              }),
              0);
    for (const char* name : {"a.tif", "a.bmp", "a.png", "a.jpg", "a.ppm"})
        EXPECT_EQ(pictures.read(name), old) << name;
    const std::filesystem::directory_iterator entries(pictures.path(""));
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 5) << "and nothing else";
}

TEST(MediaServices, AnAbsentFileIsNullAndAnUnreadableOneHasNoPixels)
{
    const Pictures pictures;
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(media()->loadImage(pictures.wide("absent.png"))); }), "");
    pictures.write("text.png", {'t'});
    Tq::Ptr<iHostImage> image;
    EXPECT_EQ(outputOf([&] { image = media()->loadImage(pictures.wide("text.png")); }),
              "QtImage::QtImage( " + pictures.path("text.png") + " ) failed\n");
    EXPECT_EQ(image->getSize(), (XY<int>{0, 0}));
    EXPECT_FALSE(media()->saveImage(image, pictures.wide("again.png")));
    EXPECT_FALSE(media()->loadImage(iDLL::Resource{}));
    EXPECT_FALSE(media()->loadThumbnail(pictures.wide("text.png"), 16));
}

TEST(MediaServices, SurfacesStartClearAndAreRefusedWhereTheyCannotBe)
{
    const Tq::Ptr<iHostImage> surface = media()->createHostSurface({3, 2});
    EXPECT_TRUE(surface->isAlphaPreMultiplied());
    EXPECT_EQ(surface->getBitsPerPixel(), 32);
    EXPECT_EQ(surface->getStride(), 12);
    EXPECT_EQ(*surface->lock()->getPixels(), 0);
    constexpr int kMax = std::numeric_limits<int>::max();
    for (const XY<int>& size : {XY<int>{0, 1}, {1, -1}, {kMax, kMax}})
        EXPECT_FALSE(media()->createHostSurface(size));
}

TEST(MediaServices, MakesFontsForSurfaces)
{
    const Tq::Ptr<iFont> font = media()->createHostSurfaceFont(L"Tahoma", 18, iFont::eBold);
    ASSERT_TRUE(font);
    EXPECT_EQ(font->getStyle(), iFont::eBold);
    EXPECT_GT(font->measure(L"text").x, 0);
}

TEST(MediaServices, WithoutADisplayTheGPUIsRefusedWithOneLine)
{
    const std::string refusal = "OpenGLUtils::instance() : no display\n";
    const Tq::Ptr<iHostImage> source = quarters();
    const std::function<bool()> calls[] = {
        [] {
            return static_cast<bool>(media()->createGPUSurface({4, 4}, iGPUImage::eARGB8));
        },
        [&] { return static_cast<bool>(media()->copyToGPU(source, iGPUImage::eARGB8)); },
        [] { return static_cast<bool>(media()->copyToHost(Tq::Ptr<iGPUImage>())); },
        [] { return static_cast<bool>(media()->getGPULock()); },
    };
    for (const auto& call : calls)
        EXPECT_EQ(outputOf([&] { EXPECT_FALSE(call()); }), refusal);
    EXPECT_EQ(outputOf([] {
                  media()->resetGPUContext();
                  media()->clearCaches();
                  EXPECT_TRUE(media()->createGPUReadySurface({4, 4}, iGPUImage::eUYVY));
              }),
              "");
}
