#include "Play/FrameReader.h"
#include "Play/FrameMaker.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <random>
#include <thread>

namespace Vantor {
namespace {

Tq::Ptr<iImage> someImage()
{
    return OS()->mediaServices()->createHostSurface({2, 2});
}

bool soon(const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

TEST(FrameRingTest, MakesTheMostUrgentFirstAndNeverMoreThanFit)
{
    FrameRing ring(3);
    ring.want({7, 8, 9, 10});
    std::vector<int> begun;
    std::vector<FrameRing::Job> jobs;
    for (FrameRing::Job job = ring.begin(); job.ticket != 0; job = ring.begin()) {
        begun.push_back(job.frame);
        jobs.push_back(job);
    }
    EXPECT_EQ(begun, (std::vector<int>{7, 8, 9}));
    EXPECT_TRUE(ring.end(jobs[0], someImage()));
    EXPECT_TRUE(ring.find(7));
    EXPECT_EQ(ring.begin().ticket, 0u) << "one there, two in the making";
    ring.want({8, 9, 10});
    EXPECT_FALSE(ring.has(7));
    EXPECT_EQ(ring.begin().frame, 10);
}

TEST(FrameRingTest, LetsGoOfWhatIsNotWantedAnyMore)
{
    FrameRing ring(2);
    ring.want({1, 2});
    const FrameRing::Job one = ring.begin();
    const FrameRing::Job two = ring.begin();
    ring.want({2, 3});
    EXPECT_FALSE(ring.end(one, someImage())) << "the playhead went on";
    ring.clear();
    EXPECT_EQ(ring.begin().frame, 2) << "the picture has become another";
    EXPECT_FALSE(ring.end(two, someImage()));
    EXPECT_FALSE(ring.end(two, someImage())) << "a job ends once";
    EXPECT_EQ(ring.held(), 0u);
}

TEST(FrameRingTest, AFrameThatCannotBeMadeIsNotTriedAgain)
{
    FrameRing ring(2);
    ring.want({1});
    EXPECT_TRUE(ring.end(ring.begin(), nullptr));
    EXPECT_TRUE(ring.has(1));
    EXPECT_FALSE(ring.find(1));
    EXPECT_EQ(ring.begin().ticket, 0u);
}

TEST(FrameReaderTest, ReadsAheadWithinItsBounds)
{
    std::atomic<int> made{0};
    std::atomic<std::size_t> most{0};
    FrameReader* self = nullptr;
    FrameReader reader(
        2, 4,
        [&](int, const FrameRequest&, int) {
            ++made;
            most = std::max<std::size_t>(most, self->inUse());
            return someImage();
        },
        [] {});
    self = &reader;
    const FrameRequest request{std::make_shared<Edit>(), {25, 1}, {2, 2}};
    for (int start = 0; start < 40; ++start) {
        reader.want(request, {start, start + 1, start + 2, start + 3, start + 4, start + 5});
        ASSERT_TRUE(soon([&] { return reader.has(start); })) << start;
    }
    EXPECT_TRUE(soon([&] { return reader.has(42); }));
    EXPECT_FALSE(reader.has(43)) << "beyond what it may hold";
    EXPECT_FALSE(reader.has(38)) << "gone by";
    EXPECT_LE(most, 4u);
    EXPECT_LE(made, 44);
}

TEST(FrameReaderTest, AnotherEditMakesEveryFrameAnew)
{
    std::mutex guard;
    std::map<const Edit*, int> made;
    FrameReader reader(
        2, 4,
        [&](int, const FrameRequest& request, int) {
            const std::lock_guard held(guard);
            ++made[request.edit.get()];
            return someImage();
        },
        [] {});
    const FrameRequest first{std::make_shared<Edit>(), {25, 1}, {2, 2}};
    const FrameRequest second{std::make_shared<Edit>(), {25, 1}, {2, 2}};
    reader.want(first, {1});
    ASSERT_TRUE(soon([&] { return reader.has(1); }));
    reader.want(second, {1});
    ASSERT_TRUE(soon([&] { return reader.has(1); }));
    reader.want({}, {1});
    EXPECT_FALSE(reader.has(1)) << "without an edit there is nothing to show";
    const std::lock_guard held(guard);
    EXPECT_EQ(made[first.edit.get()], 1);
    EXPECT_EQ(made[second.edit.get()], 1);
}

TEST(FrameReaderTest, EndsWhileItIsBusyAndWhileOthersAsk)
{
    for (unsigned int seed = 0; seed < 20; ++seed) {
        std::mt19937 random(seed);
        auto reader = std::make_unique<FrameReader>(
            2, 4,
            [](int, const FrameRequest&, int) {
                std::this_thread::yield();
                return someImage();
            },
            [] {});
        const FrameRequest requests[] = {{std::make_shared<Edit>(), {25, 1}, {2, 2}},
                                         {std::make_shared<Edit>(), {25, 1}, {2, 2}}};
        for (int i = 0; i < 50; ++i) {
            const int at = static_cast<int>(random() % 10);
            reader->want(requests[random() % 2], {at, at + 1, at + 2});
            reader->find(at);
        }
        reader.reset();
    }
}

TEST(FrameMakerTest, DrawsEveryFrameOfTheTestClipDifferently)
{
    auto edit = std::make_shared<Edit>();
    edit->bin.add(testClip());
    Clip clip;
    clip.name = L"Test clip";
    clip.start = 10;
    clip.length = 40;
    clip.offset = 5;
    edit->project.insert(clip);
    FrameMaker maker;
    std::set<std::vector<std::uint8_t>> seen;
    for (int frame = 9; frame < 50; ++frame) {
        const Tq::Ptr<iHostImage> image = maker.draw({edit, {25, 1}, {320, 180}}, frame);
        ASSERT_TRUE(image);
        ASSERT_EQ(image->getSize(), XY<int>(320, 180));
        const Tq::Ptr<iPixelGuard> pixels = image->lock();
        seen.emplace(pixels->getPixels(), pixels->getPixels() + pixels->getStride() * 180);
    }
    EXPECT_EQ(seen.size(), 41u) << "forty frames and the black before them";
    EXPECT_FALSE(maker.draw({edit, {25, 1}, {0, 180}}, 1));
    EXPECT_FALSE(maker.draw({nullptr, {25, 1}, {320, 180}}, 1));
}

} // namespace
} // namespace Vantor
