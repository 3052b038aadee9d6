#include "OS/Mac/Files/MountManager.h"

bool MountManager::getMounts(std::vector<Mount>&)
{
    return false;
}
iMountManager::eResult MountManager::mount(const LightweightString<wchar_t>&, const Credentials&,
                                           unsigned int)
{
    return eNoService;
}
iMountManager::eResult MountManager::unmount(const LightweightString<wchar_t>&, unsigned int)
{
    return eNoService;
}
