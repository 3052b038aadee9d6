// The effects' panel, and transitions.
#include "View/Interaction.h"

#include <OS/Windowing/KeyCodes.h>

#include <algorithm>

namespace Vantor {

namespace {

constexpr int kStride = 10; ///< steps that Shift makes of one

const wchar_t* nameOf(Entrance entrance)
{
    switch (entrance) {
    case Entrance::eDissolve:
        return L"dissolve";
    case Entrance::eWipe:
        return L"wipe";
    case Entrance::ePageTurn:
        return L"page turn";
    default:
        return L"cut";
    }
}

} // namespace

void Interaction::chooseEffect(int direction)
{
    state_.effects.choose(direction);
    settle();
}

void Interaction::pressEffectButton(int button)
{
    switch (static_cast<EffectButton>(button)) {
    case EffectButton::ePrevious:
        chooseEffect(-1);
        break;
    case EffectButton::eNext:
        chooseEffect(1);
        break;
    case EffectButton::ePreviousTechnique:
    case EffectButton::eNextTechnique:
        state_.effects.chooseTechnique(
            static_cast<EffectButton>(button) == EffectButton::eNextTechnique ? 1 : -1);
        break;
    case EffectButton::eReset:
        state_.effects.reset();
        break;
    }
}

// Twice puts the value back.
void Interaction::pressSlider(int slider, const Point& point, bool twice)
{
    focusOn(Focus::eEffects, false);
    state_.effects.selected = slider;
    if (twice) {
        state_.effects.reset(slider);
        return;
    }
    startDrag(Drag::Kind::eSlider, slider, 0, point);
    const Layout layout = layoutOf(state_);
    // The words above the groove only select.
    if (point.y >= Layout::groove(layout.slider(slider)).top - 8)
        dragSlider(point);
    else
        state_.drag = {};
}

void Interaction::dragSlider(const Point& point)
{
    const int slider = state_.drag.index;
    if (slider >= static_cast<int>(state_.effects.controls.size()))
        return; // the effect has become another
    const Rect groove = Layout::groove(layoutOf(state_).slider(slider));
    state_.effects.controls[static_cast<std::size_t>(slider)].setShare(
        static_cast<float>(point.x - groove.left) / static_cast<float>(groove.width()));
}

bool Interaction::effectsKey(std::uint32_t code, std::uint32_t modifiers)
{
    EffectPanel& panel = state_.effects;
    const int last = static_cast<int>(panel.controls.size()) - 1;
    const int stride = (modifiers & Key::eShift) != 0 ? kStride : 1;
    switch (code) {
    case Key::ePageUp:
    case Key::ePageDown:
        chooseEffect(code == Key::ePageDown ? 1 : -1);
        return true;
    case Key::eUp:
    case Key::eDown: {
        panel.selected =
            std::clamp(panel.selected + (code == Key::eDown ? 1 : -1), 0, std::max(0, last));
        const Layout layout = layoutOf(state_);
        const Rect slider = layout.slider(panel.selected);
        panel.scroll -= std::max(0, layout.sliders.top - slider.top);
        panel.scroll += std::max(0, slider.bottom - layout.sliders.bottom);
        settle();
        return true;
    }
    case Key::eLeft:
    case Key::eRight:
        if (last >= 0)
            panel.controls[static_cast<std::size_t>(panel.selected)].moveBy(
                code == Key::eRight ? stride : -stride);
        return true;
    case Key::eDelete:
    case Key::eBackspace:
        if (last >= 0)
            panel.reset(panel.selected);
        return true;
    default:
        return false;
    }
}

// Of the selected clip, or of the cut nearest to the playhead.
void Interaction::changeEntrance()
{
    int index = state_.selectedClip;
    const bool fits =
        index != Project::kNone &&
        state_.project.clips[static_cast<std::size_t>(index)].track == Track::ePicture &&
        state_.project.clipBefore(index) != Project::kNone;
    if (!fits)
        index = state_.project.nearestCut(Track::ePicture, state_.player.frame());
    if (index == Project::kNone) {
        state_.message = L"a transition needs two pictures that touch";
        return;
    }
    const Project before = state_.project;
    Clip& clip = state_.project.clips[static_cast<std::size_t>(index)];
    clip.entrance = static_cast<Entrance>((static_cast<int>(clip.entrance) + 1) % kEntrances);
    state_.message = clip.name + L" comes in by a " + nameOf(clip.entrance);
    remember(before);
}

} // namespace Vantor
