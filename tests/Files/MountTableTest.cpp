#include "OS/Host/Desktop/MountTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using OSInternal::isWithin;
using OSInternal::MountEntry;
using OSInternal::MountTable;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::string> pathsOf(const std::string& text)
{
    const MountTable table = MountTable::parse(text);
    std::vector<std::string> paths;
    for (const MountEntry& entry : table.entries())
        paths.push_back(entry.path_);
    return paths;
}

std::string manyLines(int count)
{
    std::string text = "1 1 8:1 / / rw - ext4 /dev/sda1 rw\n";
    for (int i = 2; i <= count; ++i) {
        const std::string id = std::to_string(i);
        text += id + " " + std::to_string(i - 1) + " 8:1 / /m" + id + " rw - ext4 /dev/sda1 rw\n";
    }
    return text;
}

} // namespace

TEST(MountTableTest, ReadsEveryFieldOfALine)
{
    const MountTable table = MountTable::parse(
        "36 35 98:1 /sub /mnt/two\\040words\\134x rw,noatime shared:7 master:1 - ext3 "
        "/dev/disk\\011a ro,errors=continue\n");
    ASSERT_EQ(table.entries().size(), 1u);
    const MountEntry& entry = table.entries()[0];
    EXPECT_EQ(entry.id_, 36);
    EXPECT_EQ(entry.parentId_, 35);
    EXPECT_EQ(entry.major_, 98u);
    EXPECT_EQ(entry.minor_, 1u);
    EXPECT_EQ(entry.root_, "/sub");
    EXPECT_EQ(entry.path_, "/mnt/two words\\x");
    EXPECT_EQ(entry.fileSystem_, "ext3");
    EXPECT_EQ(entry.source_, "/dev/disk\ta");
    EXPECT_TRUE(entry.readOnly_) << "a file system that is read-only is so at every place";
}

TEST(MountTableTest, TakesLinesOfOtherKernels)
{
    const struct
    {
        const char* line_;
        const char* source_;
        bool readOnly_;
    } cases[] = {
        {"5 1 0:9 / /a rw - tmpfs tmpfs rw", "tmpfs", false},
        {"5 1 0:9 / /a ro - tmpfs tmpfs rw", "tmpfs", true},
        {"5 1 0:9 / /a rw,rootcontext=ro - tmpfs tmpfs rw,errors=remount-ro", "tmpfs", false},
        {"5 1 0:9 / /a rw - tmpfs  rw,size=4k", "", false}, // nothing for a source
        {"5 1 0:9 / /a rw new:1 newer - tmpfs x rw", "x", false},
        {"5 1 0:9 / /a rw - tmpfs x", "x", false}, // no options
    };
    for (const auto& each : cases) {
        const MountTable table = MountTable::parse(each.line_);
        ASSERT_EQ(table.entries().size(), 1u) << each.line_;
        EXPECT_EQ(table.entries()[0].source_, each.source_) << each.line_;
        EXPECT_EQ(table.entries()[0].readOnly_, each.readOnly_) << each.line_;
    }
}

TEST(MountTableTest, LeavesOutWhatIsNoMount)
{
    for (const char* line :
         {"", "\n\n", "x", "1 2 3", "a 1 8:1 / /a rw - ext4 x rw", "1 1 8 / /a rw - ext4 x rw",
          "1 1 8:1x / /a rw - ext4 x rw", "1 1 8:1 / relative rw - ext4 x rw",
          "1 1 8:1 / /a rw shared:1", "1 1 8:1 / /a rw -", "1 1 99999999999:1 / /a rw - ext4 x rw",
          "-", "1 1 8:1 /  rw - ext4 x rw"})
        EXPECT_THAT(pathsOf(line), IsEmpty()) << line;
    EXPECT_THAT(pathsOf("rubbish\n5 1 0:9 / /a rw - tmpfs t rw\nrubbish"), ElementsAre("/a"));
}

