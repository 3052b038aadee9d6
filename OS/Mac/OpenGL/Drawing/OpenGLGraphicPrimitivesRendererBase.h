#pragma once

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Drawing/ClipRegion.h"
#include "OS/Mac/OpenGL/Drawing/DrawingTarget.h"

#include <OS/Core/Ptr.h>
#include <OS/Effects/iShaderEffect.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <QRegion>

namespace GLDrawing {
class DrawingResources;
class QuadPainter;
} // namespace GLDrawing

/// Draws descriptions with GL, as QtGraphicPrimitivesRenderer draws them with the toolkit: the same
/// pixels, up to the rounding of colours and the softness of edges.
///
/// Shared with that renderer, deliberately: it starts by replacing what is there (alpha too), and
/// an alpha rectangle's blending stays for what follows until an image is drawn. Unlike there edges
/// are soft from the start, an alpha rectangle always blends, text is always blended, and images
/// are scaled where the two rectangles differ in size.
///
/// Colours are premultiplied. Every call sets the GL state that it needs and leaves the contexts'
/// own: other drawing may come between two calls. Under the GL lock, with the target's context and
/// framebuffer current during every call.
class OpenGLGraphicPrimitivesRendererBase : public iGraphicPrimitivesRenderer
{
public:
    /// Where row 0 of descriptions lies.
    enum eOrientation : int
    {
        eWindow = 0, ///< on top: GL's rows count from the bottom
        eTexture = 1 ///< in the texture's first row, so that reading it back gives an upright image
    };

    OpenGLGraphicPrimitivesRendererBase(const OpenGLGraphicPrimitivesRendererBase&) = delete;
    OpenGLGraphicPrimitivesRendererBase&
    operator=(const OpenGLGraphicPrimitivesRendererBase&) = delete;

    /// Null ends the limit; an empty region draws nothing. A region that is no QtRegion prints the
    /// assertion report for "rgnImpl" at "OS/Mac/OpenGLGraphicPrimitivesRenderer line 88", and the
    /// clip stays as it was.
    void setClipRegion(Tq::Ptr<iRegion> region) override;
    void setAntialiasingEnabled(bool enabled) override { antialias_ = enabled; }

    void renderMulti(const RectDescription* descs, unsigned int count) override;
    void renderMulti(const EllipseDescription* descs, unsigned int count) override;
    /// Every line lies one row above its y, deliberately. A dotted one ignores its width.
    void renderMulti(const LineDescription* descs, unsigned int count) override;
    /// For an OpenGLFontBase: its pictures, drawn with the text-effects shader; other fonts draw
    /// nothing. Without that shader no text is drawn, now and later. Always blended. Highlight,
    /// halo and underline are as the toolkit's renderer has them; the alignment counts.
    void renderMulti(const TextDescription* descs, unsigned int count) override;
    /// Always blended, whatever the blend mode: deliberate.
    void renderMulti(const AlphaRectDescription* descs, unsigned int count) override;
    void renderMulti(const BezierCurveDescription* descs, unsigned int count) override;
    /// Images on the GPU are drawn from where they are, in any format; host images are uploaded
    /// first. An image may be drawn on itself. Afterwards, and for a count of 0, blending is back
    /// at replace.
    void renderMulti(const ImageDescription* descs, unsigned int count) override;
    /// Without an effect the image is drawn as it is; with one whose technique is not known,
    /// nothing. An effect sees the part alone, whole pixels of it.
    void renderMulti(const ImageDescriptionEx* descs, unsigned int count) override;

protected:
    /// What draws text; null where there is none. Asked once.
    virtual Tq::Ptr<iShaderEffect> getTextEffectsShader();

    /// @param targetTexture what is drawn into; 0 where it is no texture
    OpenGLGraphicPrimitivesRendererBase(const GLDrawing::DrawingTarget& target,
                                        GLuint targetTexture);
    ~OpenGLGraphicPrimitivesRendererBase() override = default;

private:
    class Shapes;
    class Images;
    class Texts;

    void drawWithoutEffects(const ImageDescriptionEx* descs, const ImageDescriptionEx* end);
    void drawWithEffect(const ImageDescriptionEx& desc);

    GLDrawing::DrawingTarget target_;
    GLuint targetTexture_;
    GLDrawing::ClipRegion clip_;
    QRegion region_; // what clip_ was made of
    bool hasRegion_ = false;
    bool antialias_ = true;
    bool blend_ = false; // over what is there, or replacing it
};
