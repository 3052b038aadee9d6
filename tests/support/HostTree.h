#pragma once

#include "OS/Host/Desktop/Volume.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

/// A folder that stands for the root of a computer: its mount table, its devices.
class HostTree
{
public:
    HostTree()
    {
        char name[] = "/tmp/hosttreeXXXXXX";
        root_ = mkdtemp(name);
    }
    ~HostTree() { std::filesystem::remove_all(root_); }
    HostTree(const HostTree&) = delete;
    HostTree& operator=(const HostTree&) = delete;

    OSInternal::VolumeSources sources() const { return {root_, desktopFolder_}; }
    void setDesktopFolder(const std::string& path) { desktopFolder_ = path; }
    void setMounts(const std::string& lines) { write("/proc/self/mountinfo", lines); }

    void write(const std::string& path, const std::string& text)
    {
        std::filesystem::create_directories(std::filesystem::path(root_ + path).parent_path());
        std::ofstream(root_ + path) << text;
    }
    void link(const std::string& path, const std::string& target)
    {
        std::filesystem::create_directories(std::filesystem::path(root_ + path).parent_path());
        std::filesystem::create_symlink(target, root_ + path);
    }
    void folder(const std::string& path) { std::filesystem::create_directories(root_ + path); }

    /// A disk or a partition of one. @param number such as "8:1" @param folder below /sys/devices,
    /// ending in the name
    void device(const std::string& number, const std::string& folder)
    {
        const std::string name = folder.substr(folder.rfind('/') + 1);
        this->folder("/sys/devices/" + folder);
        link("/sys/dev/block/" + number, "../../devices/" + folder);
        link("/sys/class/block/" + name, "../../devices/" + folder);
        write("/dev/" + name, "");
    }

    const std::string& path() const { return root_; }

private:
    std::string root_;
    std::string desktopFolder_;
};
