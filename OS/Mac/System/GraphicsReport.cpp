#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/System/GraphicsReport.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <QGLFramebufferObject>
#include <QOpenGLContext>
#include <string>

namespace {

using Facts = std::vector<iSystemInfo::GraphicsFact>;

void add(Facts& facts, const char* name, const std::string& value)
{
    facts.push_back({name, OS()->utils()->fromUTF8(value.c_str(), -1)});
}

std::string textOf(GLenum name)
{
    const auto* text = reinterpret_cast<const char*>(glGetString(name));
    return text ? text : "";
}

int numberOf(GLenum name)
{
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

std::string contextText()
{
    const QSurfaceFormat format = QOpenGLContext::currentContext()->format();
    std::string text = "OpenGL " + std::to_string(format.majorVersion()) + "." +
                       std::to_string(format.minorVersion());
    if (format.profile() != QSurfaceFormat::NoProfile)
        text += format.profile() == QSurfaceFormat::CoreProfile ? ", core profile"
                                                                : ", compatibility profile";
    return text +
           (QOpenGLContext::supportsThreadedOpenGL() ? ", on any thread" : ", on one thread");
}

// Each kind of storage that images use: what is uploaded and what the driver keeps it as.
struct Storage
{
    const char* name;
    GLint internalFormat;
    GLenum type;
};
constexpr Storage kStorages[] = {
    {"Format 8 bits a channel", GL_RGBA, GL_UNSIGNED_BYTE},
    {"Format 16 bits a channel", GL_RGBA16, GL_UNSIGNED_SHORT},
    {"Format 10 bits a colour, 2 of alpha", GL_RGBA, GL_UNSIGNED_INT_2_10_10_10_REV},
};

// What the driver really keeps, and whether it can be drawn into.
std::string storageText(const Storage& storage)
{
    constexpr int kSide = 16;
    QGLFramebufferObject buffer(kSide, kSide, GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, buffer.texture());
    glTexImage2D(GL_TEXTURE_2D, 0, storage.internalFormat, kSide, kSide, 0, GL_BGRA, storage.type,
                 nullptr);
    GLint colour = 0, alpha = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_GREEN_SIZE, &colour);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_ALPHA_SIZE, &alpha);
    glBindTexture(GL_TEXTURE_2D, 0);
    if (colour == 0)
        return "refused";
    const bool complete =
        buffer.bind() && glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    buffer.release();
    return "kept with " + std::to_string(colour) + " bits a colour, " + std::to_string(alpha) +
           " of alpha; " + (complete ? "can be drawn into" : "cannot be drawn into");
}

} // namespace

void reportDriver(Facts& facts)
{
    const OpenGLContextProtector protector;
    if (!OpenGLContextProtector::hasContext()) {
        add(facts, "Context", "none");
        return;
    }
    add(facts, "Context", contextText());
    add(facts, "Vendor", textOf(GL_VENDOR));
    add(facts, "Renderer", textOf(GL_RENDERER));
    add(facts, "Version", textOf(GL_VERSION));
    add(facts, "GLSL version", textOf(GL_SHADING_LANGUAGE_VERSION));
    add(facts, "Largest texture", std::to_string(numberOf(GL_MAX_TEXTURE_SIZE)));
    add(facts, "Largest 3D texture", std::to_string(numberOf(GL_MAX_3D_TEXTURE_SIZE)));
    add(facts, "Texture units", std::to_string(numberOf(GL_MAX_TEXTURE_UNITS)));
    add(facts, "Texture image units", std::to_string(numberOf(GL_MAX_TEXTURE_IMAGE_UNITS)));
    add(facts, "Colour attachments", std::to_string(numberOf(GL_MAX_COLOR_ATTACHMENTS)));
    add(facts, "Samples", std::to_string(numberOf(GL_MAX_SAMPLES)));
    for (const Storage& storage : kStorages)
        add(facts, storage.name, storageText(storage));
}
