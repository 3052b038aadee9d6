#include "OS/Mac/Core/ReplacementFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/file.h>

namespace OSInternal {

namespace {

using Text = LightweightString<char>;

constexpr int kMostLinks = 40; // the kernel's own limit
constexpr unsigned int kMostTemporaries = 1000;
constexpr std::uint32_t kMostNameBytes = 100; // the rest of a long name is left out

bool openFolder(Descriptor& folder, const Text& path)
{
    const auto slash = path.rfind('/');
    const Text part = slash == path.npos ? Text(".") : path.substr(0, slash + 1);
    Descriptor opened(
        openat(folder ? folder.get() : AT_FDCWD, part.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    folder = std::move(opened);
    return bool(folder);
}

Text lastPart(const Text& path)
{
    const auto slash = path.rfind('/');
    return slash == path.npos ? path : path.substr(slash + 1);
}

Text temporaryName(const Text& name, unsigned int number)
{
    std::uint32_t length = std::min(name.size(), kMostNameBytes);
    while (length < name.size() && length > 0 && (name[length] & 0xC0) == 0x80)
        --length; // never half of a character
    return "." + name.substr(0, length) + ".new-" + std::to_string(number).c_str();
}

bool isSame(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool flush(int descriptor)
{
    // A device or a pipe has nothing to flush.
    return fsync(descriptor) == 0 || errno == EINVAL || errno == EROFS;
}

// Makes the rename itself last. Too late to fail: the content is whole either way.
void flushFolder(int folder)
{
    if (const Descriptor readable{openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)})
        fsync(readable.get());
}

bool writeAll(int descriptor, const void* bytes, std::size_t length)
{
    const char* at = static_cast<const char*>(bytes);
    while (length > 0) {
        const ssize_t count = ::write(descriptor, at, length);
        if (count < 0 && errno != EINTR)
            return false;
        if (count > 0) {
            at += count;
            length -= static_cast<std::size_t>(count);
        }
    }
    return true;
}

bool copyAll(int from, int to)
{
    std::array<char, 64 * 1024> buffer;
    off_t offset = 0;
    for (;;) {
        const ssize_t count = pread(from, buffer.data(), buffer.size(), offset);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count == 0;
        if (!writeAll(to, buffer.data(), static_cast<std::size_t>(count)))
            return false;
        offset += count;
    }
}

// Renames only where nothing is; by a second link where the file system can not do that at once.
bool renameToNew(int folder, const char* from, const char* to)
{
    if (renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    return linkat(folder, from, folder, to, 0) == 0 && unlinkat(folder, from, 0) == 0;
}

bool isRefusal(int error)
{
    constexpr int kRefusals[] = {EACCES, EPERM, EROFS,        ENOENT, ENOTDIR,
                                 EISDIR, ELOOP, ENAMETOOLONG, EINVAL};
    return std::find(std::begin(kRefusals), std::end(kRefusals), error) != std::end(kRefusals);
}

} // namespace

ReplacementFile::ReplacementFile(const LightweightString<char>& path)
{
    status_ = path.contains('\0') ? refuse(EINVAL) : resolve(path) ? open() : refuse(errno);
}

ReplacementFile::~ReplacementFile()
{
    discard();
}

bool ReplacementFile::fail(int error)
{
    if (error_ == 0)
        error_ = error;
    return false;
}

ReplacementFile::Status ReplacementFile::refuse(int error)
{
    fail(error);
    return isRefusal(error) ? Status::eRefused : Status::eFailed;
}

// Follows the links at the path's end, also one to a file that is not there yet.
bool ReplacementFile::resolve(LightweightString<char> path)
{
    if (path.empty()) {
        errno = ENOENT;
        return false;
    }
    // A device's links have no meaning as paths (/dev/stdout leads to "pipe:[7]").
    const bool special = stat(path.c_str(), &old_) == 0 && !S_ISREG(old_.st_mode);
    for (int links = 0; links <= kMostLinks; ++links) {
        if (!openFolder(folder_, path))
            return false;
        name_ = lastPart(path);
        std::array<char, PATH_MAX> target;
        const ssize_t length =
            special ? -1 : readlinkat(folder_.get(), name_.c_str(), target.data(), target.size());
        if (length < 0)
            return special || errno == EINVAL || errno == ENOENT;
        path = Text(target.data(), static_cast<std::uint32_t>(length));
    }
    errno = ELOOP;
    return false;
}

ReplacementFile::Status ReplacementFile::open()
{
    if (name_.empty() || name_ == "." || name_ == ".." || S_ISDIR(old_.st_mode))
        return refuse(EISDIR);
    if (old_.st_mode == 0)
        return makeBeside();
    if (faccessat(folder_.get(), name_.c_str(), W_OK, AT_EACCESS) != 0)
        return refuse(errno);
    return S_ISREG(old_.st_mode) ? makeBeside() : Status::eOnlyInPlace;
}

ReplacementFile::Status ReplacementFile::makeBeside()
{
    const mode_t mode = old_.st_mode ? 0600 : 0666;
    for (unsigned int number = 0; number < kMostTemporaries; ++number) {
        temporary_ = temporaryName(name_, number);
        removeAbandoned(temporary_);
        file_ = Descriptor(
            openat(folder_.get(), temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode));
        if (file_ && lockOwn()) {
            removeAbandoned(temporaryName(name_, number + 1));
            takeAttributes();
            return Status::eReady;
        }
        const int error = errno;
        const bool taken = file_ || error == EEXIST;
        file_.reset();
        if (taken)
            continue;
        temporary_.clear();
        if (old_.st_mode != 0 && (error == EACCES || error == EPERM || error == EROFS))
            return Status::eOnlyInPlace;
        return refuse(error);
    }
    temporary_.clear();
    return refuse(EEXIST);
}

// @return false when another process took the file for abandoned before it was locked
bool ReplacementFile::lockOwn()
{
    struct stat info;
    if (flock(file_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return false;
    return fstat(file_.get(), &info) == 0 && info.st_nlink > 0;
}

// Removes a hidden file that nobody has locked. Whoever removes one holds its lock meanwhile, so
// that the name can not have come to mean another file.
void ReplacementFile::removeAbandoned(const LightweightString<char>& name)
{
    const Descriptor file{
        openat(folder_.get(), name.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC)};
    struct stat opened, named;
    if (file && fstat(file.get(), &opened) == 0 && S_ISREG(opened.st_mode) &&
        flock(file.get(), LOCK_EX | LOCK_NB) == 0 &&
        fstatat(folder_.get(), name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
        isSame(opened, named))
        unlinkat(folder_.get(), name.c_str(), 0);
}

void ReplacementFile::takeAttributes()
{
    if (old_.st_mode == 0)
        return;
    mode_t mode = old_.st_mode & 07777;
    struct stat own = {};
    fstat(file_.get(), &own);
    if (own.st_uid != old_.st_uid && fchown(file_.get(), old_.st_uid, static_cast<gid_t>(-1)) != 0)
        mode &= ~static_cast<mode_t>(S_ISUID);
    // Another group must not get what the old one was allowed.
    if (own.st_gid != old_.st_gid && fchown(file_.get(), static_cast<uid_t>(-1), old_.st_gid) != 0)
        mode = (mode & ~static_cast<mode_t>(S_ISGID | S_IRWXG)) | ((mode & S_IRWXO) << 3);
    fchmod(file_.get(), mode);
}

bool ReplacementFile::openInPlace()
{
    if (status_ != Status::eOnlyInPlace || file_)
        return false;
    file_ = Descriptor(openat(folder_.get(), name_.c_str(), O_RDWR | O_TRUNC | O_CLOEXEC));
    if (!file_)
        file_ = Descriptor(openat(folder_.get(), name_.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
    return file_ || fail(errno);
}

bool ReplacementFile::write(const void* bytes, std::size_t length)
{
    return error_ == 0 && (writeAll(file_.get(), bytes, length) || fail(errno));
}

bool ReplacementFile::commit(Existing existing)
{
    if (!file_)
        return fail(EBADF);
    const bool done = error_ == 0 && (flush(file_.get()) || fail(errno)) && putInPlace(existing);
    discard();
    return done;
}

bool ReplacementFile::putInPlace(Existing existing)
{
    if (temporary_.empty())
        return true;
    const char* from = temporary_.c_str();
    const bool renamed = existing == Existing::eKeep
                             ? renameToNew(folder_.get(), from, name_.c_str())
                             : renameat(folder_.get(), from, folder_.get(), name_.c_str()) == 0;
    if (!renamed) {
        const int error = errno;
        const bool refused = error == EBUSY || error == EPERM || error == EACCES || error == EXDEV;
        return (refused && existing == Existing::eReplace && old_.st_mode != 0 && copyOver()) ||
               fail(error);
    }
    temporary_.clear();
    flushFolder(folder_.get());
    return true;
}

bool ReplacementFile::copyOver()
{
    const Descriptor target{
        openat(folder_.get(), name_.c_str(), O_WRONLY | O_TRUNC | O_NOFOLLOW | O_CLOEXEC)};
    return (target && copyAll(file_.get(), target.get()) && flush(target.get())) || fail(errno);
}

void ReplacementFile::discard()
{
    if (!temporary_.empty())
        unlinkat(folder_.get(), temporary_.c_str(), 0);
    temporary_.clear();
    file_.reset();
}

} // namespace OSInternal
