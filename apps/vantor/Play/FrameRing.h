#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Painting/iImage.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace Vantor {

/// The few frames that are ready to be shown, and those being made: never more than so many
/// together. Plain data; the caller locks.
class FrameRing
{
public:
    explicit FrameRing(std::size_t capacity) : capacity_(capacity) {}

    /// Says which frames are to be held, the most urgent first; all others are let go. More than
    /// fit are not wanted.
    void want(const std::vector<int>& frames);
    /// Lets go of every frame, and of what is being made too: the pictures have become others.
    void clear();

    /// A frame that is being made.
    struct Job
    {
        std::uint64_t ticket = 0; ///< 0: there is none
        int frame = 0;
    };
    /// Begins the most urgent frame that is wanted and neither there nor being made, where there is
    /// room for it. Every job is ended.
    Job begin();
    /// Ends it. What is not wanted any more is let go. @param image null: it could not be made
    /// @return whether it was kept
    bool end(const Job& job, Tq::Ptr<iImage> image);

    bool has(int frame) const { return held_.contains(frame); }
    /// The frame's picture; null while it is not there, and when it could not be made.
    Tq::Ptr<iImage> find(int frame) const;
    std::size_t held() const { return held_.size(); }
    std::size_t inTheMaking() const { return making_.size(); }

private:
    struct Making
    {
        int frame;
        bool stale; ///< begun before clear()
    };
    bool isWanted(int frame) const;
    bool isBeingMade(int frame) const;

    const std::size_t capacity_;
    std::vector<int> wanted_;
    std::map<int, Tq::Ptr<iImage>> held_;
    std::map<std::uint64_t, Making> making_; ///< by ticket
    std::uint64_t lastTicket_ = 0;
};

} // namespace Vantor
