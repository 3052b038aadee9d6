#pragma once

#include "OS/Host/Midi/AlsaClient.h"
#include "OS/Host/Midi/AlsaEventCoding.h"
#include "OS/Host/Midi/MidiPorts.h"

namespace OSInternal {

/// A source's events as packets, one each, read from a client of its own.
class AlsaInputPort final : public MidiInputPort
{
public:
    AlsaInputPort(std::unique_ptr<AlsaClient> client, MidiPacketSink& sink);
    /// @return 0 or a negative status
    int connect(const snd_seq_addr_t& source);

    int descriptor() const override { return descriptor_; }
    void deliver(const MidiRunLoop& loop) override;

private:
    std::unique_ptr<AlsaClient> client_;
    MidiPacketSink& sink_;
    AlsaDecoder decoder_;
    int descriptor_ = -1;
};

/// Events for one destination, sent at once.
class AlsaOutputPort final : public MidiOutputPort
{
public:
    explicit AlsaOutputPort(std::shared_ptr<AlsaClient> client) : client_(std::move(client)) {}
    ~AlsaOutputPort() override;
    int connect(const snd_seq_addr_t& destination);

    int send(const unsigned char* bytes, std::size_t length, Kind kind) override;
    std::chrono::steady_clock::time_point nextPieceAt() const override { return nextPieceAt_; }

private:
    int sendEvent(snd_seq_event_t& event);

    std::shared_ptr<AlsaClient> client_;
    AlsaEncoder encoder_; // under the client's lock
    snd_seq_addr_t destination_{};
    int port_ = -1;
    int descriptor_ = -1;
    bool isHardware_ = false;
    std::chrono::steady_clock::time_point nextPieceAt_{};
};

} // namespace OSInternal
