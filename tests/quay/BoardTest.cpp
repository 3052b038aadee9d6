#include "Board.h"

#include "MadeUpData.h"

#include <gtest/gtest.h>

namespace Quay {
namespace {

using Mouse = iEventHandler::MouseEvent;

/// The board without a window: events go in as a window would send them.
class BoardTest : public testing::Test
{
protected:
    BoardTest() { open({1280, 800}); }

    void open(const Point& size)
    {
        board_ = Tq::Ptr<Board>(new Board(madeUpState(madeUpData(8, 6, 2), size)));
    }
    const BoardState& state() const { return board_->state(); }
    Layout layout() const { return layoutOf(state()); }
    int panel(const Text& key) const
    {
        for (std::size_t i = 0; i < state().panels.size(); ++i)
            if (state().panels[i].key == key)
                return static_cast<int>(i);
        return -1;
    }
    const PanelPlace& place(const Text& key)
    {
        layout_ = layout();
        return layout_.panels[static_cast<std::size_t>(panel(key))];
    }
    template <class Kind>
    int firstRow(const Text& key) const
    {
        const std::vector<Row>& rows = state().panels[static_cast<std::size_t>(panel(key))].rows;
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (std::holds_alternative<Kind>(rows[i]))
                return static_cast<int>(i);
        return -1;
    }
    template <class Kind>
    Rect actionOfFirst(const Text& key, int part) const
    {
        return rectOf(state(), layout(), {Area::eAction, panel(key), firstRow<Kind>(key), part});
    }

    void mouse(std::uint32_t kind, const Point& at, int wheel = 0)
    {
        Mouse event;
        event.position = at;
        event.kind = kind;
        event.wheelDirection = wheel;
        EXPECT_EQ(board_->handleMouse(event), iEventHandler::eContinue);
    }
    void drag(const Point& from, const Point& to)
    {
        mouse(Mouse::eLeftDown, from);
        mouse(Mouse::eMove, {(from.x + to.x) / 2, (from.y + to.y) / 2});
        mouse(Mouse::eMove, to);
        mouse(Mouse::eLeftUp, to);
    }
    void click(const Point& at) { drag(at, at); }
    iEventHandler::eRC key(std::uint32_t code, std::uint32_t modifiers = 0)
    {
        iEventHandler::KeyEvent event;
        event.code = code;
        event.modifiers = modifiers;
        event.pressed = true;
        return board_->handleKey(event);
    }

