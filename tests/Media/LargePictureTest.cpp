// Pictures of hundreds of megapixels, which cost no memory beside their own.
#include "support/ChildProcess.h"
#include "support/FreshProcess.h"
#include "support/OutputCapture.h"
#include "support/Pictures.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace {

constexpr long kMegabyte = 1024 * 1024;

long peakBytes()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss * 1024;
}

std::uint32_t wordAt(int x, int y)
{
    return 0xFF000000u | static_cast<std::uint32_t>(x * 31 + y * 17) % 0xFFFFFFu;
}

} // namespace

TEST(LargePicture, IsWrittenAndReadInItsOwnMemoryAlone)
{
    if (!std::getenv("VANTOR_LARGE_PICTURES"))
        GTEST_SKIP() << "a gigabyte of memory and of disk: set VANTOR_LARGE_PICTURES";
    if (runsInFreshProcess())
        return;
    constexpr int kSide = 16'000;
    constexpr long kPictureBytes = 4L * kSide * kSide;
    const Pictures pictures;
    struct statvfs disk;
    ASSERT_EQ(statvfs(pictures.path("").c_str(), &disk), 0);
    if (static_cast<long>(disk.f_bavail * disk.f_bsize) < kPictureBytes + 100 * kMegabyte)
        GTEST_SKIP() << "the disk has no gigabyte left";

    // What the code itself needs comes in first.
    EXPECT_TRUE(OS()->mediaServices()->saveImage(OS()->mediaServices()->createHostSurface({8, 8}),
                                                 pictures.wide("warm.tif")));
    OS()->mediaServices()->loadImage(pictures.wide("warm.tif"));
    const long before = peakBytes();
    {
        const Tq::Ptr<iHostImage> picture =
            OS()->mediaServices()->createHostSurface({kSide, kSide});
        const Tq::Ptr<iPixelGuard> guard = picture->lock();
        for (int y = 0; y < kSide; ++y) {
            auto* row =
                reinterpret_cast<std::uint32_t*>(guard->getPixels() + y * guard->getStride());
            for (int x = 0; x < kSide; ++x)
                row[x] = wordAt(x, y);
        }
        EXPECT_TRUE(OS()->mediaServices()->saveImage(picture, pictures.wide("large.tif")));
    }
    const long saved = peakBytes();
    EXPECT_LE(saved - before - kPictureBytes, 8 * kMegabyte) << "saving";

    const Tq::Ptr<iHostImage> back = OS()->mediaServices()->loadImage(pictures.wide("large.tif"));
    EXPECT_LE(peakBytes() - before - kPictureBytes, 8 * kMegabyte) << "loading";
    std::printf("beyond the picture: %ld KB saving, %ld KB at all\n",
                (saved - before - kPictureBytes) / 1024,
                (peakBytes() - before - kPictureBytes) / 1024);
    const Tq::Ptr<iPixelGuard> guard = back->lock();
    ASSERT_TRUE(guard);
    long wrong = 0;
    for (int y = 0; y < kSide; ++y) {
        const auto* row =
            reinterpret_cast<const std::uint32_t*>(guard->getPixels() + y * guard->getStride());
        for (int x = 0; x < kSide; ++x)
            wrong += row[x] != wordAt(x, y);
    }
    EXPECT_EQ(wrong, 0);
}

