#include "OS/Mac/OpenGL/Text/TextImageCache.h"

#include "OS/Mac/Painting/QtFont.h"

#include <gtest/gtest.h>

#include <string>

namespace {

Tq::Ptr<iFont> someFont()
{
    return QtFont::make(L"Tahoma", 13, 0, 0);
}

TextDescription textOf(const std::wstring& text, const Tq::Ptr<iFont>& font)
{
    return {text.c_str(), XY<int>(0, 0), NormalisedRGB(1, 1, 1), eTextDefault, font};
}

// A picture younger than any made before.
CachedGPUImage laterImage()
{
    const double before = CachedGPUImage(nullptr, 1.0).getTime();
    for (;;) {
        CachedGPUImage image(nullptr, 1.0);
        if (image.getTime() > before)
            return image;
    }
}

// Counts down, so that the one made first is the last in order.
std::wstring numbered(int i)
{
    return L"text " + std::to_wstring(900 - i);
}

} // namespace

TEST(TextImageCache, TheTwentySixthTakesThePlaceOfTheOneMadeFirst)
{
    TextImageCache cache;
    const Tq::Ptr<iFont> font = someFont();
    for (int i = 0; i < 25; ++i)
        cache.insert(textOf(numbered(i), font), laterImage());
    EXPECT_EQ(cache.size(), 25u);
    EXPECT_TRUE(cache.find(font.get(), numbered(0).c_str())) << "drawn a moment ago, too";
    for (int i = 25; i < 30; ++i) {
        cache.insert(textOf(numbered(i), font), laterImage());
        EXPECT_EQ(cache.size(), 25u);
        EXPECT_FALSE(cache.find(font.get(), numbered(i - 25).c_str())) << i;
        EXPECT_TRUE(cache.find(font.get(), numbered(i - 24).c_str())) << i;
    }
}

TEST(TextImageCache, OfOneTimeTheFirstInOrderGoes)
{
    TextImageCache cache;
    const Tq::Ptr<iFont> font = someFont();
    const CachedGPUImage image(nullptr, 1.0);
    for (int i = 0; i < 26; ++i)
        cache.insert(textOf(numbered(i), font), image);
    EXPECT_FALSE(cache.find(font.get(), numbered(25).c_str()));
    EXPECT_TRUE(cache.find(font.get(), numbered(0).c_str()));
}

TEST(TextImageCache, AnEqualKeyStaysWithItsPictureAndTime)
{
    TextImageCache cache;
    const Tq::Ptr<iFont> font = someFont(), other = someFont();
    const CachedGPUImage first(nullptr, 1.0), second = laterImage();
    cache.insert(textOf(L"one", font), first);
    TextDescription styled = textOf(L"one", font);
    styled.pos_ = {40, 50};
    styled.colour_ = {1, 0, 0};
    styled.textStyle_ = TextDescription::eHalo;
    cache.insert(styled, second);
    EXPECT_EQ(cache.size(), 1u) << "nothing but font and text counts";
    EXPECT_EQ(cache.find(font.get(), L"one")->getTime(), first.getTime());
    cache.insert(textOf(L"one", other), second);
    cache.insert(textOf(L"One", font), second);
    EXPECT_EQ(cache.size(), 3u);
    EXPECT_EQ(cache.find(other.get(), L"one")->getTime(), second.getTime());
    EXPECT_FALSE(cache.find(other.get(), L"One"));
    EXPECT_FALSE(cache.find(nullptr, L"one"));
}

TEST(TextImageCache, HoldsTheFontsOfItsTexts)
{
    TextImageCache cache;
    Tq::Ptr<iFont> font = someFont();
    cache.insert(textOf(L"one", font), laterImage());
    EXPECT_EQ(font.useCount(), 2) << "its address must not become another font's";
    cache.clear();
    EXPECT_EQ(font.useCount(), 1);
}
