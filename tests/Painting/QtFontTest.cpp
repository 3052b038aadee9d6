// Fonts and the text that renderers draw with them. Tests run with the DejaVu fonts only.
#include "OS/Mac/Painting/QtFont.h"

#include "Painting/Canvas.h"
#include "support/ImageCompare.h"

#include <gtest/gtest.h>

namespace {

using Text = LightweightString<wchar_t>;

const Text kSample = L"Clip AVATAR.mov 01";

Tq::Ptr<QtFont> font(unsigned int size = 20, unsigned int flags = 0, const Text& name = L"Tahoma",
                     unsigned int weight = 0)
{
    return QtFont::make(name, size, weight, flags).dynamicCast<QtFont>();
}

TextDescription text(const Text& words, XY<int> place, const Tq::Ptr<iFont>& face)
{
    return TextDescription(words, place, {1, 1, 1}, eTextDefault, face);
}

int touchedColumnsEnd(const Canvas& canvas)
{
    for (int x = canvas.pixels().width() - 1; x >= 0; --x)
        for (int y = 0; y < canvas.pixels().height(); ++y)
            if (canvas.at(x, y) != Canvas::kGround)
                return x + 1;
    return 0;
}

} // namespace

TEST(QtFont, FallsBackToAnInstalledTypeface)
{
    std::set<Text> names;
    QtFont::getAvailableFonts(names);
    ASSERT_FALSE(names.empty());
    EXPECT_EQ(QtFont::getDefaultFont(), L"Tahoma");
    for (const wchar_t* name : {L"Tahoma", L"No Such Typeface", L"", L"\u65E5\u672C"})
        EXPECT_EQ(font(20, 0, name)->font().family(), QStringLiteral("DejaVu Sans"));
    EXPECT_EQ(font(20, iFont::eFixedPitch)->font().family(), QStringLiteral("DejaVu Sans Mono"));
    EXPECT_EQ(font(20, 0, L"DejaVu Serif")->font().family(), QStringLiteral("DejaVu Serif"));
}

TEST(QtFont, TakesSizeWeightAndStyle)
{
    EXPECT_GT(font(40)->measure(kSample).x, font(20)->measure(kSample).x);
    EXPECT_GT(font(20, iFont::eBold)->measure(kSample).x, font(20)->measure(kSample).x);
    EXPECT_EQ(font(20, 0, L"Tahoma", 700)->measure(kSample).x,
              font(20, iFont::eBold)->measure(kSample).x);
    EXPECT_EQ(font(20, iFont::eBold | iFont::eItalic)->getStyle(), 3u);
    const auto mono = font(20, iFont::eFixedPitch);
    EXPECT_EQ(mono->measure(L"iiii"), mono->measure(L"WWWW"));
    for (const unsigned int absurd : {0u, 0xFFFFFFFFu})
        EXPECT_GT(font(absurd)->measure(L"a").y, 0);
}

TEST(QtFont, PacksTheAscentAboveTheDescent)
{
    const auto face = font(20);
    const auto ascent = static_cast<int>(face->getMetrics() >> 16);
    const auto descent = static_cast<int>(face->getMetrics() & 0xFFFF);
    EXPECT_GT(ascent, descent);
    EXPECT_NEAR(ascent + descent, face->measure(L"a").y, 1);
}

TEST(QtFont, MeasuresAgreeWithEachOtherAndWithWhatIsDrawn)
{
    for (const Text& words : {kSample, Text(L"a"), Text(L" lead and trail  "),
                              Text(L"AV\u00E9\u03A9"), Text(L"\U0001F600x")}) {
        const auto face = font();
        std::vector<int> positions;
        const XY<int> size = face->measure(words, positions);
        EXPECT_EQ(size, face->measure(words));
        ASSERT_EQ(positions.size(), words.size() + 1);
        EXPECT_EQ(positions.front(), 0);
        EXPECT_NEAR(positions.back(), size.x, 1);
        EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end()));
    }
    Canvas canvas(300, 40);
    canvas.draw(text(kSample, {0, 30}, font()));
    EXPECT_NEAR(touchedColumnsEnd(canvas), font()->measure(kSample).x, 3);
}

TEST(QtFont, AnEmptyTextMeasuresNothing)
{
    std::vector<int> positions{7, 7};
    EXPECT_EQ(font()->measure(Text(), positions), (XY<int>{0, 0}));
    EXPECT_EQ(positions, std::vector<int>{0});
    EXPECT_EQ(font()->locateCharacter(Text(), iFont::eSeekNearest, 50), 0u);
    EXPECT_EQ(font()->getCharacterUnderPixel(Text(), 0), iFont::kNoCharacter);
}

