#include "OS/Mac/OpenGL/Drawing/DrawingResources.h"

namespace GLDrawing {

DrawingResources& DrawingResources::instance()
{
    if (!instance_)
        instance_ = new DrawingResources;
    return *instance_;
}

void DrawingResources::shutdown()
{
    delete instance_;
    instance_ = nullptr;
}

DrawingResources::DrawingResources()
{
    glGenBuffers(1, &vertexBuffer);
}

DrawingResources::~DrawingResources()
{
    glDeleteBuffers(1, &vertexBuffer);
}

void DrawingResources::clearCaches()
{
    uploads.clear();
    fills = {};
    lines = {};
    ellipses = {};
    pies = {};
    images = {};
    scaledImages = {};
    textRuns = {};
    textDrawing = {};
}

} // namespace GLDrawing
