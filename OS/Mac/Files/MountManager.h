#pragma once

#include <OS/Files/iMountManager.h>

/// iMountManager. No state.
class MountManager final : public iMountManager
{
public:
    bool getMounts(std::vector<Mount>& mounts) override;
    eResult mount(const LightweightString<wchar_t>& address, const Credentials& credentials,
                  unsigned int timeoutMs) override;
    eResult unmount(const LightweightString<wchar_t>& address, unsigned int timeoutMs) override;
};
