#include "Report.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <algorithm>
#include <cstdio>

namespace OsInfo {

namespace {

std::string formatted(const char* format, double number)
{
    char text[64];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

std::string shown(const std::string& text)
{
    return text.empty() ? "-" : text;
}
std::string shown(bool yes)
{
    return yes ? "yes" : "no";
}
std::string shown(std::int64_t number)
{
    return std::to_string(number);
}
std::string shown(double number)
{
    return formatted("%g", number);
}
std::string shown(Bytes bytes)
{
    constexpr double kMiB = 1024.0 * 1024.0;
    const double mib = static_cast<double>(bytes.count) / kMiB;
    return mib < 1024.0 ? formatted("%.1f MiB", mib) : formatted("%.1f GiB", mib / 1024.0);
}

// A list's items are set off by a mark before the first fact of each.
void writeItem(const Item& item, bool marked, std::string& text)
{
    std::size_t widest = 0;
    for (const Fact& fact : item)
        widest = std::max(widest, fact.label.size());
    for (std::size_t i = 0; i < item.size(); ++i) {
        text += marked && i == 0 ? "- " : "  ";
        if (widest > 0)
            text += item[i].label + std::string(widest - item[i].label.size() + 2, ' ');
        text += std::visit([](const auto& value) { return shown(value); }, item[i].value) + "\n";
    }
}

} // namespace

std::string writeText(const Report& report)
{
    std::string text;
    for (const Section& section : report) {
        text += (text.empty() ? "" : "\n") + section.title + "\n";
        if (section.items.empty())
            text += "  none\n";
        for (const Item& item : section.items)
            writeItem(item, section.form == Section::eMany, text);
    }
    return text;
}

std::string utf8(const LightweightString<wchar_t>& text)
{
    return OS()->utils()->toUTF8(text).c_str();
}

} // namespace OsInfo
