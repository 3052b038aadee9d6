#pragma once

#include "Model/BoardData.h"

#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/Threads/TaskQueue.h>
#include <OS/Threads/iCriticalSection.h>

#include <functional>

namespace Quay {

/// Asks for the volumes on a thread of its own, so that one that does not answer does not stop the
/// board. Used on the thread of the event loop.
class VolumeReader
{
public:
    /// @param ready called on the reader's thread, without locks, when an answer can be taken
    explicit VolumeReader(std::function<void()> ready);
    /// Waits for a question that is being answered.
    ~VolumeReader();
    VolumeReader(const VolumeReader&) = delete;
    VolumeReader& operator=(const VolumeReader&) = delete;

    /// Asks; does nothing while an answer is awaited. @param before as gatherVolumes takes it
    void ask(const Volumes& before);
    /// @return whether there was an answer
    bool take(Volumes& volumes);

private:
    struct Exchange;
    class Question;

    Tq::Ptr<Exchange> exchange_;
    bool waiting_ = false;
    Tq::Ptr<TaskQueue> queue_;
};

} // namespace Quay
