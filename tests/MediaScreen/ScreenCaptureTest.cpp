#include "support/BackgroundThread.h"
#include "support/ChildProcess.h"
#include "support/HomeFolder.h"
#include "support/ImageCompare.h"
#include "support/OutputCapture.h"
#include "support/OutsideTool.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Media/iMediaServices.h>

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QWidget>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

const std::string kAssertion = "assertion failed b at OS/Mac/MediaServices line 364\n";

// A window with as many colours as it has pixels.
class Pattern : public QWidget
{
public:
    Pattern() : QWidget(nullptr, Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
    {
        setGeometry(40, 30, 400, 300);
        show();
    }
    void setShift(int shift)
    {
        shift_ = shift;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QImage image(size(), QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, qRgb(x + shift_, y, (x * y) >> 4));
        QPainter(this).drawImage(0, 0, image);
    }

private:
    int shift_ = 0;
};

QImage copyOf(const Tq::Ptr<iHostImage>& picture)
{
    const Tq::Ptr<iPixelGuard> guard = picture->lock();
    return QImage(guard->getPixels(), guard->getSize().x, guard->getSize().y, guard->getStride(),
                  QImage::Format_ARGB32)
        .copy();
}

QImage grab()
{
    QGuiApplication::processEvents();
    const Tq::Ptr<iHostImage> picture = OS()->mediaServices()->grabScreen({});
    return picture ? copyOf(picture) : QImage();
}

// What the X server's own tool sees.
QImage dumped()
{
    const ToolAnswer answer = runTool("xwd -root -silent | xwdtopnm");
    QImage image;
    image.loadFromData(reinterpret_cast<const uchar*>(answer.output.data()),
                       static_cast<int>(answer.output.size()), "PPM");
    return image.convertToFormat(QImage::Format_ARGB32);
}

class ScreenCapture : public testing::Test
{
protected:
    ScreenCapture()
    {
        OS()->mediaServices()->createHostSurfaceFont(L"", 12, 0); // brings the application up
    }

    struct Outcome
    {
        std::string path;
        std::string output;
        std::string errors;
    };
    static Outcome record()
    {
        LightweightString<wchar_t> path = L"untouched";
        Outcome outcome;
        OutputCapture errors(OutputCapture::eStderr);
        outcome.output = outputOf(
            [&] { EXPECT_FALSE(OS()->mediaServices()->beginScreenCapture(path, "options")); });
        outcome.errors = errors.text();
        outcome.path = OS()->utils()->toUTF8(path).c_str();
        return outcome;
    }

    const HomeFolder home_;
    const std::string movie_ = home_.path("Videos/ScreenCaptureTest.mov");
};

} // namespace

TEST_F(ScreenCapture, APictureOfTheScreenIsWhatTheServersOwnToolSees)
{
    if (!hasTool("xwd") || !hasTool("xwdtopnm"))
        GTEST_SKIP() << "xwd and xwdtopnm (x11-apps, netpbm) are not installed";
    const Pattern window;
    QImage ours, theirs;
    EXPECT_TRUE(waitUntil([&] { // once the window is there
        ours = grab();
        theirs = dumped();
        return ours == theirs && ours.pixel(60, 50) != ours.pixel(61, 50);
    }));
    EXPECT_EQ(ours.size(), theirs.size());
    EXPECT_TRUE(imagesAgree(ours, theirs, "screen-and-xwd")) << "opaque, and every pixel";
}

TEST_F(ScreenCapture, APictureStaysAsItWasWhenMoreAreTaken)
{
    Pattern window;
    ASSERT_TRUE(waitUntil([] { return grab().pixel(60, 50) != grab().pixel(61, 50); }));
    const Tq::Ptr<iHostImage> first = OS()->mediaServices()->grabScreen({});
    const QImage before = copyOf(first);
    window.setShift(77);
    EXPECT_TRUE(waitUntil([&] { return grab() != before; }));
    OS()->mediaServices()->clearCaches();
    EXPECT_TRUE(waitUntil([&] { return grab() != before; }));
    EXPECT_EQ(copyOf(first), before);
}

