// Texts on their way to the screen: recorded by the application, drawn by the updater.
#include "OpenGL/WidgetRig.h"
#include "support/ImageCompare.h"

#include "OS/Mac/OpenGL/Text/OpenGLFont.h"
#include "OS/Mac/OpenGL/Widgets/GLBackBufferGuard.h"
#include "OS/Mac/Painting/QtFont.h"
#include "OS/Mac/Painting/QtGraphicPrimitivesRenderer.h"

#include <string>

namespace {

using TextInWindow = GLWidgetTest;

constexpr int kWidth = 160, kHeight = 120;

// One frame: so many texts, and a corner that says that it is there.
void drawTexts(iGraphicPrimitivesRenderer& renderer, const Tq::Ptr<iFont>& font, int frame)
{
    renderer.setAntialiasingEnabled(true);
    fill(renderer, {0, 0, kWidth, kHeight}, 0x102040);
    fill(renderer, {150, 110, kWidth, kHeight}, frame % 2 ? kGreen : kBlue);
    for (int i = 0; i < 5; ++i) {
        TextDescription desc((L"frame " + std::to_wstring(frame + i)).c_str(), {4, 20 + 20 * i},
                             colour(0xffff00), eTextDefault, font);
        desc.textStyle_ = i == 3 ? TextDescription::eUnderline : TextDescription::ePlain;
        renderer.render(desc);
    }
}

} // namespace

TEST_F(TextInWindow, IsWhatThePainterDrawsWhileTheApplicationMeasures)
{
    const Tq::Ptr<QtGLWidget> widget = makeWidget(QRect(20, 30, kWidth, kHeight));
    const Tq::Ptr<iFont> font = OpenGLFont::make(L"Tahoma", 14, 0, 0);
    const XY<int> size = font->measure(L"frame 1");
    constexpr int kLast = 41;
    for (int frame = 0; frame <= kLast; ++frame) {
        GLBackBufferGuard buffer(widget.get(), {kWidth, kHeight});
        drawTexts(*buffer.getPrimitivesRenderer(true), font, frame);
        for (int i = 0; i < 20; ++i)
            ASSERT_EQ(font->measure(L"frame 1"), size);
    }
    finishUpdater();
    ASSERT_TRUE(waitFor([&] { return pixelAt(*widget, 155, 115) == kGreen; }));

    const QImage shown = grabWidget(*widget).convertToFormat(QImage::Format_RGB32);
    Tq::Ptr<QImage> expected = new QImage(shown.size(), QImage::Format_ARGB32_Premultiplied);
    expected->setDevicePixelRatio(double(shown.width()) / kWidth);
    {
        QtGraphicPrimitivesRenderer painter(expected, 1);
        drawTexts(painter, QtFont::make(L"Tahoma", 14, 0, 0), kLast);
    }
    expected->setDevicePixelRatio(1.0);
    EXPECT_TRUE(imagesAgree(shown, expected->convertToFormat(QImage::Format_RGB32),
                            "texts in a window", {24, 0.01}));
}
