#include "Windowing/InputRig.h"
#include "support/Stopwatch.h"

#include "OS/Host/Keyboard/KeyboardLayout.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace {

constexpr std::uint32_t kNoSuchKey = 4'000'000'000;

} // namespace

TEST(KeyboardLayoutTest, TellsAKeysCharacterInTheLayoutOfTheMoment)
{
    InputRig input;
    const auto keyboard = OSInternal::makeKeyboardLayout("xcb");
    const struct
    {
        const char* layout;
        unsigned int group;
        std::uint32_t key;
        char32_t expected;
    } table[] = {
        {"us", 0, kY, 'y'},      {"de", 0, kY, 'z'},       {"us,ru", 0, kZ, 'z'},
        {"us,ru", 1, kZ, 0x44F}, {"us", 0, kShiftL, 0},    {"us", 0, kF12Key, 0},
        {"us", 0, 0, 0},         {"us", 0, kNoSuchKey, 0},
    };
    for (const auto& one : table) {
        input.setLayout(one.layout, one.group);
        EXPECT_EQ(keyboard->plainCharacter(one.key), one.expected) << one.layout << ' ' << one.key;
    }
    input.setLayout("us");
    input.press(kShiftL);
    input.press(kAltGr);
    EXPECT_EQ(keyboard->plainCharacter(kA), char32_t('a')) << "whatever is held";
}

TEST(KeyboardLayoutTest, TellsWhichKeysAreDown)
{
    InputRig input;
    const auto keyboard = OSInternal::makeKeyboardLayout("xcb");
    EXPECT_FALSE(keyboard->isKeyDown(kA));
    input.press(kA);
    EXPECT_TRUE(keyboard->isKeyDown(kA));
    EXPECT_FALSE(keyboard->isKeyDown(kZ));
    EXPECT_FALSE(keyboard->isKeyDown(kNoSuchKey));
    input.release(kA);
    EXPECT_FALSE(keyboard->isKeyDown(kA));
}

TEST(KeyboardLayoutTest, AnswersNothingWhereThereIsNothingToAsk)
{
    InputRig input;
    input.press(kA);
    const std::string display = std::getenv("DISPLAY");
    setenv("DISPLAY", ":4711", 1);
    for (const char* platform : {"xcb", "offscreen", "wayland", ""}) {
        const auto keyboard = OSInternal::makeKeyboardLayout(platform);
        ASSERT_TRUE(keyboard) << platform;
        EXPECT_EQ(keyboard->plainCharacter(kA), 0u) << platform;
        EXPECT_FALSE(keyboard->isKeyDown(kA)) << platform;
    }
    setenv("DISPLAY", display.c_str(), 1);
}
