#pragma once

#include "Compute/Grade.h"
#include "Model/EffectPanel.h"

#include <OS/Effects/iShaderEffect.h>
#include <OS/Primitives/ShaderTechnique.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace Vantor {

/// What the viewer's picture goes through before it is seen.
struct PicturePath
{
    ShaderTechnique technique;        ///< without an effect: none
    std::optional<GradeValues> grade; ///< by a kernel, before the effect
};

/// The effects of a folder of the product's, by name: those that change one picture, and those that
/// cannot be compiled, so that they can be mended; and the colour corrector that computes.
std::vector<EffectFile> findEffects();
/// As it stands in the panel: "ColourCorrect.fx" is "Colour Correct".
Text effectNameOf(const Text& path);
/// A compiler's listing as the panel shows it: "line 12: text", the file's name before it where it
/// is another than the effect's own; broken into short lines.
Text troubleOf(const Text& listing, const Text& effectPath);
/// Sliders for what an effect lets the user set, from its annotations: "UIName", "UIMin", "UIMax",
/// "UIStep". What has a semantic instead of a name is the host's.
std::vector<EffectControl> controlsOf(const iShaderEffect& effect);

/// The effect that the viewer's picture is passed through: loads what the panel has chosen, and
/// follows its file while somebody edits it. On the thread of the event loop.
class LiveEffect
{
public:
    /// Never changes once it is made.
    using Path = std::shared_ptr<const PicturePath>;

    /// Brings panel and effect together. Looks at the files, which is quick: call it after each
    /// change and a few times a second.
    void follow(EffectPanel& panel);
    /// Null: the picture is shown as it is.
    const Path& path() const { return shown_; }

private:
    void take(const EffectFile& file);
    void load(const Text& path);
    void retry(const Text& path);
    void keepPath(const EffectPanel& panel);
    std::vector<EffectControl> offered() const;
    std::vector<Text> techniques() const;

    EffectFile file_;
    bool isGrade_ = false;
    std::shared_ptr<ComputeDevice> device_; ///< null until it is asked for
    Tq::Ptr<iShaderEffect> effect_;         ///< null: none, or it cannot be used
    unsigned int revision_ = 0;
    bool isNew_ = false; ///< since the panel was told
    Text trouble_;
    std::uint64_t refused_ = 0; ///< the stamp of a file that compiles but cannot be used; 0: none
    double lookedMs_ = 0.0;
    std::vector<EffectControl> used_; ///< in shown_, and so the next
    int usedTechnique_ = 0;
    Path shown_;
};

} // namespace Vantor
