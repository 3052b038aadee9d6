// The panel beside the viewer: an effect and its sliders.
#include "Drawing/Scene.h"

#include <algorithm>
#include <cmath>

namespace Vantor {

namespace {

NormalisedRGB groundOf(const Scene& scene, EffectButton button)
{
    const int index = static_cast<int>(button);
    NormalisedRGB ground = Theme::kHeader;
    if (scene.state.pressed.is(Area::eEffectButton, index))
        ground = Theme::pressed(ground);
    else if (scene.state.hover.is(Area::eEffectButton, index))
        ground = Theme::hovered(Theme::hovered(ground));
    return ground;
}

/// A button with an arrow that points to the other effects.
void drawStep(Scene& scene, EffectButton button)
{
    const Rect& box = scene.layout.effectButtons[static_cast<std::size_t>(button)];
    scene.canvas.fill(box, groundOf(scene, button));
    const Point middle = centreOf(box);
    const bool backwards =
        button == EffectButton::ePrevious || button == EffectButton::ePreviousTechnique;
    const int lean = backwards ? -1 : 1;
    const Rect icon{middle.x - 5 + lean, middle.y - 5, middle.x + 5 + lean, middle.y + 5};
    scene.canvas.picture(
        scene.stores.icons.get(backwards ? Icons::Shape::eBackwards : Icons::Shape::eForwards, icon,
                               Theme::kText),
        icon);
}

void drawSlider(Scene& scene, int index)
{
    const EditorState& state = scene.state;
    const EffectControl& control = state.effects.controls[static_cast<std::size_t>(index)];
    const Rect row = scene.layout.slider(index);
    if (row.bottom <= scene.layout.sliders.top || row.top >= scene.layout.sliders.bottom)
        return;
    Canvas& canvas = scene.canvas;
    const bool held = state.drag.kind == Drag::Kind::eSlider && state.drag.index == index;
    const bool lit = held || state.hover.is(Area::eSlider, index);
    const int baseline = row.top + 14;
    const int width = canvas.textRight(control.text(), row.right, baseline, Theme::kFact,
                                       lit ? Theme::kText : Theme::kDim);
    canvas.text(canvas.fitted(control.label, row.width() - width - 8, Theme::kFact), row.left,
                baseline, Theme::kFact, lit ? Theme::kText : Theme::kDim);

    const Rect groove = Layout::groove(row);
    const auto xAt = [&](float share) {
        return groove.left +
               static_cast<int>(std::lround(share * static_cast<float>(groove.width())));
    };
    // The bar begins at zero where the range goes to both sides of it.
    const float zero = control.most > control.least
                           ? std::clamp(-control.least / (control.most - control.least), 0.0f, 1.0f)
                           : 0.0f;
    const int from = xAt(zero);
    const int to = xAt(control.share());
    canvas.fill(groove, Theme::kGround);
    canvas.fill({std::min(from, to), groove.top, std::max(from, to), groove.bottom},
                Theme::kAccent);
    if (state.focusShown && state.focus == Focus::eEffects && state.effects.selected == index)
        canvas.ellipse({to - 8, groove.top - 6, to + 8, groove.bottom + 6}, Theme::kAccent);
    canvas.ellipse({to - 6, groove.top - 4, to + 6, groove.bottom + 4},
                   lit ? Theme::kWhite : Theme::kText);
}

/// What is wrong, as much of it as there is room for.
void drawTrouble(Scene& scene)
{
    const Rect& room = scene.layout.trouble;
    const Text& words = scene.state.effects.trouble;
    int top = room.top;
    for (Text::size_type at = 0; at < words.size() && top + Layout::kTroubleLine <= room.bottom;) {
        const Text::size_type end = std::min(words.find(L'\n', at), words.size());
        scene.canvas.text(
            scene.canvas.fitted(words.substr(at, end - at), room.width(), Theme::kFact), room.left,
            top + 11, Theme::kFact, Theme::kTime);
        top += Layout::kTroubleLine;
        at = end + 1;
    }
}

} // namespace

void drawEffects(Scene& scene)
{
    const Layout& l = scene.layout;
    if (!l.effects.hasArea())
        return;
    const EffectPanel& panel = scene.state.effects;
    Canvas& canvas = scene.canvas;
    canvas.fill(l.effects, Theme::kPanel);
    canvas.fill(l.effectsHeader, Theme::kHeader);
    canvas.text(L"Effect", l.effectsHeader.left + 12, baselineIn(l.effectsHeader, Theme::kTitle),
                Theme::kTitle, Theme::kText);
    const Rect& reset = l.effectButtons[static_cast<std::size_t>(EffectButton::eReset)];
    canvas.fill(reset, groundOf(scene, EffectButton::eReset));
    const bool lit =
        scene.state.hover.is(Area::eEffectButton, static_cast<int>(EffectButton::eReset));
    canvas.textCentred(L"Reset", centreOf(reset).x, baselineIn(reset, Theme::kFact), Theme::kFact,
                       lit && !panel.controls.empty() ? Theme::kText : Theme::kDim);
    drawStep(scene, EffectButton::ePrevious);
    drawStep(scene, EffectButton::eNext);
    canvas.textCentred(canvas.fitted(panel.name(), l.effectName.width(), Theme::kLabel),
                       centreOf(l.effectName).x, baselineIn(l.effectName, Theme::kLabel),
                       Theme::kLabel,
                       panel.chosen == EffectPanel::kNone ? Theme::kDim : Theme::kText);
    if (l.techniqueName.hasArea()) {
        drawStep(scene, EffectButton::ePreviousTechnique);
        drawStep(scene, EffectButton::eNextTechnique);
        canvas.textCentred(
            canvas.fitted(panel.techniqueName(), l.techniqueName.width(), Theme::kFact),
            centreOf(l.techniqueName).x, baselineIn(l.techniqueName, Theme::kFact), Theme::kFact,
            Theme::kText);
    }
    canvas.clip(l.sliders);
    for (std::size_t i = 0; i < panel.controls.size(); ++i)
        drawSlider(scene, static_cast<int>(i));
    canvas.endClip();
    if (!panel.trouble.empty())
        drawTrouble(scene);
    drawFocusRing(scene, l.effects, Focus::eEffects);
}

} // namespace Vantor
