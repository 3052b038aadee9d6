#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iDLL.h>
#include <OS/Core/iObject.h>
#include <OS/Files/iDiskDrive.h>
#include <OS/Files/iFile.h>
#include <OS/Threads/iIOCompletionPort.h>

#include <cstdint>
#include <functional>
#include <vector>

/// Whole files and paths, reached as OS()->fileMgr(); PathFunctions.h has what is done with paths
/// as text. Every operation may be called from any thread; none throws, and none prints anything
/// but what it says.
///
/// Paths are wide strings with "/" as separator. A path that begins with "//" is a network path,
/// one that begins with "Virtual:" belongs to a file provider (FileProviderManager). Bytes of a
/// name that are no UTF-8 travel as the characters U+DC80 to U+DCFF and are turned back on the way
/// out. Times are counts of 100 ns since 1970-01-01.
class OS_API iFileManager : public iObject
{
public:
    /// Called during a copy, on the caller's thread, without locks: at the start, after every few
    /// megabytes and at the end. @return false to give up
    using ProgressCallback = std::function<bool(std::uint64_t doneBytes, std::uint64_t totalBytes)>;

    /// Bits of a file's attributes.
    enum eFileAttributes : unsigned int
    {
        eAttributeReadOnly = 0x1, ///< nobody may write: the one that can be set
        eAttributeHidden = 0x2,   ///< the name begins with "."
        eAttributeDirectory = 0x10,
        eAttributeNormal = 0x80, ///< none of the others
        eAttributeLink = 0x400,  ///< a symbolic link; the other bits tell its target
        eAttributesUnknown = 0xFFFFFFFF
    };

    enum eDateDisplay : int
    {
        eNoDate = 0,
        eDate = 1
    };

    enum eTimeDisplay : int
    {
        eNoTime = 0,
        eHoursMinutes = 1
    };

    /// One entry of a directory.
    struct DirectoryItem
    {
        LightweightString<wchar_t> name_; ///< without the folder
        bool isDirectory_ = false;        ///< after following a symbolic link
        bool isLink_ = false;
        std::uint64_t sizeBytes_ = 0;     ///< 0 for directories
        std::uint64_t modified100ns_ = 0; ///< 100 ns units since 1970-01-01
    };

    /// A shared folder of a server.
    struct Share
    {
        LightweightString<wchar_t> name_; ///< without the server
        LightweightString<wchar_t> path_; ///< where it is mounted, with a trailing "/"
    };

