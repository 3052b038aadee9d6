#pragma once

#include <OS/Files/iProcessManager.h>

/// iProcessManager. No state.
class ProcessManager final : public iProcessManager
{
};
