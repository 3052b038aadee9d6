// What the GL renderer does with texts: an effect that only notes what it is asked to draw stands
// in for the one that draws them.
#include "OpenGL/DrawingRig.h"
#include "OpenGL/GLCalls.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Drawing/DrawingResources.h"
#include "OS/Mac/OpenGL/Text/OpenGLFont.h"
#include "OS/Mac/OpenGL/Text/TextImageCache.h"
#include "OS/Mac/Painting/QtFont.h"
#include "OS/Mac/Painting/QtRegion.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Renderer = OpenGLGraphicPrimitivesRenderer;
using GLDrawing::DrawingResources;

class NotingEffect final : public iShaderEffectBase
{
public:
    using Name = LightweightString<char>;
    struct Quad
    {
        int left, top, right, bottom;
        friend bool operator==(const Quad&, const Quad&) = default;
    };
    struct Noted
    {
        NormalisedRGB colour;
        unsigned int texture;
        std::vector<Quad> quads;
        std::vector<Corner> corners;
    };

    bool setTechnique(const Name&) override { return false; }
    bool setTechnique(unsigned int) override { return false; }
    bool hasTechnique(const Name&) override { return true; }
    bool setFloat(const Name&, float) override { return false; }
    bool setInt(const Name&, int) override { return false; }
    bool setColour(const Name& name, const NormalisedRGB& value) override
    {
        EXPECT_EQ(name, "FaceColour1");
        colour_ = value;
        return true;
    }
    bool draw(const Drawing& drawing) override
    {
        EXPECT_EQ(drawing.technique_, "ClearTypeBlend");
        EXPECT_EQ(drawing.pictures_.size(), 1u);
        EXPECT_TRUE(drawing.blend_);
        Noted one{colour_, drawing.pictures_[0].textureID_, {}, drawing.corners_};
        for (std::size_t i = 0; i + 3 < drawing.corners_.size(); i += 4) {
            const Corner &first = drawing.corners_[i], &last = drawing.corners_[i + 2];
            one.quads.push_back({int(first.x_), int(first.y_), int(last.x_), int(last.y_)});
        }
        noted.push_back(one);
        return true;
    }

    std::vector<Noted> noted;

private:
    NormalisedRGB colour_;
};

const NormalisedRGB kWhite(1, 1, 1), kRed(1, 0, 0), kBlue(0, 0, 1);

class GLText : public testing::Test
{
protected:
    GLText()
    {
        OpenGLUtils::instance();
        const OpenGLContextProtector protector;
        OpenGLFontBase::cache().clear();
        DrawingResources& resources = DrawingResources::instance();
        before_ = resources.textEffects;
        hadAsked_ = resources.hasAskedForTextEffects;
        resources.textEffects = effect_;
        resources.hasAskedForTextEffects = true;
    }
    ~GLText() override
    {
        const OpenGLContextProtector protector;
        OpenGLFontBase::cache().clear();
        DrawingResources::instance().textEffects = before_;
        DrawingResources::instance().hasAskedForTextEffects = hadAsked_;
    }

    // @return what the effect was asked for; pixels are in drawn_
    const std::vector<NotingEffect::Noted>& draw(const DrawingRig::Code& code, double ratio = 1.0)
    {
        effect_->noted.clear();
        drawn_ = DrawingRig(300, 100, ratio).withGL(code);
        return effect_->noted;
    }
    const std::vector<NotingEffect::Noted>& draw(const std::vector<TextDescription>& descs)
    {
        return draw([&](iGraphicPrimitivesRenderer& r) {
            r.renderMulti(descs.data(), static_cast<unsigned int>(descs.size()));
        });
    }

    Tq::Ptr<OpenGLFont> font_ = OpenGLFont::make(L"Tahoma", 13, 0, 0).dynamicCast<OpenGLFont>();
    const Tq::Ptr<NotingEffect> effect_ = new NotingEffect;
    QImage drawn_;

private:
    Tq::Ptr<iShaderEffectBase> before_;
    bool hadAsked_;
};

} // namespace

TEST_F(GLText, StandsWhereItsAlignmentSays)
{
    const wchar_t* const text = L"Aligned";
    const XY<int> size = font_->measure(text);
    const int ascent = font_->ascent();
    const auto quad = [&](int left, int top) {
        return NotingEffect::Quad{left, top, left + size.x, top + size.y};
    };
    struct Case
    {
        TextAlignment alignment;
        NotingEffect::Quad expected;
    };
    const int centred = int(std::floor(150 - size.x * 0.5 + 0.5));
    const Case cases[] = {
        {eTextDefault, quad(150, 50 - ascent)},
        {eTextLeft | eTextTop, quad(150, 50)},
        {eTextRight | eTextBaseline, quad(150 - size.x, 50 - ascent)},
        {eTextRight | eTextTop, quad(150 - size.x, 50)},
        {eTextCentre | eTextBaseline, quad(centred, 50 - ascent)},
        {eTextCentre | eTextTop, quad(centred, 50)},
        {static_cast<TextAlignment>(0x27), quad(150, 50)}, // others: left, top
    };
    for (const Case& c : cases) {
        const auto& noted = draw({TextDescription(text, {150, 50}, kRed, c.alignment, font_)});
        ASSERT_EQ(noted.size(), 1u) << c.alignment;
        EXPECT_EQ(noted[0].quads, std::vector{c.expected}) << c.alignment;
        EXPECT_EQ(noted[0].colour, kRed);
        EXPECT_EQ(noted[0].corners[0].s_, 0.0f);
        EXPECT_EQ(noted[0].corners[2].t_, 1.0f);
    }
}

