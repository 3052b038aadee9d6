#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Painting/iFont.h>
#include <OS/Primitives/NormalisedRGB.h>
#include <OS/Primitives/TextAlignment.h>
#include <OS/Primitives/iGraphicPrimitive.h>

#include <cstdint>

/// A run of text in one font and colour. A null font or an empty text draws nothing.
class OS_API TextDescription : public iGraphicPrimitive
{
public:
    enum eTextStyle : std::int32_t
    {
        ePlain = 0,
        eHalo = 2,     ///< one pixel of backColour_ around each character
        eUnderline = 3 ///< other values are plain
    };

    /// Plain text on no band: backColour_ is opaque black, the style and the highlight are 0.
    TextDescription(const LightweightString<wchar_t>& text, const XY<int>& pos,
                    const NormalisedRGB& colour, TextAlignment alignment,
                    const Tq::Ptr<iFont>& font)
        : text_(text), pos_(pos), colour_(colour), font_(font), alignment_(alignment)
    {
    }

    /// All zero without a font; else the measured width and the font's heights around the baseline.
    Tq::Rectangle<int> getBounds() const override;

    LightweightString<wchar_t> text_;
    XY<int> pos_; ///< left edge of the first character, baseline
    NormalisedRGB colour_;
    NormalisedRGB backColour_; ///< the highlight band and the halo
    Tq::Ptr<iFont> font_;
    TextAlignment alignment_;
    std::int32_t textStyle_ = ePlain;
    std::int32_t highlightStart_ = 0; ///< a character index; either may be the smaller
    std::int32_t highlightEnd_ = 0;   ///< when the two differ, the characters between lie on a band
};
