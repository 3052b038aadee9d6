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
    static constexpr std::int64_t kUsualPixels = 64LL << 20;

    /// @param pixels of four bytes that all loaded pictures may have, and all copies likewise
    explicit PictureStore(Resources& resources, std::int64_t pixels = kUsualPixels)
        : resources_(resources), limit_(pixels)
    {
    }

    enum class Fit
    {
        eCover /* fills the rectangle, cut at two sides */,
        eStretch
    };

    /// A picture for a rectangle, or null while it is not loaded or when it is missing.
    Tq::Ptr<iHostImage> scaled(const Text& path, const Tq::Rectangle<int>& rect, Fit fit);
    /// A picture, whole, for the largest rectangle of its shape in another; null likewise.
    Tq::Ptr<iHostImage> fitted(const Text& path, const Tq::Rectangle<int>& room);
    /// The same for one of many that follow each other: only the last one is kept.
    Tq::Ptr<iHostImage> passing(const Text& path, const Tq::Rectangle<int>& room);
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
    const std::int64_t limit_;
    Text passingPath_;
    Tq::Rectangle<int> passingRoom_;
    Tq::Ptr<iHostImage> passing_; ///< of passingPath_ for passingRoom_
    XY<int> passingSize_;
    bool passingMissing_ = false;
    std::map<Text, Picture> pictures_;
    std::map<CopyKey, Copy> copies_;
    std::uint64_t clock_ = 0;
    int loadsLeft_ = 4;
    bool wantsMore_ = false;
};

} // namespace Vantor
