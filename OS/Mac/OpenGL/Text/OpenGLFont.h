#pragma once

#include "OS/Mac/OpenGL/Text/OpenGLFontBase.h"

class QtFont;

/// OpenGLFontBase on the toolkit's font.
class OpenGLFont final : public OpenGLFontBase
{
public:
    /// A font; makes the Qt application object where there is none.
    /// @param size, weight, flags as QtFont::make takes them
    /// @return null, after QtFont's line, where fonts cannot be had
    static Tq::Ptr<iFont> make(const LightweightString<wchar_t>& name, unsigned int size,
                               unsigned int weight, unsigned int flags);

    /// As make, where the Qt application object is known to exist.
    OpenGLFont(const LightweightString<wchar_t>& name, unsigned int size, unsigned int weight,
               unsigned int flags);

    /// At other ratios than 1 the image has that many pixels for each of the description. A text
    /// that is larger than a texture may be loses its end.
    Tq::Ptr<iHostImage> renderHostText(const TextDescription& desc) override;

private:
    explicit OpenGLFont(const Tq::Ptr<QtFont>& host);

    Tq::Ptr<QtFont> host_;
};
