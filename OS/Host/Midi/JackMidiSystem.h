#pragma once

#include "OS/Host/Midi/MidiSystem.h"

#include <mutex>

namespace OSInternal {

class JackClient;

/// MIDI by a JACK server: one client, with a port for each open device. The address of an endpoint
/// is its port's name.
///
/// When the server has died there are no devices; one that runs again is found by the next count.
/// Ports of before keep silent.
class JackMidiSystem final : public MidiSystem
{
public:
    /// @return null where no server runs; none is started
    static std::shared_ptr<MidiSystem> open(const char* clientName);

    JackMidiSystem(const char* clientName, std::shared_ptr<JackClient> client)
        : clientName_(clientName), client_(std::move(client))
    {
    }

    const char* name() const override { return "JACK"; }
    std::vector<MidiEndpoint> sources() override;
    std::vector<MidiEndpoint> destinations() override;
    int openInput(const MidiEndpoint& source, MidiPacketSink& sink,
                  std::unique_ptr<MidiInputPort>& port) override;
    int openOutput(const MidiEndpoint& destination, std::shared_ptr<MidiOutputPort>& port) override;

private:
    std::shared_ptr<JackClient> client();
    std::vector<MidiEndpoint> endpoints(unsigned long flag);

    const char* const clientName_;
    std::mutex lock_;
    std::shared_ptr<JackClient> client_; // under lock_; null while no server runs
};

} // namespace OSInternal
