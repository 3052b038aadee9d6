#include "OpenGL/GLCalls.h"
#include "OpenGL/ImageRig.h"
#include "support/BackgroundThread.h"
#include "support/OutputCapture.h"

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Images/PixelPacking.h"

#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <QGLFramebufferObject>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

namespace {

using F = iGPUImage;
using OpenGLImageTest = GPUImageTest;

iGPUImage::eFormat format(int value)
{
    return static_cast<iGPUImage::eFormat>(value);
}

// A host image of somebody else's: rows further apart than they are long, straight alpha or not.
class ForeignImage final : public iHostImage
{
public:
    ForeignImage(QImage image, int bits) : image_(std::move(image)), bits_(bits) {}

    XY<int> getSize() const override { return {image_.width() - 3, image_.height()}; }
    int getBitsPerPixel() const override { return bits_; }
    bool isAlphaPreMultiplied() const override
    {
        return image_.format() == QImage::Format_ARGB32_Premultiplied;
    }
    Tq::Ptr<iPixelGuard> lock() const override { return new Guard(image_, getSize()); }
    Tq::Ptr<iGraphicPrimitivesRenderer> getPrimitivesRenderer(bool) override { return {}; }
    Tq::Ptr<iImage> createCompatibleImage(const XY<int>&) const override { return {}; }

private:
    class Guard final : public iPixelGuard
    {
    public:
        Guard(QImage image, const XY<int>& size) : image_(std::move(image)), size_(size) {}
        std::uint8_t* getPixels() override { return image_.bits(); }
        const std::uint8_t* getPixels() const override { return image_.constBits(); }
        int getStride() const override { return image_.bytesPerLine(); }
        XY<int> getSize() const override { return size_; }

    private:
        QImage image_;
        XY<int> size_;
    };

