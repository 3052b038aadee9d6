#include "Windowing/WindowRig.h"

#include "OS/Mac/Windowing/Monitors.h"

#include "support/OutputCapture.h"

#include <OS/Painting/iHostImage.h>
#include <OS/Painting/iPixelGuard.h>
#include <OS/Primitives/RectDescription.h>

#include <QIcon>
#include <QLabel>
#include <QWidget>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::uint32_t kBlue = 0x0000FF;
const XY<int> kScreen(1280, 1024);

class RootWindowState : public WindowTest
{
protected:
    RootWindowState()
    {
        handler->onPaint = [this](const auto&) {
            fill({0, 0, 3000, 3000}, NormalisedRGB(0, 0, 1));
        };
    }

    // What the window is, in words that are easy to compare.
    std::string state() const
    {
        std::string text = window->isTitleBarEnabled() ? "framed" : "filling";
        if (window->isMaximised())
            text += " maximised";
        if (window->isMinimised())
            text += " minimised";
        return text;
    }
    bool waitForState(const std::string& expected, const XY<int>& size)
    {
        return waitFor([&] { return state() == expected && window->getSize() == size; });
    }
    XY<int> screenSize() const
    {
        return XY<int>(static_cast<int>(std::lround(kScreen.x / ratio())),
                       static_cast<int>(std::lround(kScreen.y / ratio())));
    }
};

// Asks the window manager, as a user would with its menu or its keys.
void askManager(const std::string& request)
{
    ASSERT_EQ(std::system(("wmctrl " + request).c_str()), 0);
}

Tq::Ptr<iHostImage> greenImage(const Tq::Ptr<iRootWindow>& window, const XY<int>& size)
{
    const Tq::Ptr<iHostImage> image = window->createCompatibleImage(size);
    RectDescription rect;
    rect.rect_ = {0, 0, size.x, size.y};
    rect.topColour_ = rect.bottomColour_ = NormalisedRGB(0, 1, 0);
    image->getPrimitivesRenderer(false)->render(rect);
    return image;
}

} // namespace

TEST_F(RootWindowState, IsNothingMuchBeforeItIsRealised)
{
    window = manager.createRootWindow();
    EXPECT_EQ(window->getSize(), XY<int>(0, 0));
    EXPECT_EQ(window->getUserArea(), (Tq::Rectangle<int>{0, 0, 0, 0}));
    EXPECT_EQ(window->getID(), nullptr);
    EXPECT_FALSE(window->getPrimitivesRenderer(true));
    window->postUserMessage();
    window->enableTitleBar(false);
    window->minimise();
    window->setTitle(L"nobody sees this");
    EXPECT_FALSE(window->hasFocus());
}

TEST_F(RootWindowState, OpensWhereItWasAskedToWithAFrame)
{
    open();
    EXPECT_EQ(window->getSize(), XY<int>(400, 300));
    EXPECT_EQ(window->getPosition(), XY<int>(200, 150));
    EXPECT_EQ(window->getUserArea(), (Tq::Rectangle<int>{0, 0, 400, 300}));
    EXPECT_EQ(window->getBitsPerPixel(), 32);
    EXPECT_EQ(state(), "framed");
    EXPECT_GT(widget()->frameGeometry().height(), 300) << "the title bar";
    EXPECT_EQ(widget()->windowTitle(), "Test window");
    EXPECT_NE(window->getID(), nullptr);
}

TEST_F(RootWindowState, TellsItsHandlerOnceThatItIsCreated)
{
    window = manager.createRootWindow();
    auto args = usualArgs();
    args.eventHandler = events;
    ASSERT_TRUE(window->realize(args));
    EXPECT_EQ(events->lines("window").back(), "window 7") << "before realize returns";
    ASSERT_TRUE(waitFor([&] { return !events->lines("paint").empty(); }));
    EXPECT_EQ(events->lines("window 7").size(), 1u);
    EXPECT_FALSE(events->lines("window 5").empty());
}

TEST_F(RootWindowState, OpensWithoutAFrameAtItsPlace)
{
    auto args = usualArgs();
    args.titleBar = false;
    args.eventHandler = events;
    window = manager.createRootWindow();
    window->realize(args);
    ASSERT_TRUE(waitForPixel(2, 2, kBlue));
    EXPECT_EQ(widget()->frameGeometry(), QRect(200, 150, 400, 300));
    EXPECT_EQ(state(), "framed") << "false exactly while it fills the screen";
}

