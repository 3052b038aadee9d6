#include "Compute/Grade.h"
#include "Compute/ScopeMeter.h"
#include "Drawing/ScopePictures.h"
#include "Play/ScopeWatch.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Painting/iPixelGuard.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <numeric>
#include <thread>

namespace Vantor {
namespace {

using Pixel = std::uint32_t;

Tq::Ptr<iHostImage> picture(const Point& size, const std::function<Pixel(int x, int y)>& at)
{
    Tq::Ptr<iHostImage> image = OS()->mediaServices()->createHostSurface(size);
    const Tq::Ptr<iPixelGuard> guard = image->lock();
    for (int y = 0; y < size.y; ++y)
        for (int x = 0; x < size.x; ++x) {
            const Pixel pixel = at(x, y);
            std::memcpy(guard->getPixels() + static_cast<std::ptrdiff_t>(y) * guard->getStride() +
                            static_cast<std::ptrdiff_t>(x) * 4,
                        &pixel, 4);
        }
    return image;
}

constexpr Pixel kBars[] = {0xFFBFBFBF, 0xFFBFBF00, 0xFF00BFBF, 0xFF00BF00,
                           0xFFBF00BF, 0xFFBF0000, 0xFF0000BF};
constexpr int kBarCount = 7;

std::uint32_t at(const std::vector<std::uint32_t>& counts, int row, int columns, int column)
{
    return counts[static_cast<std::size_t>(row * columns + column)];
}

std::uint64_t sum(const std::vector<std::uint32_t>& counts)
{
    return std::accumulate(counts.begin(), counts.end(), std::uint64_t{0});
}

/// Needs a device that computes: the suite brings one.
class OnDisplayScopesTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!std::getenv("OPENCL_LAYERS"))
            GTEST_SKIP() << "no compute device was brought";
        // Compute shares with GL once there is something on the GPU.
        ASSERT_TRUE(OS()->mediaServices()->createGPUSurface({4, 4}, iGPUImage::eARGB8));
    }
    static Tq::Ptr<iGPUImage> onGPU(const Tq::Ptr<iHostImage>& image)
    {
        return OS()->mediaServices()->copyToGPU(image, iGPUImage::eARGB8);
    }
    static std::shared_ptr<const ScopeCounts> measure(const Tq::Ptr<iHostImage>& image)
    {
        Text trouble;
        const std::unique_ptr<ScopeMeter> meter = ScopeMeter::make(trouble);
        EXPECT_TRUE(meter) << OS()->utils()->toUTF8(trouble).c_str();
        const auto counts = meter ? meter->measure(onGPU(image)) : nullptr;
        EXPECT_TRUE(counts);
        return counts;
    }
};

TEST_F(OnDisplayScopesTest, BarsGiveTheVectorsOfTheTextbook)
{
    const Point size{280, 40};
    const auto counts =
        measure(picture(size, [&](int x, int) { return kBars[x * kBarCount / size.x]; }));
    ASSERT_TRUE(counts);
    EXPECT_EQ(sum(counts->vectors), 280u * 40u);
    // Cb and Cr of bars at 75 %, by the formulae of ITU-R BT.709, from grey to blue.
    static const struct
    {
        double cb, cr;
    } kVectors[kBarCount] = {
        {0, 0},           {-0.375, 0.0344}, {0.0860, -0.375}, {-0.2890, -0.3406},
        {0.2890, 0.3406}, {-0.0860, 0.375}, {0.375, -0.0344}};
    for (const auto& vector : kVectors) {
        const int column = static_cast<int>(std::lround((vector.cb + 0.5) * 255));
        const int row = static_cast<int>(std::lround((vector.cr + 0.5) * 255));
        std::uint32_t around = 0;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
                around += at(counts->vectors, row + dy, 256, column + dx);
        EXPECT_EQ(around, 40u * 40u) << vector.cb << ", " << vector.cr;
    }
}

TEST_F(OnDisplayScopesTest, ARampIsAStraightLineOfTheWaveform)
{
    const auto counts = measure(picture({256, 16}, [](int x, int) {
        const auto level = static_cast<Pixel>(x);
        return 0xFF000000 | level << 16 | level << 8 | level;
    }));
    ASSERT_TRUE(counts);
    for (int x = 0; x < 256; ++x) {
        const int column = x * counts->columns / 256;
        EXPECT_EQ(at(counts->waveform, x, counts->columns, column), 16u) << x;
        for (int channel = 0; channel < 4; ++channel)
            EXPECT_EQ(at(counts->histogram, channel, 256, x), 16u) << channel << ", " << x;
    }
    EXPECT_EQ(sum(counts->waveform), 256u * 16u) << "and nothing else";
}

