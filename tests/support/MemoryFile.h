#pragma once

#include <OS/Files/iFile.h>

#include <algorithm>
#include <cstring>
#include <string>

/// A file whose bytes are in memory: what a provider of the application would hand out.
class MemoryFile : public iFile
{
public:
    explicit MemoryFile(std::string bytes, bool open = true) : bytes_(std::move(bytes)), open_(open)
    {
    }

    LightweightString<wchar_t> getFileName() const override { return L"memory"; }
    unsigned int read(void* buffer, unsigned int length) override
    {
        const std::size_t count =
            std::min<std::size_t>(length, bytes_.size() - std::min(position_, bytes_.size()));
        std::memcpy(buffer, bytes_.data() + position_, count);
        position_ += count;
        return static_cast<unsigned int>(count);
    }
    unsigned int readAt(unsigned long long offset, void* buffer, unsigned int length) override
    {
        positionAt(offset);
        return read(buffer, length);
    }
    bool write(void* buffer, unsigned int length) override
    {
        bytes_.replace(std::min(position_, bytes_.size()), length, static_cast<char*>(buffer),
                       length);
        position_ += length;
        return true;
    }
    bool writeAt(unsigned long long offset, void* buffer, unsigned int length) override
    {
        positionAt(offset);
        return write(buffer, length);
    }
    bool readAsync(void*, unsigned int, Tq::Ptr<iAsyncContext>) override { return false; }
    bool readAtAsync(unsigned long long, void*, unsigned int, Tq::Ptr<iAsyncContext>) override
    {
        return false;
    }
    bool writeAsync(void*, unsigned int, Tq::Ptr<iAsyncContext>) override { return false; }
    bool writeAtAsync(unsigned long long, void*, unsigned int, Tq::Ptr<iAsyncContext>) override
    {
        return false;
    }
    bool positionAt(unsigned long long offset) override
    {
        position_ = std::min<std::size_t>(offset, bytes_.size());
        return true;
    }
    std::int64_t getPosition() const override { return static_cast<std::int64_t>(position_); }
    std::uint64_t getTime(eTimeType) const override { return 0; }
    bool setTime(eTimeType, const unsigned long long&) override { return false; }
    std::int64_t getSize() const override { return static_cast<std::int64_t>(bytes_.size()); }
    bool truncate(unsigned long long) override { return false; }
    bool isOpen() const override { return open_; }

private:
    std::string bytes_;
    std::size_t position_ = 0;
    bool open_;
};
