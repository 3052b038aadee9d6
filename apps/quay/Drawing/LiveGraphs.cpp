#include "Drawing/LiveGraphs.h"

#include "Drawing/Scene.h"

#include <OS.h>
#include <OS/Windowing/iWindowManager.h>

#include <algorithm>

namespace Quay {

namespace {

bool isWhole(const Rect& rect, const Rect& board)
{
    return rect.hasArea() && rect.top >= board.top && rect.bottom <= board.bottom;
}

} // namespace

LiveGraphs::Window* LiveGraphs::windowFor(std::size_t index)
{
    if (index < windows_.size())
        return &windows_[index];
    if (refused_)
        return nullptr;
    Window made;
    made.window = OS()->windowMgr()->createVideoWindow({0, 0}, {1, 1});
    refused_ = !made.window;
    if (refused_)
        return nullptr;
    made.window->hide();
    windows_.push_back(std::move(made));
    return &windows_.back();
}

void LiveGraphs::draw(Window& window, const GraphRow& row, const Rect& place)
{
    if (!(window.place == place)) {
        window.window->setGeometry(place.topLeft(), place.size());
        window.place = place;
        window.drawn = false;
    }
    const bool same = window.drawn && window.shown.history.values == row.history.values &&
                      window.shown.tone == row.tone;
    if (!window.window->isVisible())
        window.window->show();
    if (same)
        return;
    const Tq::Ptr<iVideoWindowBackBuffer> buffer = window.window->getBackBuffer();
    const Tq::Ptr<iGraphicPrimitivesRenderer> renderer =
        buffer ? buffer->getPrimitivesRenderer(true) : nullptr;
    if (!renderer)
        return;
    Canvas canvas(resources_, renderer);
    drawGraph(canvas, row, {0, 0, place.width(), place.height()});
    window.shown = row;
    window.drawn = true;
}

void LiveGraphs::show(const BoardState& state, const Layout& layout)
{
    std::size_t used = 0;
    const bool carries = state.drag.kind == Drag::Kind::ePanel && state.drag.moved;
    for (std::size_t p = 0; p < state.panels.size() && p < layout.panels.size() && !carries; ++p) {
        const PanelPlace& place = layout.panels[p];
        const std::vector<Row>& rows = state.panels[p].rows;
        for (std::size_t r = 0; r < rows.size() && r < place.rows.size(); ++r) {
            const GraphRow* graph = std::get_if<GraphRow>(&rows[r]);
            const Rect rect = graph ? graphRect(place.rows[r]) : Rect();
            Window* window = isWhole(rect, layout.board) ? windowFor(used) : nullptr;
            if (!window)
                continue;
            window->panel = static_cast<int>(p);
            window->row = static_cast<int>(r);
            draw(*window, *graph, rect);
            ++used;
        }
    }
    for (std::size_t i = used; i < windows_.size(); ++i) {
        windows_[i].panel = -1;
        windows_[i].window->hide();
        windows_[i].drawn = false;
    }
}

bool LiveGraphs::has(int panel, int row) const
{
    return std::any_of(windows_.begin(), windows_.end(), [&](const Window& window) {
        return window.panel == panel && window.row == row && window.drawn;
    });
}

bool LiveGraphs::isSettled() const
{
    return std::all_of(windows_.begin(), windows_.end(), [](const Window& window) {
        return window.panel < 0 || (window.window->getQueuedFrames() == 0 &&
                                    window.window->getStatistics().presented > 0);
    });
}

void LiveGraphs::close()
{
    for (const Window& window : windows_)
        window.window->close();
    windows_.clear();
    refused_ = false;
}

} // namespace Quay
