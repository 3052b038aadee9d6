#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iDLL.h>
#include <OS/Core/iObject.h>

#include <cstdint>
#include <vector>

/// Whole files and paths, reached as OS()->fileMgr(). Every operation may be called from any
/// thread.
///
/// Paths are wide strings with "/" as separator. A path that begins with "//" is a network path.
/// Bytes of a name that are no UTF-8 travel as the characters U+DC80 to U+DCFF and are turned back
/// on the way out.
class OS_API iFileManager : public iObject
{
public:
    /// One entry of a directory.
    struct DirectoryItem
    {
        LightweightString<wchar_t> name_; ///< without the folder
        bool isDirectory_ = false;        ///< after following a symbolic link
        bool isLink_ = false;
        std::uint64_t sizeBytes_ = 0;     ///< 0 for directories
        std::uint64_t modified100ns_ = 0; ///< 100 ns units since 1970-01-01
    };

    /// Whether a file or a directory of this name exists.
    virtual bool fileExists(const LightweightString<wchar_t>& path) = 0;

    /// Loads a shared library or a bundle. Never null: ask the result's valid().
    virtual Tq::Ptr<iDLL> openDLL(const LightweightString<wchar_t>& path) = 0;

    /// Appends the entries of a directory, sorted by name, "." and ".." left out.
    ///
    /// @param path a directory, or a directory and a last part with "*" or "?" that names must
    /// match
    /// @param wantFiles whether files are listed
    /// @param wantDirectories whether directories are listed
    /// @return false when the directory cannot be read; nothing is appended then
    virtual bool getDirectoryContents(const LightweightString<wchar_t>& path,
                                      std::vector<DirectoryItem>& items, bool wantFiles,
                                      bool wantDirectories) = 0;

    /// The folder of the running program with its trailing "/".
    ///
    /// A path longer than 255 bytes prints "FileManager::getApPath() : buffer too small; need size
    /// %u\n" and is cut there, deliberately.
    virtual LightweightString<wchar_t> getAppPath() = 0;
    /// The file name of the running program. Prints and cuts like getAppPath.
    virtual LightweightString<wchar_t> getAppName() = 0;
    /// The program's name for people: "Vantor" for names that begin with "vantor", "Quay Board" for
    /// "quay", else the file name.
    virtual LightweightString<wchar_t> getAppDescription() = 0;
    /// "/"
    virtual wchar_t getPathSeparator() = 0;
};
