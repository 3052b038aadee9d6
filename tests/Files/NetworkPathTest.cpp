#include "OS/Mac/Files/NetworkPath.h"
#include "OS/Mac/Files/NetworkAddress.h"
#include "support/HostTree.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>

#include <gtest/gtest.h>

#include <fstream>

using OSInternal::NetworkAddress;
using OSInternal::Volume;

namespace {

Volume volumeAt(const char* address, const std::string& path, bool byDesktop = false)
{
    Volume volume;
    volume.address_ = address;
    volume.path_ = path;
    volume.byDesktop_ = byDesktop;
    return volume;
}

std::string resolve(const std::string& address, const std::vector<Volume>& volumes)
{
    return OSInternal::resolveNetworkPath(LightweightString<char>(address.c_str()), volumes)
        .c_str();
}

} // namespace

TEST(NetworkPathTest, FindsTheMountOfAnAddress)
{
    const std::vector<Volume> volumes = {
        volumeAt("smb://Nas/Media", "/mnt/media"),
        volumeAt("smb://nas/media/deep/er", "/mnt/deep"),
        volumeAt("smb://nas/my media", "/mnt/my"),
        volumeAt("smb://anna@host:4455/share", "/run/share", true),
        volumeAt("smb://[fe80::1]/six", "/mnt/six"),
        volumeAt("nfs://nas/Export", "/mnt/nfs"),
        volumeAt("sftp://anna@nas", "/mnt/ssh"),
        volumeAt("https://nas/dav", "/mnt/dav"),
        volumeAt("", "/home"),
    };
    const struct
    {
        const char* address_;
        const char* path_;
    } cases[] = {
        {"smb://nas/media/clip.mov", "/mnt/media/clip.mov"},
        {"smb://NAS/mEDIA/Clip.MOV", "/mnt/media/Clip.MOV"}, // the case is kept below the share
        {"SMB://nas/media", "/mnt/media"},
        {"smb://nas/media/", "/mnt/media"},
        {"smb://nas//media///a/./b", "/mnt/media/a/b"},
        {"smb://nas:445/media/a", "/mnt/media/a"}, // the usual port
        {"smb://nas:446/media/a", ""},
        {"smb://nas/media/deep/er/x", "/mnt/deep/x"}, // the mount that reaches furthest
        {"smb://nas/media/deep/erx", "/mnt/media/deep/erx"},
        {"smb://nas/medi", ""},
        {"smb://nas/mediaX/a", ""},
        {"smb://nas2/media/a", ""},
        {"smb://nas", ""},
        {"smb://", ""},
        {"smb:///media", ""},
        {"", ""},
        {"/mnt/media", ""},
        {"smb://nas/my media/a b", "/mnt/my/a b"},
        {"smb://nas/my%20media/a", "/mnt/my/a"}, // no share of the literal name
        {"smb://nas/media/100%.mov", "/mnt/media/100%.mov"},
        {"smb://nas/media/50%25", "/mnt/media/50%25"}, // literally, where neither exists
        {"smb://host:4455/share/a", "/run/share/a"},   // a user who is not named is any
        {"smb://Anna@host:4455/share/a", "/run/share/a"},
        {"smb://otto@host:4455/share/a", ""},
        {"smb://host/share/a", ""},
        {"smb://[FE80::1]/six/a", "/mnt/six/a"},
        {"smb://[fe80::1]:445/six/a", "/mnt/six/a"},
        {"nfs://nas/Export/a", "/mnt/nfs/a"},
        {"nfs://nas/export/a", ""}, // such servers tell the case apart
        {"sftp://nas/srv/a", "/mnt/ssh/srv/a"},
        {"https://nas/dav/a", "/mnt/dav/a"},
        // Out of the share: nowhere, however it is written.
        {"smb://nas/media/a/../b", "/mnt/media/b"},
        {"smb://nas/media/..", ""},
        {"smb://nas/media/../media/a", ""},
        {"smb://nas/media/a/../../my media/b", ""},
        {"smb://nas/../nas/media/a", ""},
        {"smb://nas/media/deep/er/../x", "/mnt/media/deep/x"},
        {"nfs://nas/Export/../../etc", ""},
    };
    for (const auto& each : cases)
        EXPECT_EQ(resolve(each.address_, volumes), each.path_) << each.address_;
}

TEST(NetworkPathTest, PrefersWhatCanBeWrittenThenTheSystems)
{
    Volume readOnly = volumeAt("smb://nas/media", "/mnt/ro");
    readOnly.readOnly_ = true;
    const Volume desktop = volumeAt("smb://nas/media", "/run/gvfs", true);
    const Volume kernel = volumeAt("smb://nas/media", "/mnt/rw");
    EXPECT_EQ(resolve("smb://nas/media/a", {readOnly, desktop}), "/run/gvfs/a");
    EXPECT_EQ(resolve("smb://nas/media/a", {desktop, kernel, readOnly}), "/mnt/rw/a");
}

TEST(NetworkPathTest, DecodesOnlyWhereTheLiteralNameIsMissing)
{
    HostTree host;
    host.write("/share/a%20b", "");
    host.write("/share/c d", "");
    host.write("/share/e%20f", "");
    host.write("/share/e f", "");
    host.write("/secret", "");
    const std::vector<Volume> volumes = {volumeAt("smb://nas/media", host.path() + "/share")};
    const std::string share = host.path() + "/share";
    EXPECT_EQ(resolve("smb://nas/media/a%20b", volumes), share + "/a%20b");
    EXPECT_EQ(resolve("smb://nas/media/c%20d", volumes), share + "/c d");
    EXPECT_EQ(resolve("smb://nas/media/e%20f", volumes), share + "/e%20f");
    EXPECT_EQ(resolve("smb://nas/media/new%20file", volumes), share + "/new%20file");
    for (const char* hidden : {"%2e%2e/secret", "%2E%2E%2Fsecret", "..%2fsecret",
                               "x/%2e%2e/%2e%2e/secret", "c%20d%00", "%2e%2e/share/c%20d"}) {
        const std::string literal = share + "/" + hidden;
        EXPECT_EQ(resolve(std::string("smb://nas/media/") + hidden, volumes), literal)
            << "nothing outside of the share, nothing with a zero byte";
    }
}

TEST(NetworkPathTest, AnswersOnTheRunningSystem)
{
    EXPECT_TRUE(OSInternal::resolveNetworkPath("smb://nowhere.invalid/share/x").empty());
    EXPECT_FALSE(OS()->fileMgr()->openDrive(L"//nowhere.invalid/share/x"));
}
