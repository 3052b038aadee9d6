#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>

#include <cstdint>

/// A thread that runs one function. It starts as it is made, and releasing the iThread neither
/// stops nor waits for it.
///
/// For a sequence of jobs use TaskQueue. Made by iThreadManager::createThread and shared through
/// Tq::Ptr. Operations take no lock: apart from getID they belong to one thread at a time.
class OS_API iThread : public iObject
{
public:
    /// What a body returns; the library never looks at it.
    enum eExecRC : int
    {
        eExecSucceeded = 0,
        eExecFailed = 1
    };

    /// A scale from 0 to 5, mapped linearly onto the scheduler's range.
    enum ePriority : int
    {
        ePriorityIdle = 0,
        ePriorityLow = 1,
        ePriorityNormal = 2,
        ePriorityHigh = 3,
        ePriorityVeryHigh = 4,
        ePriorityTimeCritical = 5,
    };

    /// What iThreadManager::protectedExecute would hand to its handler. The library never makes
    /// one.
    class Exception
    {
    public:
        /// @param message not copied
        explicit Exception(const char* message) : message_(message) {}
        const char* message() const { return message_; }

    private:
        const char* message_;
    };

    /// The description of a thread to create.
    struct InitArgs
    {
        eExecRC (*func_)(void*) =
            nullptr;                   ///< the body; an exception that escapes it ends the process
        void* arg_ = nullptr;          ///< handed to the body
        std::uint32_t stackSize_ = 0;  ///< bytes, raised to 1 MiB; 0 takes the system's default
        LightweightString<char> name_; ///< empty leaves the thread unnamed; the kernel keeps the
                                       ///< first 15 bytes, cut between characters
        ePriority priority_ = ePriorityNormal; ///< recorded, not applied; deliberate
        bool createSuspended_ = false; ///< must be false: not supported, reported and ignored
    };

    /// The thread's number within the process, from 1 in the order of creation. 0 for a moment
    /// after the body has started. Unique only while threads are not created concurrently,
    /// deliberately. It is not iThreadManager::getCurrentThreadID(). Any thread may ask.
    virtual std::uint32_t getID() const = 0;

    /// Always ePriorityNormal (2), whatever was set; deliberate.
    virtual ePriority getPriority() const = 0;
    /// @return whether the scheduler accepted. Time-sharing threads have a single priority here, so
    ///         every value is accepted and nothing changes
    virtual bool setPriority(ePriority priority) = 0;

    /// Not supported. @return false
    virtual bool setAffinity(unsigned int mask) = 0;

    /// Not supported: print an assertion and do nothing.
    virtual void resume() = 0;
    virtual void suspend() = 0;

    /// Waits until the thread has ended.
    ///
    /// @param timeoutMs ignored, deliberately: the wait has no limit
    /// @return true when the call had to wait for the end, false when the body had already
    /// returned.
    ///         What the body did is visible to the caller in both cases
    virtual bool waitForCompletion(unsigned int timeoutMs) const = 0;

    /// The object stored under a name with this thread, or null.
    virtual Tq::Ptr<iObject> getObject(const LightweightString<char>& name) = 0;
    /// Stores an object with this thread, until it is replaced or the iThread goes. A null object
    /// is stored as such; the entry stays.
    virtual void setObject(const LightweightString<char>& name, Tq::Ptr<iObject> object) = 0;
};
