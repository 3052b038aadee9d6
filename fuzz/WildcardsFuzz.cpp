// Any name against any pattern, split at the first line end: nothing is read outside of them, and
// what the matcher promises holds.

#include <OS/Files/PathFunctions.h>

#include "OS/Mac/Core/PathText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(bytes.find('\n'), bytes.size());
    const auto name = OSInternal::textFromSystem(bytes.substr(0, end));
    const auto pattern = OSInternal::textFromSystem(bytes.substr(std::min(end + 1, bytes.size())));

    const bool matches = matchingFile(name, pattern);
    if (std::none_of(pattern.begin(), pattern.end(), isWildcard))
        require(matches == name.equalsNoCase(pattern.view()));
    if (std::none_of(name.begin(), name.end(), isWildcard))
        require(matchingFile(name, name));
    require(matchingFile(name, L"*") == !name.empty());
    require(PathFunctions::extMatch(name + pattern, pattern) ==
            (!pattern.empty() && !name.empty()));
    return 0;
}
