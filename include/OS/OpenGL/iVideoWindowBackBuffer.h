#pragma once

#include <OS/OpenGL/iGPUImage.h>

/// What the next frame of a video window is drawn on. Releasing it hands the frame over.
///
/// Its renderers record; they may be used, and the buffer released, on any one thread.
class OS_API iVideoWindowBackBuffer : public iGPUImage
{
public:
    ~iVideoWindowBackBuffer() override = default;
};
