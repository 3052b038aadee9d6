#include "OS/Mac/OpenGL/Widgets/GLRenderTarget.h"

#include <cmath>

XY<int> RenderTargetState::Measures::deviceSize() const
{
    return {static_cast<int>(std::lround(size.x * ratio)),
            static_cast<int>(std::lround(size.y * ratio))};
}

RenderTargetState::Measures RenderTargetState::getMeasures() const
{
    const std::lock_guard lock(guard_);
    return measures_;
}

void RenderTargetState::setMeasures(const Measures& measures)
{
    const std::lock_guard lock(guard_);
    measures_ = measures;
}
