#include "OS/Mac/OpenGL/Text/OpenGLFont.h"

#include "OS/Mac/Application/QtApplication.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/Painting/QtFont.h"
#include "OS/Mac/Painting/QtGraphicPrimitivesRenderer.h"
#include "OS/Mac/Painting/QtImage.h"

#include <algorithm>
#include <cmath>

Tq::Ptr<iFont> OpenGLFont::make(const LightweightString<wchar_t>& name, unsigned int size,
                                unsigned int weight, unsigned int flags)
{
    const Tq::Ptr<QtFont> host = QtFont::make(name, size, weight, flags).dynamicCast<QtFont>();
    return host ? Tq::Ptr<iFont>(new OpenGLFont(host)) : nullptr;
}

OpenGLFont::OpenGLFont(const LightweightString<wchar_t>& name, unsigned int size,
                       unsigned int weight, unsigned int flags)
    : OpenGLFont(Tq::Ptr<QtFont>(new QtFont(name, size, weight, flags)))
{
}

OpenGLFont::OpenGLFont(const Tq::Ptr<QtFont>& host) : OpenGLFontBase(host), host_(host) {}

Tq::Ptr<iHostImage> OpenGLFont::renderHostText(const TextDescription& desc)
{
    // The toolkit's fonts are not to be used by two threads at a time: this one is the caller's.
    const Tq::Ptr<QtFont> font = host_->copyForThread();
    const XY<int> size = font->measure(desc.text_);
    if (size.x == 0 && size.y == 0)
        return {};
    const int baseline = baselineAt(ratio());
    const int most = std::max(OpenGLUtils::getMaxTextureSize().x, 1024);
    const auto pixels = [&](int length) {
        return static_cast<int>(std::min(std::ceil(length * ratio()), double(most)));
    };
    const auto begun = [&](int length) { return static_cast<int>(std::ceil(length / ratio())); };
    const XY<int> whole(pixels(size.x), pixels(size.y - ascent() + baseline));
    const Tq::Ptr<QtImage> image = new QtImage(whole, QtImage::getDefaultFormat(), 1);
    if (image->image())
        image->image()->setDevicePixelRatio(ratio());
    {
        QtGraphicPrimitivesRenderer renderer(image->image(), 1);
        renderer.setAntialiasingEnabled(true);
        RectDescription ground;
        ground.rect_ = {0, 0, begun(whole.x), begun(whole.y)};
        ground.topColour_ = ground.bottomColour_ = NormalisedRGB(0, 0, 0);
        renderer.render(ground);
        TextDescription text = desc;
        text.font_ = font;
        text.pos_.y += baseline - ascent();
        renderer.render(text);
    }
    if (image->image())
        image->image()->setDevicePixelRatio(1.0);
    return image;
}
