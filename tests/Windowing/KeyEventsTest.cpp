#include "Windowing/WindowRig.h"

#include "OS/Mac/Windowing/KeyboardState.h"
#include "OS/Mac/Windowing/QtEventRedirector.h"

#include "support/OutputCapture.h"

#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QWidget>
#include <algorithm>

namespace {

// A key's number to press it, its negative to let it go.
using Presses = std::vector<int>;
using Lines = std::vector<std::string>;

struct TypingCase
{
    const char* name;
    const char* layout;
    Presses presses;
    Lines expected;
};

void PrintTo(const TypingCase& one, std::ostream* out)
{
    *out << one.name;
}

const TypingCase kTyping[] = {
    {"letter", "us", {kA, -kA}, {"key 0x61 0x0 down", "key 0x61 0x0 up"}},
    {"letter by its place on another layout",
     "de",
     {kY, -kY},
     {"key 0x7a 0x0 down", "key 0x7a 0x0 up"}},
    // The release of Shift carries the last key, as it was translated when it was pressed.
    {"Shift, A, release A, release Shift",
     "us",
     {kShiftL, kA, -kA, -kShiftL},
     {"key 0x0 0x1000000 down", "key 0x41 0x1000000 down", "key 0x41 0x1000000 up",
      "key 0x41 0x0 up"}},
    {"Shift, A, release Shift, release A",
     "us",
     {kShiftL, kA, -kShiftL, -kA},
     {"key 0x0 0x1000000 down", "key 0x41 0x1000000 down", "key 0x41 0x0 up", "key 0x61 0x0 up"}},
    {"Shift alone carries nothing",
     "us",
     {kA, -kA, kShiftL, -kShiftL},
     {"key 0x61 0x0 down", "key 0x61 0x0 up", "key 0x0 0x1000000 down", "key 0x0 0x0 up"}},
    {"the last key is carried once",
     "us",
     {kShiftL, kControlL, kA, -kA, -kControlL, -kShiftL},
     {"key 0x0 0x1000000 down", "key 0x0 0x1100000 down", "key 0x61 0x1100000 down",
      "key 0x61 0x1100000 up", "key 0x61 0x1000000 up", "key 0x0 0x0 up"}},
    {"Caps Lock is not passed on and letters are capital",
     "us",
     {kCapsLock, -kCapsLock, kA, -kA, kCapsLock, -kCapsLock, kA, -kA},
     {"key 0x41 0x0 down", "key 0x41 0x0 up", "key 0x61 0x0 down", "key 0x61 0x0 up"}},
    {"Control letter",
     "us",
     {kControlL, kZ, -kZ, -kControlL},
     {"key 0x0 0x100000 down", "key 0x7a 0x100000 down", "key 0x7a 0x100000 up",
      "key 0x7a 0x0 up"}},
    {"Control letter of another layout",
     "de",
     {kControlL, kY, -kY, -kControlL},
     {"key 0x0 0x100000 down", "key 0x7a 0x100000 down", "key 0x7a 0x100000 up",
      "key 0x7a 0x0 up"}},
    {"Control letter under Caps Lock",
     "us",
     {kCapsLock, -kCapsLock, kControlL, kZ, -kZ, -kControlL, kCapsLock, -kCapsLock},
     {"key 0x0 0x100000 down", "key 0x7a 0x100000 down", "key 0x7a 0x100000 up",
      "key 0x7a 0x0 up"}},
    {"Control letter of another script",
     "us,ru second",
     {kControlL, kZ, -kZ, -kControlL},
     {"key 0x0 0x100000 down", "key 0x7a 0x100000 down", "key 0x7a 0x100000 up",
      "key 0x7a 0x0 up"}},
    {"Control space",
     "us",
     {kControlL, kSpaceKey, -kSpaceKey, -kControlL},
     {"key 0x0 0x100000 down", "key 0x20 0x100000 down", "key 0x20 0x100000 up",
      "key 0x20 0x0 up"}},
    {"Alt is a shortcut's and stays",
     "us",
     {kAltL, kQ, -kQ, -kAltL},
     {"key 0x0 0x4000000 down", "key 0x71 0x4000000 down", "key 0x71 0x4000000 up",
      "key 0x71 0x0 up"}},
    {"a character made with modifiers comes without them",
     "de",
     {kAltGr, kShiftL, -kShiftL, kQ, -kQ, -kAltGr},
     {"key 0x0 0x0 down", "key 0x0 0x1000000 down", "key 0x0 0x0 up", "key 0x40 0x0 down",
      "key 0x40 0x0 up", "key 0x0 0x0 up"}},
    {"keypad digit",
     "us",
     {kNumLock, -kNumLock, kKeypad5, -kKeypad5},
     {"key 0x0 0x0 down", "key 0x0 0x0 up", "key 0x35 0x80000000 down", "key 0x35 0x80000000 up"}},
    {"the same digit of the main row",
     "us",
     {kFive, -kFive},
     {"key 0x35 0x0 down", "key 0x35 0x0 up"}},
    {"Tab, Backtab, Return, Escape and an arrow",
     "us",
     {kTabKey, -kTabKey, kReturnKey, -kReturnKey, kEscape, -kEscape, kLeftArrow, -kLeftArrow},
     {"key 0x9 0x0 down", "key 0x9 0x0 up", "key 0xd 0x0 down", "key 0xd 0x0 up",
      "key 0x1b 0x0 down", "key 0x1b 0x0 up", "key 0x800004b 0x0 down", "key 0x800004b 0x0 up"}},
    {"F12", "us", {kF12Key, -kF12Key}, {"key 0x8000046 0x0 down", "key 0x8000046 0x0 up"}},
};

class Typing : public WindowTest, public ::testing::WithParamInterface<TypingCase>
{
};

class KeyEvents : public WindowTest
{
};

// Answers what a test tells it.
class FakeKeyboard final : public OSInternal::KeyboardLayout
{
public:
    explicit FakeKeyboard(char32_t plain) : plain_(plain) {}
    char32_t plainCharacter(std::uint32_t) override { return plain_; }
    bool isKeyDown(std::uint32_t) override { return false; }

private:
    char32_t plain_;
};

// What a handler gets for one key event made by hand.
std::string translated(int qtKey, const QString& text = {}, unsigned int qtModifiers = 0,
                       QEvent::Type type = QEvent::KeyPress)
{
    const Tq::Ptr<EventRecorder> recorder(new EventRecorder);
    QKeyEvent event(type, qtKey, Qt::KeyboardModifiers(static_cast<int>(qtModifiers)), 0, 0, 0,
                    text);
    QtEventRedirector::redirect(&event, recorder);
    return recorder->lines().empty() ? "" : recorder->lines().front();
}

} // namespace

