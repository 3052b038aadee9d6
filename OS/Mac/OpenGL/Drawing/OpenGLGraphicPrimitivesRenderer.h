#pragma once

#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRendererBase.h"

#include <array>

/// Draws into the context and the framebuffer that are current, where the viewport is.
///
/// Made when the viewport is set, under the GL lock, and released before any of them changes for
/// good; renderers of one thread may nest, as long as each call finds its own target current. GL's
/// state is afterwards what it was before: program, buffer, blending, scissor, texture.
class OpenGLGraphicPrimitivesRenderer final : public OpenGLGraphicPrimitivesRendererBase
{
public:
    /// @param logicalSize of the target, pixels of descriptions
    /// @param ratio the target's pixels for each of them, exactly; what is not between 1/64 and 64
    /// counts as 1
    OpenGLGraphicPrimitivesRenderer(const XY<int>& logicalSize, double ratio,
                                    eOrientation orientation);
    ~OpenGLGraphicPrimitivesRenderer() override;

    /// Releases what all renderers share. With a context of the sharing group current, under the GL
    /// lock, when no renderer is left. The next renderer makes it anew.
    static void shutdown();
    /// Releases the pictures of texts and the textures of host images only; likewise, but renderers
    /// may be there.
    static void clearCaches();

private:
    /// What GL had.
    struct State
    {
        GLint program = 0;
        GLint arrayBuffer = 0;
        GLint activeUnit = GL_TEXTURE0;
        GLint texture = 0; // of unit 0
        GLboolean blending = GL_FALSE;
        GLboolean scissoring = GL_FALSE;
        GLint scissor[4] = {};
        GLint blendFactors[4] = {}; // source and destination of colours, then of alpha
        GLfloat blendColour[4] = {};

        static State read();
        void restore() const;
    };
    State before_;
};
