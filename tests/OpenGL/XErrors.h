#pragma once

/// Has the X server's errors reported to FaultTrap instead of ending the process, or no more.
void catchXErrors(bool on);
