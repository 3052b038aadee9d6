#include "Editor.h"
#include "support/JackServer.h"
#include "support/PtyPair.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Devices/iMIDI.h>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

namespace Vantor {
namespace {

Text wide(const std::string& text)
{
    return OS()->utils()->fromUTF8(text.c_str(), -1);
}

/// The editor without a window, driven by a real device.
class ControlDeviceTest : public testing::Test
{
protected:
    void open(const ControllerPlace& place)
    {
        MediaBin bin;
        for (const wchar_t* name : {L"dawn.jpg", L"pier.jpg", L"quay.bmp", L"chart.tif"})
            bin.items.push_back({name, Text(L"/nowhere/") + name, L"PNG"});
        EditorState state = makeEditorState(bin, Text());
        state.player = Transport([this] { return clock_; });
        state.player.setLength(state.project.length);
        state.player.seek(100);
        state.controller = place;
        editor_ = Tq::Ptr<Editor>(new Editor(std::move(state)));
        editor_->handleWindowEvent({});
    }
    const EditorState& state() const { return editor_->state(); }
    /// Lets the event loop's messages arrive until something is so.
    bool comes(const std::function<bool()>& isSo) const
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!isSo() && std::chrono::steady_clock::now() < end) {
            if (editor_)
                editor_->handleUserMessage({});
            std::this_thread::yield();
        }
        return isSo();
    }

    double clock_ = 0.0;
    Tq::Ptr<Editor> editor_;
};

TEST_F(ControlDeviceTest, ASerialJogWheelDrivesThePlayhead)
{
    PtyPair wheel;
    open({ControllerPlace::Kind::eSerial, wide(wheel.path())});
    ASSERT_TRUE(state().controllerOpen);
    ASSERT_TRUE(wheel.send("J+12\nJ+3\n"));
    EXPECT_TRUE(comes([&] { return state().player.frame() == 115; })) << state().player.frame();
    ASSERT_TRUE(wheel.send("J-15\nnoise\n\xFF\xFE\nS-4\n"));
    EXPECT_TRUE(comes([&] { return state().player.speed() == -4; }));
    EXPECT_EQ(state().player.frame(), 100);
    clock_ += 400.0; // ten frames at four times
    ASSERT_TRUE(wheel.send("K\n"));
    EXPECT_TRUE(comes([&] { return state().player.speed() == 0; }));
    EXPECT_EQ(state().player.frame(), 60);
    ASSERT_TRUE(wheel.send("P\n"));
    EXPECT_TRUE(comes([&] { return state().player.speed() == 1; }));
    EXPECT_TRUE(state().controllerLit);
    // The wheel is pulled out: what it said last holds, and the keyboard still works.
    wheel.unplug();
    iEventHandler::KeyEvent stop;
    stop.code = 'k';
    stop.pressed = true;
    editor_->handleKey(stop);
    EXPECT_EQ(state().player.speed(), 0);
}

TEST_F(ControlDeviceTest, AMissingDeviceIsSaidAndDoesNoHarm)
{
    open({ControllerPlace::Kind::eSerial, L"/nowhere/wheel"});
    EXPECT_FALSE(state().controllerOpen);
    EXPECT_TRUE(state().message == L"/nowhere/wheel cannot be opened");
}

TEST_F(ControlDeviceTest, AMidiControllerDrivesThePlayhead)
{
    JackServer server;
    if (!server.isInstalled())
        GTEST_SKIP() << "no jackd";
    ASSERT_TRUE(server.isUp());
    JackPeer controller("wheel");
    ASSERT_TRUE(controller.isUp());
    ASSERT_EQ(setenv("VANTOR_MIDI", "jack", 1), 0);
    ControllerPlace place;
    EXPECT_TRUE(comes([&] {
        for (const ControllerPlace& each : findControllers())
            if (each.kind == ControllerPlace::Kind::eMidi)
                place = each;
        return place.kind != ControllerPlace::Kind::eNone;
    }));
    open(place);
    ASSERT_TRUE(state().controllerOpen) << OS()->utils()->toUTF8(place.name).c_str();
    // A server connects when it will: the first turn is repeated until it has been heard.
    EXPECT_TRUE(comes([&] {
        if (state().player.frame() == 100)
            controller.send({0xB0, 60, 1});
        return state().player.frame() > 100;
    }));
    int before = -1;
    EXPECT_TRUE(comes([&] {
        const bool still = state().player.frame() == before;
        before = state().player.frame();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return still;
    }));
    controller.send({0xB0, 60, 127}); // one back
    EXPECT_TRUE(comes([&] { return state().player.frame() == before - 1; }));
    controller.send({0xB3, 61, 127});
    EXPECT_TRUE(comes([&] { return state().player.speed() == 8; }));
    controller.send({0x90, 60, 100});
    EXPECT_TRUE(comes([&] { return state().player.speed() == 0; }));
    controller.send({0x90, 62, 100});
    EXPECT_TRUE(comes([&] { return state().player.speed() == 1; }));
    editor_.reset();
    OS()->midi()->deinitialise();
    unsetenv("VANTOR_MIDI");
}

} // namespace
} // namespace Vantor
