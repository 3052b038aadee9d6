#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/iObject.h>

#include <array>
#include <cstdint>
#include <vector>

/// Conversions, clocks and diagnostics, reached as OS()->utils(). Every operation may be called
/// from any thread at any time.
class OS_API iUtils : public iObject
{
public:
    /// 16 bytes of a random identifier (RFC 4122, version 4).
    using UUID = std::array<std::uint8_t, 16>;

    /// One wide character per byte, without decoding; null gives an empty string.
    virtual LightweightString<wchar_t> widen(const char* text) = 0;
    /// The reverse of widen: the low byte of each character; null gives an empty string.
    virtual LightweightString<char> narrow(const wchar_t* text) = 0;
    virtual LightweightString<char> toUTF8(const LightweightString<wchar_t>& text) = 0;
    /// @param text may be null, which gives an empty string
    /// @param length bytes; -1 (and any other negative value) means up to the terminator
    virtual LightweightString<wchar_t> fromUTF8(const char* text, int length) = 0;

    /// Whole milliseconds of the monotonic clock.
    virtual double timeNow() = 0;
    /// timeNow() minus the start time, which is 0: the two are equal, deliberately.
    virtual double elapsedTime() = 0;
    /// The monotonic clock in units of 100 ns, whatever the name says; deliberate.
    virtual std::uint64_t getTimeNano() = 0;
    virtual UUID generateUUID() = 0;
    /// Does nothing and returns false: the processor's precision needs no mending here.
    virtual bool checkAndFixFloatPrecision() = 0;
    /// Sends a text to the system log at debug level; null sends nothing.
    virtual void outputDebug(const char* text) = 0;
    /// errno + 30; the offset is part of the interface.
    virtual int getLastError() = 0;
    /// Always empty, deliberately.
    virtual LightweightString<char> getSystemErrorString() = 0;
    /// Appends one line for each caller, at most 23, innermost first, C++ names demangled.
    virtual void getStacktrace(std::vector<LightweightString<char>>& lines) = 0;
};
