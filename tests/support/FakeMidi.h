#pragma once

#include "OS/Host/Midi/MidiRunLoop.h"
#include "OS/Host/Midi/MidiSystem.h"

#include <OS/Devices/MIDICallbacks.h>

#include <algorithm>
#include <cerrno>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

using MidiBytes = std::vector<unsigned char>;

/// A system-exclusive message whose bytes differ by their place.
inline MidiBytes sysexOf(std::size_t size)
{
    MidiBytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<unsigned char>((i * 7 + i / 128) & 0x7F);
    bytes.front() = 0xF0;
    if (size > 1)
        bytes.back() = 0xF7;
    return bytes;
}

/// Keeps what it is called with. Any thread.
class MidiReceiver final : public InputCallbackReceiver
{
public:
    void handleShortMsg(unsigned int index, iMidiInputDevice* device, unsigned int message) override
    {
        const std::lock_guard<std::mutex> lock(lock_);
        index_ = index;
        device_ = device;
        thread_ = currentThreadName();
        shorts_.push_back(message);
    }
    void handleLongMsg(unsigned int, iMidiInputDevice*, const unsigned char* data,
                       unsigned int size) override
    {
        const std::lock_guard<std::mutex> lock(lock_);
        longs_.emplace_back(data, data + size);
    }

    std::vector<unsigned int> shorts() const
    {
        const std::lock_guard<std::mutex> lock(lock_);
        return shorts_;
    }
    std::vector<MidiBytes> longs() const
    {
        const std::lock_guard<std::mutex> lock(lock_);
        return longs_;
    }
    /// All long messages in a row.
    MidiBytes longBytes() const
    {
        MidiBytes all;
        for (const MidiBytes& each : longs())
            all.insert(all.end(), each.begin(), each.end());
        return all;
    }
    std::string thread() const
    {
        const std::lock_guard<std::mutex> lock(lock_);
        return thread_;
    }
    unsigned int index() const { return index_; }
    iMidiInputDevice* device() const { return device_; }

private:
    static std::string currentThreadName()
    {
        char name[16] = {};
        pthread_getname_np(pthread_self(), name, sizeof name);
        return name;
    }

    mutable std::mutex lock_;
    unsigned int index_ = 0;
    iMidiInputDevice* device_ = nullptr;
    std::string thread_;
    std::vector<unsigned int> shorts_;
    std::vector<MidiBytes> longs_;
};

/// What the ports of a FakeMidiSystem share with the test.
struct FakeMidiWire
{
    std::mutex lock_;
    std::deque<MidiBytes> waiting_; // for the input port
    OSInternal::EventDescriptor ready_;
    std::vector<MidiBytes> sent_;
    std::vector<OSInternal::MidiOutputPort::Kind> kinds_;
    int sendStatus_ = 0;
    int openStatus_ = 0;
    int inputPorts_ = 0;  // open now
    int outputPorts_ = 0; // open now

    void arrive(MidiBytes packet)
    {
        const std::lock_guard<std::mutex> lock(lock_);
        waiting_.push_back(std::move(packet));
        ready_.signal();
    }
    void setSendStatus(int status)
    {
        const std::lock_guard<std::mutex> lock(lock_);
        sendStatus_ = status;
    }
    std::vector<MidiBytes> sent()
    {
        const std::lock_guard<std::mutex> lock(lock_);
        return sent_;
    }
    MidiBytes sentBytes()
    {
        MidiBytes all;
        for (const MidiBytes& each : sent())
            all.insert(all.end(), each.begin(), each.end());
        return all;
    }
};

/// MIDI services with as many devices as a test says, and faults that real ones have seldom.
class FakeMidiSystem final : public OSInternal::MidiSystem
{
public:
    explicit FakeMidiSystem(std::shared_ptr<FakeMidiWire> wire, unsigned int devices = 1)
        : wire_(std::move(wire)), devices_(devices)
    {
    }

    const char* name() const override { return "fake"; }
    std::vector<OSInternal::MidiEndpoint> sources() override { return endpoints("Source"); }
    std::vector<OSInternal::MidiEndpoint> destinations() override
    {
        return endpoints("Destination");
    }
    int openInput(const OSInternal::MidiEndpoint&, OSInternal::MidiPacketSink& sink,
                  std::unique_ptr<OSInternal::MidiInputPort>& port) override
    {
        if (!wire_->openStatus_)
            port = std::make_unique<InputPort>(wire_, sink);
        return wire_->openStatus_;
    }
    int openOutput(const OSInternal::MidiEndpoint&,
                   std::shared_ptr<OSInternal::MidiOutputPort>& port) override
    {
        if (!wire_->openStatus_)
            port = std::make_shared<OutputPort>(wire_);
        return wire_->openStatus_;
    }

private:
    class InputPort final : public OSInternal::MidiInputPort
    {
    public:
        InputPort(std::shared_ptr<FakeMidiWire> wire, OSInternal::MidiPacketSink& sink)
            : wire_(std::move(wire)), sink_(sink)
        {
            const std::lock_guard<std::mutex> lock(wire_->lock_);
            ++wire_->inputPorts_;
        }
        ~InputPort() override
        {
            const std::lock_guard<std::mutex> lock(wire_->lock_);
            --wire_->inputPorts_;
        }
        int descriptor() const override { return wire_->ready_.get(); }
        void deliver(const OSInternal::MidiRunLoop& loop) override
        {
            wire_->ready_.clear();
            while (loop.isRunning()) {
                MidiBytes packet;
                {
                    const std::lock_guard<std::mutex> lock(wire_->lock_);
                    if (wire_->waiting_.empty())
                        return;
                    packet = wire_->waiting_.front();
                    wire_->waiting_.pop_front();
                }
                sink_.handlePacket(packet.data(), packet.size());
            }
        }

    private:
        std::shared_ptr<FakeMidiWire> wire_;
        OSInternal::MidiPacketSink& sink_;
    };

    class OutputPort final : public OSInternal::MidiOutputPort
    {
    public:
        explicit OutputPort(std::shared_ptr<FakeMidiWire> wire) : wire_(std::move(wire))
        {
            const std::lock_guard<std::mutex> lock(wire_->lock_);
            ++wire_->outputPorts_;
        }
        ~OutputPort() override
        {
            const std::lock_guard<std::mutex> lock(wire_->lock_);
            --wire_->outputPorts_;
        }
        int send(const unsigned char* bytes, std::size_t length, Kind kind) override
        {
            const std::lock_guard<std::mutex> lock(wire_->lock_);
            if (wire_->sendStatus_ == 0) {
                wire_->sent_.emplace_back(bytes, bytes + length);
                wire_->kinds_.push_back(kind);
            }
            return wire_->sendStatus_;
        }
        std::chrono::steady_clock::time_point nextPieceAt() const override { return {}; }

    private:
        std::shared_ptr<FakeMidiWire> wire_;
    };

    std::vector<OSInternal::MidiEndpoint> endpoints(const char* kind) const
    {
        std::vector<OSInternal::MidiEndpoint> result;
        for (unsigned int i = 0; i < devices_; ++i)
            result.push_back({kind, kind + (" " + std::to_string(i + 1)), "Maker \xC3\xA9", i > 0});
        return result;
    }

    const std::shared_ptr<FakeMidiWire> wire_;
    const unsigned int devices_;
};
