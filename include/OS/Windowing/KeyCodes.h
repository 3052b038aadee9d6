#pragma once

#include <cstdint>

/// Codes of keys that are no characters, and the modifier bits, as event records carry them.
/// Characters travel as their Unicode code point.
namespace Key {

enum eCode : std::uint32_t
{
    eNone = 0,
    eBackspace = 8,
    eTab = 9,
    eReturn = 13,
    eEscape = 27,
    eSpace = 32,
    eF1 = 0x800003B, ///< F2 to F12 follow
    eF12 = 0x8000046,
    eHome = 0x8000047,
    eUp = 0x8000048,
    ePageUp = 0x8000049,
    eLeft = 0x800004B,
    eRight = 0x800004D,
    eEnd = 0x800004F,
    eDown = 0x8000050,
    ePageDown = 0x8000051,
    eInsert = 0x8000052,
    eDelete = 0x8000053,
    eF13 = 0x8000061, ///< F14 to F19 follow; not contiguous with F12, deliberately
    eF19 = 0x8000067
};

enum eModifier : std::uint32_t
{
    eControl = 0x100000,
    eShift = 0x1000000,
    eMeta = 0x2000000,
    eAlt = 0x4000000,
    eKeypad = 0x80000000 ///< only in key records
};

} // namespace Key
