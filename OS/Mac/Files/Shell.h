#pragma once

#include <OS/Files/iShell.h>

#include <array>
#include <mutex>

/// iShell. Keeps the stores of both scopes.
class Shell final : public iShell
{
public:
    /// A store is made under a lock of the shell's own: nothing that reading it calls may come back
    /// here on the same thread. It allocates from the root's heap only.
    Tq::Ptr<iSettings> getSettings(iSettings::eType type) override;
    LightweightString<wchar_t> getFolderLocation(eFolderLocation location) override;
    bool viewDocument(const LightweightString<wchar_t>& path) override;
    bool viewFolder(const LightweightString<wchar_t>& path) override;
    bool viewAddress(const LightweightString<wchar_t>& address) override;
    Tq::Ptr<iObject> claimSingleInstance() override;

private:
    std::mutex settingsLock_;
    std::array<Tq::Ptr<iSettings>, 2> settings_;
};
