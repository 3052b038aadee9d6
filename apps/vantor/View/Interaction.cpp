#include "View/Interaction.h"

#include "View/ViewerGeometry.h"

#include <OS/Windowing/KeyCodes.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Vantor {

namespace {

constexpr std::int64_t kDoubleClickMs = 400;
constexpr int kDragStart = 3; ///< pixels that a press may shake without becoming a drag
constexpr double kZoomStep = 1.25;

bool closeTo(const Point& a, const Point& b, int distance)
{
    return std::abs(a.x - b.x) <= distance && std::abs(a.y - b.y) <= distance;
}

} // namespace

Interaction::Interaction(EditorState& state, Boundaries boundaries)
    : state_(state), boundaries_(std::move(boundaries))
{
}

void Interaction::startDrag(Drag::Kind kind, int index, int grab, const Point& point)
{
    state_.drag = {kind, index, grab, point, false, state_.project};
}

void Interaction::press(const Point& point, std::uint32_t modifiers, std::int64_t timeMs)
{
    const bool twice = timeMs - lastPressMs_ <= kDoubleClickMs && closeTo(point, lastPress_, 4);
    // A third press begins anew.
    lastPressMs_ = twice ? timeMs - kDoubleClickMs - 1 : timeMs;
    lastPress_ = point;

    state_.pointer = point;
    state_.pointerInside = true;
    state_.message.clear();
    // What lies under a picture that fills the screen cannot be meant.
    if (state_.fullScreen) {
        state_.fullScreen = !twice;
        return;
    }
    const Layout layout = layoutOf(state_);
    const Hit hit = hitTest(state_, layout, point);
    state_.hover = state_.pressed = hit;
    if (hit.area == Area::eTitle || hit.area == Area::eFilter) {
        pressTitleOrFilter(hit.area == Area::eTitle ? Focus::eTitle : Focus::eFilter, point,
                           modifiers, twice);
        return;
    }
    leaveField(true);
    switch (hit.area) {
    case Area::eTile:
        pressTile(hit.index, twice);
        break;
    case Area::eBin:
        focusOn(Focus::eBin, false);
        state_.bin.selected = MediaBin::kNone;
        break;
    case Area::eBinEdge:
        startDrag(Drag::Kind::eBinEdge, 0, point.x - layout.bin.right, point);
        break;
    case Area::eTimelineEdge:
        startDrag(Drag::Kind::eTimelineEdge, 0, point.y - layout.timeline.top, point);
        break;
    case Area::eButton:
        focusOn(Focus::eTimeline, false);
        break;
    case Area::eRuler:
    case Area::ePlayhead:
        focusOn(Focus::eTimeline, false);
        state_.player.stop();
        startDrag(Drag::Kind::ePlayhead, 0, 0, point);
        dragTo(point);
        break;
    case Area::eClip:
    case Area::eClipStart:
    case Area::eClipEnd:
        pressClip(hit, point);
        break;
    case Area::eViewer:
        pressViewer(point, twice);
        break;
    case Area::eSlider:
        pressSlider(hit.index, point, twice);
        break;
    case Area::eEffects:
    case Area::eEffectButton:
        focusOn(Focus::eEffects, false);
        break;
    case Area::eLane:
    case Area::eHead:
        focusOn(Focus::eTimeline, false);
        state_.selectedClip = Project::kNone;
        break;
    default:
        break;
    }
}

void Interaction::pressTitleOrFilter(Focus field, const Point& point, std::uint32_t modifiers,
                                     bool twice)
{
    const bool entered = state_.focus != field;
    if (entered)
        leaveField(true);
    focusOn(field, false);
    TextField& text = state_.activeField();
    startDrag(Drag::Kind::eText, static_cast<int>(field), 0, point);
    const std::uint32_t anchor = text.anchor;
    dragText(point);
    if (twice)
        text.selectWord(text.caret);
    else
        text.anchor = (modifiers & Key::eShift) != 0 && !entered ? anchor : text.caret;
}

void Interaction::pressTile(int item, bool twice)
{
    focusOn(Focus::eBin, false);
    state_.bin.selected = item;
    if (twice) {
        insertPicture(item, Track::ePicture, state_.project.contentEnd());
        return;
    }
    startDrag(Drag::Kind::eMedia, item, 0, state_.pointer);
}

