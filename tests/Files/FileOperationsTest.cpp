#include "Files/WideFolder.h"
#include "support/BackgroundThread.h"
#include "support/FreshProcess.h"
#include "support/HomeFolder.h"
#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>
#include <OS/System/iSystemInfo.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <optional>
#include <pwd.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Text = LightweightString<wchar_t>;
using Manager = iFileManager;

iFileManager* files()
{
    return OS()->fileMgr();
}

class OperationsTest : public testing::Test
{
protected:
    struct stat status(const std::string& name) const
    {
        struct stat info = {};
        lstat(folder_.path(name).c_str(), &info);
        return info;
    }

    WideFolder folder_;
};

// Sets a variable of the environment for a scope.
class Variable
{
public:
    Variable(const char* name, const char* value) : name_(name)
    {
        if (const char* old = std::getenv(name))
            old_ = old;
        setenv(name, value, 1);
    }
    ~Variable()
    {
        if (old_)
            setenv(name_, old_->c_str(), 1);
        else
            unsetenv(name_);
    }

private:
    const char* name_;
    std::optional<std::string> old_;
};

} // namespace

TEST_F(OperationsTest, MakesFoldersWithWhatIsMissingAbove)
{
    struct Case
    {
        const char* name;
        bool made;
    };
    folder_.write("file", "");
    fs::create_symlink("a", folder_.path("link"));
    fs::create_symlink("nowhere", folder_.path("dangling"));
    for (const Case& c : {
             Case{"a/b/c", true},
             Case{"a/b/c", true},
             Case{"a/b/c/", true},
             Case{"x//y///z/", true},
             Case{"no\xFFutf8/\xF0\x9F\x8E\xAC\n", true},
             Case{"link/below", true},
             Case{"file", false},
             Case{"file/below", false},
             Case{"dangling/below", false},
         })
        EXPECT_EQ(files()->createDirectory(folder_.wide(c.name)), c.made) << c.name;
    EXPECT_TRUE(fs::is_directory(folder_.path("a/below")));
    EXPECT_TRUE(fs::is_directory(folder_.path("x/y/z")));
    EXPECT_FALSE(files()->createDirectory(L""));
    EXPECT_TRUE(files()->createDirectory(L"/"));
    EXPECT_FALSE(files()->createDirectory(folder_.wide(std::string(256, 'n'))));
    EXPECT_FALSE(files()->createDirectory(L"//nas.invalid/share/folder")) << "not mounted";
    EXPECT_FALSE(fs::exists("smb:"));
}

TEST_F(OperationsTest, ManyThreadsMakeOneTree)
{
    std::atomic<int> failed{0};
    BackgroundThreads threads(4, [&] {
        for (int i = 0; i < 50; ++i)
            if (!files()->createDirectory(folder_.wide("t/" + std::to_string(i) + "/a/b")))
                ++failed;
    });
    threads.join();
    EXPECT_EQ(failed.load(), 0);
}

TEST_F(OperationsTest, RemovesOnlyWhatItIsMeantFor)
{
    fs::create_directories(folder_.path("full/inside"));
    folder_.write("file", "kept");
    fs::create_symlink("file", folder_.path("link"));
    fs::create_directory_symlink("full", folder_.path("folderLink"));
    EXPECT_FALSE(files()->deleteDirectory(folder_.wide("full")));
    EXPECT_FALSE(files()->deleteDirectory(folder_.wide("file")));
    EXPECT_FALSE(files()->deleteDirectory(folder_.wide("folderLink")));
    EXPECT_FALSE(files()->deleteDirectory(folder_.wide("missing")));
    EXPECT_TRUE(files()->deleteDirectory(folder_.wide("full/inside")));
    EXPECT_FALSE(files()->deleteFile(folder_.wide("full")));
    EXPECT_FALSE(files()->deleteFile(folder_.wide("missing")));
    EXPECT_FALSE(files()->deleteFile(L""));
    EXPECT_FALSE(files()->deleteFile(folder_.wide("file") + L'\0')) << "not what it begins with";
    EXPECT_FALSE(files()->deleteDirectory(folder_.wide("full") + L'\0'));
    EXPECT_TRUE(files()->deleteFile(folder_.wide("link")));
    EXPECT_EQ(folder_.read("file"), "kept");
    EXPECT_TRUE(files()->deleteFile(folder_.wide("folderLink")));
    EXPECT_TRUE(fs::is_directory(folder_.path("full")));
}

