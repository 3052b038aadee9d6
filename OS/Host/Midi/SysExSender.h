#pragma once

#include "OS/Host/Midi/EventDescriptor.h"
#include "OS/Host/Midi/MidiPorts.h"

#include <OS/Core/Ptr.h>
#include <OS/Threads/iThread.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

namespace OSInternal {

/// One long message to send. Whoever makes it keeps it until `completion_` is called.
struct MidiSysExRequest
{
    const unsigned char* data_ = nullptr; ///< read before MidiSystem::sendSysEx returns, not later
    std::size_t dataSize_ = 0;            ///< bytes that may be read
    std::uint32_t bytesToSend_ = 0;       ///< beyond dataSize_ zeros are sent
    bool complete_ = false;
    void (*completion_)(MidiSysExRequest* request) = nullptr;
    void* reference_ = nullptr;
};

/// Sends long messages in pieces, for all ports of a back end, on one thread named "MIDISysEx" that
/// the first one starts. Ports are served in turn; a port's messages keep their order.
///
/// A message completes when its last piece was taken, when its port refuses one or takes nothing
/// for kPatience, by cancel(), or by shutDown(); exactly once, with no lock held. Any thread.
class SysExSender
{
public:
    static constexpr std::size_t kPieceSize = 256;
    static constexpr std::chrono::seconds kPatience{5};
    static constexpr std::size_t kMaxQueued = 65536; // messages, over all ports

    /// @param patience for tests
    explicit SysExSender(std::chrono::milliseconds patience = kPatience) : patience_(patience) {}
    SysExSender(const SysExSender&) = delete;
    SysExSender& operator=(const SysExSender&) = delete;
    ~SysExSender() { shutDown(); }

    /// @return 0, or a negative status: the request is not completed then
    int send(std::shared_ptr<MidiOutputPort> port, MidiSysExRequest* request);

    /// Has a short message follow the long ones of its port. @return whether there are any; false
    /// leaves it to the caller @param status 0 or a negative status, when there are
    bool sendBehind(const MidiOutputPort& port, const unsigned char* bytes, std::size_t length,
                    int& status);

    /// Completes everything of a port; no piece of it is being sent any more afterwards.
    void cancel(const MidiOutputPort& port);

    /// Completes everything and ends the thread; requests are refused from then on.
    void shutDown();

private:
    using Clock = std::chrono::steady_clock;
    struct Message
    {
        std::shared_ptr<MidiOutputPort> port_;
        std::vector<unsigned char> bytes_;
        std::uint32_t length_;
        MidiSysExRequest* request_; // null: a short message
        std::uint32_t sent_ = 0;
        Clock::time_point due_{};
        Clock::time_point lastProgress_{};
        bool cancelled_ = false;
    };
    using Messages = std::list<Message>;

    static iThread::eExecRC threadBody(void* sender);
    void run();
    Messages::iterator nextDue(Clock::time_point now, Clock::time_point& wakeAt);
    static int sendPiece(Message& message, std::uint32_t& size);
    bool isOver(Message& message, int status, std::uint32_t size) const;
    static void complete(Messages& finished);
    int enqueue(Message message);

    const std::chrono::milliseconds patience_;
    std::mutex lock_;
    std::condition_variable sentPiece_;
    EventDescriptor wake_;
    Messages messages_;                       // under lock_
    const MidiOutputPort* sending_ = nullptr; // under lock_: the port whose piece is under way
    bool ended_ = false;                      // under lock_
    Tq::Ptr<iThread> thread_;                 // under lock_
};

} // namespace OSInternal
