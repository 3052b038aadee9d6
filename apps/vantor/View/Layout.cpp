#include "View/Layout.h"

#include "View/ViewerGeometry.h"

#include <algorithm>

namespace Vantor {

namespace {

constexpr int kMargin = 8;
constexpr int kTopBar = 36;
constexpr int kHeader = 28;
constexpr int kStatus = 26;
constexpr int kRuler = 24;
constexpr int kTrackGap = 4;
constexpr int kTrack = 54;
constexpr int kTallestTrack = 120;
constexpr int kTrackHead = 112;
constexpr int kTransport = 40;
constexpr int kTileLabel = 20;
constexpr int kTile = 132;
constexpr int kPadding = 12;
constexpr int kChipWidths[Layout::kChips] = {40, 40, 30, 34, 62, 62, 26};

constexpr int kNarrowestBin = 240;
constexpr int kNarrowestViewer = 420;
constexpr int kLowestTimeline = kRuler + Layout::kTracks * (kTrack + kTrackGap) + kMargin;
constexpr int kHighestTimeline = kRuler + Layout::kTracks * (kTallestTrack + kTrackGap) + kMargin;
constexpr int kLowestPanels = 200;

int binWidthFor(const Point& size, int wanted)
{
    const int fallback = 296 + std::max(0, size.x - 1280) / 8;
    const int widest = size.x - 3 * kMargin - kNarrowestViewer;
    return std::clamp(wanted > 0 ? wanted : fallback, kNarrowestBin, widest);
}

int timelineHeightFor(const Point& size, int wanted)
{
    const int fallback = kLowestTimeline + std::max(0, size.y - 720) / 7;
    const int room = size.y - kTopBar - kStatus - 3 * kMargin - kLowestPanels;
    return std::clamp(wanted > 0 ? wanted : fallback, kLowestTimeline,
                      std::max(kLowestTimeline, std::min(room, kHighestTimeline)));
}

void layOutBin(Layout& l)
{
    l.binHeader = {l.bin.left, l.bin.top, l.bin.right, l.bin.top + kHeader};
    l.filter = {l.bin.left + 64, l.binHeader.top + 4, l.bin.right - 84, l.binHeader.bottom - 4};
    l.tiles = {l.bin.left, l.binHeader.bottom, l.bin.right, l.bin.bottom};
    const int width = l.bin.width() - 2 * kPadding;
    const int wanted = kTile + std::max(0, l.size.x - 1280) / 20; // larger screens, larger pictures
    l.columns = std::max(1, (width + kMargin) / (wanted + kMargin));
    l.tileWidth = (width - (l.columns - 1) * kMargin) / l.columns;
    l.thumbHeight = l.tileWidth * 62 / kTile;
}

void layOutViewer(Layout& l, const LayoutChoices& choices)
{
    l.viewerHeader = {l.viewer.left, l.viewer.top, l.viewer.right, l.viewer.top + kHeader};
    l.transport = {l.viewer.left, l.viewer.bottom - kTransport, l.viewer.right, l.viewer.bottom};
    l.stage = {l.viewer.left + kPadding, l.viewerHeader.bottom + 4, l.viewer.right - kPadding,
               l.transport.top};
    l.screen = {l.viewer.left, l.viewerHeader.bottom, l.viewer.right, l.transport.top};
    l.picture = placePicture(l.screen, l.stage, choices.ratio, choices.viewer);

    int right = l.viewer.right - 6;
    for (std::size_t i = Layout::kChips; i-- > 0;) {
        l.chips[i] = {right - kChipWidths[i], l.viewerHeader.top + 4, right,
                      l.viewerHeader.bottom - 4};
        right -= kChipWidths[i] + 2;
    }

    const int centre = (l.transport.left + l.transport.right) / 2;
    const int middle = l.transport.top + 21;
    for (int i = 0; i < Layout::kButtons; ++i) {
        const int x = centre + (i - 1) * 60;
        l.buttons[static_cast<std::size_t>(i)] = {x - 15, middle - 15, x + 15, middle + 15};
    }
}

void layOutTimeline(Layout& l)
{
    l.ruler = {l.timeline.left, l.timeline.top, l.timeline.right, l.timeline.top + kRuler};
    const int room = l.timeline.height() - kRuler - kMargin;
    const int height = std::clamp(room / Layout::kTracks - kTrackGap, kTrack, kTallestTrack);
    const int left = l.timeline.left + kTrackHead + kMargin;
    int top = l.ruler.bottom + kTrackGap;
    for (std::size_t i = 0; i < Layout::kTracks; ++i) {
        l.heads[i] = {l.timeline.left, top, l.timeline.left + kTrackHead, top + height};
        l.tracks[i] = {left, top, l.timeline.right, top + height};
        top += height + kTrackGap;
    }
    l.lanes = {left, l.tracks.front().top, l.timeline.right, l.tracks.back().bottom};
}

} // namespace

Layout makeLayout(const Point& window, const LayoutChoices& choices)
{
    Layout l;
    l.size = {std::max(window.x, Layout::kSmallest.x), std::max(window.y, Layout::kSmallest.y)};
    const int binWidth = binWidthFor(l.size, choices.binWidth);
    const int timelineHeight = timelineHeightFor(l.size, choices.timelineHeight);

    l.topBar = {0, 0, l.size.x, kTopBar};
    const int titleWidth = std::clamp(choices.titleWidth + 16, 60, l.size.x / 2);
    l.title = {kMargin, 6, kMargin + titleWidth, kTopBar - 6};
    l.status = {0, l.size.y - kStatus, l.size.x, l.size.y};
    const int timelineBottom = l.status.top - 6;
    l.timeline = {kMargin, timelineBottom - timelineHeight, l.size.x - kMargin, timelineBottom};

    const int top = kTopBar + kMargin;
    const int bottom = l.timeline.top - kMargin;
    l.bin = {kMargin, top, kMargin + binWidth, bottom};
    l.viewer = {l.bin.right + kMargin, top, l.size.x - kMargin, bottom};
    l.binEdge = {l.bin.right, top, l.viewer.left, bottom};
    l.timelineEdge = {kMargin, bottom, l.size.x - kMargin, l.timeline.top};
    layOutBin(l);
    layOutViewer(l, choices);
    layOutTimeline(l);
    return l;
}

int Layout::rowHeight() const
{
    return thumbHeight + kTileLabel;
}

Rect Layout::tile(int place, int scroll) const
{
    const int x = tiles.left + kPadding + place % columns * (tileWidth + kMargin);
    const int y = tiles.top + kPadding + place / columns * rowHeight() - scroll;
    return {x, y, x + tileWidth, y + rowHeight()};
}

Rect Layout::thumb(const Rect& tile) const
{
    return {tile.left, tile.top, tile.right, tile.top + thumbHeight};
}

int Layout::scrollRange(int tileCount) const
{
    const int rows = (tileCount + columns - 1) / columns;
    return std::max(0, rows * rowHeight() + kPadding - tiles.height());
}

} // namespace Vantor