TEST_F(OperationsTest, TellsWhatIsThere)
{
    struct Case
    {
        const char* name;
        bool exists;
        std::uint64_t size;
        unsigned int attributes;
    };
    folder_.write("file", "12345");
    folder_.write("locked", "1");
    chmod(folder_.path("locked").c_str(), 0444);
    folder_.write(".hidden", "12");
    fs::create_directory(folder_.path("folder"));
    fs::create_directory(folder_.path(".folder"));
    fs::create_symlink("locked", folder_.path("link"));
    fs::create_symlink("nowhere", folder_.path("dangling"));
    fs::create_symlink("loop", folder_.path("loop"));
    constexpr unsigned int kLink = Manager::eAttributeLink;
    for (const Case& c : {
             Case{"file", true, 5, Manager::eAttributeNormal},
             Case{"locked", true, 1, Manager::eAttributeReadOnly},
             Case{".hidden", true, 2, Manager::eAttributeHidden},
             Case{"folder", true, 0, Manager::eAttributeDirectory},
             Case{"folder/", true, 0, Manager::eAttributeDirectory},
             Case{"folder/.", true, 0, Manager::eAttributeDirectory},
             Case{".folder//", true, 0, Manager::eAttributeDirectory | Manager::eAttributeHidden},
             Case{"link", true, 1, kLink | Manager::eAttributeReadOnly},
             Case{"dangling", false, 0, kLink},
             Case{"loop", false, 0, kLink},
             Case{"missing", false, 0, Manager::eAttributesUnknown},
             Case{"file/below", false, 0, Manager::eAttributesUnknown},
         }) {
        EXPECT_EQ(files()->fileExists(folder_.wide(c.name)), c.exists) << c.name;
        EXPECT_EQ(files()->getFileSize(folder_.wide(c.name)), c.size) << c.name;
        EXPECT_EQ(files()->getFileAttributes(folder_.wide(c.name)), c.attributes) << c.name;
    }
    EXPECT_EQ(files()->getFileAttributes(L""), Manager::eAttributesUnknown);
    EXPECT_FALSE(files()->fileExists(folder_.wide("file") + L'\0'));
}

TEST_F(OperationsTest, OnlyReadOnlyCanBeSet)
{
    folder_.write("file", "");
    chmod(folder_.path("file").c_str(), 0666);
    EXPECT_TRUE(files()->setFileAttributes(folder_.wide("file"), Manager::eAttributeReadOnly));
    EXPECT_EQ(folder_.mode("file"), 0444u);
    EXPECT_TRUE(files()->setFileAttributes(folder_.wide("file"), Manager::eAttributeHidden));
    EXPECT_EQ(folder_.mode("file"), 0644u) << "the owner's right comes back, no one else's";
    EXPECT_FALSE(files()->setFileAttributes(folder_.wide("missing"), 0));
}

TEST_F(OperationsTest, TouchingSetsOneTime)
{
    const timespec old[] = {{1'000'000'000, 5}, {1'100'000'000, 7}};
    folder_.write("file", "");
    const auto reset = [&] { utimensat(AT_FDCWD, folder_.path("file").c_str(), old, 0); };
    const time_t before = std::time(nullptr) - 1;
    reset();
    EXPECT_TRUE(files()->touchFile(folder_.wide("file"), iFile::eLastWriteTime));
    EXPECT_GE(status("file").st_mtime, before);
    EXPECT_EQ(status("file").st_atim.tv_nsec, 5);
    reset();
    EXPECT_TRUE(files()->touchFile(folder_.wide("file"), iFile::eLastAccessTime));
    EXPECT_GE(status("file").st_atime, before);
    EXPECT_EQ(status("file").st_mtim.tv_nsec, 7);
    reset();
    EXPECT_FALSE(files()->touchFile(folder_.wide("file"), iFile::eCreationTime));
    EXPECT_EQ(status("file").st_atim.tv_nsec, 5);
    EXPECT_FALSE(files()->touchFile(folder_.wide("missing"), iFile::eLastWriteTime));
    EXPECT_FALSE(fs::exists(folder_.path("missing"))) << "nothing is made";
}

TEST_F(OperationsTest, KnowsAndChangesOwners)
{
    folder_.write("file", "");
    const passwd* const self = getpwuid(geteuid());
    ASSERT_TRUE(self);
    EXPECT_EQ(files()->getOwner(folder_.wide("file")), PathFunctions::OStoTq(self->pw_name));
    EXPECT_EQ(files()->getOwner(folder_.wide("missing")), L"");
    EXPECT_TRUE(files()->transferOwnership(folder_.wide("file")));
    EXPECT_FALSE(files()->transferOwnership(folder_.wide("missing")));
    constexpr uid_t kNobodys = 3'999'999'999;
    if (chown(folder_.path("file").c_str(), kNobodys, kNobodys) != 0)
        GTEST_SKIP() << "giving files away is not permitted";
    EXPECT_EQ(files()->getOwner(folder_.wide("file")), L"3999999999");
    EXPECT_TRUE(files()->transferOwnership(folder_.wide("file")));
    EXPECT_EQ(status("file").st_uid, geteuid());
    EXPECT_EQ(status("file").st_gid, kNobodys) << "the group stays";
}

