#pragma once

#include "support/Allocators.h"

namespace Bench {

/// The choice of a free range against a plain walk, without the system's calls.
void benchFreeRanges();

/// Picture buffers of 8 MB. @param returning whether the peers are set to give memory back
void benchFrames(const std::vector<PeerAllocator>& peers, bool returning);

/// Runs this program once more, with an argument. @return its exit status
int runAgain(const char* argument);

} // namespace Bench
