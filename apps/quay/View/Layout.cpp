#include "View/Layout.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace Quay {

namespace {

constexpr int kMargin = 8;
constexpr int kGap = 8;
constexpr int kTopBar = 36;
constexpr int kStatus = 26;
constexpr int kHeader = 28;
constexpr int kSide = 12; ///< between a panel's edge and its rows
constexpr int kAbove = 10;
constexpr int kBelow = 12;
constexpr int kNarrowest = 296;
constexpr int kCellGap = 4;

int ceilDiv(int a, int b)
{
    return (a + b - 1) / b;
}

struct CellGrid
{
    int columns;
    int rows;
    int height; ///< of a cell at least
};

CellGrid cellGrid(int count, int width)
{
    const int least = count <= 8 ? 88 : count <= 16 ? 72 : count <= 64 ? 44 : 28;
    const int height = count <= 16 ? 40 : count <= 64 ? 28 : 20;
    const int most = std::clamp((width + kCellGap) / (least + kCellGap), 1, std::max(count, 1));
    // Full lines where they can be had without growing much narrower.
    for (int columns = most; columns >= 2 && columns * 2 > most; --columns)
        if (count % columns == 0)
            return {columns, count / columns, height};
    const int rows = std::max(1, ceilDiv(count, most));
    return {std::max(1, ceilDiv(count, rows)), rows, height};
}

/// What a row may grow to where a column has room to spare.
int stretchedHeight(const Row& row, int width)
{
    const int height = rowHeight(row, width);
    if (std::holds_alternative<GraphRow>(row) || std::holds_alternative<MapRow>(row))
        return std::max(height, width / 2);
    if (std::holds_alternative<CellsRow>(row))
        return height * 2;
    return height;
}

int gapBehind(const Row& row)
{
    if (std::holds_alternative<GraphRow>(row) || std::holds_alternative<MapRow>(row) ||
        std::holds_alternative<CellsRow>(row))
        return 8;
    if (std::holds_alternative<MeterRow>(row))
        return 10;
    return std::holds_alternative<ChoiceRow>(row) ? 4 : 0;
}

/// Between a panel's header and its first row: headings bring room of their own.
int gapAbove(const Panel& panel)
{
    const bool heading =
        !panel.rows.empty() && std::holds_alternative<HeadingRow>(panel.rows.front());
    return heading ? kAbove - 8 : kAbove;
}

int panelHeight(const Panel& panel, int width)
{
    int height = kHeader + gapAbove(panel) + kBelow;
    for (std::size_t i = 0; i < panel.rows.size(); ++i)
        height += rowHeight(panel.rows[i], width - 2 * kSide) +
                  (i + 1 < panel.rows.size() ? gapBehind(panel.rows[i]) : 0);
    return height;
}

/// Panels in columns: each goes to the shortest.
struct Flow
{
    int width = 0;
    std::vector<std::vector<int>> columns;
    int height = 0; ///< of the longest column
};

Flow flowInto(const std::vector<Panel>& panels, int columns, int width)
{
    Flow flow;
    flow.width = (width - (columns - 1) * kGap) / columns;
    flow.columns.resize(static_cast<std::size_t>(columns));
    std::vector<int> heights(static_cast<std::size_t>(columns), -kGap);
    for (std::size_t i = 0; i < panels.size(); ++i) {
        const auto shortest = std::min_element(heights.begin(), heights.end());
        *shortest += kGap + panelHeight(panels[i], flow.width);
        flow.columns[static_cast<std::size_t>(shortest - heights.begin())].push_back(
            static_cast<int>(i));
    }
    flow.height = std::max(0, *std::max_element(heights.begin(), heights.end()));
    return flow;
}

/// Columns are no wider than this where there are panels for more: lines stay short, and in tall
/// windows a column holds enough to reach their end.
int widestColumn(int height)
{
    return std::clamp(height * 2 / 3, 640, 1000);
}

/// The fewest columns that show everything, else as many as there is room for.
Flow bestFlow(const std::vector<Panel>& panels, const Point& room)
{
    const int count = std::max(1, static_cast<int>(panels.size()));
    const int fewest = std::clamp(ceilDiv(room.x, widestColumn(room.y) + kGap), 1, count);
    const int most = std::clamp((room.x + kGap) / (kNarrowest + kGap), fewest, count);
    Flow flow = flowInto(panels, fewest, room.x);
    for (int columns = fewest + 1; columns <= most && flow.height > room.y; ++columns) {
        Flow next = flowInto(panels, columns, room.x);
        if (next.height < flow.height)
            flow = std::move(next);
    }
    return flow;
}

/// The heights of all rows of a column, grown evenly into what is left over.
std::vector<std::vector<int>> rowHeights(const std::vector<Panel>& panels,
                                         const std::vector<int>& column, int width, int spare)
{
    std::vector<std::vector<int>> heights;
    std::vector<std::pair<int*, int>> growing;
    for (const int index : column) {
        std::vector<int>& own = heights.emplace_back();
        for (const Row& row : panels[static_cast<std::size_t>(index)].rows)
            own.push_back(rowHeight(row, width));
    }
    for (std::size_t p = 0; p < column.size(); ++p) {
        const std::vector<Row>& rows = panels[static_cast<std::size_t>(column[p])].rows;
        for (std::size_t r = 0; r < rows.size(); ++r)
            if (const int limit = stretchedHeight(rows[r], width); limit > heights[p][r])
                growing.emplace_back(&heights[p][r], limit);
    }
    // Those with the least to gain first, so that what they leave goes to the others.
    std::stable_sort(growing.begin(), growing.end(), [](const auto& a, const auto& b) {
        return a.second - *a.first < b.second - *b.first;
    });
    for (std::size_t i = 0; i < growing.size() && spare > 0; ++i) {
        auto& [height, limit] = growing[i];
        const int part = std::min(limit - *height, spare / static_cast<int>(growing.size() - i));
        *height += part;
        spare -= part;
    }
    return heights;
}

PanelPlace placePanel(const Panel& panel, const Rect& top, const std::vector<int>& heights)
{
    PanelPlace place;
    place.header = {top.left, top.top, top.right, top.top + kHeader};
    int y = place.header.bottom + gapAbove(panel);
    for (std::size_t i = 0; i < panel.rows.size(); ++i) {
        place.rows.push_back({top.left + kSide, y, top.right - kSide, y + heights[i]});
        y += heights[i] + (i + 1 < panel.rows.size() ? gapBehind(panel.rows[i]) : 0);
    }
    place.rect = {top.left, top.top, top.right, y + kBelow};
    place.body = {top.left, place.header.bottom, top.right, place.rect.bottom};
    return place;
}

void placeColumn(Layout& layout, const std::vector<Panel>& panels, const std::vector<int>& column,
                 int left, int right, int bottom)
{
    int used = -kGap;
    for (const int index : column)
        used += kGap + panelHeight(panels[static_cast<std::size_t>(index)], right - left);
    const int top = layout.board.top - layout.scroll;
    const auto heights = rowHeights(panels, column, right - left - 2 * kSide, bottom - top - used);
    int y = top;
    for (std::size_t i = 0; i < column.size(); ++i) {
        const auto index = static_cast<std::size_t>(column[i]);
        PanelPlace& place = layout.panels[index];
        place = placePanel(panels[index], {left, y, right, y}, heights[i]);
        y = place.rect.bottom + kGap;
    }
    // Columns end together.
    if (!column.empty()) {
        PanelPlace& last = layout.panels[static_cast<std::size_t>(column.back())];
        last.rect.bottom = last.body.bottom = std::max(last.rect.bottom, bottom);
    }
}

} // namespace

