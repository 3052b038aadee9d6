#pragma once

#include "View/Panel.h"

#include <vector>

namespace Quay {

/// Where a panel and its rows are, in the window.
struct PanelPlace
{
    Rect rect;
    Rect header;
    Rect body;
    std::vector<Rect> rows; ///< one for each of the panel's
};

/// Where everything is: a pure function of the window's size and the panels. Logical pixels.
///
/// Panels flow into as few columns as show them all; where none do, the board scrolls. Holds from
/// kSmallest up; a smaller window shows the top left part of the smallest layout.
struct Layout
{
    static inline const Point kSmallest{480, 320};
    static inline const Point kLargest{7680, 4320};

    Point size;
    Rect topBar;
    Rect board; ///< what the panels scroll in
    Rect status;
    int columns = 1;
    int scroll = 0;      ///< as asked for, within its range
    int scrollRange = 0; ///< how far it can go
    std::vector<PanelPlace> panels;

    /// The bar that shows what part is seen; empty where all is.
    Rect scrollBar() const;
};

Layout makeLayout(const Point& size, const std::vector<Panel>& panels, int scroll);

/// What a row needs at a width, without the space behind it.
int rowHeight(const Row& row, int width);
/// Where the values of a row begin, from its left edge.
int labelWidth(int rowWidth);
/// One place of a row that can be acted on.
Rect actionRect(const Row& row, const Rect& rect, int part);
/// One of many small graphs in a row.
Rect cellRect(const Rect& row, int count, int index);
/// A rectangle of a plane as it lies in a row, the plane scaled to fit.
Rect mapRect(const MapRow& row, const Rect& rect, const Rect& place);

} // namespace Quay
