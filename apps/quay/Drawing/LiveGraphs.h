#pragma once

#include "View/BoardState.h"
#include "common/Resources.h"

#include <OS/Windowing/iVideoWindow.h>

#include <vector>

namespace Quay {

/// The board's large graphs, drawn by OpenGL in video windows over the board's own. Where there are
/// none, and while panels are carried about, the board draws them like everything else. On the
/// thread of the event loop.
class LiveGraphs
{
public:
    ~LiveGraphs() { close(); }

    /// Brings OpenGL up, where it is to be had, so that everybody can ask about it.
    void start() { windowFor(0); }
    /// Shows the graphs that are wholly to be seen; draws those that have changed.
    void show(const BoardState& state, const Layout& layout);
    /// Whether a row's graph is shown here.
    bool has(int panel, int row) const;
    /// Whether everything that was drawn is on the screen, as far as it can be known.
    bool isSettled() const;
    void close();

private:
    struct Window
    {
        Tq::Ptr<iVideoWindow> window;
        int panel = -1; ///< -1: hidden
        int row = -1;
        Rect place;
        GraphRow shown;
        bool drawn = false;
    };
    Window* windowFor(std::size_t index);
    void draw(Window& window, const GraphRow& row, const Rect& place);

    std::vector<Window> windows_;
    bool refused_ = false; ///< there are no video windows here
    Resources resources_{1.0};
};

} // namespace Quay
