#include "Model/PlayCount.h"

namespace Vantor {

namespace {

constexpr double kSpanMs = 2000.0;
constexpr double kLeastMs = 400.0; ///< what is needed to tell a rate

} // namespace

void PlayCount::show(std::uint64_t run, std::int64_t tick, double ms, bool playing)
{
    ++shown_;
    if (run != run_ || !playing) {
        shownMs_.clear();
        tick_ = 0; // where a run begins the picture is there already
    }
    if (playing && tick > tick_ + 1)
        dropped_ += static_cast<std::uint64_t>(tick - tick_ - 1);
    run_ = run;
    tick_ = tick;
    if (!playing)
        return;
    shownMs_.push_back(ms);
    while (ms - shownMs_.front() > kSpanMs)
        shownMs_.pop_front();
}

double PlayCount::rate() const
{
    if (shownMs_.empty() || shownMs_.back() - shownMs_.front() < kLeastMs)
        return 0.0;
    return static_cast<double>(shownMs_.size() - 1) * 1000.0 / (shownMs_.back() - shownMs_.front());
}

} // namespace Vantor
