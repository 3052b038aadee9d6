#pragma once

#include <OS/Files/iFile.h>
#include <OS/Threads/iCriticalSection.h>

#include <atomic>

class iUtils;

/// iFile on a POSIX descriptor.
///
/// Each transfer is one system call: a short one, and one that a signal interrupted (handlers
/// installed without SA_RESTART), is returned as it is.
///
/// The position of a regular file is kept here and each transfer names it, which spares a
/// positioned one the call that seeks and any mix with another thread's positionAt; a forked child
/// has a position of its own. Pipes and devices have theirs in the kernel.
class File final : public iFile
{
public:
    /// Never throws for a file that cannot be opened: ask isOpen().
    /// @param osPath what to open, which is not always the conversion of `name`
    File(const LightweightString<wchar_t>& name, const LightweightString<char>& osPath,
         unsigned int access, eOpenBehaviour behaviour, eShareMode share, std::uint32_t flags);
    /// The path as FileManager::TqtoOS converts it.
    File(const LightweightString<wchar_t>& name, unsigned int access, eOpenBehaviour behaviour,
         eShareMode share, std::uint32_t flags);
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() override;

    LightweightString<wchar_t> getFileName() const override { return name_; }
    unsigned int read(void* buffer, unsigned int length) override;
    unsigned int readAt(unsigned long long offset, void* buffer, unsigned int length) override;
    bool readAsync(void* buffer, unsigned int length, Tq::Ptr<iAsyncContext> context) override;
    bool readAtAsync(unsigned long long offset, void* buffer, unsigned int length,
                     Tq::Ptr<iAsyncContext> context) override;
    bool write(void* buffer, unsigned int length) override;
    bool writeAsync(void* buffer, unsigned int length, Tq::Ptr<iAsyncContext> context) override;
    bool writeAt(unsigned long long offset, void* buffer, unsigned int length) override;
    bool writeAtAsync(unsigned long long offset, void* buffer, unsigned int length,
                      Tq::Ptr<iAsyncContext> context) override;
    bool positionAt(unsigned long long offset) override;
    std::int64_t getPosition() const override;
    std::uint64_t getTime(eTimeType type) const override;
    bool setTime(eTimeType type, const unsigned long long& time) override;
    std::int64_t getSize() const override;
    bool truncate(unsigned long long size) override;
    bool isOpen() const override { return fd_ != -1; }

private:
    struct Seek
    {
        bool done_;
        bool asked_; ///< whether the system was
    };
    Seek seek(unsigned long long offset);
    template <class Call, class CallAt>
    ssize_t transfer(std::int64_t position, Call call, CallAt callAt);
    unsigned int readTimed(std::int64_t position, void* buffer, unsigned int length, double& nowMs);
    bool writeOnce(std::int64_t position, const void* buffer, unsigned int length);

    Tq::Ptr<iCriticalSection> lock_;
    std::int32_t fd_ = -1;
    std::uint32_t flags_;
    LightweightString<char> osPath_;
    LightweightString<wchar_t> name_;
    iUtils* utils_;            // whose clock is looked at around every read
    bool ownPosition_ = false; // a file whose position is kept here
    std::atomic<std::int64_t> position_{0};
    std::atomic<std::int64_t> seekLimit_{0}; // the system accepts positions up to here
};
