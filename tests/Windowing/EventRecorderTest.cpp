#include "support/EventRecorder.h"

#include <gtest/gtest.h>

namespace {

const char* const kRecording = "# a short session\n"
                               "0 window 7\n"
                               "3 paint 0 0 400 300\n"
                               "12 mouse 2 -10 20 0x2 0 0x1000000\n"
                               "40 mouse 5 10 20 0x0 -1 0x0\n"
                               "\n"
                               "55 key 0x7a 0x100000 down\n"
                               "56 key 0x7a 0x100000 up\n"
                               "70 timer 3\n"
                               "80 drop /tmp/a%20%25%E4b.txt\n"
                               "81 message\n";

// Passes events on and quits when a key comes.
class QuitsOnKey final : public iEventHandler
{
public:
    eRC handleMouse(const MouseEvent&) override { return eContinue; }
    eRC handleKey(const KeyEvent&) override { return eQuit; }
    eRC handlePaint(const PaintEvent&) override { return eContinue; }
    eRC handleWindowEvent(const WindowEvent&) override { return eContinue; }
    eRC handleTimer(const TimerEvent&) override { return eContinue; }
    eRC handleFileDrop(const LightweightString<wchar_t>&) override { return eContinue; }
    eRC handleUserMessage(const UserMessage&) override { return eContinue; }
};

} // namespace

TEST(EventRecorderTest, WhatIsPlayedIsWhatWasRecorded)
{
    EventPlayer player(kRecording);
    ASSERT_EQ(player.error(), "");
    EventRecorder first;
    std::vector<double> times;
    while (!player.atEnd()) {
        times.push_back(player.nextMs());
        player.step(first);
    }
    EXPECT_EQ(times, (std::vector<double>{0, 3, 12, 40, 55, 56, 70, 80, 81}));
    EXPECT_EQ(first.lines().size(), 9u);

    EventPlayer again(first.recording());
    ASSERT_EQ(again.error(), "");
    EventRecorder second;
    while (!again.atEnd())
        again.step(second);
    EXPECT_EQ(second.lines(), first.lines());
    EXPECT_EQ(second.lines("drop"), (std::vector<std::string>{"drop /tmp/a%20%25%E4b.txt"}));
    EXPECT_EQ(second.lines("mouse").front(), "mouse 2 -10 20 0x2 0 0x1000000");
}

TEST(EventRecorderTest, PlaysTheUsersInputUpToAnAnswerThatQuits)
{
    EventPlayer player(kRecording);
    EventRecorder recorder{Tq::Ptr<iEventHandler>(new QuitsOnKey)};
    EXPECT_EQ(player.playInput(recorder), iEventHandler::eQuit);
    EXPECT_EQ(recorder.lines().size(), 3u) << "two of the mouse and the key";
    EXPECT_EQ(player.nextMs(), 56);
}

TEST(EventRecorderTest, NamesTheFirstLineThatIsNoEvent)
{
    for (const char* bad : {"5 key 0x61", "5 key 0x61 0x0 sideways", "mouse 1 2 3 0x0 0 0x0", "5",
                            "x", "5 drop", "5 dance 1", "5 paint 1 2 3"}) {
        EventPlayer player(std::string("0 window 7\n") + bad + "\n9 message\n");
        EXPECT_EQ(player.error(), std::string("line 2: ") + bad);
        EventRecorder recorder;
        while (!player.atEnd())
            player.step(recorder);
        EXPECT_EQ(recorder.lines(), (std::vector<std::string>{"window 7"})) << bad;
    }
}
