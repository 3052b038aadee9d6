#pragma once

/// Where a text stands relative to its position: a horizontal value plus a vertical one.
///
/// Read by the GL renderer; the Qt renderer always starts at the position, on the baseline, which
/// is the default, so that both put text on the same pixels.
enum TextAlignment : unsigned int
{
    eTextLeft = 0x0,
    eTextRight = 0x1,
    eTextCentre = 0x2,

    eTextTop = 0x00,      ///< the position is the top of the text
    eTextBaseline = 0x10, ///< the position is on the baseline

    eTextDefault = eTextLeft | eTextBaseline
};

constexpr TextAlignment operator|(TextAlignment a, TextAlignment b)
{
    return static_cast<TextAlignment>(static_cast<unsigned int>(a) | static_cast<unsigned int>(b));
}
/// 0 left, 1 right, 2 centre
constexpr unsigned int horizontalAlignment(TextAlignment a)
{
    return static_cast<unsigned int>(a) & 0xF;
}
/// 0 top, 1 baseline
constexpr unsigned int verticalAlignment(TextAlignment a)
{
    return (static_cast<unsigned int>(a) >> 4) & 0xF;
}
