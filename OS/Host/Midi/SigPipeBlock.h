#pragma once

#include <csignal>
#include <ctime>

namespace OSInternal {

/// While it lives, writing to a server that has died does not raise SIGPIPE on this thread. Gives
/// the thread's mask back as it was.
class SigPipeBlock
{
public:
    SigPipeBlock()
    {
        sigset_t pending;
        sigemptyset(&pipe_);
        sigaddset(&pipe_, SIGPIPE);
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
    }
    SigPipeBlock(const SigPipeBlock&) = delete;
    SigPipeBlock& operator=(const SigPipeBlock&) = delete;
    ~SigPipeBlock()
    {
        const timespec atOnce{};
        if (!wasPending_)
            while (sigtimedwait(&pipe_, nullptr, &atOnce) == SIGPIPE) {
            }
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

private:
    sigset_t pipe_;
    sigset_t before_;
    bool wasPending_;
};

} // namespace OSInternal
