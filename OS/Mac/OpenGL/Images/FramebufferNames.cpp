#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Images/FramebufferNames.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"

#include <OS/Threads/CriticalSectionLock.h>

#include <QGLFramebufferObject>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <cstdlib>
#include <map>
#include <string_view>

namespace {

// The texture behind the colours of a framebuffer name, as the current context sees it; 0 where the
// name means nothing there.
GLuint textureBehind(GLuint framebuffer)
{
    if (!glIsFramebuffer(framebuffer))
        return 0;
    GLint texture = 0;
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                          GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &texture);
    return static_cast<GLuint>(texture);
}

// Asks a second context for the name of a framebuffer object of the current one.
bool secondContextKnows(const QGLFramebufferObject& framebuffer)
{
    QOpenGLContext* const first = QOpenGLContext::currentContext();
    QSurface* const firstSurface = first->surface();
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext second;
    second.setShareContext(first);
    if (!second.create() || !second.makeCurrent(&surface))
        return true; // one context alone shares with nobody
    const bool known = textureBehind(framebuffer.handle()) == framebuffer.texture();
    second.doneCurrent();
    first->makeCurrent(firstSurface);
    return known;
}

bool isForcedApart()
{
    const char* forced = std::getenv("VANTOR_GL_FBO_PER_CONTEXT");
    return forced && std::string_view(forced) == "1";
}

// One framebuffer object for each context that ever needed one.
using OwnFramebuffers = std::map<const QOpenGLContext*, GLuint>;

OwnFramebuffers& ownFramebuffers()
{
    static auto* const all = new OwnFramebuffers;
    return *all;
}

GLuint ownFramebuffer(QOpenGLContext* context)
{
    const auto [entry, isNew] = ownFramebuffers().try_emplace(context, 0);
    if (isNew) {
        glGenFramebuffers(1, &entry->second);
        // The object goes with the context; another one may come to stand at the same address.
        QObject::connect(context, &QOpenGLContext::aboutToBeDestroyed, [context] {
            const CriticalSectionLock lock(OpenGLUtils::instance().getLock());
            ownFramebuffers().erase(context);
        });
    }
    return entry->second;
}

} // namespace

void FramebufferNames::probe()
{
    if (isForcedApart()) {
        shared_ = false;
        return;
    }
    const QGLFramebufferObject framebuffer(1, 1, GL_TEXTURE_2D);
    shared_ = !framebuffer.isValid() || secondContextKnows(framebuffer);
}

bool FramebufferNames::bindOwn(unsigned int texture)
{
    QOpenGLContext* const context = QOpenGLContext::currentContext();
    if (!context || texture == 0)
        return false;
    glBindFramebuffer(GL_FRAMEBUFFER, ownFramebuffer(context));
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}
