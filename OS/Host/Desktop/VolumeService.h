#pragma once

#include <OS/Files/iMountManager.h>

#include <string>

namespace OSInternal {

/// Who asks for a network volume. UTF-8; all empty: a guest.
struct VolumeLogin
{
    std::string user_;
    std::string password_;
    std::string domain_;
};

struct VolumeAnswer
{
    iMountManager::eResult result_ = iMountManager::eFailed;
    std::string reason_; ///< one line for people, without a full stop; empty on success
};

/// What mounts network volumes for the user, without privileges: the desktop's volume service. The
/// only door to it. Any thread, several at once; each call waits no longer than its time-out and a
/// moment.
class VolumeService
{
public:
    virtual ~VolumeService() = default;

    /// @param uri percent-encoded
    /// @return eMounted, also when it was mounted before
    virtual VolumeAnswer mount(const std::string& uri, const VolumeLogin& login,
                               unsigned int timeoutMs) = 0;
    /// @param uri percent-encoded
    /// @return eUnmounted, also when it was not mounted before
    virtual VolumeAnswer unmount(const std::string& uri, unsigned int timeoutMs) = 0;

    /// The one of the session that this process runs in.
    static VolumeService& ofSession();
};

} // namespace OSInternal
