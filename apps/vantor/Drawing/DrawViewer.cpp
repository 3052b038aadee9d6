#include "Drawing/Overlays.h"
#include "Drawing/Scene.h"
#include "Model/Timecode.h"
#include "View/ViewerGeometry.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Vantor {

namespace {

void drawButton(Scene& scene, int index)
{
    const EditorState& state = scene.state;
    const Rect& box = scene.layout.buttons[static_cast<std::size_t>(index)];
    Canvas& canvas = scene.canvas;
    const bool usable = state.canUse(index);
    const bool running =
        (index == 0 && state.player.speed() < 0) || (index == 2 && state.player.speed() > 0);
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
    canvas.picture(
        scene.stores.icons.get(index == 0 ? Icons::Shape::eBackwards : Icons::Shape::eForwards,
                               icon, colour),
        icon);
}

Text chipText(const EditorState& state, ViewerChip chip, int pictureWidth)
{
    switch (chip) {
    case ViewerChip::eLoop:
        return L"Loop";
    case ViewerChip::eSafeAreas:
        return L"Safe";
    case ViewerChip::eTimeCode:
        return L"TC";
    case ViewerChip::eFrameNumber:
        return L"No.";
    case ViewerChip::eRate:
        return state.player.rate().text() + L" fps";
    case ViewerChip::eZoom: {
        const Text percent = decimal(zoomPercent(pictureWidth, state.choices.ratio)) + L" %";
        return state.choices.viewer.zoom == ViewerZoom::eFit ? L"Fit " + percent : percent;
    }
    case ViewerChip::eEffects:
        return L"FX";
    case ViewerChip::eScopes:
        return L"Scopes";
    default:
        return {};
    }
}

bool isOn(const EditorState& state, ViewerChip chip)
{
    const ViewerChoices& viewer = state.choices.viewer;
    switch (chip) {
    case ViewerChip::eLoop:
        return state.player.loops();
    case ViewerChip::eSafeAreas:
        return viewer.safeAreas;
    case ViewerChip::eTimeCode:
        return viewer.timeCode;
    case ViewerChip::eFrameNumber:
        return viewer.frameNumber;
    case ViewerChip::eEffects:
        return state.choices.effects;
    case ViewerChip::eScopes:
        return state.choices.scopes;
    case ViewerChip::eFullScreen:
        return state.fullScreen;
    default:
        return false;
    }
}

/// Four corners that point outwards.
void drawFullScreenSign(Canvas& canvas, const Rect& chip, const NormalisedRGB& colour)
{
    const Point middle = centreOf(chip);
    const Rect r{middle.x - 6, middle.y - 5, middle.x + 6, middle.y + 5};
    for (const int y : {r.top, r.bottom - 1})
        for (const int x : {r.left, r.right - 4})
            canvas.fill({x, y, x + 4, y + 1}, colour);
    for (const int x : {r.left, r.right - 1})
        for (const int y : {r.top, r.bottom - 3})
            canvas.fill({x, y, x + 1, y + 3}, colour);
}

void drawChip(Scene& scene, int index)
{
    const EditorState& state = scene.state;
    const Rect& box = scene.layout.chips[static_cast<std::size_t>(index)];
    Canvas& canvas = scene.canvas;
    const auto chip = static_cast<ViewerChip>(index);
    const bool on = isOn(state, chip);
    NormalisedRGB ground = on ? Theme::mix(Theme::kHeader, Theme::kAccent, 0.34f) : Theme::kHeader;
    if (state.pressed.is(Area::eChip, index))
        ground = Theme::pressed(ground);
    else if (state.hover.is(Area::eChip, index))
        ground = Theme::hovered(Theme::hovered(ground));
    canvas.fill(box, ground);
    const bool lit = on || state.hover.is(Area::eChip, index);
    const NormalisedRGB& colour = lit ? Theme::kText : Theme::kDim;
    if (chip == ViewerChip::eFullScreen)
        drawFullScreenSign(canvas, box, colour);
    else
        canvas.textCentred(chipText(state, chip, scene.layout.picture.width()), centreOf(box).x,
                           baselineIn(box, Theme::kFact), Theme::kFact, colour);
}

/// What a video window draws where there is one.
void drawScreen(Scene& scene)
{
    const Layout& l = scene.layout;
    const EditorState& state = scene.state;
    Canvas& canvas = scene.canvas;
    canvas.clip(l.screen);
    drawComposition({canvas, scene.stores.icons, scene.stores.pictures, state.project, state.bin,
                     state.player.rate(), state.player.frame(), l.picture});
    drawOverlays(canvas, l.picture, l.screen, state.choices.viewer, state.player.frame(),
                 state.player.rate(), [&](const Text& words, const Rect& plate, int height) {
                     const Theme::Type type{height, false, true};
                     canvas.textCentred(words, centreOf(plate).x, baselineIn(plate, type), type,
                                        Theme::kWhite);
                 });
    canvas.endClip();
}

} // namespace

void drawTransport(Scene& scene)
{
    const Layout& l = scene.layout;
    const EditorState& state = scene.state;
    const FrameRate& rate = state.player.rate();
    Canvas& canvas = scene.canvas;
    const int middle = (l.buttons[0].top + l.buttons[0].bottom) / 2;
    const Rect line{l.transport.left, middle - 8, l.transport.right, middle + 8};
    const int left = l.transport.left + 16;
    const int width = canvas.text(Timecode::full(state.player.frame(), rate), left,
                                  baselineIn(line, Theme::kClock), Theme::kClock,
                                  state.player.playing() ? Theme::kTime : Theme::kText);
    if (std::abs(state.player.speed()) > 1)
        canvas.text(decimal(state.player.speed()) + L"x", left + width + 10,
                    baselineIn(line, Theme::kClockDim), Theme::kClockDim, Theme::kTime);
    canvas.textRight(Timecode::full(state.project.length, rate), l.transport.right - 16,
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
    for (int i = 0; i < Layout::kChips; ++i)
        drawChip(scene, i);
    if (!scene.state.shown.byGL)
        drawScreen(scene);
    drawTransport(scene);
}

} // namespace Vantor
