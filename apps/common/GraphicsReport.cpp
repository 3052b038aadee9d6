#include "common/GraphicsReport.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Windowing/iWindowManager.h>

#include <algorithm>
#include <cstdio>

namespace App {

namespace {

std::string quoted(const std::string& text)
{
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned int>(c));
            result += escaped;
        } else {
            result += c;
        }
    }
    return result + "\"";
}

} // namespace

std::string writeReport(const std::vector<iSystemInfo::GraphicsFact>& facts, bool json)
{
    std::size_t widest = 0;
    for (const auto& fact : facts)
        widest = std::max<std::size_t>(widest, fact.name_.size());
    std::string text = json ? "[\n" : "";
    for (std::size_t i = 0; i < facts.size(); ++i) {
        const std::string name = facts[i].name_.c_str();
        const std::string value = OS()->utils()->toUTF8(facts[i].value_).c_str();
        if (json)
            text += "  {\"name\": " + quoted(name) + ", \"value\": " + quoted(value) + "}" +
                    (i + 1 < facts.size() ? "," : "") + "\n";
        else
            text += name + std::string(widest - name.size() + 2, ' ') + value + "\n";
    }
    return json ? text + "]\n" : text;
}

void printGraphicsReport(bool json)
{
    std::vector<iSystemInfo::GraphicsFact> facts;
    OS()->systemInfo()->getGraphicsReport(facts);
    std::fputs(writeReport(facts, json).c_str(), stdout);
    OS()->windowMgr()->shutdown();
}

} // namespace App
