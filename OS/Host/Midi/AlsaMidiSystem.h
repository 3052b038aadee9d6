#pragma once

#include "OS/Host/Midi/MidiSystem.h"

namespace OSInternal {

class AlsaClient;

/// MIDI by the kernel's sequencer. Its client, under the given name, has a port for each open
/// destination; each open source has a client of its own, which its device's thread reads.
///
/// The address of an endpoint is "client:port".
class AlsaMidiSystem final : public MidiSystem
{
public:
    /// @return null where there is no sequencer or it may not be used
    static std::shared_ptr<MidiSystem> open(const char* clientName);

    explicit AlsaMidiSystem(std::shared_ptr<AlsaClient> client) : client_(std::move(client)) {}

    const char* name() const override { return "ALSA"; }
    std::vector<MidiEndpoint> sources() override;
    std::vector<MidiEndpoint> destinations() override;
    int openInput(const MidiEndpoint& source, MidiPacketSink& sink,
                  std::unique_ptr<MidiInputPort>& port) override;
    int openOutput(const MidiEndpoint& destination, std::shared_ptr<MidiOutputPort>& port) override;

private:
    std::shared_ptr<AlsaClient> client_;
};

} // namespace OSInternal