TEST_F(OnDisplayScopesTest, EveryMeasurementBeginsAnew)
{
    Text trouble;
    const std::unique_ptr<ScopeMeter> meter = ScopeMeter::make(trouble);
    ASSERT_TRUE(meter);
    for (const Pixel pixel : {0xFFFF0000u, 0xFF00FF00u}) {
        const auto counts =
            meter->measure(onGPU(picture({33, 17}, [&](int, int) { return pixel; })));
        ASSERT_TRUE(counts);
        EXPECT_EQ(sum(counts->histogram), 4u * 33u * 17u);
        EXPECT_EQ(at(counts->histogram, 0, 256, pixel == 0xFFFF0000u ? 255 : 0), 33u * 17u);
    }
    EXPECT_FALSE(meter->measure(nullptr));
}

TEST_F(OnDisplayScopesTest, AGradeChangesColoursByItsFormula)
{
    const std::unique_ptr<Grade> grade = Grade::make();
    ASSERT_TRUE(grade);
    const Point size{70, 8};
    const Tq::Ptr<iGPUImage> source =
        onGPU(picture(size, [&](int x, int) { return kBars[x * kBarCount / size.x]; }));
    static const GradeValues kGrades[] = {{},
                                          {0.1f, 1.0f, 1.0f, 1.0f},
                                          {0.0f, 2.2f, 1.0f, 1.0f},
                                          {0.0f, 1.0f, 0.5f, 1.0f},
                                          {0.0f, 1.0f, 1.0f, 0.0f},
                                          {-0.1f, 0.8f, 1.4f, 1.6f}};
    for (const GradeValues& values : kGrades) {
        const Tq::Ptr<iGPUImage> graded = grade->apply(source, values);
        ASSERT_TRUE(graded);
        const Tq::Ptr<iHostImage> host = OS()->mediaServices()->copyToHost(graded);
        const Tq::Ptr<iPixelGuard> guard = host->lock();
        const double lift = static_cast<double>(values.lift);
        const double gain = static_cast<double>(values.gain);
        for (int bar = 0; bar < kBarCount; ++bar) {
            double colour[3];
            for (int c = 0; c < 3; ++c) {
                const double in = ((kBars[bar] >> (16 - 8 * c)) & 0xFF) / 255.0;
                colour[c] = std::pow(std::max(in * (gain - lift) + lift, 0.0),
                                     1.0 / static_cast<double>(values.gamma));
            }
            const double luma = 0.2126 * colour[0] + 0.7152 * colour[1] + 0.0722 * colour[2];
            const std::uint8_t* pixel = guard->getPixels() + (bar * 10 + 5) * 4;
            for (int c = 0; c < 3; ++c) {
                const double wanted = std::clamp(
                    luma + (colour[c] - luma) * static_cast<double>(values.saturation), 0.0, 1.0);
                EXPECT_NEAR(pixel[2 - c], wanted * 255.0, 1.5)
                    << "bar " << bar << " component " << c << " gamma " << values.gamma;
            }
            EXPECT_EQ(pixel[3], 255);
        }
    }
}

TEST_F(OnDisplayScopesTest, TheWatchMeasuresTheNewestPicture)
{
    ScopeWatch watch;
    EXPECT_TRUE(watch.isUpToDate());
    for (const Pixel pixel : {0xFF000000u, 0xFF800000u, 0xFFFFFFFFu})
        watch.offer(onGPU(picture({64, 36}, [&](int, int) { return pixel; })), nullptr);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!watch.isUpToDate() && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    const ScopeReading reading = watch.reading();
    ASSERT_TRUE(reading.counts) << OS()->utils()->toUTF8(reading.trouble).c_str();
    EXPECT_EQ(at(reading.counts->histogram, 3, 256, 255), 64u * 36u);
}

TEST(ScopePicturesTest, KeepsAPictureUntilItsCountsOrItsPlaceChange)
{
    Resources resources(1.0);
    ScopePictures pictures(resources);
    auto counts = std::make_shared<ScopeCounts>();
    counts->columns = 4;
    counts->pixels = 64;
    counts->waveform.resize(256 * 4);
    counts->vectors.resize(256 * 256);
    counts->histogram.resize(4 * 256);
    counts->waveform[200 * 4 + 2] = 64;
    using Scope = ScopePictures::Scope;
    for (const Scope scope : {Scope::eWaveform, Scope::eVectorscope, Scope::eHistogram}) {
        const auto first = pictures.get(scope, counts, {0, 0, 90, 70});
        ASSERT_TRUE(first);
        EXPECT_EQ(pictures.get(scope, counts, {5, 5, 95, 75}).get(), first.get());
        EXPECT_NE(pictures.get(scope, counts, {0, 0, 91, 70}).get(), first.get());
        EXPECT_TRUE(pictures.get(scope, nullptr, {0, 0, 1, 1})) << "the smallest";
        EXPECT_FALSE(pictures.get(scope, nullptr, {0, 0, 0, 10}));
    }
}

} // namespace
} // namespace Vantor
