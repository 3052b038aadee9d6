#include "Drawing/Scene.h"

#include "Drawing/PictureScaler.h"
#include "Model/Timecode.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Vantor {

namespace {

constexpr int kProjectWidth = 1920;
constexpr float kOverlayOpacity = 0.85f;

const Clip* clipUnderPlayhead(const EditorState& state, Track track)
{
    const int index = state.project.clipAt(track, state.player.frame);
    return index == Project::kNone ? nullptr
                                   : &state.project.clips[static_cast<std::size_t>(index)];
}

/// Draws a clip's picture, whole, in the middle of a rectangle. @return whether it is there to be
/// drawn
bool drawClipPicture(Scene& scene, const Clip& clip, const Rect& room, float opacity)
{
    const Text path = scene.pathOf(clip);
    const XY<int> size = path.empty() ? XY<int>() : scene.pictures.sizeOf(path);
    if (path.empty() || scene.pictures.isMissing(path)) {
        drawMissing(scene, room, clip.name + L" is missing");
        return false;
    }
    if (size.x <= 0)
        return true;
    const Rect rect = fitInto(size, room);
    scene.canvas.picture(scene.pictures.scaled(path, rect, PictureStore::Fit::eStretch), rect,
                         opacity);
    return true;
}

void drawEffect(Scene& scene, const Clip& clip)
{
    const float value = valueAt(clip, scene.state.player.frame - clip.start);
    const bool warm = clip.effect == Effect::eWarm;
    scene.canvas.wash(scene.layout.picture, warm ? Theme::rgb(0xFF9A3C) : Theme::kBlack,
                      value * (warm ? 0.13f : 0.55f));
}

void drawTitle(Scene& scene, const Clip& clip)
{
    const Rect& picture = scene.layout.picture;
    const Theme::Type type{std::max(12, picture.height() / 12), true};
    const int middle = picture.top + picture.height() * 82 / 100;
    const int half = type.size;
    scene.canvas.wash({picture.left, middle - half, picture.right, middle + half}, Theme::kBlack,
                      0.35f);
    scene.canvas.textCentred(scene.canvas.fitted(clip.name, picture.width() * 8 / 10, type),
                             (picture.left + picture.right) / 2,
                             baselineIn({0, middle - half, 0, middle + half}, type), type,
                             Theme::kWhite);
}

/// The picture, and the frame within which titles are safe.
void drawPicture(Scene& scene)
{
    drawComposition(scene);
    const Rect& picture = scene.layout.picture;
    const int dx = picture.width() / 20;
    const int dy = picture.height() / 20;
    scene.canvas.washFrame(
        {picture.left + dx, picture.top + dy, picture.right - dx, picture.bottom - dy},
        Theme::kWhite, 0.4f);
}

void drawButton(Scene& scene, int index)
{
    const EditorState& state = scene.state;
    const Rect& box = scene.layout.buttons[static_cast<std::size_t>(index)];
    Canvas& canvas = scene.canvas;
    const bool usable = state.canUse(index);
    const bool running =
        (index == 0 && state.player.speed < 0) || (index == 2 && state.player.speed > 0);
    const auto focus = static_cast<Focus>(static_cast<int>(Focus::eBackwards) + index);

    NormalisedRGB ground =
        running ? Theme::mix(Theme::kHeader, Theme::kTime, 0.75f) : Theme::kHeader;
    if (usable && state.pressed.is(Area::eButton, index))
        ground = Theme::pressed(ground);
    else if (usable && state.hover.is(Area::eButton, index))
        ground = Theme::hovered(Theme::hovered(ground));
    if (state.focusShown && state.focus == focus) {
        canvas.ellipse(inset(box, -4), Theme::kAccent);
        canvas.ellipse(inset(box, -2), Theme::kPanel);
    }
    canvas.ellipse(box, ground);
    const NormalisedRGB colour = usable ? Theme::kText : Theme::disabled(Theme::kDim, ground);
    const int x = (box.left + box.right) / 2;
    const int y = (box.top + box.bottom) / 2;
    if (index == 1) {
        canvas.fill({x - 5, y - 5, x + 5, y + 5}, colour);
        return;
    }
    // A triangle looks centred when it stands a little towards its point.
    const Rect icon =
        index == 0 ? Rect{x - 7, y - 7, x + 5, y + 7} : Rect{x - 5, y - 7, x + 7, y + 7};
    canvas.picture(scene.icons.get(index == 0 ? Icons::Shape::eBackwards : Icons::Shape::eForwards,
                                   icon, colour),
                   icon);
}

} // namespace

void drawComposition(Scene& scene)
{
    const Rect& picture = scene.layout.picture;
    const EditorState& state = scene.state;
    scene.canvas.fill(picture, Theme::kBlack);
    scene.canvas.clip(picture);
    const Clip* shown = clipUnderPlayhead(state, Track::ePicture);
    const Clip* effect = clipUnderPlayhead(state, Track::eEffect);
    if (shown && drawClipPicture(scene, *shown, picture, 1.0f) && effect)
        drawEffect(scene, *effect);
    if (const Clip* clip = clipUnderPlayhead(state, Track::eOverlay)) {
        const int width = picture.width() * 36 / 100;
        const int height = picture.height() * 36 / 100;
        const int right = picture.right - picture.width() * 8 / 100;
        const int top = picture.top + picture.height() * 9 / 100;
        drawClipPicture(scene, *clip, {right - width, top, right, top + height}, kOverlayOpacity);
    }
    if (const Clip* clip = clipUnderPlayhead(state, Track::eTitle))
        drawTitle(scene, *clip);
    scene.canvas.endClip();
}

void drawTransport(Scene& scene)
{
    const Layout& l = scene.layout;
    const EditorState& state = scene.state;
    Canvas& canvas = scene.canvas;
    const int middle = (l.buttons[0].top + l.buttons[0].bottom) / 2;
    const Rect line{l.transport.left, middle - 8, l.transport.right, middle + 8};
    const int left = l.transport.left + 16;
    const int width =
        canvas.text(Timecode::full(state.player.frame), left, baselineIn(line, Theme::kClock),
                    Theme::kClock, state.player.playing() ? Theme::kTime : Theme::kText);
    if (std::abs(state.player.speed) > 1)
        canvas.text(decimal(state.player.speed) + L"x", left + width + 10,
                    baselineIn(line, Theme::kClockDim), Theme::kClockDim, Theme::kTime);
    canvas.textRight(Timecode::full(state.project.length), l.transport.right - 16,
                     baselineIn(line, Theme::kClockDim), Theme::kClockDim, Theme::kDim);
    for (int i = 0; i < Layout::kButtons; ++i)
        drawButton(scene, i);
}

void drawViewer(Scene& scene)
{
    const Layout& l = scene.layout;
    Canvas& canvas = scene.canvas;
    canvas.fill(l.viewer, Theme::kPanel);
    canvas.fill(l.viewerHeader, Theme::kHeader);
    canvas.text(L"Viewer", l.viewerHeader.left + 12, baselineIn(l.viewerHeader, Theme::kTitle),
                Theme::kTitle, Theme::kText);
    const int percent = static_cast<int>(std::lround(100.0 * l.picture.width() / kProjectWidth));
    canvas.textRight(L"Fit " + decimal(percent) + L" %", l.viewerHeader.right - 12,
                     baselineIn(l.viewerHeader, Theme::kFact), Theme::kFact, Theme::kDim);
    drawPicture(scene);
    drawTransport(scene);
}

} // namespace Vantor
