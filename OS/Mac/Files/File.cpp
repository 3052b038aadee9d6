#include "OS/Mac/Files/File.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Threads/LockRank.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Threads/iThreadManager.h>

#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

using Lock = std::lock_guard<iCriticalSection>;

constexpr std::uint64_t k100nsPerSecond = 10'000'000;
constexpr mode_t kMode = 0777; // before the process's mask
constexpr double kSlowReadMs = 10.0;
constexpr double kSlowPositionedReadMs = 20.0;

int openFlags(unsigned int access, iFile::eOpenBehaviour behaviour)
{
    int flags = O_CLOEXEC | O_NOCTTY;
    if (access == iFile::eAccessReadWrite)
        flags |= O_RDWR;
    else
        flags |= (access & iFile::eAccessWrite) ? O_WRONLY : O_RDONLY;
    switch (behaviour) {
    case iFile::eCreateNew:
        return flags | O_CREAT | O_EXCL;
    case iFile::eCreateAlways:
    case iFile::eTruncateExisting:
        return flags | O_CREAT | O_TRUNC;
    case iFile::eOpenExisting:
        break;
    }
    return flags;
}

int openRepeatedly(const LightweightString<char>& path, int flags)
{
    if (path.contains('\0'))
        return -1;
    int descriptor = -1;
    do
        descriptor = open(path.c_str(), flags, kMode);
    while (descriptor == -1 && errno == EINTR);
    return descriptor;
}

bool isUnsupported(const char* place)
{
    OSInternal::reportAssertion("false", place);
    return false;
}

} // namespace

File::File(const LightweightString<wchar_t>& name, const LightweightString<char>& osPath,
           unsigned int access, eOpenBehaviour behaviour, eShareMode /*share*/, std::uint32_t flags)
    : flags_(flags), osPath_(osPath), name_(name), utils_(OS()->utils())
{
    fd_ = openRepeatedly(osPath_, openFlags(access, behaviour));
    struct stat info;
    ownPosition_ =
        fd_ != -1 && fstat(fd_, &info) == 0 && (S_ISREG(info.st_mode) || S_ISBLK(info.st_mode));
    lock_ = OS()->threadMgr()->createCriticalSection(0);
    OSInternal::setLockRank(*lock_, OSInternal::LockRank::eFile);
}

File::File(const LightweightString<wchar_t>& name, unsigned int access, eOpenBehaviour behaviour,
           eShareMode share, std::uint32_t flags)
    : File(name, OSInternal::pathToSystem(name), access, behaviour, share, flags)
{
}

File::~File()
{
    if (fd_ != -1)
        close(fd_);
    if ((flags_ & eDeleteOnClose) && !osPath_.contains('\0'))
        unlink(osPath_.c_str());
}

// A position below one that the system has accepted is accepted too.
File::Seek File::seek(unsigned long long offset)
{
    constexpr unsigned long long kHighest = std::numeric_limits<std::int64_t>::max();
    const auto position = static_cast<std::int64_t>(offset);
    if (ownPosition_ && offset <= kHighest &&
        position <= seekLimit_.load(std::memory_order_relaxed)) {
        position_.store(position, std::memory_order_relaxed);
        return {true, false};
    }
    if (lseek(fd_, position, SEEK_SET) == -1)
        return {false, true};
    position_.store(position, std::memory_order_relaxed);
    seekLimit_.store(position, std::memory_order_relaxed);
    return {true, true};
}

// @param position where an own position lets it start
// @param call transfers at the kernel's position @param callAt at the given one
template <class Call, class CallAt>
ssize_t File::transfer(std::int64_t position, Call call, CallAt callAt)
{
    if (!ownPosition_)
        return call();
    const ssize_t count = callAt(position);
    // A positionAt that came meanwhile wins, as good as always: a locked instruction for the rest
    // would cost every transfer.
    if (count > 0 && position_.load(std::memory_order_relaxed) == position)
        position_.store(position + count, std::memory_order_relaxed);
    return count;
}

