#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <cstring>
#include <gtest/gtest.h>
#include <thread>

namespace {

std::uint32_t pixelAt(const Tq::Ptr<iPixelGuard>& guard, int x, int y)
{
    std::uint32_t value = 0;
    std::memcpy(&value, guard->getPixels() + y * guard->getStride() + x * 4, 4);
    return value & 0xFFFFFF;
}

TEST(ScreenGrab, ShowsTheWholeDisplayAndCannotBeDrawnOn)
{
    OS()->mediaServices()->createHostSurfaceFont(L"", 12, 0); // brings the application up
    QWidget window(nullptr, Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(10, 200, 30));
    window.setPalette(palette);
    window.setGeometry(60, 40, 120, 90);
    window.show();

    const QScreen* screen = QGuiApplication::primaryScreen();
    const double ratio = screen->devicePixelRatio();
    const QSize pixels = screen->size() * ratio;
    const auto at = [&](int logical) { return static_cast<int>(logical * ratio); };
    Tq::Ptr<iHostImage> image;
    for (int tries = 0; tries < 1000; ++tries) {
        QGuiApplication::processEvents();
        image = OS()->mediaServices()->grabScreen({7, 7});
        ASSERT_TRUE(image);
        if (pixelAt(image->lock(), at(100), at(80)) == 0x0AC81E)
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_EQ(pixelAt(image->lock(), at(100), at(80)), 0x0AC81Eu);
    // A screen is a whole number of logical pixels only at whole scales.
    EXPECT_NEAR(image->getSize().x, pixels.width(), 1);
    EXPECT_NEAR(image->getSize().y, pixels.height(), 1);
    EXPECT_EQ(image->getBitsPerPixel(), 32);
    EXPECT_FALSE(image->getPrimitivesRenderer(true));
    EXPECT_FALSE(image->createCompatibleImage({10, 10}));

    const Tq::Ptr<iPixelGuard> guard = image->lock();
    guard->getPixels()[0] = static_cast<std::uint8_t>(~guard->getPixels()[0]);
    EXPECT_NE(image->lock()->getPixels()[0], guard->getPixels()[0])
        << "a guard's pixels are its own";
}

TEST(ScreenGrab, IsRefusedOnOtherThreads)
{
    OutputCapture output;
    std::thread([] { EXPECT_FALSE(OS()->mediaServices()->grabScreen({})); }).join();
    EXPECT_EQ(output.text(),
              "MediaServices::grabScreen() : not on the thread of the Qt application\n");
}

} // namespace
