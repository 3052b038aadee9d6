#include "Drawing/Scene.h"

#include "Model/Timecode.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace Vantor {

namespace {

struct TrackLook
{
    const wchar_t* name;
    const wchar_t* what;
};
constexpr TrackLook kTracks[] = {
    {L"T1", L"titles"}, {L"V2", L"overlay"}, {L"V1", L"picture"}, {L"FX", L"effects"}};
static_assert(std::size(kTracks) == Layout::kTracks);

void drawHead(Scene& scene, std::size_t track)
{
    const Rect& rect = scene.layout.heads[track];
    const bool hovered = scene.state.hover.is(Area::eHead, static_cast<int>(track));
    scene.canvas.fill(rect, hovered ? Theme::hovered(Theme::kHeader) : Theme::kHeader);
    const int middle = (rect.top + rect.bottom) / 2;
    scene.canvas.text(kTracks[track].name, rect.left + 12, middle - 5, Theme::kTitle, Theme::kText);
    scene.canvas.text(kTracks[track].what, rect.left + 12, middle + 14, Theme::kSmall, Theme::kDim);
}

/// Dotted guides through all lanes where the selected clip begins and ends.
void drawGuides(Scene& scene)
{
    const EditorState& state = scene.state;
    if (state.selectedClip == Project::kNone)
        return;
    const Clip& clip = state.project.clips[static_cast<std::size_t>(state.selectedClip)];
    const Rect rect = clipRect(state, scene.layout, clip);
    const Rect& lanes = scene.layout.lanes;
    for (const int x : {rect.left, rect.right - 1})
        if (lanes.left <= x && x < lanes.right)
            scene.canvas.dottedLine({x, lanes.top}, {x, lanes.bottom},
                                    Theme::mix(Theme::kDim, Theme::kTick, 0.4f));
}

/// The playhead shows its time while it moves or is about to be moved.
bool isLively(const EditorState& state)
{
    return state.player.playing() || state.drag.kind == Drag::Kind::ePlayhead ||
           state.hover.area == Area::ePlayhead;
}

int playheadX(const Scene& scene)
{
    const double x = scene.state.view.xOf(scene.state.player.frame(), scene.layout.lanes.left);
    return static_cast<int>(std::lround(std::clamp(x, -20000.0, 60000.0)));
}

/// Where the playhead's time stands on the ruler; without an area when it is not shown.
Rect playheadTag(Scene& scene)
{
    const Layout& l = scene.layout;
    const int x = playheadX(scene);
    if (!isLively(scene.state) || x < l.lanes.left - 1 || x > l.lanes.right)
        return {};
    const int width =
        scene.canvas.width(Timecode::full(scene.state.player.frame(), scene.state.player.rate()),
                           Theme::kRuler) +
        12;
    const int left = x + 10 + width <= l.lanes.right ? x + 10 : x - 10 - width;
    return {left, l.ruler.top + 3, left + width, l.ruler.bottom - 4};
}

} // namespace

void drawTimeline(Scene& scene)
{
    const Layout& l = scene.layout;
    Canvas& canvas = scene.canvas;
    canvas.fill(l.timeline, Theme::kPanel);
    for (std::size_t track = 0; track < Layout::kTracks; ++track) {
        drawHead(scene, track);
        const bool hovered = scene.state.hover.is(Area::eLane, static_cast<int>(track));
        canvas.fill(l.tracks[track],
                    hovered ? Theme::mix(Theme::kLane, Theme::kWhite, 0.02f) : Theme::kLane);
    }
    canvas.clip(l.lanes);
    drawClips(scene);
    drawGuides(scene);
    canvas.endClip();
    drawRuler(scene);
    drawPlayhead(scene);
    drawFocusRing(scene, l.timeline, Focus::eTimeline);
}

void drawRuler(Scene& scene)
{
    const Layout& l = scene.layout;
    const TimeView& view = scene.state.view;
    Canvas& canvas = scene.canvas;
    const bool hovered = scene.state.hover.area == Area::eRuler;
    canvas.fill(l.ruler, hovered ? Theme::hovered(Theme::kHeader) : Theme::kHeader);
    const Rect ticks{l.lanes.left, l.ruler.top, l.ruler.right, l.ruler.bottom};
    canvas.clip(ticks);

    const FrameRate& rate = scene.state.player.rate();
    const RulerStep step = rulerStep(view.scale, 96, rate);
    const int last = static_cast<int>(std::min(view.frameAt(ticks.right, ticks.left), 1e9));
    const int first = static_cast<int>(view.origin) / step.labelled * step.labelled;
    const auto xOf = [&](int frame) {
        return static_cast<int>(std::lround(view.xOf(frame, ticks.left)));
    };
    for (int frame = first; frame <= last; frame += step.plain) {
        const bool labelled = frame % step.labelled == 0;
        canvas.fill(
            {xOf(frame), labelled ? ticks.top + 6 : ticks.bottom - 5, xOf(frame) + 1, ticks.bottom},
            Theme::kTick);
    }
    const Rect tag = playheadTag(scene);
    for (int frame = first; frame <= last; frame += step.labelled) {
        const bool whole = step.labelled % rate.nominal() == 0;
        const Text label = whole ? Timecode::minutes(frame, rate) : Timecode::full(frame, rate);
        const int x = xOf(frame) + 4;
        const int width = canvas.width(label, Theme::kRuler);
        // The playhead's own time stands before any label.
        if (!tag.hasArea() || x + width + 4 < tag.left || x > tag.right + 4)
            canvas.text(label, x, ticks.top + 11, Theme::kRuler, Theme::kDim);
    }
    canvas.endClip();
}

void drawPlayhead(Scene& scene)
{
    const Layout& l = scene.layout;
    const EditorState& state = scene.state;
    Canvas& canvas = scene.canvas;
    const int x = playheadX(scene);
    if (x < l.lanes.left - 1 || x > l.lanes.right)
        return;
    canvas.fill({x - 1, l.ruler.bottom - 1, x + 1, l.lanes.bottom},
                isLively(state) ? Theme::kTime : Theme::mix(Theme::kTime, Theme::kLane, 0.12f));
    const Rect handle{x - 6, l.ruler.bottom - 11, x + 6, l.ruler.bottom + 3};
    canvas.picture(scene.stores.icons.get(Icons::Shape::ePlayhead, handle, Theme::kTime), handle);
    const Rect tag = playheadTag(scene);
    if (!tag.hasArea())
        return;
    canvas.fill(tag, Theme::kTime);
    canvas.text(Timecode::full(state.player.frame(), state.player.rate()), tag.left + 6,
                baselineIn(tag, Theme::kRuler), Theme::kRuler, Theme::kGround);
}

} // namespace Vantor
