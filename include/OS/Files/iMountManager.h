#pragma once

#include <OS/Core/Export.h>
#include <OS/Core/LightweightString.h>

#include <vector>

/// Network volumes, reached as OS()->mountMgr(). Any thread; mount and unmount wait.
class OS_API iMountManager
{
public:
    enum eResult : int
    {
        eMounted = 0,   ///< it is mounted now; also when it was before
        eUnmounted = 1, ///< it is not mounted now; also when it was not before
        eNoService = 2, ///< this desktop has no volume service for such addresses
        eDenied = 3,    ///< wrong user or password, or not allowed
        eBusy = 4,      ///< still in use: not unmounted
        eFailed = 5,    ///< anything else
        eTimedOut = 6   ///< no answer in time; the request was cancelled
    };

    /// A mounted network volume.
    struct Mount
    {
        LightweightString<wchar_t> address_; ///< such as "smb://server/share"
        LightweightString<wchar_t> path_;    ///< where it is, with a trailing "/"
        LightweightString<wchar_t> name_;    ///< for people
        bool byDesktop_ = false;             ///< by the desktop's volume service, not by the system
    };

    /// Who asks. All fields may be empty: then as a guest.
    struct Credentials
    {
        LightweightString<wchar_t> user_;
        LightweightString<wchar_t> password_;
        LightweightString<wchar_t> domain_;
    };

    virtual ~iMountManager() = default;

    /// Appends the mounted network volumes, ordered by address.
    /// @return false when the mounts cannot be read
    virtual bool getMounts(std::vector<Mount>& mounts) = 0;
    /// Mounts a volume through the desktop's volume service.
    ///
    /// @param address begins with "smb://" or "afp://", or is a network path "//server/share";
    /// anything else is eFailed @param timeoutMs how long to wait at most
    /// @return eMounted, or why not, after one line that tells it
    virtual eResult mount(const LightweightString<wchar_t>& address, const Credentials& credentials,
                          unsigned int timeoutMs) = 0;
    /// Unmounts what the desktop's volume service has mounted.
    /// @param address as for mount, or the path of a mount
    /// @return eUnmounted, or why not, after one line that tells it
    virtual eResult unmount(const LightweightString<wchar_t>& address, unsigned int timeoutMs) = 0;
};
