#include "OS/Mac/Files/DiskDrive.h"
#include "support/HostTree.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <functional>
#include <sched.h>
#include <set>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Drives = std::vector<Tq::Ptr<iDiskDrive>>;

constexpr int kMayNotMount = 77;

// Runs code in a child that sees mounts of its own, and tells its exit status: what it mounts is
// gone with it.
int inOwnMounts(const std::function<int()>& code)
{
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const bool may = unshare(CLONE_NEWNS) == 0 &&
                         mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
        const int status = may ? code() : kMayNotMount;
        std::fflush(stdout);
        _exit(status);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

Drives drivesOf(iDiskDrive::eType type)
{
    Drives drives;
    EXPECT_TRUE(OS()->fileMgr()->getDiskDrives(type, drives));
    return drives;
}

} // namespace

TEST(DiskDriveTest, ListsTheDrivesOfThisSystem)
{
    const Drives all = drivesOf(iDiskDrive::eAny);
    ASSERT_FALSE(all.empty()) << "there is a root";
    EXPECT_EQ(all[0]->getPath(), L"/");
    EXPECT_EQ(OS()->fileMgr()->getNumDiskDrives(iDiskDrive::eAny), all.size());
    std::size_t byType = 0;
    for (int type = iDiskDrive::eFixed; type <= iDiskDrive::eMemory; ++type)
        byType += drivesOf(static_cast<iDiskDrive::eType>(type)).size();
    EXPECT_EQ(byType, all.size()) << "each is of one type";
    std::set<std::wstring> paths;
    for (const auto& drive : all) {
        EXPECT_EQ(drive->getPath().back(), L'/');
        EXPECT_FALSE(drive->getID().empty() || drive->getName().empty() ||
                     drive->getFileSystem().empty());
        EXPECT_NE(drive->getType(), iDiskDrive::eAny);
        EXPECT_LE(drive->getFreeSpace(), drive->getTotalSpace());
        EXPECT_TRUE(paths.insert(drive->getPath().c_str()).second);
        const auto again = OS()->fileMgr()->openDriveByID(drive->getID());
        ASSERT_TRUE(again);
        EXPECT_EQ(again->getID(), drive->getID());
    }
    EXPECT_FALSE(OS()->fileMgr()->openDriveByID(L"no such drive"));
    EXPECT_FALSE(OS()->fileMgr()->openDriveByID(L""));
}

TEST(DiskDriveTest, OpensTheDriveOfAPath)
{
    struct statvfs info;
    ASSERT_EQ(statvfs("/", &info), 0);
    const auto root = OS()->fileMgr()->openDrive(L"/");
    ASSERT_TRUE(root);
    EXPECT_EQ(root->getPath(), L"/");
    EXPECT_EQ(root->getTotalSpace(), std::uint64_t(info.f_blocks) * info.f_frsize);
    EXPECT_EQ(root->isReadOnly(), (info.f_flag & ST_RDONLY) != 0);
    const auto proc = OS()->fileMgr()->openDrive(L"/proc/self/../self/status");
    ASSERT_TRUE(proc) << "a path lies on its volume also where the volume is not listed";
    EXPECT_EQ(proc->getPath(), L"/proc/");
    EXPECT_FALSE(OS()->fileMgr()->openDrive(L"/no/such/path"));
    EXPECT_FALSE(OS()->fileMgr()->openDrive(L""));
}

TEST(DiskDriveTest, FollowsAVolumeThatComesAndGoes)
{
    HostTree host;
    host.folder("/volume two");
    const std::string path = host.path() + "/volume two";
    const std::wstring wide(path.begin(), path.end());
    const int status = inOwnMounts([&] {
        if (mount("tmpfs", path.c_str(), "tmpfs", MS_NOSUID, "size=1m") != 0)
            return kMayNotMount;
        const Drives memory = drivesOf(iDiskDrive::eMemory);
        const auto found = std::find_if(memory.begin(), memory.end(), [&](const auto& drive) {
            return drive->getPath() == (wide + L"/").c_str();
        });
        if (found == memory.end())
            return 1;
        const Tq::Ptr<iDiskDrive> drive = *found;
        if (drive->getName() != L"volume two" || drive->getFileSystem() != L"tmpfs" ||
            drive->isReadOnly())
            return 2;
        if (drive->getTotalSpace() != 1024 * 1024 || drive->getFreeSpace() != 1024 * 1024)
            return 3;
        std::ofstream(path + "/file") << std::string(100'000, 'x');
        if (drive->getFreeSpace() > 1024 * 1024 - 100'000)
            return 4;
        const auto ofFile = OS()->fileMgr()->openDrive((wide + L"/file").c_str());
        if (!ofFile || ofFile->getID() != drive->getID())
            return 5;
        if (mount(nullptr, path.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, "size=1m") != 0 ||
            !OS()->fileMgr()->openDriveByID(drive->getID())->isReadOnly())
            return 6;
        if (umount(path.c_str()) != 0)
            return 7;
        if (drive->getTotalSpace() != 0 || drive->getFreeSpace() != 0)
            return 8; // not those of what lies below
        return OS()->fileMgr()->openDriveByID(drive->getID()) ? 9 : 0;
    });
    if (status == kMayNotMount)
        GTEST_SKIP() << "this user may not mount";
    EXPECT_EQ(status, 0);
}

TEST(DiskDriveTest, CarriesNamesThatAreNoText)
{
    OSInternal::Volume volume;
    volume.id_ = "//nas/media";
    volume.path_ = "/media/caf\xE9";
    volume.name_ = "\xC3\xA4";
    const DiskDrive drive(volume, {});
    EXPECT_EQ(drive.getID(), L"//nas/media");
    EXPECT_EQ(drive.getPath(), L"/media/caf\xDCE9/") << "and the way back gives the same bytes";
    EXPECT_EQ(drive.getName(), L"\xE4");
    EXPECT_EQ(drive.getFreeSpace(), 0u);
}
