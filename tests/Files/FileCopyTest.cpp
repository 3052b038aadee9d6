#include "Files/WideFolder.h"
#include "support/BackgroundThread.h"
#include "support/ChildProcess.h"
#include "support/SystemSteps.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <optional>
#include <sched.h>
#include <set>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;
using Progress = iFileManager::ProgressCallback;

constexpr int kNotPermitted = 77;
constexpr timespec kTimes[] = {{1'500'000'000, 123'456'789}, {1'600'000'000, 987'654'321}};

// Names that a file system holds and a careless program does not.
const std::vector<std::string> kOddNames = {
    "plain",
    "two words",
    "line\nbreak",
    "quote'\"`$(x)",
    "-rf",
    "back\\slash",
    "\xE2\x82\xAC \xF0\x9F\x8E\xAC",
    "no\xFF\xC3utf8",
    "*?[a]",
    std::string(255, 'n'),
};

struct stat statusOf(const std::string& path)
{
    struct stat info = {};
    lstat(path.c_str(), &info);
    return info;
}

bool sameTime(const timespec& a, const timespec& b)
{
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

class CopyTest : public testing::Test
{
protected:
    bool copy(const std::string& from, const std::string& to, bool failIfExists = false,
              const Progress& progress = {}) const
    {
        return OS()->fileMgr()->copyFile(folder_.wide(from), folder_.wide(to), failIfExists,
                                         progress);
    }
    bool move(const std::string& from, const std::string& to, bool failIfExists = false) const
    {
        return OS()->fileMgr()->moveFile(folder_.wide(from), folder_.wide(to), failIfExists);
    }

    WideFolder folder_;
};

// Two file systems: the temporary folder's and one in memory.
class MoveAcrossTest : public CopyTest
{
protected:
    void SetUp() override
    {
        std::string name = "/dev/shm/os-test-XXXXXX";
        if (!mkdtemp(name.data()))
            GTEST_SKIP() << "no second file system";
        far_ = name;
        if (statusOf(far_).st_dev == statusOf(folder_.path()).st_dev)
            GTEST_SKIP() << "the temporary folder is on the same file system";
    }
    void TearDown() override
    {
        if (!far_.empty())
            fs::remove_all(far_);
    }
    bool moveFar(const std::string& from, const std::string& to, bool failIfExists = false) const
    {
        return OS()->fileMgr()->moveFile(
            folder_.wide(from), PathFunctions::OStoTq((far_ + "/" + to).c_str()), failIfExists);
    }
    Names farNames() const
    {
        Names names;
        for (const auto& entry : fs::directory_iterator(far_))
            names.insert(entry.path().filename().string());
        return names;
    }

    std::string far_;
};

} // namespace

TEST_F(CopyTest, CopiesUnderEveryName)
{
    for (const std::string& name : kOddNames) {
        folder_.write(name, "contents of " + name);
        EXPECT_TRUE(copy(name, "copy")) << name;
        EXPECT_EQ(folder_.read("copy"), "contents of " + name);
        EXPECT_TRUE(OS()->fileMgr()->deleteFile(folder_.wide(name))) << name;
        EXPECT_TRUE(copy("copy", name)) << name;
        EXPECT_EQ(folder_.read(name), "contents of " + name);
        EXPECT_TRUE(move(name, "moved")) << name;
        EXPECT_EQ(folder_.names(), (Names{"copy", "moved"})) << name;
    }
}

TEST_F(CopyTest, KeepsModeTimesAndAttributes)
{
    const std::string from = folder_.write("from", "text");
    folder_.write("to", "a longer old text");
    chmod(folder_.path("to").c_str(), 0666);
    chmod(from.c_str(), 0541);
    setxattr(from.c_str(), "user.note", "kept", 4, 0); // where the file system has them
    char note[8];
    const ssize_t noteLength = getxattr(from.c_str(), "user.note", note, sizeof note);
    utimensat(AT_FDCWD, from.c_str(), kTimes, 0);
    for (const char* to : {"to", "new"}) {
        ASSERT_TRUE(copy("from", to));
        const struct stat info = statusOf(folder_.path(to));
        EXPECT_EQ(info.st_mode & 07777, 0541u);
        EXPECT_TRUE(sameTime(info.st_mtim, kTimes[1]));
        EXPECT_EQ(info.st_size, 4);
        EXPECT_EQ(getxattr(folder_.path(to).c_str(), "user.note", note, sizeof note), noteLength);
    }
}

