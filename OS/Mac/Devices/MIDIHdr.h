#pragma once

#include <OS/Devices/iMIDIHdr.h>

#include <cstdint>

/// iMIDIHdr: a length, and always the same room for data behind it.
class MIDIHdr final : public iMIDIHdr
{
public:
    /// What longMsg and unprepareHeader set at most.
    static constexpr std::uint16_t kMaxLength = 256;

    explicit MIDIHdr(std::uint16_t length) : length_(length) {}

    unsigned int getFlags() const override { return 0; }
    unsigned char* getData() override { return data_; }
    unsigned int getBytesRecorded() const override { return length_; }
    void setLength(std::uint16_t length) { length_ = length; }

private:
    std::uint16_t length_;
    unsigned char data_[kDataSize] = {};
};
