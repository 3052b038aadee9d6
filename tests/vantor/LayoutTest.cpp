#include "View/EditorState.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace Vantor {
namespace {

struct Named
{
    const char* name;
    Rect rect;
};

std::vector<Named> panels(const Layout& l)
{
    return {{"top bar", l.topBar},  {"bin", l.bin},           {"viewer", l.viewer},
            {"effects", l.effects}, {"timeline", l.timeline}, {"scopes", l.scopes},
            {"status", l.status}};
}

/// What lies inside each panel, none over another.
std::vector<std::vector<Named>> contents(const Layout& l)
{
    std::vector<Named> timeline{{"ruler", l.ruler}};
    for (std::size_t i = 0; i < Layout::kTracks; ++i) {
        timeline.push_back({"head", l.heads[i]});
        timeline.push_back({"track", l.tracks[i]});
    }
    std::vector<Named> viewer{{"viewer header", l.viewerHeader}, {"picture", l.picture}};
    for (const Rect& button : l.buttons)
        viewer.push_back({"button", button});
    std::vector<Named> bin{{"bin header", l.binHeader}};
    for (int i = 0; i < 2 * l.columns; ++i)
        bin.push_back({"tile", l.tile(i, 0)});
    std::vector<Named> chips;
    for (const Rect& chip : l.chips)
        chips.push_back({"chip", chip});
    std::vector<Named> effects{{"name", l.effectName}, {"sliders", l.sliders}};
    for (const Rect& button : l.effectButtons)
        if (button.hasArea())
            effects.push_back({"effect button", button});
    if (l.techniqueName.hasArea())
        effects.push_back({"technique", l.techniqueName});
    if (l.trouble.hasArea())
        effects.push_back({"trouble", l.trouble});
    const std::vector<Named> scopes{
        {"waveform", l.waveform}, {"vectorscope", l.vectorscope}, {"histogram", l.histogram}};
    return {timeline, viewer, chips, bin, effects, scopes};
}

/// A rectangle as it is drawn at a scale.
Rect scaled(const Rect& r, double scale)
{
    const auto at = [scale](int v) { return static_cast<int>(std::lround(v * scale)); };
    return {at(r.left), at(r.top), at(r.right), at(r.bottom)};
}

bool inside(const Rect& inner, const Rect& outer)
{
    return outer.left <= inner.left && inner.right <= outer.right && outer.top <= inner.top &&
           inner.bottom <= outer.bottom;
}

void expectApart(const std::vector<Named>& all, double scale, const std::string& where)
{
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_LT(all[i].rect.left, all[i].rect.right) << all[i].name << where;
        EXPECT_LT(all[i].rect.top, all[i].rect.bottom) << all[i].name << where;
        for (std::size_t j = i + 1; j < all.size(); ++j)
            EXPECT_FALSE(
                scaled(all[i].rect, scale).intersection(scaled(all[j].rect, scale)).hasArea())
                << all[i].name << " and " << all[j].name << where;
    }
}

TEST(LayoutTest, NothingOverlapsAtAnySizeAndScale)
{
    LayoutChoices troubled;
    troubled.sliders = 12;
    troubled.troubleLines = 40;
    troubled.techniques = true;
    const LayoutChoices kChoices[] = {
        {}, {1, 1, 126}, {9000, 9000, 9000}, {420, 320, 10}, troubled};
    for (const Point& size :
         {Point(960, 600), Point(1024, 768), Point(1280, 720), Point(1366, 768), Point(1920, 1080),
          Point(1080, 1920), Point(2560, 1440), Point(3840, 2160)})
        for (const LayoutChoices& choices : kChoices) {
            const Layout layout = makeLayout(size, choices);
            const Rect window{0, 0, size.x, size.y};
            for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
                const std::string where = " at " + std::to_string(size.x) + "x" +
                                          std::to_string(size.y) + " bin " +
                                          std::to_string(choices.binWidth);
                expectApart(panels(layout), scale, where);
                for (const Named& panel : panels(layout))
                    EXPECT_TRUE(inside(panel.rect, window)) << panel.name << where;
                const std::vector<std::vector<Named>> groups = contents(layout);
                const Rect owners[] = {layout.timeline, layout.viewer,  layout.viewerHeader,
                                       layout.bin,      layout.effects, layout.scopes};
                for (std::size_t g = 0; g < groups.size(); ++g) {
                    expectApart(groups[g], scale, where);
                    for (const Named& part : groups[g])
                        if (std::string(part.name) != "tile") {
                            EXPECT_TRUE(inside(part.rect, owners[g])) << part.name << where;
                        }
                }
                EXPECT_TRUE(inside(layout.filter, layout.binHeader)) << where;
                EXPECT_TRUE(inside(layout.title, layout.topBar)) << where;
            }
        }
}

