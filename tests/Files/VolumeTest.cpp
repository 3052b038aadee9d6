#include "OS/Host/Desktop/NetworkVolume.h"
#include "support/HostTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using OSInternal::Volume;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string kRoot = "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n";

class VolumeTest : public testing::Test
{
protected:
    std::vector<Volume> volumes(const std::string& lines)
    {
        host_.setMounts(lines);
        return OSInternal::readVolumes(host_.sources()).value();
    }
    std::vector<std::string> paths(const std::string& lines)
    {
        std::vector<std::string> result;
        for (const Volume& volume : volumes(lines))
            result.push_back(volume.path_);
        return result;
    }

    HostTree host_;
};

} // namespace

TEST_F(VolumeTest, ListsWhatAUserWouldName)
{
    const struct
    {
        const char* fields_; // root, path, options, file system, source
        bool listed_;
        iDiskDrive::eType type_;
    } cases[] = {
        {"8:2 / /home rw - ext4 /dev/sda2 rw", true, iDiskDrive::eFixed},
        {"0:40 / /home rw - btrfs /dev/sda2 rw", true, iDiskDrive::eFixed},
        {"0:40 / /tank rw - zfs tank rw", true, iDiskDrive::eFixed},
        {"0:40 / /media/host rw - virtiofs share rw", true, iDiskDrive::eFixed},
        {"0:40 / /home/a/pool rw - fuse.mergerfs a:b rw", true, iDiskDrive::eFixed},
        {"0:40 / /mnt/ram rw - tmpfs tmpfs rw", true, iDiskDrive::eMemory},
        {"8:2 / /run/media/anna/STICK rw - vfat /dev/sdb1 rw", true, iDiskDrive::eFixed},
        {"0:40 / /mnt/nas rw - cifs //nas/media rw", true, iDiskDrive::eNetwork},
        {"0:40 / /mnt/nas rw - nfs4 nas:/export rw", true, iDiskDrive::eNetwork},
        {"0:40 / /mnt/nas rw - fuse.sshfs anna@nas: rw", true, iDiskDrive::eNetwork},
        {"0:40 / /mnt/dav rw - fuse https://nas/dav rw", true, iDiskDrive::eNetwork},
        {"0:40 / /proc rw - proc proc rw", false, iDiskDrive::eAny},
        {"0:40 / /sys/fs/cgroup rw - cgroup2 cgroup2 rw", false, iDiskDrive::eAny},
        {"0:40 / /dev/shm rw - tmpfs tmpfs rw", false, iDiskDrive::eAny},
        {"0:40 / /run/user/0 rw - tmpfs tmpfs rw", false, iDiskDrive::eAny},
        {"0:40 / /run/user/0/doc rw - fuse.portal portal rw", false, iDiskDrive::eAny},
        {"0:40 / /home/a/gvfs rw - fuse.gvfsd-fuse gvfsd-fuse rw", false, iDiskDrive::eAny},
        {"0:40 / /x rw - autofs systemd-1 rw", false, iDiskDrive::eAny},
        {"0:40 / /x rw - somethingfs none rw", false, iDiskDrive::eAny},
        {"0:40 / /var/lib/docker/overlay2/x rw - overlay overlay rw", false, iDiskDrive::eAny},
        {"8:2 / /boot/efi rw - vfat /dev/sda2 rw", false, iDiskDrive::eAny},
        {"7:3 / /snap/core/1 ro - squashfs /dev/loop3 ro", false, iDiskDrive::eAny},
        {"7:3 / /opt/image ro - squashfs /dev/loop3 ro", false, iDiskDrive::eAny},
        {"7:3 / /mnt/disc ro - iso9660 /dev/loop3 ro", true, iDiskDrive::eFixed},
        {"0:40 / /tmp/.mount_edit1 ro - fuse.edit.AppImage edit ro", false, iDiskDrive::eAny},
    };
    for (const auto& each : cases) {
        const std::vector<Volume> all = volumes(kRoot + "2 1 " + each.fields_ + "\n");
        ASSERT_EQ(all.size(), each.listed_ ? 2u : 1u) << each.fields_;
        EXPECT_EQ(all[0].path_, "/");
        EXPECT_TRUE(!each.listed_ || all[1].type_ == each.type_) << each.fields_;
    }
    EXPECT_THAT(paths("1 0 0:30 / / rw - overlay overlay rw\n"), ElementsAre("/"))
        << "the root is one whatever it is made of";
    EXPECT_FALSE(OSInternal::readVolumes({"/nowhere", ""})) << "no mount table";
}