TEST_F(GLText, LiesOnWholePixelsOfTheTargetAtEveryRatio)
{
    const wchar_t* const text = L"Whole";
    const XY<int> size = font_->measure(text);
    for (const double ratio : {1.25, 1.5, 2.0}) {
        const auto& noted = draw(
            [&](auto& r) {
                r.render(TextDescription(text, {21, 41}, kRed, eTextDefault, font_));
            },
            ratio);
        ASSERT_EQ(noted.size(), 1u);
        const NotingEffect::Quad& quad = noted[0].quads.at(0);
        EXPECT_EQ(quad.left, int(std::floor(21 * ratio + 0.5)));
        EXPECT_EQ(quad.right - quad.left, int(std::ceil(size.x * ratio)));
        EXPECT_EQ(quad.top, int(std::floor(41 * ratio + 0.5)) -
                                int(std::lround(font_->baselineAt(ratio) * ratio)));
    }
}

TEST_F(GLText, IsDrawnAsFewRunsAsItsOverlapsAllow)
{
    const auto text = [&](const wchar_t* words, XY<int> place, const NormalisedRGB& colour) {
        return TextDescription(words, place, colour, eTextDefault, font_);
    };
    // Apart, or of one colour: two pictures are two runs.
    EXPECT_EQ(draw({text(L"one", {0, 20}, kRed), text(L"two", {0, 20}, kRed),
                    text(L"one", {0, 60}, kRed), text(L"two", {10, 20}, kRed)})
                  .size(),
              2u);
    EXPECT_EQ(draw({text(L"one", {0, 20}, kRed), text(L"two", {100, 20}, kBlue),
                    text(L"one", {200, 20}, kRed)})
                  .size(),
              2u);
    // In two colours over each other: as they come.
    const auto& noted = draw(
        {text(L"one", {0, 20}, kRed), text(L"one", {5, 20}, kBlue), text(L"one", {10, 20}, kRed)});
    ASSERT_EQ(noted.size(), 3u);
    EXPECT_EQ(noted[1].colour, kBlue);
    EXPECT_EQ(noted[2].quads[0].left, 10);
    EXPECT_EQ(OpenGLFontBase::cache().size(), 2u) << "one picture for every colour";
}

TEST_F(GLText, IsDrawnOnceInMainMemory)
{
    draw({TextDescription(L"once", {5, 20}, kRed, eTextDefault, font_)});
    const int uploads = GLCalls::uploads() + GLCalls::texturesSpecified();
    const auto before = OpenGLFontBase::cache().find(font_.get(), L"once")->getImage();
    draw({TextDescription(L"once", {50, 60}, kBlue, eTextDefault, font_)});
    EXPECT_EQ(OpenGLFontBase::cache().find(font_.get(), L"once")->getImage(), before);
    EXPECT_EQ(GLCalls::uploads() + GLCalls::texturesSpecified(), uploads + 1)
        << "the test's own target";
}

TEST_F(GLText, OfOtherFontsIsPassedOver)
{
    const auto& noted = draw(
        {TextDescription(L"host", {5, 20}, kRed, eTextDefault, QtFont::make(L"Tahoma", 13, 0, 0)),
         TextDescription(L"none", {5, 20}, kRed, eTextDefault, nullptr),
         TextDescription(L"", {5, 20}, kRed, eTextDefault, font_),
         TextDescription(L"this", {5, 20}, kRed, eTextDefault, font_)});
    EXPECT_EQ(noted.size(), 1u);
    EXPECT_EQ(OpenGLFontBase::cache().size(), 1u);
}

TEST_F(GLText, WithoutTheEffectIsNotDrawnAndEverythingElseIs)
{
    DrawingResources::instance().textEffects = nullptr;
    TextDescription styled(L"gone", {5, 20}, kRed, eTextDefault, font_);
    styled.highlightEnd_ = 4;
    RectDescription rect;
    rect.rect_ = {0, 40, 10, 50};
    rect.topColour_ = rect.bottomColour_ = kRed;
    draw([&](auto& r) {
        r.render(styled);
        r.render(rect);
    });
    EXPECT_EQ(drawn_.pixel(8, 18), DrawingRig::kGround);
    EXPECT_EQ(drawn_.pixel(5, 45), 0xFFFF0000u);
    EXPECT_EQ(OpenGLFontBase::cache().size(), 0u);
}

