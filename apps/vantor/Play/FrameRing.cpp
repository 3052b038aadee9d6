#include "Play/FrameRing.h"

#include <algorithm>

namespace Vantor {

bool FrameRing::isWanted(int frame) const
{
    return std::find(wanted_.begin(), wanted_.end(), frame) != wanted_.end();
}

bool FrameRing::isBeingMade(int frame) const
{
    return std::any_of(making_.begin(), making_.end(), [frame](const auto& entry) {
        return entry.second.frame == frame && !entry.second.stale;
    });
}

void FrameRing::want(const std::vector<int>& frames)
{
    wanted_ = frames;
    wanted_.resize(std::min(frames.size(), capacity_));
    std::erase_if(held_, [this](const auto& entry) { return !isWanted(entry.first); });
}

void FrameRing::clear()
{
    held_.clear();
    for (auto& [ticket, making] : making_)
        making.stale = true;
}

FrameRing::Job FrameRing::begin()
{
    if (held_.size() + making_.size() >= capacity_)
        return {};
    for (const int frame : wanted_)
        if (!has(frame) && !isBeingMade(frame)) {
            making_[++lastTicket_] = {frame, false};
            return {lastTicket_, frame};
        }
    return {};
}

bool FrameRing::end(const Job& job, Tq::Ptr<iImage> image)
{
    const auto making = making_.find(job.ticket);
    if (making == making_.end())
        return false;
    const bool stale = making->second.stale;
    making_.erase(making);
    if (stale || !isWanted(job.frame))
        return false;
    held_[job.frame] = std::move(image);
    return true;
}

Tq::Ptr<iImage> FrameRing::find(int frame) const
{
    const auto found = held_.find(frame);
    return found == held_.end() ? Tq::Ptr<iImage>() : found->second;
}

} // namespace Vantor
