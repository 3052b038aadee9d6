#include "Editor.h"

#include <OS/Core/Ptr.h>

#include <gtest/gtest.h>

namespace Vantor {
namespace {

using Mouse = iEventHandler::MouseEvent;

/// The editor with the sample project, without a window: events go in as a window would send them.
class EditorTest : public testing::Test
{
protected:
    EditorTest()
    {
        MediaBin bin;
        for (const wchar_t* name : {L"chart.tif", L"dawn.jpg", L"pier.jpg", L"quay.bmp"})
            bin.items.push_back({name, Text(L"/nowhere/") + name, L"PNG"});
        EditorState state = makeEditorState(bin, Text());
        state.choices.scopes = false; // all clips can be seen
        const int frame = state.player.frame();
        state.player = Transport([this] { return clock_; });
        state.player.setLength(state.project.length);
        state.player.seek(frame);
        editor_ = Tq::Ptr<Editor>(new Editor(std::move(state)));
    }

    const EditorState& state() const { return editor_->state(); }
    Layout layout() const { return layoutOf(state()); }
    const Clip& clip(int index) const
    {
        return state().project.clips[static_cast<std::size_t>(index)];
    }
    Rect rectOf(int index) const { return clipRect(state(), layout(), clip(index)); }
    int pictureAt(int frame) const { return state().project.clipAt(Track::ePicture, frame); }
    int xOf(int frame) const
    {
        return static_cast<int>(state().view.xOf(frame, layout().lanes.left));
    }

    iEventHandler::eRC mouse(std::uint32_t kind, const Point& at, std::uint32_t modifiers = 0,
                             int wheel = 0)
    {
        Mouse event;
        time_ += 1000; // far enough apart to be no double click
        event.time = time_;
        event.position = at;
        event.kind = kind;
        event.modifiers = modifiers;
        event.wheelDirection = wheel;
        return editor_->handleMouse(event);
    }
    void drag(const Point& from, const Point& to)
    {
        mouse(Mouse::eLeftDown, from);
        mouse(Mouse::eMove, {(from.x + to.x) / 2, (from.y + to.y) / 2});
        mouse(Mouse::eMove, to);
        mouse(Mouse::eLeftUp, to);
    }
    void click(const Point& at) { drag(at, at); }
    void doubleClick(const Point& at)
    {
        click(at);
        time_ -= 3800; // 200 ms after the first press
        click(at);
    }
    iEventHandler::eRC key(std::uint32_t code, std::uint32_t modifiers = 0)
    {
        iEventHandler::KeyEvent event;
        event.code = code;
        event.modifiers = modifiers;
        event.pressed = true;
        const iEventHandler::eRC rc = editor_->handleKey(event);
        event.pressed = false;
        editor_->handleKey(event);
        return rc;
    }
    void type(const char* text)
    {
        for (; *text; ++text)
            key(static_cast<unsigned char>(*text));
    }
    void tick(int ms)
    {
        clock_ += ms;
        editor_->handleTimer({});
    }
    static Point centre(const Rect& r) { return {(r.left + r.right) / 2, (r.top + r.bottom) / 2}; }

