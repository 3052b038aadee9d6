#pragma once

#include <OS/Media/iMediaServices.h>

namespace Host {
class ScreenGrabber;
}

/// iMediaServices: still pictures through QtImage, the toolkit's writers and TiffWriter; images on
/// the GPU through OpenGLImage.
class MediaServices final : public iMediaServices
{
public:
    void getLoadableImageTypes(std::vector<ImageType>& types) override;
    void getSavableImageTypes(std::vector<ImageType>& types) override;

    Tq::Ptr<iHostImage> loadImage(const LightweightString<wchar_t>& path) override;
    Tq::Ptr<iHostImage> loadImage(const iDLL::Resource& resource) override;
    Tq::Ptr<iHostImage> loadThumbnail(const LightweightString<wchar_t>& path,
                                      unsigned int size) override;
    bool saveImage(const Tq::Ptr<iHostImage>& image,
                   const LightweightString<wchar_t>& path) override;

    Tq::Ptr<iHostImage> createHostSurface(const XY<int>& size) override;
    Tq::Ptr<iFont> createHostSurfaceFont(const LightweightString<wchar_t>& name, unsigned int size,
                                         unsigned int flags) override;

    Tq::Ptr<iGPUImage> createGPUSurface(const XY<int>& size, iGPUImage::eFormat format) override;
    Tq::Ptr<iHostImage> createGPUReadySurface(const XY<int>& size,
                                              iGPUImage::eFormat format) override;
    Tq::Ptr<iHostImage> copyToHost(const Tq::Ptr<iGPUImage>& image) override;
    Tq::Ptr<iGPUImage> copyToGPU(const Tq::Ptr<iHostImage>& image,
                                 iGPUImage::eFormat format) override;
    Tq::Ptr<iCriticalSection> getGPULock() override;
    void resetGPUContext() override;
    void clearCaches() override;
    Tq::Ptr<iGPUImage3D> createGPUImage3D(const Tq::Ptr<iHostImage3D>& image) override;
    Tq::Ptr<iHostImage3D> copyToHost(const Tq::Ptr<iGPUImage3D>& image) override;
    Tq::Ptr<iHostImage> grabScreen(XY<int> size) override;
    Tq::Ptr<iObject> beginScreenCapture(LightweightString<wchar_t>& path,
                                        const LightweightString<char>& options) override;
    void endScreenCapture() override;
    Tq::Ptr<iAudioBuffer> createAudioBuffer(unsigned int size) override;
    unsigned int getNumAudioOutputChannels() override;

    Tq::Ptr<iShaderEffect> createShaderEffect(const LightweightString<wchar_t>& path) override;
    Tq::Ptr<iFXFile> compileFXFile(const LightweightString<wchar_t>& path) override;
    Tq::Ptr<i3DEffect> create3DEffect() override;
    Tq::Ptr<iFont> createGPUSurfaceFont(const LightweightString<wchar_t>& name, unsigned int size,
                                        unsigned int flags) override;

    Tq::Ptr<iGPUComputeContext> createGPUComputeContext(iGPUComputeContext::eType type) override;
    void getGPUComputeDevices(std::vector<GPUComputeDevice>& devices) override;

private:
    static Host::ScreenGrabber& screenGrabber();
};
