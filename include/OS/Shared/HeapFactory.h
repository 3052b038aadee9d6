#pragma once

#include <OS/Core/Export.h>
#include <OS/Shared/iHeap.h>

#include <memory>

namespace Tq {

/// Makes a heap for many threads: a Tq::MTHeap, or, where the global setting "DebugHeap" is "1", a
/// debug heap, which is slow but finds overruns, accesses to released blocks, wrong releases and
/// leaks, and reports them with the stacks that made and released the block.
///
/// The settings are read at each call, "DebugHeapQuarantineMb" (default 64, at most 65536) with
/// them: how much memory of released blocks a debug heap keeps out of use. Any thread. Takes the
/// settings' lock. Throws std::bad_alloc when there is no memory.
OS_API std::unique_ptr<iHeap> createHeap();

} // namespace Tq
