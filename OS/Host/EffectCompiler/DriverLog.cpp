#include "OS/Host/EffectCompiler/DriverLog.h"

#include <charconv>
#include <optional>
#include <string_view>

namespace EffectCompiler {
namespace {

bool acceptNumber(std::string_view& text, std::uint32_t& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc())
        return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

bool accept(std::string_view& text, std::string_view prefix)
{
    if (!text.starts_with(prefix))
        return false;
    text.remove_prefix(prefix.size());
    return true;
}

void skipSpaces(std::string_view& text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t:"), text.size()));
}

/// "K:N(column)", "K:N" or "K(N)", taken from the front.
std::optional<SourcePlace> acceptPlace(std::string_view& text)
{
    std::string_view rest = text;
    std::uint32_t file = 0, line = 0, column = 0;
    if (!acceptNumber(rest, file) || file > UINT16_MAX)
        return {};
    if (accept(rest, ":")) {
        if (!acceptNumber(rest, line))
            return {};
        std::string_view behind = rest;
        if (accept(behind, "(") && acceptNumber(behind, column) && accept(behind, ")"))
            rest = behind;
    } else if (!accept(rest, "(") || !acceptNumber(rest, line) || !accept(rest, ")")) {
        return {};
    }
    text = rest;
    return SourcePlace{static_cast<std::uint16_t>(file), line};
}

void addLine(std::string_view line, SourcePlace where, Messages& messages)
{
    std::string_view text = line;
    bool isWarning = accept(text, "WARNING:");
    if (!isWarning)
        accept(text, "ERROR:");
    skipSpaces(text);
    const auto place = acceptPlace(text);
    if (!place || place->file >= messages.files().size()) {
        text = line;
    } else {
        skipSpaces(text);
        if (accept(text, "warning"))
            isWarning = true;
        else
            accept(text, "error");
        skipSpaces(text);
        where = *place;
    }
    if (isWarning)
        messages.warning(where, std::string(text));
    else
        messages.error(where, std::string(text));
}

} // namespace

void addDriverLog(const std::string& log, SourcePlace where, Messages& messages)
{
    std::string_view rest = log;
    while (!rest.empty() && !messages.isFull()) {
        const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
        const std::string_view line = rest.substr(0, end);
        if (line.find_first_not_of(" \t") != std::string_view::npos)
            addLine(line, where, messages);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

} // namespace EffectCompiler