TEST_F(OperationsTest, ProbesWhetherAFolderCanBeWritten)
{
    EXPECT_TRUE(files()->isWritable(folder_.wide()));
    EXPECT_EQ(folder_.entries(), 0u);
    EXPECT_FALSE(files()->isWritable(folder_.wide("missing/")));
    folder_.write(".WriteTest", "left behind");
    EXPECT_FALSE(files()->isWritable(folder_.wide())) << "deliberate";
    EXPECT_TRUE(files()->isWritable(folder_.wide()));
    chmod(folder_.path().c_str(), 0555);
    const WithoutPrivilege ordinary;
    EXPECT_FALSE(files()->isWritable(folder_.wide()));
}

TEST_F(OperationsTest, TemporaryNamesAreNewAndWhole)
{
    const Variable temporary("TMPDIR", folder_.path().c_str());
    for (const char* prefix : {"", "a long prefix \xE2\x82\xAC ", "no\xFF"}) {
        const Text name = files()->getTempFileName(PathFunctions::OStoTq(prefix));
        EXPECT_TRUE(name.startsWith(folder_.wide(prefix).view()));
        EXPECT_FALSE(files()->fileExists(name));
        EXPECT_TRUE(files()->openFile(name, iFile::eAccessWrite, iFile::eCreateNew,
                                      iFile::eShareNone, iFile::eDeleteOnClose));
    }
    EXPECT_NE(files()->getTempFileName(L"x"), files()->getTempFileName(L"x"));
    EXPECT_EQ(files()->getTempFileName(L"a/b"), L"");
    EXPECT_EQ(files()->getTempFileName(Text(300, L'x')), L"");
    EXPECT_EQ(folder_.entries(), 0u);
    const Variable doubled("TMPDIR", ("/" + folder_.path()).c_str());
    EXPECT_TRUE(files()->getTempFileName(L"x").startsWith(folder_.wide("x").view()))
        << "no network path";
    const Variable missing("TMPDIR", folder_.path("missing").c_str());
    EXPECT_TRUE(files()->getTempFileName(L"x").startsWith(L"/tmp/x"));
}

TEST(FileManagerTimes, AreShownInLocalTime)
{
    std::optional<Variable> zone(std::in_place, "TZ", "EST5");
    tzset();
    constexpr unsigned long long kTime = 1'794'665'109ull * 10'000'000 + 9'999'999;
    const auto shown = [](unsigned long long time, int date, int clock) {
        return files()->asString(time, static_cast<Manager::eDateDisplay>(date),
                                 static_cast<Manager::eTimeDisplay>(clock));
    };
    EXPECT_EQ(shown(kTime, 1, 1), L"Nov 14, 2026  9:05") << "the hour padded with a space";
    EXPECT_EQ(shown(kTime, 0, 1), L"Nov 14, 2026 9:05") << "no separator but the padding";
    EXPECT_EQ(shown(kTime, 1, 0), L"Nov 14, 2026");
    EXPECT_EQ(shown(kTime, 0, 0), L"Nov 14, 2026");
    EXPECT_EQ(shown(kTime + 10ull * 3600 * 10'000'000, 0, 7), L"Nov 14, 202619:05");
    EXPECT_EQ(shown(0, 1, 0), L"Dec 31, 1969");
    EXPECT_FALSE(shown(~0ull, 1, 1).empty());
    zone.reset();
    tzset();
    const auto now = static_cast<std::uint64_t>(std::time(nullptr)) * 10'000'000;
    EXPECT_NEAR(static_cast<double>(files()->timeNow()), static_cast<double>(now), 5e7);
}

