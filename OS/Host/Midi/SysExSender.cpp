#include "OS/Host/Midi/SysExSender.h"

#include <OS.h>
#include <OS/Threads/iThreadManager.h>

#include <algorithm>
#include <cerrno>

namespace OSInternal {

namespace {

constexpr std::chrono::milliseconds kRetry{1};

} // namespace

int SysExSender::send(std::shared_ptr<MidiOutputPort> port, MidiSysExRequest* request)
{
    const std::size_t kept = std::min<std::size_t>(request->bytesToSend_, request->dataSize_);
    return enqueue(
        {std::move(port), {request->data_, request->data_ + kept}, request->bytesToSend_, request});
}

bool SysExSender::sendBehind(const MidiOutputPort& port, const unsigned char* bytes,
                             std::size_t length, int& status)
{
    const std::lock_guard<std::mutex> lock(lock_);
    const auto last = std::find_if(messages_.rbegin(), messages_.rend(),
                                   [&](const Message& each) { return each.port_.get() == &port; });
    if (last == messages_.rend())
        return false;
    status = messages_.size() < kMaxQueued ? 0 : -ENOBUFS;
    if (status == 0)
        messages_.push_back(
            {last->port_, {bytes, bytes + length}, static_cast<std::uint32_t>(length), nullptr});
    return true;
}

int SysExSender::enqueue(Message message)
{
    const std::lock_guard<std::mutex> lock(lock_);
    if (ended_)
        return -ESHUTDOWN;
    if (messages_.size() >= kMaxQueued)
        return -ENOBUFS;
    messages_.push_back(std::move(message));
    if (!thread_) {
        iThread::InitArgs args;
        args.func_ = &SysExSender::threadBody;
        args.arg_ = this;
        args.name_ = "MIDISysEx";
        thread_ = OS()->threadMgr()->createThread(args);
    }
    wake_.signal();
    return 0;
}

iThread::eExecRC SysExSender::threadBody(void* sender)
{
    static_cast<SysExSender*>(sender)->run();
    return iThread::eExecSucceeded;
}

void SysExSender::run()
{
    std::unique_lock<std::mutex> lock(lock_);
    while (!ended_) {
        const auto now = Clock::now();
        Clock::time_point wakeAt = Clock::time_point::max();
        const auto message = nextDue(now, wakeAt);
        if (message == messages_.end()) {
            lock.unlock();
            using std::chrono::milliseconds;
            wake_.wait(
                wakeAt == Clock::time_point::max()
                    ? -1
                    : static_cast<int>(std::chrono::ceil<milliseconds>(wakeAt - now).count()));
            lock.lock();
            continue;
        }
        sending_ = message->port_.get();
        lock.unlock();
        std::uint32_t size = 0;
        const int status = sendPiece(*message, size);
        lock.lock();
        sending_ = nullptr;
        Messages finished;
        if (isOver(*message, status, size))
            finished.splice(finished.end(), messages_, message);
        sentPiece_.notify_all();
        if (!finished.empty()) {
            lock.unlock();
            complete(finished);
            lock.lock();
        }
    }
}

// The first message of some port whose time has come, in the order in which they came.
SysExSender::Messages::iterator SysExSender::nextDue(Clock::time_point now,
                                                     Clock::time_point& wakeAt)
{
    Messages::iterator found = messages_.end();
    std::vector<const MidiOutputPort*> seen;
    for (auto each = messages_.begin(); each != messages_.end(); ++each) {
        if (std::find(seen.begin(), seen.end(), each->port_.get()) != seen.end())
            continue;
        seen.push_back(each->port_.get());
        each->due_ = std::max(each->due_, each->port_->nextPieceAt());
        wakeAt = std::min(wakeAt, each->due_);
        // The one that has waited longest, so that a fast port does not starve the others.
        if (each->due_ <= now && (found == messages_.end() || each->due_ < found->due_))
            found = each;
    }
    return found;
}

int SysExSender::sendPiece(Message& message, std::uint32_t& size)
{
    size = std::min<std::uint32_t>(message.length_ - message.sent_, kPieceSize);
    if (size == 0)
        return 0;
    unsigned char piece[kPieceSize] = {};
    if (message.sent_ < message.bytes_.size()) {
        const auto from = message.bytes_.begin() + message.sent_;
        std::copy_n(from, std::min<std::ptrdiff_t>(size, message.bytes_.end() - from), piece);
    }
    return message.port_->send(piece, size,
                               message.request_ ? MidiOutputPort::ePiece : MidiOutputPort::eWhole);
}

// After a piece: what remains to be sent has its next time.
bool SysExSender::isOver(Message& message, int status, std::uint32_t size) const
{
    const auto now = Clock::now();
    if (status == -EAGAIN) {
        if (message.lastProgress_ == Clock::time_point{})
            message.lastProgress_ = now; // the first try
        message.due_ = now + kRetry;
        return message.cancelled_ || now - message.lastProgress_ > patience_;
    }
    if (status != 0)
        return true;
    message.sent_ += size;
    message.lastProgress_ = now;
    message.due_ = now;
    return message.cancelled_ || message.sent_ >= message.length_;
}

void SysExSender::complete(Messages& finished)
{
    for (Message& each : finished)
        if (each.request_) {
            each.request_->complete_ = true;
            each.request_->completion_(each.request_);
        }
    finished.clear();
}

void SysExSender::cancel(const MidiOutputPort& port)
{
    Messages finished;
    {
        std::unique_lock<std::mutex> lock(lock_);
        // The thread takes the message whose piece it is sending out of the list itself.
        const auto ofPort = [&](const Message& each) { return each.port_.get() == &port; };
        for (Message& each : messages_)
            if (ofPort(each))
                each.cancelled_ = true;
        sentPiece_.wait(lock, [&] { return sending_ != &port; });
        for (auto each = messages_.begin(); each != messages_.end();) {
            const auto next = std::next(each);
            if (ofPort(*each))
                finished.splice(finished.end(), messages_, each);
            each = next;
        }
    }
    complete(finished);
}

void SysExSender::shutDown()
{
    Tq::Ptr<iThread> thread;
    {
        const std::lock_guard<std::mutex> lock(lock_);
        ended_ = true;
        thread = thread_;
        thread_ = nullptr;
        wake_.signal();
    }
    if (thread)
        thread->waitForCompletion(0);
    Messages finished;
    {
        const std::lock_guard<std::mutex> lock(lock_);
        finished.swap(messages_);
    }
    complete(finished);
}

} // namespace OSInternal
