#include "OpenGL/GLCalls.h"
#include "OpenGL/ImageRig.h"
#include "support/ImageCompare.h"
#include "support/OutputCapture.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Text/OpenGLFont.h"
#include "OS/Mac/OpenGL/Text/TextImageCache.h"
#include "OS/Mac/Painting/QtFont.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <QPainter>

#include <cmath>
#include <string>
#include <thread>

namespace {

class OpenGLFontTest : public GPUImageTest
{
protected:
    OpenGLFontTest() { OpenGLFontBase::cache().clear(); }
    ~OpenGLFontTest() override { OpenGLFontBase::cache().clear(); }

    Tq::Ptr<OpenGLFont> font_ = new OpenGLFont(L"Tahoma", 13, 0, 0);
    const OpenGLContextProtector protector_; // pictures are made under the GL lock
};

TextDescription textOf(const Tq::Ptr<OpenGLFont>& font, const std::wstring& text,
                       const NormalisedRGB& colour = {1, 1, 1})
{
    return {text.c_str(), XY<int>(33, 44), colour, eTextDefault, font};
}

QImage drawnByPainter(const QFont& font, const QString& text, const QSize& size, int baseline,
                      double ratio)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    image.setDevicePixelRatio(ratio);
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(0, baseline, text);
    painter.end();
    image.setDevicePixelRatio(1.0);
    return image;
}

} // namespace

TEST_F(OpenGLFontTest, MeasuresAsItsHostFontDoes)
{
    const Tq::Ptr<iFont> host = QtFont::make(L"Tahoma", 13, 700, iFont::eItalic);
    const Tq::Ptr<iFont> font(new OpenGLFont(L"Tahoma", 13, 700, iFont::eItalic));
    const wchar_t* const text = L"Avalanche, 25 fps";
    std::vector<int> expected, positions;
    EXPECT_EQ(font->getMetrics(), host->getMetrics());
    EXPECT_EQ(font->getStyle(), host->getStyle());
    EXPECT_EQ(font->measure(text), host->measure(text));
    EXPECT_EQ(font->measure(text, positions), host->measure(text, expected));
    EXPECT_EQ(positions, expected);
    for (unsigned int pixel : {0u, 7u, 40u, 4000u}) {
        EXPECT_EQ(font->getCharacterUnderPixel(text, pixel),
                  host->getCharacterUnderPixel(text, pixel));
        for (const auto method : {iFont::eSeekNearest, iFont::eSeekBefore, iFont::eSeekAfter})
            EXPECT_EQ(font->locateCharacter(text, method, pixel),
                      host->locateCharacter(text, method, pixel));
    }
}

TEST_F(OpenGLFontTest, MediaServicesMakeIt)
{
    const Tq::Ptr<iFont> font =
        OS()->mediaServices()->createGPUSurfaceFont(L"Tahoma", 16, iFont::eBold);
    ASSERT_TRUE(font.dynamicCast<OpenGLFontBase>());
    EXPECT_EQ(font->getStyle(), unsigned(iFont::eBold));
}

TEST_F(OpenGLFontTest, PicturesAreWhiteOnOpaqueBlackAtTheTextsSize)
{
    const std::wstring text = L"Qg picture, jumped";
    const XY<int> size = font_->measure(text.c_str());
    const auto ascent = int(font_->getMetrics() >> 16);
    TextDescription desc = textOf(font_, text, {1, 1, 1});
    desc.pos_ = {0, ascent};
    const Tq::Ptr<iHostImage> host = font_->renderHostText(desc);
    ASSERT_TRUE(host);
    EXPECT_EQ(host->getSize(), size);
    const QImage expected =
        drawnByPainter(font_->hostFontForThread().dynamicCast<QtFont>()->font(),
                       QString::fromStdWString(text), QSize(size.x, size.y), ascent, 1.0);
    EXPECT_TRUE(imagesAgree(pixelsOf(host), expected, "host text"));

    // On the GPU the same, whatever else the description asks for.
    TextDescription styled = textOf(font_, text, {1, 0, 0, 0.5f});
    styled.textStyle_ = TextDescription::eUnderline;
    styled.highlightEnd_ = 5;
    styled.alignment_ = eTextRight;
    const Tq::Ptr<OpenGLImage> image = font_->renderText(styled).dynamicCast<OpenGLImage>();
    ASSERT_TRUE(image);
    EXPECT_EQ(image->getFormat(), iGPUImage::eARGB8);
    EXPECT_EQ(textureOf(image), expected);
}