TEST_F(RootWindowState, OpensMaximisedOrFillsTheScreen)
{
    const struct
    {
        const char* name;
        XY<int> size;
        XY<int> position;
        bool maximised;
        bool titleBar;
        const char* state;
    } table[] = {
        {"maximised", XY<int>(400, 300), XY<int>(10, 10), true, true, "framed maximised"},
        {"no size", XY<int>(0, 300), XY<int>(10, 10), false, true, "framed maximised"},
        {"no size and off every screen", XY<int>(), XY<int>(-9000, 9000), false, true,
         "framed maximised"},
        {"maximised without a frame", XY<int>(400, 300), XY<int>(), true, false, "filling"},
    };
    for (const auto& one : table) {
        SCOPED_TRACE(one.name);
        auto args = usualArgs();
        args.size = one.size;
        args.position = one.position;
        args.maximised = one.maximised;
        args.titleBar = one.titleBar;
        open(args);
        EXPECT_TRUE(waitFor([&] { return state() == one.state; })) << state();
        EXPECT_TRUE(waitFor([&] { return window->getSize().x >= screenSize().x - 2; }));
        if (!one.titleBar) {
            EXPECT_TRUE(waitFor([&] { return window->getSize() == screenSize(); }));
        }
        window.reset();
        manager.shutdown();
        settle();
    }
}

TEST_F(RootWindowState, FillsTheScreenAndComesBackNormal)
{
    open();
    for (int round = 0; round < 3; ++round) {
        window->enableTitleBar(false);
        ASSERT_TRUE(waitForState("filling", screenSize())) << state();
        ASSERT_TRUE(waitForPixel(1, 1, kBlue));
        window->enableTitleBar(true);
        ASSERT_TRUE(waitForState("framed", XY<int>(400, 300))) << state();
    }
    EXPECT_GT(widget()->frameGeometry().height(), 300);
}

TEST_F(RootWindowState, FillsTheScreenAndComesBackMaximised)
{
    auto args = usualArgs();
    args.maximised = true;
    open(args);
    ASSERT_TRUE(waitFor(
        [&] { return window->isMaximised() && window->getSize().x >= screenSize().x - 2; }));
    const XY<int> before = window->getSize();
    for (int round = 0; round < 3; ++round) {
        window->enableTitleBar(false);
        ASSERT_TRUE(waitForState("filling", screenSize())) << state();
        window->enableTitleBar(false); // again changes nothing, not even where it goes back to
        window->enableTitleBar(true);
        ASSERT_TRUE(waitForState("framed maximised", before)) << state();
    }
}

TEST_F(RootWindowState, ComesBackFromAnIconAsItWas)
{
    open();
    window->minimise();
    ASSERT_TRUE(waitFor([&] { return window->isMinimised(); }));
    askManager("-a 'Test window'");
    ASSERT_TRUE(waitFor([&] { return !window->isMinimised() && window->isMaximised(); }))
        << "it is maximised before it becomes an icon";

    window->enableTitleBar(false);
    ASSERT_TRUE(waitForState("filling", screenSize()));
    window->minimise();
    ASSERT_TRUE(waitFor([&] { return window->isMinimised(); }));
    askManager("-a 'Test window'");
    ASSERT_TRUE(waitForState("filling", screenSize())) << state();
}

TEST_F(RootWindowState, StaysOnTopOfAWindowThatIsActivated)
{
    auto args = usualArgs();
    args.stayOnTop = true;
    open(args);
    QLabel other;
    other.setGeometry(220, 170, 500, 400);
    other.show();
    other.raise();
    other.activateWindow();
    ASSERT_TRUE(waitFor([&] { return other.isActiveWindow(); }));
    settle();
    EXPECT_EQ(pixelAt(200, 150), kBlue);
}

TEST_F(RootWindowState, GainsAndLosesTheKeyboard)
{
    open();
    QWidget other;
    other.setGeometry(700, 150, 200, 100);
    other.show();
    ASSERT_TRUE(waitFor([&] { return other.isActiveWindow(); }));
    EXPECT_FALSE(window->hasFocus());
    EXPECT_EQ(waitForLines("window 6", 1).size(), 1u);
    window->claimFocus();
    ASSERT_TRUE(waitFor([&] { return window->hasFocus(); }));
    EXPECT_EQ(waitForLines("window 5", 1).size(), 1u);
}

