#pragma once

#include <OS/Media/iMediaServices.h>

/// iMediaServices: still pictures through QtImage, the toolkit's writers and TiffWriter.
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
};
