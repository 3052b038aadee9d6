#include "Model/Project.h"
#include "Model/TimeView.h"
#include "Model/Timecode.h"

#include <gtest/gtest.h>

namespace Vantor {
namespace {

constexpr FrameRate kFilm{24, 1}, kVideo{25, 1}, kTelevision{30000, 1001}, kSmooth{60, 1};

TEST(TimecodeTest, WritesFramesAsTimeAndReadsItBack)
{
    static const struct
    {
        FrameRate rate;
        int frame;
        const wchar_t* full;
        const wchar_t* minutes;
    } kCases[] = {
        {kVideo, 0, L"00:00:00:00", L"00:00"},
        {kVideo, 24, L"00:00:00:24", L"00:00"},
        {kVideo, 25, L"00:00:01:00", L"00:01"},
        {kVideo, 187, L"00:00:07:12", L"00:07"},
        {kVideo, 25 * 60, L"00:01:00:00", L"01:00"},
        {kVideo, 25 * 3600 - 1, L"00:59:59:24", L"59:59"},
        {kVideo, 25 * 3600, L"01:00:00:00", L"1:00:00"},
        {kVideo, 25 * 3600 * 100, L"100:00:00:00", L"100:00:00"},
        {kFilm, 24, L"00:00:01:00", L"00:01"},
        {kTelevision, 29, L"00:00:00:29", L"00:00"},
        {kTelevision, 1800, L"00:01:00:00", L"01:00"}, // no number is dropped
        {kTelevision, 1802, L"00:01:00:02", L"01:00"},
        {kSmooth, 3599, L"00:00:59:59", L"00:59"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(Timecode::full(c.frame, c.rate), c.full) << c.frame;
        EXPECT_EQ(Timecode::minutes(c.frame, c.rate), c.minutes) << c.frame;
        EXPECT_EQ(Timecode::parse(c.full, c.rate), c.frame);
    }
    EXPECT_EQ(Timecode::full(-1, kVideo), L"00:00:00:00");
    EXPECT_EQ(Timecode::length(162, kVideo), L"6 s 12 fr");
    EXPECT_EQ(Timecode::length(775, kVideo), L"31 s");
    EXPECT_EQ(Timecode::length(12, kVideo), L"12 fr");
}

TEST(TimecodeTest, ReadsTheLastPartsAndRefusesTheRest)
{
    EXPECT_EQ(Timecode::parse(L"7", kVideo), 7);
    EXPECT_EQ(Timecode::parse(L"300", kVideo), 300) << "frames alone may be many";
    EXPECT_EQ(Timecode::parse(L"12:05", kVideo), 305);
    EXPECT_EQ(Timecode::parse(L"1:12:05", kVideo), 1805);
    for (const wchar_t* wrong :
         {L"", L":", L"1:", L":1", L"-1", L"1 2", L"1;2", L"00:00:00:25", L"00:00:60:00",
          L"00:60:00:00", L"1:1:1:1:1", L"9999999999", L"99999999:00:00:00", L"1.5"})
        EXPECT_FALSE(Timecode::parse(wrong, kVideo)) << wrong;
}

TEST(FrameRateTest, NamesItselfAndCountsWholeFrames)
{
    EXPECT_EQ(kTelevision.text(), L"29.97");
    EXPECT_EQ(kTelevision.nominal(), 30);
    EXPECT_EQ(kFilm.text(), L"24");
    EXPECT_EQ(kFilm.nominal(), 24);
}

TEST(TimeViewTest, ZoomKeepsTheFrameUnderThePointer)
{
    for (const double factor : {1.25, 0.8, 4.0}) {
        TimeView view{200.0, 1.6};
        const double before = view.frameAt(600, 128);
        view.zoomAround(600, 128, factor);
        EXPECT_NEAR(view.frameAt(600, 128), before, 1e-9) << factor;
    }
}

TEST(TimeViewTest, ZoomStopsAtTheLimitsAndTheStart)
{
    TimeView view;
    for (int i = 0; i < 100; ++i)
        view.zoomAround(900, 128, 1.25);
    EXPECT_EQ(view.scale, TimeView::kFinest);
    for (int i = 0; i < 100; ++i)
        view.zoomAround(900, 128, 0.8);
    EXPECT_EQ(view.scale, TimeView::kCoarsest);
    EXPECT_EQ(view.origin, 0.0) << "nothing lies before the start";
}

TEST(TimeViewTest, RevealScrollsOnlyWhenTheFrameIsOutOfSight)
{
    TimeView view{100.0, 2.0};
    view.reveal(300, 1000);
    EXPECT_EQ(view.origin, 100.0);
    view.reveal(50, 1000);
    EXPECT_EQ(view.origin, 50.0);
    view.reveal(2000, 1000);
    EXPECT_LT(view.origin, 2000.0);
    EXPECT_GT(view.frameAt(1000, 0), 2000.0);
}

TEST(TimeViewTest, RulerLabelsStandApartAtEveryScale)
{
    for (const FrameRate& rate : kFrameRates)
        for (double scale = TimeView::kCoarsest; scale <= TimeView::kFinest; scale *= 1.1) {
            const RulerStep step = rulerStep(scale, 96, rate);
            EXPECT_GE(step.labelled * scale, 96.0) << scale;
            EXPECT_EQ(step.labelled % step.plain, 0) << scale << " at " << rate.perSecond();
        }
}

/// Three clips on one track, 0-100, 100-200 and 300-400, and one elsewhere.
Project threeClips()
{
    Project project;
    project.length = 500;
    for (const int start : {0, 100, 300})
        project.clips.push_back({Track::ePicture, start, 100, L"p", Effect::eWarm, {}});
    project.clips.push_back({Track::eOverlay, 150, 100, L"o", Effect::eWarm, {}});
    return project;
}

TEST(ProjectTest, TrimmingStopsAtNeighboursAndAtTheShortestLength)
{
    static const struct
    {
        const char* what;
        bool end;
        int clip, wanted, start, length;
    } kCases[] = {
        {"shortens at the start", false, 1, 120, 120, 80},
        {"stops at the neighbour", false, 1, 50, 100, 100},
        {"stops at the start of time", false, 0, -40, 0, 100},
        {"keeps the shortest length", false, 2, 900, 395, 5},
        {"lengthens into the gap", true, 1, 260, 100, 160},
        {"stops at the next clip", true, 1, 350, 100, 200},
        {"keeps the shortest length at the end", true, 0, -10, 0, 5},
        {"has room behind the last", true, 2, 700, 300, 400},
    };
    for (const auto& c : kCases) {
        Project project = threeClips();
        if (c.end)
            project.trimEnd(c.clip, c.wanted);
        else
            project.trimStart(c.clip, c.wanted);
        const Clip& clip = project.clips[static_cast<std::size_t>(c.clip)];
        EXPECT_EQ(clip.start, c.start) << c.what;
        EXPECT_EQ(clip.length, c.length) << c.what;
        EXPECT_GE(project.length, clip.end()) << c.what;
    }
}

TEST(ProjectTest, TrimmingTheStartLeavesEachFrameWhereItIs)
{
    Project project = threeClips();
    project.trimStart(2, 320);
    EXPECT_EQ(project.clips[2].offset, 20);
    project.trimStart(2, 290);
    EXPECT_EQ(project.clips[2].offset, -10) << "the first frame is held before its time";
    project.trimEnd(2, 350);
    EXPECT_EQ(project.clips[2].offset, -10);
    project.move(2, 600);
    EXPECT_EQ(project.clips[2].offset, -10) << "a moved clip takes its frames along";
}

TEST(ProjectTest, AMovedClipNeverCoversAnother)
{
    static const struct
    {
        int wanted, lands;
    } kCases[] = {
        {200, 200}, // exactly into the gap
        {230, 200}, // too far right: back against the neighbour
        {120, 200}, // over another clip: the nearest free place
        {-500, 0},  // its own old place is free
        {420, 420}, {1000, 1000},
    };
    for (const auto& c : kCases) {
        Project project = threeClips();
        project.move(0, c.wanted);
        EXPECT_EQ(project.clips[0].start, c.lands) << c.wanted;
        EXPECT_GE(project.length, project.clips[0].end());
    }
}

TEST(ProjectTest, AnInsertedClipTakesTheNearestFreePlace)
{
    Project project = threeClips();
    Clip clip;
    clip.track = Track::ePicture;
    clip.start = 20;
    clip.length = 100;
    const int index = project.insert(clip);
    EXPECT_EQ(project.clips[static_cast<std::size_t>(index)].start, 200);
    clip.start = 210;
    const int next = project.insert(clip);
    EXPECT_EQ(project.clips[static_cast<std::size_t>(next)].start, 400) << "the gap is full now";
}

TEST(ProjectTest, EdgesAreFoundOnEveryTrack)
{
    const Project project = threeClips();
    EXPECT_EQ(project.nextEdge(0), 100);
    EXPECT_EQ(project.nextEdge(100), 150);
    EXPECT_EQ(project.previousEdge(300), 250);
    EXPECT_EQ(project.previousEdge(0), 0);
    EXPECT_EQ(project.nextEdge(450), 499);
}

TEST(ProjectTest, EffectsRunSmoothlyThroughTheirKeys)
{
    Clip clip;
    clip.length = 100;
    EXPECT_EQ(valueAt(clip, 10), 0.0f) << "no keys";
    clip.keys = {{10, 0.2f}, {50, 0.8f}, {90, 0.4f}};
    EXPECT_FLOAT_EQ(valueAt(clip, 0), 0.2f);
    EXPECT_FLOAT_EQ(valueAt(clip, 10), 0.2f);
    EXPECT_FLOAT_EQ(valueAt(clip, 30), 0.5f);
    EXPECT_FLOAT_EQ(valueAt(clip, 50), 0.8f);
    EXPECT_FLOAT_EQ(valueAt(clip, 99), 0.4f);
}

TEST(ProjectTest, AFolderOfOtherPicturesBecomesARowOfClips)
{
    const Project project = makeProject({{L"a.png"}, {L"b.png"}}, L"holiday");
    EXPECT_EQ(project.title, L"holiday");
    ASSERT_EQ(project.clips.size(), 2u);
    EXPECT_EQ(project.clips[0].end(), project.clips[1].start);
    EXPECT_TRUE(makeProject({}, Text()).clips.empty());
    const Project moving = makeProject({{L"shot_[01-80].png", 80}, {L"Test clip", 300, true}}, L"");
    ASSERT_EQ(moving.clips.size(), 1u) << "the test clip is only for who has nothing else";
    EXPECT_EQ(moving.clips[0].length, 80) << "what moves is as long as it is";
}

} // namespace
} // namespace Vantor