int rowHeight(const Row& row, int width)
{
    struct Height
    {
        int width;
        int operator()(const FactRow&) const { return 20; }
        int operator()(const HeadingRow&) const { return 28; }
        int operator()(const NoteRow&) const { return 20; }
        int operator()(const GraphRow&) const { return 76; }
        int operator()(const CellsRow& cells) const
        {
            const CellGrid grid = cellGrid(static_cast<int>(cells.cells.size()), width);
            return grid.rows * (grid.height + kCellGap) - kCellGap;
        }
        int operator()(const MeterRow& meter) const { return meter.detail.empty() ? 28 : 44; }
        int operator()(const MapRow&) const { return 104; }
        int operator()(const ItemRow&) const { return 24; }
        int operator()(const BytesRow&) const { return 20; }
        int operator()(const ChoiceRow&) const { return 24; }
    };
    return std::visit(Height{width}, row);
}

int labelWidth(int rowWidth)
{
    return std::clamp(rowWidth * 3 / 10, 88, 128);
}

Rect actionRect(const Row& row, const Rect& rect, int part)
{
    const auto* choice = std::get_if<ChoiceRow>(&row);
    if (!choice)
        return {rect.left - 6, rect.top, rect.right + 6, rect.bottom};
    const int left = rect.left + labelWidth(rect.width());
    const int count = std::max(1, static_cast<int>(choice->options.size()));
    const int width = std::min(std::max(0, rect.right - left), count * 72);
    return {left + width * part / count, rect.top, left + width * (part + 1) / count, rect.bottom};
}

