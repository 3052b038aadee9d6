#pragma once

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Drawing/ClipRegion.h"
#include "OS/Mac/OpenGL/Drawing/Programs.h"
#include "OS/Mac/OpenGL/Drawing/VertexLayout.h"

#include <vector>

namespace GLDrawing {

/// How quads meet what is there. Colours are premultiplied.
enum class Blending
{
    eNone,  ///< replace it
    eOver,  ///< cover it by their alpha
    eErase, ///< only take away, by their alpha
    eAdd,   ///< only add
    eMix    ///< replace a share of it: the opacity
};

/// Quads of one sort sent to GL in a row: plain ones (Program::isPlain), or others.
struct QuadRun
{
    bool isPlain = false;
    std::size_t quads = 0;
};

/// Streams quads to GL, cut to the clip region, while it lives: one call of a renderer. Afterwards
/// GL's state is as the contexts have it: no program, no buffers, no blending, no scissor.
class QuadPainter
{
public:
    /// @param vertexBuffer of the sharing group @param run likewise
    QuadPainter(const DrawingTarget& target, const ClipRegion& clip, GLuint vertexBuffer,
                QuadRun& run);
    ~QuadPainter();
    QuadPainter(const QuadPainter&) = delete;
    QuadPainter& operator=(const QuadPainter&) = delete;

    const Box& visible() const { return clip_.bounds(); }

    /// The program of the quads that follow. @return false when there is none: nothing can be drawn
    bool use(const Program& program);
    /// Draws the quads and empties the vector. @param opacity for eMix
    template <class V>
    void draw(std::vector<V>& quads, Blending blending, float opacity = 1.0f)
    {
        if (quads.empty())
            return;
        if (!clip_.isSeveral()) {
            draw(quads.data(), quads.size(), sizeof(V), VertexLayout<V>::kAttributes,
                 std::size(VertexLayout<V>::kAttributes), blending, opacity);
        } else {
            static std::vector<V> inside; // kept for the next; under the GL lock like all here
            inside.clear();
            clip_.cut(quads, inside);
            draw(inside.data(), inside.size(), sizeof(V), VertexLayout<V>::kAttributes,
                 std::size(VertexLayout<V>::kAttributes), blending, opacity);
        }
        quads.clear();
    }

private:
    void draw(const void* vertices, std::size_t count, std::size_t vertexBytes,
              const Attribute* attributes, std::size_t attributeCount, Blending blending,
              float opacity);
    void flushBeforeOtherSort(std::size_t quads);
    void setBlending(Blending blending, float opacity);
    void describe(std::size_t vertexBytes, const Attribute* attributes, std::size_t attributeCount);

    const DrawingTarget& target_;
    const ClipRegion& clip_;
    QuadRun& run_;
    const Program* program_ = nullptr;
    const Attribute* layout_ = nullptr; // what GL was told last
    Blending blending_ = Blending::eNone;
    float opacity_ = 1.0f;
    GLuint enabled_ = 0; // how many attributes
};

} // namespace GLDrawing