TEST_F(ScreenCapture, RecordsFiveSecondsOfTheWholeScreen)
{
    if (!hasTool("ffprobe") || !hasTool("ffmpeg"))
        GTEST_SKIP() << "ffprobe and ffmpeg are not installed";
    QWidget window(nullptr, Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(200, 40, 20));
    window.setPalette(palette);
    window.setGeometry(50, 50, 300, 200);
    window.show();
    ASSERT_TRUE(waitUntil([] { return grab().pixelColor(100, 100) == QColor(200, 40, 20); }));

    const Outcome outcome = record();
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "") << "the encoder keeps quiet";
    EXPECT_EQ(outcome.path, movie_);
    OS()->mediaServices()->endScreenCapture();

    const std::string facts =
        runTool("ffprobe -v error -select_streams v -show_entries "
                "stream=codec_name,width,height,duration -of default=nk=1:nw=1 " +
                quoted(movie_))
            .output;
    std::istringstream lines(facts);
    std::string codec;
    QSize size;
    double seconds = 0;
    lines >> codec >> size.rwidth() >> size.rheight() >> seconds;
    EXPECT_THAT(codec, testing::AnyOf("h264", "mpeg4"));
    EXPECT_EQ(size, grab().size());
    EXPECT_NEAR(seconds, 5.0, 0.05);

    for (const char* moment : {"0", "4.9"}) {
        const std::string frame = home_.path("frame.png");
        runTool("ffmpeg -v error -y -ss " + std::string(moment) + " -i " + quoted(movie_) +
                " -frames:v 1 " + quoted(frame));
        const QColor shown = QImage(QString::fromStdString(frame)).pixelColor(200, 150);
        EXPECT_NEAR(shown.red(), 200, 12) << moment;
        EXPECT_NEAR(shown.green(), 40, 12) << moment;
        EXPECT_NEAR(shown.blue(), 20, 12) << moment;
    }
}

TEST_F(ScreenCapture, WhatCannotBeWrittenIsReportedAndLeavesAnEarlierMovie)
{
    const auto reported = [](const std::string& reason) {
        return "MediaServices::beginScreenCapture() : " + reason + "\n" + kAssertion;
    };
    home_.write("Videos", "no folder");
    EXPECT_EQ(record().output, reported("the movie cannot be opened: Not a directory"));
    std::filesystem::remove(home_.path("Videos"));

    std::filesystem::create_directory(home_.path("Videos"));
    ASSERT_EQ(symlink("/dev/full", movie_.c_str()), 0);
    const Outcome full = record();
    EXPECT_EQ(full.output, reported("the movie cannot be written: No space left on device"));
    EXPECT_EQ(full.path, "untouched");
    std::filesystem::remove(movie_);

    home_.write("Videos/ScreenCaptureTest.mov", "an earlier movie");
    chmod(movie_.c_str(), 0400);
    {
        const WithoutPrivilege ordinary;
        EXPECT_EQ(record().output, reported("the movie cannot be opened: Permission denied"));
    }
    EXPECT_EQ(home_.read("Videos/ScreenCaptureTest.mov"), "an earlier movie");
}

TEST_F(ScreenCapture, IsRefusedWhereTheDesktopHidesItsScreen)
{
    setenv("WAYLAND_DISPLAY", "wayland-0", 1);
    EXPECT_EQ(record().output, "MediaServices::beginScreenCapture() : the desktop does not let its "
                               "screen be seen\n" +
                                   kAssertion);
    EXPECT_EQ(outputOf([] { EXPECT_FALSE(OS()->mediaServices()->grabScreen({})); }),
              "MediaServices::grabScreen() : the desktop does not let its screen be seen\n");
    unsetenv("WAYLAND_DISPLAY");
    EXPECT_FALSE(std::filesystem::exists(movie_));
}
