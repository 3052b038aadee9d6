#include "OS/Mac/Files/FileContents.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace OSInternal {

namespace {

constexpr off_t kPieceBytes = 4 << 20;
constexpr std::size_t kBufferBytes = 1 << 20;

bool writeAll(int descriptor, const char* bytes, std::size_t length, off_t offset)
{
    while (length > 0) {
        const ssize_t count = pwrite(descriptor, bytes, length, offset);
        if (count < 0 && errno != EINTR)
            return false;
        if (count > 0) {
            bytes += count;
            length -= static_cast<std::size_t>(count);
            offset += count;
        }
    }
    return true;
}

class ContentsCopy
{
public:
    ContentsCopy(int from, int to, const iFileManager::ProgressCallback& progress)
        : from_(from), to_(to), progress_(progress)
    {
    }

    bool run()
    {
        if (!report(0))
            return false;
        off_t at = 0;
        for (;;) {
            const off_t data = lseek(from_, at, SEEK_DATA);
            if (data < 0 && errno == ENXIO)
                return endInHole(at);
            // Some file systems know no holes, and some files not even positions.
            const off_t hole = data < 0 ? -1 : lseek(from_, data, SEEK_HOLE);
            at = std::max<off_t>(data, at);
            const off_t end = copyRange(at, hole);
            if (end < 0)
                return false;
            if (hole < 0 || end < hole)
                return true; // the file's end
            at = end;
        }
    }

private:
    bool report(off_t done)
    {
        struct stat info;
        const off_t total = fstat(from_, &info) == 0 ? std::max(info.st_size, done) : done;
        if (!progress_ ||
            progress_(static_cast<std::uint64_t>(done), static_cast<std::uint64_t>(total)))
            return true;
        errno = ECANCELED;
        return false;
    }

    // What is behind the last data is a hole, up to the file's size.
    bool endInHole(off_t at)
    {
        struct stat info;
        if (fstat(from_, &info) != 0)
            return false;
        if (info.st_size <= at)
            return true;
        return ftruncate(to_, info.st_size) == 0 && report(info.st_size);
    }

    // @param end -1 means up to the file's end @return where it stopped, -1 on failure
    off_t copyRange(off_t at, off_t end)
    {
        while (end < 0 || at < end) {
            const off_t piece = end < 0 ? kPieceBytes : std::min(kPieceBytes, end - at);
            const off_t count = copyPiece(at, static_cast<std::size_t>(piece));
            if (count <= 0)
                return count < 0 ? -1 : at;
            at += count;
            if (!report(at))
                return -1;
        }
        return at;
    }

    // @return bytes copied; 0 at the file's end, -1 on failure
    off_t copyPiece(off_t at, std::size_t length)
    {
        if (inKernel_) {
            off_t readAt = at;
            off_t writeAt = at;
            const ssize_t count = copy_file_range(from_, &readAt, to_, &writeAt, length, 0);
            if (count > 0)
                return count;
            if (count < 0 && (errno == ENOSPC || errno == EDQUOT || errno == EFBIG))
                return -1;
            // Between file systems, or of a kind that the kernel cannot copy; generated files claim
            // to be empty.
            inKernel_ = count == 0 || errno == EINTR;
        }
        return copyThroughBuffer(at, length);
    }

    off_t copyThroughBuffer(off_t at, std::size_t length)
    {
        buffer_.resize(kBufferBytes);
        off_t done = 0;
        while (static_cast<std::size_t>(done) < length) {
            const std::size_t part =
                std::min(buffer_.size(), length - static_cast<std::size_t>(done));
            const ssize_t count = pread(from_, buffer_.data(), part, at + done);
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 0)
                return -1;
            if (count == 0)
                break;
            if (!writeAll(to_, buffer_.data(), static_cast<std::size_t>(count), at + done))
                return -1;
            done += count;
        }
        return done;
    }

    int from_;
    int to_;
    const iFileManager::ProgressCallback& progress_;
    bool inKernel_ = true;
    std::vector<char> buffer_;
};

// A list or a value of extended attributes; empty on failure. Either may change meanwhile.
template <class Read>
std::string readAttribute(Read read)
{
    for (int attempt = 0; attempt < 3; ++attempt) {
        const ssize_t size = read(nullptr, 0);
        if (size <= 0)
            return {};
        std::string result(static_cast<std::size_t>(size), '\0');
        const ssize_t count = read(result.data(), result.size());
        if (count >= 0) {
            result.resize(static_cast<std::size_t>(count));
            return result;
        }
    }
    return {};
}

// Those of users and the access list; others are the system's own business.
bool isCopied(std::string_view name)
{
    return name.starts_with("user.") || name == "system.posix_acl_access";
}

void copyExtendedAttributes(int from, int to)
{
    const std::string names =
        readAttribute([&](char* bytes, std::size_t size) { return flistxattr(from, bytes, size); });
    for (std::string_view rest = names; !rest.empty();) {
        const std::string name(rest.substr(0, rest.find('\0')));
        rest.remove_prefix(std::min(rest.size(), name.size() + 1));
        if (!isCopied(name))
            continue;
        const std::string value = readAttribute([&](char* bytes, std::size_t size) {
            return fgetxattr(from, name.c_str(), bytes, size);
        });
        fsetxattr(to, name.c_str(), value.data(), value.size(), 0);
    }
}

} // namespace

bool copyContents(int from, int to, const iFileManager::ProgressCallback& progress)
{
    return ContentsCopy(from, to, progress).run();
}

void copyAttributes(int from, const struct stat& info, int to)
{
    mode_t mode = info.st_mode & 07777;
    // Who may not give the file away must not lend its own rights to whoever runs it.
    if (fchown(to, info.st_uid, info.st_gid) != 0 &&
        (fchown(to, static_cast<uid_t>(-1), info.st_gid) != 0 || info.st_uid != geteuid()))
        mode &= ~static_cast<mode_t>(S_ISUID | S_ISGID);
    copyExtendedAttributes(from, to);
    fchmod(to, mode);
    const timespec times[] = {info.st_atim, info.st_mtim};
    futimens(to, times);
}

} // namespace OSInternal
