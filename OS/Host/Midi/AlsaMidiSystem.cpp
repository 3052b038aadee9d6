#include "OS/Host/Midi/AlsaMidiSystem.h"

#include "OS/Host/Midi/AlsaClient.h"
#include "OS/Host/Midi/AlsaPorts.h"

#include <cerrno>

namespace OSInternal {

std::shared_ptr<MidiSystem> AlsaMidiSystem::open(const char* clientName)
{
    int status = 0;
    std::shared_ptr<AlsaClient> client = AlsaClient::open(clientName, status);
    return client ? std::make_shared<AlsaMidiSystem>(std::move(client)) : nullptr;
}

std::vector<MidiEndpoint> AlsaMidiSystem::sources()
{
    const std::lock_guard<std::mutex> lock(client_->lock());
    return client_->endpoints(SND_SEQ_PORT_CAP_READ | SND_SEQ_PORT_CAP_SUBS_READ);
}

std::vector<MidiEndpoint> AlsaMidiSystem::destinations()
{
    const std::lock_guard<std::mutex> lock(client_->lock());
    return client_->endpoints(SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE);
}

int AlsaMidiSystem::openInput(const MidiEndpoint& source, MidiPacketSink& sink,
                              std::unique_ptr<MidiInputPort>& port)
{
    snd_seq_addr_t address;
    if (!parseAlsaAddress(source.address_, address))
        return -EINVAL;
    int status = 0;
    auto client = AlsaClient::open("MIDI client", status);
    if (!client)
        return status;
    auto made = std::make_unique<AlsaInputPort>(std::move(client), sink);
    status = made->connect(address);
    if (status >= 0)
        port = std::move(made);
    return std::min(status, 0);
}

int AlsaMidiSystem::openOutput(const MidiEndpoint& destination,
                               std::shared_ptr<MidiOutputPort>& port)
{
    snd_seq_addr_t address;
    if (!parseAlsaAddress(destination.address_, address))
        return -EINVAL;
    auto made = std::make_shared<AlsaOutputPort>(client_);
    const int status = made->connect(address);
    if (status >= 0)
        port = std::move(made);
    return std::min(status, 0);
}

} // namespace OSInternal
