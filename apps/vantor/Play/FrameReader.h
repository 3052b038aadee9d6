#pragma once

#include "Model/FrameRate.h"
#include "Model/MediaBin.h"
#include "Model/Project.h"
#include "Play/FrameRing.h"

#include <OS/Threads/TaskQueue.h>
#include <OS/Threads/iCriticalSection.h>

#include <functional>
#include <memory>
#include <vector>

namespace Vantor {

/// What frames are made of: never changed once it is made, so that threads may share it.
struct Edit
{
    Project project;
    MediaBin bin;
};

/// The pictures that frames are to become.
struct FrameRequest
{
    std::shared_ptr<const Edit> edit; ///< null: there is nothing to make
    FrameRate rate;
    Point size; ///< pixels

    friend bool operator==(const FrameRequest&, const FrameRequest&) = default;
};

/// Makes the frames that will be shown next, ahead of their time, on threads of its own, and holds
/// a bounded number of them. Every operation may be called from any thread.
class FrameReader
{
public:
    /// Makes a frame; called on thread `worker`, 0 to workers - 1, one frame at a time. @return
    /// null where it cannot be made
    using Make = std::function<Tq::Ptr<iImage>(int worker, const FrameRequest& request, int frame)>;

    /// @param capacity of frames held and being made
    /// @param arrived called, on a worker, after each frame
    FrameReader(int workers, std::size_t capacity, Make make, std::function<void()> arrived);
    /// Waits for the frames being made.
    ~FrameReader();
    FrameReader(const FrameReader&) = delete;
    FrameReader& operator=(const FrameReader&) = delete;

    /// Says what to hold from now on, the most urgent first. Another request lets go of everything.
    void want(const FrameRequest& request, const std::vector<int>& frames);
    /// Null while the frame is not there.
    Tq::Ptr<iImage> find(int frame) const;
    /// Whether the frame is there, or it is known that it cannot be made.
    bool has(int frame) const;
    std::size_t capacity() const { return capacity_; }
    /// Frames held and being made.
    std::size_t inUse() const;

private:
    class Work;
    void wake();
    void workOn(int worker);

    const std::size_t capacity_;
    const Make make_;
    const std::function<void()> arrived_;
    const Tq::Ptr<iCriticalSection> lock_;
    FrameRing ring_; ///< under lock_, and so the next two
    FrameRequest request_;
    std::vector<bool> busy_; ///< each worker
    std::vector<Tq::Ptr<TaskQueue>> workers_;
};

} // namespace Vantor
