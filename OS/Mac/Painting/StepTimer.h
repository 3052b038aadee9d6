#pragma once

/// Prints how long each step of a piece of work took, as "%-9.3f: %s\n" with seconds and the step's
/// name.
///
/// Silent unless the environment variable VANTOR_STEP_TIMES was set when the first timer was made.
class StepTimer
{
public:
    StepTimer();
    /// Ends the step that began with construction or with the last call.
    void step(const char* name);

private:
    double lastMs_ = 0.0;
};
