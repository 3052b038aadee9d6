#include "GLSide.h"

#define EGL_NO_X11
#include <EGL/egl.h>
#include <GL/gl.h>

namespace {

class EGLSide final : public GLSide
{
public:
    EGLSide(EGLDisplay display, EGLContext context) : display_(display), context_(context) {}
    ~EGLSide() override { eglDestroyContext(display_, context_); }

    void with(const std::function<void()>& code) override
    {
        const EGLDisplay display = eglGetCurrentDisplay();
        const EGLContext context = eglGetCurrentContext();
        const EGLSurface draw = eglGetCurrentSurface(EGL_DRAW),
                         read = eglGetCurrentSurface(EGL_READ);
        if (eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_)) {
            code();
            glFinish();
        }
        eglMakeCurrent(context ? display : display_, draw, read, context);
    }

private:
    EGLDisplay display_;
    EGLContext context_;
};

} // namespace

std::unique_ptr<GLSide> GLSide::makeEGL(cl_context_properties displayProperty,
                                        cl_context_properties shareProperty)
{
    const auto display = reinterpret_cast<EGLDisplay>(displayProperty);
    const auto share = reinterpret_cast<EGLContext>(shareProperty);
    EGLint id = 0, api = 0, count = 0;
    if (!eglQueryContext(display, share, EGL_CONFIG_ID, &id) ||
        !eglQueryContext(display, share, EGL_CONTEXT_CLIENT_TYPE, &api))
        return nullptr;
    const EGLint wanted[] = {EGL_CONFIG_ID, id, EGL_NONE};
    EGLConfig config{};
    eglChooseConfig(display, wanted, &config, 1, &count);
    const EGLenum before = eglQueryAPI();
    eglBindAPI(static_cast<EGLenum>(api));
    const EGLContext context = eglCreateContext(display, config, share, nullptr);
    eglBindAPI(before);
    if (!context)
        return nullptr;
    return std::make_unique<EGLSide>(display, context);
}
