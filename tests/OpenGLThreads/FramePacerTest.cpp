#include "OS/Mac/OpenGL/Widgets/FramePacer.h"

#include <gtest/gtest.h>

namespace {

constexpr std::int64_t kMs = 1'000'000;
constexpr std::int64_t kSecond = 1'000 * kMs;

TEST(FramePacer, ShowsFramesAtOnceWithoutARate)
{
    FramePacer pacer;
    for (const std::int64_t now : {5 * kMs, 6 * kMs, 6 * kMs, 900 * kMs}) {
        const auto slot = pacer.next(now);
        EXPECT_EQ(slot.dueNs, now);
        EXPECT_FALSE(slot.late);
    }
}

TEST(FramePacer, RefusesRatesThatAreNone)
{
    FramePacer pacer;
    EXPECT_FALSE(pacer.setRate(25, 0));
    EXPECT_FALSE(pacer.setRate(0, 0));
    EXPECT_FALSE(pacer.setRate(1001, 1));
    EXPECT_FALSE(pacer.setRate(0xFFFFFFFF, 4294967));
    EXPECT_TRUE(pacer.setRate(1000, 1));
    EXPECT_TRUE(pacer.setRate(0xFFFFFFFF, 4294968));
    EXPECT_TRUE(pacer.setRate(1, 0xFFFFFFFF)) << "one in 136 years";
    EXPECT_TRUE(pacer.setRate(0, 1));
}

struct RateCase
{
    unsigned int numerator, denominator;
    std::int64_t frame;
    std::int64_t dueNs; ///< after the first
};

// Rounding never adds up: a day later each frame is where the fraction says, to the nanosecond.
const RateCase kRates[] = {
    {25, 1, 1, 40 * kMs},
    {60, 1, 1, 16'666'666},
    {60, 1, 60, kSecond},
    {60, 1, 60 * 86'400, 86'400 * kSecond},
    {30'000, 1'001, 1, 33'366'666},
    {30'000, 1'001, 30'000, 1'001 * kSecond},
    {30'000, 1'001, 2'589'410, 86'399'980'333'333},
    {24'000, 1'001, 24'000 * 1'000, 1'001'000 * kSecond},
    {1, 3'600, 240, 864'000 * kSecond},
};

TEST(FramePacer, KeepsAGridThatDoesNotDrift)
{
    constexpr std::int64_t begin = 7 * kSecond + 123;
    for (const RateCase& one : kRates) {
        FramePacer pacer;
        pacer.setRate(one.numerator, one.denominator);
        EXPECT_EQ(pacer.next(begin).dueNs, begin);
        // Frames come early, and a frame's time does not depend on when.
        std::int64_t due = 0;
        for (std::int64_t i = 1; i <= one.frame; ++i)
            due = pacer.next(begin).dueNs;
        EXPECT_EQ(due - begin, one.dueNs) << one.numerator << "/" << one.denominator;
    }
}

TEST(FramePacer, ShowsALateFrameAtOnceAndTheNextOnTheGrid)
{
    FramePacer pacer;
    pacer.setRate(25, 1);
    pacer.next(0);
    const auto onTime = pacer.next(40 * kMs);
    EXPECT_EQ(onTime.dueNs, 40 * kMs);
    EXPECT_FALSE(onTime.late);

    const auto slightlyLate = pacer.next(85 * kMs);
    EXPECT_EQ(slightlyLate.dueNs, 80 * kMs);
    EXPECT_TRUE(slightlyLate.late);
    EXPECT_EQ(pacer.next(86 * kMs).dueNs, 120 * kMs);

    const auto afterAPause = pacer.next(1'010 * kMs);
    EXPECT_EQ(afterAPause.dueNs, 1'000 * kMs) << "what was missed is not made up for";
    EXPECT_TRUE(afterAPause.late);
    const auto next = pacer.next(1'011 * kMs);
    EXPECT_EQ(next.dueNs, 1'040 * kMs);
    EXPECT_FALSE(next.late);
}

TEST(FramePacer, NeverPutsAFrameBeforeAnEarlierOne)
{
    FramePacer pacer;
    pacer.setRate(1, 1);
    pacer.next(0);
    EXPECT_EQ(pacer.next(1 * kMs).dueNs, kSecond);
    pacer.setRate(50, 1);
    EXPECT_EQ(pacer.next(2 * kMs).dueNs, kSecond) << "the new grid begins behind it";
    EXPECT_EQ(pacer.next(3 * kMs).dueNs, kSecond + 20 * kMs);
    pacer.setRate(0, 1);
    EXPECT_EQ(pacer.next(4 * kMs).dueNs, kSecond + 20 * kMs);
    EXPECT_EQ(pacer.next(2 * kSecond).dueNs, 2 * kSecond);
}

} // namespace