TEST(MountTableTest, LeavesUnknownEscapesAsTheyAre)
{
    const struct
    {
        const char* written_;
        const char* path_;
    } cases[] = {{"/\\", "/\\"},
                 {"/\\0", "/\\0"},
                 {"/\\048", "/\\048"},
                 {"/\\777", "/\\777"},
                 {"/\\000", "/\\000"},
                 {"/\\0400", "/ 0"},
                 {"/\\303\\244", "/\xC3\xA4"},
                 {"/\\377", "/\xFF"}};
    for (const auto& each : cases)
        EXPECT_THAT(pathsOf(std::string("5 1 0:9 / ") + each.written_ + " rw - tmpfs t rw"),
                    ElementsAre(each.path_));
}

TEST(MountTableTest, HidesWhatOthersAreMountedOver)
{
    const std::string root = "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n";
    // Over the same folder, over a folder above, and what stood on something hidden.
    EXPECT_THAT(pathsOf(root + "2 1 0:2 / /a rw - tmpfs one rw\n"
                               "3 2 0:3 / /a rw - tmpfs two rw\n"),
                ElementsAre("/", "/a"));
    EXPECT_THAT(pathsOf(root + "2 1 0:2 / /a/b rw - tmpfs t rw\n"
                               "3 2 0:3 / /a/b/c rw - tmpfs t rw\n"
                               "4 1 0:4 / /a rw - tmpfs t rw\n"),
                ElementsAre("/", "/a"));
    EXPECT_THAT(pathsOf(root + "2 1 0:2 / /ab rw - tmpfs t rw\n"
                               "4 1 0:4 / /a rw - tmpfs t rw\n"),
                ElementsAre("/", "/ab", "/a"))
        << "/ab is not below /a";
    EXPECT_THAT(pathsOf(root + "2 1 0:2 / /a rw - tmpfs t rw\n"
                               "3 1 8:2 / / rw - ext4 t rw\n"),
                ElementsAre("/"))
        << "a new root hides the old one and all that stood on it";
}

TEST(MountTableTest, EndsOnHostileTables)
{
    // A ring of parents, mounts that are their own parents, one identity twice.
    EXPECT_EQ(pathsOf("1 2 0:1 / /a rw - tmpfs t rw\n2 1 0:1 / /b rw - tmpfs t rw\n").size(), 2u);
    EXPECT_EQ(pathsOf("1 1 0:1 / / rw - tmpfs t rw\n1 1 0:1 / / rw - tmpfs t rw\n").size(), 2u);
    const std::string deep = "/" + std::string(5000, '/');
    EXPECT_EQ(pathsOf("1 1 0:1 / " + deep + " rw - tmpfs t rw").size(), 1u);
    EXPECT_EQ(pathsOf(manyLines(50'000)).size(), 50'000u) << "a chain of parents";
}

TEST(MountTableTest, FindsTheMountOfAPath)
{
    const MountTable table = MountTable::parse("1 0 8:1 / / rw - ext4 x rw\n"
                                               "2 1 8:2 / /home rw - ext4 x rw\n"
                                               "3 2 8:3 / /home/anna rw - ext4 x rw\n");
    const struct
    {
        const char* path_;
        int id_;
    } cases[] = {{"/", 1},          {"/homes", 1},        {"/home", 2}, {"/home/annabel", 2},
                 {"/home/anna", 3}, {"/home/anna/x/y", 3}};
    for (const auto& each : cases)
        EXPECT_EQ(table.holding(each.path_)->id_, each.id_) << each.path_;
    EXPECT_EQ(table.holding("relative"), nullptr);
    EXPECT_EQ(MountTable::parse("").holding("/"), nullptr);
    EXPECT_TRUE(isWithin("/", "/") && isWithin("/a/b", "/a") && !isWithin("/a", "/a/b"));
}

TEST(MountTableTest, ReadsTheRunningSystem)
{
    const auto table = MountTable::read();
    ASSERT_TRUE(table);
    const MountEntry* proc = table->holding("/proc/self");
    ASSERT_NE(proc, nullptr);
    EXPECT_EQ(proc->fileSystem_, "proc");
    EXPECT_FALSE(MountTable::read("/nowhere/mountinfo"));
    EXPECT_FALSE(MountTable::read("/")) << "a folder cannot be read";
}
