#pragma once

#include "Model/Project.h"

#include <OS/Effects/i3DEffect.h>
#include <OS/Effects/iShaderEffect.h>

namespace Vantor {

/// Makes the pictures in the middle of a transition, on the GPU, with the product's own effects.
/// For one thread.
class Passages
{
public:
    /// @param from, to of one size
    /// @return null where the GPU cannot do it
    Tq::Ptr<iGPUImage> make(Entrance kind, float progress, const Tq::Ptr<iGPUImage>& from,
                            const Tq::Ptr<iGPUImage>& to);

private:
    struct Mixer ///< an effect of two pictures
    {
        const wchar_t* file;
        bool tried;
        Tq::Ptr<iShaderEffect> effect;
    };
    bool mix(Mixer& mixer, float progress, const Tq::Ptr<iGPUImage>& from,
             const Tq::Ptr<iGPUImage>& to, const Tq::Ptr<iGPUImage>& target);
    bool turnPage(float progress, const Tq::Ptr<iGPUImage>& from, const Tq::Ptr<iGPUImage>& to,
                  const Tq::Ptr<iGPUImage>& target);

    Mixer dissolve_{L"Dissolve.fx", false, nullptr};
    Mixer wipe_{L"Wipe.fx", false, nullptr};
    bool prepareSpace();

    Tq::Ptr<i3DEffect> space_;
    Tq::Ptr<iGPUImage> paper_; ///< the back of a page
};

/// A page of a book that is being turned to the left: rolled around an upright cylinder that goes
/// over it. Pure.
/// @param aspect of the page, width over height @param progress 0: it lies; 1: it is gone
std::vector<i3DEffect::MeshPoint> turnedPage(float aspect, float progress, int columns, int rows);

} // namespace Vantor
