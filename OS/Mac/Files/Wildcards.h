#pragma once

#include <OS/Core/LightweightString.h>

/// "?" or "*".
bool isWildcard(wchar_t c);

/// Whether a file name matches a pattern of characters (case ignored), "?" and "*".
///
/// One pass without backtracking, deliberately: behind a "*" only the first place where the next
/// character (its case not ignored) occurs is tried, so "*b" does not match "abab". A "*" before
/// "." stands for everything up to the name's last "."; a trailing "*" needs at least one
/// character.
bool matchingFile(const LightweightString<wchar_t>& name,
                  const LightweightString<wchar_t>& pattern);
