#pragma once

#include <OS/Core/Export.h>
#include <OS/Core/LightweightString.h>

/// A path up to and including its last "/"; a path without one is returned whole.
OS_API LightweightString<wchar_t> getPath(const LightweightString<wchar_t>& path);

/// "?" or "*".
OS_API bool isWildcard(wchar_t c);

/// Whether a file name matches a pattern of characters (case ignored), "?" and "*".
///
/// One pass without backtracking, deliberately: behind a "*" only the first place where the next
/// character (its case not ignored) occurs is tried, so "*b" does not match "abab". A "*" before
/// "." stands for everything up to the name's last "."; a trailing "*" needs at least one
/// character.
OS_API bool matchingFile(const LightweightString<wchar_t>& name,
                         const LightweightString<wchar_t>& pattern);

/// Paths between the wide form of the interfaces and the system's UTF-8. Any thread.
///
/// Bytes of a name that are no UTF-8 travel as the characters U+DC80 to U+DCFF, so every name that
/// the system can hold comes back byte for byte.
class OS_API PathFunctions
{
public:
    /// A path for the system. A leading "//" becomes "smb://": "//nas/media" gives
    /// "smb://nas/media".
    static LightweightString<char> TqtoOS(const LightweightString<wchar_t>& path);
    /// The reverse, but "smb://nas/media" becomes "/nas/media" with one leading "/": deliberately
    /// no inverse.
    static LightweightString<wchar_t> OStoTq(const LightweightString<char>& path);

    /// Whether a path contains "://".
    static bool isURI(const LightweightString<wchar_t>& path);
    static bool isURI(const LightweightString<char>& path);

    /// Whether a name ends with an extension, the case ignored.
    /// @param ext with its dot; an empty one, and one as long as the name, match nothing
    static bool extMatch(const LightweightString<wchar_t>& name,
                         const LightweightString<wchar_t>& ext);
};
