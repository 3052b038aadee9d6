#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/iObject.h>
#include <OS/Primitives/XY.h>

#include <cstdint>
#include <vector>

/// A typeface at one size, for measuring and drawing. All measures are logical pixels.
///
/// Made by iWindowManager::createFont, iRootWindow::createFont or
/// iMediaServices::createHostSurfaceFont, for windows and host surfaces; for the GPU's images and
/// back buffers by iMediaServices::createGPUSurfaceFont. Each draws on its own kind only.
/// Immutable; use it on the thread that draws.
class OS_API iFont : public iObject
{
public:
    /// Style bits; they add up.
    enum eStyle : std::uint32_t
    {
        ePlain = 0,
        eBold = 1,
        eItalic = 2,
        eUnderlined = 4,
        eFixedPitch = 8
    };

    /// Which boundary between characters locateCharacter looks for.
    enum eCharSeekMethod : int
    {
        eSeekNearest = 0, ///< the one nearest to the pixel: where a click puts the caret
        eSeekBefore = 1,  ///< the last one at or left of the pixel
        eSeekAfter = 2    ///< the first one at or right of the pixel
    };

    /// What getCharacterUnderPixel answers to the right of the text.
    static constexpr std::uint32_t kNoCharacter = 0xFFFFFFFF;

    /// Ascent in the upper 16 bits, descent in the lower.
    virtual std::uint32_t getMetrics() const = 0;
    /// The style bits the font was made with.
    virtual std::uint32_t getStyle() const = 0;
    /// Advance width and line height of a text; an empty one is (0, 0).
    virtual XY<int> measure(const LightweightString<wchar_t>& text) const = 0;
    /// As above; `positions` becomes the x of every boundary between characters: size() + 1 values,
    /// from 0 to the width. An empty text gives one 0.
    virtual XY<int> measure(const LightweightString<wchar_t>& text,
                            std::vector<int>& positions) const = 0;
    /// The index of the boundary near a pixel, from 0 (before the first character) to the text's
    /// length.
    virtual std::uint32_t locateCharacter(const LightweightString<wchar_t>& text,
                                          eCharSeekMethod method, std::uint32_t pixel) const = 0;
    /// The index of the character whose cell holds the pixel, or kNoCharacter behind the last one.
    virtual std::uint32_t getCharacterUnderPixel(const LightweightString<wchar_t>& text,
                                                 std::uint32_t pixel) const = 0;
};