TEST(LayoutTest, ClosedPanelsLeaveTheirRoomToTheOthers)
{
    LayoutChoices closed;
    closed.effects = closed.scopes = false;
    const Layout open = makeLayout({1280, 720}, {});
    const Layout layout = makeLayout({1280, 720}, closed);
    EXPECT_FALSE(layout.effects.hasArea());
    EXPECT_FALSE(layout.scopes.hasArea());
    EXPECT_EQ(layout.viewer.right, open.effects.right);
    EXPECT_EQ(layout.timeline.right, open.scopes.right);
}

TEST(LayoutTest, EverySliderCanBeScrolledTo)
{
    for (const int count : {1, 6, 60}) {
        LayoutChoices choices;
        choices.sliders = count;
        choices.sliderScroll = makeLayout({960, 600}, choices).sliderScrollRange();
        const Layout layout = makeLayout({960, 600}, choices);
        EXPECT_LE(layout.slider(count - 1).bottom, layout.sliders.bottom) << count;
    }
}

TEST(LayoutTest, AWindowTooSmallKeepsTheSmallestLayout)
{
    const Layout layout = makeLayout({100, 20}, {});
    EXPECT_EQ(layout.size, Layout::kSmallest);
}

TEST(LayoutTest, EveryTileCanBeScrolledTo)
{
    for (const int count : {0, 1, 8, 100}) {
        const Layout layout = makeLayout({960, 600}, {});
        const int range = layout.scrollRange(count);
        EXPECT_GE(range, 0);
        if (count > 0) {
            EXPECT_LE(layout.tile(count - 1, range).bottom, layout.tiles.bottom) << count;
        }
    }
}

/// The sample project's places, without its pictures.
EditorState sampleState()
{
    MediaBin bin;
    for (const wchar_t* name : {L"dawn.jpg", L"pier.jpg", L"quay.bmp", L"chart.tif"})
        bin.items.push_back({name, Text(L"/nowhere/") + name, L"PNG"});
    return makeEditorState(bin, Text());
}

TEST(HitTest, FindsWhatIsDrawnAtAPoint)
{
    EditorState state = sampleState();
    state.player.seek(400);
    const Layout l = layoutOf(state);
    const int pier = state.project.clipAt(Track::ePicture, 200);
    const Rect clip = clipRect(state, l, state.project.clips[static_cast<std::size_t>(pier)]);
    const int middle = (clip.top + clip.bottom) / 2;
    const Rect tile = l.tile(2, 0);
    const int playhead = static_cast<int>(state.view.xOf(400, l.lanes.left));
    const struct
    {
        const char* what;
        Point point;
        Hit hit;
    } cases[] = {
        {"the title", {20, 18}, {Area::eTitle, 0}},
        {"beside the title", {900, 18}, {Area::eNone, -1}},
        {"a tile", {tile.left + 5, tile.top + 5}, {Area::eTile, 2}},
        {"between tiles", {tile.right + 3, tile.top + 5}, {Area::eBin, 0}},
        {"the filter", {l.filter.left + 30, l.filter.top + 5}, {Area::eFilter, 0}},
        {"the bin's edge", {l.binEdge.left + 3, 200}, {Area::eBinEdge, 0}},
        {"the timeline's edge", {600, l.timelineEdge.top + 3}, {Area::eTimelineEdge, 0}},
        {"a button", {l.buttons[1].left + 9, l.buttons[1].top + 9}, {Area::eButton, 1}},
        {"the picture", {700, 200}, {Area::eViewer, 0}},
        {"the ruler", {playhead - 60, l.ruler.top + 4}, {Area::eRuler, 0}},
        {"the playhead", {playhead + 3, l.ruler.top + 14}, {Area::ePlayhead, 0}},
        {"left of the ruler's time", {40, l.ruler.top + 4}, {Area::eNone, -1}},
        {"a clip", {clip.left + 60, middle}, {Area::eClip, pier}},
        {"a clip's first pixel", {clip.left, middle}, {Area::eClipStart, pier}},
        {"a clip's last pixel", {clip.right - 1, middle}, {Area::eClipEnd, pier}},
        {"just behind a clip", {clip.right, middle}, {Area::eLane, 2}},
        {"a track's head", {40, middle}, {Area::eHead, 2}},
        {"the gap between tracks", {600, l.tracks[0].bottom + 1}, {Area::eNone, -1}},
        {"outside", {-5, 5000}, {Area::eNone, -1}},
    };
    for (const auto& c : cases) {
        const Hit hit = hitTest(state, l, c.point);
        EXPECT_EQ(static_cast<int>(hit.area), static_cast<int>(c.hit.area)) << c.what;
        EXPECT_EQ(hit.index, c.hit.index) << c.what;
    }
}

TEST(HitTest, ANarrowClipKeepsAMiddle)
{
    EditorState state = sampleState();
    state.view.scale = 0.05;
    const Layout l = layoutOf(state);
    const Rect clip = clipRect(state, l, state.project.clips[0]);
    ASSERT_LT(clip.width(), 12);
    const Hit hit = hitTest(state, l, {(clip.left + clip.right) / 2, clip.top + 5});
    EXPECT_TRUE(hit.is(Area::eClip, 0));
}

} // namespace
} // namespace Vantor
