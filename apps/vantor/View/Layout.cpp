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
constexpr int kChipWidths[Layout::kChips] = {40, 40, 30, 34, 62, 62, 28, 50, 26};

constexpr int kNarrowestBin = 240;
constexpr int kNarrowestViewer = 460;
constexpr int kNarrowestSide = 216;
constexpr int kWidestSide = 400;
constexpr int kSlider = 38;
constexpr int kLowestTimeline = kRuler + Layout::kTracks * (kTrack + kTrackGap) + kMargin;
constexpr int kHighestTimeline = kRuler + Layout::kTracks * (kTallestTrack + kTrackGap) + kMargin;
constexpr int kLowestPanels = 200;

/// The width of the panels at the right.
int sideWidthFor(const Point& size)
{
    return std::clamp(248 + (size.x - 1280) / 10, kNarrowestSide, kWidestSide);
}

int binWidthFor(const Point& size, int side, int wanted)
{
    const int fallback = 296 + std::max(0, size.x - 1280) / 8;
    const int widest = size.x - 3 * kMargin - kNarrowestViewer - side;
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

void layOutEffects(Layout& l, const LayoutChoices& choices)
{
    l.sliderCount = choices.sliders;
    l.sliderScroll = choices.sliderScroll;
    if (!l.effects.hasArea())
        return;
    l.effectsHeader = {l.effects.left, l.effects.top, l.effects.right, l.effects.top + kHeader};
    const int top = l.effectsHeader.bottom + kMargin;
    const int left = l.effects.left + kPadding;
    const int right = l.effects.right - kPadding;
    const int below = top + 26;
    const auto step = [](int x, int y) { return Rect{x, y, x + 22, y + 22}; };
    l.effectButtons = {step(left, top), step(right - 22, top),
                       choices.techniques ? step(left, below) : Rect(),
                       choices.techniques ? step(right - 22, below) : Rect(),
                       Rect{l.effects.right - 52, l.effectsHeader.top + 4, l.effects.right - 6,
                            l.effectsHeader.bottom - 4}};
    l.effectName = {left + 26, top, right - 26, top + 22};
    if (choices.techniques)
        l.techniqueName = {left + 26, below, right - 26, below + 22};
    const int namesEnd = std::max(l.effectName.bottom, l.techniqueName.bottom);
    l.sliders = {l.effects.left, namesEnd + kMargin, l.effects.right, l.effects.bottom};
    if (choices.troubleLines == 0)
        return;
    // Where there are sliders they keep half of the room.
    const int room = l.sliders.height() / (choices.sliders > 0 ? 2 : 1) - kMargin;
    const int height = std::min(choices.troubleLines * Layout::kTroubleLine, room);
    l.trouble = {left, l.effects.bottom - kMargin - height, right, l.effects.bottom - kMargin};
    if (choices.sliders == 0)
        l.trouble = {left, l.sliders.top, right, l.sliders.top + height};
    else
        l.sliders.bottom = l.trouble.top - kMargin;
}

void layOutScopes(Layout& l)
{
    if (!l.scopes.hasArea())
        return;
    l.scopesHeader = {l.scopes.left, l.scopes.top, l.scopes.right, l.scopes.top + kRuler};
    const Rect room{l.scopes.left + kMargin, l.scopesHeader.bottom + kMargin,
                    l.scopes.right - kMargin, l.scopes.bottom - kMargin};
    const int middle = room.top + (room.height() - kMargin) / 2;
    l.waveform = {room.left, room.top, room.right, middle};
    const int below = middle + kMargin;
    const int side = std::min(room.bottom - below, (room.width() - kMargin) / 2);
    l.vectorscope = {room.left, below, room.left + side, below + side};
    l.histogram = {l.vectorscope.right + kMargin, below, room.right, room.bottom};
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
    const int side = sideWidthFor(l.size) + kMargin;
    const int binWidth = binWidthFor(l.size, choices.effects ? side : 0, choices.binWidth);
    const int timelineHeight = timelineHeightFor(l.size, choices.timelineHeight);

    l.topBar = {0, 0, l.size.x, kTopBar};
    const int titleWidth = std::clamp(choices.titleWidth + 16, 60, l.size.x / 2);
    l.title = {kMargin, 6, kMargin + titleWidth, kTopBar - 6};
    l.controller = {l.size.x - 330, 6, l.size.x - 110, kTopBar - 6};
    l.status = {0, l.size.y - kStatus, l.size.x, l.size.y};
    const int timelineBottom = l.status.top - 6;
    const int right = l.size.x - kMargin;
    l.timeline = {kMargin, timelineBottom - timelineHeight, right - (choices.scopes ? side : 0),
                  timelineBottom};
    if (choices.scopes)
        l.scopes = {l.timeline.right + kMargin, l.timeline.top, right, timelineBottom};

    const int top = kTopBar + kMargin;
    const int bottom = l.timeline.top - kMargin;
    l.bin = {kMargin, top, kMargin + binWidth, bottom};
    l.viewer = {l.bin.right + kMargin, top, right - (choices.effects ? side : 0), bottom};
    if (choices.effects)
        l.effects = {l.viewer.right + kMargin, top, right, bottom};
    l.binEdge = {l.bin.right, top, l.viewer.left, bottom};
    l.timelineEdge = {kMargin, bottom, l.size.x - kMargin, l.timeline.top};
    layOutBin(l);
    layOutViewer(l, choices);
    layOutEffects(l, choices);
    layOutTimeline(l);
    layOutScopes(l);
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

Rect Layout::slider(int index) const
{
    const int top = sliders.top + index * kSlider - sliderScroll;
    return {sliders.left + kPadding, top, sliders.right - kPadding, top + kSlider};
}

Rect Layout::groove(const Rect& slider)
{
    const int middle = slider.top + 25;
    return {slider.left + 6, middle - 2, slider.right - 6, middle + 2};
}

int Layout::sliderScrollRange() const
{
    return std::max(0, sliderCount * kSlider + kMargin - sliders.height());
}

int Layout::scrollRange(int tileCount) const
{
    const int rows = (tileCount + columns - 1) / columns;
    return std::max(0, rows * rowHeight() + kPadding - tiles.height());
}

} // namespace Vantor
