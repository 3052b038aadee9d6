#pragma once

#include <OS/Core/LightweightString.h>

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace OsInfo {

/// A number of bytes, which people read in larger units.
struct Bytes
{
    std::uint64_t count = 0;
};

using Value = std::variant<std::string, bool, std::int64_t, double, Bytes>;

struct Fact
{
    std::string key;   ///< for programs; stays the same from version to version
    std::string label; ///< for people
    Value value;       ///< texts are UTF-8
};

/// One thing: a monitor, a device.
using Item = std::vector<Fact>;

/// One subject of the report.
struct Section
{
    enum Form
    {
        eOne,  ///< one item: an object for programs
        eMany, ///< any number: an array of objects
        eNamed ///< one item whose labels are data and may come twice: an array of name and value
    };

    std::string key;
    std::string title;
    Form form = eOne;
    std::vector<Item> items;
};

using Report = std::vector<Section>;

std::string writeText(const Report& report);
/// One object, with a member for each section. Bytes that are no UTF-8 become U+FFFD.
std::string writeJson(const Report& report);

std::string utf8(const LightweightString<wchar_t>& text);

} // namespace OsInfo
