#pragma once

#include "OS/Host/Midi/PacketRing.h"
#include "support/BackgroundThread.h"
#include "support/FakeMidi.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sched.h>
#include <string>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <jack/jack.h>
#include <jack/midiport.h>

/// Shared memory of this process's own, if it may, else the machine's, with other tests locked out:
/// a machine has eight places for servers, keeps those of killed ones, and clients of two servers
/// disturb each other. For the main thread, before it starts others that use a server.
class ServerMemory
{
public:
    ServerMemory()
    {
        static const bool isOwn = unshare(CLONE_NEWNS) == 0 &&
                                  mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                                  mount("tmpfs", "/dev/shm", "tmpfs", 0, nullptr) == 0;
        if (isOwn)
            return;
        const auto path = std::filesystem::temp_directory_path() / "vantor-test-jack.lock";
        file_ = open(path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC, 0644);
        flock(file_, LOCK_EX);
    }
    ServerMemory(const ServerMemory&) = delete;
    ServerMemory& operator=(const ServerMemory&) = delete;
    ~ServerMemory()
    {
        if (file_ >= 0)
            close(file_);
    }

private:
    int file_ = -1;
};

/// A server of the test's own, without sound hardware and with cycles of 1.3 ms, that this
/// process's clients find. One at a time: clients of two servers disturb each other.
class JackServer
{
public:
    explicit JackServer(const std::string& periodFrames = "64")
    {
        jack_set_error_function([](const char*) {});
        jack_set_info_function([](const char*) {});
        setenv("JACK_NO_AUDIO_RESERVATION", "1", 1);
        // One that was killed leaves its place in a table of eight, which the next one's start
        // clears; that start itself may fail.
        for (int tries = 0; tries < 5 && !isUp_ && isInstalled_; ++tries)
            start(periodFrames);
    }
    JackServer(const JackServer&) = delete;
    JackServer& operator=(const JackServer&) = delete;
    ~JackServer()
    {
        end(SIGTERM);
        unsetenv("JACK_DEFAULT_SERVER");
    }

    bool isUp() const { return isUp_; }
    bool isInstalled() const { return isInstalled_; }
    void kill() { end(SIGKILL); }

private:
    void start(const std::string& periodFrames)
    {
        end(SIGKILL);
        setenv("JACK_DEFAULT_SERVER", kName, 1);
        process_ = fork();
        if (process_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            const int nowhere = open("/dev/null", O_RDWR);
            for (int stream = 0; stream < 3; ++stream)
                dup2(nowhere, stream);
            execlp("jackd", "jackd", "-r", "-m", "-S", "-p", "64", "-n", kName, "-d", "dummy", "-r",
                   "48000", "-p", periodFrames.c_str(), nullptr);
            _exit(kNotInstalled);
        }
        isUp_ = waitUntil([&] { return hasEnded() || answers(); }) && !hasEnded();
    }
    bool hasEnded()
    {
        int status = 0;
        if (process_ > 0 && waitpid(process_, &status, WNOHANG) == process_) {
            process_ = -1;
            isInstalled_ = !WIFEXITED(status) || WEXITSTATUS(status) != kNotInstalled;
        }
        return process_ < 0;
    }
    static bool answers()
    {
        jack_status_t status{};
        jack_client_t* client = jack_client_open("waiting", JackNoStartServer, &status);
        if (client)
            jack_client_close(client);
        return client != nullptr;
    }
    void end(int signal)
    {
        if (process_ <= 0)
            return;
        ::kill(process_, signal);
        waitpid(process_, nullptr, 0);
        process_ = -1;
    }

    static constexpr int kNotInstalled = 127;

    // Always the same: a server that was killed keeps one of the machine's eight places until one
    // of its name starts again.
    static constexpr char kName[] = "vantor-test";

    const ServerMemory memory_;
    pid_t process_ = -1;
    bool isUp_ = false;
    bool isInstalled_ = true;
};

/// Another program at the server: sends what it is told, keeps what it gets. Its source is named
/// "out" and its destination "in".
class JackPeer
{
public:
    explicit JackPeer(const char* name = "peer")
    {
        client_ = jack_client_open(name, JackNoStartServer, nullptr);
        if (!client_)
            return;
        out_ = jack_port_register(client_, "out", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
        in_ = jack_port_register(client_, "in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
        jack_set_process_callback(client_, &JackPeer::onCycle, this);
        jack_activate(client_);
    }
    JackPeer(const JackPeer&) = delete;
    JackPeer& operator=(const JackPeer&) = delete;
    ~JackPeer()
    {
        if (client_)
            jack_client_close(client_);
    }

    bool isUp() const { return client_ != nullptr; }
    /// One event.
    void send(const MidiBytes& packet)
    {
        waitUntil([&] {
            return sending_.push(packet.data(), static_cast<std::uint32_t>(packet.size()));
        });
    }
    /// The events that came since the last call.
    std::vector<MidiBytes> take()
    {
        std::vector<MidiBytes> result;
        for (std::uint32_t length = 0; received_.peek(length);) {
            result.emplace_back(length);
            received_.pop(result.back().data(), length);
        }
        return result;
    }
    /// Waits until so many bytes have come. @return the bytes of all events in a row
    MidiBytes takeBytes(std::size_t count)
    {
        MidiBytes all;
        waitUntil([&] {
            for (const MidiBytes& each : take())
                all.insert(all.end(), each.begin(), each.end());
            return all.size() >= count;
        });
        return all;
    }

private:
    static int onCycle(jack_nframes_t frames, void* peer)
    {
        static_cast<JackPeer*>(peer)->cycle(frames);
        return 0;
    }
    void cycle(jack_nframes_t frames)
    {
        void* out = jack_port_get_buffer(out_, frames);
        jack_midi_clear_buffer(out);
        std::uint32_t length = 0;
        for (std::size_t sent = 0; sent < 4096 && sending_.peek(length); sent += length) {
            jack_midi_data_t* event = jack_midi_event_reserve(out, 0, length);
            if (!event)
                break;
            sending_.pop(event, length);
        }
        void* in = jack_port_get_buffer(in_, frames);
        const std::uint32_t count = jack_midi_get_event_count(in);
        for (std::uint32_t i = 0; i < count; ++i) {
            jack_midi_event_t event;
            if (jack_midi_event_get(&event, in, i) == 0)
                received_.push(event.buffer, static_cast<std::uint32_t>(event.size));
        }
    }

    jack_client_t* client_ = nullptr;
    jack_port_t* out_ = nullptr;
    jack_port_t* in_ = nullptr;
    OSInternal::PacketRing sending_{1 << 20};
    OSInternal::PacketRing received_{1 << 22};
};
