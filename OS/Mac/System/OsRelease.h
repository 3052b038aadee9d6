#pragma once

#include <string>

/// The system's own name and version, from a file in os-release(5) form.
struct OsRelease
{
    std::string name;    ///< NAME; empty when the file has none
    std::string version; ///< VERSION_ID; empty for systems that roll

    /// Reads /etc/os-release, else /usr/lib/os-release.
    static OsRelease read();
    /// Reads one file; a missing one gives empty texts.
    static OsRelease read(const std::string& path);
};
