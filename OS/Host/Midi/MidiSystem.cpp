#include "OS/Host/Midi/MidiSystem.h"

#include "OS/Host/Midi/AlsaMidiSystem.h"
#include "OS/Host/Midi/JackMidiSystem.h"

#include <cerrno>
#include <cstdlib>
#include <poll.h>
#include <string_view>

namespace OSInternal {

namespace {

// The name under which the host's other programs see ours.
constexpr char kClientName[] = "MIDI client";

class NoMidiSystem final : public MidiSystem
{
public:
    const char* name() const override { return "none"; }
    std::vector<MidiEndpoint> sources() override { return {}; }
    std::vector<MidiEndpoint> destinations() override { return {}; }
    int openInput(const MidiEndpoint&, MidiPacketSink&, std::unique_ptr<MidiInputPort>&) override
    {
        return -ENODEV;
    }
    int openOutput(const MidiEndpoint&, std::shared_ptr<MidiOutputPort>&) override
    {
        return -ENODEV;
    }
};

} // namespace

MidiSystem::~MidiSystem() = default;

int MidiSystem::send(MidiOutputPort& port, const unsigned char* bytes, std::size_t length)
{
    constexpr unsigned char kFirstRealTime = 0xF8;
    int status = 0;
    if (bytes[0] < kFirstRealTime && sender_.sendBehind(port, bytes, length, status))
        return status;
    const auto limit = std::chrono::steady_clock::now() + kPatience;
    while ((status = port.send(bytes, length, MidiOutputPort::eWhole)) == -EAGAIN) {
        if (std::chrono::steady_clock::now() > limit)
            return -ETIMEDOUT;
        poll(nullptr, 0, 1);
    }
    return status;
}

int MidiSystem::sendSysEx(std::shared_ptr<MidiOutputPort> port, MidiSysExRequest* request)
{
    return sender_.send(std::move(port), request);
}

std::shared_ptr<MidiSystem> MidiSystem::open()
{
    const char* variable = std::getenv("VANTOR_MIDI");
    const std::string_view wanted = variable ? variable : "";
    const bool any = wanted != "alsa" && wanted != "jack" && wanted != "none";
    std::shared_ptr<MidiSystem> system;
    // ALSA first: it shows the hardware, which servers only show once more.
    if (any || wanted == "alsa")
        system = AlsaMidiSystem::open(kClientName);
    if (!system && (any || wanted == "jack"))
        system = JackMidiSystem::open(kClientName);
    if (!system)
        system = std::make_shared<NoMidiSystem>();
    return system;
}

} // namespace OSInternal
