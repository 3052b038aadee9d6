#pragma once

#include "Model/Text.h"
#include "common/Resources.h"

#include <OS/Painting/iHostImage.h>

#include <cstdint>
#include <map>
#include <tuple>

namespace Vantor {

/// Loaded pictures, and copies of them scaled to the sizes at which they are drawn.
///
/// Both are kept up to a limit; what was not used for longest goes first. A picture that cannot be
/// loaded is remembered as missing and not tried again.
class PictureStore
{
public:
    explicit PictureStore(Resources& resources) : resources_(resources) {}

    enum class Fit
    {
        eCover /* fills the rectangle, cut at two sides */,
        eStretch
    };

    /// A picture for a rectangle, or null while it is not loaded or when it is missing.
    Tq::Ptr<iHostImage> scaled(const Text& path, const Tq::Rectangle<int>& rect, Fit fit);
    /// Size in pixels; (0, 0) while it is not loaded or when it is missing.
    XY<int> sizeOf(const Text& path);
    /// Whether the file is not there or cannot be read; not known before it was asked for.
    bool isMissing(const Text& path) const;
    /// Files that were missing are tried again.
    void forgetMissing();

    /// How many files may be loaded until the next call, so that a full bin does not hold up
    /// drawing.
    void allowLoads(int count);
    /// Whether something was left out since, for want of loads.
    bool wantsMore() const { return wantsMore_; }

private:
    struct Picture
    {
        Tq::Ptr<iHostImage> image; ///< null when dropped again, or missing
        XY<int> size;
        bool missing = false;
        std::uint64_t used = 0;
    };
    struct Copy
    {
        Tq::Ptr<iHostImage> image;
        std::uint64_t used = 0;
    };
    using CopyKey = std::tuple<Text, int, int, Fit>;

    Picture* load(const Text& path);
    void dropOldest();

    Resources& resources_;
    std::map<Text, Picture> pictures_;
    std::map<CopyKey, Copy> copies_;
    std::uint64_t clock_ = 0;
    int loadsLeft_ = 4;
    bool wantsMore_ = false;
};

} // namespace Vantor
