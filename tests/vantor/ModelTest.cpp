#include "Model/Player.h"
#include "Model/Project.h"
#include "Model/TimeView.h"
#include "Model/Timecode.h"

#include <gtest/gtest.h>

namespace Vantor {
namespace {

TEST(TimecodeTest, WritesFramesAsTime)
{
    static const struct
    {
        int frame;
        const wchar_t* full;
        const wchar_t* minutes;
    } kCases[] = {
        {0, L"00:00:00:00", L"00:00"},           {24, L"00:00:00:24", L"00:00"},
        {25, L"00:00:01:00", L"00:01"},          {187, L"00:00:07:12", L"00:07"},
        {25 * 60, L"00:01:00:00", L"01:00"},     {25 * 3600 - 1, L"00:59:59:24", L"59:59"},
        {25 * 3600, L"01:00:00:00", L"1:00:00"}, {25 * 3600 * 100, L"100:00:00:00", L"100:00:00"},
        {-1, L"00:00:00:00", L"00:00"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(Timecode::full(c.frame), c.full) << c.frame;
        EXPECT_EQ(Timecode::minutes(c.frame), c.minutes) << c.frame;
    }
    EXPECT_EQ(Timecode::length(162), L"6 s 12 fr");
    EXPECT_EQ(Timecode::length(775), L"31 s");
    EXPECT_EQ(Timecode::length(12), L"12 fr");
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
    for (double scale = TimeView::kCoarsest; scale <= TimeView::kFinest; scale *= 1.1) {
        const RulerStep step = rulerStep(scale, 96);
        EXPECT_GE(step.labelled * scale, 96.0) << scale;
        EXPECT_EQ(step.labelled % step.plain, 0) << scale;
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
    const Project project = makeProject({L"a.png", L"b.png"}, L"holiday");
    EXPECT_EQ(project.title, L"holiday");
    ASSERT_EQ(project.clips.size(), 2u);
    EXPECT_EQ(project.clips[0].end(), project.clips[1].start);
    EXPECT_TRUE(makeProject({}, Text()).clips.empty());
}

TEST(PlayerTest, ShuttleDoublesAndTurnsRound)
{
    static const struct
    {
        const char* keys;
        int speed;
    } kCases[] = {
        {"l", 1},   {"ll", 2},   {"lll", 4}, {"llllll", 8}, {"j", -1},
        {"jj", -2}, {"llj", -1}, {"jjl", 1}, {"llk", 0},    {"llkl", 1},
    };
    for (const auto& c : kCases) {
        Player player;
        for (const char* key = c.keys; *key; ++key) {
            if (*key == 'k')
                player.stop();
            else
                player.shuttle(*key == 'l' ? 1 : -1);
        }
        EXPECT_EQ(player.speed, c.speed) << c.keys;
    }
}

TEST(PlayerTest, AdvanceLosesNoTimeToRounding)
{
    Player player;
    player.shuttle(1);
    for (int i = 0; i < 100; ++i)
        player.advance(16.0, 1000);
    EXPECT_EQ(player.frame, 40); // 1.6 s at 25 frames a second
    EXPECT_EQ(player.dropped, 0);
    player.advance(400.0, 1000);
    EXPECT_EQ(player.frame, 50);
    EXPECT_EQ(player.dropped, 9) << "one of the ten frames was shown";
}

TEST(PlayerTest, StopsAtBothEndsAndNeverRunsOut)
{
    Player player;
    player.shuttle(1);
    EXPECT_TRUE(player.advance(1e12, 100));
    EXPECT_EQ(player.frame, 99);
    EXPECT_FALSE(player.playing());
    player.toggle(100);
    EXPECT_EQ(player.frame, 0) << "play at the end begins anew";
    player.stop();
    player.shuttle(-1);
    player.advance(1000, 100);
    EXPECT_EQ(player.frame, 0);
    EXPECT_FALSE(player.playing());
    player.toggle(0);
    EXPECT_FALSE(player.playing()) << "there is nothing to play";
    player.step(5, 0);
    EXPECT_EQ(player.frame, 0);
}

} // namespace
} // namespace Vantor
