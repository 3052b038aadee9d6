#include "OS/Mac/Core/Assertion.h"

#include <cstdarg>
#include <cstdio>

namespace OSInternal {

void reportAssertion(const char* expression, const char* place)
{
    std::printf("assertion failed %s at %s\n", expression, place);
}

void reportPthreadFailure(const char* place, int line, int error)
{
    std::printf("%s(%d) : a pthread call failed (%d)\n", place, line, error);
    std::fflush(stdout);
}

void printLine(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);
    va_end(arguments);
}

void printTimed(double elapsedMs, const char* text)
{
    std::printf("%-9.3f: %s\n", elapsedMs / 1000.0, text);
}

} // namespace OSInternal
