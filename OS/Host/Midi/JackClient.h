#pragma once

#include "OS/Host/Midi/JackLibrary.h"
#include "OS/Host/Midi/MidiSystem.h"

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <set>

namespace OSInternal {

/// What a port does in each of the server's cycles, on the server's thread: it neither locks,
/// allocates nor waits.
class JackCyclePort
{
public:
    virtual void process(jack_port_t* port, jack_nframes_t frames) = 0;

protected:
    ~JackCyclePort() = default;
};

/// A connection to the server, and the ports of ours in it. Any thread.
///
/// A server that has died is noticed at once, and asked nothing any more.
class JackClient
{
public:
    /// @return null, with nothing printed, where no server answers
    static std::unique_ptr<JackClient> open(const char* name);
    ~JackClient();
    JackClient(const JackClient&) = delete;
    JackClient& operator=(const JackClient&) = delete;

    const JackLibrary& library() const { return jack_; }
    bool isAlive() const { return alive_.load(); }
    /// Gives the connection up while ports still hold this object. Needed before another is opened:
    /// the library frees clients of a dead server itself then.
    void close();

    /// Other clients' MIDI ports. @param flag JackPortIsOutput for sources, JackPortIsInput for
    /// destinations
    std::vector<MidiEndpoint> endpoints(unsigned long flag);

    /// Makes a port of ours, which takes part in cycles from then on, and connects it. Returns once
    /// what is sent gets through. @param slot for removePort @return 0 or a negative status
    int addPort(const char* name, unsigned long flag, const std::string& peer,
                JackCyclePort& cyclePort, int& slot);
    /// The port takes part in no cycle any more once this returns.
    void removePort(int slot);

    /// Waits until so many cycles are over; at most a quarter of a second, and not for a dead
    /// server.
    void waitCycles(unsigned int count) const;

private:
    struct Slot
    {
        std::atomic<bool> busy_{false}; // taken by a cycle, or by whoever changes the rest
        JackCyclePort* cyclePort_ = nullptr;
        jack_port_t* port_ = nullptr;
        bool taken_ = false; // under lock_
        std::string name_;   // under lock_
    };
    static constexpr std::size_t kMaxPorts = 128;

    explicit JackClient(const JackLibrary& jack) : jack_(jack) {}
    static int onCycle(jack_nframes_t frames, void* client);
    static void onShutdown(jack_status_t, const char*, void* client);
    jack_port_t* registerPort(const std::string& name, unsigned long flag);
    int connect(jack_port_t* port, unsigned long flag, const std::string& peer);
    Slot* freeSlot();
    void setPort(Slot& slot, JackCyclePort* cyclePort, jack_port_t* port);

    const JackLibrary& jack_;
    jack_client_t* client_ = nullptr; // under lock_, once open
    std::atomic<bool> alive_{true};
    std::atomic<unsigned int> cycles_{0};
    std::mutex lock_; // the library's calls
    std::array<Slot, kMaxPorts> slots_;
};

} // namespace OSInternal
