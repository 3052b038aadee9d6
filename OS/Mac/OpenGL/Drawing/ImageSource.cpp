#include "OS/Mac/OpenGL/Drawing/ImageSource.h"

#include "OS/Mac/OpenGL/Drawing/ImageUploads.h"

#include <OS/OpenGL/iGPUImage.h>
#include <OS/OpenGL/iOpenGLImage.h>
#include <OS/OpenGL/iOpenGLTexture.h>

namespace GLDrawing {

namespace {

// How the pixels of a storage format are read. A texel's bytes in memory are blue, green, red and
// alpha: b, g, r and a of what is sampled.
ImageProgram programOf(iGPUImage::eFormat format)
{
    ImageProgram program;
    const auto threes = [&](const char* order, bool video, bool shorts) {
        program.layout = ImageProgram::eThrees;
        program.order = order;
        program.isVideo = video;
        program.hasShorts = shorts;
    };
    const auto pairs = [&](const char* lumas, const char* differences) {
        program.layout = ImageProgram::ePairs;
        program.lumas = lumas;
        program.order = differences;
        program.isVideo = true;
    };
    switch (format) {
    case iGPUImage::eRGB8:
        threes("rgb", false, false);
        break;
    case iGPUImage::eRGB16:
        threes("rgb", false, true);
        break;
    case iGPUImage::eBGR8:
        threes("bgr", false, false);
        break;
    case iGPUImage::eYUV8:
        threes("rgb", true, false);
        break;
    case iGPUImage::eYUV16:
        threes("rgb", true, true);
        break;
    case iGPUImage::eUYVY:
        pairs("ga", "br");
        break;
    case iGPUImage::eYUY2:
        pairs("br", "ga");
        break;
    case iGPUImage::eYVYU:
        pairs("br", "ag");
        break;
    case iGPUImage::eVYUY:
        pairs("ga", "rb");
        break;
    case iGPUImage::eARGB8:
    case iGPUImage::eRGB32:
    case iGPUImage::eARGB16:
    case iGPUImage::eARGB2101010:
        break;
    }
    program.isOpaque = program.layout != ImageProgram::eWords || format == iGPUImage::eRGB32;
    return program;
}

XY<int> sizeOfTexture(GLuint texture)
{
    GLint width = 0, height = 0;
    glBindTexture(GL_TEXTURE_2D, texture);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &height);
    glBindTexture(GL_TEXTURE_2D, 0);
    return {width, height};
}

} // namespace

ImageSource ImageSource::of(const iImageBase* image)
{
    ImageSource source;
    const auto* texture = dynamic_cast<const iOpenGLTexture*>(image);
    if (!texture || texture->getTextureID() == 0)
        return source;
    if (const auto* gpuImage = dynamic_cast<const iGPUImage*>(image))
        source.program = programOf(gpuImage->getFormat());
    const auto* glImage = dynamic_cast<const iOpenGLImage*>(image);
    source.endsAtEdges = glImage != nullptr;
    const auto* sized = dynamic_cast<const iImage*>(image);
    source.texels = glImage ? glImage->getPhysicalSize() : sizeOfTexture(texture->getTextureID());
    const XY<int> logical = sized ? sized->getSize() : source.texels;
    if (source.texels.x < 1 || source.texels.y < 1 || logical.x < 1 || logical.y < 1)
        return source;
    source.texture = texture->getTextureID();
    if (source.program.layout != ImageProgram::eWords) {
        source.size = logical;
        return source;
    }
    source.size = source.texels;
    source.scaleX = static_cast<float>(source.texels.x) / static_cast<float>(logical.x);
    source.scaleY = static_cast<float>(source.texels.y) / static_cast<float>(logical.y);
    source.perPixelX = 1.0f / static_cast<float>(source.texels.x);
    source.perPixelY = 1.0f / static_cast<float>(source.texels.y);
    return source;
}

ImageSource ImageSource::of(const UploadedPart& part)
{
    ImageSource source;
    source.texture = part.texture;
    source.endsAtEdges = true;
    source.size = source.texels = part.part.size();
    source.perPixelX = 1.0f / static_cast<float>(source.size.x);
    source.perPixelY = 1.0f / static_cast<float>(source.size.y);
    source.program.isOpaque = part.isOpaque;
    source.program.isStraight = part.isStraight;
    return source;
}

TextureInUse::TextureInUse(GLuint texture, bool nearest) : nearest_(nearest)
{
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture);
    if (nearest_) {
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    }
}

TextureInUse::~TextureInUse()
{
    if (nearest_) {
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    }
    glBindTexture(GL_TEXTURE_2D, 0);
}

} // namespace GLDrawing
