#include "Report.h"

#include <cmath>
#include <cstdio>

namespace OsInfo {

namespace {

// How many bytes of UTF-8 (RFC 3629) begin at a place; 0 where they are none.
std::size_t sequenceAt(const std::string& text, std::size_t at)
{
    const auto byte = [&](std::size_t i) {
        return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0u;
    };
    const unsigned int lead = byte(0);
    const std::size_t length = lead < 0x80                   ? 1
                               : lead >= 0xC2 && lead < 0xE0 ? 2
                               : (lead & 0xF0) == 0xE0       ? 3
                               : lead >= 0xF0 && lead < 0xF5 ? 4
                                                             : 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
    const unsigned int second = byte(1);
    const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool beyond = (lead == 0xED && second >= 0xA0) || (lead == 0xF4 && second >= 0x90);
    return overlong || beyond ? 0 : length;
}

std::string quoted(const std::string& text)
{
    std::string result = "\"";
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = sequenceAt(text, at);
        const char c = text[at];
        if (length == 0) {
            result += "\\ufffd";
        } else if (c == '"' || c == '\\') {
            result += {'\\', c};
        } else if (length == 1 && static_cast<unsigned char>(c) < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned int>(c));
            result += escaped;
        } else {
            result.append(text, at, length);
        }
        at += length ? length : 1;
    }
    return result + '"';
}

std::string written(const std::string& text)
{
    return quoted(text);
}
std::string written(bool yes)
{
    return yes ? "true" : "false";
}
std::string written(std::int64_t number)
{
    return std::to_string(number);
}
std::string written(double number)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.10g", number);
    return std::isfinite(number) ? text : "null";
}
std::string written(Bytes bytes)
{
    return std::to_string(bytes.count);
}

std::string written(const Value& value)
{
    return std::visit([](const auto& held) { return written(held); }, value);
}

// Parts between brackets, each on a line of its own.
std::string enclosed(char open, const std::vector<std::string>& parts, char close,
                     const std::string& indent)
{
    std::string result{open};
    for (std::size_t i = 0; i < parts.size(); ++i)
        result += (i ? ",\n  " : "\n  ") + indent + parts[i];
    return result + (parts.empty() ? "" : "\n" + indent) + close;
}

std::string object(const Item& item, const std::string& indent)
{
    std::vector<std::string> members;
    for (const Fact& fact : item)
        members.push_back(quoted(fact.key) + ": " + written(fact.value));
    return enclosed('{', members, '}', indent);
}

std::string body(const Section& section)
{
    std::vector<std::string> parts;
    for (const Item& item : section.items) {
        if (section.form == Section::eMany)
            parts.push_back(object(item, "    "));
        if (section.form == Section::eNamed)
            for (const Fact& fact : item)
                parts.push_back("{\"name\": " + quoted(fact.label) +
                                ", \"value\": " + written(fact.value) + "}");
    }
    if (section.form != Section::eOne)
        return enclosed('[', parts, ']', "  ");
    return object(section.items.empty() ? Item() : section.items[0], "  ");
}

} // namespace

std::string writeJson(const Report& report)
{
    std::vector<std::string> members;
    for (const Section& section : report)
        members.push_back(quoted(section.key) + ": " + body(section));
    return enclosed('{', members, '}', "") + "\n";
}

} // namespace OsInfo
