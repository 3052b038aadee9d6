#include "OS/Mac/Files/QtFile.h"
#include "Files/WideFolder.h"
#include "OS/Mac/Files/File.h"
#include "support/ChildProcess.h"
#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>

#include <QDateTime>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>

namespace {

// "folder://name" names a file of the folder "folder:" for the system, and a scheme for us.
class QtFileTest : public testing::Test
{
protected:
    QtFileTest() { std::filesystem::create_directory(folder_.path("scheme:")); }

    LightweightString<wchar_t> uri(const std::string& name) const
    {
        return folder_.wide("scheme://" + name);
    }
    Tq::Ptr<iFile> open(const std::string& name, unsigned int access = iFile::eAccessRead,
                        std::uint32_t flags = 0,
                        iFile::eOpenBehaviour behaviour = iFile::eOpenExisting) const
    {
        return OS()->fileMgr()->openFile(uri(name), access, behaviour, iFile::eShareNone, flags);
    }

    WideFolder folder_;
};

} // namespace

TEST_F(QtFileTest, ASchemeAnywhereInThePathMakesOne)
{
    folder_.write("scheme:/a", "0123456789");
    EXPECT_TRUE(dynamic_cast<QtFile*>(open("a").get()));
    EXPECT_FALSE(dynamic_cast<QtFile*>(
        OS()->fileMgr()
            ->openFile(folder_.wide("scheme:/a"), 1, iFile::eOpenExisting, iFile::eShareNone, 0)
            .get()));
    EXPECT_FALSE(open("missing"));
    for (const wchar_t* path :
         {L"smb://nas.invalid/share/x", L"//nas.invalid/share/x", L"http://x"})
        EXPECT_FALSE(
            OS()->fileMgr()->openFile(path, 1, iFile::eOpenExisting, iFile::eShareNone, 0));
}

// The child sees a mount table in which the folder is a share.
TEST_F(QtFileTest, AMountedNetworkPathIsALocalFile)
{
    folder_.write("clip", "text");
    const std::string table =
        folder_.write("table", "20 1 8:1 / / rw - ext4 /dev/sda1 rw\n21 20 0:50 / " +
                                   folder_.path() + " rw - cifs //nas/media rw\n");
    const int status = inChild([&] {
        const int kNotPermitted = 77;
        if (unshare(CLONE_NEWNS) != 0 ||
            mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount(table.c_str(), "/proc/self/mountinfo", nullptr, MS_BIND, nullptr) != 0)
            return kNotPermitted;
        iFileManager* files = OS()->fileMgr();
        for (const wchar_t* path : {L"//nas/media/clip", L"smb://NAS/media/clip"}) {
            const auto file = files->openFile(path, 1, iFile::eOpenExisting, iFile::eShareNone, 0);
            char text[8];
            if (!dynamic_cast<File*>(file.get()) || file->read(text, 8) != 4 ||
                file->getFileName() != path || !files->fileExists(path))
                return 1;
        }
        return files->copyFile(L"//nas/media/clip", L"//nas/media/new/../copy", true, {}) &&
                       files->createDirectory(L"//nas/media/a/b") &&
                       !files->fileExists(L"//nas/other/clip") &&
                       !files->createDirectory(L"//nas/other/a")
                   ? 0
                   : 2;
    });
    if (status == 77)
        GTEST_SKIP() << "mounting is not permitted";
    EXPECT_EQ(status, 0);
    EXPECT_EQ(folder_.read("copy"), "text");
    EXPECT_TRUE(std::filesystem::is_directory(folder_.path("a/b")));
}

