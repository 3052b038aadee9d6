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

    const RulerStep step = rulerStep(view.scale, 96);
    const long last = static_cast<long>(view.frameAt(ticks.right, ticks.left));
    const int first = static_cast<int>(view.origin) / step.labelled * step.labelled;
    for (long frame = first; frame <= last; frame += step.plain) {
        const int x =
            static_cast<int>(std::lround(view.xOf(static_cast<double>(frame), ticks.left)));
        const bool labelled = frame % step.labelled == 0;
        canvas.fill({x, labelled ? ticks.top + 6 : ticks.bottom - 5, x + 1, ticks.bottom},
                    Theme::kTick);
    }
    for (long frame = first; frame <= last; frame += step.labelled) {
        const int x =
            static_cast<int>(std::lround(view.xOf(static_cast<double>(frame), ticks.left)));
        const int at = static_cast<int>(frame);
        const bool whole = step.labelled % Timecode::kFrameRate == 0;
        canvas.text(whole ? Timecode::minutes(at) : Timecode::full(at), x + 4, ticks.top + 12,
                    Theme::kRuler, Theme::kDim);
    }
    canvas.endClip();
}

void drawPlayhead(Scene& scene)
{
    const Layout& l = scene.layout;
    const EditorState& state = scene.state;
    Canvas& canvas = scene.canvas;
    const int x = static_cast<int>(std::lround(state.view.xOf(state.player.frame, l.lanes.left)));
    if (x < l.lanes.left - 1 || x > l.lanes.right)
        return;
    const bool lively = state.player.playing() || state.drag.kind == Drag::Kind::ePlayhead ||
                        state.hover.area == Area::ePlayhead;
    canvas.fill({x - 1, l.ruler.bottom - 1, x + 1, l.lanes.bottom},
                lively ? Theme::kTime : Theme::mix(Theme::kTime, Theme::kLane, 0.12f));
    const Rect handle{x - 6, l.ruler.bottom - 12, x + 6, l.ruler.bottom + 2};
    canvas.picture(scene.icons.get(Icons::Shape::ePlayhead, handle, Theme::kTime), handle);
    if (!lively)
        return;
    const Text time = Timecode::full(state.player.frame);
    const int width = canvas.width(time, Theme::kRuler) + 12;
    const bool fits = x + 10 + width <= l.lanes.right;
    const Rect tag = fits ? Rect{x + 10, l.ruler.top + 3, x + 10 + width, l.ruler.bottom - 4}
                          : Rect{x - 10 - width, l.ruler.top + 3, x - 10, l.ruler.bottom - 4};
    canvas.fill(tag, Theme::kTime);
    canvas.text(time, tag.left + 6, baselineIn(tag, Theme::kRuler), Theme::kRuler, Theme::kGround);
}

} // namespace Vantor
