#pragma once

#include <OS/Files/iProcessManager.h>

/// iProcessManager. No state.
class ProcessManager final : public iProcessManager
{
public:
    Tq::Ptr<iProcess> start(const InitArgs& args) override;
    unsigned int getCurrentProcessID() override;
};