TEST_P(Typing, ReachesTheHandlerAsItsOwnCodes)
{
    open();
    const std::string layout = GetParam().layout;
    const std::size_t blank = layout.find(' ');
    input.setLayout(layout.substr(0, blank), blank == layout.npos ? 0 : 1);
    for (const int keycode : GetParam().presses) {
        if (keycode > 0)
            input.press(static_cast<unsigned int>(keycode));
        else
            input.release(static_cast<unsigned int>(-keycode));
    }
    EXPECT_EQ(waitForLines("key", GetParam().expected.size()), GetParam().expected);
    settle();
    EXPECT_EQ(events->lines("key").size(), GetParam().expected.size());
}

INSTANTIATE_TEST_SUITE_P(Keys, Typing, ::testing::ValuesIn(kTyping));

TEST_F(KeyEvents, AHeldKeyIsManyPressesAndOneRelease)
{
    input.setAutoRepeat(200, 10);
    open();
    input.press(kA);
    const Lines held = waitForLines("key", 20);
    EXPECT_EQ(std::count(held.begin(), held.end(), "key 0x61 0x0 down"),
              std::ptrdiff_t(held.size()));
    input.release(kA);
    ASSERT_TRUE(waitFor([&] { return events->lines("key").back() == "key 0x61 0x0 up"; }));
    settle();
    const Lines all = events->lines("key");
    EXPECT_EQ(std::count(all.begin(), all.end(), "key 0x61 0x0 up"), 1);
    input.setAutoRepeat(660, 40);
}

TEST_F(KeyEvents, AKeyOfTheSecondRangeOfFunctionKeysComesFromTheKeyboard)
{
    input.mapKey(kSpareKey, "F13");
    open();
    input.tap(kSpareKey);
    EXPECT_EQ(waitForLines("key", 2), (Lines{"key 0x8000061 0x0 down", "key 0x8000061 0x0 up"}));
}

TEST_F(KeyEvents, AComposedCharacterIsOnePress)
{
    open();
    input.setLayout("us -variant intl");
    constexpr unsigned int deadAcute = 48;
    input.tap(deadAcute);
    input.tap(kE);
    ASSERT_TRUE(waitFor([&] {
        const Lines keys = events->lines("key");
        return std::count(keys.begin(), keys.end(), "key 0xe9 0x0 down") == 1;
    })) << ::testing::PrintToString(events->lines("key"));
}

TEST_F(KeyEvents, CommittedTextIsOnePressForEachCodePoint)
{
    open();
    const char32_t text[] = U"\u4E2D\U0001F600!";
    QInputMethodEvent commit;
    commit.setCommitString(QString::fromUcs4(text));
    QCoreApplication::sendEvent(widget(), &commit);
    EXPECT_EQ(events->lines("key"),
              (Lines{"key 0x4e2d 0x0 down", "key 0x1f600 0x0 down", "key 0x21 0x0 down"}));
}

TEST_F(KeyEvents, TheModifiersOfTheLastKeyAreAnsweredForTheirOwnCodesOnly)
{
    open();
    input.press(kShiftL);
    input.press(kAltL);
    input.press(kA);
    waitForLines("key", 3);
    EXPECT_TRUE(manager.isKeyPressed(Key::eShift));
    EXPECT_TRUE(manager.isKeyPressed(Key::eAlt));
    EXPECT_FALSE(manager.isKeyPressed(Key::eControl));
    EXPECT_FALSE(manager.isKeyPressed(Key::eMeta));
    for (const unsigned int code :
         {unsigned('a'), unsigned('A'), 0u, 27u, 32u, ~0u, unsigned(Key::eShift | Key::eAlt)})
        EXPECT_FALSE(manager.isKeyPressed(code)) << code;
    input.release(kA);
    input.release(kAltL);
    input.release(kShiftL);
    waitForLines("key", 6);
    EXPECT_FALSE(manager.isKeyPressed(Key::eShift));
}

