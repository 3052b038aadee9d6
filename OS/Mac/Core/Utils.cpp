#include "OS/Mac/Core/Utils.h"

#include "OS/Mac/Core/QtText.h"
#include "OS/Mac/Core/Stacktrace.h"

#include <QByteArray>

#include <cerrno>
#include <cstring>
#include <syslog.h>
#include <time.h>
#include <uuid/uuid.h>

namespace {

// What callers add to errno; part of the interface.
constexpr int kErrorOffset = 30;

std::uint64_t monotonicNanoseconds()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000u +
           static_cast<std::uint64_t>(now.tv_nsec);
}

} // namespace

LightweightString<wchar_t> Utils::widen(const char* text)
{
    LightweightString<wchar_t> result;
    if (text)
        for (; *text; ++text)
            result.push_back(static_cast<unsigned char>(*text));
    return result;
}

LightweightString<char> Utils::narrow(const wchar_t* text)
{
    LightweightString<char> result;
    if (text)
        for (; *text; ++text)
            result.push_back(static_cast<char>(*text));
    return result;
}

LightweightString<char> Utils::toUTF8(const LightweightString<wchar_t>& text)
{
    if (text.empty())
        return {};
    const QByteArray bytes = OSInternal::toQString(text).toUtf8();
    return LightweightString<char>(bytes.constData(), static_cast<std::uint32_t>(bytes.size()));
}

LightweightString<wchar_t> Utils::fromUTF8(const char* text, int length)
{
    if (!text)
        return {};
    return OSInternal::fromQString(QString::fromUtf8(text, length < 0 ? -1 : length));
}

double Utils::timeNow()
{
    return static_cast<double>(monotonicNanoseconds() / 1'000'000u);
}

double Utils::elapsedTime()
{
    return timeNow() - startTimeMs_;
}

std::uint64_t Utils::getTimeNano()
{
    return monotonicNanoseconds() / 100u;
}

Utils::UUID Utils::generateUUID()
{
    uuid_t bytes;
    uuid_generate(bytes);
    UUID result;
    std::memcpy(result.data(), bytes, result.size());
    return result;
}

bool Utils::checkAndFixFloatPrecision()
{
    return false;
}

void Utils::outputDebug(const char* text)
{
    if (text)
        syslog(LOG_DEBUG, "%s", text);
}

int Utils::getLastError()
{
    return errno + kErrorOffset;
}

LightweightString<char> Utils::getSystemErrorString()
{
    return {};
}

void Utils::getStacktrace(std::vector<LightweightString<char>>& lines)
{
    Stacktrace::get(lines);
}
