#pragma once

#include <cstdio>

/// Whether a PNG file is all there: its chunks (ISO/IEC 15948, clause 5) follow one another up to
/// the last.
///
/// Asked before the toolkit reads it, whose decoder writes to standard error what it misses. Sums
/// are not checked. Leaves the file at its beginning.
bool isWholePng(std::FILE* file);
