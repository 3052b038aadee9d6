#pragma once

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRenderer.h"

#include <QImage>
#include <functional>

/// The same drawing twice: with the toolkit's renderer on an image, and with GL on a texture.
class DrawingRig
{
public:
    using Orientation = OpenGLGraphicPrimitivesRendererBase::eOrientation;
    using Code = std::function<void(iGraphicPrimitivesRenderer&)>;

    static constexpr QRgb kGround = 0xFF102040;

    /// @param width of the target, logical pixels; a begun pixel of the target is a whole one
    DrawingRig(int width, int height, double ratio = 1.0,
               Orientation orientation = OpenGLGraphicPrimitivesRendererBase::eTexture,
               QRgb ground = kGround);

    /// What the toolkit's renderer makes of it.
    QImage withToolkit(const Code& code) const;
    /// What GL makes of it, upright. @param prepare runs with the framebuffer bound, before
    QImage withGL(const Code& code, const std::function<void()>& prepare = {}) const;

private:
    int width_, height_; // pixels
    XY<int> logical_;
    double ratio_;
    Orientation orientation_;
    QRgb ground_;
};

/// A texture that is drawn into while this lives; the thread's render context is current.
class TextureTarget
{
public:
    /// @param ground premultiplied
    TextureTarget(int width, int height, QRgb ground);
    ~TextureTarget();
    TextureTarget(const TextureTarget&) = delete;
    TextureTarget& operator=(const TextureTarget&) = delete;

    unsigned int texture() const { return texture_; }
    /// In the framebuffer's order: its bottom row first.
    QImage read() const;

private:
    OpenGLContextProtector protector_;
    int width_, height_;
    unsigned int texture_ = 0;
    unsigned int framebuffer_ = 0;
};