TEST_F(CopyTest, RefusesWhatCannotBeCopiedAndLeavesEverything)
{
    folder_.write("a", "text");
    folder_.write("b", "other");
    fs::create_directory(folder_.path("folder"));
    fs::create_symlink("a", folder_.path("link"));
    fs::create_symlink("loop", folder_.path("loop"));
    fs::create_symlink("nowhere", folder_.path("dangling"));
    fs::create_hard_link(folder_.path("a"), folder_.path("hard"));
    ASSERT_EQ(mkfifo(folder_.path("pipe").c_str(), 0600), 0);
    const Names before = folder_.names();
    struct Case
    {
        const char* from;
        const char* to;
        bool failIfExists;
    };
    for (const Case& c : {
             Case{"a", "a", false},           // onto itself
             Case{"a", "folder/../a", false}, //
             Case{"a", "link", false},        // by a link
             Case{"a", "hard", false},        //
             Case{"a", "b", true},            // there already
             Case{"a", "dangling", true},     //
             Case{"a", "folder", false},      // a folder
             Case{"folder", "c", false},      //
             Case{"missing", "c", false},     // nothing
             Case{"dangling", "c", false},    //
             Case{"a", "loop", false},        //
             Case{"loop", "c", false},        //
             Case{"pipe", "c", false},        // endless
             Case{"../../../../../../../../dev/zero", "c", false},
             Case{"a", "none/c", false}, // no such folder
             Case{"a", "a/c", false},    //
             Case{"a", "", false},
         })
        EXPECT_FALSE(copy(c.from, c.to, c.failIfExists)) << c.from << " to " << c.to;
    iFileManager* files = OS()->fileMgr();
    EXPECT_FALSE(files->copyFile(L"", folder_.wide("c"), false, {}));
    EXPECT_FALSE(files->copyFile(folder_.wide("a"), L"", false, {}));
    EXPECT_EQ(folder_.names(), before);
    EXPECT_EQ(folder_.read("a"), "text");
    EXPECT_EQ(folder_.read("b"), "other");
}

TEST_F(CopyTest, FollowsLinksOnBothSides)
{
    folder_.write("from", "new");
    folder_.write("to", "old");
    fs::create_symlink("from", folder_.path("fromLink"));
    fs::create_symlink("to", folder_.path("toLink"));
    fs::create_symlink("made", folder_.path("dangling"));
    EXPECT_TRUE(copy("fromLink", "toLink"));
    EXPECT_TRUE(fs::is_symlink(folder_.path("toLink")));
    EXPECT_EQ(folder_.read("to"), "new");
    EXPECT_TRUE(copy("from", "dangling"));
    EXPECT_TRUE(fs::is_symlink(folder_.path("dangling")));
    EXPECT_EQ(folder_.read("made"), "new");
}

TEST_F(CopyTest, TellsItsProgressAndGivesUpWhenAsked)
{
    const std::string bytes(10'000'000, 'b');
    folder_.write("from", bytes);
    folder_.write("to", "old");
    std::vector<std::uint64_t> told;
    const Progress note = [&](std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(total, bytes.size());
        told.push_back(done);
        return true;
    };
    ASSERT_TRUE(copy("from", "to", false, note));
    EXPECT_EQ(folder_.read("to"), bytes);
    ASSERT_GE(told.size(), 3u);
    EXPECT_EQ(told.front(), 0u);
    EXPECT_EQ(told.back(), bytes.size());
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));

    folder_.write("to", "old");
    for (std::size_t stopAt = 0; stopAt < told.size(); ++stopAt) {
        std::size_t calls = 0;
        EXPECT_FALSE(copy("from", "to", false, [&](auto, auto) { return calls++ != stopAt; }));
        EXPECT_EQ(calls, stopAt + 1) << "not asked again";
    }
    EXPECT_THROW(copy("from", "to", false, [](auto, auto) -> bool { throw 1; }), int);
    EXPECT_EQ(folder_.read("to"), "old");
    EXPECT_EQ(folder_.names(), (Names{"from", "to"}));
}

TEST_F(CopyTest, CopiesFilesWithoutASize)
{
    EXPECT_TRUE(OS()->fileMgr()->copyFile(L"/proc/self/limits", folder_.wide("limits"), false, {}));
    EXPECT_NE(folder_.read("limits").find("Max open files"), std::string::npos);
    EXPECT_EQ(folder_.mode("limits"), 0444u);
    folder_.write("empty", "");
    folder_.write("full", "old");
    EXPECT_TRUE(copy("empty", "full"));
    EXPECT_EQ(folder_.read("full"), "");
}

