#pragma once

#include <OS/Files/iFile.h>
#include <OS/Threads/iCriticalSection.h>

#include <QFile>

/// iFile on the toolkit's file, for paths that name a resource by a scheme ("://").
class QtFile final : public iFile
{
public:
    /// Opens the path as given: for reading and writing with access 3, for writing with 2 (which
    /// empties the file, the toolkit's way), else for reading. Behaviour and share mode are
    /// ignored.
    ///
    /// Flags other than eDeleteOnClose print "QtFile::QtFile() : Unexpected flags %d\n".
    QtFile(const LightweightString<wchar_t>& name, unsigned int access, eOpenBehaviour behaviour,
           eShareMode share, std::uint32_t flags);
    QtFile(const QtFile&) = delete;
    QtFile& operator=(const QtFile&) = delete;
    ~QtFile() override;

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
    /// Milliseconds, unlike local files; deliberate.
    std::uint64_t getTime(eTimeType type) const override;
    bool setTime(eTimeType type, const unsigned long long& time) override;
    std::int64_t getSize() const override;
    bool truncate(unsigned long long size) override;
    bool isOpen() const override;

private:
    Tq::Ptr<iCriticalSection> lock_;
    QFile file_;
    bool deleteOnClose_;
    LightweightString<wchar_t> name_;
};
