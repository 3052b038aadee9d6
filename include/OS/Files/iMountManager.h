#pragma once

#include <OS/Core/Export.h>
#include <OS/Core/LightweightString.h>

#include <vector>

/// Network volumes, reached as OS()->mountMgr(). Any thread, several at once; mount and unmount
/// wait. No locks.
///
/// A volume that the desktop's volume service mounts is seen in a folder of the user's, for which
/// the kernel's FUSE and the service's part for it (package gvfs-fuse) are needed: without them a
/// volume is mounted but has no path, is not listed, and openFile does not find its files.
class OS_API iMountManager
{
public:
    enum eResult : int
    {
        eMounted = 0,   ///< it is mounted now; also when it was before
        eUnmounted = 1, ///< it is not mounted now; also when it was not before
        eNoService = 2, ///< no session bus, or no volume service for such addresses on it
        eDenied = 3,    ///< wrong user or password, or not allowed
        eBusy = 4,      ///< still in use: not unmounted
        eFailed = 5,    ///< anything else
        eTimedOut = 6   ///< no answer in time; the request was cancelled
    };

    /// A mounted network volume.
    struct Mount
    {
        LightweightString<wchar_t> address_; ///< such as "smb://server/share"; not encoded
        LightweightString<wchar_t> path_;    ///< where it is, with a trailing "/"
        LightweightString<wchar_t> name_;    ///< for people: the share, or the mount's folder
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
    /// Mounts a volume through the desktop's volume service. Nothing is saved, nobody is asked.
    ///
    /// @param address begins with "smb://" or "afp://" and holds a server and a share, or is a
    /// network path "//server/share"; anything else is eFailed. "%20" and its like are decoded
    /// after a scheme, and taken literally in a network path. What is below the share is ignored.
    /// @param credentials the user, the domain and the password may also stand in the address
    /// @param timeoutMs how long to wait at most, beside up to three seconds for its folder
    /// @return eMounted, or why not after the line "MountManager: ADDRESS cannot be mounted:
    /// REASON\n", which never holds the password
    virtual eResult mount(const LightweightString<wchar_t>& address, const Credentials& credentials,
                          unsigned int timeoutMs) = 0;
    /// Unmounts what the desktop's volume service has mounted. What the system has mounted is
    /// eFailed.
    ///
    /// @param address as for mount, or the path of a mount
    /// @return eUnmounted, or why not after the line "MountManager: ADDRESS cannot be unmounted:
    /// REASON\n"
    virtual eResult unmount(const LightweightString<wchar_t>& address, unsigned int timeoutMs) = 0;
};
