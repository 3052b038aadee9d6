#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRenderer.h"

#include "OS/Mac/OpenGL/Drawing/DrawingResources.h"
#include "OS/Mac/OpenGL/Drawing/ReadablePicture.h"

using namespace GLDrawing;

namespace {

// The viewport is where the target's pixels are, however a fraction of one was rounded.
DrawingTarget currentTarget(const XY<int>& logicalSize, double ratio, bool firstRowAtBottom)
{
    DrawingTarget target;
    target.ratio = ratio >= 1.0 / 64 && ratio <= 64.0 ? ratio : 1.0;
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    target.left = viewport[0];
    target.bottom = viewport[1];
    target.width = viewport[2];
    target.height = viewport[3];
    // No more than the logical size holds, a begun pixel included.
    const auto pixels = [&](int size) {
        return nearestEdge(std::ceil(std::max(size, 0) * target.ratio));
    };
    target.bounds = {0, 0, std::min(viewport[2], pixels(logicalSize.x)),
                     std::min(viewport[3], pixels(logicalSize.y))};
    target.firstRowAtBottom = firstRowAtBottom;
    return target;
}

} // namespace

OpenGLGraphicPrimitivesRenderer::State OpenGLGraphicPrimitivesRenderer::State::read()
{
    State state;
    glGetIntegerv(GL_CURRENT_PROGRAM, &state.program);
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &state.arrayBuffer);
    glGetIntegerv(GL_ACTIVE_TEXTURE, &state.activeUnit);
    glActiveTexture(GL_TEXTURE0);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &state.texture);
    state.blending = glIsEnabled(GL_BLEND);
    state.scissoring = glIsEnabled(GL_SCISSOR_TEST);
    glGetIntegerv(GL_SCISSOR_BOX, state.scissor);
    glGetIntegerv(GL_BLEND_SRC_RGB, &state.blendFactors[0]);
    glGetIntegerv(GL_BLEND_DST_RGB, &state.blendFactors[1]);
    glGetIntegerv(GL_BLEND_SRC_ALPHA, &state.blendFactors[2]);
    glGetIntegerv(GL_BLEND_DST_ALPHA, &state.blendFactors[3]);
    glGetFloatv(GL_BLEND_COLOR, state.blendColour);
    glDisable(GL_BLEND);
    glDisable(GL_SCISSOR_TEST);
    return state;
}

void OpenGLGraphicPrimitivesRenderer::State::restore() const
{
    glUseProgram(static_cast<GLuint>(program));
    glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(arrayBuffer));
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture));
    glActiveTexture(static_cast<GLenum>(activeUnit));
    (blending ? glEnable : glDisable)(GL_BLEND);
    (scissoring ? glEnable : glDisable)(GL_SCISSOR_TEST);
    glScissor(scissor[0], scissor[1], scissor[2], scissor[3]);
    glBlendFuncSeparate(static_cast<GLenum>(blendFactors[0]), static_cast<GLenum>(blendFactors[1]),
                        static_cast<GLenum>(blendFactors[2]), static_cast<GLenum>(blendFactors[3]));
    glBlendColor(blendColour[0], blendColour[1], blendColour[2], blendColour[3]);
}

OpenGLGraphicPrimitivesRenderer::OpenGLGraphicPrimitivesRenderer(const XY<int>& logicalSize,
                                                                 double ratio,
                                                                 eOrientation orientation)
    : OpenGLGraphicPrimitivesRendererBase(
          currentTarget(logicalSize, ratio, orientation == eTexture), drawnTexture()),
      before_(State::read())
{
}

OpenGLGraphicPrimitivesRenderer::~OpenGLGraphicPrimitivesRenderer()
{
    before_.restore();
}

void OpenGLGraphicPrimitivesRenderer::shutdown()
{
    DrawingResources::shutdown();
}

void OpenGLGraphicPrimitivesRenderer::clearCaches()
{
    if (DrawingResources* resources = DrawingResources::existing())
        resources->clearCaches();
}
