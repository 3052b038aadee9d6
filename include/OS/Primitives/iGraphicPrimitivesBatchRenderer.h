#pragma once

#include <OS/Core/Export.h>

struct PrimitivesBatch;

/// Where a deferred renderer delivers its recording.
class OS_API iGraphicPrimitivesBatchRenderer
{
public:
    /// Takes over a copy of the batch: its list is shared and no longer recorded into.
    virtual void render(const PrimitivesBatch& batch) = 0;

protected:
    ~iGraphicPrimitivesBatchRenderer() = default;
};