TEST(FileManagerNames, AreComposedAsPublished)
{
    EXPECT_EQ(files()->getUniversalName(L"/media/clip"),
              L"smb:///" + OS()->systemInfo()->getComputerName() + L"/media/clip");
    EXPECT_EQ(getPath(L"/a/b.c"), L"/a/");
    EXPECT_EQ(getPath(L"/a/"), L"/a/");
    EXPECT_EQ(getPath(L"b.c"), L"b.c");
    struct Case
    {
        const wchar_t* name;
        const wchar_t* ext;
        bool matches;
    };
    for (const Case& c : {Case{L"movie.MOV", L".mov", true}, Case{L".mov", L".mov", false},
                          Case{L"mov", L".mov", false}, Case{L"a.mov", L"", false},
                          Case{L"a.\u00C9", L".\u00E9", true}, Case{L"a.mp4", L".mov", false}})
        EXPECT_EQ(PathFunctions::extMatch(c.name, c.ext), c.matches) << c.matches;
}

TEST(FileManagerObjects, OfCompletionWork)
{
    EXPECT_EQ(outputOf([] { EXPECT_FALSE(files()->createAsyncContext(nullptr)); }),
              "assertion failed false at OS/Mac/FileManager line 512\n");
    const auto port = files()->createIOCompletionPort();
    ASSERT_TRUE(port);
    port->terminate();
    EXPECT_EQ(port->getStatus().code_, 2u);
}

TEST_F(OperationsTest, FindsLibrariesWhereTheLoaderDoes)
{
    const Text found = files()->findSysLib(L"libz.so.1");
    ASSERT_FALSE(found.empty());
    EXPECT_TRUE(found.endsWith(L"/libz.so.1"));
    EXPECT_TRUE(files()->openDLL(found)->valid());
    for (const wchar_t* name : {L"z", L"libz"})
        EXPECT_TRUE(files()->openDLL(files()->findSysLib(name))->valid());
    EXPECT_TRUE(files()->findSysLib(L"c").endsWith(L"/libc.so.6")) << "not the linker's script";
    EXPECT_EQ(files()->findSysLib(found), found);
    for (const Text& name : {Text(), Text(L"nosuchlibrary"), Text(L"libz.so.99"), Text(L"lib"),
                             Text(L"/etc/hostname"), Text(L"*"), Text(L"..")})
        EXPECT_EQ(files()->findSysLib(name), L"") << PathFunctions::TqtoOS(name).c_str();
}

TEST(Recycling, PutsThingsWhereTheUserFindsThem)
{
    if (runsInFreshProcess())
        return;
    const HomeFolder home;
    const auto wide = [&](const char* name) {
        return PathFunctions::OStoTq(home.path(name).c_str());
    };
    home.write("file", "text");
    home.write("no\xFFutf8", "bytes");
    fs::create_directories(home.path("folder/inside"));
    fs::create_symlink("nowhere", home.path("link"));
    const std::string trash = home.path(".local/share/Trash/files/");
    for (const char* name : {"file", "no\xFFutf8", "folder", "link"}) {
        EXPECT_TRUE(files()->recycleFile(wide(name))) << name;
        EXPECT_FALSE(fs::exists(fs::symlink_status(home.path(name)))) << name;
        EXPECT_TRUE(fs::exists(fs::symlink_status(trash + name))) << name;
    }
    home.write("file", "second");
    EXPECT_TRUE(files()->recycleFile(wide("file"))) << "the first is not overwritten";
    EXPECT_EQ(home.read(".local/share/Trash/files/file"), "text");
    EXPECT_FALSE(files()->recycleFile(wide("missing")));
    EXPECT_FALSE(files()->recycleFile(L""));
}

TEST(Recycling, TakesTheTrashOfAnotherFileSystem)
{
    if (runsInFreshProcess())
        return;
    const HomeFolder home;
    fs::create_directory(home.path("disk"));
    if (unshare(CLONE_NEWNS) != 0 ||
        mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("none", home.path("disk").c_str(), "tmpfs", 0, "size=128k") != 0)
        GTEST_SKIP() << "mounting a small disk is not permitted";
    home.write("disk/file", "text");
    const auto file = PathFunctions::OStoTq(home.path("disk/file").c_str());
    EXPECT_TRUE(files()->recycleFile(file));
    const std::string trash = "disk/.Trash-" + std::to_string(geteuid()) + "/";
    EXPECT_EQ(home.read(trash + "files/file"), "text");
    EXPECT_NE(home.read(trash + "info/file.trashinfo").find("Path="), std::string::npos);

    fs::remove_all(home.path(trash));
    home.write(trash.substr(0, trash.size() - 1), "in the way");
    home.write("disk/file", "kept");
    OutputCapture errors(OutputCapture::eStderr);
    EXPECT_FALSE(files()->recycleFile(file));
    EXPECT_EQ(errors.text(), "");
    EXPECT_EQ(home.read("disk/file"), "kept");
    umount2(home.path("disk").c_str(), MNT_DETACH);
}
