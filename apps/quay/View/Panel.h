#pragma once

#include "Model/History.h"
#include "Model/Text.h"

#include <cstdint>
#include <variant>
#include <vector>

namespace Quay {

// What a panel says, without where or how it is drawn. A new panel is a function that makes a Panel
// of these rows; a new kind of row needs a height in Layout.cpp and a way to be drawn in
// DrawRows.cpp.

enum class Tone
{
    eTeal,
    eBlue,
    ePurple,
    eGold,
    eRed
};

/// What a click, or Return, does.
struct Action
{
    enum class Kind
    {
        eNone,
        eOpenFolder, ///< `path`
        eSetUnits,   ///< `value` of Units
        eSetRefresh, ///< `value` in milliseconds
        eWatchPort,  ///< `path`; the one that is watched is let go
        eWatchMidi,  ///< the input named `path`; the one that is watched is let go
        eSetSpeed    ///< `value` in bits a second
    };
    Kind kind = Kind::eNone;
    Text path;
    int value = 0;
};

/// A name and what it is.
struct FactRow
{
    Text label;
    Text value;
    bool isPath = false; ///< cut at its start where it does not fit
};

/// Begins a part of a panel.
struct HeadingRow
{
    Text text;
    Text fact;
    bool isPath = false; ///< the fact is one
};

/// One dim line: why there is nothing.
struct NoteRow
{
    Text text;
};

/// The course of one value; takes what height there is.
struct GraphRow
{
    History history;
    Text label;
    Text value;
    Tone tone = Tone::eTeal;
};

/// A small graph with a meter for each of many; takes what height there is.
struct CellsRow
{
    std::vector<History> cells;
    Tone tone = Tone::eTeal;
};

/// A bar that is filled in parts from the left.
struct MeterRow
{
    struct Part
    {
        double part = 0.0; ///< of the whole
        Tone tone = Tone::eBlue;
    };
    Text label;
    Text detail; ///< a second line, or empty
    Text value;
    Text tag; ///< a word in a frame behind the label, or empty
    std::vector<Part> parts;
};

/// Rectangles of one plane, drawn to scale; takes what height there is.
struct MapRow
{
    struct Place
    {
        Rect full;
        Rect inner; ///< lighter, within `full`
        Text name;
        Text fact;
        bool marked = false;
    };
    std::vector<Place> places;
};

/// Something that can be opened.
struct ItemRow
{
    Text label;
    Text detail; ///< a path
    Text tag;
    Tone tone = Tone::eTeal;
    bool there = true;
    Action action;
};

/// Up to eight bytes, as numbers and as characters.
struct BytesRow
{
    static constexpr std::uint64_t kBytes = 8;
    Text place; ///< of the first
    std::vector<std::uint8_t> bytes;
};

/// One of a few values.
struct ChoiceRow
{
    struct Option
    {
        Text label;
        Action action;
    };
    Text label;
    std::vector<Option> options;
    int chosen = -1;
};

using Row = std::variant<FactRow, HeadingRow, NoteRow, GraphRow, CellsRow, MeterRow, MapRow,
                         ItemRow, BytesRow, ChoiceRow>;

struct Panel
{
    Text key; ///< for the order that the user gives the panels: one word
    Text title;
    Text fact; ///< in the header
    std::vector<Row> rows;
};

/// How many places of a row the pointer and the keyboard can act on.
int actionCount(const Row& row);
Action actionOf(const Row& row, int part);

} // namespace Quay
