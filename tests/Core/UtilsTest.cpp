#include "OS/Mac/Core/Stacktrace.h"
#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Core/TqResult.h>
#include <OS/Core/iThreadAtomics.h>
#include <OS/Core/iUtils.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdarg>
#include <set>
#include <string>
#include <time.h>

namespace {

std::string lastSyslog;
int lastSyslogLevel = -1;

} // namespace

// The system log's calls, put in front of the C library's.
extern "C" void syslog(int level, const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    lastSyslog = va_arg(arguments, const char*);
    va_end(arguments);
    lastSyslogLevel = level;
    EXPECT_STREQ(format, "%s") << "a text with a per cent sign must not be read as a format";
}

namespace stack {

// Each frame stays one: no inlining, no tail call.
[[gnu::noinline]] void deep(int depth, std::vector<LightweightString<char>>& lines)
{
    if (depth == 0)
        OS()->utils()->getStacktrace(lines);
    else
        deep(depth - 1, lines);
    asm volatile("" ::: "memory");
}

} // namespace stack

TEST(Utils, WidensBytesAndDecodesUtf8)
{
    iUtils* utils = OS()->utils();
    EXPECT_EQ(utils->widen("hell\xC3\xB6").size(), 6u) << "one character a byte";
    EXPECT_EQ(utils->widen("\xE9"), L"\u00E9");
    EXPECT_EQ(utils->narrow(L"\u00E9x"), "\xE9x");
    EXPECT_EQ(utils->fromUTF8("caf\xC3\xA9", -1), L"caf\u00E9");
    EXPECT_EQ(utils->fromUTF8("caf\xC3\xA9", 3), L"caf");
    EXPECT_EQ(utils->fromUTF8("x\0y", 3), (LightweightString<wchar_t>(L"x\0y", 3)));
    EXPECT_EQ(utils->fromUTF8("\xF0\x9F\x8E\xAC", -1), L"\U0001F3AC") << "beyond 16 bits";
    EXPECT_EQ(utils->toUTF8(L"caf\u00E9\U0001F3AC"), "caf\xC3\xA9\xF0\x9F\x8E\xAC");
    EXPECT_TRUE(utils->fromUTF8(nullptr, 5).empty());
    EXPECT_TRUE(utils->fromUTF8("abc", 0).empty());
    EXPECT_TRUE(utils->widen(nullptr).empty());
    EXPECT_TRUE(utils->narrow(nullptr).empty());
    EXPECT_TRUE(utils->toUTF8({}).empty());
}

TEST(Utils, ClocksCountMillisecondsAndUnitsOf100ns)
{
    iUtils* utils = OS()->utils();
    const auto seconds = [] {
        timespec now;
        clock_gettime(CLOCK_MONOTONIC, &now);
        return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
    };
    const double before = seconds();
    const double ms = utils->timeNow();
    const double elapsed = utils->elapsedTime();
    const auto ticks = static_cast<double>(utils->getTimeNano());
    const double after = seconds();
    EXPECT_EQ(ms, static_cast<double>(static_cast<long long>(ms))) << "whole milliseconds";
    EXPECT_GE(ms, before * 1e3 - 1.0);
    EXPECT_LE(elapsed, after * 1e3);
    EXPECT_GE(ticks, before * 1e7 - 1.0);
    EXPECT_LE(ticks, after * 1e7 + 1.0);
}

TEST(Utils, KeepsItsPeculiarAnswers)
{
    iUtils* utils = OS()->utils();
    errno = 2;
    EXPECT_EQ(utils->getLastError(), 32);
    EXPECT_TRUE(utils->getSystemErrorString().empty());
    EXPECT_FALSE(utils->checkAndFixFloatPrecision());
    utils->outputDebug("100 %s");
    EXPECT_EQ(lastSyslog, "100 %s");
    EXPECT_EQ(lastSyslogLevel, 7);
    lastSyslogLevel = -1;
    utils->outputDebug(nullptr);
    EXPECT_EQ(lastSyslogLevel, -1);
}

TEST(Utils, IdentifiersAreRandomAndDistinct)
{
    std::set<iUtils::UUID> seen;
    for (int i = 0; i < 1000; ++i) {
        const iUtils::UUID id = OS()->utils()->generateUUID();
        EXPECT_EQ(id[6] >> 4, 4) << "version";
        EXPECT_EQ(id[8] >> 6, 2) << "variant";
        seen.insert(id);
    }
    EXPECT_EQ(seen.size(), 1000u);
}

TEST(Stacktrace, NamesItsCallersAndStopsAt23)
{
    std::vector<LightweightString<char>> lines;
    stack::deep(3, lines);
    const auto named = std::count_if(lines.begin(), lines.end(), [](const auto& line) {
        return line.startsWith("stack::deep(int, ");
    });
    EXPECT_EQ(named, 4);

    lines.clear();
    stack::deep(60, lines);
    EXPECT_EQ(lines.size(), 23u);
    lines.push_back("kept");
    stack::deep(60, lines);
    EXPECT_EQ(lines.size(), 47u) << "lines are appended";
}

TEST(TqResult, OnlyZeroIsSuccess)
{
    int result = -1;
    EXPECT_EQ(outputOf([&] { result = OStoTqErr(0); }), "");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(outputOf([&] { result = OStoTqErr(-50); }),
              "result -50\nassertion failed false at OS/Mac/MIDI line 27\n");
    EXPECT_EQ(result, 0);
}

TEST(ThreadAtomics, ReturnNewOrPreviousValuesAsPublished)
{
    iThreadAtomics* atomics = OS()->threadAtomics();
    volatile int small = 3;
    volatile long long large = 3;
    EXPECT_EQ(atomics->safeCompareExchange(&small, 5, 3), 3);
    EXPECT_EQ(small, 5);
    EXPECT_EQ(atomics->safeCompareExchange(&small, 7, 4), 5);
    EXPECT_EQ(small, 5);
    EXPECT_EQ(atomics->safeCompareExchange(&large, 1LL << 40, 3LL), 3);
    EXPECT_EQ(atomics->safeAssign(&large, 9LL), 1LL << 40);
    EXPECT_EQ(atomics->safeAssign(&small, 1), 5);
    EXPECT_EQ(atomics->safeInc(&small), 2);
    EXPECT_EQ(atomics->safeDec(&small), 1);
    EXPECT_EQ(atomics->safeAdd(&small, -11), -10);
}

TEST(Root, FormatsNumbersWithAPoint)
{
    OS();
    char text[16];
    std::snprintf(text, sizeof text, "%.1f", 1.5);
    EXPECT_STREQ(text, "1.5");
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
}
