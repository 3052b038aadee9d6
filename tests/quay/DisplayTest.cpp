#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Media/iMediaServices.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// How often each colour stands in a picture file.
std::map<std::uint32_t, int> coloursOf(const fs::path& file)
{
    std::map<std::uint32_t, int> colours;
    const Tq::Ptr<iHostImage> image =
        OS()->mediaServices()->loadImage(OS()->utils()->fromUTF8(file.c_str(), -1));
    const Tq::Ptr<iPixelGuard> guard = image ? image->lock() : nullptr;
    for (int y = 0; guard && y < guard->getSize().y; ++y)
        for (int x = 0; x < guard->getSize().x; ++x) {
            std::uint32_t value = 0;
            std::memcpy(&value, guard->getPixels() + y * guard->getStride() + x * 4, 4);
            ++colours[value & 0xFFFFFF];
        }
    return colours;
}

TEST(QuayDisplayTest, TheScreenShowsTheGraphs)
{
    const char* platform = std::getenv("QT_QPA_PLATFORM");
    if (!std::getenv("DISPLAY") || (platform && std::string(platform) != "xcb"))
        GTEST_SKIP() << "no display";
    const fs::path home = fs::temp_directory_path() / ("quay-display" + std::to_string(getpid()));
    fs::create_directories(home);
    for (const char* scale : {"1", "1.5"}) {
        const fs::path file = home / "grab.png";
        ASSERT_EQ(std::system(("HOME='" + home.string() + "' QT_SCALE_FACTOR=" + scale +
                               " '" QUAY_PROGRAM "' --size 900x600 --grab '" + file.string() + "'")
                                  .c_str()),
                  0);
        std::map<std::uint32_t, int> colours = coloursOf(file);
        EXPECT_GT(colours[0x15171C], 10000) << "the ground of graphs at scale " << scale;
        EXPECT_EQ(colours[0x000000], 0) << "nothing is left undrawn at scale " << scale;
        fs::remove(file);
    }
    fs::remove_all(home);
}

} // namespace
