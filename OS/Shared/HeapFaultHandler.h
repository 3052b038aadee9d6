#pragma once

namespace Tq {

class GuardedArea;

/// Explains the faults of the process: when an access without permission hits one of the areas
/// below, a report of the block there goes to standard error, and the fault goes on to whatever
/// handled it before, or to the system, whose core dump then shows the access itself.
///
/// The handler is installed with the first area, for SIGSEGV and SIGBUS, and stays. It runs on the
/// alternate stack where its thread has one, takes no lock and allocates nothing.
namespace HeapFaultHandler {

/// @return false when there are too many areas
bool add(const GuardedArea* area);
void remove(const GuardedArea* area);

} // namespace HeapFaultHandler
} // namespace Tq
