#include "OS/Mac/Files/FileManager.h"

bool FileManager::copyFile(const LightweightString<wchar_t>&, const LightweightString<wchar_t>&,
                           bool, const ProgressCallback&)
{
    return false;
}
bool FileManager::moveFile(const LightweightString<wchar_t>&, const LightweightString<wchar_t>&,
                           bool)
{
    return false;
}
bool FileManager::deleteFile(const LightweightString<wchar_t>&)
{
    return false;
}
bool FileManager::touchFile(const LightweightString<wchar_t>&, iFile::eTimeType)
{
    return false;
}
bool FileManager::recycleFile(const LightweightString<wchar_t>&)
{
    return false;
}
Tq::Ptr<iFile> FileManager::openFile(const LightweightString<wchar_t>&, unsigned int,
                                     iFile::eOpenBehaviour, iFile::eShareMode, std::uint32_t)
{
    return {};
}
bool FileManager::transferOwnership(const LightweightString<wchar_t>&)
{
    return false;
}
LightweightString<wchar_t> FileManager::getOwner(const LightweightString<wchar_t>&)
{
    return {};
}
std::uint64_t FileManager::getFileSize(const LightweightString<wchar_t>&)
{
    return 0;
}
bool FileManager::setFileAttributes(const LightweightString<wchar_t>&, unsigned int)
{
    return false;
}
unsigned int FileManager::getFileAttributes(const LightweightString<wchar_t>&)
{
    return eAttributesUnknown;
}
bool FileManager::isVirtual(const LightweightString<wchar_t>&)
{
    return false;
}
bool FileManager::createDirectory(const LightweightString<wchar_t>&)
{
    return false;
}
bool FileManager::deleteDirectory(const LightweightString<wchar_t>&)
{
    return false;
}
Tq::Ptr<iAsyncContext> FileManager::createAsyncContext(void*)
{
    return {};
}
Tq::Ptr<iIOCompletionPort> FileManager::createIOCompletionPort()
{
    return {};
}
LightweightString<wchar_t> FileManager::getTempFileName(const LightweightString<wchar_t>&)
{
    return {};
}
LightweightString<wchar_t> FileManager::asString(const unsigned long long&, eDateDisplay,
                                                 eTimeDisplay)
{
    return {};
}
std::uint64_t FileManager::timeNow()
{
    return 0;
}
bool FileManager::isWritable(const LightweightString<wchar_t>&)
{
    return false;
}
LightweightString<wchar_t> FileManager::findSysLib(const LightweightString<wchar_t>&)
{
    return {};
}
LightweightString<wchar_t> FileManager::getUniversalName(const LightweightString<wchar_t>&)
{
    return {};
}
