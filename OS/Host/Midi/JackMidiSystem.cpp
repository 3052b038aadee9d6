#include "OS/Host/Midi/JackMidiSystem.h"

#include "OS/Host/Midi/JackClient.h"
#include "OS/Host/Midi/JackPorts.h"

#include <cerrno>

namespace OSInternal {

std::shared_ptr<MidiSystem> JackMidiSystem::open(const char* clientName)
{
    std::shared_ptr<JackClient> client = JackClient::open(clientName);
    return client ? std::make_shared<JackMidiSystem>(clientName, std::move(client)) : nullptr;
}

std::shared_ptr<JackClient> JackMidiSystem::client()
{
    const std::lock_guard<std::mutex> lock(lock_);
    if (client_ && client_->isAlive())
        return client_;
    if (client_)
        client_->close();
    client_ = JackClient::open(clientName_);
    return client_;
}

std::vector<MidiEndpoint> JackMidiSystem::endpoints(unsigned long flag)
{
    const auto server = client();
    return server ? server->endpoints(flag) : std::vector<MidiEndpoint>();
}

std::vector<MidiEndpoint> JackMidiSystem::sources()
{
    return endpoints(JackPortIsOutput);
}

std::vector<MidiEndpoint> JackMidiSystem::destinations()
{
    return endpoints(JackPortIsInput);
}

int JackMidiSystem::openInput(const MidiEndpoint& source, MidiPacketSink& sink,
                              std::unique_ptr<MidiInputPort>& port)
{
    const auto server = client();
    if (!server)
        return -EPIPE;
    auto made = std::make_unique<JackInputPort>(server, sink);
    const int status = made->connect(source.address_);
    if (status == 0)
        port = std::move(made);
    return status;
}

int JackMidiSystem::openOutput(const MidiEndpoint& destination,
                               std::shared_ptr<MidiOutputPort>& port)
{
    const auto server = client();
    if (!server)
        return -EPIPE;
    auto made = std::make_shared<JackOutputPort>(server);
    const int status = made->connect(destination.address_);
    if (status == 0)
        port = std::move(made);
    return status;
}

} // namespace OSInternal
