#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Primitives/GraphicPrimitivesList.h>

/// A recording and how it wants to be drawn.
struct PrimitivesBatch
{
    Tq::Ptr<GraphicPrimitivesList> list;
    bool antialias = true;
};