// @param nowMs the clock before the read and, on return, behind it
unsigned int File::readTimed(std::int64_t position, void* buffer, unsigned int length,
                             double& nowMs)
{
    const ssize_t count = transfer(
        position, [&] { return ::read(fd_, buffer, length); },
        [&](std::int64_t at) { return pread(fd_, buffer, length, at); });
    const double beforeMs = std::exchange(nowMs, utils_->timeNow());
    if (nowMs - beforeMs > kSlowReadMs)
        OSInternal::printLine("%-9.3f: read elapsed %.3fms\n", nowMs / 1000.0, nowMs - beforeMs);
    return static_cast<unsigned int>(count);
}

unsigned int File::read(void* buffer, unsigned int length)
{
    const Lock lock(*lock_);
    double nowMs = utils_->timeNow();
    return readTimed(position_.load(std::memory_order_relaxed), buffer, length, nowMs);
}

unsigned int File::readAt(unsigned long long offset, void* buffer, unsigned int length)
{
    const Lock lock(*lock_);
    const double startMs = utils_->timeNow();
    double nowMs = startMs;
    const Seek sought = seek(offset);
    if (!sought.done_)
        return 0;
    if (sought.asked_) {
        nowMs = utils_->timeNow();
        if (nowMs - startMs > kSlowPositionedReadMs)
            OSInternal::printLine("seek elapsed %.3fms\n", nowMs - startMs);
    }
    const unsigned int count = readTimed(static_cast<std::int64_t>(offset), buffer, length, nowMs);
    if (nowMs - startMs > kSlowPositionedReadMs)
        OSInternal::printLine("read elapsed %.3fms\n", nowMs - startMs);
    return count;
}

bool File::writeOnce(std::int64_t position, const void* buffer, unsigned int length)
{
    const ssize_t count = transfer(
        position, [&] { return ::write(fd_, buffer, length); },
        [&](std::int64_t at) { return pwrite(fd_, buffer, length, at); });
    return count == static_cast<ssize_t>(length);
}

bool File::write(void* buffer, unsigned int length)
{
    const Lock lock(*lock_);
    return writeOnce(position_.load(std::memory_order_relaxed), buffer, length);
}

bool File::writeAt(unsigned long long offset, void* buffer, unsigned int length)
{
    const Lock lock(*lock_);
    return seek(offset).done_ && writeOnce(static_cast<std::int64_t>(offset), buffer, length);
}

bool File::positionAt(unsigned long long offset)
{
    return seek(offset).done_;
}

std::int64_t File::getPosition() const
{
    return ownPosition_ ? position_.load(std::memory_order_relaxed) : lseek(fd_, 0, SEEK_CUR);
}

std::int64_t File::getSize() const
{
    struct stat info;
    return fstat(fd_, &info) == 0 ? info.st_size : 0;
}

std::uint64_t File::getTime(eTimeType type) const
{
    struct stat info;
    if (fstat(fd_, &info) != 0)
        return 0;
    const time_t seconds = type == eLastWriteTime  ? info.st_mtime
                           : type == eCreationTime ? info.st_ctime
                                                   : info.st_atime;
    return static_cast<std::uint64_t>(seconds) * k100nsPerSecond;
}

bool File::setTime(eTimeType type, const unsigned long long& time)
{
    if (type == eCreationTime)
        return false;
    const timespec both = {static_cast<time_t>(time / k100nsPerSecond), 0};
    const timespec times[] = {both, both};
    return futimens(fd_, times) == 0;
}

bool File::truncate(unsigned long long /*size*/)
{
    return false;
}

bool File::readAsync(void*, unsigned int, Tq::Ptr<iAsyncContext>)
{
    return isUnsupported("OS/Mac/File line 163");
}

bool File::readAtAsync(unsigned long long, void*, unsigned int, Tq::Ptr<iAsyncContext>)
{
    return isUnsupported("OS/Mac/File line 170");
}

bool File::writeAsync(void*, unsigned int, Tq::Ptr<iAsyncContext>)
{
    return isUnsupported("OS/Mac/File line 190");
}

bool File::writeAtAsync(unsigned long long, void*, unsigned int, Tq::Ptr<iAsyncContext>)
{
    return isUnsupported("OS/Mac/File line 208");
}
