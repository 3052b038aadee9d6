#include "OS/Mac/Core/ReplacementFile.h"

#include "support/BackgroundThread.h"
#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>

namespace {

using OSInternal::ReplacementFile;
using Status = ReplacementFile::Status;
using Names = std::set<std::string>;

bool replace(const std::string& path, const std::string& bytes)
{
    ReplacementFile file(path.c_str());
    return file.write(bytes.data(), bytes.size()) && file.commit();
}

} // namespace

TEST(ReplacementFile, TakesTheOldFilesPlaceAtCommitAndNotBefore)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "old");
    {
        ReplacementFile file(path.c_str());
        ASSERT_EQ(file.status(), Status::eReady);
        EXPECT_TRUE(file.write("new", 3));
        EXPECT_EQ(folder.read("a"), "old");
        EXPECT_TRUE(file.commit());
        EXPECT_EQ(file.descriptor(), -1);
        EXPECT_FALSE(file.commit()) << "there is nothing left to commit";
    }
    EXPECT_EQ(folder.read("a"), "new");
    {
        ReplacementFile file(path.c_str());
        EXPECT_TRUE(file.write("lost", 4));
    }
    EXPECT_EQ(folder.read("a"), "new");
    EXPECT_EQ(folder.names(), Names{"a"});
}

TEST(ReplacementFile, KeepsTheModeOfTheOldFileAndMasksThatOfANewOne)
{
    const TemporaryFolder folder;
    for (const mode_t mode : {0600u, 0644u, 0666u, 0777u, 0640u}) {
        const std::string path = folder.write("a", "old");
        chmod(path.c_str(), mode);
        EXPECT_TRUE(replace(path, "new"));
        EXPECT_EQ(folder.mode("a"), mode);
    }
    const mode_t before = umask(027);
    EXPECT_TRUE(replace(folder.path("b"), "new"));
    umask(before);
    EXPECT_EQ(folder.mode("b"), 0640u);
}

TEST(ReplacementFile, KeepsTheOwnerWhereThatIsPermitted)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "old");
    if (chown(path.c_str(), 12345, 54321) != 0)
        GTEST_SKIP() << "only root gives files away";
    chmod(path.c_str(), 0664);
    EXPECT_TRUE(replace(path, "new"));
    struct stat info;
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, 12345u);
    EXPECT_EQ(info.st_gid, 54321u);
    EXPECT_EQ(info.st_mode & 07777u, 0664u);
}

TEST(ReplacementFile, FollowsLinksAndLeavesThemLinks)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path("deep"));
    folder.write("deep/real", "old");
    const std::pair<const char*, const char*> links[] = {
        {"direct", "deep/real"},     {"absolute", nullptr},        {"chain", "direct"},
        {"deep/up", "../deep/real"}, {"dangling", "deep/not-yet"},
    };
    for (const auto& [name, target] : links) {
        const std::string to = target ? target : folder.path("deep/real");
        ASSERT_EQ(symlink(to.c_str(), folder.path(name).c_str()), 0);
        EXPECT_TRUE(replace(folder.path(name), name)) << name;
        EXPECT_EQ(folder.read(name), name);
        EXPECT_TRUE(std::filesystem::is_symlink(folder.path(name))) << name;
    }
    EXPECT_EQ(folder.read("deep/real"), "deep/up");
    EXPECT_EQ(folder.read("deep/not-yet"), "dangling");
    EXPECT_FALSE(std::filesystem::is_symlink(folder.path("deep/not-yet")));

    ASSERT_EQ(symlink("loop2", folder.path("loop1").c_str()), 0);
    ASSERT_EQ(symlink("loop1", folder.path("loop2").c_str()), 0);
    const ReplacementFile loop(folder.path("loop1").c_str());
    EXPECT_EQ(loop.status(), Status::eRefused);
    EXPECT_EQ(loop.error(), ELOOP);
}

TEST(ReplacementFile, TellsWhyATargetCanNotBeReplaced)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path("folder"));
    const std::string readOnly = folder.write("read-only", "old");
    chmod(readOnly.c_str(), 0444);
    std::filesystem::create_directory(folder.path("closed"));
    folder.write("closed/writable", "old");
    chmod(folder.path("closed").c_str(), 0555);
    const std::string file = folder.write("file", "old");
    const struct
    {
        std::string path;
        Status status;
        int error;
    } cases[] = {
        {"", Status::eRefused, ENOENT},
        {folder.path("missing/a"), Status::eRefused, ENOENT},
        {folder.path("file/a"), Status::eRefused, ENOTDIR},
        {folder.path("folder"), Status::eRefused, EISDIR},
        {folder.path("folder/"), Status::eRefused, EISDIR},
        {folder.path("folder/.."), Status::eRefused, EISDIR},
        {folder.path(std::string(300, 'x')), Status::eRefused, ENAMETOOLONG},
        {readOnly, Status::eRefused, EACCES},
        {folder.path("closed/new"), Status::eRefused, EACCES},
        {folder.path("closed/writable"), Status::eOnlyInPlace, 0},
        {"/dev/null", Status::eOnlyInPlace, 0},
    };
    const WithoutPrivilege ordinary;
    for (const auto& c : cases) {
        ReplacementFile target(c.path.c_str());
        EXPECT_EQ(target.status(), c.status) << c.path;
        EXPECT_EQ(target.error(), c.error) << c.path;
        EXPECT_EQ(target.descriptor(), -1);
        EXPECT_FALSE(target.write("x", 1) && target.commit());
    }
    chmod(folder.path("closed").c_str(), 0755);
    EXPECT_EQ(folder.read("read-only"), "old");
    EXPECT_EQ(folder.read("closed/writable"), "old");
}

