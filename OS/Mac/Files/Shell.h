#pragma once

#include <OS/Files/iShell.h>

/// iShell.
class Shell final : public iShell
{
public:
    Tq::Ptr<iSettings> getSettings(iSettings::eType type) override;
    LightweightString<wchar_t> getFolderLocation(eFolderLocation location) override;
    bool viewDocument(const LightweightString<wchar_t>& path) override;
    bool viewFolder(const LightweightString<wchar_t>& path) override;
    bool viewAddress(const LightweightString<wchar_t>& address) override;
    Tq::Ptr<iObject> claimSingleInstance() override;
};
