#pragma once

#include "OS/Host/Midi/JackClient.h"
#include "OS/Host/Midi/MidiPorts.h"
#include "OS/Host/Midi/PacketRing.h"

namespace OSInternal {

/// A source's events as packets, one each, handed over from the server's thread.
class JackInputPort final : public MidiInputPort, private JackCyclePort
{
public:
    JackInputPort(std::shared_ptr<JackClient> client, MidiPacketSink& sink);
    ~JackInputPort() override;
    /// @return 0 or a negative status
    int connect(const std::string& source);

    int descriptor() const override { return ready_.get(); }
    void deliver(const MidiRunLoop& loop) override;

private:
    void process(jack_port_t* port, jack_nframes_t frames) override;

    std::shared_ptr<JackClient> client_;
    MidiPacketSink& sink_;
    PacketRing ring_;
    EventDescriptor ready_;
    std::vector<unsigned char> packet_; // deliver's
    int slot_ = -1;
};

/// Packets for one destination, handed over to the server's thread as one event each.
class JackOutputPort final : public MidiOutputPort, private JackCyclePort
{
public:
    explicit JackOutputPort(std::shared_ptr<JackClient> client);
    ~JackOutputPort() override;
    int connect(const std::string& destination);

    int send(const unsigned char* bytes, std::size_t length, Kind kind) override;
    std::chrono::steady_clock::time_point nextPieceAt() const override { return {}; }

private:
    void process(jack_port_t* port, jack_nframes_t frames) override;

    std::shared_ptr<JackClient> client_;
    std::mutex pushing_;
    PacketRing ring_; // pushed to under pushing_
    int slot_ = -1;
};

} // namespace OSInternal
