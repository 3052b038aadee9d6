#pragma once

#include <OS/Core/LightweightString.h>

#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <string_view>

/// The text form of settings: "[section]" lines, "name=value" lines, an empty line behind each
/// section; sections and names in the order of their bytes.
///
/// There are no comments, no quoting and no escapes. A file is read in pieces of at most 1023
/// bytes, each to the end of its line: a longer line counts as several, deliberately. A byte of 0
/// ends its piece.
namespace SettingsText {

struct ByteOrder
{
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const { return a < b; }
};
using Text = LightweightString<char>;
using Values = std::map<Text, Text, ByteOrder>;
using Sections = std::map<Text, Values, ByteOrder>;

/// Adds what the stream holds from here on.
///
/// Values lose their trailing control characters. Bytes from 0x80 on stay: they are parts of UTF-8
/// characters. Pieces of less than 4 bytes, line feed included, and those without "=" are ignored.
void read(std::FILE* stream, Sections& sections);

/// What the form can not hold, and the first of it in words.
struct Losses
{
    unsigned int count = 0;
    std::string first;
};

/// Takes the text piece by piece. @return false to have no more of it
using Sink = std::function<bool(std::string_view piece)>;

/// Sections without values are left out.
///
/// A value ends at its first line break, and where the rest of a long line would be read as other
/// settings. A name with "=" or a line break, one that begins with "[" or has no room in a piece,
/// and a section name with "]" or a line break are left out, so that no other value is harmed.
///
/// @return false when the sink has refused a piece
bool write(const Sections& sections, const Sink& sink, Losses& losses);

} // namespace SettingsText
