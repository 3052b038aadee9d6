#include "View/BoardState.h"

namespace Quay {

void BoardState::remake()
{
    panels = makePanels(data, preferences);
}

Layout layoutOf(const BoardState& state)
{
    return makeLayout(state.size, state.panels, state.scroll);
}

Hit hitTest(const BoardState& state, const Layout& layout, const Point& point)
{
    const Rect bar = layout.scrollBar();
    if (bar.hasArea() && point.x >= bar.left - 2 && point.y >= layout.board.top &&
        point.y < layout.board.bottom)
        return {Area::eScrollBar};
    if (!layout.board.contains(point))
        return {};
    for (std::size_t p = 0; p < layout.panels.size(); ++p) {
        const PanelPlace& place = layout.panels[p];
        const int panel = static_cast<int>(p);
        if (!place.rect.contains(point))
            continue;
        if (place.header.contains(point))
            return {Area::eHeader, panel};
        const std::vector<Row>& rows = state.panels[p].rows;
        for (std::size_t r = 0; r < rows.size(); ++r)
            for (int part = 0; part < actionCount(rows[r]); ++part)
                if (actionRect(rows[r], place.rows[r], part).contains(point))
                    return {Area::eAction, panel, static_cast<int>(r), part};
        return {Area::ePanel, panel};
    }
    return {};
}

Rect rectOf(const BoardState& state, const Layout& layout, const Hit& hit)
{
    const auto panel = static_cast<std::size_t>(hit.panel);
    if (hit.panel < 0 || panel >= layout.panels.size())
        return {};
    const PanelPlace& place = layout.panels[panel];
    const auto row = static_cast<std::size_t>(hit.row);
    if (hit.area != Area::eAction || hit.row < 0 || row >= place.rows.size())
        return place.rect;
    return actionRect(state.panels[panel].rows[row], place.rows[row], hit.part);
}

int dropTarget(const BoardState& state, const Layout& layout)
{
    if (state.drag.kind != Drag::Kind::ePanel || !state.drag.moved)
        return -1;
    for (std::size_t p = 0; p < layout.panels.size(); ++p)
        if (layout.panels[p].rect.contains(state.pointer) &&
            static_cast<int>(p) != state.drag.panel)
            return static_cast<int>(p);
    return -1;
}

} // namespace Quay
