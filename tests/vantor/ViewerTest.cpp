#include "View/ViewerGeometry.h"

#include <gtest/gtest.h>

namespace Vantor {
namespace {

constexpr Rect kScreen{300, 72, 1272, 376};
constexpr Rect kStage{312, 76, 1260, 376};

bool inside(const Rect& inner, const Rect& outer)
{
    return inner.hasArea() && inner.intersection(outer) == inner;
}

Point middleOf(const Rect& r)
{
    return {(r.left + r.right) / 2, (r.top + r.bottom) / 2};
}

TEST(ViewerGeometryTest, ThePictureIsAsLargeAsItsZoomSays)
{
    static const struct
    {
        ViewerZoom zoom;
        double ratio;
        int width, percent;
    } kCases[] = {
        {ViewerZoom::eHalf, 1.0, 960, 50},     {ViewerZoom::eFull, 1.0, 1920, 100},
        {ViewerZoom::eDouble, 1.0, 3840, 200}, {ViewerZoom::eHalf, 2.0, 480, 50},
        {ViewerZoom::eFull, 1.5, 1280, 100},   {ViewerZoom::eDouble, 1.25, 3072, 200},
    };
    for (const auto& c : kCases) {
        const Rect picture = placePicture(kScreen, kStage, c.ratio, {c.zoom});
        EXPECT_EQ(picture.width(), c.width) << c.percent << " % at " << c.ratio;
        EXPECT_EQ(zoomPercent(picture.width(), c.ratio), c.percent);
        EXPECT_NEAR(middleOf(picture).x, middleOf(kScreen).x, 1);
        EXPECT_NEAR(middleOf(picture).y, middleOf(kScreen).y, 1);
    }
}

TEST(ViewerGeometryTest, FittedItIsWholeAndKeepsItsShape)
{
    for (const Rect& stage : {kStage, Rect{0, 0, 100, 900}, Rect{0, 0, 3840, 2160},
                              Rect{10, 10, 400, 60}, Rect{0, 0, 1280, 1024}}) {
        ViewerChoices choices;
        choices.shift = {500, 500};
        const Rect picture = placePicture(stage, stage, 1.0, choices);
        EXPECT_TRUE(inside(picture, stage));
        EXPECT_NEAR(picture.width() * 9, picture.height() * 16, 16);
        EXPECT_TRUE(picture.width() >= stage.width() - 16 || picture.height() >= stage.height() - 9)
            << "as large as it goes";
    }
}

TEST(ViewerGeometryTest, ItIsShiftedNoFurtherThanToItsEdges)
{
    static const struct
    {
        ViewerZoom zoom;
        Point wanted, becomes;
    } kCases[] = {
        {ViewerZoom::eFit, {90, 90}, {0, 0}},
        {ViewerZoom::eHalf, {90, 90}, {0, 90}}, // narrower than the screen, higher than it
        {ViewerZoom::eFull, {10000, -10000}, {474, -388}},
        {ViewerZoom::eFull, {-200, 100}, {-200, 100}},
    };
    for (const auto& c : kCases) {
        const ViewerChoices choices{c.zoom, c.wanted};
        EXPECT_EQ(soundShift(kScreen, 1.0, choices), c.becomes);
        if (c.zoom != ViewerZoom::eFit) {
            const Rect shifted = placePicture(kScreen, kStage, 1.0, choices);
            const Rect middle = placePicture(kScreen, kStage, 1.0, {c.zoom});
            EXPECT_EQ(shifted.left - middle.left, c.becomes.x);
            EXPECT_EQ(shifted.top - middle.top, c.becomes.y);
        }
    }
}

TEST(ViewerGeometryTest, OverlaysLieInsideEachOtherAtEverySize)
{
    for (const Point& size :
         {Point(3840, 2160), Point(1920, 1080), Point(533, 300), Point(240, 135)}) {
        const Rect picture{100, 50, 100 + size.x, 50 + size.y};
        const OverlayPlaces places = placeOverlays(picture, picture, 11, 5);
        EXPECT_TRUE(inside(places.action, picture));
        EXPECT_TRUE(inside(places.title, places.action));
        EXPECT_NEAR(places.action.left - picture.left, size.x * 0.035, 1.0);
        EXPECT_NEAR(picture.bottom - places.title.bottom, size.y * 0.05, 1.0);
        EXPECT_TRUE(inside(places.timeCode, places.title)) << size.x;
        EXPECT_TRUE(inside(places.frameNumber, places.title)) << size.x;
        EXPECT_FALSE(places.timeCode.intersection(places.frameNumber).hasArea());
        EXPECT_NEAR(middleOf(places.timeCode).x, middleOf(picture).x, 1);
    }
    EXPECT_FALSE(placeOverlays({0, 0, 64, 36}, {0, 0, 64, 36}, 11, 5).timeCode.hasArea())
        << "no plate covers a small picture";

    const Rect large{-1000, -500, 2840, 1660};
    const OverlayPlaces zoomed = placeOverlays(large, kScreen, 11, 5);
    EXPECT_EQ(zoomed.title.left, large.left + 192) << "a part of the picture, seen or not";
    EXPECT_TRUE(inside(zoomed.timeCode, kScreen)) << "words stay in sight";
    EXPECT_TRUE(inside(zoomed.frameNumber, kScreen));
}

} // namespace
} // namespace Vantor
