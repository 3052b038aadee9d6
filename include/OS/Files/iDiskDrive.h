#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/iObject.h>

#include <cstdint>

/// A mounted volume. Made by the file manager and shared through Tq::Ptr.
///
/// What it is was read when it was made, from the system's own tables, without touching the volume.
/// The space is asked for anew at every call: that waits while the server of a network volume is
/// silent. Any thread; no locks.
class OS_API iDiskDrive : public iObject
{
public:
    enum eType : int
    {
        eAny = 0, ///< in questions only
        eFixed = 1,
        eRemovable = 2, ///< USB, memory cards
        eNetwork = 3,
        eOptical = 4,
        eMemory = 5 ///< lost with the power: tmpfs and its like
    };

    /// What stays the same while the volume exists: its UUID where it has one, else what is
    /// mounted, such as "//server/share" or "/dev/sda1", else the kind and the place, such as
    /// "tmpfs:/mnt/ram".
    virtual LightweightString<wchar_t> getID() const = 0;
    /// The folder where it is mounted, with a trailing "/".
    virtual LightweightString<wchar_t> getPath() const = 0;
    /// Its label, else the last part of its path; "/" for the root without a label.
    virtual LightweightString<wchar_t> getName() const = 0;
    /// Such as "ext4".
    virtual LightweightString<wchar_t> getFileSystem() const = 0;
    /// Never eAny.
    virtual eType getType() const = 0;
    virtual bool isReadOnly() const = 0;
    /// Bytes; 0 once the volume is gone.
    virtual std::uint64_t getTotalSpace() const = 0;
    /// Bytes that this user may still fill; 0 once the volume is gone.
    virtual std::uint64_t getFreeSpace() const = 0;
};
