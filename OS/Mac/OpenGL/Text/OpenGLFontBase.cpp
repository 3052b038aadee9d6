#include "OS/Mac/OpenGL/Text/OpenGLFontBase.h"

#include "OS/Mac/OpenGL/Text/TextImageCache.h"
#include "OS/Mac/Painting/QtFont.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <cmath>

namespace {

// How many pixels of descriptions are a whole number of the target's; 1 where no small number is.
int periodOf(double ratio)
{
    for (int period = 1; period <= 20; ++period)
        if (std::abs(period * ratio - std::round(period * ratio)) < 1e-6)
            return period;
    return 1;
}

} // namespace

OpenGLFontBase::OpenGLFontBase(const Tq::Ptr<iFont>& host)
    : host_(host), metrics_(host->getMetrics())
{
}

TextImageCache& OpenGLFontBase::cache()
{
    static auto* const cache = new TextImageCache;
    return *cache;
}

void OpenGLFontBase::shutdown()
{
    cache().clear();
}

int OpenGLFontBase::baselineAt(double ratio) const
{
    const int period = periodOf(ratio);
    return (ascent() + period - 1) / period * period;
}

Tq::Ptr<iFont> OpenGLFontBase::hostFontForThread() const
{
    if (const auto* font = dynamic_cast<const QtFont*>(host_.get()))
        return font->copyForThread();
    return host_;
}

TextDescription OpenGLFontBase::keyOf(const TextDescription& desc)
{
    return {desc.text_, XY<int>(0, ascent()), NormalisedRGB(1, 1, 1), eTextDefault,
            Tq::Ptr<iFont>(this)};
}

Tq::Ptr<iGPUImage> OpenGLFontBase::renderText(const TextDescription& desc, double ratio)
{
    CachedGPUImage* const cached = cache().find(this, desc.text_);
    if (cached && cached->getRatio() == ratio)
        return cached->getImage();
    ratio_ = ratio;
    const TextDescription key = keyOf(desc);
    const Tq::Ptr<iHostImage> host = renderHostText(key);
    if (!host)
        return {};
    return copyToGPU(key, host);
}

Tq::Ptr<iGPUImage> OpenGLFontBase::copyToGPU(const TextDescription& key,
                                             const Tq::Ptr<iHostImage>& host)
{
    const Tq::Ptr<iGPUImage> image = OS()->mediaServices()->copyToGPU(host, iGPUImage::eARGB8);
    CachedGPUImage* const cached = cache().find(key.font_.get(), key.text_);
    if (!cached)
        cache().insert(key, CachedGPUImage(image, ratio_));
    else if (cached->getRatio() != ratio_)
        cached->replace(image, ratio_);
    return image;
}