    Tq::Ptr<Editor> editor_;
    std::int64_t time_ = 10000;
    double clock_ = 0.0;
};

TEST_F(EditorTest, TheRulerMovesThePlayhead)
{
    click({xOf(300), layout().ruler.top + 3});
    EXPECT_EQ(state().player.frame(), 300);
    drag({xOf(300), layout().ruler.top + 3}, {xOf(500), layout().ruler.top + 3});
    EXPECT_EQ(state().player.frame(), 500);
    drag({xOf(500), layout().ruler.top + 3}, {-4000, 900});
    EXPECT_EQ(state().player.frame(), 0) << "a drag beyond the edge stops at the start";
}

TEST_F(EditorTest, KeysPlayStepAndShuttle)
{
    key(Key::eHome);
    key(Key::eRight);
    key(Key::eRight, Key::eShift);
    EXPECT_EQ(state().player.frame(), 26);
    key(Key::eLeft);
    EXPECT_EQ(state().player.frame(), 25);
    key(Key::eEnd);
    EXPECT_EQ(state().player.frame(), state().project.length - 1);
    key(Key::eHome);
    key('l');
    key('L'); // with Caps Lock
    EXPECT_EQ(state().player.speed(), 2);
    tick(1000);
    EXPECT_EQ(state().player.frame(), 50);
    key(Key::eSpace);
    EXPECT_FALSE(state().player.playing());
    key(Key::eSpace);
    EXPECT_EQ(state().player.speed(), 1);
    key('k');
    EXPECT_FALSE(state().player.playing());
    key(Key::eDown);
    EXPECT_EQ(state().player.frame(), 157) << "the next edge is the title's";
}

TEST_F(EditorTest, TheWheelZoomsAroundThePointer)
{
    const Point at{700, layout().tracks[1].top + 10};
    const double before = state().view.frameAt(at.x, layout().lanes.left);
    mouse(Mouse::eWheel, at, 0, 1);
    EXPECT_GT(state().view.scale, 1.6);
    EXPECT_NEAR(state().view.frameAt(at.x, layout().lanes.left), before, 1e-9);
    mouse(Mouse::eWheel, at, Key::eShift, -1);
    EXPECT_GT(state().view.origin, 0.0);
}

TEST_F(EditorTest, AClipIsSelectedDraggedAndTakenBack)
{
    const int quay = pictureAt(400);
    const int start = clip(quay).start;
    const Point middle = centre(rectOf(quay));
    click(middle);
    EXPECT_EQ(state().selectedClip, quay);
    EXPECT_EQ(state().changes(), 0) << "a click changes nothing";

    drag(middle, {middle.x + 160, middle.y});
    EXPECT_EQ(clip(quay).start, start + 100);
    EXPECT_EQ(state().changes(), 1);
    key('z', Key::eControl);
    EXPECT_EQ(clip(quay).start, start);
    key('z', Key::eControl | Key::eShift);
    EXPECT_EQ(clip(quay).start, start + 100);
    key('z', Key::eControl);
    key('z', Key::eControl);
    EXPECT_EQ(state().changes(), 0) << "undo at the beginning does nothing";
}

TEST_F(EditorTest, EdgesTrimAndSnap)
{
    const int quay = pictureAt(400);
    const Rect rect = rectOf(quay);
    const int middle = (rect.top + rect.bottom) / 2;
    drag({rect.right - 1, middle}, {rect.right - 81, middle});
    EXPECT_EQ(clip(quay).end(), 525);
    // Near the edge of the clip before, the start goes right there.
    drag({rect.left, middle}, {xOf(350) + 4, middle});
    EXPECT_EQ(clip(quay).start, 350);
    drag({xOf(350), middle}, {xOf(100), middle});
    EXPECT_EQ(clip(quay).start, 350) << "the neighbour is in the way";
}

TEST_F(EditorTest, EscapeLetsGoOfADragAndThenQuits)
{
    const int quay = pictureAt(400);
    const int start = clip(quay).start;
    const Point middle = centre(rectOf(quay));
    mouse(Mouse::eLeftDown, middle);
    mouse(Mouse::eMove, {middle.x + 100, middle.y});
    EXPECT_NE(clip(quay).start, start);
    key(Key::eDelete);
    EXPECT_EQ(state().project.clips.size(), 7u) << "what is held is not deleted";
    EXPECT_EQ(key(Key::eEscape), iEventHandler::eContinue);
    EXPECT_EQ(clip(quay).start, start);
    mouse(Mouse::eLeftUp, {middle.x + 100, middle.y});
    EXPECT_EQ(state().changes(), 0);
    EXPECT_EQ(key(Key::eEscape), iEventHandler::eQuit);
}

TEST_F(EditorTest, ClosingQuits)
{
    iEventHandler::WindowEvent event;
    event.kind = iEventHandler::WindowEvent::eShown;
    EXPECT_EQ(editor_->handleWindowEvent(event), iEventHandler::eContinue);
    event.kind = iEventHandler::WindowEvent::eCloseRequested;
    EXPECT_EQ(editor_->handleWindowEvent(event), iEventHandler::eQuit);
}

TEST_F(EditorTest, LosingTheKeyboardEndsADrag)
{
    mouse(Mouse::eLeftDown, centre(rectOf(0)));
    iEventHandler::WindowEvent event;
    event.kind = iEventHandler::WindowEvent::eHidden;
    editor_->handleWindowEvent(event);
    EXPECT_EQ(static_cast<int>(state().drag.kind), static_cast<int>(Drag::Kind::eNone));
}

TEST_F(EditorTest, TheTitleIsRenamed)
{
    click({layout().title.left + 20, 18});
    EXPECT_TRUE(state().editingText());
    key('a', Key::eControl);
    type("Dusk");
    EXPECT_EQ(state().project.title, L"Harbour at Dawn") << "not before Return";
    EXPECT_EQ(key(Key::eReturn), iEventHandler::eContinue);
    EXPECT_EQ(state().project.title, L"Dusk");
    EXPECT_EQ(state().changes(), 1);

    key(Key::eF1 + 1); // F2
    type("Noon");
    EXPECT_EQ(key(Key::eEscape), iEventHandler::eContinue) << "the first Escape leaves the field";
    EXPECT_EQ(state().project.title, L"Dusk");
    EXPECT_EQ(state().titleField.text, L"Dusk");
    EXPECT_EQ(key(Key::eEscape), iEventHandler::eQuit);
}

TEST_F(EditorTest, TheMouseSelectsText)
{
    const Rect title = layout().title;
    drag({title.left + 8, 18}, {title.right + 300, 18});
    EXPECT_EQ(state().titleField.selected(), L"Harbour at Dawn");
    doubleClick({title.left + 20, 18});
    EXPECT_EQ(state().titleField.selected(), L"Harbour");
}

TEST_F(EditorTest, TheFilterNarrowsTheBin)
{
    key('f', Key::eControl);
    type("PI");
    EXPECT_EQ(state().bin.visible(), std::vector<int>{2});
    type("x");
    EXPECT_TRUE(state().bin.visible().empty());
    key('a', Key::eControl);
    key(Key::eBackspace);
    EXPECT_EQ(state().bin.visible().size(), 4u);
    type(" j ");
    EXPECT_EQ(state().player.speed(), 0) << "letters in a field play nothing";
}

TEST_F(EditorTest, TabWalksThroughEveryPlaceAndBack)
{
    key(Key::eHome);
    std::vector<Focus> seen;
    for (int i = 0; i < 6; ++i) {
        key(Key::eTab);
        seen.push_back(state().focus);
    }
    EXPECT_EQ(seen, (std::vector<Focus>{Focus::eTitle, Focus::eFilter, Focus::eBin,
                                        Focus::eForwards, Focus::eEffects, Focus::eTimeline}))
        << "buttons that cannot be used are left out";
    EXPECT_TRUE(state().focusShown);
    key('e');
    key(Key::eTab, Key::eShift);
    EXPECT_EQ(state().focus, Focus::eForwards) << "a closed panel is left out";
    key(Key::eSpace);
    EXPECT_EQ(state().player.speed(), 1);
    click({700, 200});
    EXPECT_FALSE(state().focusShown);
}

TEST_F(EditorTest, ArrowsWalkThroughTheBinAndReturnInserts)
{
    click(centre(layout().tile(0, 0)));
    key(Key::eRight);
    EXPECT_EQ(state().bin.selected, 1);
    key(Key::eDown);
    EXPECT_EQ(state().bin.selected, 3);
    key(Key::eDown);
    EXPECT_EQ(state().bin.selected, 3) << "there is nothing below";
    const std::size_t before = state().project.clips.size();
    key(Key::eReturn);
    ASSERT_EQ(state().project.clips.size(), before + 1);
    EXPECT_EQ(state().project.clips.back().name, L"quay.bmp");
}

TEST_F(EditorTest, APictureIsDraggedOntoATrack)
{
    const Point tile = centre(layout().tile(1, 0));
    const Rect overlay = layout().tracks[1];
    drag(tile, {xOf(100), overlay.top + 10});
    EXPECT_EQ(state().project.clips.back().name, L"dawn.jpg");
    EXPECT_EQ(static_cast<int>(state().project.clips.back().track),
              static_cast<int>(Track::eOverlay));
    EXPECT_NEAR(state().project.clips.back().start, 75, 1);

    const std::size_t before = state().project.clips.size();
    drag(tile, {xOf(100), layout().tracks[3].top + 10});
    drag(tile, {20, 300});
    EXPECT_EQ(state().project.clips.size(), before) << "effects and the bin take no pictures";
}

TEST_F(EditorTest, DroppedFilesGoIntoTheBinOnce)
{
    editor_->handleFileDrop(L"/some where/new.JPG");
    editor_->handleFileDrop(L"/some where/new.JPG");
    ASSERT_EQ(state().bin.items.size(), 5u);
    EXPECT_EQ(state().bin.items.back().name, L"new.JPG");
    EXPECT_EQ(state().bin.items.back().format, L"JPEG");
    EXPECT_EQ(state().bin.selected, 4);
    editor_->handleFileDrop(L"/some where/notes.txt");
    EXPECT_EQ(state().bin.items.size(), 5u);
    EXPECT_TRUE(state().message.contains(L"notes.txt"));
}

TEST_F(EditorTest, PanelEdgesAreDragged)
{
    const Point edge{layout().binEdge.left + 3, 200};
    drag(edge, {edge.x + 120, 200});
    EXPECT_EQ(layout().bin.width(), 296 + 120);
    drag({layout().binEdge.left + 3, 200}, {5000, 200});
    const int widest = layout().bin.width();
    drag({layout().binEdge.left + 3, 200}, {layout().binEdge.left - 7, 200});
    EXPECT_EQ(layout().bin.width(), widest - 10) << "dragging back answers at once";
}

TEST_F(EditorTest, KeysChangeTheViewer)
{
    const ViewerChoices& viewer = state().choices.viewer;
    const auto zoom = [&] { return static_cast<int>(viewer.zoom); };
    key('2');
    EXPECT_EQ(zoom(), static_cast<int>(ViewerZoom::eDouble));
    key('5');
    EXPECT_EQ(zoom(), static_cast<int>(ViewerZoom::eHalf));
    key('F');
    EXPECT_EQ(zoom(), static_cast<int>(ViewerZoom::eFit));
    key('s');
    key('t');
    key('n');
    EXPECT_FALSE(viewer.safeAreas);
    EXPECT_TRUE(viewer.timeCode);
    EXPECT_TRUE(viewer.frameNumber);
    key('l', Key::eControl);
    EXPECT_TRUE(state().player.loops());
    EXPECT_EQ(state().player.speed(), 0) << "with Control the letter plays nothing";
    for (int i = 0; i < 9; ++i)
        key(']');
    EXPECT_EQ(state().player.rate(), kFrameRates.back());
    key('[');
    EXPECT_EQ(state().player.rate(), (FrameRate{50, 1}));
    EXPECT_EQ(state().changes(), 0) << "a look is no change of the project";
}

TEST_F(EditorTest, SwitchesOfTheViewerActOnRelease)
{
    const auto chip = [&](ViewerChip which) {
        return centre(layout().chips[static_cast<std::size_t>(which)]);
    };
    click(chip(ViewerChip::eTimeCode));
    EXPECT_TRUE(state().choices.viewer.timeCode);
    drag(chip(ViewerChip::eTimeCode), chip(ViewerChip::eLoop));
    EXPECT_TRUE(state().choices.viewer.timeCode) << "let go elsewhere";
    EXPECT_FALSE(state().player.loops());
    for (std::size_t i = 0; i < kFrameRates.size(); ++i)
        click(chip(ViewerChip::eRate));
    EXPECT_EQ(state().player.rate(), (FrameRate{25, 1})) << "round all of them";
    for (int i = 0; i < kViewerZooms; ++i)
        click(chip(ViewerChip::eZoom));
    EXPECT_EQ(static_cast<int>(state().choices.viewer.zoom), 0);
}

TEST_F(EditorTest, ALargePictureIsMovedByTheHandAndZoomedByTheWheel)
{
    const Point middle = centre(layout().screen);
    drag(middle, {middle.x + 50, middle.y + 20});
    EXPECT_EQ(state().choices.viewer.shift, Point()) << "it is whole already";
    mouse(Mouse::eWheel, middle, 0, 1);
    mouse(Mouse::eWheel, middle, 0, 1);
    EXPECT_EQ(static_cast<int>(state().choices.viewer.zoom), static_cast<int>(ViewerZoom::eFull));
    drag(middle, {middle.x + 50, middle.y - 20});
    EXPECT_EQ(state().choices.viewer.shift, Point(50, -20));
    drag(middle, {middle.x + 5000, middle.y});
    EXPECT_EQ(layout().picture.left, layout().screen.left) << "no further than to its edge";
    for (int i = 0; i < 9; ++i)
        mouse(Mouse::eWheel, middle, 0, -1);
    EXPECT_EQ(state().choices.viewer.shift, Point());
}

TEST_F(EditorTest, TheFullScreenTakesOnlyWhatPlays)
{
    const std::size_t clips = state().project.clips.size();
    key(Key::eReturn);
    ASSERT_TRUE(state().fullScreen);
    key(Key::eDelete);
    key('z', Key::eControl);
    key(Key::eTab);
    click(centre(layout().buttons[2]));
    EXPECT_EQ(state().project.clips.size(), clips);
    EXPECT_FALSE(state().player.playing()) << "what lies under it cannot be clicked";
    key(Key::eSpace);
    EXPECT_TRUE(state().player.playing());
    key('k');
    EXPECT_EQ(key(Key::eEscape), iEventHandler::eContinue);
    EXPECT_FALSE(state().fullScreen);
    key(Key::eReturn);
    key(Key::eReturn);
    EXPECT_FALSE(state().fullScreen) << "Return leaves it too";
    doubleClick(centre(layout().screen));
    EXPECT_TRUE(state().fullScreen);
    doubleClick(centre(layout().screen));
    EXPECT_FALSE(state().fullScreen);
}

TEST_F(EditorTest, PlayingFollowsTheClockAndDropsRatherThanSlowsDown)
{
    key(Key::eHome);
    key(Key::eSpace);
    tick(40);
    tick(400);
    EXPECT_EQ(state().player.frame(), 11);
    EXPECT_EQ(state().shown.presented, 2u);
    EXPECT_EQ(state().shown.dropped, 9u);
    EXPECT_FALSE(state().shown.byGL);
    tick(1000000);
    EXPECT_EQ(state().player.frame(), state().project.length - 1);
    EXPECT_FALSE(state().player.playing());
}

TEST_F(EditorTest, ButtonsActOnReleaseOverThem)
{
    const Point play = centre(layout().buttons[2]);
    mouse(Mouse::eLeftDown, play);
    EXPECT_FALSE(state().player.playing());
    mouse(Mouse::eLeftUp, {play.x + 100, play.y});
    EXPECT_FALSE(state().player.playing()) << "let go elsewhere";
    click(play);
    EXPECT_TRUE(state().player.playing());
    click(centre(layout().buttons[1]));
    EXPECT_FALSE(state().player.playing());
}

TEST_F(EditorTest, DeletingEverythingLeavesAnEditorThatWorks)
{
    while (!state().project.clips.empty()) {
        click(centre(rectOf(0)));
        key(Key::eDelete);
    }
    EXPECT_EQ(state().selectedClip, Project::kNone);
    key(Key::eDelete);
    key(Key::eSpace);
    tick(500);
    EXPECT_EQ(state().changes(), 7);
}

} // namespace
} // namespace Vantor