TEST_F(VolumeTest, ListsADeviceOnceAtItsBestPlace)
{
    EXPECT_THAT(paths("1 0 8:1 /@ / rw - btrfs /dev/sda1 rw\n"
                      "2 1 8:1 / /mnt/whole rw - btrfs /dev/sda1 rw\n"
                      "3 1 8:1 /@home /home rw - btrfs /dev/sda1 rw\n"),
                ElementsAre("/"));
    EXPECT_THAT(paths("1 0 0:9 / / rw - overlay overlay rw\n"
                      "2 1 8:1 /part /a rw - ext4 /dev/sda1 rw\n"
                      "3 1 8:1 / /mnt/whole rw - ext4 /dev/sda1 rw\n"),
                ElementsAre("/", "/mnt/whole"));
    host_.write("/etc/hosts", "");
    host_.folder("/data");
    EXPECT_THAT(paths("1 0 0:9 / / rw - overlay overlay rw\n"
                      "2 1 8:1 /c/hosts /etc/hosts rw - ext4 /dev/sda1 rw\n"
                      "3 1 8:1 /c/data /data rw - ext4 /dev/sda1 rw\n"),
                ElementsAre("/", "/data"))
        << "a single file is no volume, and no place of one";
    EXPECT_THAT(paths("2 1 0:5 / /b rw - cifs //nas/media rw\n"
                      "3 1 0:5 / /a rw - cifs //nas/media rw\n"),
                ElementsAre("/a", "/b"))
        << "network volumes at every place, ordered by path";
}

TEST_F(VolumeTest, TellsFixedRemovableAndOpticalApart)
{
    const std::string usb = "pci0000:00/usb2/2-1/host3/block/sdb";
    host_.device("8:16", usb);
    host_.device("8:17", usb + "/sdb1");
    host_.write("/sys/devices/" + usb + "/sdb1/partition", "1\n");
    host_.write("/sys/devices/" + usb + "/removable", "0\n"); // a USB disk says so
    host_.device("11:0", "pci0000:00/ata1/block/sr0");
    host_.write("/sys/devices/pci0000:00/ata1/block/sr0/device/type", "5\n");
    host_.write("/sys/devices/pci0000:00/ata1/block/sr0/removable", "1\n");
    host_.device("179:0", "pci0000:00/mmc_host/block/mmcblk0");
    host_.write("/sys/devices/pci0000:00/mmc_host/block/mmcblk0/device/type", "SD\n");
    host_.device("179:8", "pci0000:00/mmc_host/block/mmcblk1");
    host_.write("/sys/devices/pci0000:00/mmc_host/block/mmcblk1/device/type", "MMC\n");
    host_.device("8:32", "pci0000:00/ata2/block/sdc");
    host_.write("/sys/devices/pci0000:00/ata2/block/sdc/removable", "1\n");
    host_.device("254:0", "virtual/block/dm-0"); // encrypted, on the USB partition
    host_.link("/sys/devices/virtual/block/dm-0/slaves/sdb1",
               host_.path() + "/sys/devices/" + usb + "/sdb1");
    const struct
    {
        const char* number_;
        iDiskDrive::eType type_;
    } cases[] = {{"8:16", iDiskDrive::eRemovable},  {"8:17", iDiskDrive::eRemovable},
                 {"11:0", iDiskDrive::eOptical},    {"179:0", iDiskDrive::eRemovable},
                 {"179:8", iDiskDrive::eFixed},     {"8:32", iDiskDrive::eRemovable},
                 {"254:0", iDiskDrive::eRemovable}, {"99:9", iDiskDrive::eFixed}};
    for (const auto& each : cases)
        EXPECT_EQ(
            volumes(std::string("2 1 ") + each.number_ + " / /m rw - ext4 /dev/x rw")[0].type_,
            each.type_)
            << each.number_;
}

