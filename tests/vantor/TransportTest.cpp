#include "Model/Transport.h"
#include "Model/PlayCount.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace Vantor {
namespace {

/// A transport whose clock is turned by hand.
class TransportTest : public testing::Test
{
protected:
    TransportTest() { player_.setLength(1000); }

    void pass(double ms)
    {
        now_ += ms;
        player_.update();
    }
    void press(const char* keys)
    {
        for (; *keys; ++keys)
            switch (*keys) {
            case 'k':
                player_.stop();
                break;
            case ' ':
                player_.toggle();
                break;
            default:
                player_.shuttle(*keys == 'l' ? 1 : -1);
            }
    }

    double now_ = 5000.0;
    Transport player_{[this] { return now_; }};
};

TEST_F(TransportTest, ShuttleDoublesAndTurnsRound)
{
    static const struct
    {
        const char* keys;
        int speed;
    } kCases[] = {
        {"l", 1},      {"ll", 2},   {"lll", 4}, {"llllll", 8}, {"j", -1},   {"jj", -2},
        {"jjjjj", -8}, {"llj", -1}, {"jjl", 1}, {"llk", 0},    {"llkl", 1}, {" ", 1},
        {"  ", 0},     {"ll ", 0},  {"kkk", 0}, {"jk l", 2},
    };
    for (const auto& c : kCases) {
        player_.stop();
        player_.seek(500);
        press(c.keys);
        EXPECT_EQ(player_.speed(), c.speed) << c.keys;
        EXPECT_EQ(player_.frame(), 500) << c.keys << ": no time has passed";
    }
}

TEST_F(TransportTest, RunsAtEveryRateAndSpeed)
{
    static const struct
    {
        FrameRate rate;
        const char* keys;
        double ms;
        int frame;
    } kCases[] = {
        {{24, 1}, "l", 10000, 740},       {{25, 1}, "l", 10000, 750},
        {{30000, 1001}, "l", 10010, 800}, {{30000, 1001}, "l", 1000, 529},
        {{30, 1}, "l", 10000, 800},       {{50, 1}, "l", 5000, 750},
        {{60, 1}, "l", 5000, 800},        {{25, 1}, "ll", 4000, 700},
        {{50, 1}, "lll", 1000, 700},      {{60, 1}, "llll", 500, 740},
        {{25, 1}, "j", 10000, 250},       {{60, 1}, "jjjj", 1000, 20},
        {{25, 1}, "l", 39.9, 500},        {{25, 1}, "l", 40.0, 501},
        {{25, 1}, "k", 10000, 500},
    };
    for (const auto& c : kCases) {
        player_.stop();
        player_.setRate(c.rate);
        player_.seek(500);
        press(c.keys);
        pass(c.ms);
        EXPECT_EQ(player_.frame(), c.frame)
            << c.keys << " at " << c.rate.perSecond() << " for " << c.ms;
    }
}

TEST_F(TransportTest, LosesNoTimeHoweverOftenItIsAsked)
{
    player_.setRate({30000, 1001});
    player_.setLength(10000000);
    press("l");
    for (int i = 0; i < 100000; ++i)
        pass(10.01); // a third of a frame and a little
    EXPECT_NEAR(player_.frame(), 30000, 1);
}

TEST_F(TransportTest, EndsStopItOrLeadOnRound)
{
    static const struct
    {
        const char* what;
        bool loops;
        const char* keys;
        int from;
        double ms;
        int frame;
        bool playing;
    } kCases[] = {
        {"forwards to the end", false, "l", 900, 4000, 999, false},
        {"far beyond the end", false, "llll", 0, 1e12, 999, false},
        {"backwards to the start", false, "j", 50, 2000, 0, false},
        {"one before the end", false, "l", 997, 40, 998, true},
        {"round", true, "l", 900, 4000, 0, true},
        {"round and on", true, "l", 900, 4400, 10, true},
        {"round backwards", true, "j", 50, 2040, 999, true},
        {"round many times", true, "l", 10, 40.0 * 1000 * 77, 10, true},
        {"round in long steps", true, "llll", 996, 40, 4, true},
    };
    for (const auto& c : kCases) {
        player_.stop();
        player_.setLoop(c.loops);
        player_.seek(c.from);
        press(c.keys);
        pass(c.ms);
        EXPECT_EQ(player_.frame(), c.frame) << c.what;
        EXPECT_EQ(player_.playing(), c.playing) << c.what;
    }
}

TEST_F(TransportTest, PlayAtTheEndBeginsAnew)
{
    player_.seek(999);
    player_.toggle();
    EXPECT_EQ(player_.frame(), 0);
    pass(80);
    EXPECT_EQ(player_.frame(), 2);
}

TEST_F(TransportTest, SeekingGoesOnFromThereAndStepsStop)
{
    press("ll");
    pass(400);
    player_.seek(100);
    pass(400);
    EXPECT_EQ(player_.frame(), 120);
    player_.step(-1);
    pass(400);
    EXPECT_EQ(player_.frame(), 119);
    EXPECT_FALSE(player_.playing());
    player_.step(-500);
    EXPECT_EQ(player_.frame(), 0);
    player_.step(2000000000);
    player_.step(2000000000);
    EXPECT_EQ(player_.frame(), 999);
}

TEST_F(TransportTest, ChangesWhileItRunsTakeEffectFromThere)
{
    press("l");
    pass(1000);
    player_.setRate({50, 1});
    pass(1000);
    EXPECT_EQ(player_.frame(), 75);
    player_.setLength(60);
    EXPECT_EQ(player_.frame(), 59);
    player_.setLength(0);
    EXPECT_EQ(player_.frame(), 0);
    EXPECT_FALSE(player_.playing()) << "there is nothing to play";
    press("l");
    EXPECT_FALSE(player_.playing());
    player_.setRate({0, 1});
    EXPECT_EQ(player_.rate(), (FrameRate{50, 1})) << "a rate of nothing is none";
}

TEST_F(TransportTest, ACopyRunsOnLikeTheOriginal)
{
    press("ll");
    const Transport copy = player_;
    pass(1000);
    EXPECT_EQ(copy.frameAt(now_), player_.frame());
    EXPECT_NE(copy.frame(), player_.frame()) << "until it is brought up to date";
}

TEST_F(TransportTest, TellsWhenTheNextFrameIsDueAndWhichOnesComeThen)
{
    EXPECT_TRUE(std::isinf(player_.nextChange(now_)));
    player_.seek(10);
    EXPECT_EQ(player_.ahead(now_, 4), (std::vector<int>{10, 11, 9, 12})) << "for steps";
    press("lll");
    const double start = now_;
    EXPECT_DOUBLE_EQ(player_.nextChange(start), start + 40.0);
    EXPECT_DOUBLE_EQ(player_.nextChange(start + 100.0), start + 120.0);
    EXPECT_EQ(player_.ahead(start + 41.0, 4), (std::vector<int>{14, 18, 22, 26}))
        << "at four times the speed only every fourth frame is ever shown";
    press("j");
    EXPECT_EQ(player_.ahead(start, 3), (std::vector<int>{10, 9, 8}));

    player_.seek(998);
    press("l");
    EXPECT_EQ(player_.ahead(start, 4), (std::vector<int>{998, 999})) << "nothing after the end";
    player_.setLoop(true);
    EXPECT_EQ(player_.ahead(start, 4), (std::vector<int>{998, 999, 0, 1}));
    player_.setLength(2);
    EXPECT_EQ(player_.ahead(start, 8).size(), 2u) << "each once";
}

TEST_F(TransportTest, AClockThatStandsOrGoesBackMovesNothing)
{
    player_.seek(100);
    press("l");
    pass(0);
    EXPECT_EQ(player_.frame(), 100);
    pass(-1000);
    EXPECT_EQ(player_.frame(), 100);
}

TEST(PlayCountTest, CountsWhatCameTooLate)
{
    PlayCount count;
    for (int tick = 1; tick <= 50; ++tick)
        count.show(7, tick, tick * 40.0, true);
    EXPECT_EQ(count.shown(), 50u);
    EXPECT_EQ(count.dropped(), 0u);
    EXPECT_NEAR(count.rate(), 25.0, 0.01);
    count.show(7, 54, 54 * 40.0, true);
    EXPECT_EQ(count.dropped(), 3u);
    count.show(8, 3, 60 * 40.0, true);
    EXPECT_EQ(count.dropped(), 5u) << "a new run that begins late";
    EXPECT_EQ(count.rate(), 0.0) << "nothing to tell yet";
    count.show(9, 0, 99 * 40.0, false);
    EXPECT_EQ(count.dropped(), 5u) << "a picture that stands still drops nothing";
    EXPECT_EQ(count.shown(), 53u);
}

} // namespace
} // namespace Vantor
