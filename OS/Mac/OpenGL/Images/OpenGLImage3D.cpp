#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Images/OpenGLImage3D.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"

#include <QCoreApplication>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace {

std::uint32_t channel(float value)
{
    if (value <= 0.0f)
        return 0;
    if (!(value < 1.0f)) // what is no number, too
        return 255;
    return static_cast<std::uint32_t>(static_cast<double>(value) * 255.0 + 0.5);
}

std::uint32_t word(const NormalisedRGB& colour)
{
    return 0xFF000000u | channel(colour.red) << 16 | channel(colour.green) << 8 |
           channel(colour.blue);
}

std::unique_ptr<std::uint32_t[]> wordsOf(const iHostImage3D& host, const XYZ<unsigned char>& size)
{
    auto words =
        std::make_unique_for_overwrite<std::uint32_t[]>(std::size_t{size.x} * size.y * size.z);
    std::uint32_t* next = words.get();
    for (int i = 0; i < size.x; ++i)
        for (int j = 0; j < size.y; ++j)
            for (int k = 0; k < size.z; ++k)
                *next++ = word(host.getColour(static_cast<unsigned char>(i),
                                              static_cast<unsigned char>(j),
                                              static_cast<unsigned char>(k)));
    return words;
}

unsigned char sizeOfBound(GLenum side)
{
    GLint texels = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_3D, 0, side, &texels);
    return static_cast<unsigned char>(texels);
}

} // namespace

Tq::Ptr<iGPUImage3D> OpenGLImage3D::create(const Tq::Ptr<iHostImage3D>& host)
{
    if (!host)
        return {};
    const XYZ<unsigned char> size = host->getSize();
    const auto words = wordsOf(*host, size);

    const OpenGLContextProtector protector;
    if (!OpenGLContextProtector::hasContext())
        return {};
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_3D, texture);
    glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexImage3D(GL_TEXTURE_3D, 0, GL_RGBA, size.x, size.y, size.z, 0, GL_BGRA, GL_UNSIGNED_BYTE,
                 words.get());
    glBindTexture(GL_TEXTURE_3D, 0);
    return new OpenGLImage3D(texture);
}

OpenGLImage3D::OpenGLImage3D(unsigned int textureId) : texture_(textureId)
{
    const OpenGLContextProtector protector;
    if (!OpenGLContextProtector::hasContext())
        return;
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_3D, texture_);
    logicalSize_ = {sizeOfBound(GL_TEXTURE_WIDTH), sizeOfBound(GL_TEXTURE_HEIGHT),
                    sizeOfBound(GL_TEXTURE_DEPTH)};
    glBindTexture(GL_TEXTURE_3D, 0);
    if (physicalSize_ == XYZ<unsigned char>())
        physicalSize_ = logicalSize_;
}

OpenGLImage3D::~OpenGLImage3D()
{
    // After the Qt application object has gone no context can be made current.
    if (!QCoreApplication::instance())
        return;
    const OpenGLContextProtector protector;
    if (OpenGLContextProtector::hasContext())
        glDeleteTextures(1, &texture_);
}
