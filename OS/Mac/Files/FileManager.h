#pragma once

#include <OS/Files/iFileManager.h>

/// iFileManager on the POSIX calls. No state.
class FileManager final : public iFileManager
{
public:
    /// A wide path for the system: UTF-8, with a leading "//" made "smb://". Bytes carried as
    /// U+DC80 to U+DCFF are turned back.
    static LightweightString<char> TqtoOS(const LightweightString<wchar_t>& path);
    /// The reverse. "smb://server/share" becomes "/server/share" with one leading "/": deliberately
    /// no inverse.
    static LightweightString<wchar_t> OStoTq(const LightweightString<char>& path);
    /// Whether a path contains "://".
    static bool isURI(const LightweightString<wchar_t>& path);
    static bool isURI(const LightweightString<char>& path);

    bool fileExists(const LightweightString<wchar_t>& path) override;
    Tq::Ptr<iDLL> openDLL(const LightweightString<wchar_t>& path) override;
    bool getDirectoryContents(const LightweightString<wchar_t>& path,
                              std::vector<DirectoryItem>& items, bool wantFiles,
                              bool wantDirectories) override;
    LightweightString<wchar_t> getAppPath() override;
    LightweightString<wchar_t> getAppName() override;
    LightweightString<wchar_t> getAppDescription() override;
    wchar_t getPathSeparator() override;
};
