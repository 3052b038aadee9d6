#include "OS/Mac/Painting/StepTimer.h"

#include "OS/Mac/Core/Assertion.h"

#include <chrono>
#include <cstdlib>

namespace {

bool enabled()
{
    static const bool wanted = std::getenv("VANTOR_STEP_TIMES") != nullptr;
    return wanted;
}

double nowMs()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double, std::milli>(now).count();
}

} // namespace

StepTimer::StepTimer()
{
    if (enabled())
        lastMs_ = nowMs();
}

void StepTimer::step(const char* name)
{
    if (!enabled())
        return;
    const double now = nowMs();
    OSInternal::printTimed(now - lastMs_, name);
    lastMs_ = now;
}
