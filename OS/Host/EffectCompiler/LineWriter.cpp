#include "OS/Host/EffectCompiler/LineWriter.h"

#include <algorithm>

namespace EffectCompiler {

void LineWriter::add(SourcePlace place, int depth, std::string_view text)
{
    if (place.line != 0 && (place.line != next_.line || place.file != next_.file)) {
        // Before GLSL 3.30 the number is that of the line itself, not of the next.
        text_ +=
            "#line " + std::to_string(place.line - 1) + " " + std::to_string(place.file) + "\n";
        next_ = place;
    }
    text_.append(static_cast<std::size_t>(depth) * 4, ' ');
    text_ += text;
    text_ += '\n';
    if (next_.line != 0)
        next_.line += 1 + static_cast<std::uint32_t>(std::count(text.begin(), text.end(), '\n'));
}

void LineWriter::addPlain(std::string_view text)
{
    add({}, 0, text);
}

void LineWriter::append(const LineWriter& other)
{
    text_ += other.text_;
    next_ = other.next_;
}

} // namespace EffectCompiler
