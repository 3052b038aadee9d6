// What OpenGLUtils does with textures: limits, the black texture, reading back, letting go.
#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLSharedContext.h"
#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRenderer.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"
#include "OS/Mac/OpenGL/Images/OpenGLTextureCache.h"
#include "OS/Mac/OpenGL/Text/OpenGLFontBase.h"
#include "OS/Mac/Painting/QtImage.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Files/iShell.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>
#include <OS/Threads/CriticalSectionLock.h>

namespace {

XY<int> boundTextureSize()
{
    GLint width = 0, height = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &height);
    return {width, height};
}

// A host image has four bytes a pixel: wider components are narrowed on the way.
GLenum typeInHostImage(unsigned int glType)
{
    return glType == GL_UNSIGNED_SHORT ? GL_UNSIGNED_BYTE : glType;
}

} // namespace

bool OpenGLUtils::isTextureSizePossible(const XY<int>& size)
{
    return size.x <= maxTextureDimensions_.x && size.y != 0 && size.x != 0 &&
           size.y <= maxTextureDimensions_.y;
}

XY<int> OpenGLUtils::getTextureDimensions(unsigned int textureId)
{
    const OpenGLContextProtector protector;
    if (!OpenGLContextProtector::hasContext())
        return {};
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, textureId);
    const XY<int> size = boundTextureSize();
    glBindTexture(GL_TEXTURE_2D, 0);
    return size;
}

void OpenGLUtils::createBlackTexture()
{
    Tq::Ptr<OpenGLImage> image(new OpenGLImage({256, 256}, iGPUImage::eARGB8));
    const Tq::Ptr<iGraphicPrimitivesRenderer> renderer = image->getPrimitivesRenderer(true);
    if (!renderer) {
        OSInternal::printTimed(OS()->utils()->elapsedTime(),
                               "OpenGLUtils::createBlackTexture() failed\n");
        return;
    }
    RectDescription black;
    black.rect_ = {0, 0, 256, 256};
    renderer->render(black);
    blackTexture_ = image;
}

Tq::Ptr<OpenGLImage> OpenGLUtils::getBlackTexture()
{
    const CriticalSectionLock lock(threadSafety_);
    if (!blackTexture_ && isInitialised())
        createBlackTexture();
    return blackTexture_;
}

Tq::Ptr<iShaderEffect> OpenGLUtils::getTextEffectsShader()
{
    if (!textEffectsAsked_) {
        textEffectsAsked_ = true;
        textEffectsShader_ = OS()->mediaServices()->createShaderEffect(
            OS()->shell()->getFolderLocation(iShell::eResources) + L"Shaders/TextEffects.fx");
    }
    return textEffectsShader_;
}

Tq::Ptr<iHostImage> OpenGLUtils::copyToHost(const Tq::Ptr<OpenGLImage>& image)
{
    if (!image || image->getTextureID() == 0)
        return {};
    const TextureDetails details =
        OpenGLImage::getStorageDetails(image->getSize(), image->getFormat());
    return copyToHost(image->getTextureID(), details.physicalSize, details.glType);
}

Tq::Ptr<iHostImage> OpenGLUtils::copyToHost(unsigned int textureId, const XY<int>& size,
                                            unsigned int glType)
{
    const Tq::Ptr<QtImage> host(new QtImage(size, QtImage::getDefaultFormat(), 1));
    const Tq::Ptr<iPixelGuard> pixels = host->lock();
    const OpenGLContextProtector protector;
    if (!pixels || !OpenGLContextProtector::hasContext())
        return {};
    glBindTexture(GL_TEXTURE_2D, textureId);
    const bool fits = boundTextureSize() == size;
    if (fits)
        glGetTexImage(GL_TEXTURE_2D, 0, GL_BGRA, typeInHostImage(glType), pixels->getPixels());
    glBindTexture(GL_TEXTURE_2D, 0);
    if (!fits) {
        OSInternal::printLine("OpenGLUtils::copyToHost() : the texture has another size\n");
        return {};
    }
    return host;
}

void OpenGLUtils::clearCaches()
{
    if (!isInitialised())
        return;
    {
        const OpenGLContextProtector protector;
        OpenGLFontBase::shutdown();
        if (OpenGLContextProtector::hasContext())
            OpenGLGraphicPrimitivesRenderer::clearCaches();
    }
    OpenGLTextureCache::instance().clear(); // texts have left their textures to it
}

void OpenGLUtils::releaseTextures()
{
    const OpenGLContextProtector protector(getSharedContext());
    blackTexture_.reset();
    textEffectsShader_.reset();
    textEffectsAsked_ = false;
    OpenGLTextureCache::instance().clear();
    OpenGLFontBase::shutdown();
    OpenGLTextureCache::instance().clear(); // texts have left their textures to it
    OpenGLGraphicPrimitivesRenderer::shutdown();
}
