#include "OS/Mac/Files/FileCopy.h"

#include "OS/Mac/Core/Descriptor.h"
#include "OS/Mac/Core/ReplacementFile.h"
#include "OS/Mac/Files/FileContents.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace OSInternal {

namespace {

using Path = LightweightString<char>;

constexpr std::uint32_t kMostNameBytes = 100; // the rest of a long name is left out

bool isSame(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool isUnchanged(const struct stat& a, const struct stat& b)
{
    return isSame(a, b) && a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
           a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

// Looks before it opens: opening alone can set a device in motion, or wait for a pipe's writer.
Descriptor openRegular(const Path& path, struct stat& info)
{
    if (stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode))
        return {};
    Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file || fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode))
        return {};
    return file;
}

// All but the last step, which puts it in its place.
bool fill(ReplacementFile& to, int from, const struct stat& info,
          const iFileManager::ProgressCallback& progress)
{
    if (to.status() != ReplacementFile::Status::eReady)
        return false;
    fchmod(to.descriptor(), S_IRUSR | S_IWUSR); // nobody else's until it has the right mode
    if (!copyContents(from, to.descriptor(), progress))
        return false;
    copyAttributes(from, info, to.descriptor());
    return true;
}

// A hidden name beside a path, each time another.
Path nameBeside(const Path& path)
{
    static std::atomic<unsigned int> last{0};
    const auto slash = path.rfind('/');
    const Path folder = slash == path.npos ? Path() : path.substr(0, slash + 1);
    const Path name = path.substr(folder.size(), kMostNameBytes);
    const std::string suffix = ".moved-" + std::to_string(getpid()) + "-" +
                               std::to_string(last.fetch_add(1, std::memory_order_relaxed));
    return folder + "." + name + suffix.c_str();
}

// Leaves a moment between looking and renaming: for file systems that offer nothing better.
bool renameWhereNothingIs(const Path& from, const Path& to)
{
    struct stat info;
    if (lstat(to.c_str(), &info) == 0) {
        errno = EEXIST;
        return false;
    }
    return errno == ENOENT && rename(from.c_str(), to.c_str()) == 0;
}

bool renameTo(const Path& from, const Path& to, bool failIfExists)
{
    if (!failIfExists)
        return rename(from.c_str(), to.c_str()) == 0;
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    struct stat info;
    if (lstat(from.c_str(), &info) != 0)
        return false;
    // A folder is only ever put over an empty one.
    if (!S_ISDIR(info.st_mode)) {
        if (link(from.c_str(), to.c_str()) == 0)
            return unlink(from.c_str()) == 0;
        if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS)
            return false;
    }
    return renameWhereNothingIs(from, to);
}

// Two links of one file: the system's rename leaves both. By a name of its own the old one is
// removed without asking whether the two are one entry spelled in two ways.
bool removeSecondLink(const Path& from, const Path& to)
{
    const Path aside = nameBeside(from);
    if (!renameTo(from, aside, true))
        return false;
    if (rename(aside.c_str(), to.c_str()) != 0) {
        renameTo(aside, from, true);
        return false;
    }
    return unlink(aside.c_str()) == 0 || errno == ENOENT;
}

void flushFolderOf(const Path& path)
{
    const auto slash = path.rfind('/');
    const Path folder = slash == path.npos ? Path(".") : path.substr(0, slash + 1);
    if (const Descriptor opened{open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)})
        fsync(opened.get());
}

bool copyFileTo(const Path& from, const struct stat& expected, const Path& to)
{
    struct stat info, after;
    const Descriptor source = openRegular(from, info);
    if (!source || !isSame(info, expected))
        return false;
    ReplacementFile target(to);
    return fill(target, source.get(), info, {}) && fstat(source.get(), &after) == 0 &&
           isUnchanged(info, after) && target.commit(ReplacementFile::Existing::eKeep);
}

bool copyLinkTo(const Path& from, const struct stat& info, const Path& to)
{
    char target[PATH_MAX];
    const ssize_t length = readlink(from.c_str(), target, sizeof target);
    if (length <= 0 || length == static_cast<ssize_t>(sizeof target))
        return false;
    if (symlink(std::string(target, static_cast<std::size_t>(length)).c_str(), to.c_str()) != 0)
        return false;
    // Neither can make the move fail: a link works without them.
    const timespec times[] = {info.st_atim, info.st_mtim};
    utimensat(AT_FDCWD, to.c_str(), times, AT_SYMLINK_NOFOLLOW);
    [[maybe_unused]] const int refused = lchown(to.c_str(), info.st_uid, info.st_gid);
    return true;
}

// Copies under a hidden name, renames that, and only then removes the old one.
bool moveAcross(const Path& from, const Path& to, bool failIfExists)
{
    struct stat info, existing;
    if (lstat(from.c_str(), &info) != 0 || (!S_ISREG(info.st_mode) && !S_ISLNK(info.st_mode)) ||
        (failIfExists && lstat(to.c_str(), &existing) == 0))
        return false;
    const Path aside = nameBeside(to);
    if (!(S_ISLNK(info.st_mode) ? copyLinkTo(from, info, aside) : copyFileTo(from, info, aside)))
        return false;
    if (!renameTo(aside, to, failIfExists)) {
        unlink(aside.c_str());
        return false;
    }
    flushFolderOf(to);
    return unlink(from.c_str()) == 0;
}

} // namespace

bool copyFile(const Path& from, const Path& to, bool failIfExists,
              const iFileManager::ProgressCallback& progress)
{
    struct stat info, existing;
    if (failIfExists && lstat(to.c_str(), &existing) == 0)
        return false;
    const Descriptor source = openRegular(from, info);
    if (!source || (stat(to.c_str(), &existing) == 0 && isSame(info, existing)))
        return false;
    ReplacementFile target(to);
    return fill(target, source.get(), info, progress) &&
           target.commit(failIfExists ? ReplacementFile::Existing::eKeep
                                      : ReplacementFile::Existing::eReplace);
}

bool moveFile(const Path& from, const Path& to, bool failIfExists)
{
    if (renameTo(from, to, failIfExists)) {
        struct stat old, moved;
        if (lstat(from.c_str(), &old) != 0 || lstat(to.c_str(), &moved) != 0 ||
            !isSame(old, moved) || S_ISDIR(old.st_mode) || old.st_nlink < 2)
            return true;
        return removeSecondLink(from, to);
    }
    return errno == EXDEV && moveAcross(from, to, failIfExists);
}

} // namespace OSInternal
