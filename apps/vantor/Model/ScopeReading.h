#pragma once

#include "Model/Text.h"

#include <OS/Core/Ptr.h>
#include <OS/Painting/iHostImage.h>

namespace Vantor {

/// What the scopes show of one frame.
struct ScopeReading
{
    Tq::Ptr<iHostImage> waveform; ///< null: not measured yet
    Tq::Ptr<iHostImage> vectorscope;
    Tq::Ptr<iHostImage> histogram;
    Text trouble; ///< why nothing can be measured; empty: it can be
};

} // namespace Vantor