TEST_F(GLText, AHighlightLiesUnderItsCharactersOnly)
{
    const std::wstring text = L"Highlight";
    const auto widthOf = [&](std::size_t from, std::size_t to) {
        return font_->measure(text.substr(from, to - from).c_str()).x;
    };
    struct Case
    {
        int start, end;
        std::size_t low, high;
    };
    for (const Case& c : {Case{2, 5, 2, 5},
                          {5, 2, 2, 5},
                          {0, 9, 0, 9},
                          {-4, 3, 0, 3},
                          {7, 4000, 7, 9},
                          {3, 3, 0, 0},
                          {20, 30, 9, 9}}) {
        for (const TextAlignment alignment : {eTextDefault, eTextRight | eTextTop}) {
            TextDescription desc(text.c_str(), {150, 50}, kWhite, alignment, font_);
            desc.backColour_ = kBlue;
            desc.highlightStart_ = c.start;
            desc.highlightEnd_ = c.end;
            const auto& noted = draw({desc});
            ASSERT_EQ(noted.size(), 1u) << "all of the text is drawn, band or not";
            const bool right = alignment != eTextDefault;
            const int left = right ? 150 - widthOf(0, 9) : 150;
            const int top = (right ? 50 : 50 - font_->ascent()) - 2;
            QImage expected(300, 100, drawn_.format());
            expected.fill(DrawingRig::kGround);
            for (int y = top; y < top + font_->ascent() + font_->descent() + 2; ++y)
                for (int x = 0; x < widthOf(c.low, c.high); ++x)
                    expected.setPixel(left + widthOf(0, c.low) + x, y, 0xFF0000FFu);
            EXPECT_EQ(drawn_, expected) << c.start << " " << c.end;
        }
    }
}

TEST_F(GLText, AHaloIsTheTextFourTimesUnderIt)
{
    TextDescription desc(L"Halo", {20, 50}, kRed, eTextDefault, font_);
    desc.textStyle_ = TextDescription::eHalo;
    desc.backColour_ = kBlue;
    const auto& noted = draw({desc});
    ASSERT_EQ(noted.size(), 2u);
    EXPECT_EQ(noted[0].colour, kBlue);
    const int top = 50 - font_->ascent();
    std::vector<XY<int>> places;
    for (const NotingEffect::Quad& quad : noted[0].quads)
        places.emplace_back(quad.left - 20, quad.top - top);
    EXPECT_EQ(places, (std::vector<XY<int>>{{-1, -1}, {1, 1}, {-1, 1}, {1, -1}}));
    EXPECT_EQ(noted[1].colour, kRed);
    EXPECT_EQ(noted[1].quads.at(0).left, 20);
}

TEST_F(GLText, AnUnderlineRunsFromTheFirstLetterToTheEnd)
{
    TextDescription desc(L"  Under", {20, 50}, kRed, eTextDefault, font_);
    desc.textStyle_ = TextDescription::eUnderline;
    draw({desc});
    const int left = 20 + 2 * font_->measure(L" ").x, right = 20 + font_->measure(desc.text_).x;
    QImage expected(300, 100, drawn_.format());
    expected.fill(DrawingRig::kGround);
    for (int x = left; x <= right; ++x)
        expected.setPixel(x, 51, 0xFFFF0000u); // lines lie one row up
    EXPECT_EQ(drawn_, expected);
}

TEST_F(GLText, IsCutToTheClipRegionTexturesAndAll)
{
    const TextDescription desc(L"A long enough text", {10, 50}, kRed, eTextDefault, font_);
    const XY<int> size = font_->measure(desc.text_);
    const auto quadsIn = [&](const QRegion& region) {
        return draw([&](auto& r) {
            r.setClipRegion(new QtRegion(region));
            r.render(desc);
        });
    };
    const auto one = quadsIn(QRect(30, 0, 20, 100));
    ASSERT_EQ(one.size(), 1u);
    EXPECT_EQ(one[0].quads.at(0).left, 30);
    EXPECT_EQ(one[0].quads.at(0).right, 50);
    EXPECT_FLOAT_EQ(one[0].corners[0].s_, 20.0f / float(size.x));
    EXPECT_FLOAT_EQ(one[0].corners[2].s_, 40.0f / float(size.x));
    const auto two = quadsIn(QRegion(30, 0, 20, 100) + QRegion(60, 0, 5, 100));
    ASSERT_EQ(two.size(), 1u);
    EXPECT_EQ(two[0].quads.size(), 2u);
    EXPECT_TRUE(quadsIn(QRect(0, 90, 300, 10)).empty());
    EXPECT_TRUE(quadsIn(QRegion()).empty());
}

TEST_F(GLText, TwentySixTextsTakeTurnsInTheCache)
{
    std::vector<TextDescription> descs;
    for (int i = 0; i < 30; ++i)
        descs.emplace_back((L"text " + std::to_wstring(i)).c_str(), XY<int>(i * 5, 50), kRed,
                           eTextDefault, font_);
    EXPECT_EQ(draw(descs).size(), 30u) << "all are drawn, in the cache or not";
    EXPECT_EQ(OpenGLFontBase::cache().size(), 25u);
    for (const NotingEffect::Noted& one : effect_->noted)
        EXPECT_NE(one.texture, 0u);
}