TEST(LargePicture, ThatIsOnlyPromisedIsRefusedWithOneLine)
{
    const Pictures pictures;
    pictures.tiff("promise.tif", [](TIFF* tiff) {
        for (const auto& [tag, value] : {std::pair(TIFFTAG_SAMPLESPERPIXEL, 4),
                                         {TIFFTAG_BITSPERSAMPLE, 8},
                                         {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB},
                                         {TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG},
                                         {TIFFTAG_IMAGEWIDTH, 100'000},
                                         {TIFFTAG_IMAGELENGTH, 100'000},
                                         {TIFFTAG_ROWSPERSTRIP, 1}})
            TIFFSetField(tiff, static_cast<std::uint32_t>(tag), value);
        std::vector<std::uint8_t> row(400'000);
        TIFFWriteScanline(tiff, row.data(), 0, 0);
    });
    const std::string ppm = "P6\n100000 100000\n255\nxyz";
    pictures.write("promise.ppm", {ppm.begin(), ppm.end()});
    Pictures::Bytes bmp = {'B', 'M', 58, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0};
    for (int side = 0; side < 2; ++side)
        bmp.insert(bmp.end(), {0xA0, 0x86, 0x01, 0x00});
    bmp.insert(bmp.end(), {1, 0, 32, 0});
    bmp.resize(58);
    pictures.write("promise.bmp", bmp);
    const long before = peakBytes();
    for (const char* name : {"promise.tif", "promise.ppm", "promise.bmp"}) {
        OutputCapture errors(OutputCapture::eStderr);
        EXPECT_EQ(outputOf([&] {
                      const auto image = OS()->mediaServices()->loadImage(pictures.wide(name));
                      EXPECT_FALSE(image->lock()) << name;
                  }),
                  "QtImage::QtImage( " + pictures.path(name) + " ) failed\n");
        EXPECT_EQ(errors.text(), "") << name;
    }
    EXPECT_LE(peakBytes() - before, 8 * kMegabyte);
}

TEST(SavingPictures, AFullDiskKeepsTheOldPictureAndLeavesNothing)
{
    const Pictures pictures;
    const std::string disk = pictures.path("");
    constexpr int kCannotMount = 77;
    const int status = inChild([&] {
        if (unshare(CLONE_NEWNS) != 0 ||
            mount("", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("tiny", disk.c_str(), "tmpfs", 0, "size=64k") != 0)
            return kCannotMount;
        const Tq::Ptr<iHostImage> small = OS()->mediaServices()->createHostSurface({20, 20});
        const Tq::Ptr<iHostImage> large = OS()->mediaServices()->createHostSurface({200, 200});
        const Tq::Ptr<iPixelGuard> guard = large->lock(); // noise, which no type makes small
        std::uint32_t noise = 1;
        for (int i = 0; i < 200 * 200; ++i) {
            noise = noise * 1664525 + 1013904223;
            reinterpret_cast<std::uint32_t*>(guard->getPixels())[i] = 0xFF000000u | noise >> 8;
        }
        int faults = 0;
        for (const char* name : {"a.tif", "a.bmp", "a.ppm", "a.png"}) {
            faults += !OS()->mediaServices()->saveImage(small, pictures.wide(name));
            const Pictures::Bytes old = pictures.read(name);
            faults += OS()->mediaServices()->saveImage(large, pictures.wide(name));
            faults += old.empty() || pictures.read(name) != old;
            const std::filesystem::directory_iterator entries(disk);
            faults += std::distance(begin(entries), end(entries)) != 1;
            std::filesystem::remove(pictures.path(name));
        }
        return faults;
    });
    if (status == kCannotMount)
        GTEST_SKIP() << "no privilege to mount a small disk";
    EXPECT_EQ(status, 0) << "faults, four for each type";
}

TEST(SavingPictures, AReadOnlyFolderTakesNone)
{
    const Pictures pictures;
    const WithoutPrivilege ordinary;
    chmod(pictures.path("").c_str(), 0500);
    const Tq::Ptr<iHostImage> picture = OS()->mediaServices()->createHostSurface({20, 20});
    EXPECT_EQ(outputOf([&] {
                  for (const char* name : {"a.tif", "a.png", "a.jpg", "a.bmp", "a.ppm"})
                      EXPECT_FALSE(OS()->mediaServices()->saveImage(picture, pictures.wide(name)))
                          << name;
              }),
              "");
    chmod(pictures.path("").c_str(), 0700);
    EXPECT_TRUE(std::filesystem::is_empty(pictures.path("")));
}
