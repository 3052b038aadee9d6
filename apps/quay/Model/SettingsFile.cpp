#include "Model/SettingsFile.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <algorithm>

namespace Quay {

namespace {

/// Calls a function with every line of a text.
template <class Function>
void eachLine(std::string_view text, const Function& function)
{
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        function(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

bool isHeader(std::string_view line)
{
    return line.size() >= 2 && line.front() == '[' && line.back() == ']';
}

Text wide(std::string_view text)
{
    return OS()->utils()->fromUTF8(text.data(), static_cast<int>(text.size()));
}

} // namespace

std::vector<LightweightString<char>> sectionNames(std::string_view text)
{
    std::vector<LightweightString<char>> names;
    eachLine(text, [&](std::string_view line) {
        if (!isHeader(line))
            return;
        const LightweightString<char> name(line.substr(1, line.size() - 2));
        if (std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    });
    return names;
}

std::vector<Setting> sectionValues(std::string_view text, std::string_view section)
{
    std::vector<Setting> settings;
    bool inside = false;
    eachLine(text, [&](std::string_view line) {
        if (isHeader(line)) {
            inside = line.substr(1, line.size() - 2) == section;
            return;
        }
        const std::size_t equals = line.find('=');
        if (inside && equals != std::string_view::npos)
            settings.push_back({wide(line.substr(0, equals)), wide(line.substr(equals + 1))});
    });
    return settings;
}

} // namespace Quay
