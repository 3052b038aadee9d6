#pragma once

#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include <vector>

/// Gives GL the states that a pass asks for: blending, alpha test, colour mask, depth, stencil,
/// scissor, faces. Their names' case does not matter; others change nothing. Whoever calls saves
/// GL's attributes before and restores them afterwards.
void applyPassStates(const std::vector<EffectCompiler::StateAssignment>& states);
