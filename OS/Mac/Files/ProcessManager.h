#pragma once

#include <OS/Files/iProcessManager.h>

/// iProcessManager on posix_spawn. No state of its own: ChildWatcher keeps what runs.
class ProcessManager final : public iProcessManager
{
public:
    Tq::Ptr<iProcess> start(const InitArgs& args) override;
    unsigned int getCurrentProcessID() override;
};
