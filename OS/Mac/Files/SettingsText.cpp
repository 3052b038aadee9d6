#include "OS/Mac/Files/SettingsText.h"

#include <algorithm>
#include <array>

namespace {

using std::string_view;

constexpr std::size_t kPieceBytes = 1023;
constexpr std::size_t kShortestValue = 4; // line feed included

enum class Piece
{
    eIgnored,
    eHeader,
    eValue
};

Piece classify(string_view piece)
{
    if (piece.starts_with('['))
        return piece.find(']') == piece.npos ? Piece::eIgnored : Piece::eHeader;
    const bool isValue = piece.size() >= kShortestValue && piece.find('=') != piece.npos;
    return isValue ? Piece::eValue : Piece::eIgnored;
}

bool isControl(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
}

string_view withoutTrailingControls(string_view text)
{
    while (!text.empty() && isControl(text.back()))
        text.remove_suffix(1);
    return text;
}

bool canBeSection(string_view name)
{
    return name.size() + 2 <= kPieceBytes && name.find_first_of("]\n") == name.npos;
}

bool canBeName(string_view name)
{
    return name.size() < kPieceBytes && !name.starts_with('[') && name.find('=') == name.npos &&
           name.find('\n') == name.npos;
}

// How much of a value can be written without the rest of its line being read as something.
string_view harmlessPart(string_view name, string_view value)
{
    value = value.substr(0, value.find('\n'));
    const std::size_t before = name.size() + 1;
    if (before + value.size() < kPieceBytes)
        return value;
    const std::size_t first = kPieceBytes - before;
    for (std::size_t at = first; at < value.size(); at += kPieceBytes) {
        std::string piece(value.substr(at, kPieceBytes));
        if (piece.size() < kPieceBytes)
            piece += '\n';
        if (classify(piece) != Piece::eIgnored)
            return value.substr(0, first);
    }
    return value;
}

void noteLoss(SettingsText::Losses& losses, string_view section, string_view name)
{
    if (++losses.count > 1)
        return;
    losses.first.append("[").append(section).append("] ").append(name.substr(0, 200));
    std::replace_if(losses.first.begin(), losses.first.end(), isControl, '?');
}

// Gathers lines, and hands them on when enough have come: memory that stays in the cache.
class Lines
{
public:
    explicit Lines(const SettingsText::Sink& sink) : sink_(sink)
    {
        text_.reserve(2 * kPassOnBytes);
    }

    void append(string_view start, char separator, string_view rest)
    {
        const std::size_t before = text_.size();
        text_.resize(before + start.size() + rest.size() + 2);
        char* to = std::copy(start.begin(), start.end(), text_.data() + before);
        *to = separator;
        to = std::copy(rest.begin(), rest.end(), to + 1);
        *to = '\n';
        if (text_.size() >= kPassOnBytes)
            passOn();
    }
    void appendEmpty() { text_ += '\n'; }
    bool finish()
    {
        passOn();
        return accepted_;
    }

private:
    static constexpr std::size_t kPassOnBytes = 32 * 1024;

    void passOn()
    {
        accepted_ = accepted_ && (text_.empty() || sink_(text_));
        text_.clear();
    }

    const SettingsText::Sink& sink_;
    std::string text_;
    bool accepted_ = true;
};

void writeValues(Lines& lines, string_view section, const SettingsText::Values& values,
                 SettingsText::Losses& losses)
{
    lines.append("", '[', std::string(section) + "]");
    for (const auto& [name, value] : values) {
        const string_view written = harmlessPart(name, value);
        const bool representable = canBeName(name);
        if (!representable || written.size() < value.size())
            noteLoss(losses, section, name);
        if (representable)
            lines.append(name, '=', written);
    }
    lines.appendEmpty();
}

} // namespace

namespace SettingsText {

void read(std::FILE* stream, Sections& sections)
{
    std::array<char, kPieceBytes + 1> buffer;
    Text section;
    Values* values = nullptr; // of the section, made by its first value
    while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), stream)) {
        const string_view piece(buffer.data());
        switch (classify(piece)) {
        case Piece::eHeader:
            section = piece.substr(1, piece.find(']') - 1);
            values = nullptr;
            break;
        case Piece::eValue: {
            if (!values)
                values = &sections[section];
            const std::size_t split = piece.find('=');
            // What is saved is sorted: mostly each value goes to the end.
            values->insert_or_assign(values->end(), Text(piece.substr(0, split)),
                                     Text(withoutTrailingControls(piece.substr(split + 1))));
            break;
        }
        case Piece::eIgnored:
            break;
        }
    }
}

bool write(const Sections& sections, const Sink& sink, Losses& losses)
{
    Lines lines(sink);
    for (const auto& [section, values] : sections) {
        if (values.empty())
            continue;
        if (canBeSection(section))
            writeValues(lines, section, values, losses);
        else
            for (const auto& value : values)
                noteLoss(losses, section, value.first);
    }
    return lines.finish();
}

} // namespace SettingsText
