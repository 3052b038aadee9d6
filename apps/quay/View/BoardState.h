#pragma once

#include "Model/BoardData.h"
#include "Model/Preferences.h"
#include "View/Layout.h"
#include "View/Panels.h"

namespace Quay {

/// What the pointer can be over.
enum class Area
{
    eNone,
    eHeader, ///< of a panel
    ePanel,
    eAction, ///< `row` and `part` of a panel
    eScrollBar
};

struct Hit
{
    Area area = Area::eNone;
    int panel = -1;
    int row = -1;
    int part = -1;

    friend bool operator==(const Hit&, const Hit&) = default;
};

/// What is being dragged since the button went down.
struct Drag
{
    enum class Kind
    {
        eNone,
        ePanel,
        eScrollBar
    };
    Kind kind = Kind::eNone;
    int panel = -1;
    int grab = 0; ///< pixels between the pointer and the scroll bar's top
    Point from;
    bool moved = false;
};

/// Everything that the board shows: plain data.
struct BoardState
{
    Point size{1280, 800};
    BoardData data;
    Preferences preferences;
    std::vector<Panel> panels; ///< made of the two; see remake()
    int scroll = 0;

    Point pointer;
    bool pointerInside = false;
    Hit hover;
    Hit pressed;
    Hit focus; ///< a header or an action
    bool focusShown = false;
    Drag drag;

    Text message; ///< for the status line, until the next action
    bool quitting = false;
    Text folderToOpen;     ///< asked for; the board opens and clears it
    Text portToWatch;      ///< asked for, likewise
    Text midiToWatch;      ///< asked for, likewise
    bool readAnew = false; ///< asked for

    /// Makes the panels anew after a change of data or preferences.
    void remake();
};

Layout layoutOf(const BoardState& state);
/// What lies at a point.
Hit hitTest(const BoardState& state, const Layout& layout, const Point& point);
/// Where a hit lies: the whole panel for a header.
Rect rectOf(const BoardState& state, const Layout& layout, const Hit& hit);
/// The panel whose place a dragged one would take here, or -1.
int dropTarget(const BoardState& state, const Layout& layout);

} // namespace Quay
