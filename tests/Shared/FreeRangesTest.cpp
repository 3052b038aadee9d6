#include "Shared/MemoryCalls.h"

#include "OS/Shared/FreeRanges.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

namespace {

using Tq::FreeRanges;
using Tq::MemAlloc;

std::byte* at(std::uint64_t address)
{
    return reinterpret_cast<std::byte*>(address);
}

FreeRanges::Node nodeOf(const MemAlloc& range)
{
    Tq::RangesByAddress one{range};
    return one.extract(one.begin());
}

// The choice as it is described.
const MemAlloc* walk(const FreeRanges& ranges, std::uint64_t size)
{
    const MemAlloc* best = nullptr;
    for (const MemAlloc& range : ranges)
        if (range.size >= size && (!best || range.size < best->size))
            best = &range;
    return best;
}

void expectSameChoices(const FreeRanges& ranges, std::minstd_rand& random, int times)
{
    for (int i = 0; i < times; ++i) {
        const std::uint64_t size = random() % 130 * 16;
        const auto best = ranges.bestFit(size);
        ASSERT_EQ(best == ranges.end() ? nullptr : &*best, walk(ranges, size)) << size;
    }
}

// So many ranges that do not touch, of sizes that are often equal.
void scatter(FreeRanges& ranges, std::uint64_t count, std::minstd_rand& random)
{
    for (std::uint64_t i = 1; i <= count; ++i)
        ranges.putBack(nodeOf({at(i << 16), (1 + random() % 128) * 16}));
}

} // namespace

TEST(FreeRanges, AHundredThousandGiveTheChoiceOfAWalk)
{
    std::minstd_rand random(3);
    FreeRanges ranges;
    scatter(ranges, 100'000, random);
    EXPECT_EQ(ranges.size(), 100'000u);
    expectSameChoices(ranges, random, 100);
    for (int i = 0; i < 20'000; ++i) {
        const std::uint64_t size = (1 + random() % 100) * 16;
        ranges.takeFront(ranges.bestFit(size), size);
    }
    expectSameChoices(ranges, random, 100);
}

TEST(FreeRanges, TheChoiceStaysTheSameWhileTheirNumberRisesAndFalls)
{
    std::minstd_rand random(5);
    FreeRanges ranges;
    for (const std::uint64_t count : {5u, 40u, 31u, 32u, 200u}) {
        scatter(ranges, count, random);
        expectSameChoices(ranges, random, 50);
        while (ranges.size() > 0) {
            ranges.takeFront(ranges.begin(), ranges.begin()->size);
            expectSameChoices(ranges, random, 3);
        }
    }
}

TEST(FreeRanges, WithoutMemoryForTheIndexTheyAreWalked)
{
    std::minstd_rand random(7);
    for (const int skip : {0, 20, 100}) {
        FreeRanges ranges;
        std::vector<FreeRanges::Node> nodes;
        for (std::uint64_t i = 1; i <= 300; ++i)
            nodes.push_back(nodeOf({at(i << 16), (1 + random() % 128) * 16}));
        {
            const RefusedMemory refusal("malloc", skip, 40);
            for (FreeRanges::Node& node : nodes)
                ranges.putBack(std::move(node));
            EXPECT_GT(refusal.refused(), 0);
        }
        EXPECT_EQ(ranges.size(), 300u);
        expectSameChoices(ranges, random, 50);
    }
}
