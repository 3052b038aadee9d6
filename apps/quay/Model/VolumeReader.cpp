#include "Model/VolumeReader.h"

#include "Model/Gather.h"

#include <OS.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/iExecutable.h>
#include <OS/Threads/iThreadManager.h>

#include <optional>

namespace Quay {

/// What both threads hold.
struct VolumeReader::Exchange final : public iObject
{
    explicit Exchange(std::function<void()> whenReady)
        : ready(std::move(whenReady)), lock(OS()->threadMgr()->createCriticalSection(0))
    {
    }
    const std::function<void()> ready;
    const Tq::Ptr<iCriticalSection> lock;
    std::optional<Volumes> answer; // under lock
};

class VolumeReader::Question final : public iExecutable
{
public:
    Question(Tq::Ptr<Exchange> exchange, Volumes before)
        : exchange_(std::move(exchange)), before_(std::move(before))
    {
    }
    void execute() override
    {
        Volumes volumes = gatherVolumes(before_);
        {
            const CriticalSectionLock held(exchange_->lock);
            exchange_->answer = std::move(volumes);
        }
        exchange_->ready();
    }

private:
    Tq::Ptr<Exchange> exchange_;
    Volumes before_;
};

VolumeReader::VolumeReader(std::function<void()> ready)
    : exchange_(new Exchange(std::move(ready))), queue_(new TaskQueue("Volume reader"))
{
}

VolumeReader::~VolumeReader()
{
    queue_->shutdown();
}

void VolumeReader::ask(const Volumes& before)
{
    if (waiting_)
        return;
    waiting_ = true;
    queue_->queue(Tq::Ptr<iExecutable>(new Question(exchange_, before)));
}

bool VolumeReader::take(Volumes& volumes)
{
    const CriticalSectionLock held(exchange_->lock);
    if (!exchange_->answer)
        return false;
    volumes = std::move(*exchange_->answer);
    exchange_->answer.reset();
    waiting_ = false;
    return true;
}

} // namespace Quay
