#pragma once

#include <OS/Core/iUtils.h>

/// iUtils on the POSIX clocks, the toolkit's UTF-8 codec and libuuid.
class Utils final : public iUtils
{
public:
    LightweightString<wchar_t> widen(const char* text) override;
    LightweightString<char> narrow(const wchar_t* text) override;
    LightweightString<char> toUTF8(const LightweightString<wchar_t>& text) override;
    LightweightString<wchar_t> fromUTF8(const char* text, int length) override;
    double timeNow() override;
    double elapsedTime() override;
    std::uint64_t getTimeNano() override;
    UUID generateUUID() override;
    bool checkAndFixFloatPrecision() override;
    void outputDebug(const char* text) override;
    int getLastError() override;
    LightweightString<char> getSystemErrorString() override;
    void getStacktrace(std::vector<LightweightString<char>>& lines) override;

private:
    double startTimeMs_ = 0.0; // never changed: elapsedTime() is timeNow()
};
