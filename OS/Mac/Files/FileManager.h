#pragma once

#include <OS/Files/FileProviderManager.h>
#include <OS/Files/PathFunctions.h>
#include <OS/Files/iFileManager.h>

/// iFileManager on the POSIX calls. No state but the list of providers, which is the process's.
class FileManager final : public iFileManager, public FileProviderManager, public PathFunctions
{
public:
    /// A local file with flags 1: what a directory is opened as. @return null when it could not be
    static Tq::Ptr<iFile> openDirectory(const LightweightString<wchar_t>& path, unsigned int access,
                                        iFile::eOpenBehaviour behaviour, iFile::eShareMode share);

    bool copyFile(const LightweightString<wchar_t>& from, const LightweightString<wchar_t>& to,
                  bool failIfExists, const ProgressCallback& progress) override;
    bool moveFile(const LightweightString<wchar_t>& from, const LightweightString<wchar_t>& to,
                  bool failIfExists) override;
    bool deleteFile(const LightweightString<wchar_t>& path) override;
    bool touchFile(const LightweightString<wchar_t>& path, iFile::eTimeType type) override;
    bool recycleFile(const LightweightString<wchar_t>& path) override;
    Tq::Ptr<iFile> openFile(const LightweightString<wchar_t>& path, unsigned int access,
                            iFile::eOpenBehaviour behaviour, iFile::eShareMode share,
                            std::uint32_t flags) override;
    bool transferOwnership(const LightweightString<wchar_t>& path) override;
    LightweightString<wchar_t> getOwner(const LightweightString<wchar_t>& path) override;
    std::uint64_t getFileSize(const LightweightString<wchar_t>& path) override;
    bool setFileAttributes(const LightweightString<wchar_t>& path,
                           unsigned int attributes) override;
    unsigned int getFileAttributes(const LightweightString<wchar_t>& path) override;
    bool fileExists(const LightweightString<wchar_t>& path) override;
    bool isVirtual(const LightweightString<wchar_t>& path) override;
    Tq::Ptr<iDiskDrive> openDrive(const LightweightString<wchar_t>& path) override;
    Tq::Ptr<iDiskDrive> openDriveByID(const LightweightString<wchar_t>& id) override;
    Tq::Ptr<iDLL> openDLL(const LightweightString<wchar_t>& path) override;
    bool createDirectory(const LightweightString<wchar_t>& path) override;
    bool deleteDirectory(const LightweightString<wchar_t>& path) override;
    bool getDirectoryContents(const LightweightString<wchar_t>& path,
                              std::vector<DirectoryItem>& items, bool wantFiles,
                              bool wantDirectories) override;
    Tq::Ptr<iAsyncContext> createAsyncContext(void* context) override;
    Tq::Ptr<iIOCompletionPort> createIOCompletionPort() override;
    unsigned int getNumDiskDrives(iDiskDrive::eType type) override;
    bool getDiskDrives(iDiskDrive::eType type, std::vector<Tq::Ptr<iDiskDrive>>& drives) override;
    bool getNetworkServers(std::vector<LightweightString<wchar_t>>& servers) override;
    bool getNetworkShares(const LightweightString<wchar_t>& server,
                          std::vector<Share>& shares) override;
    LightweightString<wchar_t> getTempFileName(const LightweightString<wchar_t>& prefix) override;
    LightweightString<wchar_t> getAppPath() override;
    LightweightString<wchar_t> getAppName() override;
    LightweightString<wchar_t> getAppDescription() override;
    LightweightString<wchar_t> asString(const unsigned long long& time, eDateDisplay dateDisplay,
                                        eTimeDisplay timeDisplay) override;
    std::uint64_t timeNow() override;
    bool isWritable(const LightweightString<wchar_t>& folder) override;
    LightweightString<wchar_t> findSysLib(const LightweightString<wchar_t>& name) override;
    LightweightString<wchar_t> getUniversalName(const LightweightString<wchar_t>& path) override;
    wchar_t getPathSeparator() override;
};
