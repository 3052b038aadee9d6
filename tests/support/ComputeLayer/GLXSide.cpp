#include "GLSide.h"

#include <GL/glx.h>

namespace {

class GLXSide final : public GLSide
{
public:
    GLXSide(Display* display, GLXContext context, GLXPbuffer surface)
        : display_(display), context_(context), surface_(surface)
    {
    }
    ~GLXSide() override
    {
        glXDestroyContext(display_, context_);
        glXDestroyPbuffer(display_, surface_);
    }

    void with(const std::function<void()>& code) override
    {
        Display* const display = glXGetCurrentDisplay();
        const GLXContext context = glXGetCurrentContext();
        const GLXDrawable draw = glXGetCurrentDrawable(), read = glXGetCurrentReadDrawable();
        if (glXMakeContextCurrent(display_, surface_, surface_, context_)) {
            code();
            glFinish();
        }
        glXMakeContextCurrent(context ? display : display_, draw, read, context);
    }

private:
    Display* display_;
    GLXContext context_;
    GLXPbuffer surface_;
};

} // namespace

std::unique_ptr<GLSide> GLSide::makeGLX(cl_context_properties displayProperty,
                                        cl_context_properties shareProperty)
{
    auto* const display = reinterpret_cast<Display*>(displayProperty);
    const auto share = reinterpret_cast<GLXContext>(shareProperty);
    int config = 0, screen = 0, count = 0;
    if (glXQueryContext(display, share, GLX_FBCONFIG_ID, &config) ||
        glXQueryContext(display, share, GLX_SCREEN, &screen))
        return nullptr;
    const int wanted[] = {GLX_FBCONFIG_ID, config, None};
    const int size[] = {GLX_PBUFFER_WIDTH, 1, GLX_PBUFFER_HEIGHT, 1, None};
    GLXFBConfig* const configs = glXChooseFBConfig(display, screen, wanted, &count);
    if (count == 0)
        return nullptr;
    const GLXFBConfig chosen = configs[0];
    XFree(configs);
    const GLXContext context = glXCreateNewContext(display, chosen, GLX_RGBA_TYPE, share, True);
    if (!context)
        return nullptr;
    return std::make_unique<GLXSide>(display, context, glXCreatePbuffer(display, chosen, size));
}
