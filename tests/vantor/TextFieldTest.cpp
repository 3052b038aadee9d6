#include "Model/TextField.h"

#include <OS/Windowing/KeyCodes.h>

#include <gtest/gtest.h>

namespace Vantor {
namespace {

struct Press
{
    std::uint32_t code;
    std::uint32_t modifiers = 0;
};

constexpr std::uint32_t kShift = Key::eShift;
constexpr std::uint32_t kControl = Key::eControl;

TEST(TextFieldTest, KeysEditTheText)
{
    static const struct
    {
        const char* what;
        std::vector<Press> keys;
        const wchar_t* text;
        std::uint32_t caret, anchor;
    } kCases[] = {
        {"typing goes in at the caret", {{'!'}}, L"one two!", 8, 8},
        {"home and type", {{Key::eHome}, {'X'}}, L"Xone two", 1, 1},
        {"backspace", {{Key::eBackspace}}, L"one tw", 6, 6},
        {"backspace at the start", {{Key::eHome}, {Key::eBackspace}}, L"one two", 0, 0},
        {"delete at the end", {{Key::eDelete}}, L"one two", 7, 7},
        {"delete", {{Key::eHome}, {Key::eDelete}}, L"ne two", 0, 0},
        {"shift selects", {{Key::eLeft, kShift}, {Key::eLeft, kShift}}, L"one two", 5, 7},
        {"typing replaces", {{Key::eLeft, kShift}, {Key::eLeft, kShift}, {'a'}}, L"one ta", 6, 6},
        {"left drops a selection at its start",
         {{Key::eHome, kShift}, {Key::eLeft}},
         L"one two",
         0,
         0},
        {"right drops a selection at its end",
         {{Key::eHome, kShift}, {Key::eRight}},
         L"one two",
         7,
         7},
        {"select all", {{'a', kControl}}, L"one two", 7, 0},
        {"select all and erase", {{'a', kControl}, {Key::eBackspace}}, L"", 0, 0},
        {"shift-end", {{Key::eHome}, {Key::eEnd, kShift}}, L"one two", 7, 0},
        {"by word", {{Key::eLeft, kControl}}, L"one two", 4, 4},
        {"by word twice", {{Key::eLeft, kControl}, {Key::eLeft, kControl}}, L"one two", 0, 0},
        {"word right", {{Key::eHome}, {Key::eRight, kControl}}, L"one two", 4, 4},
        {"erases a word", {{Key::eBackspace, kControl}}, L"one ", 4, 4},
        {"beyond the end", {{Key::eRight}, {Key::eRight}}, L"one two", 7, 7},
        {"another alphabet", {{0x416}}, L"one two\u0416", 8, 8},
    };
    for (const auto& c : kCases) {
        TextField field;
        field.set(L"one two");
        for (const Press& press : c.keys)
            EXPECT_TRUE(field.key(press.code, press.modifiers)) << c.what;
        EXPECT_EQ(field.text, c.text) << c.what;
        EXPECT_EQ(field.caret, c.caret) << c.what;
        EXPECT_EQ(field.anchor, c.anchor) << c.what;
    }
}

TEST(TextFieldTest, OtherKeysAreLeftAlone)
{
    TextField field;
    field.set(L"text");
    for (const Press& press : {Press{Key::eF1}, Press{Key::eEscape}, Press{'s', Key::eControl},
                               Press{'x', Key::eAlt}, Press{127}, Press{1}})
        EXPECT_FALSE(field.key(press.code, press.modifiers)) << press.code;
    EXPECT_EQ(field.text, L"text");
}

TEST(TextFieldTest, LengthIsLimitedAndControlCharactersAreLeftOut)
{
    TextField field;
    field.insert(L"a\nb\tc");
    EXPECT_EQ(field.text, L"abc");
    field.insert(Text(1000, L'x'));
    EXPECT_EQ(field.text.size(), TextField::kLongest);
    field.key('y', 0);
    EXPECT_EQ(field.text.size(), TextField::kLongest);
    field.selectAll();
    field.key('y', 0);
    EXPECT_EQ(field.text, L"y") << "what is selected makes room";
}

TEST(TextFieldTest, ADoubleClickSelectsAWord)
{
    static const struct
    {
        std::uint32_t at;
        const wchar_t* word;
    } kCases[] = {{0, L"one"}, {1, L"one"}, {2, L"one"}, {4, L"two"}, {7, L"two"}, {99, L"two"}};
    for (const auto& c : kCases) {
        TextField field;
        field.set(L"one two");
        field.selectWord(c.at);
        EXPECT_EQ(field.selected(), c.word) << c.at;
    }
    TextField empty;
    empty.selectWord(0);
    EXPECT_FALSE(empty.hasSelection());
}

} // namespace
} // namespace Vantor