void Interaction::pressClip(const Hit& hit, const Point& point)
{
    focusOn(Focus::eTimeline, false);
    state_.selectedClip = hit.index;
    const Clip& clip = state_.project.clips[static_cast<std::size_t>(hit.index)];
    const int at =
        static_cast<int>(std::lround(state_.view.frameAt(point.x, layoutOf(state_).lanes.left)));
    if (hit.area == Area::eClip)
        startDrag(Drag::Kind::eClip, hit.index, at - clip.start, point);
    else if (hit.area == Area::eClipStart)
        startDrag(Drag::Kind::eClipStart, hit.index, at - clip.start, point);
    else
        startDrag(Drag::Kind::eClipEnd, hit.index, at - clip.end(), point);
}

void Interaction::pressButton(int button)
{
    if (!state_.canUse(button))
        return;
    if (button == 1) {
        if (state_.player.playing())
            state_.player.stop();
        else
            state_.player.seek(0);
    } else {
        state_.player.shuttle(button == 0 ? -1 : 1);
    }
    revealPlayhead();
}

void Interaction::move(const Point& point)
{
    state_.pointer = point;
    state_.pointerInside = true;
    if (state_.drag.kind != Drag::Kind::eNone) {
        if (!closeTo(point, state_.drag.from, kDragStart))
            state_.drag.moved = true;
        if (state_.drag.moved || state_.drag.kind == Drag::Kind::ePlayhead ||
            state_.drag.kind == Drag::Kind::eSlider)
            dragTo(point);
        return;
    }
    state_.hover = hitTest(state_, layoutOf(state_), point);
}

void Interaction::dragTo(const Point& point)
{
    const Layout layout = layoutOf(state_);
    switch (state_.drag.kind) {
    case Drag::Kind::ePlayhead: {
        const double at = state_.view.frameAt(point.x, layout.lanes.left);
        state_.player.seek(static_cast<int>(std::lround(std::clamp(at, 0.0, 1e8))));
        revealPlayhead();
        break;
    }
    case Drag::Kind::eClip:
    case Drag::Kind::eClipStart:
    case Drag::Kind::eClipEnd:
        dragClip(point);
        break;
    case Drag::Kind::eText:
        dragText(point);
        break;
    case Drag::Kind::eShift:
        dragShift(point);
        break;
    case Drag::Kind::eSlider:
        dragSlider(point);
        break;
    case Drag::Kind::eBinEdge:
        state_.choices.binWidth = std::max(1, point.x - state_.drag.grab - layout.bin.left);
        break;
    case Drag::Kind::eTimelineEdge:
        state_.choices.timelineHeight =
            std::max(1, layout.timeline.bottom - (point.y - state_.drag.grab));
        break;
    default:
        break;
    }
    settle();
}

// Edges within a few pixels of another clip's edge or the playhead go there.
int Interaction::snapped(int frame, int ignoredClip) const
{
    const int reach = static_cast<int>(6 / state_.view.scale);
    int best = frame;
    int nearest = reach + 1;
    const auto offer = [&](int edge) {
        if (std::abs(edge - frame) < nearest) {
            nearest = std::abs(edge - frame);
            best = edge;
        }
    };
    offer(state_.player.frame());
    for (std::size_t i = 0; i < state_.project.clips.size(); ++i)
        if (static_cast<int>(i) != ignoredClip) {
            offer(state_.project.clips[i].start);
            offer(state_.project.clips[i].end());
        }
    return best;
}

void Interaction::dragClip(const Point& point)
{
    const int index = state_.drag.index;
    const double at = state_.view.frameAt(point.x, layoutOf(state_).lanes.left);
    const int target = static_cast<int>(std::lround(std::clamp(at, -1e8, 1e8))) - state_.drag.grab;
    Project& project = state_.project;
    if (state_.drag.kind == Drag::Kind::eClipStart) {
        project.trimStart(index, snapped(target, index));
    } else if (state_.drag.kind == Drag::Kind::eClipEnd) {
        project.trimEnd(index, snapped(target, index));
    } else {
        const int length = project.clips[static_cast<std::size_t>(index)].length;
        int start = snapped(target, index);
        if (start == target)
            start = snapped(target + length, index) - length;
        project.move(index, start);
    }
}

void Interaction::dragText(const Point& point)
{
    TextField& field = state_.activeField();
    const std::vector<int> edges = boundaries_(state_.focus, field.text);
    const int x = point.x - fieldTextLeft(layoutOf(state_), state_.focus, field.caret, edges);
    std::size_t best = 0;
    for (std::size_t i = 1; i < edges.size(); ++i)
        if (std::abs(edges[i] - x) < std::abs(edges[best] - x))
            best = i;
    field.moveTo(static_cast<std::uint32_t>(best), true);
    state_.caretShown = true;
}

