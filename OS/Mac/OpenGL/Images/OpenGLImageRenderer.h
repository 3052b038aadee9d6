#pragma once

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRenderer.h"

#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <optional>

class OpenGLImage;

/// Draws on a GPU image.
///
/// Holds the image, and the GL lock, until it is released, on the thread that made it. Every
/// operation makes the image what GL draws into and puts back what was: renderers of one thread
/// may be open side by side, also inside the drawing of a window. The drawing is there for every
/// context once the renderer is released.
class OpenGLImageRenderer final : public iGraphicPrimitivesRenderer
{
public:
    /// @param image has a texture
    OpenGLImageRenderer(const Tq::Ptr<OpenGLImage>& image, bool antialias);
    ~OpenGLImageRenderer() override;
    OpenGLImageRenderer(const OpenGLImageRenderer&) = delete;
    OpenGLImageRenderer& operator=(const OpenGLImageRenderer&) = delete;

    void setClipRegion(Tq::Ptr<iRegion> region) override;
    void setAntialiasingEnabled(bool enabled) override;
    void renderMulti(const RectDescription* descs, unsigned int count) override;
    void renderMulti(const EllipseDescription* descs, unsigned int count) override;
    void renderMulti(const LineDescription* descs, unsigned int count) override;
    void renderMulti(const TextDescription* descs, unsigned int count) override;
    void renderMulti(const AlphaRectDescription* descs, unsigned int count) override;
    void renderMulti(const BezierCurveDescription* descs, unsigned int count) override;
    void renderMulti(const ImageDescription* descs, unsigned int count) override;
    void renderMulti(const ImageDescriptionEx* descs, unsigned int count) override;

private:
    template <class Code>
    void onImage(Code code);
    template <class T>
    void draw(const T* descs, unsigned int count);

    OpenGLContextProtector protector_; // goes last
    Tq::Ptr<OpenGLImage> image_;
    XY<int> size_;
    // Empty where no context could be made current.
    std::optional<OpenGLGraphicPrimitivesRenderer> renderer_;
};