TEST_F(RootWindowState, IsClosedOnlyByTheHandlersAnswer)
{
    open();
    askManager("-c 'Test window'");
    EXPECT_EQ(waitForLines("window 4", 1).size(), 1u);
    settle();
    EXPECT_TRUE(widget()->isVisible());
}

TEST_F(RootWindowState, IsDeafWhileDisabled)
{
    open();
    window->setEnabled(false);
    EXPECT_FALSE(window->isEnabled());
    input.tap(kA);
    settle();
    EXPECT_TRUE(events->lines("key").empty());
    window->setEnabled(true);
    EXPECT_TRUE(window->isEnabled());
}

TEST_F(RootWindowState, TakesTheShapeOfARegion)
{
    QWidget behind;
    behind.setStyleSheet("background: #00ff00");
    behind.setGeometry(150, 100, 600, 500);
    behind.show();
    auto args = usualArgs();
    args.titleBar = false;
    args.stayOnTop = true;
    args.shape = manager.createRegion({{0, 0, 100, 100}, {200, 200, 300, 300}});
    args.eventHandler = events;
    window = manager.createRootWindow();
    window->realize(args);
    ASSERT_TRUE(waitForPixel(50, 50, kBlue));
    EXPECT_EQ(pixelAt(250, 250), kBlue);
    EXPECT_TRUE(waitForPixel(150, 150, 0x00FF00)) << "the window behind shows through";
}

TEST_F(RootWindowState, CarriesItsIcon)
{
    window = manager.createRootWindow();
    auto args = usualArgs();
    args.icon = greenImage(window, XY<int>(32, 16));
    args.eventHandler = events;
    window->realize(args);
    const QImage icon = widget()->windowIcon().pixmap(32, 16).toImage();
    ASSERT_FALSE(icon.isNull());
    EXPECT_EQ(icon.pixel(icon.width() / 2, icon.height() / 2) & 0xFFFFFF, 0x00FF00u);
}

TEST_F(RootWindowState, MakesImagesAtItsOwnScaleRoundedUp)
{
    open();
    const Tq::Ptr<iHostImage> image = window->createCompatibleImage(XY<int>(10, 20));
    const int scale = static_cast<int>(std::ceil(widget()->devicePixelRatioF()));
    EXPECT_EQ(image->getSize(), XY<int>(10, 20));
    EXPECT_EQ(image->lock()->getSize(), XY<int>(10 * scale, 20 * scale));
}

TEST(MonitorsTest, FindsTheScreenOfAPosition)
{
    const auto monitor = [](Tq::Rectangle<int> full, Tq::Rectangle<int> usable) {
        iSystemInfo::MonitorInfo info;
        info.fullRect_ = full;
        info.desktopRect_ = usable;
        return info;
    };
    const Monitors::List two = {monitor({0, 0, 1920, 1080}, {0, 30, 1920, 1080}),
                                monitor({-1280, 56, 0, 1080}, {-1280, 56, 0, 1080})};
    const struct
    {
        XY<int> position;
        XY<int> size;
        bool held;
    } table[] = {
        {XY<int>(0, 30), XY<int>(1920, 1080), true},
        {XY<int>(1919, 1079), XY<int>(1920, 1080), true},
        {XY<int>(0, 29), XY<int>(1920, 1080), false},
        {XY<int>(1920, 500), XY<int>(1920, 1080), false},
        {XY<int>(-1, 56), XY<int>(1280, 1024), true},
        {XY<int>(-1280, 1080), XY<int>(1920, 1080), false},
        {XY<int>(-1280, 1079), XY<int>(1280, 1024), true},
    };
    for (const auto& one : table) {
        EXPECT_EQ(Monitors::sizeAt(two, one.position), one.size)
            << one.position.x << ',' << one.position.y;
        EXPECT_EQ(Monitors::hold(two, one.position), one.held)
            << one.position.x << ',' << one.position.y;
    }
    EXPECT_EQ(Monitors::sizeAt({}, XY<int>(1, 1)), XY<int>(0, 0));
    EXPECT_FALSE(Monitors::hold({}, XY<int>(1, 1)));
}

TEST_F(RootWindowState, KnowsTheScreenItIsOn)
{
    open();
    EXPECT_EQ(window->getMonitorSize(XY<int>(10, 10)), screenSize());
    EXPECT_EQ(window->getMonitorSize(XY<int>(-5000, 0)), screenSize());
    EXPECT_TRUE(window->validDesktopPosition(XY<int>(10, 10)));
    EXPECT_FALSE(window->validDesktopPosition(XY<int>(-1, 10)));
}
