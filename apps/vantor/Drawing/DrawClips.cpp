#include "Drawing/Scene.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace Vantor {

namespace {

/// In the order of the tracks.
const Theme::Gradient kLooks[] = {Theme::kGold, Theme::kBlue, Theme::kTeal, Theme::kPurple};

void drawClipThumbnail(Scene& scene, const Clip& clip, const Rect& rect)
{
    const int height = rect.height() - 22;
    const Rect thumb{rect.left + 5, rect.top + 19, rect.left + 5 + height * 16 / 9,
                     rect.top + 19 + height};
    if (thumb.right > rect.right - 5 || thumb.right < scene.layout.lanes.left ||
        thumb.left > scene.layout.lanes.right)
        return;
    drawThumbnail(scene, scene.mediaOf(clip), clip.offset, thumb, Text());
}

/// The curve of an effect: level at each key, with a handle on it.
void drawCurve(Scene& scene, const Clip& clip, const Rect& rect)
{
    const int top = rect.top + 24;
    const int bottom = rect.bottom - 8;
    std::vector<Point> points;
    for (const Keyframe& key : clip.keys) {
        if (key.frame > clip.length)
            break;
        const double x = scene.state.view.xOf(clip.start + key.frame, scene.layout.lanes.left);
        points.push_back(
            {static_cast<int>(std::lround(std::clamp(x, -20000.0, 60000.0))),
             bottom - static_cast<int>(std::lround(key.value * static_cast<float>(bottom - top)))});
    }
    for (std::size_t i = 1; i < points.size(); ++i) {
        const Point& from = points[i - 1];
        const Point& to = points[i];
        const int third = (to.x - from.x) / 3;
        scene.canvas.curve(from, {from.x + third, from.y}, {to.x - third, to.y}, to, Theme::kKey,
                           2);
    }
    const NormalisedRGB& ground = kLooks[static_cast<std::size_t>(Track::eEffect)].bottom;
    for (const Point& p : points)
        scene.canvas.ellipse({p.x - 4, p.y - 4, p.x + 4, p.y + 4},
                             Theme::mix(ground, Theme::kBlack, 0.7f), Theme::kKey);
}

void drawClip(Scene& scene, int index, const Clip& clip)
{
    const Rect rect = clipRect(scene.state, scene.layout, clip);
    const Rect& lanes = scene.layout.lanes;
    if (rect.right <= lanes.left || rect.left >= lanes.right)
        return;
    Canvas& canvas = scene.canvas;
    const Hit& hover = scene.state.hover;
    const bool held = scene.state.drag.moved && scene.state.drag.index == index &&
                      scene.state.drag.kind == Drag::Kind::eClip;
    Theme::Gradient look = kLooks[static_cast<std::size_t>(clip.track)];
    const bool hovered = hover.is(Area::eClip, index) || hover.is(Area::eClipStart, index) ||
                         hover.is(Area::eClipEnd, index);
    if (hovered)
        look = {Theme::hovered(look.top), Theme::hovered(look.bottom)};
    if (held)
        look = {Theme::pressed(look.top), Theme::pressed(look.bottom)};
    canvas.fill(rect, look.top, look.bottom);
    canvas.wash({rect.left, rect.top, rect.right, rect.top + 1}, Theme::kWhite, 0.25f);
    // A cut is seen even between clips of one colour.
    canvas.wash({rect.right - 1, rect.top, rect.right, rect.bottom}, Theme::kBlack, 0.35f);

    if (clip.track == Track::eOverlay || clip.track == Track::ePicture)
        drawClipThumbnail(scene, clip, rect);
    else if (clip.track == Track::eEffect)
        drawCurve(scene, clip, rect);
    // The name stays in sight while the clip begins left of the lanes.
    const int left = std::max(rect.left, lanes.left) + 8;
    canvas.text(canvas.fitted(clip.name, rect.right - 6 - left, Theme::kFact), left, rect.top + 15,
                Theme::kFact, Theme::mix(Theme::kText, Theme::kWhite, 0.5f));

    if (scene.state.selectedClip == index)
        canvas.frame(rect, Theme::kAccent, 2);
    for (const auto& [area, x] :
         {std::pair{Area::eClipStart, rect.left}, std::pair{Area::eClipEnd, rect.right - 3}})
        if (hover.is(area, index))
            canvas.fill({x, rect.top, x + 3, rect.bottom}, Theme::kText);
}

/// Where a clip comes in by a transition: two wedges, the one that goes over the one that comes.
void drawEntrance(Scene& scene, int index)
{
    const Project& project = scene.state.project;
    const Project::Room room = project.passageOf(index);
    if (room.from == room.to)
        return;
    Clip span = project.clips[static_cast<std::size_t>(index)];
    span.start = room.from;
    span.length = room.to - room.from;
    const Rect clip = clipRect(scene.state, scene.layout, span);
    const Rect& lanes = scene.layout.lanes;
    if (clip.right <= lanes.left || clip.left >= lanes.right || clip.width() < 4)
        return;
    const Rect mark{clip.left, clip.bottom - 14, clip.right, clip.bottom - 2};
    scene.canvas.wash(mark, Theme::kBlack, 0.55f);
    scene.canvas.curve({mark.left, mark.bottom - 1}, {mark.left, mark.bottom - 1},
                       {mark.right, mark.top}, {mark.right, mark.top}, Theme::kKey, 1);
    scene.canvas.washFrame(mark, Theme::kWhite, 0.35f);
}

} // namespace

void drawClips(Scene& scene)
{
    const EditorState& state = scene.state;
    for (std::size_t i = 0; i < state.project.clips.size(); ++i)
        drawClip(scene, static_cast<int>(i), state.project.clips[i]);
    for (std::size_t i = 0; i < state.project.clips.size(); ++i)
        drawEntrance(scene, static_cast<int>(i));

    const Clip dropped = clipToDrop(state, scene.layout);
    if (dropped.length > 0) {
        const Rect rect = clipRect(state, scene.layout, dropped);
        scene.canvas.wash(rect, Theme::kAccent, 0.35f);
        scene.canvas.frame(rect, Theme::kAccent);
        scene.canvas.text(scene.canvas.fitted(dropped.name, rect.width() - 14, Theme::kFact),
                          rect.left + 8, rect.top + 15, Theme::kFact, Theme::kWhite);
    }
}

} // namespace Vantor
