#pragma once

#include "Model/ScopeReading.h"
#include "common/Resources.h"

#include <array>

namespace Vantor {

/// Draws what was counted: traces on the scopes' scales. Keeps the last picture of each scope.
class ScopePictures
{
public:
    enum class Scope
    {
        eWaveform,
        eVectorscope,
        eHistogram
    };

    explicit ScopePictures(App::Resources& resources) : resources_(resources) {}

    /// The picture of a scope for a logical rectangle. @param counts null: the scale alone
    Tq::Ptr<iHostImage> get(Scope scope, const std::shared_ptr<const ScopeCounts>& counts,
                            const App::Rect& rect);

private:
    struct Kept
    {
        std::shared_ptr<const ScopeCounts> counts;
        App::Point size;
        Tq::Ptr<iHostImage> image;
    };
    App::Resources& resources_;
    std::array<Kept, 3> kept_;
};

/// Where a colour lies in the vectorscope: Cb and Cr of ITU-R BT.709, each -0.5 to 0.5.
struct Vector
{
    float cb;
    float cr;
};
Vector vectorOf(float red, float green, float blue);

} // namespace Vantor
