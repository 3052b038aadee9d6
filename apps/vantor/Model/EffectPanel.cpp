#include "Model/EffectPanel.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Vantor {

namespace {

constexpr float kSteps = 100.0f; ///< in a range whose step the effect does not say

bool isSame(const EffectControl& a, const EffectControl& b)
{
    return a.parameter == b.parameter && a.component == b.component && a.isColour == b.isColour;
}

} // namespace

float EffectControl::share() const
{
    return most > least ? std::clamp((value - least) / (most - least), 0.0f, 1.0f) : 0.0f;
}

void EffectControl::setShare(float share)
{
    const float wanted = least + std::clamp(share, 0.0f, 1.0f) * (most - least);
    const float grid = step > 0.0f ? step : (most - least) / kSteps;
    value = grid > 0.0f ? least + std::round((wanted - least) / grid) * grid : wanted;
    value = std::clamp(value, least, most);
}

void EffectControl::moveBy(int steps)
{
    const float grid = step > 0.0f ? step : (most - least) / kSteps;
    value = std::clamp(value + static_cast<float>(steps) * grid, least, most);
}

Text EffectControl::text() const
{
    const float grid = step > 0.0f ? step : (most - least) / kSteps;
    const int digits = grid >= 1.0f ? 0 : grid >= 0.1f ? 1 : 2;
    const long unit = digits == 0 ? 1 : digits == 1 ? 10 : 100;
    const long scaled = std::lround(value * static_cast<float>(unit));
    Text text = scaled < 0 ? Text(L"-") : Text();
    text += decimal(static_cast<int>(std::labs(scaled) / unit));
    if (digits == 0)
        return text;
    return text + L"." +
           decimal(static_cast<int>(std::labs(scaled) % unit), static_cast<unsigned int>(digits));
}

void EffectPanel::choose(int direction)
{
    const int count = static_cast<int>(files.size()) + 1;
    chosen = (chosen + 1 + direction % count + count) % count - 1;
    controls.clear();
    techniques.clear();
    technique = 0;
    trouble.clear();
    selected = 0;
    scroll = 0;
}

void EffectPanel::choose(const Text& wanted)
{
    chosen = kNone;
    for (std::size_t i = 0; i < files.size(); ++i)
        if (files[i].name == wanted)
            chosen = static_cast<int>(i);
    choose(0);
}

Text EffectPanel::name() const
{
    return chosen == kNone ? Text(L"No effect") : files[static_cast<std::size_t>(chosen)].name;
}

void EffectPanel::chooseTechnique(int direction)
{
    const int count = static_cast<int>(techniques.size());
    if (count > 0)
        technique = (technique + direction % count + count) % count;
}

Text EffectPanel::techniqueName() const
{
    return techniques.size() > 1 ? techniques[static_cast<std::size_t>(technique)] : Text();
}

void EffectPanel::offer(std::vector<EffectControl> offered, std::vector<Text> offeredTechniques)
{
    const Text kept = techniqueName();
    techniques = std::move(offeredTechniques);
    technique = 0;
    for (std::size_t i = 0; i < techniques.size(); ++i)
        if (techniques[i] == kept)
            technique = static_cast<int>(i);
    for (EffectControl& control : offered) {
        const auto before = std::find_if(controls.begin(), controls.end(),
                                         [&](const auto& other) { return isSame(control, other); });
        if (before != controls.end())
            control.value = std::clamp(before->value, control.least, control.most);
    }
    controls = std::move(offered);
    selected = std::clamp(selected, 0, std::max(0, static_cast<int>(controls.size()) - 1));
}

void EffectPanel::reset()
{
    for (EffectControl& control : controls)
        control.value = control.initial;
}

void EffectPanel::reset(int control)
{
    EffectControl& chosenControl = controls[static_cast<std::size_t>(control)];
    chosenControl.value = chosenControl.initial;
}

} // namespace Vantor