TEST(ReplacementFile, WritesInPlaceOnlyWhenAsked)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "a long old text");
    chmod(folder.path().c_str(), 0555);
    {
        const WithoutPrivilege ordinary;
        ReplacementFile file(path.c_str());
        ASSERT_EQ(file.status(), Status::eOnlyInPlace);
        EXPECT_TRUE(file.openInPlace());
        EXPECT_TRUE(file.write("new", 3));
        EXPECT_TRUE(file.commit());
    }
    EXPECT_EQ(folder.read("a"), "new");

    ReplacementFile full("/dev/full");
    ASSERT_TRUE(full.openInPlace());
    EXPECT_FALSE(full.write("new", 3));
    EXPECT_EQ(full.error(), ENOSPC);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
}

TEST(ReplacementFile, CopiesIntoAFileThatCanNotBeRenamedOver)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "a long old text");
    const std::string other = folder.write("b", "b");
    const int status = inChild([&] {
        if (unshare(CLONE_NEWNS) != 0 ||
            mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount(path.c_str(), other.c_str(), nullptr, MS_BIND, nullptr) != 0)
            return 77;
        return replace(other, "new") ? 0 : 1;
    });
    if (status == 77)
        GTEST_SKIP() << "mounting is not permitted";
    EXPECT_EQ(status, 0);
    EXPECT_EQ(folder.read("a"), "new");
    EXPECT_EQ(folder.names(), (Names{"a", "b"}));
}

TEST(ReplacementFile, AWriteThatFailsHalfWayKeepsTheOldFile)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "old");
    EXPECT_EQ(inChild([&] {
                  limitFileSize(10'000);
                  const std::string bytes(20'000, 'x');
                  ReplacementFile file(path.c_str());
                  const bool written = file.write(bytes.data(), bytes.size());
                  return !written && file.error() == EFBIG && !file.commit() ? 0 : 1;
              }),
              0);
    EXPECT_EQ(folder.read("a"), "old");
    EXPECT_EQ(folder.names(), Names{"a"});
}

TEST(ReplacementFile, CanRefuseToReplaceWhatHasComeMeanwhile)
{
    const TemporaryFolder folder;
    ReplacementFile first(folder.path("a").c_str());
    ReplacementFile second(folder.path("a").c_str());
    EXPECT_TRUE(first.write("first", 5));
    EXPECT_TRUE(second.write("second", 6));
    EXPECT_TRUE(first.commit(ReplacementFile::Existing::eKeep));
    EXPECT_FALSE(second.commit(ReplacementFile::Existing::eKeep));
    EXPECT_EQ(second.error(), EEXIST);
    EXPECT_EQ(folder.read("a"), "first");
    EXPECT_EQ(folder.names(), Names{"a"});
}

TEST(ReplacementFile, RemovesWhatKilledWritersLeftAndNothingElse)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "old");
    folder.write(".a.new-file", "the user's own");
    folder.write(".b.new-0", "another target's");
    for (int i = 0; i < 3; ++i) // each takes the last one's place
        inChild([&] {
            ReplacementFile first(path.c_str()), second(path.c_str());
            _exit(first.write("half", 4) && second.write("half", 4) ? 0 : 1);
            return 1;
        });
    EXPECT_EQ(folder.names().size(), 5u) << "no more than what one process left";

    ReplacementFile living(path.c_str());
    EXPECT_TRUE(replace(path, "new"));
    EXPECT_EQ(folder.names(), (Names{"a", ".a.new-0", ".a.new-file", ".b.new-0"}))
        << "that of a living writer stays";
    EXPECT_TRUE(living.write("newest", 6) && living.commit());
    EXPECT_EQ(folder.read("a"), "newest");
    EXPECT_EQ(folder.names(), (Names{"a", ".a.new-file", ".b.new-0"}));
}

TEST(ReplacementFile, ManyWritersOfOneTargetLeaveOneWholeContent)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("a");
    std::atomic<int> failures{0};
    std::atomic<int> next{0};
    BackgroundThreads writers(8, [&] {
        const std::string bytes(100'000, static_cast<char>('a' + next.fetch_add(1)));
        for (int i = 0; i < 20; ++i)
            if (!replace(path, bytes))
                ++failures;
    });
    writers.join();
    EXPECT_EQ(failures, 0);
    const std::string bytes = folder.read("a");
    EXPECT_EQ(bytes.size(), 100'000u);
    EXPECT_EQ(bytes.find_first_not_of(bytes[0]), std::string::npos);
    EXPECT_EQ(folder.names(), Names{"a"});
}

TEST(ReplacementFile, ServesNamesOfAnyLengthAndBytes)
{
    const TemporaryFolder folder;
    std::string accents;
    for (int i = 0; i < 127; ++i)
        accents += "\u00e9";
    for (const std::string& name : {std::string(255, 'x'), "x" + accents,
                                    std::string("\xFF\xFE\n name"), std::string("-n")}) {
        EXPECT_TRUE(replace(folder.path(name), "new")) << name;
        EXPECT_EQ(folder.read(name), "new");
    }
    EXPECT_EQ(folder.names().size(), 4u);
}
