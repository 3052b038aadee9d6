// What QtGraphicPrimitivesRenderer draws of images, and scrolling an image within itself.
#include "OS/Mac/Painting/QtRegion.h"
#include "Painting/Canvas.h"
#include "support/ImageCompare.h"
#include "support/OutputCapture.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using R = Tq::Rectangle<int>;

// Every pixel tells where it is.
Tq::Ptr<QtImage> numbered(int width, int height, unsigned char scale = 1)
{
    const Tq::Ptr<QtImage> image =
        new QtImage({width, height}, QImage::Format_ARGB32_Premultiplied, scale);
    for (int y = 0; y < height * scale; ++y)
        for (int x = 0; x < width * scale; ++x)
            image->image()->setPixel(x, y, qRgb(x * 3, y * 3, 99));
    return image;
}

ImageDescription blit(const Tq::Ptr<iImageBase>& image, const R& source, const R& dest)
{
    ImageDescription desc;
    desc.image_ = image;
    desc.sourceROI_ = source;
    desc.destROI_ = dest;
    return desc;
}

// An image that is no QtImage: two half-transparent pixels with a stride of 16 bytes.
class ForeignImage final : public iHostImage
{
public:
    explicit ForeignImage(bool premultiplied) : premultiplied_(premultiplied) {}
    XY<int> getSize() const override { return {2, 1}; }
    int getBitsPerPixel() const override { return 32; }
    bool isAlphaPreMultiplied() const override { return premultiplied_; }
    Tq::Ptr<iGraphicPrimitivesRenderer> getPrimitivesRenderer(bool) override { return {}; }
    Tq::Ptr<iImage> createCompatibleImage(const XY<int>&) const override { return {}; }
    Tq::Ptr<iPixelGuard> lock() const override { return new Guard; }

private:
    struct Guard final : iPixelGuard
    {
        std::uint8_t* getPixels() override { return bytes; }
        const std::uint8_t* getPixels() const override { return bytes; }
        int getStride() const override { return 16; }
        XY<int> getSize() const override { return {2, 1}; }
        alignas(4) std::uint8_t bytes[16] = {0, 0, 128, 128, 0, 128, 0, 128};
    };
    bool premultiplied_;
};

class NoHostImage final : public iImageBase
{
};

// What the rows of an image say about where they came from.
std::vector<int> rowsOf(const QtImage& image, int x)
{
    std::vector<int> rows;
    for (int y = 0; y < image.image()->height(); ++y)
        rows.push_back(qGreen(image.image()->pixel(x, y)) / 3);
    return rows;
}

void scroll(const Tq::Ptr<QtImage>& image, const R& source, const R& dest,
            const Tq::Ptr<iRegion>& clip = nullptr)
{
    const auto renderer = image->getPrimitivesRenderer(false);
    renderer->setClipRegion(clip);
    renderer->render(blit(image, source, dest));
}

} // namespace

TEST(Images, AreCopiedPixelByPixel)
{
    const Tq::Ptr<QtImage> source = numbered(20, 20);
    Canvas canvas;
    canvas.draw(blit(source, {2, 3, 12, 9}, {30, 20, 40, 26}));
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 10; ++x)
            ASSERT_EQ(canvas.at(30 + x, 20 + y), source->image()->pixel(2 + x, 3 + y))
                << x << " " << y;
    EXPECT_EQ(canvas.at(40, 20), Canvas::kGround);
    EXPECT_EQ(canvas.at(30, 26), Canvas::kGround);
}

TEST(Images, OfUnequalRectanglesAreDrawnAsFarAsBothReach)
{
    const Tq::Ptr<QtImage> source = numbered(20, 20);
    for (const auto& [from, to] : {std::pair(R{0, 0, 5, 10}, R{10, 10, 30, 14}),
                                   std::pair(R{0, 0, 20, 4}, R{10, 10, 15, 40})}) {
        Canvas canvas;
        canvas.draw(blit(source, from, to));
        EXPECT_EQ(canvas.at(14, 13), source->image()->pixel(4, 3));
        EXPECT_EQ(canvas.at(15, 10), Canvas::kGround);
        EXPECT_EQ(canvas.at(10, 14), Canvas::kGround);
    }
}

