#include "MadeUpData.h"

#include <gtest/gtest.h>

#include <tuple>

namespace Quay {
namespace {

bool within(const Rect& inner, const Rect& outer)
{
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

bool overlap(const Rect& a, const Rect& b)
{
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

struct Machine
{
    const char* name;
    BoardData data;
};

const std::vector<Machine>& machines()
{
    static const std::vector<Machine> all{{"nothing", {}},
                                          {"small", madeUpData(2, 1, 1)},
                                          {"large", madeUpData(64, 12, 3)},
                                          {"huge", madeUpData(512, 60, 9)},
                                          {"long names", withLongNames(madeUpData(8, 7, 2))}};
    return all;
}

class LayoutTest : public testing::TestWithParam<std::tuple<int, int>>
{
};

TEST_P(LayoutTest, NothingOverlapsOrLeavesItsPlace)
{
    const Point size{std::get<0>(GetParam()), std::get<1>(GetParam())};
    for (const Machine& machine : machines()) {
        SCOPED_TRACE(machine.name);
        const BoardState state = madeUpState(machine.data, size);
        const Layout layout = layoutOf(state);
        EXPECT_GE(layout.size.x, Layout::kSmallest.x);
        ASSERT_EQ(layout.panels.size(), state.panels.size());
        int lowest = 0;
        for (std::size_t i = 0; i < layout.panels.size(); ++i) {
            const PanelPlace& place = layout.panels[i];
            EXPECT_GE(place.rect.left, layout.board.left);
            EXPECT_LE(place.rect.right, layout.board.right);
            EXPECT_GE(place.rect.width(), 280);
            lowest = std::max(lowest, place.rect.bottom);
            for (std::size_t j = i + 1; j < layout.panels.size(); ++j)
                EXPECT_FALSE(overlap(place.rect, layout.panels[j].rect)) << i << " and " << j;
            for (std::size_t r = 0; r < place.rows.size(); ++r) {
                EXPECT_TRUE(within(place.rows[r], place.body)) << i << " row " << r;
                EXPECT_GE(place.rows[r].height(),
                          rowHeight(state.panels[i].rows[r], place.rows[r].width()));
                if (r > 0) {
                    EXPECT_GE(place.rows[r].top, place.rows[r - 1].bottom);
                }
            }
        }
        // The board's end can be reached, and there is no more than that.
        EXPECT_EQ(lowest - layout.board.bottom, layout.scrollRange);
    }
}

TEST_P(LayoutTest, CellsScreensAndChoicesLieWithinTheirRows)
{
    const Point size{std::get<0>(GetParam()), std::get<1>(GetParam())};
    for (const Machine& machine : machines()) {
        SCOPED_TRACE(machine.name);
        const BoardState state = madeUpState(machine.data, size);
        const Layout layout = layoutOf(state);
        for (std::size_t p = 0; p < state.panels.size(); ++p)
            for (std::size_t r = 0; r < state.panels[p].rows.size(); ++r) {
                const Row& row = state.panels[p].rows[r];
                const Rect& rect = layout.panels[p].rows[r];
                for (int part = 0; part < actionCount(row); ++part)
                    EXPECT_TRUE(within(actionRect(row, rect, part), layout.panels[p].rect));
                if (const auto* map = std::get_if<MapRow>(&row)) {
                    for (const MapRow::Place& place : map->places) {
                        EXPECT_TRUE(within(mapRect(*map, rect, place.full), rect));
                    }
                }
                const auto* cells = std::get_if<CellsRow>(&row);
                const int count = cells ? static_cast<int>(cells->cells.size()) : 0;
                for (int i = 0; i < count; ++i) {
                    const Rect cell = cellRect(rect, count, i);
                    EXPECT_TRUE(within(cell, rect)) << i;
                    EXPECT_GE(cell.right - cell.left, 20) << i;
                    EXPECT_GE(cell.bottom - cell.top, 16) << i;
                    if (i > 0) {
                        EXPECT_FALSE(overlap(cell, cellRect(rect, count, i - 1))) << i;
                    }
                }
            }
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, LayoutTest,
                         testing::Combine(testing::Values(1, 480, 640, 960, 1280, 1920, 3840, 7680),
                                          testing::Values(1, 320, 600, 800, 1080, 2160, 4320)));

TEST(LayoutTest, LargeWindowsShowEverythingAndSmallOnesScroll)
{
    const BoardData data = madeUpData(8, 6, 2);
    EXPECT_EQ(layoutOf(madeUpState(data, {480, 320})).columns, 1);
    EXPECT_GT(layoutOf(madeUpState(data, {480, 320})).scrollRange, 0);
    EXPECT_EQ(layoutOf(madeUpState(data, {1920, 1080})).scrollRange, 0);
    EXPECT_TRUE(layoutOf(madeUpState(data, {1920, 1080})).scrollBar() == Rect());

    BoardState state = madeUpState(data, {480, 320});
    state.scroll = 1 << 30;
    const Layout end = layoutOf(state);
    EXPECT_EQ(end.scroll, end.scrollRange);
    EXPECT_EQ(end.scrollBar().bottom, end.board.bottom);
    state.scroll = -5;
    EXPECT_EQ(layoutOf(state).scroll, 0);
}

TEST(LayoutTest, ScreensAreDrawnToScale)
{
    MapRow map;
    map.places = {{{0, 0, 2000, 1000}, {}, {}, {}, true},
                  {{2000, 0, 3000, 1000}, {}, {}, {}, false}};
    const Rect row{0, 0, 316, 216};
    const Rect first = mapRect(map, row, map.places[0].full);
    const Rect second = mapRect(map, row, map.places[1].full);
    EXPECT_EQ(first, (Rect{8, 58, 208, 158}));
    EXPECT_EQ(second, (Rect{208, 58, 308, 158}));
}

} // namespace
} // namespace Quay
