// The operations of MediaServices that are about images on the GPU.
#include "OS/Mac/Media/MediaServices.h"

#include "OS/Host/Screen/ScreenGrabber.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Images/GPUReadySurface.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"
#include "OS/Mac/OpenGL/Text/OpenGLFont.h"

namespace {

// Starts GL where that has not happened; says why where it cannot be.
bool canUseGPU()
{
    OpenGLUtils::instance();
    return OpenGLUtils::isInitialised();
}

} // namespace

Tq::Ptr<iGPUImage> MediaServices::createGPUSurface(const XY<int>& size, iGPUImage::eFormat format)
{
    if (!canUseGPU())
        return {};
    return OpenGLImage::create(size, format);
}

Tq::Ptr<iHostImage> MediaServices::createGPUReadySurface(const XY<int>& size,
                                                         iGPUImage::eFormat format)
{
    return GPUReadySurface::create(size, format);
}

Tq::Ptr<iFont> MediaServices::createGPUSurfaceFont(const LightweightString<wchar_t>& name,
                                                   unsigned int size, unsigned int flags)
{
    return OpenGLFont::make(name, size, 0, flags);
}

Tq::Ptr<iHostImage> MediaServices::copyToHost(const Tq::Ptr<iGPUImage>& image)
{
    if (!canUseGPU())
        return {};
    return OpenGLUtils::instance().copyToHost(image.dynamicCast<OpenGLImage>());
}

Tq::Ptr<iGPUImage> MediaServices::copyToGPU(const Tq::Ptr<iHostImage>& image,
                                            iGPUImage::eFormat format)
{
    if (!image || !canUseGPU())
        return {};
    const Tq::Ptr<OpenGLImage> copy(new OpenGLImage(image, format));
    if (copy->getTextureID() == 0)
        return {};
    return copy;
}

Tq::Ptr<iCriticalSection> MediaServices::getGPULock()
{
    if (!canUseGPU())
        return {};
    return OpenGLUtils::instance().getLock();
}

void MediaServices::resetGPUContext()
{
    OpenGLUtils::resetContext();
}

void MediaServices::clearCaches()
{
    OpenGLUtils::clearCaches();
    screenGrabber().clear();
}

Tq::Ptr<iGPUImage3D> MediaServices::createGPUImage3D(const Tq::Ptr<iHostImage3D>&)
{
    return {};
}

Tq::Ptr<iHostImage3D> MediaServices::copyToHost(const Tq::Ptr<iGPUImage3D>&)
{
    return {};
}
