#include "Model/FrameSequence.h"
#include "Model/MediaBin.h"
#include "Model/Removal.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace Vantor {
namespace {

namespace fs = std::filesystem;

std::string plain(const Text& text)
{
    return OS()->utils()->toUTF8(text).c_str();
}

TEST(FrameSequenceTest, FindsRowsOfNumbers)
{
    static const struct
    {
        const char* what;
        std::vector<Text> names;
        std::vector<const char*> sequences;
        std::size_t others;
    } kCases[] = {
        {"padded", {L"a_0001.png", L"a_0002.png", L"a_0003.png"}, {"a_[0001-0003].png"}, 0},
        {"in any order", {L"a3.png", L"a1.png", L"a2.png"}, {"a[1-3].png"}, 0},
        {"without zeros across ten", {L"a9.png", L"a10.png", L"a11.png"}, {"a[9-11].png"}, 0},
        {"padded across a power",
         {L"a99.png", L"a100.png", L"a098.png", L"a101.png"},
         {"a[99-101].png"},
         1},
        {"numbers alone", {L"0.tif", L"1.tif", L"2.tif"}, {"[0-2].tif"}, 0},
        {"two are pictures", {L"a1.png", L"a2.png"}, {}, 2},
        {"a gap parts",
         {L"a1.png", L"a2.png", L"a3.png", L"a5.png", L"a6.png", L"a7.png", L"a9.png"},
         {"a[1-3].png", "a[5-7].png"},
         1},
        {"other extensions are others", {L"a1.png", L"a2.jpg", L"a3.png"}, {}, 3},
        {"other names are others", {L"a1.png", L"b2.png", L"a3.png"}, {}, 3},
        {"two paddings",
         {L"a1.png", L"a2.png", L"a3.png", L"a01.png", L"a02.png", L"a03.png"},
         {"a[01-03].png", "a[1-3].png"},
         0},
        {"the last number counts",
         {L"s1_t1.png", L"s1_t2.png", L"s1_t3.png", L"s2_t1.png"},
         {"s1_t[1-3].png"},
         1},
        {"the number of an extension is none", {L"a.jp2", L"b.jp2", L"c.jp2"}, {}, 3},
        {"a number behind a word", {L"1a.png", L"2a.png", L"3a.png"}, {"[1-3]a.png"}, 0},
        {"numbers too long to count",
         {L"99999999999997.png", L"99999999999998.png", L"99999999999999.png"},
         {},
         3},
        {"no names", {}, {}, 0},
    };
    for (const auto& c : kCases) {
        const FoundFiles found = findSequences(c.names);
        ASSERT_EQ(found.sequences.size(), c.sequences.size()) << c.what;
        std::set<std::string> expected(c.sequences.begin(), c.sequences.end());
        std::set<std::string> names;
        for (const FrameSequence& sequence : found.sequences)
            names.insert(plain(sequence.name()));
        EXPECT_EQ(names, expected) << c.what;
        EXPECT_EQ(found.others.size(), c.others) << c.what;
    }
}

TEST(FrameSequenceTest, NamesTheFileOfEachFrame)
{
    const FrameSequence sequence{L"a_", L".png", 3, 98, 5};
    EXPECT_EQ(sequence.fileAt(0), L"a_098.png");
    EXPECT_EQ(sequence.fileAt(4), L"a_102.png");
    EXPECT_EQ(sequence.fileAt(-7), L"a_098.png") << "the first is held before the start";
    EXPECT_EQ(sequence.fileAt(99), L"a_102.png") << "and the last behind the end";
}

/// A folder of numbered files.
class SequenceFolderTest : public testing::Test
{
protected:
    SequenceFolderTest()
        : folder_(fs::temp_directory_path() / ("vantor-rows" + std::to_string(getpid())))
    {
        fs::create_directories(folder_);
        for (const char* name : {"shot_08.png", "shot_09.png", "shot_10.png", "dawn.jpg",
                                 "notes1.txt", "notes2.txt", "notes3.txt"})
            std::ofstream(folder_ / name) << "x";
        path_ = OS()->utils()->fromUTF8(folder_.c_str(), -1);
    }
    ~SequenceFolderTest() override { fs::remove_all(folder_); }

    fs::path folder_;
    Text path_;
};

TEST_F(SequenceFolderTest, ARowIsOneThingInTheBin)
{
    MediaBin bin;
    ASSERT_TRUE(addFolder(bin, path_));
    ASSERT_TRUE(addFolder(bin, path_)) << "a second time adds nothing";
    ASSERT_EQ(bin.items.size(), 2u);
    const MediaItem& shot = bin.items[static_cast<std::size_t>(bin.find(L"shot_[08-10].png"))];
    EXPECT_EQ(shot.format, L"PNG");
    EXPECT_EQ(shot.frames(), 3);
    EXPECT_TRUE(fs::exists(plain(shot.fileAt(2))));
    EXPECT_EQ(plain(shot.fileAt(1)), (folder_ / "shot_09.png").string());
    EXPECT_EQ(bin.items[static_cast<std::size_t>(bin.find(L"dawn.jpg"))].frames(), 0);
}

TEST_F(SequenceFolderTest, TakingARowOutOfTheBinKeepsItsFiles)
{
    MediaBin bin;
    addFolder(bin, path_);
    const Text message = removeItem(bin, bin.find(L"shot_[08-10].png"), {});
    EXPECT_TRUE(message.contains(L"files stay"));
    EXPECT_EQ(bin.items.size(), 1u);
    EXPECT_TRUE(fs::exists(folder_ / "shot_09.png"));
    bin.add(testClip());
    removeItem(bin, bin.find(L"Test clip"), {});
    EXPECT_EQ(bin.items.size(), 1u);
}

} // namespace
} // namespace Vantor