TEST_F(OpenGLFontTest, ATextIsDrawnAndUploadedOnce)
{
    const Tq::Ptr<iGPUImage> first = font_->renderText(textOf(font_, L"once", {1, 0, 0}));
    const int uploads = GLCalls::uploads() + GLCalls::texturesSpecified();
    TextDescription other = textOf(font_, L"once", {0, 0, 1});
    other.pos_ = {-5, 600};
    EXPECT_EQ(font_->renderText(other), first);
    EXPECT_EQ(GLCalls::uploads() + GLCalls::texturesSpecified(), uploads);
    EXPECT_EQ(OpenGLFontBase::cache().size(), 1u);
    const Tq::Ptr<OpenGLFont> twin = new OpenGLFont(L"Tahoma", 13, 0, 0);
    EXPECT_NE(twin->renderText(textOf(twin, L"once")), first) << "another font's";
}

TEST_F(OpenGLFontTest, WhatHasNoSizeHasNoPicture)
{
    EXPECT_FALSE(font_->renderText(textOf(font_, L"")));
    EXPECT_EQ(OpenGLFontBase::cache().size(), 0u);

    // A width of 0 goes on, and finds no pixels, once.
    const wchar_t* const joiner = L"\u200D";
    ASSERT_EQ(font_->measure(joiner).x, 0);
    ASSERT_GT(font_->measure(joiner).y, 0);
    const auto draw = [&] { EXPECT_FALSE(font_->renderText(textOf(font_, joiner))); };
    EXPECT_EQ(outputOf(draw), "assertion failed imageLock at OS/Mac/OpenGLImage line 34\n");
    EXPECT_EQ(outputOf(draw), "");
}

TEST_F(OpenGLFontTest, ATextWiderThanATextureLosesItsEnd)
{
    const std::wstring text(30000, L'W');
    const Tq::Ptr<iGPUImage> image = font_->renderText(textOf(font_, text));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->getSize().x, OpenGLUtils::getMaxTextureSize().x);
    EXPECT_EQ(image->getSize().y, font_->measure(L"W").y);
}

TEST_F(OpenGLFontTest, OtherRatiosHaveFinerPicturesWithTheBaselineOnAWholePixel)
{
    const std::wstring text = L"Fine jp";
    const QFont host = font_->hostFontForThread().dynamicCast<QtFont>()->font();
    const XY<int> size = font_->measure(text.c_str());
    for (const double ratio : {2.0, 1.5, 1.25, 1.1, 1.0}) {
        const int baseline = font_->baselineAt(ratio);
        EXPECT_GE(baseline, font_->ascent());
        EXPECT_NEAR(baseline * ratio, std::round(baseline * ratio), 1e-6);
        const Tq::Ptr<OpenGLImage> image =
            font_->renderText(textOf(font_, text), ratio).dynamicCast<OpenGLImage>();
        ASSERT_TRUE(image);
        EXPECT_EQ(font_->renderText(textOf(font_, text), ratio), image) << "from the cache";
        const QSize pixels(int(std::ceil(size.x * ratio)),
                           int(std::ceil((size.y - font_->ascent() + baseline) * ratio)));
        EXPECT_TRUE(imagesAgree(
            textureOf(image),
            drawnByPainter(host, QString::fromStdWString(text), pixels, baseline, ratio),
            ("ratio " + std::to_string(ratio)).c_str(), {0, 0.05}));
        EXPECT_EQ(OpenGLFontBase::cache().size(), 1u) << "one picture for font and text";
    }
}

TEST_F(OpenGLFontTest, IsDrawnOnManyThreadsWhileItMeasures)
{
    TextDescription desc = textOf(font_, L"Threads of a face");
    desc.pos_ = {0, font_->ascent()};
    const QImage expected = pixelsOf(font_->renderHostText(desc));
    const XY<int> size = font_->measure(desc.text_);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round)
                wrong += pixelsOf(font_->renderHostText(desc)) != expected;
        });
    for (int round = 0; round < 500; ++round)
        wrong += !(font_->measure(desc.text_) == size);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(OpenGLFontTest, ClearingTheCachesLetsPicturesAndFontsGo)
{
    font_->renderText(textOf(font_, L"kept"));
    EXPECT_EQ(font_.useCount(), 2);
    OS()->mediaServices()->clearCaches();
    EXPECT_EQ(font_.useCount(), 1);
    EXPECT_EQ(OpenGLTextureCache::instance().size(), 0u);
}
