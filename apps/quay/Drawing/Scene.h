#pragma once

#include "Drawing/LiveGraphs.h"
#include "View/BoardState.h"
#include "common/Canvas.h"

namespace Quay {

/// What the drawing of one frame works with.
struct Scene
{
    Canvas& canvas;
    const BoardState& state;
    const Layout layout;
    const LiveGraphs* live = nullptr; ///< graphs that are drawn elsewhere; null: none
};

/// Draws the whole window. @param live graphs that are drawn elsewhere; null: none
void drawBoard(const BoardState& state, Resources& resources,
               const Tq::Ptr<iGraphicPrimitivesRenderer>& renderer,
               const LiveGraphs* live = nullptr);

/// Draws one row of a panel. @param at the hit that the row's first action would be
void drawRow(Scene& scene, const Row& row, const Rect& rect, const Hit& at);

/// Where the graph of a row is, below its words.
Rect graphRect(const Rect& row);
void drawGraph(Canvas& canvas, const GraphRow& row, const Rect& graph);
/// The area under a history, in a rectangle, the newest reading at its right edge.
void drawHistory(Canvas& canvas, const History& history, const Rect& rect,
                 const Theme::Gradient& look, bool smooth);

const Theme::Gradient& lookOf(Tone tone);
/// A colour of a tone that is seen on a panel.
NormalisedRGB brightOf(Tone tone);

} // namespace Quay
