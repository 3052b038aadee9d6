#include "Control/ControlQueue.h"
#include "Control/Controller.h"
#include "Control/JogProtocol.h"
#include "Control/MidiCommands.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Vantor {

void PrintTo(const ControlCommand& command, std::ostream* out)
{
    *out << static_cast<int>(command.kind) << ' ' << command.value;
}

namespace {

using Kind = ControlCommand::Kind;

std::vector<ControlCommand> commandsIn(JogProtocol& protocol, const std::string& bytes)
{
    std::vector<ControlCommand> commands;
    for (const char byte : bytes)
        if (const auto command = protocol.take(static_cast<unsigned char>(byte)))
            commands.push_back(*command);
    return commands;
}

TEST(JogProtocolTest, TakesLinesAndPassesOverTheRest)
{
    static const struct
    {
        const char* bytes;
        std::vector<ControlCommand> commands;
    } kCases[] = {
        {"J1\n", {{Kind::eJog, 1}}},
        {"J+12\r\n", {{Kind::eJog, 12}}},
        {"J-1000\n", {{Kind::eJog, -1000}}},
        {"J1001\n", {}},
        {"J\nJ+\nJ-\nJ+-1\nJ1x\nJ 1\nj1\n", {}},
        {"S8\rS-8\nS0\nS9\nS-9\n",
         {{Kind::eShuttle, 8}, {Kind::eShuttle, -8}, {Kind::eShuttle, 0}}},
        {"P\nK\nPP\nKK\nQ\n\n\n", {{Kind::ePlay, 0}, {Kind::eStop, 0}}},
        {"J00000000000000000000001\nP\n", {{Kind::ePlay, 0}}},
        {"J99999999999999999999\nS99999999999\nK\n", {{Kind::eStop, 0}}},
        {"J5", {}},
    };
    for (const auto& c : kCases) {
        JogProtocol protocol;
        EXPECT_EQ(commandsIn(protocol, c.bytes), c.commands) << c.bytes;
    }
}

TEST(JogProtocolTest, FindsItsWayBackFromNoise)
{
    JogProtocol protocol;
    std::string noise;
    for (int byte = 0; byte < 256; ++byte)
        if (byte != '\n' && byte != '\r')
            noise.push_back(static_cast<char>(byte));
    EXPECT_TRUE(commandsIn(protocol, noise + noise).empty());
    EXPECT_EQ(commandsIn(protocol, "J3\nJ4\n"), (std::vector<ControlCommand>{{Kind::eJog, 4}}));
}

TEST(MidiCommandsTest, ReadsEachMessage)
{
    static const struct
    {
        unsigned int message;
        std::optional<ControlCommand> command;
    } kCases[] = {
        {0x013CB0, {{Kind::eJog, 1}}},
        {0x3F3CB5, {{Kind::eJog, 63}}},
        {0x7F3CB0, {{Kind::eJog, -1}}},
        {0x413CBF, {{Kind::eJog, -63}}},
        {0x003CB0, {}},
        {0x403CB0, {}},
        {0x403DB0, {{Kind::eShuttle, 0}}},
        {0x413DB0, {{Kind::eShuttle, 1}}},
        {0x503DB0, {{Kind::eShuttle, 1}}},
        {0x513DB0, {{Kind::eShuttle, 2}}},
        {0x7F3DB0, {{Kind::eShuttle, 8}}},
        {0x3F3DB0, {{Kind::eShuttle, -1}}},
        {0x003DB0, {{Kind::eShuttle, -8}}},
        {0x403EB0, {}},
        {0x643C90, {{Kind::eStop, 0}}},
        {0x643E93, {{Kind::ePlay, 0}}},
        {0x644090, {{Kind::eBackwards, 0}}},
        {0x644190, {{Kind::eForwards, 0}}},
        {0x003E90, {}},
        {0x643E80, {}},
        {0x643D90, {}},
        {0xFF3CB0, {}},
        {0x01BCB0, {}},
        {0xF8, {}},
    };
    for (const auto& c : kCases)
        EXPECT_EQ(commandOf(c.message), c.command) << std::hex << c.message;
}

TEST(ControlQueueTest, AddsUpWhatComesFasterThanItIsTaken)
{
    ControlQueue queue;
    for (int i = 0; i < 1000; ++i) {
        const ControlCommand jog{Kind::eJog, 2};
        queue.add(&jog);
    }
    const ControlCommand slow{Kind::eShuttle, 1};
    const ControlCommand fast{Kind::eShuttle, 4};
    queue.add(&slow);
    queue.add(nullptr);
    queue.add(&fast);
    EXPECT_EQ(queue.take(), (std::vector<ControlCommand>{{Kind::eJog, 2000}, {Kind::eShuttle, 4}}));
    EXPECT_TRUE(queue.take().empty());
    EXPECT_EQ(queue.received(), 1003u);
    const ControlCommand play{Kind::ePlay, 0};
    for (int i = 0; i < 10000; ++i)
        queue.add(&play);
    EXPECT_EQ(queue.take().size(), ControlQueue::kMost);
}

TEST(ControllerTest, IsRememberedByItsName)
{
    for (const wchar_t* text : {L"midi:Wheel 2", L"serial:/dev/ttyUSB0"})
        EXPECT_TRUE(textOf(controllerOf(text)) == text);
    for (const wchar_t* text : {L"", L"midi:", L"serial:", L"tape:x", L"/dev/ttyS0"})
        EXPECT_TRUE(controllerOf(text) == ControllerPlace()) << "and is none";
    EXPECT_FALSE(Controller::open({}, [](const ControlCommand*) {}));
    EXPECT_FALSE(Controller::open({ControllerPlace::Kind::eSerial, L"/nowhere/at/all"},
                                  [](const ControlCommand*) {}));
}

} // namespace
} // namespace Vantor
