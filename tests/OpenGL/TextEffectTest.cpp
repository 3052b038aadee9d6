// Texts as the shipped effect draws them.
#include "OpenGL/DrawingRig.h"
#include "OpenGL/ImageRig.h"
#include "support/FreshProcess.h"
#include "support/ImageCompare.h"
#include "support/OutputCapture.h"

#include "OS/Mac/OpenGL/Text/OpenGLFont.h"
#include "OS/Mac/OpenGL/Text/TextImageCache.h"
#include "OS/Mac/Painting/QtFont.h"

#include <cmath>
#include <random>

namespace {

// Its texts are noise: each channel covers something else, as glyphs do on a screen with stripes of
// colour.
class NoisyFont final : public OpenGLFontBase
{
public:
    NoisyFont() : OpenGLFontBase(QtFont::make(L"Tahoma", 13, 0, 0)) {}

    Tq::Ptr<iHostImage> renderHostText(const TextDescription& desc) override
    {
        ++rendered;
        const XY<int> size = measure(desc.text_);
        const Tq::Ptr<QtImage> image = new QtImage(size, QtImage::getDefaultFormat(), 1);
        std::mt19937 random(7);
        for (int y = 0; y < size.y; ++y)
            for (int x = 0; x < size.x; ++x)
                image->image()->setPixel(x, y, 0xFF000000u | static_cast<QRgb>(random()));
        picture = *image->image();
        return image;
    }

    int rendered = 0;
    QImage picture;
};

Tq::Ptr<NoisyFont> noisyFont()
{
    OpenGLUtils::instance();
    return new NoisyFont;
}

} // namespace

TEST(TextEffect, EachChannelTakesOnItsOwnShareOfTheFaceColour)
{
    const Tq::Ptr<NoisyFont> font = noisyFont();
    const NormalisedRGB faces[] = {{1, 1, 1}, {1, 0.5f, 0}, {0.2f, 0.4f, 0.8f, 0.6f}, {1, 0, 0, 0}};
    for (const QRgb ground : {0xFF102040u, 0xFFFFFFFFu, 0x80402010u, 0x00000000u}) {
        for (const NormalisedRGB& face : faces) {
            const DrawingRig rig(80, 30, 1.0, OpenGLGraphicPrimitivesRenderer::eTexture, ground);
            const QImage drawn = rig.withGL([&](iGraphicPrimitivesRenderer& r) {
                r.render(TextDescription(L"stripes", {10, 5}, face, eTextLeft, font));
            });
            QImage expected(80, 30, QImage::Format_ARGB32_Premultiplied);
            expected.fill(ground);
            const auto alpha = static_cast<double>(NormalisedRGB::toByte(face.alpha)) / 255;
            const auto mixed = [](int below, double colour, double share) {
                return int(std::lround(below * (1 - share) + colour * 255 * share));
            };
            for (int y = 0; y < font->picture.height(); ++y)
                for (int x = 0; x < font->picture.width(); ++x) {
                    const QRgb covered = font->picture.pixel(x, y);
                    const double r = alpha * qRed(covered) / 255, g = alpha * qGreen(covered) / 255,
                                 b = alpha * qBlue(covered) / 255;
                    expected.setPixel(x + 10, y + 5,
                                      qRgba(mixed(qRed(ground), double(face.red), r),
                                            mixed(qGreen(ground), double(face.green), g),
                                            mixed(qBlue(ground), double(face.blue), b),
                                            mixed(qAlpha(ground), 1, std::max({r, g, b}))));
                }
            EXPECT_TRUE(imagesAgree(drawn, expected, "text effect", {2, 0.0}));
        }
    }
    EXPECT_EQ(font->rendered, 1) << "one picture for every colour";
    const OpenGLContextProtector protector;
    OpenGLFontBase::cache().clear();
}

