#include "OS/Mac/OpenGL/Widgets/FramePacer.h"

#include <algorithm>

namespace {

constexpr std::int64_t kNsPerSecond = 1'000'000'000;
constexpr unsigned int kMostPerSecond = 1000;
using Wide = __int128; // a day's frames times a day's nanoseconds do not fit into 64 bits

} // namespace

bool FramePacer::setRate(unsigned int numerator, unsigned int denominator)
{
    if (denominator == 0 || numerator / kMostPerSecond > denominator ||
        (numerator / kMostPerSecond == denominator && numerator % kMostPerSecond != 0))
        return false;
    numerator_ = numerator;
    denominator_ = denominator;
    begun_ = false;
    return true;
}

std::int64_t FramePacer::timeOf(std::int64_t index) const
{
    return beginNs_ +
           static_cast<std::int64_t>(Wide(index) * denominator_ * kNsPerSecond / numerator_);
}

// The last one whose time is not after `ns`, or the one before it.
std::int64_t FramePacer::indexAt(std::int64_t ns) const
{
    return static_cast<std::int64_t>(Wide(ns - beginNs_) * numerator_ /
                                     (Wide(denominator_) * kNsPerSecond));
}

FramePacer::Slot FramePacer::next(std::int64_t nowNs)
{
    Slot slot{std::max(nowNs, lastDueNs_), false};
    if (numerator_ != 0) {
        if (!begun_) {
            begun_ = true;
            beginNs_ = slot.dueNs;
            index_ = 0;
        } else {
            ++index_;
            slot.late = timeOf(index_) < nowNs;
            if (slot.late)
                index_ = std::max(index_, indexAt(nowNs));
            slot.dueNs = timeOf(index_);
        }
    }
    lastDueNs_ = slot.dueNs;
    return slot;
}
