#pragma once

#include "Model/BoardData.h"

#include <string_view>

namespace Quay {

/// The names of the sections in the text of a settings file, in its order, each once.
std::vector<LightweightString<char>> sectionNames(std::string_view text);
/// The values of one section in the text of a settings file.
std::vector<Setting> sectionValues(std::string_view text, std::string_view section);

} // namespace Quay
