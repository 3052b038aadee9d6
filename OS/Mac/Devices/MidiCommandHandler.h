#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Core/TqResult.h>
#include <OS/Threads/iThread.h>
#include <OS/Threads/iThreadEvent.h>

#include "OS/Host/Midi/MidiRunLoop.h"

#include <atomic>
#include <cstdint>

/// The base of every MIDI device: its thread ("CFRUNMIDI"), on which all work with its port is
/// done.
///
/// Commands come from one thread at a time. A command that nobody waits for may be replaced by the
/// next before the thread takes it.
class MidiCommandHandler
{
public:
    enum eCommand : std::uint32_t
    {
        eOpenInput = 0,
        eOpenOutput = 1,
        eRun = 2,
        eCloseInput = 3,
        eCloseOutput = 4,
        eQuit = 5
    };

    /// Has the thread execute a command.
    /// @param wait without it the result is 1 at once
    /// @return the command's result; 0 with an assertion when the device's own thread waits for
    /// itself
    TqResult executeCommand(eCommand command, bool wait);

    static iThread::eExecRC midiCommandLoop(void* handler);

protected:
    MidiCommandHandler();
    MidiCommandHandler(const MidiCommandHandler&) = delete;
    MidiCommandHandler& operator=(const MidiCommandHandler&) = delete;
    virtual ~MidiCommandHandler();

    /// Stops the run loop and ends the thread. A device does it first of all in its destructor,
    /// while the thread can still reach all of it.
    void endThread() noexcept;

    /// On the device's thread.
    virtual TqResult openPort() = 0;
    virtual TqResult closePort() = 0;
    virtual OSInternal::MidiInputPort* inputPort() { return nullptr; }

    OSInternal::MidiRunLoop runLoop_;

private:
    // A command and its number in one word, which the thread reads at once.
    struct alignas(8) Order
    {
        std::uint32_t number_;
        std::uint32_t command_;
    };

    void midiCommandLoop();
    void execute(std::uint32_t command);
    bool isOnThread() const;

    std::atomic<bool> running_{true};
    std::atomic<Order> order_{Order{0, eQuit}};
    std::atomic<std::uint32_t> done_{0}; // the number of the last order executed
    std::atomic<TqResult> result_{0};
    std::atomic<std::uint32_t> threadID_{0}; // the kernel's
    Tq::Ptr<iThreadEvent> commandEvent_;
    Tq::Ptr<iThreadEvent> doneEvent_;
    Tq::Ptr<iThread> thread_;
};
