#pragma once

/// Counts the system calls with which a file is replaced, and ends the process or makes a call fail
/// at a chosen one. For programs linked with --wrap for each of them: tests/CMakeLists.txt.
namespace SystemSteps {

/// The process ends, as if killed, instead of making its nth call from here on (the first is 1).
/// Counting starts again.
void exitAt(int step);
constexpr int kExitStatus = 42;

/// The nth call from here on fails with an error and is not made.
void failAt(int step, int error);

/// Calls since exitAt or failAt.
int count();

/// Only counts from here on.
void reset();

} // namespace SystemSteps
