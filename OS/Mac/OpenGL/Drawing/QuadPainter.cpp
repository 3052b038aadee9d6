#include "OS/Mac/OpenGL/Drawing/QuadPainter.h"

#include <algorithm>

namespace GLDrawing {

QuadPainter::QuadPainter(const DrawingTarget& target, const ClipRegion& clip, GLuint vertexBuffer,
                         QuadRun& run)
    : target_(target), clip_(clip), run_(run)
{
    glBindBuffer(GL_ARRAY_BUFFER, vertexBuffer);
    if (clip_.isLimited()) {
        const auto [left, bottom, width, height] = target_.toScissor(clip_.bounds());
        glEnable(GL_SCISSOR_TEST);
        glScissor(left, bottom, width, height);
    }
}

QuadPainter::~QuadPainter()
{
    for (GLuint i = 0; i < enabled_; ++i)
        glDisableVertexAttribArray(i);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    if (program_)
        glUseProgram(0);
    setBlending(Blending::eNone, 1.0f);
    if (clip_.isLimited())
        glDisable(GL_SCISSOR_TEST);
}

bool QuadPainter::use(const Program& program)
{
    if (program.name == 0)
        return false;
    if (program_ != &program) {
        program_ = &program;
        glUseProgram(program.name);
        const auto [scaleX, scaleY, addX, addY] = target_.toClip();
        setUniform(program.toClip, scaleX, scaleY, addX, addY);
    }
    return true;
}

void QuadPainter::setBlending(Blending blending, float opacity)
{
    if (blending == blending_ && opacity == opacity_)
        return;
    if (blending == Blending::eNone) {
        glDisable(GL_BLEND);
        glBlendFunc(GL_ONE, GL_ZERO);
    } else if (blending_ == Blending::eNone) {
        glEnable(GL_BLEND);
    }
    switch (blending) {
    case Blending::eNone:
        break;
    case Blending::eOver:
        glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
        break;
    case Blending::eErase:
        glBlendFunc(GL_ZERO, GL_ONE_MINUS_SRC_ALPHA);
        break;
    case Blending::eAdd:
        glBlendFunc(GL_ONE, GL_ONE);
        break;
    case Blending::eMix:
        glBlendColor(0.0f, 0.0f, 0.0f, opacity);
        glBlendFunc(GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA);
        break;
    }
    blending_ = blending;
    opacity_ = opacity;
}

void QuadPainter::describe(std::size_t vertexBytes, const Attribute* attributes,
                           std::size_t attributeCount)
{
    if (layout_ == attributes)
        return;
    layout_ = attributes;
    const auto stride = static_cast<GLsizei>(vertexBytes);
    for (std::size_t i = 0; i < attributeCount; ++i) {
        const Attribute& attribute = attributes[i];
        const GLboolean normalised = attribute.isColour ? GL_TRUE : GL_FALSE;
        glVertexAttribPointer(attribute.location, attribute.components,
                              attribute.isColour ? GL_UNSIGNED_BYTE : GL_FLOAT, normalised, stride,
                              reinterpret_cast<const void*>(attribute.offset));
    }
    const auto count = static_cast<GLuint>(attributeCount);
    for (; enabled_ < count; ++enabled_)
        glEnableVertexAttribArray(enabled_);
    while (enabled_ > count)
        glDisableVertexAttribArray(--enabled_);
}

// Mesa in software draws a tile's rectangles the fast way only when nothing else waits for the
// tile: large runs of the two sorts go separately, which takes a third off a full frame. Elsewhere
// it is one hand-over more in thousands of quads.
void QuadPainter::flushBeforeOtherSort(std::size_t quads)
{
    constexpr std::size_t kLargeRun = 256;
    if (program_->isPlain != run_.isPlain) {
        if (std::max(quads, run_.quads) >= kLargeRun)
            glFlush();
        run_ = {program_->isPlain, 0};
    }
    run_.quads += quads;
}

void QuadPainter::draw(const void* vertices, std::size_t count, std::size_t vertexBytes,
                       const Attribute* attributes, std::size_t attributeCount, Blending blending,
                       float opacity)
{
    if (count == 0)
        return;
    setBlending(blending, opacity);
    flushBeforeOtherSort(count / 4);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(count * vertexBytes), vertices,
                 GL_STREAM_DRAW);
    describe(vertexBytes, attributes, attributeCount);
    glDrawArrays(GL_QUADS, 0, static_cast<GLsizei>(count));
}

} // namespace GLDrawing
