#pragma once

#include "OS/Host/Midi/SysExSender.h"

#include <memory>
#include <string>
#include <vector>

namespace OSInternal {

/// A source or a destination.
struct MidiEndpoint
{
    std::string address_; ///< the back end's own
    std::string name_;    ///< UTF-8
    std::string manufacturer_;
    bool isVirtual_ = false;
};

/// The host's MIDI services: the only door from the device room to them.
///
/// Back ends: AlsaMidiSystem, JackMidiSystem, and one without devices. Chosen by open(). Every call
/// asks afresh. Statuses are 0 or negative error numbers; nothing is printed. Any thread. Ports may
/// outlive it.
class MidiSystem
{
public:
    /// How long a short message waits for a destination that takes nothing.
    static constexpr std::chrono::seconds kPatience{5};

    virtual ~MidiSystem();

    /// "ALSA", "JACK" or "none".
    virtual const char* name() const = 0;

    virtual std::vector<MidiEndpoint> sources() = 0;
    virtual std::vector<MidiEndpoint> destinations() = 0;

    /// Connects to a source. @param sink called by the port's deliver()
    virtual int openInput(const MidiEndpoint& source, MidiPacketSink& sink,
                          std::unique_ptr<MidiInputPort>& port) = 0;
    virtual int openOutput(const MidiEndpoint& destination,
                           std::shared_ptr<MidiOutputPort>& port) = 0;

    /// Sends a short message, behind the long ones of its port unless it is a real-time message.
    /// Waits while the destination takes nothing.
    int send(MidiOutputPort& port, const unsigned char* bytes, std::size_t length);
    /// Begins to send a long message. @return 0, or a negative status and no completion
    int sendSysEx(std::shared_ptr<MidiOutputPort> port, MidiSysExRequest* request);
    /// Completes the long messages of a port that is about to go.
    void cancelSysEx(const MidiOutputPort& port) { sender_.cancel(port); }
    /// Completes all long messages and takes no more.
    void shutDown() { sender_.shutDown(); }

    /// The services that VANTOR_MIDI names, else those that answer. @return never null
    static std::shared_ptr<MidiSystem> open();

private:
    SysExSender sender_;
};

} // namespace OSInternal
