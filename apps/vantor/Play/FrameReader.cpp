#include "Play/FrameReader.h"

#include <OS.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/iThreadManager.h>

#include <string>

namespace Vantor {

/// A worker's turn: it makes frames until none is wanted.
class FrameReader::Work final : public iExecutable
{
public:
    Work(FrameReader& reader, int worker) : reader_(reader), worker_(worker) {}
    void execute() override { reader_.workOn(worker_); }

private:
    FrameReader& reader_; // waits for its workers before it goes
    const int worker_;
};

FrameReader::FrameReader(int workers, std::size_t capacity, Make make,
                         std::function<void()> arrived)
    : capacity_(capacity), make_(std::move(make)), arrived_(std::move(arrived)),
      lock_(OS()->threadMgr()->createCriticalSection(0)), ring_(capacity),
      busy_(static_cast<std::size_t>(workers))
{
    for (int i = 0; i < workers; ++i)
        workers_.emplace_back(new TaskQueue(("Frame reader " + std::to_string(i + 1)).c_str()));
}

FrameReader::~FrameReader()
{
    want({}, {});
    for (const Tq::Ptr<TaskQueue>& worker : workers_)
        worker->shutdown();
}

void FrameReader::want(const FrameRequest& request, const std::vector<int>& frames)
{
    {
        const CriticalSectionLock held(lock_);
        if (!(request == request_)) {
            request_ = request;
            ring_.clear();
        }
        ring_.want(request.edit ? frames : std::vector<int>());
    }
    wake();
}

// A worker that is at it looks for more by itself.
void FrameReader::wake()
{
    for (std::size_t i = 0; i < workers_.size(); ++i) {
        {
            const CriticalSectionLock held(lock_);
            if (busy_[i])
                continue;
            busy_[i] = true;
        }
        workers_[i]->queue(Tq::Ptr<iExecutable>(new Work(*this, static_cast<int>(i))));
    }
}

void FrameReader::workOn(int worker)
{
    for (;;) {
        FrameRing::Job job;
        FrameRequest request;
        {
            const CriticalSectionLock held(lock_);
            job = ring_.begin();
            if (job.ticket == 0) {
                busy_[static_cast<std::size_t>(worker)] = false;
                return;
            }
            request = request_;
        }
        Tq::Ptr<iImage> image = make_(worker, request, job.frame);
        bool kept = false;
        {
            const CriticalSectionLock held(lock_);
            kept = ring_.end(job, std::move(image));
        }
        if (kept)
            arrived_();
    }
}

Tq::Ptr<iImage> FrameReader::find(int frame) const
{
    const CriticalSectionLock held(lock_);
    return ring_.find(frame);
}

bool FrameReader::has(int frame) const
{
    const CriticalSectionLock held(lock_);
    return ring_.has(frame);
}

std::size_t FrameReader::inUse() const
{
    const CriticalSectionLock held(lock_);
    return ring_.held() + ring_.inTheMaking();
}

} // namespace Vantor