Rect cellRect(const Rect& row, int count, int index)
{
    const CellGrid grid = cellGrid(count, row.width());
    const int column = index % grid.columns;
    const int line = index / grid.columns;
    const auto edge = [](int from, int length, int at, int of) {
        return from + (length + kCellGap) * at / of;
    };
    return {edge(row.left, row.width(), column, grid.columns),
            edge(row.top, row.height(), line, grid.rows),
            edge(row.left, row.width(), column + 1, grid.columns) - kCellGap,
            edge(row.top, row.height(), line + 1, grid.rows) - kCellGap};
}

Rect mapRect(const MapRow& row, const Rect& rect, const Rect& place)
{
    if (row.places.empty())
        return {};
    Rect all = row.places.front().full;
    for (const MapRow::Place& other : row.places)
        all = all.united(other.full);
    const Rect room = inset(rect, 8);
    const double width = std::max(1.0, static_cast<double>(all.right) - all.left);
    const double height = std::max(1.0, static_cast<double>(all.bottom) - all.top);
    const double scale = std::min(room.width() / width, room.height() / height);
    const double left = room.left + (room.width() - width * scale) / 2;
    const double top = room.top + (room.height() - height * scale) / 2;
    const auto at = [scale](double from, double origin, int value) {
        return static_cast<int>(std::lround(from + (value - origin) * scale));
    };
    return {at(left, all.left, place.left), at(top, all.top, place.top),
            at(left, all.left, place.right), at(top, all.top, place.bottom)};
}

Rect Layout::scrollBar() const
{
    if (scrollRange <= 0)
        return {};
    const std::int64_t track = board.height();
    const std::int64_t length =
        std::max<std::int64_t>(24, track * board.height() / (board.height() + scrollRange));
    const int top = board.top + static_cast<int>((track - length) * scroll / scrollRange);
    return {size.x - 6, top, size.x - 2, top + static_cast<int>(length)};
}

Layout makeLayout(const Point& asked, const std::vector<Panel>& panels, int scroll)
{
    Layout layout;
    layout.size = {std::max(asked.x, Layout::kSmallest.x), std::max(asked.y, Layout::kSmallest.y)};
    const int right = layout.size.x;
    const int bottom = layout.size.y;
    layout.topBar = {0, 0, right, kTopBar};
    layout.status = {0, bottom - kStatus, right, bottom};
    layout.board = {kMargin, kTopBar + kMargin, right - kMargin, bottom - kStatus - kMargin};

    const Flow flow = bestFlow(panels, layout.board.size());
    layout.columns = static_cast<int>(flow.columns.size());
    layout.scrollRange = std::max(0, flow.height - layout.board.height());
    layout.scroll = std::clamp(scroll, 0, layout.scrollRange);
    layout.panels.resize(panels.size());
    const int end = layout.board.top - layout.scroll + std::max(flow.height, layout.board.height());
    for (int c = 0; c < layout.columns; ++c) {
        const int left = layout.board.left + (layout.board.width() + kGap) * c / layout.columns;
        const int edge =
            layout.board.left + (layout.board.width() + kGap) * (c + 1) / layout.columns - kGap;
        placeColumn(layout, panels, flow.columns[static_cast<std::size_t>(c)], left, edge, end);
    }
    return layout;
}

} // namespace Quay