TEST(Images, BlendOrReplaceAndTakeTheirOpacity)
{
    const struct
    {
        bool blend;
        float opacity;
        QRgb result; // of half-transparent white on the ground, as stored: premultiplied
    } cases[] = {{true, 1.0f, 0xFF8890A0}, {false, 1.0f, 0x80808080}, {true, 0.5f, 0xFF4C5870}};
    for (const auto& c : cases) {
        const Tq::Ptr<QtImage> white = new QtImage({8, 8}, QtImage::getDefaultFormat(), 1);
        white->image()->fill(QColor(255, 255, 255, 128));
        ImageDescription desc = blit(white, {0, 0, 8, 8}, {4, 4, 12, 12});
        desc.blend_ = c.blend;
        desc.opacity_ = c.opacity;
        Canvas canvas;
        canvas.draw(desc);
        const QRgb got = canvas.at(6, 6);
        EXPECT_NEAR(qRed(got), qRed(c.result), 2) << c.blend << c.opacity;
        EXPECT_NEAR(qGreen(got), qGreen(c.result), 2) << c.blend << c.opacity;
        EXPECT_NEAR(qBlue(got), qBlue(c.result), 2) << c.blend << c.opacity;
        EXPECT_NEAR(qAlpha(got), qAlpha(c.result), 2) << c.blend << c.opacity;
    }
}

TEST(Images, ResetOpacityAndBlendingBehindThem)
{
    ImageDescription faint = blit(numbered(4, 4), {0, 0, 4, 4}, {0, 0, 4, 4});
    faint.opacity_ = 0.1f;
    RectDescription translucent;
    translucent.rect_ = {10, 10, 20, 20};
    translucent.topColour_ = translucent.bottomColour_ = {1, 1, 1, 0.5f};
    Canvas canvas;
    canvas.draw([&](iGraphicPrimitivesRenderer& renderer) {
        renderer.render(faint);
        renderer.render(translucent);
    });
    EXPECT_EQ(qAlpha(canvas.at(15, 15)), 127);
}

TEST(Images, OfOthersMakingAreReadThroughTheirGuard)
{
    for (const bool premultiplied : {true, false}) {
        Canvas canvas;
        canvas.draw(blit(new ForeignImage(premultiplied), {0, 0, 2, 1}, {5, 5, 7, 6}));
        EXPECT_NEAR(qRed(canvas.at(5, 5)), premultiplied ? 128 + 8 : 64 + 8, 2);
        EXPECT_NEAR(qGreen(canvas.at(6, 5)), premultiplied ? 128 + 16 : 64 + 16, 2);
        EXPECT_EQ(canvas.at(7, 5), Canvas::kGround);
    }
}

TEST(Images, ThatCannotBeDrawnAreSkippedSilently)
{
    const Tq::Ptr<iImageBase> empty = new QtImage({0, 5}, QtImage::getDefaultFormat(), 1);
    constexpr int kMax = std::numeric_limits<int>::max();
    Canvas canvas;
    EXPECT_EQ(outputOf([&] {
                  for (const Tq::Ptr<iImageBase>& image :
                       {Tq::Ptr<iImageBase>(), empty, Tq::Ptr<iImageBase>(new NoHostImage)})
                      canvas.draw(blit(image, {0, 0, 5, 5}, {0, 0, 5, 5}));
                  canvas.draw(blit(numbered(4, 4), {100, 100, 120, 120}, {0, 0, 20, 20}));
                  canvas.draw(blit(numbered(4, 4), {0, 0, 4, 4}, {kMax - 4, kMax - 4, kMax, kMax}));
              }),
              "");
    EXPECT_TRUE(imagesAgree(canvas.pixels(), Canvas().pixels(), "skipped-images"));
}

TEST(Images, OfScaleTwoKeepTheirPixelsOnATargetOfScaleTwo)
{
    const Tq::Ptr<QtImage> source = numbered(20, 20, 2);
    Canvas canvas(32, 24, 2);
    canvas.draw(blit(source, {2, 3, 12, 9}, {10, 10, 20, 16}));
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 20; ++x)
            ASSERT_EQ(canvas.at(20 + x, 20 + y), source->image()->pixel(4 + x, 6 + y))
                << x << " " << y;
    EXPECT_EQ(canvas.at(40, 20), Canvas::kGround);
}

