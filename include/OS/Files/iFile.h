#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/Files/iAsyncContext.h>

#include <cstdint>

/// An open file: sequential and positioned transfers, size and times. Made by
/// iFileManager::openFile, closed with its last reference.
///
/// Not for asynchronous transfers: queue readAt and writeAt on a TaskQueue instead.
///
/// read, readAt, write and writeAt hold the file's own lock, a leaf, for their whole duration: a
/// positioned transfer is one step for other transfers on the same object. Nothing else takes it,
/// so a positionAt of another thread may come between this thread's positionAt and read. Any
/// thread may call. Nothing throws.
class OS_API iFile : public virtual iObject
{
public:
    /// Passed as unsigned int. A value other than 3 without bit 1 opens for reading.
    enum eAccessMode : unsigned int
    {
        eAccessRead = 1,
        eAccessWrite = 2,
        eAccessReadWrite = 3
    };

    /// Any other value is eOpenExisting. Files named by a scheme ("://") ignore it.
    enum eOpenBehaviour : int
    {
        eOpenExisting = 0,    ///< fails when there is none
        eCreateNew = 1,       ///< fails when there is one
        eCreateAlways = 2,    ///< made when missing, cut to nothing when there
        eTruncateExisting = 3 ///< the same as eCreateAlways, deliberately
    };

    /// Accepted and ignored: files are shared here.
    enum eShareMode : int
    {
        eShareNone = 0,
        eShareRead = 1,
        eShareWrite = 2,
        eShareReadWrite = 3
    };

    /// Bits of the flags.
    enum eFlags : std::uint32_t
    {
        eDirectory = 0x1, ///< how directories are opened; without effect
        /// The path is removed with the object. A local path is removed even when it could not be
        /// opened, deliberately: never pass it for a file that is not your own.
        eDeleteOnClose = 0x20
    };

    enum eTimeType : int
    {
        eLastWriteTime = 0,
        eCreationTime = 1,
        eLastAccessTime = 2
    };

    /// The path exactly as given when the file was opened.
    virtual LightweightString<wchar_t> getFileName() const = 0;

    /// Reads once at the file's position.
    ///
    /// @return bytes read, which may be fewer than `length`; 0 at the end. A failure gives
    /// 0xFFFFFFFF for local files, deliberately, and 0 for files named by a scheme. A local read of
    /// more than 10 ms prints "%-9.3f: read elapsed %.3fms\n" with the seconds now and the time
    /// taken.
    virtual unsigned int read(void* buffer, unsigned int length) = 0;
    /// Moves to an offset in bytes and reads there like read(); the position stays behind it.
    ///
    /// @return as read(); 0 when a local file cannot be positioned. Local files print "seek elapsed
    /// %.3fms\n" and "read elapsed %.3fms\n" when the seek, and seek and read together, took more
    /// than 20 ms
    virtual unsigned int readAt(unsigned long long offset, void* buffer, unsigned int length) = 0;
    /// Not supported, like the three other asynchronous operations: prints the assertion report for
    /// "false" and leaves buffer and context alone. @return false
    virtual bool readAsync(void* buffer, unsigned int length, Tq::Ptr<iAsyncContext> context) = 0;
    /// @return false; see readAsync
    virtual bool readAtAsync(unsigned long long offset, void* buffer, unsigned int length,
                             Tq::Ptr<iAsyncContext> context) = 0;
    /// Writes once at the file's position. @return whether all bytes were written
    virtual bool write(void* buffer, unsigned int length) = 0;
    /// @return false; see readAsync
    virtual bool writeAsync(void* buffer, unsigned int length, Tq::Ptr<iAsyncContext> context) = 0;
    /// Moves to an offset in bytes and writes there.
    /// @return whether all bytes were written; false when a local file cannot be positioned
    virtual bool writeAt(unsigned long long offset, void* buffer, unsigned int length) = 0;
    /// @return false; see readAsync
    virtual bool writeAtAsync(unsigned long long offset, void* buffer, unsigned int length,
                              Tq::Ptr<iAsyncContext> context) = 0;

    /// Moves the position, in bytes from the start. Takes no lock. @return whether it could
    virtual bool positionAt(unsigned long long offset) = 0;
    /// The position in bytes; -1 on failure. Takes no lock.
    virtual std::int64_t getPosition() const = 0;

    /// A time of the file; 0 when it cannot be told.
    ///
    /// Local files: 100 ns units since 1970-01-01, whole seconds only; eCreationTime is the time of
    /// the last change of status. Files named by a scheme: milliseconds since 1970; eCreationTime
    /// prints the assertion report for "false". The two units differ deliberately.
    virtual std::uint64_t getTime(eTimeType type) const = 0;
    /// Sets the access and the modification time of a local file, both, whichever is named;
    /// deliberate. @param time 100 ns units since 1970-01-01, cut to whole seconds
    /// @return false for eCreationTime, on failure, and for files named by a scheme
    virtual bool setTime(eTimeType type, const unsigned long long& time) = 0;
    /// Bytes; 0 when it cannot be told.
    virtual std::int64_t getSize() const = 0;
    /// For files whose size is remembered; does nothing by itself.
    virtual void recalculateSize() {}
    /// Not supported. @return false, the file unchanged; files named by a scheme print the
    /// assertion report for "false"
    virtual bool truncate(unsigned long long size) = 0;
    virtual bool isOpen() const = 0;
    /// Capability bits; none is defined. @return 0
    virtual unsigned int getCaps() const { return 0; }
};
