#pragma once

#include "Model/Text.h"

#include <vector>

namespace Vantor {

/// One slider: a parameter of an effect, or one component of a colour.
struct EffectControl
{
    LightweightString<char> parameter;
    int component = 0; ///< of a colour: red, green, blue
    bool isColour = false;
    Text label;
    float least = 0.0f;
    float most = 1.0f;
    float step = 0.0f; ///< 0: a hundredth of the range
    float initial = 0.0f;
    float value = 0.0f;

    /// Where the value lies between the ends, 0 to 1.
    float share() const;
    void setShare(float share);
    void moveBy(int steps);
    /// As it is shown: as many digits as its range needs.
    Text text() const;

    friend bool operator==(const EffectControl&, const EffectControl&) = default;
};

/// An effect that can be chosen for the viewer.
struct EffectFile
{
    Text path; ///< of the file; empty: the colour corrector that computes without one
    Text name;

    friend bool operator==(const EffectFile&, const EffectFile&) = default;
};

/// What the panel beside the viewer shows: plain data.
struct EffectPanel
{
    static constexpr int kNone = -1;

    std::vector<EffectFile> files;
    int chosen = kNone;           ///< the pictures are shown as they are
    std::vector<Text> techniques; ///< ways in which the effect can be done; for people
    int technique = 0;
    std::vector<EffectControl> controls;
    int selected = 0; ///< the slider that the arrow keys move
    int scroll = 0;
    Text trouble; ///< why the effect cannot be used, a line for each fault; empty: it can be

    /// The next or the previous one; "none" stands before the first.
    void choose(int direction);
    /// The one of that name; none where there is none.
    void choose(const Text& name);
    void chooseTechnique(int direction);
    Text name() const;
    Text techniqueName() const; ///< empty where there is no choice
    /// Takes over what an effect offers; what has the same name keeps its value.
    void offer(std::vector<EffectControl> offered, std::vector<Text> offeredTechniques = {});
    void reset();
    void reset(int control);
};

} // namespace Vantor