TEST(QtFont, FindsTheCharacterThatWasMeasuredThere)
{
    const auto face = font();
    std::vector<int> positions;
    const int width = face->measure(kSample, positions).x;
    for (std::uint32_t i = 0; i < kSample.size(); ++i) {
        const auto left = static_cast<std::uint32_t>(positions[i]);
        const auto right = static_cast<std::uint32_t>(positions[i + 1]);
        EXPECT_EQ(face->getCharacterUnderPixel(kSample, left), i);
        EXPECT_EQ(face->getCharacterUnderPixel(kSample, right - 1), i);
        EXPECT_EQ(face->locateCharacter(kSample, iFont::eSeekNearest, left), i);
        EXPECT_EQ(face->locateCharacter(kSample, iFont::eSeekNearest, right - 1), i + 1);
        EXPECT_EQ(face->locateCharacter(kSample, iFont::eSeekBefore, right - 1), i);
        EXPECT_EQ(face->locateCharacter(kSample, iFont::eSeekAfter, left + 1), i + 1);
        EXPECT_EQ(face->locateCharacter(kSample, iFont::eSeekAfter, left), i);
    }
    const auto behind = static_cast<std::uint32_t>(width) + 10;
    for (const auto method : {iFont::eSeekNearest, iFont::eSeekBefore, iFont::eSeekAfter})
        for (const std::uint32_t pixel : {behind, 0xFFFFFFFFu})
            EXPECT_EQ(face->locateCharacter(kSample, method, pixel), kSample.size());
    EXPECT_EQ(face->getCharacterUnderPixel(kSample, behind), iFont::kNoCharacter);
}

TEST(Texts, StandOnTheirBaselineInTheirColour)
{
    const auto face = font();
    TextDescription desc = text(L"Hxg", {10, 30}, face);
    desc.colour_ = {1, 0.5f, 0};
    Canvas actual(120, 48), expected(120, 48);
    actual.draw(desc);
    expected.paint([&](QPainter& painter) {
        painter.setFont(face->font());
        painter.setPen(QColor(255, 127, 0));
        painter.drawText(10, 30, QStringLiteral("Hxg"));
    });
    EXPECT_TRUE(imagesAgree(actual.pixels(), expected.pixels(), "text"));
    EXPECT_NE(actual.at(12, 29), Canvas::kGround) << "the H's foot";
}

TEST(Texts, WithoutAFontOrWordsDrawNothing)
{
    Canvas canvas;
    canvas.draw(text(L"words", {5, 30}, nullptr)).draw(text(Text(), {5, 30}, font()));
    EXPECT_TRUE(imagesAgree(canvas.pixels(), Canvas().pixels(), "no-text"));
}

TEST(Texts, HighlightTheCharactersBetweenTwoIndexesInEitherOrder)
{
    const auto face = font();
    const int ascent = static_cast<int>(face->getMetrics() >> 16);
    const int descent = static_cast<int>(face->getMetrics() & 0xFFFF);
    const int left = 10 + face->measure(kSample.substr(0, 5)).x;
    const int width = face->measure(kSample.substr(5, 6)).x;
    for (const auto& [start, end] : {std::pair(5, 11), std::pair(11, 5)}) {
        TextDescription desc = text(kSample, {10, 34}, face);
        desc.highlightStart_ = start;
        desc.highlightEnd_ = end;
        desc.backColour_ = {0, 0.5f, 0};
        Canvas actual(260, 48), expected(260, 48);
        actual.draw(desc);
        expected.paint([&](QPainter& painter) {
            painter.fillRect(left, 34 - ascent - 2, width, ascent + descent + 2, QColor(0, 127, 0));
            painter.setFont(face->font());
            painter.setPen(Qt::white);
            painter.drawText(10, 34, QStringLiteral("Clip AVATAR.mov 01"));
        });
        EXPECT_TRUE(imagesAgree(actual.pixels(), expected.pixels(), "highlight"));
    }
    TextDescription beyond = text(L"ab", {10, 34}, face);
    beyond.highlightStart_ = -5;
    beyond.highlightEnd_ = 1'000'000;
    Canvas canvas(260, 48);
    canvas.draw(beyond);
    EXPECT_EQ(canvas.at(10, 34 - ascent - 2), 0xFF000000);
}

TEST(Texts, HaveAHaloOrAnUnderlineBehindTheirLeadingSpaces)
{
    const auto face = font();
    const auto draw = [&](int style) {
        TextDescription desc = text(L"  Hi", {10, 34}, face);
        desc.textStyle_ = style;
        desc.backColour_ = {1, 0, 0};
        Canvas canvas(120, 48);
        canvas.draw(desc);
        return canvas;
    };
    const QString words = QStringLiteral("  Hi");
    Canvas halo(120, 48);
    halo.paint([&](QPainter& painter) {
        painter.setFont(face->font());
        painter.setPen(Qt::red);
        for (const QPoint& by : {QPoint(-1, -1), QPoint(1, 1), QPoint(-1, 1), QPoint(1, -1)})
            painter.drawText(QPoint(10, 34) + by, words);
        painter.setPen(Qt::white);
        painter.drawText(10, 34, words);
    });
    EXPECT_TRUE(imagesAgree(draw(TextDescription::eHalo).pixels(), halo.pixels(), "halo"));

    const Canvas underlined = draw(TextDescription::eUnderline);
    const int from = 10 + 2 * face->measure(L" ").x;
    const int to = 10 + face->measure(L"  Hi").x;
    EXPECT_EQ(underlined.at(from - 1, 35), Canvas::kGround);
    for (int x = from; x <= to; ++x)
        EXPECT_EQ(underlined.at(x, 35), 0xFFFFFFFF) << x;
    EXPECT_EQ(underlined.at(to + 1, 35), Canvas::kGround);
}
