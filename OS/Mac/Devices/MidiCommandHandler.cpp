#include "OS/Mac/Devices/MidiCommandHandler.h"

#include <OS.h>
#include <OS/Threads/iThreadManager.h>

#include "OS/Mac/Core/Assertion.h"

namespace {

constexpr char kUnknownCommandPlace[] = "OS/Mac/MIDI line 141";
constexpr char kOwnThreadPlace[] = "OS/Mac/MIDI line 152";

} // namespace

MidiCommandHandler::MidiCommandHandler()
{
    commandEvent_ = OS()->threadMgr()->createEvent(false, false, nullptr);
    doneEvent_ = OS()->threadMgr()->createEvent(false, false, nullptr);
    iThread::InitArgs args;
    args.func_ = &MidiCommandHandler::midiCommandLoop;
    args.arg_ = this;
    args.name_ = "CFRUNMIDI";
    args.priority_ = iThread::ePriorityIdle;
    thread_ = OS()->threadMgr()->createThread(args);
}

MidiCommandHandler::~MidiCommandHandler()
{
    endThread();
}

void MidiCommandHandler::endThread() noexcept
{
    if (!thread_)
        return;
    running_ = false;
    runLoop_.stop();
    executeCommand(eQuit, false);
    thread_->waitForCompletion(2000);
    thread_ = nullptr;
}

TqResult MidiCommandHandler::executeCommand(eCommand command, bool wait)
{
    if (wait && isOnThread()) {
        OSInternal::reportAssertion("false", kOwnThreadPlace);
        return 0;
    }
    const std::uint32_t number = order_.load().number_ + 1;
    result_ = wait ? 0 : 1;
    order_ = Order{number, command};
    commandEvent_->set();
    if (!wait)
        return 1;
    // The event may still be set by an earlier command that nobody waited for.
    do
        doneEvent_->wait(iWaitable::kNoTimeOut);
    while (done_ != number);
    return result_;
}

bool MidiCommandHandler::isOnThread() const
{
    return threadID_ == OS()->threadMgr()->getCurrentThreadID();
}

iThread::eExecRC MidiCommandHandler::midiCommandLoop(void* handler)
{
    static_cast<MidiCommandHandler*>(handler)->midiCommandLoop();
    return iThread::eExecSucceeded;
}

void MidiCommandHandler::midiCommandLoop()
{
    threadID_ = OS()->threadMgr()->getCurrentThreadID();
    while (running_) {
        commandEvent_->wait(iWaitable::kNoTimeOut);
        const Order order = order_;
        execute(order.command_);
        done_ = order.number_;
        doneEvent_->set();
    }
}

void MidiCommandHandler::execute(std::uint32_t command)
{
    switch (command) {
    case eOpenInput:
    case eOpenOutput:
        result_ = openPort();
        break;
    case eRun:
        runLoop_.run(inputPort());
        break;
    case eCloseInput:
    case eCloseOutput:
        closePort();
        result_ = 1;
        break;
    case eQuit:
        break;
    default:
        OSInternal::reportAssertion("false", kUnknownCommandPlace);
    }
}
