#pragma once

#include <OS/Primitives/NormalisedRGB.h>

/// Colours, type and sizes of the sample applications, in one place.
namespace App::Theme {

/// A colour from 0xRRGGBB. Half a step is added because renderers truncate to 8 bits.
inline NormalisedRGB rgb(unsigned int hex)
{
    const auto part = [hex](unsigned int shift) {
        return (static_cast<float>((hex >> shift) & 0xFF) + 0.5f) / 255.0f;
    };
    return {part(16), part(8), part(0), 1.0f};
}

/// A colour part of the way to another one; opaque, so that every renderer agrees.
inline NormalisedRGB mix(const NormalisedRGB& from, const NormalisedRGB& to, float part)
{
    const auto between = [part](float a, float b) { return a + (b - a) * part; };
    return {between(from.red, to.red), between(from.green, to.green), between(from.blue, to.blue),
            1.0f};
}

inline const NormalisedRGB kWhite = rgb(0xFFFFFF);
inline const NormalisedRGB kBlack = rgb(0x000000);
inline const NormalisedRGB kGround = rgb(0x121419);
inline const NormalisedRGB kPanel = rgb(0x1B1E25);
inline const NormalisedRGB kLane = rgb(0x181B21);
inline const NormalisedRGB kHeader = rgb(0x232730);
inline const NormalisedRGB kText = rgb(0xD7DAE0);
inline const NormalisedRGB kDim = rgb(0x868E9B);
inline const NormalisedRGB kTick = rgb(0x4A515E);
inline const NormalisedRGB kTime = rgb(0xFF5A5F);
inline const NormalisedRGB kAccent = rgb(0x4C8DFF);
inline const NormalisedRGB kKey = rgb(0xFFD166);
inline const NormalisedRGB kStatus = rgb(0x0E1014);

/// What is filled with a colour of its own darkens a little towards the bottom.
struct Gradient
{
    NormalisedRGB top;
    NormalisedRGB bottom;
};
inline const Gradient kGold{rgb(0x8A6A2F), rgb(0x6E5323)};
inline const Gradient kBlue{rgb(0x356B96), rgb(0x284F70)};
inline const Gradient kTeal{rgb(0x2B7A78), rgb(0x1F5B5A)};
inline const Gradient kPurple{rgb(0x5A4A8C), rgb(0x43376A)};
inline const Gradient kRed{rgb(0x9C4347), rgb(0x7A3438)};

/// What lies under the pointer is lighter, what is pressed is darker.
inline NormalisedRGB hovered(const NormalisedRGB& colour)
{
    return mix(colour, kWhite, 0.06f);
}
inline NormalisedRGB pressed(const NormalisedRGB& colour)
{
    return mix(colour, kBlack, 0.25f);
}
inline NormalisedRGB disabled(const NormalisedRGB& colour, const NormalisedRGB& ground)
{
    return mix(ground, colour, 0.5f);
}

/// A typeface at one size.
struct Type
{
    int size; ///< logical pixels
    bool bold = false;
    bool fixedPitch = false;

    friend bool operator<(const Type& a, const Type& b)
    {
        if (a.size != b.size)
            return a.size < b.size;
        return a.bold != b.bold ? a.bold < b.bold : a.fixedPitch < b.fixedPitch;
    }
};
constexpr Type kLabel{12};
constexpr Type kTitle{12, true};
constexpr Type kProject{13, true};
constexpr Type kFact{11};
constexpr Type kSmall{10};
constexpr Type kRuler{10, false, true};
constexpr Type kClock{16, false, true};
constexpr Type kClockDim{12, false, true};

} // namespace App::Theme