    /// Copies a file: contents, permissions and times. Links are followed.
    ///
    /// Written beside the target and renamed: the target is the old file or the whole new one at
    /// every moment, also when the disk is full or the copy is given up. Holes stay holes.
    ///
    /// @param failIfExists whether an existing target is left alone and false comes back
    /// @param progress may be empty
    /// @return whether the whole file was copied. Anything but a file, a file onto itself, a target
    /// that may not be written, and one in a folder that takes no new files, give false.
    virtual bool copyFile(const LightweightString<wchar_t>& from,
                          const LightweightString<wchar_t>& to, bool failIfExists,
                          const ProgressCallback& progress) = 0;
    /// Renames a file, a link or a directory; a file or a link also across file systems, where it
    /// is copied whole before the old one is removed. Links are not followed.
    /// @return whether it stands at its new place and no longer at the old one
    virtual bool moveFile(const LightweightString<wchar_t>& from,
                          const LightweightString<wchar_t>& to, bool failIfExists) = 0;
    /// Removes a file or a link, never its target. @return false for a directory
    virtual bool deleteFile(const LightweightString<wchar_t>& path) = 0;
    /// Sets one time of an existing file to now and leaves the others.
    /// @return false for iFile::eCreationTime, which cannot be set
    virtual bool touchFile(const LightweightString<wchar_t>& path, iFile::eTimeType type) = 0;
    /// Moves a file or a directory into the desktop's trash, from where the user can take it back.
    /// @return false, everything left in place, where there is no trash for it
    virtual bool recycleFile(const LightweightString<wchar_t>& path) = 0;
    /// Opens a file: offered to the file providers, else a local file, else one named by a scheme.
    ///
    /// A network path is looked for among the mounted network volumes; nothing is mounted for it.
    /// What a provider refuses is not looked for elsewhere.
    ///
    /// @param access iFile::eAccessMode @param flags bits of iFile::eFlags
    /// @return null when it could not be opened
    virtual Tq::Ptr<iFile> openFile(const LightweightString<wchar_t>& path, unsigned int access,
                                    iFile::eOpenBehaviour behaviour, iFile::eShareMode share,
                                    std::uint32_t flags) = 0;
    /// Makes the current user the owner; the group stays. @return whether it is
    virtual bool transferOwnership(const LightweightString<wchar_t>& path) = 0;
    /// The owner's name, else the number as text; empty when there is no such file.
    virtual LightweightString<wchar_t> getOwner(const LightweightString<wchar_t>& path) = 0;
    /// Bytes; 0 for what is missing and for directories.
    virtual std::uint64_t getFileSize(const LightweightString<wchar_t>& path) = 0;
    /// Sets or takes away eAttributeReadOnly; the other bits are ignored.
    virtual bool setFileAttributes(const LightweightString<wchar_t>& path,
                                   unsigned int attributes) = 0;
    /// Bits of eFileAttributes; eAttributesUnknown for what is missing.
    virtual unsigned int getFileAttributes(const LightweightString<wchar_t>& path) = 0;
    /// Whether a file or a directory of this name exists.
    virtual bool fileExists(const LightweightString<wchar_t>& path) = 0;
    /// Whether a path begins with "Virtual:", the case not ignored.
    virtual bool isVirtual(const LightweightString<wchar_t>& path) = 0;
    /// The volume that holds a path. @return null when the path does not exist
    virtual Tq::Ptr<iDiskDrive> openDrive(const LightweightString<wchar_t>& path) = 0;
    /// The mounted volume of an ID. @return null when it is not mounted
    virtual Tq::Ptr<iDiskDrive> openDriveByID(const LightweightString<wchar_t>& id) = 0;
    /// Loads a shared library or a bundle. Never null: ask the result's valid().
    virtual Tq::Ptr<iDLL> openDLL(const LightweightString<wchar_t>& path) = 0;
    /// Makes a directory and what is missing above it. @return whether it is there now
    virtual bool createDirectory(const LightweightString<wchar_t>& path) = 0;
    /// Removes an empty directory. @return false for one that holds anything, and for a file
    virtual bool deleteDirectory(const LightweightString<wchar_t>& path) = 0;
    /// Appends the entries of a directory, sorted by name, "." and ".." left out.
    ///
    /// An entry that vanishes meanwhile is left out.
    ///
    /// @param path a directory, or a directory and a last part with "*" or "?" that names must
    /// match (matchingFile tells how)
    /// @param wantFiles whether files are listed
    /// @param wantDirectories whether directories are listed
    /// @return false when the directory cannot be read; nothing is appended then
    virtual bool getDirectoryContents(const LightweightString<wchar_t>& path,
                                      std::vector<DirectoryItem>& items, bool wantFiles,
                                      bool wantDirectories) = 0;
    /// Not supported, like the transfers that it would serve: prints the assertion report for
    /// "false". @return null
    virtual Tq::Ptr<iAsyncContext> createAsyncContext(void* context) = 0;
    virtual Tq::Ptr<iIOCompletionPort> createIOCompletionPort() = 0;
    /// How many volumes of a kind are mounted; those of the system's own making are not counted.
    virtual unsigned int getNumDiskDrives(iDiskDrive::eType type) = 0;
    /// Appends them, ordered by path. @return false when the mounts cannot be read
    virtual bool getDiskDrives(iDiskDrive::eType type,
                               std::vector<Tq::Ptr<iDiskDrive>>& drives) = 0;
    /// Appends the servers of the mounted network volumes, sorted, each once.
    /// @return false when the mounts cannot be read
    virtual bool getNetworkServers(std::vector<LightweightString<wchar_t>>& servers) = 0;
    /// Appends a server's mounted shares, sorted by name. @param server its case ignored
    /// @return false when none is mounted
    virtual bool getNetworkShares(const LightweightString<wchar_t>& server,
                                  std::vector<Share>& shares) = 0;
    /// A path in the temporary folder that did not exist a moment ago: open it with
    /// iFile::eCreateNew. @param prefix the name's start @return empty on failure, and for a prefix
    /// with "/"
    virtual LightweightString<wchar_t>
    getTempFileName(const LightweightString<wchar_t>& prefix) = 0;
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
    /// A time in words, local time: "Nov 21, 2026", and with a time of day "Nov 21, 2026  9:05"
    /// (the hour padded with a space).
    ///
    /// The date is always there; without eDate the time follows it with no space between. Both
    /// deliberate.
    virtual LightweightString<wchar_t> asString(const unsigned long long& time,
                                                eDateDisplay dateDisplay,
                                                eTimeDisplay timeDisplay) = 0;
    /// The calendar clock in 100 ns units since 1970-01-01.
    virtual std::uint64_t timeNow() = 0;
    /// Whether files can be made in a folder: makes ".WriteTest" there and removes it. One that was
    /// left behind makes the test fail, and is removed; deliberate.
    /// @param folder with its trailing "/"
    virtual bool isWritable(const LightweightString<wchar_t>& folder) = 0;
    /// The path of a shared library of the system, as the loader would find it.
    /// @param name such as "z", "libz" or "libz.so.1" @return empty when there is none
    virtual LightweightString<wchar_t> findSysLib(const LightweightString<wchar_t>& name) = 0;
    /// "smb://", "/", this computer's name and the path as given.
    virtual LightweightString<wchar_t> getUniversalName(const LightweightString<wchar_t>& path) = 0;
    /// "/"
    virtual wchar_t getPathSeparator() = 0;
};