TEST_F(VolumeTest, KnowsDevicesByUuidAndLabel)
{
    host_.device("8:2", "pci0000:00/ata1/block/sda/sda2");
    host_.link("/dev/disk/by-uuid/1234-ABCD", "../../sda2");
    host_.link("/dev/disk/by-uuid/other", "../../sda1");
    host_.link("/dev/disk/by-label/Rushes\\x20\\xc3\\xa4\\x2f1\\x00\\x4", "../../sda2");
    const Volume known = volumes("2 1 8:2 / /m rw - vfat /dev/sda2 rw")[0];
    EXPECT_EQ(known.id_, "1234-ABCD");
    EXPECT_EQ(known.name_, "Rushes \xC3\xA4/1\\x00\\x4");
    const Volume byName = volumes("2 1 0:50 / /m rw - btrfs /dev/sda2 rw")[0];
    EXPECT_EQ(byName.id_, "1234-ABCD") << "found through the device that the source names";

    const Volume plain = volumes("2 1 9:9 / /media/Card rw - vfat /dev/sdz9 rw")[0];
    EXPECT_EQ(plain.id_, "/dev/sdz9");
    EXPECT_EQ(plain.name_, "Card");
    EXPECT_EQ(volumes(kRoot)[0].name_, "/");
    EXPECT_EQ(volumes("2 1 8:2 / / rw - ext4 /dev/root rw")[0].id_, "1234-ABCD");
    EXPECT_EQ(volumes("2 1 0:9 / /mnt/ram rw - tmpfs tmpfs rw")[0].id_, "tmpfs:/mnt/ram")
        << "their sources are all alike";
    EXPECT_EQ(volumes("2 1 0:9 / /m rw - cifs //nas/media rw")[0].id_, "//nas/media");
}

