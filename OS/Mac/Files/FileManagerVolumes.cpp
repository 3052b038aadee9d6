#include "OS/Mac/Files/FileManager.h"

Tq::Ptr<iDiskDrive> FileManager::openDrive(const LightweightString<wchar_t>&)
{
    return {};
}
Tq::Ptr<iDiskDrive> FileManager::openDriveByID(const LightweightString<wchar_t>&)
{
    return {};
}
unsigned int FileManager::getNumDiskDrives(iDiskDrive::eType)
{
    return 0;
}
bool FileManager::getDiskDrives(iDiskDrive::eType, std::vector<Tq::Ptr<iDiskDrive>>&)
{
    return false;
}
bool FileManager::getNetworkServers(std::vector<LightweightString<wchar_t>>&)
{
    return false;
}
bool FileManager::getNetworkShares(const LightweightString<wchar_t>&, std::vector<Share>&)
{
    return false;
}
