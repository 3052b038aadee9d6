#include "OS/Host/Midi/SysExSender.h"
#include "support/BackgroundThread.h"
#include "support/FakeMidi.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

namespace {

using OSInternal::MidiOutputPort;
using OSInternal::MidiSysExRequest;
using OSInternal::SysExSender;

struct CountedRequest : MidiSysExRequest
{
    explicit CountedRequest(std::uint32_t bytesToSend)
    {
        bytesToSend_ = bytesToSend;
        completion_ = [](MidiSysExRequest* request) {
            ++static_cast<CountedRequest*>(request)->completions_;
        };
    }
    std::atomic<int> completions_{0};
};

struct Port
{
    Port() { FakeMidiSystem(wire_).openOutput({}, port_); }
    std::shared_ptr<FakeMidiWire> wire_ = std::make_shared<FakeMidiWire>();
    std::shared_ptr<MidiOutputPort> port_;
};

} // namespace

TEST(SysExSender, CompletesOnceWhateverEndsAMessage)
{
    struct
    {
        const char* what;
        void (*end)(SysExSender& sender, Port& port);
    } const ends[] = {
        {"all was taken", [](SysExSender&, Port& port) { port.wire_->setSendStatus(0); }},
        {"cancelled", [](SysExSender& sender, Port& port) { sender.cancel(*port.port_); }},
        {"shut down", [](SysExSender& sender, Port&) { sender.shutDown(); }},
        {"refused", [](SysExSender&, Port& port) { port.wire_->setSendStatus(-EPIPE); }},
        {"takes nothing any more", [](SysExSender&, Port&) {}},
    };
    for (const auto& each : ends) {
        CountedRequest first(1000), second(0);
        Port port;
        {
            SysExSender sender(std::chrono::milliseconds(100));
            port.wire_->setSendStatus(-EAGAIN);
            ASSERT_EQ(sender.send(port.port_, &first), 0);
            ASSERT_EQ(sender.send(port.port_, &second), 0);
            each.end(sender, port);
            EXPECT_TRUE(waitUntil([&] { return first.completions_ + second.completions_ == 2; }))
                << each.what;
        }
        EXPECT_EQ(first.completions_, 1) << each.what;
        EXPECT_EQ(second.completions_, 1) << each.what;
        EXPECT_TRUE(first.complete_);
    }
}

TEST(SysExSender, RefusesAfterItsEndWithoutCompleting)
{
    SysExSender sender;
    sender.shutDown();
    CountedRequest request(1);
    EXPECT_EQ(sender.send(Port().port_, &request), -ESHUTDOWN);
    EXPECT_EQ(request.completions_, 0);
}

TEST(SysExSender, APortThatTakesNothingDoesNotHoldUpAnother)
{
    SysExSender sender;
    Port blocked, free;
    blocked.wire_->setSendStatus(-EAGAIN);
    CountedRequest waiting(10), through(600);
    sender.send(blocked.port_, &waiting);
    sender.send(free.port_, &through);
    EXPECT_TRUE(waitUntil([&] { return through.completions_ == 1; }));
    EXPECT_EQ(free.wire_->sentBytes(), MidiBytes(600, 0));
    EXPECT_EQ(waiting.completions_, 0);
    sender.cancel(*blocked.port_);
}

TEST(SysExSender, MessagesOfAPortKeepTheirOrder)
{
    SysExSender sender;
    Port port;
    MidiBytes expected;
    std::vector<std::unique_ptr<CountedRequest>> requests;
    for (unsigned char i = 0; i < 100; ++i) {
        const MidiBytes bytes(i * 5u + 1u, i);
        requests.push_back(std::make_unique<CountedRequest>(bytes.size()));
        requests.back()->data_ = bytes.data();
        requests.back()->dataSize_ = bytes.size();
        ASSERT_EQ(sender.send(port.port_, requests.back().get()), 0);
        expected.insert(expected.end(), bytes.begin(), bytes.end());
    }
    EXPECT_TRUE(waitUntil([&] { return requests.back()->completions_ == 1; }));
    EXPECT_EQ(port.wire_->sentBytes(), expected);
}

TEST(SysExSender, CancellingRacesWithSending)
{
    SysExSender sender;
    for (int i = 0; i < 500; ++i) {
        Port port;
        CountedRequest first(300), second(300);
        sender.send(port.port_, &first);
        sender.send(port.port_, &second);
        sender.cancel(*port.port_);
        ASSERT_TRUE(waitUntil([&] { return first.completions_ == 1 && second.completions_ == 1; }));
    }
}
