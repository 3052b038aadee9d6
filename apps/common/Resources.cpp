#include "common/Resources.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <algorithm>
#include <cmath>

namespace App {

Tq::Ptr<iFont> Resources::font(const Theme::Type& type)
{
    Tq::Ptr<iFont>& font = fonts_[type];
    if (!font) {
        const auto size = static_cast<unsigned int>(std::max(1L, std::lround(type.size * scale_)));
        const unsigned int flags = (type.bold ? iFont::eBold : iFont::ePlain) |
                                   (type.fixedPitch ? iFont::eFixedPitch : iFont::ePlain);
        const Text name = type.fixedPitch ? L"DejaVu Sans Mono" : L"DejaVu Sans";
        if (window_)
            font = window_->createFont(name, size, 0, flags);
        else if (onGPU_)
            font = OS()->mediaServices()->createGPUSurfaceFont(name, size, flags);
        if (!font)
            font = OS()->mediaServices()->createHostSurfaceFont(name, size, flags);
    }
    return font;
}

int Resources::scaled(int length) const
{
    return static_cast<int>(std::lround(length * scale_));
}

Tq::Rectangle<int> Resources::scaled(const Tq::Rectangle<int>& rect) const
{
    return {scaled(rect.left), scaled(rect.top), scaled(rect.right), scaled(rect.bottom)};
}

Tq::Ptr<iHostImage> Resources::blank(const Tq::Rectangle<int>& rect) const
{
    const Tq::Rectangle<int> target = scaled(rect);
    if (target.left >= target.right || target.top >= target.bottom)
        return nullptr;
    if (window_)
        return window_->createCompatibleImage(target.size());
    return OS()->mediaServices()->createHostSurface(target.size());
}

} // namespace App