TEST(TextEffect, OverlapsInOneColourAsInTheOrderTheyCome)
{
    const Tq::Ptr<OpenGLFont> font =
        OpenGLFont::make(L"Tahoma", 20, 0, 0).dynamicCast<OpenGLFont>();
    std::vector<TextDescription> descs;
    for (int i = 0; i < 12; ++i)
        descs.emplace_back(i % 2 ? L"over" : L"under", XY<int>(4 + 3 * i, 20 + i % 3),
                           i < 8 ? NormalisedRGB(1, 1, 0, 0.7f) : NormalisedRGB(0, 1, 1),
                           eTextDefault, font);
    const DrawingRig rig(120, 30);
    const QImage together = rig.withGL([&](auto& r) { r.renderMulti(descs.data(), 12); });
    const QImage apart = rig.withGL([&](auto& r) {
        for (const TextDescription& desc : descs)
            r.render(desc);
    });
    EXPECT_TRUE(imagesAgree(together, apart, "texts together", {3, 0.0}));
}

TEST(TextEffect, AlignedTextsAgreeWithTheToolkitsAtTheirLeft)
{
    OpenGLUtils::instance();
    const Tq::Ptr<iFont> host = QtFont::make(L"Tahoma", 14, 0, 0);
    const Tq::Ptr<iFont> font = OpenGLFont::make(L"Tahoma", 14, 0, 0);
    // As wide as puts its left on a whole pixel at every ratio.
    LightweightString<wchar_t> text(L"Aligned text");
    while (host->measure(text).x % 4 != 0)
        text += L"i";
    const int width = host->measure(text).x, ascent = static_cast<int>(host->getMetrics() >> 16);
    ASSERT_LT(width, 220);
    for (const double ratio : {1.0, 1.5, 2.0}) {
        const DrawingRig rig(480, 40, ratio);
        const auto agree = [&](TextAlignment alignment, int left, int baseline) {
            const QImage gl = rig.withGL([&](auto& r) {
                r.render(TextDescription(text, {240, 20}, {1, 1, 1}, alignment, font));
            });
            const QImage toolkit = rig.withToolkit([&](auto& r) {
                r.render(TextDescription(text, {left, baseline}, {1, 1, 1}, eTextDefault, host));
            });
            return imagesAgree(gl, toolkit, "aligned text", {8, 0.002});
        };
        EXPECT_TRUE(agree(eTextDefault, 240, 20));
        EXPECT_TRUE(agree(eTextRight | eTextBaseline, 240 - width, 20));
        EXPECT_TRUE(agree(eTextCentre | eTextBaseline, 240 - width / 2, 20));
        if (ratio * ascent == std::floor(ratio * ascent)) {
            EXPECT_TRUE(agree(eTextLeft | eTextTop, 240, 20 + ascent));
        }
    }
}

TEST(TextEffect, IsMissedQuietlyAndOnce)
{
    if (runsInFreshProcess())
        return;
    setenv("VANTOR_DATA", "/nowhere", 1);
    const Tq::Ptr<NoisyFont> font = noisyFont();
    RectDescription rect;
    rect.rect_ = {0, 0, 5, 5};
    rect.topColour_ = rect.bottomColour_ = {1, 0, 0};
    const auto draw = [&] {
        return DrawingRig(40, 30).withGL([&](iGraphicPrimitivesRenderer& r) {
            r.render(TextDescription(L"text", {10, 5}, {1, 1, 1}, eTextLeft, font));
            r.render(rect);
        });
    };
    QImage drawn;
    OutputCapture errors(OutputCapture::eStderr);
    EXPECT_EQ(outputOf([&] { drawn = draw(); }).rfind("Failed to load shader : ", 0), 0u);
    EXPECT_EQ(outputOf([&] { draw(); }), "");
    EXPECT_EQ(errors.text(), "Compiling shader : /nowhere/Shaders/TextEffects.fx .. FAILED\n");
    EXPECT_EQ(drawn.pixel(12, 12), DrawingRig::kGround);
    EXPECT_EQ(drawn.pixel(2, 2), 0xFFFF0000u);
    EXPECT_EQ(font->rendered, 0);
    OpenGLUtils::shutdown();
}
