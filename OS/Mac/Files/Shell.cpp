#include "OS/Mac/Files/Shell.h"

Tq::Ptr<iSettings> Shell::getSettings(iSettings::eType)
{
    return {};
}
LightweightString<wchar_t> Shell::getFolderLocation(eFolderLocation)
{
    return {};
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
