// The text overload of QtGraphicPrimitivesRenderer.
#include "OS/Mac/Painting/QtGraphicPrimitivesRenderer.h"

#include "OS/Mac/Core/QtText.h"
#include "OS/Mac/Painting/PainterValues.h"
#include "OS/Mac/Painting/QtFont.h"

#include <algorithm>

using PainterValues::toQColor;
using PainterValues::toQRect;

namespace {

QString charactersOf(const TextDescription& desc, std::int32_t from, std::int32_t to)
{
    const auto length = static_cast<std::int32_t>(desc.text_.size());
    const auto first = static_cast<std::uint32_t>(std::clamp(from, 0, length));
    const auto last = static_cast<std::uint32_t>(std::clamp(to, 0, length));
    return OSInternal::toQString(desc.text_.substr(first, last - first));
}

int leadingSpaces(const QString& text)
{
    const auto* first = std::find_if(text.begin(), text.end(), [](QChar c) { return c != ' '; });
    return static_cast<int>(first - text.begin());
}

} // namespace

void QtGraphicPrimitivesRenderer::renderMulti(const TextDescription* descs, unsigned int count)
{
    if (!active_ || count == 0)
        return;
    const QtFont* current = nullptr; // setting a font is dear, and most runs have one
    for (const TextDescription* desc = descs; desc != descs + count; ++desc) {
        const auto* font = dynamic_cast<const QtFont*>(desc->font_.get());
        if (!font || desc->text_.empty())
            continue;
        const QString text = OSInternal::toQString(desc->text_);
        soften(antialias_);
        if (font != current)
            painter_.setFont(font->font());
        current = font;
        if (desc->highlightStart_ != desc->highlightEnd_)
            drawHighlight(*desc, *font);
        if (desc->textStyle_ == TextDescription::eHalo)
            drawHalo(*desc, text);
        if (desc->textStyle_ == TextDescription::eUnderline)
            drawUnderline(*desc, *font, text);
        soften(antialias_); // the line may have switched it off
        setSolidPen(toQColor(desc->colour_), 1);
        painter_.drawText(desc->pos_.x, desc->pos_.y, text);
    }
}

// A band of the selected characters' width, from two pixels above the ascent to the descent.
void QtGraphicPrimitivesRenderer::drawHighlight(const TextDescription& desc, const QtFont& font)
{
    const auto [low, high] = std::minmax(desc.highlightStart_, desc.highlightEnd_);
    const int prefixWidth = font.width(charactersOf(desc, 0, low));
    const int selectionWidth = font.width(charactersOf(desc, low, high));
    const auto ascent = static_cast<int>(font.getMetrics() >> 16);
    const auto descent = static_cast<int>(font.getMetrics() & 0xFFFF);
    const QRect band(desc.pos_.x + prefixWidth, desc.pos_.y - ascent - 2, selectionWidth,
                     ascent + descent + 2);
    painter_.fillRect(band, toQColor(desc.backColour_));
}

void QtGraphicPrimitivesRenderer::drawHalo(const TextDescription& desc, const QString& text)
{
    setSolidPen(toQColor(desc.backColour_), 1);
    for (const auto& [dx, dy] : {std::pair(-1, -1), {1, 1}, {-1, 1}, {1, -1}})
        painter_.drawText(desc.pos_.x + dx, desc.pos_.y + dy, text);
}

void QtGraphicPrimitivesRenderer::drawUnderline(const TextDescription& desc, const QtFont& font,
                                                const QString& text)
{
    const int leading = leadingSpaces(text) * font.width(QStringLiteral(" "));
    LineDescription line;
    line.start_ = {desc.pos_.x + leading, desc.pos_.y + 2};
    line.end_ = {desc.pos_.x + font.width(text), desc.pos_.y + 2};
    line.colour_ = desc.colour_;
    line.lineWidth_ = 1;
    renderMulti(&line, 1);
}