TEST_F(QtFileTest, TransfersThroughTheDevice)
{
    folder_.write("scheme:/a", "0123456789");
    const auto file = open("a", iFile::eAccessReadWrite);
    ASSERT_TRUE(file);
    char buffer[100];
    EXPECT_EQ(file->readAt(4, buffer, 100), 6u);
    EXPECT_EQ(file->read(buffer, 100), 0u);
    EXPECT_EQ(file->readAt(2, buffer, 1), 1u);
    EXPECT_EQ(buffer[0], '2');
    EXPECT_EQ(file->getPosition(), 3);
    EXPECT_TRUE(file->writeAt(8, buffer, 1));
    EXPECT_EQ(file->getSize(), 10);
    EXPECT_EQ(file->getFileName(), uri("a"));
    EXPECT_EQ(file->readAt(~0ull, buffer, 100), 1u)
        << "a refused seek is ignored, and read goes on";
    EXPECT_FALSE(open("a")->write(buffer, 1));
    EXPECT_EQ(open("a", iFile::eAccessWrite)->read(buffer, 1), 0u) << "a failure is 0 here";
}

TEST_F(QtFileTest, TheBehaviourIsIgnored)
{
    EXPECT_FALSE(open("new", iFile::eAccessRead, 0, iFile::eCreateAlways));
    EXPECT_TRUE(open("new", iFile::eAccessReadWrite, 0, iFile::eOpenExisting)) << "made";
    EXPECT_TRUE(open("new", iFile::eAccessReadWrite, 0, iFile::eCreateNew));
}

TEST_F(QtFileTest, TakesDeleteOnCloseAndReportsOtherFlags)
{
    folder_.write("scheme:/a", "text");
    Tq::Ptr<iFile> file;
    EXPECT_EQ(outputOf([&] { file = open("a", iFile::eAccessRead, 0x21); }),
              "QtFile::QtFile() : Unexpected flags 1\n");
    EXPECT_TRUE(file);
    EXPECT_EQ(outputOf([&] { open("a", iFile::eAccessRead, 0x20); }), "");
    file = {};
    EXPECT_TRUE(std::filesystem::is_empty(folder_.path("scheme:")));

    std::filesystem::create_directory(folder_.path("scheme:/folder"));
    EXPECT_FALSE(open("folder", iFile::eAccessRead, 0x20));
    EXPECT_TRUE(std::filesystem::exists(folder_.path("scheme:/folder")))
        << "what could not be opened stays";
}

TEST_F(QtFileTest, CountsTimesInMilliseconds)
{
    folder_.write("scheme:/a", "text");
    const timespec times[] = {{1'600'000'000, 250'000'000}, {1'500'000'000, 750'000'000}};
    utimensat(AT_FDCWD, folder_.path("scheme:/a").c_str(), times, 0);
    const auto file = open("a", iFile::eAccessReadWrite);
    EXPECT_EQ(file->getTime(iFile::eLastWriteTime), 1'500'000'000'750u);
    EXPECT_EQ(file->getTime(iFile::eLastAccessTime), 1'600'000'000'250u);
    EXPECT_EQ(outputOf([&] {
                  EXPECT_EQ(file->getTime(iFile::eCreationTime),
                            static_cast<std::uint64_t>(QDateTime().toMSecsSinceEpoch()));
              }),
              "assertion failed false at OS/Mac/QtFile line 134\n");
    EXPECT_FALSE(file->setTime(iFile::eLastWriteTime, 0));
}

TEST_F(QtFileTest, RefusesWhatItCannotDoWithALine)
{
    folder_.write("scheme:/a", "text");
    const auto file = open("a", iFile::eAccessReadWrite);
    char byte = 'x';
    EXPECT_EQ(outputOf([&] {
                  EXPECT_FALSE(file->readAsync(&byte, 1, {}));
                  EXPECT_FALSE(file->readAtAsync(0, &byte, 1, {}));
                  EXPECT_FALSE(file->writeAsync(&byte, 1, {}));
                  EXPECT_FALSE(file->writeAtAsync(0, &byte, 1, {}));
                  EXPECT_FALSE(file->truncate(0));
              }),
              "assertion failed false at OS/Mac/QtFile line 66\n"
              "assertion failed false at OS/Mac/QtFile line 72\n"
              "assertion failed false at OS/Mac/QtFile line 87\n"
              "assertion failed false at OS/Mac/QtFile line 102\n"
              "assertion failed false at OS/Mac/QtFile line 152\n");
    EXPECT_EQ(folder_.read("scheme:/a"), "text");
}
