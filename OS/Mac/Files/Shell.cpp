#include "OS/Mac/Files/Shell.h"

#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Files/FolderLocations.h"
#include "OS/Mac/Files/Settings.h"

Tq::Ptr<iSettings> Shell::getSettings(iSettings::eType type)
{
    if (type != iSettings::eUser && type != iSettings::eGlobal)
        return {};
    const std::lock_guard<std::mutex> lock(settingsLock_);
    Tq::Ptr<iSettings>& settings = settings_[static_cast<std::size_t>(type)];
    if (!settings)
        settings = new Settings(type);
    return settings;
}

LightweightString<wchar_t> Shell::getFolderLocation(eFolderLocation location)
{
    return OSInternal::pathFromSystem(FolderLocations::find(location));
}

bool Shell::viewDocument(const LightweightString<wchar_t>&)
{
    return false;
}
bool Shell::viewFolder(const LightweightString<wchar_t>&)
{
    return false;
}
bool Shell::viewAddress(const LightweightString<wchar_t>&)
{
    return false;
}
Tq::Ptr<iObject> Shell::claimSingleInstance()
{
    return {};
}
