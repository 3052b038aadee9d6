#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The keys by their place, as a server with the evdev rules numbers them, whatever layout is in
/// use.
enum eKeycode : int
{
    kSpareKey = 8,
    kEscape = 9,
    kFive = 14,
    kTabKey = 23,
    kQ = 24,
    kE = 26,
    kY = 29,
    kReturnKey = 36,
    kControlL = 37,
    kA = 38,
    kShiftL = 50,
    kZ = 52,
    kAltL = 64,
    kSpaceKey = 65,
    kCapsLock = 66,
    kNumLock = 77,
    kKeypad5 = 84,
    kF12Key = 96,
    kAltGr = 108,
    kLeftArrow = 113,
    kSuperL = 133
};

/// A second client of the X server: it presses real keys and buttons, moves the mouse, and looks at
/// the screen. What it pressed is let go with it. Positions are device pixels of the screen.
class InputRig
{
public:
    InputRig();
    ~InputRig();
    InputRig(const InputRig&) = delete;
    InputRig& operator=(const InputRig&) = delete;

    void press(unsigned int keycode);
    void release(unsigned int keycode);
    void tap(unsigned int keycode);
    /// Buttons by the server's numbers: 1 left, 2 middle, 3 right, 4 and 5 the wheel, 6 and 7 the
    /// wheel to the sides.
    void pressButton(unsigned int button);
    void releaseButton(unsigned int button);
    void click(unsigned int button);
    void moveMouse(int x, int y);

    /// Has a key make a symbol by its name, such as "F13".
    void mapKey(unsigned int keycode, const char* symbol);
    /// How long a key is held until it repeats, and how often then.
    void setAutoRepeat(unsigned int delayMs, unsigned int intervalMs);
    /// 0xRRGGBB, as the server has it now.
    std::uint32_t pixel(int x, int y) const;

    /// Loads a keyboard layout such as "us", or several as in "us,ru", puts the locks out and
    /// chooses one.
    void setLayout(const std::string& layout, unsigned int group = 0);

private:
    void clearLocks();

    struct Connection;
    Connection* x_;
    std::vector<unsigned int> keysDown_;
    std::vector<unsigned int> buttonsDown_;
};
