#include "OS/Host/Midi/JackClient.h"

#include "OS/Host/Midi/SigPipeBlock.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <utility>

namespace OSInternal {

namespace {

constexpr std::chrono::milliseconds kCyclePatience{250};

void keepQuiet(const char*) {}

} // namespace

std::unique_ptr<JackClient> JackClient::open(const char* name)
{
    const JackLibrary* jack = JackLibrary::get();
    if (!jack)
        return nullptr;
    const SigPipeBlock block;
    jack->set_error_function(keepQuiet);
    jack->set_info_function(keepQuiet);
    std::unique_ptr<JackClient> result(new JackClient(*jack));
    jack_status_t status{};
    // Never a server of its own: it would outlive the program.
    result->client_ = jack->client_open(name, JackNoStartServer, &status);
    if (!result->client_)
        return nullptr;
    jack->set_process_callback(result->client_, &JackClient::onCycle, result.get());
    jack->on_info_shutdown(result->client_, &JackClient::onShutdown, result.get());
    if (jack->activate(result->client_) != 0)
        return nullptr;
    return result;
}

JackClient::~JackClient()
{
    close();
}

void JackClient::close()
{
    const std::lock_guard<std::mutex> lock(lock_);
    const SigPipeBlock block;
    alive_ = false;
    if (client_)
        jack_.client_close(std::exchange(client_, nullptr));
}

int JackClient::onCycle(jack_nframes_t frames, void* client)
{
    auto& self = *static_cast<JackClient*>(client);
    for (Slot& slot : self.slots_) {
        // A slot that is being changed has nothing to lose in this cycle.
        if (slot.busy_.exchange(true, std::memory_order_acquire))
            continue;
        if (slot.cyclePort_)
            slot.cyclePort_->process(slot.port_, frames);
        slot.busy_.store(false, std::memory_order_release);
    }
    self.cycles_.fetch_add(1, std::memory_order_release);
    return 0;
}

void JackClient::onShutdown(jack_status_t, const char*, void* client)
{
    static_cast<JackClient*>(client)->alive_ = false;
}

std::vector<MidiEndpoint> JackClient::endpoints(unsigned long flag)
{
    std::vector<MidiEndpoint> result;
    const std::lock_guard<std::mutex> lock(lock_);
    const SigPipeBlock block;
    if (!isAlive())
        return result;
    const char** names = jack_.get_ports(client_, nullptr, JACK_DEFAULT_MIDI_TYPE, flag);
    for (const char** name = names; name && *name; ++name) {
        const jack_port_t* port = jack_.port_by_name(client_, *name);
        if (port && !jack_.port_is_mine(client_, port))
            result.push_back({*name, *name, "", !(jack_.port_flags(port) & JackPortIsPhysical)});
    }
    jack_.free(names);
    return result;
}

int JackClient::addPort(const char* name, unsigned long flag, const std::string& peer,
                        JackCyclePort& cyclePort, int& slotNumber)
{
    {
        const std::lock_guard<std::mutex> lock(lock_);
        const SigPipeBlock block;
        Slot* slot = isAlive() ? freeSlot() : nullptr;
        if (!slot)
            return isAlive() ? -ENOSPC : -EPIPE;
        // Names are unique among the ports of a client.
        std::string unique = name;
        const auto isUsed = [&] {
            return std::any_of(slots_.begin(), slots_.end(),
                               [&](const Slot& each) { return each.name_ == unique; });
        };
        for (int number = 2; isUsed(); ++number)
            unique = name + (" " + std::to_string(number));
        jack_port_t* port = registerPort(unique, flag);
        if (!port)
            return -EIO;
        setPort(*slot, &cyclePort, port);
        if (const int status = connect(port, flag, peer)) {
            setPort(*slot, nullptr, nullptr);
            jack_.port_unregister(client_, port);
            return status;
        }
        slot->taken_ = true;
        slot->name_ = unique;
        slotNumber = static_cast<int>(slot - slots_.data());
    }
    // A connection counts from the server's next cycle on; what is sent before it is lost.
    waitCycles(2);
    return 0;
}

jack_port_t* JackClient::registerPort(const std::string& name, unsigned long flag)
{
    const auto direction = flag == JackPortIsOutput ? JackPortIsInput : JackPortIsOutput;
    return jack_.port_register(client_, name.c_str(), JACK_DEFAULT_MIDI_TYPE, direction, 0);
}

int JackClient::connect(jack_port_t* port, unsigned long flag, const std::string& peer)
{
    const char* own = jack_.port_name(port);
    const bool isInput = flag == JackPortIsOutput;
    const int status = isInput ? jack_.connect(client_, peer.c_str(), own)
                               : jack_.connect(client_, own, peer.c_str());
    if (status != 0)
        return status > 0 ? -status : status;
    // Some servers connect a little later.
    const auto limit = std::chrono::steady_clock::now() + kCyclePatience;
    while (isAlive() && !jack_.port_connected_to(port, peer.c_str()) &&
           std::chrono::steady_clock::now() < limit)
        poll(nullptr, 0, 1);
    return 0;
}

JackClient::Slot* JackClient::freeSlot()
{
    const auto slot =
        std::find_if(slots_.begin(), slots_.end(), [](const Slot& each) { return !each.taken_; });
    return slot == slots_.end() ? nullptr : &*slot;
}

// A cycle holds a slot for some microseconds only, and ends also when the server dies.
void JackClient::setPort(Slot& slot, JackCyclePort* cyclePort, jack_port_t* port)
{
    while (slot.busy_.exchange(true, std::memory_order_acquire))
        poll(nullptr, 0, 1);
    slot.cyclePort_ = cyclePort;
    slot.port_ = port;
    slot.busy_.store(false, std::memory_order_release);
}

void JackClient::removePort(int number)
{
    const std::lock_guard<std::mutex> lock(lock_);
    const SigPipeBlock block;
    Slot& slot = slots_[static_cast<std::size_t>(number)];
    jack_port_t* port = slot.port_;
    setPort(slot, nullptr, nullptr);
    if (isAlive())
        jack_.port_unregister(client_, port);
    slot.taken_ = false;
    slot.name_.clear();
}

void JackClient::waitCycles(unsigned int count) const
{
    const unsigned int from = cycles_.load(std::memory_order_acquire);
    const auto limit = std::chrono::steady_clock::now() + kCyclePatience;
    while (isAlive() && cycles_.load(std::memory_order_acquire) - from < count &&
           std::chrono::steady_clock::now() < limit)
        poll(nullptr, 0, 1);
}

} // namespace OSInternal
