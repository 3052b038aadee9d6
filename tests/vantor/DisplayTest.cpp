#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Media/iMediaServices.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// The program in a window, in a home of its own. Left out where there is no display.
class DisplayTest : public testing::Test
{
protected:
    DisplayTest() : home_(fs::temp_directory_path() / ("vantor-display" + std::to_string(getpid())))
    {
        fs::create_directories(home_);
    }
    ~DisplayTest() override { fs::remove_all(home_); }

    void SetUp() override
    {
        const char* platform = std::getenv("QT_QPA_PLATFORM");
        if (!std::getenv("DISPLAY") || (platform && std::string(platform) != "xcb"))
            GTEST_SKIP() << "no display";
    }
    int run(const std::string& arguments, const std::string& media = VANTOR_MEDIA)
    {
        const int status =
            std::system(("HOME='" + home_.string() + "' '" VANTOR_PROGRAM "' '" + media + "' " +
                         arguments + " >'" + (home_ / "output").string() + "'")
                            .c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    void choose(const std::string& settings)
    {
        const fs::path file = home_ / "Vantor/Preferences/UserSettings.txt";
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "[Editor]\n" << settings << "\n\n";
    }
    /// What the last line of a run tells.
    struct Told
    {
        int presented = -1;
        int dropped = -1;
        bool byGL = false;
    };
    Told told() const
    {
        std::ifstream file(home_ / "output");
        Told result;
        for (std::string line; std::getline(file, line);)
            if (std::sscanf(line.c_str(), "vantor: %d frames presented, %d dropped",
                            &result.presented, &result.dropped) == 2)
                result.byGL = line.ends_with("by OpenGL");
        return result;
    }

    fs::path home_;
};

TEST_F(DisplayTest, PlaysForThreeSeconds)
{
    ASSERT_EQ(run("--play --seconds 3"), 0);
    EXPECT_GT(told().presented, 0);
    EXPECT_TRUE(told().byGL);
}

TEST_F(DisplayTest, TellsOfTheDriver)
{
    ASSERT_EQ(run("--gl-report --json"), 0);
    std::ifstream file(home_ / "output");
    const std::string text(std::istreambuf_iterator<char>(file), {});
    EXPECT_TRUE(text.starts_with("[\n  {\"name\": \"Context\", \"value\": \"OpenGL ")) << text;
    EXPECT_TRUE(text.ends_with("}\n]\n")) << text;
}

TEST_F(DisplayTest, PlaysAtEveryRateRoundAndRound)
{
    for (int rate = 0; rate < 6; ++rate) {
        choose("Loop=1\nRate=" + std::to_string(rate) + "\nTimeCode=1\nFrameNumber=1");
        ASSERT_EQ(run("--play --at 30:20 --seconds 1"), 0) << rate;
        EXPECT_GT(told().presented, 0) << rate;
    }
}

/// Pictures of one colour each, which tells their number.
std::uint32_t colourOf(int frame)
{
    return 0xFF000000u | static_cast<std::uint32_t>(frame * 5) << 16 |
           static_cast<std::uint32_t>(250 - frame * 5) << 8 | 0x40u;
}

void writeSequence(const fs::path& folder, int count)
{
    fs::create_directories(folder);
    const Tq::Ptr<iHostImage> image = OS()->mediaServices()->createHostSurface({320, 180});
    for (int frame = 0; frame < count; ++frame) {
        const Tq::Ptr<iPixelGuard> guard = image->lock();
        for (int y = 0; y < 180; ++y)
            for (int x = 0; x < 320; ++x) {
                const std::uint32_t colour = colourOf(frame);
                std::memcpy(guard->getPixels() + y * guard->getStride() + x * 4, &colour, 4);
            }
        const std::string name = "shot_" + std::to_string(1000 + frame) + ".png";
        OS()->mediaServices()->saveImage(image,
                                         OS()->utils()->fromUTF8((folder / name).c_str(), -1));
    }
}

/// How many pixels of a picture file have a colour.
int countOf(const std::string& file, std::uint32_t colour)
{
    const Tq::Ptr<iHostImage> image =
        OS()->mediaServices()->loadImage(OS()->utils()->fromUTF8(file.c_str(), -1));
    const Tq::Ptr<iPixelGuard> guard = image ? image->lock() : nullptr;
    int count = 0;
    for (int y = 0; guard && y < guard->getSize().y; ++y)
        for (int x = 0; x < guard->getSize().x; ++x) {
            std::uint32_t value = 0;
            std::memcpy(&value, guard->getPixels() + y * guard->getStride() + x * 4, 4);
            count += ((value ^ colour) & 0xFFFFFF) == 0;
        }
    return count;
}

TEST_F(DisplayTest, ASequenceShowsEachPictureAtItsTime)
{
    writeSequence(home_ / "shots", 50);
    const std::string media = (home_ / "shots").string();
    const std::string file = (home_ / "grab.png").string();
    for (const int frame : {0, 24, 49}) {
        ASSERT_EQ(
            run("--size 960x600 --at " + std::to_string(frame) + " --grab '" + file + "'", media),
            0);
        EXPECT_GT(countOf(file, colourOf(frame)), 20000) << frame;
        EXPECT_EQ(countOf(file, colourOf(frame + 1)), 0) << frame;
    }
    choose("Loop=1\nRate=5");
    ASSERT_EQ(run("--play --seconds 2", media), 0);
    EXPECT_GT(told().presented, 0);
}

TEST_F(DisplayTest, TheScreenShowsThePictureUnderThePlayhead)
{
    for (const char* scale : {"1", "1.5"}) {
        ASSERT_EQ(setenv("QT_SCALE_FACTOR", scale, 1), 0);
        const double ratio = std::atof(scale);
        const std::string file = (home_ / "grab.png").string();
        // Fits on a screen of 1600 x 1000 at either scale.
        ASSERT_EQ(run("--at 26:10 --size 960x600 --grab '" + file + "'"), 0);
        ASSERT_EQ(unsetenv("QT_SCALE_FACTOR"), 0);
        const Tq::Ptr<iHostImage> image =
            OS()->mediaServices()->loadImage(OS()->utils()->fromUTF8(file.c_str(), -1));
        ASSERT_TRUE(image);
        EXPECT_NEAR(image->getSize().x, 960 * ratio, 1);
        const Tq::Ptr<iPixelGuard> guard = image->lock();
        const auto pixel = [&](int x, int y) {
            std::uint32_t value = 0;
            std::memcpy(&value,
                        guard->getPixels() + static_cast<int>(y * ratio) * guard->getStride() +
                            static_cast<int>(x * ratio) * 4,
                        4);
            return value & 0xFFFFFF;
        };
        // The picture is 320 x 180, at the right of the bin: its first bars are grey and yellow.
        bool bars = false;
        for (int x = 300; x < 700 && !bars; ++x)
            bars = pixel(x, 100) == 0xBFBFBF && pixel(x + 320 / 7, 100) == 0xBFBF00;
        EXPECT_TRUE(bars) << "the test clip's bars at scale " << scale;
    }
}

} // namespace
