#include "Windowing/WindowRig.h"

#include "support/Stopwatch.h"

#include <OS/Windowing/iStatusWindow.h>

#include <QApplication>
#include <QWidget>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

constexpr std::uint32_t kFill = 0x4C8DFF;
constexpr std::uint32_t kTrack = 0x2B303A;

class StatusWindowTest : public WindowTest
{
protected:
    void showStatus()
    {
        open();
        status = manager.createStatusWindow();
        ASSERT_TRUE(status);
        status->setTitle(L"Rendering sequence 1");
        status->setMessage(L"Harbour at Dawn");
        status->setProgress(0.5f);
        EXPECT_FALSE(status->isVisible());
        status->show();
        ASSERT_TRUE(status->isVisible());
    }
    static QWidget* statusWidget()
    {
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (top->isVisible() && top->windowTitle() == "Rendering sequence 1")
                return top;
        }
        return nullptr;
    }
    // The colour of the bar at a part of its length, as the server has it: no event is handled.
    std::uint32_t barAt(double part) const
    {
        const QRect area = statusWidget()->geometry();
        const double x = area.left() + 20 + part * (area.width() - 40);
        const double y = area.bottom() + 1 - 20 - 2;
        return input.pixel(static_cast<int>(x * ratio()), static_cast<int>(y * ratio()));
    }

    Tq::Ptr<iStatusWindow> status;
};

} // namespace

TEST_F(StatusWindowTest, IsOverTheRootWindowAndFollowsItsOwnerWithoutTheLoop)
{
    showStatus();
    const QPoint off = statusWidget()->geometry().center() - widget()->geometry().center();
    EXPECT_LE(off.manhattanLength(), 4);

    const Stopwatch sinceShown;
    while (barAt(0.25) != kFill && sinceShown.elapsedMs() < 10'000) {
    }
    EXPECT_EQ(barAt(0.25), kFill);
    EXPECT_EQ(barAt(0.75), kTrack);
    for (const float progress : {0.9f, 7.0f}) {
        status->setProgress(progress);
        const Stopwatch waited; // the server needs a moment, this thread handles nothing
        while (barAt(0.75) != kFill && waited.elapsedMs() < 5'000) {
        }
        EXPECT_EQ(barAt(0.75), kFill) << progress;
    }
}

TEST_F(StatusWindowTest, ShowsWorkWithoutAKnownEnd)
{
    showStatus();
    for (const float unknown : {-1.0f, std::numeric_limits<float>::quiet_NaN()}) {
        status->setProgress(0.0f);
        status->setProgress(unknown);
        EXPECT_TRUE(waitFor([&] { return barAt(0.5) == kFill; })) << "the band wanders";
        EXPECT_TRUE(waitFor([&] { return barAt(0.5) == kTrack; }));
    }
}

TEST_F(StatusWindowTest, GrowsWithItsMessageUpToEightLinesAndStaysInTheMiddle)
{
    showStatus();
    const QRect one = statusWidget()->geometry();
    std::wstring text = L"1";
    for (int i = 2; i <= 100; ++i)
        text += L"\n" + std::wstring(500, L'W');
    status->setMessage(text.c_str());
    EXPECT_TRUE(waitFor([&] { return statusWidget()->height() == one.height() + 7 * 20; }));
    EXPECT_EQ(statusWidget()->width(), one.width());
    EXPECT_LE((statusWidget()->geometry().center() - one.center()).manhattanLength(), 2);
    status->setMessage(L"");
    EXPECT_TRUE(waitFor([&] { return statusWidget()->height() == one.height() - 20; }));
}

TEST_F(StatusWindowTest, TheUserCannotCloseItAndItGoesWithItsOwner)
{
    showStatus();
    EXPECT_EQ(std::system("wmctrl -c 'Rendering sequence 1'"), 0);
    settle();
    EXPECT_TRUE(status->isVisible());
    EXPECT_TRUE(window->hasFocus()) << "it does not take the keyboard";
    status->hide();
    EXPECT_FALSE(status->isVisible());
    status->show();
    EXPECT_TRUE(status->isVisible());
    status.reset();
    EXPECT_EQ(statusWidget(), nullptr);
}

TEST_F(StatusWindowTest, ClosesWithEverythingElseWhenTheHandlerQuits)
{
    showStatus();
    handler->answer = [](const std::string& kind) {
        return kind == "message" ? iEventHandler::eQuit : iEventHandler::eContinue;
    };
    window->postUserMessage();
    EXPECT_EQ(manager.startEventLoop(), 0);
    EXPECT_FALSE(status->isVisible());
}