    Tq::Ptr<Board> board_;
    Layout layout_;
};

TEST_F(BoardTest, ClicksChooseUnitsAndRefresh)
{
    click(centreOf(actionOfFirst<ChoiceRow>(L"settings", 1)));
    EXPECT_EQ(state().preferences.units, Units::eDecimal);
    EXPECT_EQ(state().panels[static_cast<std::size_t>(panel(L"memory"))].fact, L"68.7 GB");
    const int row = firstRow<ChoiceRow>(L"settings") + 1;
    click(centreOf(rectOf(state(), layout(), {Area::eAction, panel(L"settings"), row, 3})));
    EXPECT_EQ(state().preferences.refreshMs, 5000);
}

TEST_F(BoardTest, LettingGoElsewhereDoesNothing)
{
    const Point at = centreOf(actionOfFirst<ChoiceRow>(L"settings", 1));
    drag(at, {at.x, at.y + 200});
    EXPECT_EQ(state().preferences.units, Units::eBinary);
}

TEST_F(BoardTest, FoldersAreOpenedByClickAndReturnButNotMissingOnes)
{
    click(centreOf(actionOfFirst<ItemRow>(L"folders", 0)));
    EXPECT_EQ(state().folderToOpen, L"/home/editor/");
    const Panel& folders = state().panels[static_cast<std::size_t>(panel(L"folders"))];
    EXPECT_EQ(actionCount(folders.rows[3]), 0);

    open({1280, 800});
    while (state().focus.panel != panel(L"folders") || !state().focusShown)
        key(Key::eTab);
    key(Key::eDown);
    key(Key::eDown);
    key(Key::eReturn);
    EXPECT_EQ(state().folderToOpen, L"/home/editor/Desktop/");
}

TEST_F(BoardTest, PanelsAreArrangedWithTheMouse)
{
    const Point from = centreOf(place(L"processors").header);
    const Point to = centreOf(place(L"folders").rect);
    const int there = panel(L"folders");
    drag(from, to);
    EXPECT_EQ(panel(L"processors"), there);
    EXPECT_EQ(state().preferences.order.size(), state().panels.size());
    const std::vector<Text> order = state().preferences.order;
    drag(centreOf(place(L"memory").header), {2, 2});
    EXPECT_EQ(state().preferences.order, order) << "dropped nowhere";
    click(centreOf(place(L"memory").header));
    EXPECT_EQ(state().preferences.order, order) << "a click is no drag";
}

TEST_F(BoardTest, PanelsAreArrangedWithTheKeyboard)
{
    key(Key::eTab);
    ASSERT_EQ(state().focus.panel, 0);
    key(Key::eRight, Key::eControl);
    key(Key::eRight, Key::eControl);
    EXPECT_EQ(panel(L"processors"), 2);
    EXPECT_EQ(state().focus.panel, 2) << "the focus goes along";
    for (int i = 0; i < 20; ++i)
        key(Key::eLeft, Key::eControl);
    EXPECT_EQ(panel(L"processors"), 0);
}

TEST_F(BoardTest, TheKeyboardReachesEverything)
{
    open({480, 320});
    int reached = 0;
    for (std::size_t p = 0; p < state().panels.size(); ++p) {
        key(Key::eTab);
        ASSERT_EQ(state().focus.panel, static_cast<int>(p));
        for (Hit before; !(state().focus == before);) {
            before = state().focus;
            const Rect rect = rectOf(state(), layout(), state().focus);
            EXPECT_GE(rect.top, layout().board.top);
            EXPECT_LT(rect.top, layout().board.bottom);
            reached += state().focus.area == Area::eAction;
            key(Key::eDown);
        }
        while (state().focus.area == Area::eAction)
            key(Key::eUp);
    }
    int rows = 0;
    for (const Panel& panel : state().panels)
        for (const Row& row : panel.rows)
            rows += actionCount(row) > 0;
    EXPECT_EQ(reached, rows);
}

TEST_F(BoardTest, ArrowsGoThroughTheChoices)
{
    while (state().focus.panel != panel(L"settings") || !state().focusShown)
        key(Key::eTab, Key::eShift);
    key(Key::eDown);
    key(Key::eRight);
    key(Key::eRight);
    key(Key::eSpace);
    EXPECT_EQ(state().preferences.units, Units::eDecimal);
    key('u');
    EXPECT_EQ(state().preferences.units, Units::eBinary);
}

TEST_F(BoardTest, ScrollsByWheelKeysAndBar)
{
    open({480, 320});
    const int range = layout().scrollRange;
    mouse(Mouse::eWheel, {200, 200}, -1);
    EXPECT_GT(state().scroll, 0);
    mouse(Mouse::eWheel, {200, 200}, 1);
    mouse(Mouse::eWheel, {200, 200}, 1);
    EXPECT_EQ(state().scroll, 0);
    key(Key::eEnd);
    EXPECT_EQ(state().scroll, range);
    key(Key::ePageUp);
    EXPECT_LT(state().scroll, range);
    key(Key::eHome);
    const Rect bar = layout().scrollBar();
    drag(centreOf(bar), {bar.left, 5000});
    EXPECT_EQ(state().scroll, range);
    drag(centreOf(layout().scrollBar()), {bar.left, -5000});
    EXPECT_EQ(state().scroll, 0);
}

TEST_F(BoardTest, EscapeEndsWhatIsUnderWayFirst)
{
    key(Key::eTab);
    EXPECT_EQ(key(Key::eEscape), iEventHandler::eContinue);
    EXPECT_FALSE(state().focusShown);
    mouse(Mouse::eLeftDown, centreOf(place(L"memory").header));
    mouse(Mouse::eMove, {900, 500});
    key(Key::eTab);
    EXPECT_FALSE(state().focusShown) << "what is held stays until it is let go";
    EXPECT_EQ(key(Key::eEscape), iEventHandler::eContinue);
    EXPECT_EQ(state().drag.kind, Drag::Kind::eNone);
    EXPECT_EQ(key(Key::eEscape), iEventHandler::eQuit);
}

TEST_F(BoardTest, AnyEventsAtAnyPlaceDoNoHarm)
{
    static const std::uint32_t kKeys[] = {Key::eTab,    Key::eUp,     Key::eDown, Key::eLeft,
                                          Key::eRight,  Key::eReturn, Key::eEnd,  Key::eHome,
                                          Key::ePageUp, 'u',          'x',        0};
    std::uint32_t seed = 7;
    const auto next = [&seed](int below) {
        seed = seed * 1664525u + 1013904223u;
        return static_cast<int>((seed >> 8) % static_cast<std::uint32_t>(below));
    };
    for (int i = 0; i < 4000; ++i) {
        if (i % 500 == 0)
            open({300 + next(2000), 200 + next(1500)});
        const Point at{next(2400) - 50, next(1800) - 50};
        switch (next(5)) {
        case 0:
            key(kKeys[next(12)], next(2) != 0 ? std::uint32_t(Key::eControl) : 0u);
            break;
        case 1:
            mouse(Mouse::eWheel, at, next(2) != 0 ? 1 : -1);
            break;
        default:
            mouse(static_cast<std::uint32_t>(next(7)), at);
        }
        ASSERT_EQ(state().panels.size(), 11u);
        ASSERT_GE(state().scroll, 0);
        ASSERT_LE(state().scroll, layout().scrollRange);
    }
}

} // namespace
} // namespace Quay
