#pragma once

#include <OS/Primitives/TextDescription.h>

#include <functional>

/// What is looked for in the text-image cache, without a description: nothing is copied.
struct TextToFind
{
    const iFont* font;
    const LightweightString<wchar_t>& text;
};

/// Orders texts by their font's address, then by what they say, and by nothing else: one picture
/// serves every colour and place.
struct TextDescCompare
{
    using is_transparent = void;

    bool operator()(const TextDescription& a, const TextDescription& b) const
    {
        return isLess(a.font_.get(), a.text_, b.font_.get(), b.text_);
    }
    bool operator()(const TextDescription& a, const TextToFind& b) const
    {
        return isLess(a.font_.get(), a.text_, b.font, b.text);
    }
    bool operator()(const TextToFind& a, const TextDescription& b) const
    {
        return isLess(a.font, a.text, b.font_.get(), b.text_);
    }

private:
    using Text = LightweightString<wchar_t>;
    static bool isLess(const iFont* fontA, const Text& a, const iFont* fontB, const Text& b)
    {
        return fontA == fontB ? a < b : std::less<>()(fontA, fontB);
    }
};
