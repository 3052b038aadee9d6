#include "OS/Host/EffectCompiler/Swizzle.h"

namespace EffectCompiler {

std::optional<std::vector<int>> swizzleOf(std::string_view text, int columns)
{
    if (text.empty() || text.size() > 4)
        return {};
    for (const std::string_view letters : {std::string_view("xyzw"), std::string_view("rgba")}) {
        std::vector<int> components;
        for (const char letter : text) {
            const std::size_t component = letters.find(letter);
            if (component >= static_cast<std::size_t>(columns))
                break;
            components.push_back(static_cast<int>(component));
        }
        if (components.size() == text.size())
            return components;
    }
    return {};
}

std::optional<std::vector<MatrixElement>> matrixElementsOf(std::string_view text, int rows,
                                                           int columns)
{
    const bool isFromZero = text.starts_with("_m");
    const std::size_t width = isFromZero ? 4 : 3;
    const int base = isFromZero ? 0 : 1;
    if (text.empty() || text.size() % width != 0 || text.size() / width > 4)
        return {};
    std::vector<MatrixElement> elements;
    for (; !text.empty(); text.remove_prefix(width)) {
        if (!text.starts_with(isFromZero ? "_m" : "_"))
            return {};
        const MatrixElement element = {text[width - 2] - '0' - base, text[width - 1] - '0' - base};
        if (element.row < 0 || element.row >= rows || element.column < 0 ||
            element.column >= columns)
            return {};
        elements.push_back(element);
    }
    return elements;
}

} // namespace EffectCompiler
