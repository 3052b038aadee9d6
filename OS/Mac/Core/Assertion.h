#pragma once

#include <OS/Core/Export.h>

/// The forms in which this library reports a failure on standard output. Every line is written with
/// one call, so lines of two threads never mix. Places are published constants of their class.
namespace OSInternal {

/// Prints "assertion failed %s at %s\n" and carries on.
/// @param expression the text of the failed condition @param place such as "OS/Mac/Thread line 18"
void reportAssertion(const char* expression, const char* place);

/// Prints PLACE "(" LINE ") : a pthread call failed (" ERROR ")\n" and flushes.
/// @param place the source, such as "OS/Mac/Mutex"
void reportPthreadFailure(const char* place, int line, int error);

/// Prints one formatted line, flushed when it precedes a throw.
[[gnu::format(printf, 1, 2)]] void printLine(const char* format, ...);

/// Prints "%-9.3f: %s\n" with the seconds since start and a text.
void printTimed(double elapsedMs, const char* text);

} // namespace OSInternal
