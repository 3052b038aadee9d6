// MIDI through a JACK server of the benchmark's own, against two clients that use its library
// alone: from the sender's hand-over to the receiver's call, in the same cycles. Skipped where no
// server is installed.

#include "support/PairedRuns.h"

#include <OS.h>
#include <OS/Devices/iMIDI.h>
#include <OS/Devices/iMIDIDeviceInfo.h>

#include "tests/support/JackServer.h"

#include <atomic>
#include <memory>

namespace {

using Clock = std::chrono::steady_clock;

double sinceUs(Clock::time_point start)
{
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

// Both receivers: the time of the last message, and how many came.
struct Arrivals
{
    void note()
    {
        at_ = Clock::now();
        count_.fetch_add(1, std::memory_order_release);
    }
    Clock::time_point at_; // of the last; read once count_ has grown
    std::atomic<unsigned int> count_{0};
};

class OurReceiver final : public InputCallbackReceiver
{
public:
    void handleShortMsg(unsigned int, iMidiInputDevice*, unsigned int) override
    {
        arrivals_.note();
    }
    void handleLongMsg(unsigned int, iMidiInputDevice*, const unsigned char*, unsigned int) override
    {
    }
    Arrivals arrivals_;
};

// A client that does nothing but receive, in its own cycle: no library can be earlier.
class RawReceiver
{
public:
    RawReceiver()
    {
        client_ = jack_client_open("floor", JackNoStartServer, nullptr);
        port_ = jack_port_register(client_, "in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
        jack_set_process_callback(
            client_,
            [](jack_nframes_t frames, void* self) {
                auto& receiver = *static_cast<RawReceiver*>(self);
                void* buffer = jack_port_get_buffer(receiver.port_, frames);
                for (std::uint32_t n = jack_midi_get_event_count(buffer); n > 0; --n)
                    receiver.arrivals_.note();
                return 0;
            },
            this);
        jack_activate(client_);
        jack_connect(client_, "peer:out", "floor:in");
    }
    ~RawReceiver() { jack_client_close(client_); }
    Arrivals arrivals_;

private:
    jack_client_t* client_;
    jack_port_t* port_;
};

// Messages one by one, each to both receivers in the same cycle. @return the median latencies
std::pair<double, double> latenciesUs(JackPeer& peer, Arrivals& ours, Arrivals& bare, int messages)
{
    std::vector<double> latencies[2];
    for (int i = 0; i < messages; ++i) {
        const unsigned int before[] = {ours.count_.load(), bare.count_.load()};
        // Anywhere in a cycle.
        const auto start = Clock::now() + std::chrono::microseconds(i * 37 % 1300);
        while (Clock::now() < start) {
        }
        peer.send({0x90, 0x3C, 0x64});
        for (Arrivals* each : {&ours, &bare}) {
            const bool isBare = each == &bare;
            while (each->count_.load(std::memory_order_acquire) == before[isBare])
                poll(nullptr, 0, 1);
            latencies[isBare].push_back(
                std::chrono::duration<double, std::micro>(each->at_ - start).count());
        }
    }
    return {Bench::median(latencies[0]), Bench::median(latencies[1])};
}

void benchLatency(const char* period)
{
    JackServer server(period);
    if (!server.isUp()) {
        std::printf("no JACK server can be run here\n");
        return;
    }
    JackPeer peer;
    RawReceiver floor;
    OurReceiver receiver;
    iMidiInputDevice* device = nullptr;
    MIDIDeviceInfo info;
    auto& midi = *OS()->midi();
    unsigned int index = 0;
    auto& names = dynamic_cast<iMIDIDeviceInfo&>(midi);
    while (names.getInputDevInfo(index, info) && info.name_ != L"peer:out")
        ++index;
    midi.open(device, index, receiver);
    const std::unique_ptr<iMidiInputDevice> input(device);
    input->start();

    const std::string what = std::string("message to receiver, cycles of ") + period + " frames";
    std::pair<double, double> latest;
    Bench::compare(what,
                   {{"ours",
                     [&] {
                         latest = latenciesUs(peer, receiver.arrivals_, floor.arrivals_, 200);
                         return latest.first;
                     }},
                    {"a bare client", [&] { return latest.second; }}},
                   {{{"a bare client"}, 1.2}});

    constexpr unsigned int kMessages = 100'000;
    const unsigned int ours = receiver.arrivals_.count_, bare = floor.arrivals_.count_;
    const auto start = Clock::now();
    for (unsigned int i = 0; i < kMessages; ++i)
        peer.send({0x90, 0x3C, 0x64});
    waitUntil([&] { return receiver.arrivals_.count_ - ours >= kMessages; });
    waitUntil([&] { return floor.arrivals_.count_ - bare >= kMessages; });
    const double us = sinceUs(start);
    std::printf("\nof %u messages in %.0f ms: ours lost %u, a bare client %u\n", kMessages,
                us / 1000, kMessages - (receiver.arrivals_.count_ - ours),
                kMessages - (floor.arrivals_.count_ - bare));
    input->stop();
    input->close();
    midi.deinitialise();
}

} // namespace

int main()
{
    setenv("VANTOR_MIDI", "jack", 1);
    Bench::printHeader("MIDI through JACK", "us");
    for (const char* period : {"64", "256"})
        benchLatency(period);
}