TEST_F(VolumeTest, TellsTheAddressesOfKernelMounts)
{
    const struct
    {
        const char* fields_;
        const char* address_;
    } cases[] = {
        {"/ /m rw - cifs //Nas/My\\040Media rw", "smb://Nas/My Media"},
        {"/ /m rw - cifs //nas/media/ rw", "smb://nas/media"},
        {"/ /m rw - smb3 \\134\\134nas\\134media rw", "smb://nas/media"},
        {"/ /m rw - cifs //nas/media/sub rw", "smb://nas/media/sub"},
        {"/sub /m rw - cifs //nas/media rw", "smb://nas/media/sub"},     // a part bound elsewhere
        {"/sub /m rw - cifs //nas/media/sub rw", "smb://nas/media/sub"}, // told in both places
        {"/sub/x /m rw - cifs //nas/media/sub rw", "smb://nas/media/sub/x"},
        {"/ /m rw - nfs nas:/export/a rw", "nfs://nas/export/a"},
        {"/ /m rw - nfs4 [fe80::1]:/export rw", "nfs://[fe80::1]/export"},
        {"/ /m rw - fuse.sshfs anna@nas: rw", "sftp://anna@nas"},
        {"/ /m rw - fuse.sshfs anna@nas:/srv rw", "sftp://anna@nas/srv"},
        {"/ /m rw - fuse https://nas/dav rw", "https://nas/dav"},
        {"/ /m rw - cifs x rw", "cifs://x"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(volumes(std::string("2 1 0:9 ") + each.fields_)[0].address_, each.address_);
}

TEST_F(VolumeTest, TellsTheDesktopsNetworkVolumes)
{
    const struct
    {
        const char* folder_;
        const char* address_; // null: no network volume
        const char* name_;
    } cases[] = {
        {"smb-share:server=nas,share=media", "smb://nas/media", "media"},
        {"smb-share:port=4455,server=127.0.0.1,share=my%20media,user=anna",
         "smb://anna@127.0.0.1:4455/my media", "my media"},
        {"smb-share:domain=HOME,server=nas,share=a%2Cb,user=anna", "smb://HOME;anna@nas/a,b",
         "a,b"},
        {"afp-volume:host=nas,user=anna,volume=Disk", "afp://anna@nas/Disk", "Disk"},
        {"sftp:host=nas,user=anna", "sftp://anna@nas", "nas"},
        {"dav:host=nas,ssl=true,prefix=%2Fremote%2Fdav", "davs://nas/remote/dav", "dav"},
        {"dav:host=nas,ssl=false", "dav://nas", "nas"},
        {"nfs:host=nas,prefix=%2Fexport", "nfs://nas/export", "export"},
        {"smb-server:server=nas", nullptr, nullptr},
        {"smb-share:server=nas", nullptr, nullptr},
        {"gphoto2:host=camera", nullptr, nullptr},
        {"archive:host=file", nullptr, nullptr},
        {"smb-share", nullptr, nullptr},
        {"smb-share:", nullptr, nullptr},
        {"smb-share:,=,server,share==,%", nullptr, nullptr},
    };
    for (const auto& each : cases) {
        const auto share = OSInternal::parseDesktopShare(each.folder_);
        ASSERT_EQ(share.has_value(), each.address_ != nullptr) << each.folder_;
        if (!share)
            continue;
        EXPECT_EQ(share->address_, each.address_);
        EXPECT_EQ(share->name_, each.name_);
    }
}

TEST_F(VolumeTest, ListsTheDesktopsFolderWhileItsServiceRuns)
{
    host_.setDesktopFolder("/run/user/5/gvfs");
    host_.folder("/run/user/5/gvfs/smb-share:server=nas,share=media");
    host_.folder("/run/user/5/gvfs/mtp:host=phone");
    EXPECT_THAT(paths(kRoot), ElementsAre("/")) << "nobody answers in that folder";
    const std::string service = "2 1 0:60 / /run/user/5/gvfs rw - fuse.gvfsd-fuse gvfsd-fuse rw\n";
    const std::vector<Volume> all = volumes(kRoot + service);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[1].path_, "/run/user/5/gvfs/smb-share:server=nas,share=media");
    EXPECT_EQ(all[1].id_, "//nas/media");
    EXPECT_EQ(all[1].fileSystem_, "smb");
    EXPECT_TRUE(all[1].byDesktop_);
    EXPECT_EQ(all[1].type_, iDiskDrive::eNetwork);

    const auto holding = OSInternal::volumeHolding(all[1].path_ + "/clip.mov", host_.sources());
    ASSERT_TRUE(holding);
    EXPECT_EQ(holding->path_, all[1].path_);
    EXPECT_TRUE(OSInternal::isStillMounted(all[1], host_.sources()));
    std::filesystem::remove(host_.path() + all[1].path_);
    EXPECT_FALSE(OSInternal::isStillMounted(all[1], host_.sources()));
}

TEST_F(VolumeTest, NoticesThatAVolumeIsGone)
{
    const Volume stick = volumes(kRoot + "2 1 8:17 / /m rw - vfat /dev/sdb1 rw\n")[1];
    EXPECT_TRUE(OSInternal::isStillMounted(stick, host_.sources()));
    host_.setMounts(kRoot + "2 1 8:33 / /m rw - vfat /dev/sdc1 rw\n");
    EXPECT_FALSE(OSInternal::isStillMounted(stick, host_.sources())) << "another at its place";
    host_.setMounts(kRoot);
    EXPECT_FALSE(OSInternal::isStillMounted(stick, host_.sources()));
    EXPECT_THAT(OSInternal::volumesOf(OSInternal::MountTable::parse(""), host_.sources()),
                IsEmpty());
}
