#pragma once

#include <OS/Files/iMountManager.h>

namespace OSInternal {
class VolumeService;
}

/// iMountManager on the mount table and the desktop's volume service. Never changes.
class MountManager final : public iMountManager
{
public:
    constexpr MountManager() = default;
    /// With another service, for tests. It must outlive this object.
    explicit constexpr MountManager(OSInternal::VolumeService& service) : service_(&service) {}

    bool getMounts(std::vector<Mount>& mounts) override;
    eResult mount(const LightweightString<wchar_t>& address, const Credentials& credentials,
                  unsigned int timeoutMs) override;
    eResult unmount(const LightweightString<wchar_t>& address, unsigned int timeoutMs) override;

private:
    OSInternal::VolumeService& service() const;

    OSInternal::VolumeService* service_ = nullptr; // null: the session's
};
