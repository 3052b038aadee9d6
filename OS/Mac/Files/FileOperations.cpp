#include "OS/Host/Desktop/Trash.h"
#include "OS/Mac/Files/FileCopy.h"
#include "OS/Mac/Files/FileManager.h"
#include "OS/Mac/Files/LocalPath.h"

#include <cerrno>
#include <fcntl.h>
#include <pwd.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

using Text = LightweightString<wchar_t>;
using Path = LightweightString<char>;
using OSInternal::localPath;

constexpr mode_t kAllMayWrite = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr mode_t kFolderMode = 0777; // before the process's mask

bool isFolder(const Path& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// Makes what is missing above a path; what is there, or cannot be made, shows at the last step.
void makeFoldersAbove(const Path& path)
{
    for (auto slash = path.find('/', 1); slash != path.npos; slash = path.find('/', slash + 1))
        mkdir(path.substr(0, slash).c_str(), kFolderMode);
}

bool isHidden(const Text& path)
{
    const auto last = path.find_last_not_of(L"/");
    if (last == path.npos)
        return false;
    const auto slash = path.rfind(L'/', last);
    const Text name = path.substr(slash == path.npos ? 0 : slash + 1).substr(0, last - slash);
    return name.startsWith(L'.') && name != L"." && name != L"..";
}

unsigned int bitsOf(const struct stat& info)
{
    unsigned int bits = 0;
    if ((info.st_mode & kAllMayWrite) == 0)
        bits |= iFileManager::eAttributeReadOnly;
    if (S_ISDIR(info.st_mode))
        bits |= iFileManager::eAttributeDirectory;
    return bits;
}

// @return empty for a number that has no name
std::string userName(uid_t user)
{
    std::vector<char> buffer(1024);
    for (;;) {
        passwd entry;
        passwd* found = nullptr;
        const int error = getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found);
        if (error == ERANGE && buffer.size() < (1u << 20))
            buffer.resize(buffer.size() * 2);
        else if (error != EINTR)
            return found ? found->pw_name : std::string();
    }
}

} // namespace

bool FileManager::copyFile(const Text& from, const Text& to, bool failIfExists,
                           const ProgressCallback& progress)
{
    return OSInternal::copyFile(localPath(from), localPath(to), failIfExists, progress);
}

bool FileManager::moveFile(const Text& from, const Text& to, bool failIfExists)
{
    return OSInternal::moveFile(localPath(from), localPath(to), failIfExists);
}

bool FileManager::deleteFile(const Text& path)
{
    return unlink(localPath(path).c_str()) == 0;
}

bool FileManager::recycleFile(const Text& path)
{
    return OSInternal::moveToTrash(localPath(path));
}

bool FileManager::touchFile(const Text& path, iFile::eTimeType type)
{
    if (type == iFile::eCreationTime)
        return false;
    const bool written = type == iFile::eLastWriteTime;
    const timespec times[] = {{0, written ? UTIME_OMIT : UTIME_NOW},
                              {0, written ? UTIME_NOW : UTIME_OMIT}};
    return utimensat(AT_FDCWD, localPath(path).c_str(), times, 0) == 0;
}

bool FileManager::transferOwnership(const Text& path)
{
    return chown(localPath(path).c_str(), geteuid(), static_cast<gid_t>(-1)) == 0;
}

Text FileManager::getOwner(const Text& path)
{
    struct stat info;
    if (stat(localPath(path).c_str(), &info) != 0)
        return {};
    const std::string name = userName(info.st_uid);
    return OStoTq((name.empty() ? std::to_string(info.st_uid) : name).c_str());
}

std::uint64_t FileManager::getFileSize(const Text& path)
{
    if (isVirtual(path))
        return FileProviderManager::getFileSize(path);
    struct stat info;
    if (stat(localPath(path).c_str(), &info) != 0 || S_ISDIR(info.st_mode))
        return 0;
    return static_cast<std::uint64_t>(info.st_size);
}

bool FileManager::fileExists(const Text& path)
{
    if (isVirtual(path))
        return FileProviderManager::fileExists(path);
    struct stat info;
    return stat(localPath(path).c_str(), &info) == 0;
}

bool FileManager::setFileAttributes(const Text& path, unsigned int attributes)
{
    const Path osPath = localPath(path);
    struct stat info;
    if (stat(osPath.c_str(), &info) != 0)
        return false;
    const mode_t mode = info.st_mode & 07777;
    return chmod(osPath.c_str(),
                 (attributes & eAttributeReadOnly) ? mode & ~kAllMayWrite : mode | S_IWUSR) == 0;
}

unsigned int FileManager::getFileAttributes(const Text& path)
{
    if (isVirtual(path))
        return FileProviderManager::fileExists(path) ? eAttributeNormal : eAttributesUnknown;
    const Path osPath = localPath(path);
    struct stat info, target;
    if (lstat(osPath.c_str(), &info) != 0)
        return eAttributesUnknown;
    unsigned int bits = isHidden(path) ? eAttributeHidden : 0u;
    if (S_ISLNK(info.st_mode))
        bits |= eAttributeLink;
    if (stat(osPath.c_str(), &target) == 0)
        bits |= bitsOf(target);
    return bits == 0 ? eAttributeNormal : bits;
}

bool FileManager::createDirectory(const Text& path)
{
    const Path osPath = localPath(path);
    if (mkdir(osPath.c_str(), kFolderMode) == 0)
        return true;
    if (errno != ENOENT)
        return isFolder(osPath);
    makeFoldersAbove(osPath);
    return mkdir(osPath.c_str(), kFolderMode) == 0 || isFolder(osPath);
}

bool FileManager::deleteDirectory(const Text& path)
{
    return rmdir(localPath(path).c_str()) == 0;
}