TEST(Scrolling, MovesRowsUpWithinAnImage)
{
    const Tq::Ptr<QtImage> image = numbered(10, 8);
    EXPECT_EQ(outputOf([&] { scroll(image, {2, 3, 8, 8}, {2, 1, 8, 6}); }), "");
    EXPECT_EQ(rowsOf(*image, 5), (std::vector<int>{0, 3, 4, 5, 6, 7, 6, 7}));
    EXPECT_EQ(rowsOf(*image, 1), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}))
        << "other columns stay";
    EXPECT_EQ(rowsOf(*image, 8), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST(Scrolling, IsCutToTheImageAndToTheClip)
{
    const Tq::Ptr<QtImage> beyond = numbered(10, 8);
    scroll(beyond, {-5, 2, 30, 40}, {-5, -1, 30, 37});
    EXPECT_EQ(rowsOf(*beyond, 0), (std::vector<int>{3, 4, 5, 6, 7, 5, 6, 7}));

    const Tq::Ptr<QtImage> clipped = numbered(10, 8);
    scroll(clipped, {0, 1, 10, 8}, {0, 0, 10, 7}, new QtRegion(R{3, 2, 7, 6}));
    EXPECT_EQ(rowsOf(*clipped, 5), (std::vector<int>{0, 1, 3, 4, 5, 5, 6, 7}));
    EXPECT_EQ(rowsOf(*clipped, 2), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST(Scrolling, CountsLogicalPixelsOnAScaledImage)
{
    const Tq::Ptr<QtImage> image = numbered(10, 4, 2);
    scroll(image, {0, 1, 10, 4}, {0, 0, 10, 3});
    EXPECT_EQ(rowsOf(*image, 19), (std::vector<int>{2, 3, 4, 5, 6, 7, 6, 7}));
}

TEST(Scrolling, SidewaysAndUpIsReportedAndDoneAllTheSame)
{
    const Tq::Ptr<QtImage> image = numbered(10, 8);
    EXPECT_EQ(outputOf([&] {
                  scroll(image, {2, 3, 8, 8}, {3, 1, 9, 6});
              }),
              "assertion failed ( desc.destROI_.left() == desc.sourceROI_.left() ) && "
              "( desc.destROI_.right() == desc.sourceROI_.right() ) at "
              "OS/Mac/QtGraphicPrimitivesRenderer line 392\n");
    EXPECT_EQ(image->image()->pixel(3, 1), qRgb(2 * 3, 3 * 3, 99));
    EXPECT_EQ(image->image()->pixel(8, 5), qRgb(7 * 3, 7 * 3, 99));
}

TEST(Scrolling, OfUnequalSizesIsReportedAndStaysInsideTheImage)
{
    const Tq::Ptr<QtImage> image = numbered(10, 8);
    const std::string printed = outputOf([&] { scroll(image, {0, 2, 10, 8}, {0, 0, 8, 3}); });
    EXPECT_NE(printed.find("line 392"), std::string::npos);
    EXPECT_NE(printed.find("clippedSourceROI.width() == clippedDestROI.width() at "
                           "OS/Mac/QtGraphicPrimitivesRenderer line 432\n"),
              std::string::npos);
    EXPECT_NE(printed.find("clippedSourceROI.height() == clippedDestROI.height() at "
                           "OS/Mac/QtGraphicPrimitivesRenderer line 433\n"),
              std::string::npos);
    EXPECT_EQ(rowsOf(*image, 0), (std::vector<int>{2, 3, 4, 3, 4, 5, 6, 7}));
}

TEST(Scrolling, DownOrSidewaysOverItselfKeepsThePicture)
{
    const Tq::Ptr<QtImage> down = numbered(10, 8);
    scroll(down, {0, 0, 10, 6}, {0, 2, 10, 8});
    EXPECT_EQ(rowsOf(*down, 4), (std::vector<int>{0, 1, 0, 1, 2, 3, 4, 5}));

    const Tq::Ptr<QtImage> right = numbered(10, 8);
    scroll(right, {0, 0, 8, 8}, {2, 0, 10, 8});
    for (int x = 2; x < 10; ++x)
        EXPECT_EQ(right->image()->pixel(x, 3), qRgb((x - 2) * 3, 9, 99));
}

TEST(Scrolling, OfAbsurdRectanglesTouchesNothingElse)
{
    constexpr int kMin = std::numeric_limits<int>::min();
    constexpr int kMax = std::numeric_limits<int>::max();
    const Tq::Ptr<QtImage> image = numbered(10, 8);
    outputOf([&] {
        scroll(image, {kMin, 5, kMax, kMax}, {kMin, kMin, kMax, kMax});
        scroll(image, {kMax, 5, kMin, 6}, {kMin, 4, kMax, 6});
        scroll(image, {0, 5, 10, 3}, {0, 4, 10, 8});
    });
    EXPECT_EQ(image->getPhysicalSize(), (XY<int>{10, 8}));
}