TEST_F(CopyTest, KeepsHolesBeyondFourGigabytes)
{
    constexpr off_t kSize = (5ll << 30) + 12'345;
    const int fd = open(folder_.path("from").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
    ASSERT_EQ(ftruncate(fd, kSize), 0);
    const off_t places[] = {0, 1 << 20, (4ll << 30) + 1, (5ll << 30)};
    for (const off_t place : places)
        ASSERT_EQ(pwrite(fd, &place, sizeof place, place), ssize_t(sizeof place));
    close(fd);
    std::uint64_t last = 0;
    ASSERT_TRUE(copy("from", "to", false, [&](std::uint64_t done, std::uint64_t) {
        last = done;
        return true;
    }));
    EXPECT_EQ(last, std::uint64_t(kSize));
    const struct stat info = statusOf(folder_.path("to"));
    EXPECT_EQ(info.st_size, kSize);
    EXPECT_LT(info.st_blocks * 512, 64 << 20);
    const int copied = open(folder_.path("to").c_str(), O_RDONLY | O_CLOEXEC);
    for (const off_t place : places) {
        off_t found = -1;
        EXPECT_EQ(pread(copied, &found, sizeof found, place), ssize_t(sizeof found));
        EXPECT_EQ(found, place);
    }
    close(copied);
}

TEST_F(CopyTest, AFullDiskLeavesTheOldTargetAndNothingElse)
{
    folder_.write("from", std::string(300'000, 'x'));
    folder_.write("to", "old");
    EXPECT_EQ(inChild([&] {
                  limitFileSize(100'000);
                  return copy("from", "to") || copy("from", "new") ? 1 : 0;
              }),
              0);
    EXPECT_EQ(folder_.read("to"), "old");
    EXPECT_EQ(folder_.names(), (Names{"from", "to"}));

    fs::create_directory(folder_.path("disk"));
    const int status = inChild([&] {
        if (unshare(CLONE_NEWNS) != 0 ||
            mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("none", folder_.path("disk").c_str(), "tmpfs", 0, "size=128k") != 0)
            return kNotPermitted;
        folder_.write("disk/to", "old");
        if (copy("from", "disk/to") || copy("from", "disk/new") || move("from", "disk/to"))
            return 1;
        const fs::directory_iterator left(folder_.path("disk"));
        return folder_.read("disk/to") == "old" && std::distance(begin(left), end(left)) == 1 &&
                       fs::exists(folder_.path("from"))
                   ? 0
                   : 2;
    });
    if (status == kNotPermitted)
        GTEST_SKIP() << "mounting a small disk is not permitted";
    EXPECT_EQ(status, 0);
}

TEST_F(CopyTest, AProcessThatEndsAtAnyStepLeavesAWholeTarget)
{
    folder_.write("from", "new");
    int exits = 0;
    for (int step = 1; step < 100; ++step) {
        folder_.write("to", "old");
        const int status = inChild([&] {
            SystemSteps::exitAt(step);
            return copy("from", "to") ? 0 : 1;
        });
        EXPECT_TRUE(folder_.read("to") == "old" || folder_.read("to") == "new") << step;
        EXPECT_EQ(folder_.read("from"), "new");
        if (status == 0)
            break;
        ASSERT_EQ(status, SystemSteps::kExitStatus);
        ++exits;
    }
    EXPECT_GE(exits, 5) << "no step was tried";
    ASSERT_TRUE(copy("from", "to"));
    EXPECT_EQ(folder_.names(), (Names{"from", "to"})) << "what they left is swept up";
}

TEST_F(CopyTest, PermissionsAreRespected)
{
    folder_.write("secret", "text");
    folder_.write("readonly", "old");
    fs::create_directory(folder_.path("closed"));
    folder_.write("closed/file", "old");
    chmod(folder_.path("secret").c_str(), 0);
    chmod(folder_.path("readonly").c_str(), 0444);
    chmod(folder_.path("closed").c_str(), 0555);
    folder_.write("from", "text");
    {
        const WithoutPrivilege ordinary;
        EXPECT_FALSE(copy("secret", "to"));
        EXPECT_FALSE(copy("from", "readonly"));
        EXPECT_FALSE(copy("from", "closed/new"));
        EXPECT_FALSE(copy("from", "closed/file")) << "could only be overwritten in place";
        EXPECT_FALSE(move("closed/file", "to"));
    }
    chmod(folder_.path("closed").c_str(), 0755);
    EXPECT_EQ(folder_.read("readonly"), "old");
    EXPECT_EQ(folder_.read("closed/file"), "old");
    EXPECT_EQ(folder_.entries(), 4u);
}

TEST_F(CopyTest, OnlyOneOfManyMakesANewFile)
{
    std::atomic<int> made{0};
    folder_.write("from", std::string(100'000, 'x'));
    for (int round = 0; round < 10; ++round) {
        made = 0;
        BackgroundThreads threads(4, [&] { made += copy("from", "to", true) ? 1 : 0; });
        threads.join();
        EXPECT_EQ(made.load(), 1);
        EXPECT_EQ(folder_.names(), (Names{"from", "to"}));
        fs::remove(folder_.path("to"));
    }
}

TEST_F(CopyTest, MovesFilesLinksAndFolders)
{
    folder_.write("file", "text");
    fs::create_directory(folder_.path("folder"));
    folder_.write("folder/inside", "inside");
    fs::create_symlink("nowhere", folder_.path("link"));
    EXPECT_TRUE(move("file", "file2"));
    EXPECT_TRUE(move("folder", "folder2", true));
    EXPECT_TRUE(move("link", "link2", true));
    EXPECT_EQ(fs::read_symlink(folder_.path("link2")), "nowhere");
    EXPECT_EQ(folder_.read("folder2/inside"), "inside");
    EXPECT_EQ(folder_.names(), (Names{"file2", "folder2", "link2"}));

    folder_.write("file", "new");
    EXPECT_FALSE(move("file", "file2", true));
    EXPECT_FALSE(move("file", "link2", true)) << "a link to nothing is there too";
    EXPECT_EQ(folder_.read("file2"), "text");
    EXPECT_TRUE(move("file", "file2"));
    EXPECT_EQ(folder_.read("file2"), "new");
    EXPECT_TRUE(move("file2", "link2")) << "the link goes, not what it names";
    EXPECT_FALSE(fs::is_symlink(folder_.path("link2")));

    EXPECT_FALSE(move("folder2", "folder2/below"));
    EXPECT_FALSE(move("link2", "folder2"));
    EXPECT_FALSE(move("folder2", "link2"));
    EXPECT_FALSE(move("missing", "other"));
    EXPECT_FALSE(move("missing", "other", true));
    EXPECT_TRUE(move("link2", "link2")) << "it stands there";
    EXPECT_EQ(folder_.read("link2"), "new");
}

// The system's own rename leaves both names of one file.
TEST_F(CopyTest, MovingOverASecondLinkLeavesOne)
{
    folder_.write("a", "text");
    fs::create_hard_link(folder_.path("a"), folder_.path("b"));
    EXPECT_TRUE(move("a", "b"));
    EXPECT_EQ(folder_.names(), Names{"b"});
    EXPECT_EQ(folder_.read("b"), "text");
    fs::create_hard_link(folder_.path("b"), folder_.path("c"));
    EXPECT_TRUE(move("b", "./b")) << "one name spelled in two ways";
    EXPECT_EQ(folder_.names(), (Names{"b", "c"}));
}

TEST_F(MoveAcrossTest, CopiesFilesWholeAndLinksAsLinks)
{
    for (const std::string& name : kOddNames) {
        folder_.write(name, "text");
        chmod(folder_.path(name).c_str(), 0640);
        utimensat(AT_FDCWD, folder_.path(name).c_str(), kTimes, 0);
        ASSERT_TRUE(moveFar(name, name)) << name;
        const struct stat info = statusOf(far_ + "/" + name);
        EXPECT_EQ(info.st_size, 4);
        EXPECT_EQ(info.st_mode & 07777, 0640u);
        EXPECT_TRUE(sameTime(info.st_mtim, kTimes[1]));
        EXPECT_EQ(folder_.entries(), 0u) << name;
    }
    fs::create_symlink("some/where else", folder_.path("link"));
    EXPECT_FALSE(moveFar("link", "plain", true));
    EXPECT_TRUE(moveFar("link", "plain"));
    EXPECT_EQ(fs::read_symlink(far_ + "/plain"), "some/where else");
    folder_.write("file", "text");
    EXPECT_TRUE(moveFar("file", "plain")) << "replaces the link, not what it names";
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(far_ + "/plain")));
    EXPECT_EQ(farNames().size(), kOddNames.size());
}

TEST_F(MoveAcrossTest, RefusesFoldersAndWhatIsThere)
{
    fs::create_directory(folder_.path("folder"));
    fs::create_directory(far_ + "/folder");
    ASSERT_EQ(mkfifo(folder_.path("pipe").c_str(), 0600), 0);
    folder_.write("file", "text");
    EXPECT_FALSE(moveFar("folder", "new"));
    EXPECT_FALSE(moveFar("pipe", "new"));
    EXPECT_FALSE(moveFar("file", "folder"));
    EXPECT_FALSE(moveFar("file", "folder", true));
    EXPECT_FALSE(moveFar("file", "none/new"));
    EXPECT_EQ(farNames(), Names{"folder"});
    EXPECT_EQ(folder_.names(), (Names{"file", "folder", "pipe"}));
}

TEST_F(MoveAcrossTest, WhatCannotBeRemovedIsNotMoved)
{
    fs::create_directory(folder_.path("closed"));
    folder_.write("closed/file", "text");
    chmod(folder_.path("closed").c_str(), 0555);
    {
        const WithoutPrivilege ordinary;
        EXPECT_FALSE(moveFar("closed/file", "file"));
    }
    chmod(folder_.path("closed").c_str(), 0755);
    EXPECT_EQ(folder_.read("closed/file"), "text");
}