TEST(KeyTable, GivesEveryNamedKeyItsCode)
{
    const struct
    {
        int qtKey;
        unsigned int code;
    } table[] = {
        {Qt::Key_F1, 0x800003B},
        {Qt::Key_F2, 0x800003C},
        {Qt::Key_F12, 0x8000046},
        {Qt::Key_F13, 0x8000061},
        {Qt::Key_F19, 0x8000067},
        {Qt::Key_F20, 0},
        {Qt::Key_Escape, 27},
        {Qt::Key_Tab, 9},
        {Qt::Key_Backtab, 9},
        {Qt::Key_Backspace, 8},
        {Qt::Key_Return, 13},
        {Qt::Key_Enter, 13},
        {Qt::Key_Insert, 0x8000052},
        {Qt::Key_Delete, 0x8000053},
        {Qt::Key_Clear, 0x8000053},
        {Qt::Key_Home, 0x8000047},
        {Qt::Key_End, 0x800004F},
        {Qt::Key_Left, 0x800004B},
        {Qt::Key_Up, 0x8000048},
        {Qt::Key_Right, 0x800004D},
        {Qt::Key_Down, 0x8000050},
        {Qt::Key_PageUp, 0x8000049},
        {Qt::Key_PageDown, 0x8000051},
        {Qt::Key_Pause, 0},
        {Qt::Key_Print, 0},
        {Qt::Key_SysReq, 0},
        {0, 0},
    };
    for (const auto& one : table) {
        char expected[40];
        std::snprintf(expected, sizeof expected, "key 0x%x 0x0 down", one.code);
        EXPECT_EQ(translated(one.qtKey), expected) << std::hex << one.qtKey;
    }
    for (const char c : std::string("*+-./0123456789=")) {
        char plain[40];
        char keypad[40];
        std::snprintf(plain, sizeof plain, "key 0x%x 0x0 down", static_cast<unsigned int>(c));
        std::snprintf(keypad, sizeof keypad, "key 0x%x 0x80000000 down",
                      static_cast<unsigned int>(c));
        EXPECT_EQ(translated(c), plain);
        EXPECT_EQ(translated(c, QString(QLatin1Char(c)), Qt::KeypadModifier), keypad);
    }
}

TEST(KeyTable, ReportsAnUnknownKeyAndSwallowsIt)
{
    EXPECT_EQ(
        outputOf([] { EXPECT_EQ(translated(Qt::Key_unknown, "x"), ""); }),
        "assertion failed keypressed != Qt::Key_unknown at OS/Mac/QtEventRedirector line 199\n");
}

TEST(KeyTable, WorksWithAKeyboardThatCannotBeAsked)
{
    KeyboardState::setKeyboard(std::make_unique<FakeKeyboard>(0));
    EXPECT_EQ(translated(Qt::Key_Z, QString(QChar(0x1A)), Qt::ControlModifier),
              "key 0x7a 0x100000 down");
    EXPECT_EQ(translated(Qt::Key_Q, "q", Qt::AltModifier), "key 0x71 0x4000000 down");
    EXPECT_EQ(translated(Qt::Key_Space, QString(QChar(0)), Qt::ControlModifier),
              "key 0x20 0x100000 down");
    KeyboardState::setKeyboard(nullptr);
}

TEST(KeyTable, TellsCharactersFromShortcuts)
{
    const struct
    {
        const char* name;
        char32_t plain;
        int qtKey;
        unsigned int qtModifiers;
        bool expected;
    } table[] = {
        {"no modifier", 'q', '@', 0, false},
        {"only Shift", 'q', '@', Qt::ShiftModifier, false},
        {"keypad", 'q', '@', Qt::KeypadModifier, false},
        {"the key's own letter", 'q', Qt::Key_Q, Qt::AltModifier, false},
        {"another character", 'q', '@', Qt::AltModifier, true},
        {"another character of the third level", 'q', '@', Qt::GroupSwitchModifier, true},
        {"the keyboard says nothing", 0, '@', Qt::AltModifier, false},
        {"a letter beyond ASCII", 0xFC, Qt::Key_Udiaeresis, Qt::AltModifier, false},
    };
    for (const auto& one : table) {
        KeyboardState::setKeyboard(std::make_unique<FakeKeyboard>(one.plain));
        const QKeyEvent event(QEvent::KeyPress, one.qtKey,
                              Qt::KeyboardModifiers(static_cast<int>(one.qtModifiers)));
        EXPECT_EQ(QtEventRedirector::isShortcutKeypress(event), one.expected) << one.name;
    }
    KeyboardState::setKeyboard(nullptr);
}
