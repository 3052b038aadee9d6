#include "View/EditorState.h"

#include "Model/Timecode.h"

#include <algorithm>
#include <cmath>

namespace Vantor {

namespace {

constexpr int kEdgeReach = 5; ///< pixels of a clip's end that trim it

/// A rectangle widened for the pointer.
bool near(const Rect& rect, const Point& p, int dx, int dy)
{
    return rect.left - dx <= p.x && p.x < rect.right + dx && rect.top - dy <= p.y &&
           p.y < rect.bottom + dy;
}

Hit hitBin(const EditorState& state, const Layout& layout, const Point& p)
{
    if (layout.filter.contains(p))
        return {Area::eFilter, 0};
    if (layout.tiles.contains(p)) {
        const std::vector<int> visible = state.bin.visible();
        for (std::size_t i = 0; i < visible.size(); ++i)
            if (layout.tile(static_cast<int>(i), state.bin.scroll).contains(p))
                return {Area::eTile, visible[i]};
    }
    return {Area::eBin, 0};
}

Hit hitClip(const EditorState& state, const Layout& layout, int index, const Point& p)
{
    const Rect rect = clipRect(state, layout, state.project.clips[static_cast<std::size_t>(index)]);
    // Narrow clips keep a middle to hold on to.
    const int reach = std::min(kEdgeReach, rect.width() / 4);
    if (p.x < rect.left + reach)
        return {Area::eClipStart, index};
    if (p.x >= rect.right - reach)
        return {Area::eClipEnd, index};
    return {Area::eClip, index};
}

Hit hitEffects(const Layout& layout, const Point& p)
{
    for (std::size_t i = 0; i < layout.effectButtons.size(); ++i)
        if (layout.effectButtons[i].contains(p))
            return {Area::eEffectButton, static_cast<int>(i)};
    if (layout.sliders.contains(p))
        for (int i = 0; i < layout.sliderCount; ++i)
            if (layout.slider(i).contains(p))
                return {Area::eSlider, i};
    return {Area::eEffects, 0};
}

Hit hitTimeline(const EditorState& state, const Layout& layout, const Point& p)
{
    const double playhead = state.view.xOf(state.player.frame(), layout.lanes.left);
    if (p.x >= layout.lanes.left && layout.ruler.contains(p))
        return std::abs(p.x - playhead) <= 7 ? Hit{Area::ePlayhead, 0} : Hit{Area::eRuler, 0};
    for (std::size_t t = 0; t < Layout::kTracks; ++t) {
        const int track = static_cast<int>(t);
        if (layout.heads[t].contains(p))
            return {Area::eHead, track};
        if (!layout.tracks[t].contains(p))
            continue;
        const std::vector<Clip>& clips = state.project.clips;
        for (std::size_t i = 0; i < clips.size(); ++i)
            if (clips[i].track == static_cast<Track>(track) &&
                clipRect(state, layout, clips[i]).contains(p))
                return hitClip(state, layout, static_cast<int>(i), p);
        return {Area::eLane, track};
    }
    return {};
}

} // namespace

bool EditorState::canUse(int button) const
{
    const bool atStart = player.frame() <= 0 && !player.loops();
    const bool atEnd = player.frame() >= project.length - 1 && !player.loops();
    switch (button) {
    case 0:
        return !atStart;
    case 1:
        return player.playing() || !atStart;
    default:
        return !atEnd;
    }
}

bool EditorState::canFocus(Focus place) const
{
    const int button = static_cast<int>(place) - static_cast<int>(Focus::eBackwards);
    if (0 <= button && button < Layout::kButtons)
        return canUse(button);
    return place != Focus::eEffects || choices.effects;
}

EditorState makeEditorState(MediaBin bin, const Text& title)
{
    EditorState state;
    std::vector<Material> materials;
    for (const MediaItem& item : bin.items)
        materials.push_back({item.name, item.frames(), item.kind == MediaItem::Kind::eTestClip});
    state.bin = std::move(bin);
    state.project = makeProject(materials, title);
    state.titleField.set(state.project.title);
    const std::vector<Clip>& clips = state.project.clips;
    for (std::size_t i = 0; i < clips.size() && clips[i].track != Track::ePicture; ++i)
        state.selectedClip = static_cast<int>(i) + 1;
    if (clips.empty())
        state.selectedClip = Project::kNone;
    else if (state.selectedClip == Project::kNone)
        state.selectedClip = 0;
    if (!state.bin.items.empty() && !clips.empty())
        state.bin.selected =
            state.bin.find(clips[static_cast<std::size_t>(state.selectedClip)].name);
    state.player.setLength(state.project.length);
    state.player.seek(std::min(Timecode::fromSeconds(4, 12), state.project.length / 2));
    return state;
}

Layout layoutOf(const EditorState& state)
{
    LayoutChoices choices = state.choices;
    choices.sliders = static_cast<int>(state.effects.controls.size());
    choices.sliderScroll = state.effects.scroll;
    choices.techniques = state.effects.techniques.size() > 1;
    const Text& trouble = state.effects.trouble;
    choices.troubleLines = static_cast<int>(std::count(trouble.begin(), trouble.end(), L'\n'));
    if (!trouble.empty() && !trouble.endsWith(L'\n'))
        ++choices.troubleLines;
    return makeLayout(state.size, choices);
}

Hit hitTest(const EditorState& state, const Layout& layout, const Point& p)
{
    if (near(layout.binEdge, p, 2, 0))
        return {Area::eBinEdge, 0};
    if (near(layout.timelineEdge, p, 0, 1))
        return {Area::eTimelineEdge, 0};
    if (layout.title.contains(p))
        return {Area::eTitle, 0};
    if (layout.controller.contains(p))
        return {Area::eController, 0};
    if (layout.bin.contains(p))
        return hitBin(state, layout, p);
    for (std::size_t i = 0; i < layout.buttons.size(); ++i)
        if (layout.buttons[i].contains(p))
            return {Area::eButton, static_cast<int>(i)};
    for (std::size_t i = 0; i < layout.chips.size(); ++i)
        if (layout.chips[i].contains(p))
            return {Area::eChip, static_cast<int>(i)};
    if (layout.viewer.contains(p))
        return {Area::eViewer, 0};
    if (layout.effects.contains(p))
        return hitEffects(layout, p);
    if (layout.scopes.contains(p))
        return {Area::eScopes, 0};
    if (layout.timeline.contains(p))
        return hitTimeline(state, layout, p);
    return {};
}

int fieldTextLeft(const Layout& layout, Focus field, std::uint32_t caret,
                  const std::vector<int>& edges)
{
    const Rect& rect = field == Focus::eTitle ? layout.title : layout.filter;
    const int left = rect.left + (field == Focus::eTitle ? 8 : 22);
    const int room = rect.right - 6 - left;
    const int at = caret < edges.size() ? edges[caret] : 0;
    return left - std::max(0, at - room);
}

Rect clipRect(const EditorState& state, const Layout& layout, const Clip& clip)
{
    // Far outside the lanes nothing is gained by more pixels, and they would overflow.
    const auto x = [&](int frame) {
        const double at = state.view.xOf(frame, layout.lanes.left);
        return static_cast<int>(std::lround(std::clamp(at, -20000.0, 60000.0)));
    };
    const Rect& track = layout.tracks[static_cast<std::size_t>(clip.track)];
    const int left = x(clip.start);
    return {left, track.top + 1, std::max(left + 2, x(clip.end())), track.bottom - 1};
}

int clipLengthOf(const EditorState& state, const MediaItem& item)
{
    const int frames = item.frames();
    return frames > 0 ? std::max(frames, Project::kShortest)
                      : Timecode::fromSeconds(4, 0, state.player.rate());
}

Clip clipToDrop(const EditorState& state, const Layout& layout)
{
    Clip clip;
    clip.length = 0;
    const Point& p = state.pointer;
    if (state.drag.kind != Drag::Kind::eMedia || !state.drag.moved || p.x < layout.lanes.left)
        return clip;
    for (const Track track : {Track::eOverlay, Track::ePicture})
        if (layout.tracks[static_cast<std::size_t>(track)].contains(p)) {
            clip.track = track;
            const MediaItem& item = state.bin.items[static_cast<std::size_t>(state.drag.index)];
            clip.length = clipLengthOf(state, item);
            clip.name = item.name;
            const double at = state.view.frameAt(p.x, layout.lanes.left) - clip.length * 0.25;
            clip.start = std::max(0, static_cast<int>(std::lround(std::min(at, 1e8))));
            clip.start = state.project.freeStart(clip);
        }
    return clip;
}

} // namespace Vantor