void Interaction::release(const Point& point)
{
    state_.pointer = point;
    const Drag drag = state_.drag;
    const Layout layout = layoutOf(state_);
    if (drag.kind == Drag::Kind::eMedia) {
        const Clip clip = clipToDrop(state_, layout);
        if (clip.length > 0)
            insertPicture(drag.index, clip.track, clip.start);
    }
    const bool edits = drag.kind == Drag::Kind::eClip || drag.kind == Drag::Kind::eClipStart ||
                       drag.kind == Drag::Kind::eClipEnd;
    state_.drag = {};
    if (edits && drag.moved) {
        const std::size_t index = static_cast<std::size_t>(drag.index);
        const Clip& was = drag.before.clips[index];
        const Clip& is = state_.project.clips[index];
        if (was.start != is.start || was.length != is.length)
            remember(drag.before);
    }
    const Hit hit = hitTest(state_, layout, point);
    if (state_.pressed.area == Area::eButton && hit == state_.pressed)
        pressButton(hit.index);
    if (state_.pressed.area == Area::eChip && hit == state_.pressed)
        pressChip(hit.index);
    if (state_.pressed.area == Area::eEffectButton && hit == state_.pressed)
        pressEffectButton(hit.index);
    if (state_.pressed.area == Area::eController && hit == state_.pressed)
        state_.nextController = true;
    state_.pressed = {};
    state_.hover = hit;
    settle();
}

void Interaction::cancelDrag()
{
    const Drag::Kind kind = state_.drag.kind;
    if (kind == Drag::Kind::eClip || kind == Drag::Kind::eClipStart || kind == Drag::Kind::eClipEnd)
        state_.project = state_.drag.before;
    state_.drag = {};
    state_.pressed = {};
}

void Interaction::wheel(const Point& point, int direction, std::uint32_t modifiers)
{
    if (state_.fullScreen)
        return;
    const Layout layout = layoutOf(state_);
    if (layout.screen.contains(point)) {
        const int zoom = static_cast<int>(state_.choices.viewer.zoom) + (direction > 0 ? 1 : -1);
        zoomViewer(static_cast<ViewerZoom>(std::clamp(zoom, 0, kViewerZooms - 1)));
    } else if (layout.timeline.contains(point)) {
        if ((modifiers & Key::eShift) != 0)
            state_.view.scroll(-direction * layout.lanes.width() / 8.0);
        else
            state_.view.zoomAround(std::max(point.x, layout.lanes.left), layout.lanes.left,
                                   direction > 0 ? kZoomStep : 1.0 / kZoomStep);
    } else if (layout.bin.contains(point)) {
        state_.bin.scroll -= direction * layout.rowHeight() / 2;
    } else if (layout.effects.contains(point)) {
        state_.effects.scroll -= direction * layout.slider(0).height();
    }
    settle();
    state_.hover = hitTest(state_, layoutOf(state_), point);
}

void Interaction::insertPicture(int item, Track track, int start)
{
    const Project before = state_.project;
    Clip clip;
    clip.track = track;
    clip.start = start;
    const MediaItem& media = state_.bin.items[static_cast<std::size_t>(item)];
    clip.length = clipLengthOf(state_, media);
    clip.name = media.name;
    state_.selectedClip = state_.project.insert(clip);
    state_.view.reveal(state_.project.clips.back().start, layoutOf(state_).lanes.width());
    remember(before);
}

void Interaction::dropFile(const Text& path)
{
    const Text format = formatOf(nameOf(path));
    if (format.empty()) {
        state_.message = nameOf(path) + L" is not a picture that can be loaded";
        return;
    }
    state_.bin.filter.clear();
    state_.filterField.set(Text());
    state_.bin.selected = state_.bin.add(path, format);
    state_.message = nameOf(path) + L" added";
    settle();
}

void Interaction::resize(const Point& size)
{
    state_.size = size;
    settle();
}

void Interaction::settle()
{
    const Layout layout = layoutOf(state_);
    // What was asked for beyond the limits is forgotten, so that dragging back answers at once.
    if (state_.choices.binWidth > 0 && state_.drag.kind == Drag::Kind::eBinEdge)
        state_.choices.binWidth = layout.bin.width();
    if (state_.choices.timelineHeight > 0 && state_.drag.kind == Drag::Kind::eTimelineEdge)
        state_.choices.timelineHeight = layout.timeline.height();
    state_.choices.viewer.shift =
        soundShift(layout.screen, state_.choices.ratio, state_.choices.viewer);
    const int count = static_cast<int>(state_.bin.visible().size());
    state_.bin.scroll = std::clamp(state_.bin.scroll, 0, layout.scrollRange(count));
    state_.effects.scroll = std::clamp(state_.effects.scroll, 0, layout.sliderScrollRange());
}

} // namespace Vantor