    QImage image_;
    int bits_;
};

// What a host image's rows are in a format's storage.
std::vector<unsigned char> packedRows(const QImage& image, iGPUImage::eFormat f)
{
    const PixelPacking packing(f);
    const std::size_t rowBytes = packing.rowBytes(image.width());
    std::vector<unsigned char> rows(rowBytes * static_cast<std::size_t>(image.height()));
    for (int y = 0; y < image.height(); ++y)
        packing.packRow(reinterpret_cast<const std::uint32_t*>(image.constScanLine(y)),
                        image.width(), rows.data() + rowBytes * static_cast<std::size_t>(y));
    return rows;
}

// The texture's bytes as they were uploaded.
std::vector<unsigned char> storedRows(OpenGLImage& image, std::size_t bytes)
{
    std::vector<unsigned char> rows(bytes);
    const OpenGLContextProtector protector;
    glBindTexture(GL_TEXTURE_2D, image.getTextureID());
    glGetTexImage(GL_TEXTURE_2D, 0, GL_BGRA,
                  OpenGLImage::getStorageDetails(image.getSize(), image.getFormat()).glType,
                  rows.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    return rows;
}

} // namespace

TEST_F(OpenGLImageTest, StorageFollowsTheFormat)
{
    const struct
    {
        int format, width;
        unsigned int glType;
        int physicalWidth;
    } cases[] = {
        {0, 1920, GL_UNSIGNED_BYTE, 1440},
        {2, 1921, GL_UNSIGNED_BYTE, 1440},
        {7, 2, GL_UNSIGNED_BYTE, 1},
        {1, 1920, GL_UNSIGNED_SHORT, 1440},
        {8, 7, GL_UNSIGNED_SHORT, 5},
        {3, 1921, GL_UNSIGNED_BYTE, 1921},
        {4, 5, GL_UNSIGNED_BYTE, 5},
        {5, 5, GL_UNSIGNED_SHORT, 5},
        {6, 5, GL_UNSIGNED_INT_2_10_10_10_REV, 5},
        {9, 1921, GL_UNSIGNED_BYTE, 960},
        {12, 1, GL_UNSIGNED_BYTE, 0},
        {0, -5, GL_UNSIGNED_BYTE, -3},
        {10, -5, GL_UNSIGNED_BYTE, -2},
        {0, INT_MAX, GL_UNSIGNED_BYTE, 1610612735},
    };
    for (const auto& c : cases) {
        const TextureDetails details =
            OpenGLImage::getStorageDetails({c.width, 9}, format(c.format));
        EXPECT_EQ(details.glType, c.glType) << c.format;
        EXPECT_EQ(details.physicalSize, (XY<int>{c.physicalWidth, 9})) << c.format;
    }
}

TEST_F(OpenGLImageTest, AValueThatIsNoFormatIsReportedAndStoredAsTheUsualOne)
{
    for (const int value : {-1, 13, INT_MAX}) {
        TextureDetails details;
        EXPECT_EQ(outputOf([&] {
                      details = OpenGLImage::getStorageDetails({5, 4}, format(value));
                  }),
                  "assertion failed fmt == eARGB8 at OS/Mac/OpenGLImage line 171\n");
        EXPECT_EQ(details.glType, static_cast<unsigned int>(GL_UNSIGNED_BYTE));
        EXPECT_EQ(details.physicalSize, (XY<int>{5, 4}));
    }
}

TEST_F(OpenGLImageTest, HoldsAHostImagesPixelsExactlyInEveryFormat)
{
    for (const XY<int>& size : {XY<int>{64, 48}, {61, 3}, {2, 1}, {7, 5}})
        for (int value = 0; value < 13; ++value) {
            const Tq::Ptr<iHostImage> host = noise(size, static_cast<unsigned int>(value));
            const Tq::Ptr<OpenGLImage> image(new OpenGLImage(host, format(value)));
            ASSERT_NE(image->getTextureID(), 0u) << value;
            EXPECT_EQ(image->getSize(), size);
            EXPECT_EQ(image->getFormat(), format(value));
            EXPECT_EQ(image->getLocation(), iImage::eOnGPU);
            EXPECT_EQ(image->getBitsPerPixel(), PixelPacking(format(value)).bitsPerPixel());
            const auto expected = packedRows(pixelsOf(host), format(value));
            EXPECT_TRUE(storedRows(*image, expected.size()) == expected)
                << "format " << value << ", " << size.x << " x " << size.y;
        }
}

TEST_F(OpenGLImageTest, ComesBackAsItIsStoredWithWideComponentsNarrowed)
{
    const XY<int> size(1920, 4);
    const Tq::Ptr<iHostImage> host = noise(size);
    const QImage source = pixelsOf(host);
    for (int value = 0; value < 13; ++value) {
        const Tq::Ptr<OpenGLImage> image(new OpenGLImage(host, format(value)));
        const QImage back = textureOf(image);
        const XY<int> physical = image->getPhysicalSize();
        ASSERT_EQ(back.size(), QSize(physical.x, physical.y)) << value;
        const auto stored = packedRows(source, format(value));
        const bool shorts = PixelPacking(format(value)).bitsPerPixel() >= 48;
        int worst = 0;
        for (std::size_t i = 0; i < static_cast<std::size_t>(back.sizeInBytes()); ++i) {
            int component = stored[shorts ? 2 * i + 1 : i];
            if (shorts)
                component = (component << 8 | stored[2 * i]) * 255 / 65535;
            worst = std::max(worst, std::abs(component - back.constBits()[i]));
        }
        EXPECT_LE(worst, shorts ? 1 : 0) << "format " << value;
    }
}

TEST_F(OpenGLImageTest, UploadsHostImagesOfEveryKind)
{
    const QImage premultiplied = pixelsOf(noise({19, 6}));
    const QImage straight = premultiplied.convertToFormat(QImage::Format_ARGB32);
    const QRect shown(0, 0, 16, 6); // what the foreign image says it has
    const struct
    {
        const char* what;
        QImage pixels;
        QImage expected;
    } cases[] = {
        {"rows that are further apart", premultiplied, premultiplied.copy(shown)},
        {"straight alpha", straight,
         straight.copy(shown).convertToFormat(QImage::Format_ARGB32_Premultiplied)},
    };
    for (const auto& c : cases)
        for (const auto f : {F::eARGB8, F::eARGB16, F::eRGB8}) {
            const Tq::Ptr<iHostImage> host(new ForeignImage(c.pixels, 32));
            const Tq::Ptr<OpenGLImage> image(new OpenGLImage(host, f));
            EXPECT_EQ(image->getSize(), (XY<int>{16, 6})) << c.what;
            const auto expected = packedRows(c.expected, f);
            EXPECT_TRUE(storedRows(*image, expected.size()) == expected) << c.what;
        }

    Tq::Ptr<QtImage> opaque;
    outputOf([&] { opaque = new QtImage({4, 4}, QImage::Format_RGB32, 1); });
    opaque->image()->fill(0x00204060u); // no alpha: what stands in its place means nothing
    EXPECT_EQ(textureOf(new OpenGLImage(opaque, F::eARGB8)).pixel(3, 3), 0xFF204060u);

    const Tq::Ptr<QtImage> scaled(new QtImage({4, 4}, QtImage::getDefaultFormat(), 2));
    EXPECT_EQ(OpenGLImage(scaled, F::eARGB8).getSize(), (XY<int>{8, 8})) << "every pixel";
}

TEST_F(OpenGLImageTest, AHostImageWithoutUsablePixelsLeavesItWithoutATexture)
{
    const Tq::Ptr<iHostImage> hosts[] = {
        nullptr, new QtImage({0, 0}, QtImage::getDefaultFormat(), 1),
        new ForeignImage(QImage(9, 9, QImage::Format_ARGB32_Premultiplied), 24)};
    for (const auto& host : hosts) {
        Tq::Ptr<OpenGLImage> image;
        EXPECT_EQ(outputOf([&] { image = new OpenGLImage(host, F::eARGB8); }),
                  "assertion failed imageLock at OS/Mac/OpenGLImage line 34\n");
        EXPECT_EQ(image->getTextureID(), 0u);
        EXPECT_EQ(image->getSize(), (XY<int>{0, 0}));
        EXPECT_FALSE(image->getPrimitivesRenderer(true));
        EXPECT_FALSE(OpenGLUtils::instance().copyToHost(image));
    }
}

TEST_F(OpenGLImageTest, SizesAtTheEdges)
{
    const int max = OpenGLUtils::getMaxTextureSize().x;
    const struct
    {
        XY<int> size;
        bool possible, texture;
    } cases[] = {
        {{0, 10}, false, false},       {{10, 0}, false, false}, {{max + 1, 10}, false, false},
        {{10, max + 1}, false, false}, {{1, 1}, true, true},    {{max, 1}, true, true},
        {{1, max}, true, true},        {{-5, 10}, true, false}, {{10, INT_MIN}, true, false},
    };
    for (const auto& c : cases) {
        const auto name = std::to_string(c.size.x) + " x " + std::to_string(c.size.y);
        EXPECT_EQ(OpenGLUtils::isTextureSizePossible(c.size), c.possible) << name;
        Tq::Ptr<iGPUImage> image;
        const std::string printed =
            outputOf([&] { image = OpenGLImage::create(c.size, F::eARGB8); });
        EXPECT_EQ(static_cast<bool>(image), c.possible) << name;
        EXPECT_EQ(printed, !c.possible || c.texture ? ""
                                                    : "assertion failed impl_->isValid() at "
                                                      "OS/Mac/OpenGLImage line 121\n")
            << name;
        if (image) {
            EXPECT_EQ(image.dynamicCast<OpenGLImage>()->getTextureID() != 0, c.texture) << name;
            EXPECT_EQ(static_cast<bool>(image->getPrimitivesRenderer(false)), c.texture) << name;
        }
    }
    Tq::Ptr<iGPUImage> narrow;
    EXPECT_EQ(outputOf([&] {
                  narrow = OpenGLImage::create({1, 8}, F::eRGB8);
              }),
              "assertion failed impl_->isValid() at OS/Mac/OpenGLImage line 121\n")
        << "no texel fits";
    OpenGLTextureCache::instance().clear();
    narrow.reset();
    EXPECT_EQ(OpenGLTextureCache::instance().size(), 0u) << "nothing to take over";
}

TEST_F(OpenGLImageTest, IsRecycledWithoutSpecifyingATexture)
{
    auto first = makeImage({320, 200}), second = makeImage({320, 200});
    const unsigned int names[] = {first->getTextureID(), second->getTextureID()};
    clear(*first, {1, 0, 0});
    clear(*second, {1, 0, 0});
    first.reset();
    second.reset();
    EXPECT_EQ(OpenGLTextureCache::instance().size(), 2u);

    const int specified = GLCalls::texturesSpecified(), uploads = GLCalls::uploads();
    const auto third = makeImage({320, 200});
    EXPECT_TRUE(third->getTextureID() == names[0] || third->getTextureID() == names[1]);
    EXPECT_EQ(GLCalls::uploads(), uploads);
    EXPECT_EQ(textureOf(third).pixel(160, 100), 0xFFFF0000u) << "the pixels are what was there";

    const Tq::Ptr<iHostImage> host = noise({320, 200});
    const Tq::Ptr<OpenGLImage> fourth(new OpenGLImage(host, F::eRGB32));
    EXPECT_EQ(GLCalls::uploads(), uploads + 1) << "the same storage, another format";
    EXPECT_EQ(GLCalls::texturesSpecified(), specified);
    const auto expected = packedRows(pixelsOf(host), F::eRGB32);
    EXPECT_TRUE(storedRows(*fourth, expected.size()) == expected) << "no old pixel is left";

    const auto other = makeImage({200, 320});
    EXPECT_EQ(GLCalls::texturesSpecified(), specified + 1);
}

TEST_F(OpenGLImageTest, AllocatingTwiceIsReportedAndGoesOn)
{
    const auto image = makeImage({8, 8});
    EXPECT_EQ(outputOf([&] {
                  image->allocTexture({16, 4}, nullptr);
              }),
              "assertion failed impl_ == NULL at OS/Mac/OpenGLImage line 87\n");
    EXPECT_EQ(image->getSize(), (XY<int>{16, 4}));
    EXPECT_EQ(textureOf(image).size(), QSize(16, 4));
    EXPECT_EQ(outputOf([&] {
                  image->allocTexture({0, 4}, nullptr);
              }),
              "assertion failed impl_ == NULL at OS/Mac/OpenGLImage line 87\n");
    EXPECT_EQ(image->getSize(), (XY<int>{16, 4})) << "an impossible size changes nothing";
}

TEST_F(OpenGLImageTest, AnAdoptedFramebufferIsNotRecycled)
{
    Tq::Ptr<QGLFramebufferObject> framebuffer;
    {
        const OpenGLContextProtector protector;
        framebuffer = new QGLFramebufferObject(31, 17, GL_TEXTURE_2D);
    }
    Tq::Ptr<OpenGLImage> image(new OpenGLImage(framebuffer));
    EXPECT_EQ(image->getSize(), (XY<int>{31, 17}));
    EXPECT_EQ(image->getFormat(), F::eARGB8);
    EXPECT_EQ(image->getTextureID(), framebuffer->texture());
    clear(*image, {0, 0, 1});
    image.reset();
    EXPECT_EQ(OpenGLTextureCache::instance().size(), 0u);
    ASSERT_EQ(framebuffer.useCount(), 1);
    EXPECT_EQ(textureOf(new OpenGLImage(framebuffer)).pixel(30, 16), 0xFF0000FFu);
    framebuffer.reset();
}

TEST_F(OpenGLImageTest, BindingReportsWhatCannotBeBound)
{
    const std::string refusedBind = "assertion failed false at OS/Mac/OpenGLImage line 56\n";
    const std::string refusedUnbind = "assertion failed false at OS/Mac/OpenGLImage line 62\n";
    const auto image = makeImage({4, 4});
    EXPECT_EQ(outputOf([&] { image->bind(); }), refusedBind) << "no context";
    EXPECT_EQ(outputOf([&] { image->unbind(); }), refusedUnbind);
    Tq::Ptr<OpenGLImage> none;
    outputOf([&] { none = new OpenGLImage(Tq::Ptr<iHostImage>(), F::eARGB8); });
    const OpenGLContextProtector protector;
    EXPECT_EQ(outputOf([&] { none->bind(); }), refusedBind);
    EXPECT_EQ(outputOf([&] { none->unbind(); }), refusedUnbind);
    EXPECT_EQ(outputOf([&] {
                  image->bind();
                  image->unbind();
              }),
              "");
}

TEST_F(OpenGLImageTest, ItsLockHoldsTheGLLockWithAContextCurrent)
{
    auto image = makeImage({4, 4});
    Tq::Ptr<iObject> held = image->lock();
    EXPECT_TRUE(OpenGLContextProtector::hasContext());
    image.reset();
    BackgroundThread other([] { return OpenGLUtils::instance().getTextureDimensions(0).x; });
    EXPECT_TRUE(other.waitUntilBlocked());
    held.reset();
    EXPECT_EQ(other.result(), 0);
    EXPECT_FALSE(OpenGLContextProtector::hasContext());
    EXPECT_EQ(OpenGLTextureCache::instance().size(), 1u) << "the image was held, and went";
}

TEST_F(OpenGLImageTest, ACompatibleImageHasTheFormat)
{
    const auto image = makeImage({8, 8}, F::eARGB16);
    const auto other = image->createCompatibleImage({3, 2}).dynamicCast<OpenGLImage>();
    ASSERT_TRUE(other);
    EXPECT_EQ(other->getFormat(), F::eARGB16);
    EXPECT_EQ(other->getSize(), (XY<int>{3, 2}));
    EXPECT_FALSE(image->createCompatibleImage({0, 2}));
}

TEST_F(OpenGLImageTest, ReadingBackRefusesATextureOfAnotherSize)
{
    const auto image = makeImage({8, 8});
    OpenGLUtils& utils = OpenGLUtils::instance();
    for (const XY<int>& size : {XY<int>{4, 8}, {8, 9}, {0, 0}, {-1, 8}}) {
        Tq::Ptr<iHostImage> host;
        const std::string printed = outputOf(
            [&] { host = utils.copyToHost(image->getTextureID(), size, GL_UNSIGNED_BYTE); });
        EXPECT_FALSE(host);
        EXPECT_EQ(printed,
                  size.x > 0 ? "OpenGLUtils::copyToHost() : the texture has another size\n" : "");
    }
    EXPECT_EQ(utils.getTextureDimensions(image->getTextureID()), (XY<int>{8, 8}));
    EXPECT_EQ(utils.getTextureDimensions(0xFFFFFF), (XY<int>{0, 0}));
    EXPECT_FALSE(utils.copyToHost(nullptr));
}

TEST_F(OpenGLImageTest, TheBlackTextureIsOpaqueBlack)
{
    const Tq::Ptr<OpenGLImage> black = OpenGLUtils::instance().getBlackTexture();
    ASSERT_TRUE(black);
    QImage expected(256, 256, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::black);
    EXPECT_EQ(textureOf(black), expected);
    EXPECT_EQ(OpenGLUtils::instance().getBlackTexture(), black) << "made once";
}
