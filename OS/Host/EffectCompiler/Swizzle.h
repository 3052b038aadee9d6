#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace EffectCompiler {

/// The components that ".xyz" or ".rgb" selects of a vector, 0 to 3 each.
/// @return nothing when it is no swizzle of so many columns
std::optional<std::vector<int>> swizzleOf(std::string_view text, int columns);

struct MatrixElement
{
    int row;
    int column;
    friend bool operator==(const MatrixElement&, const MatrixElement&) = default;
};

/// The elements that "._m00_m11", counted from 0, or "._11_22", counted from 1, selects.
std::optional<std::vector<MatrixElement>> matrixElementsOf(std::string_view text, int rows,
                                                           int columns);

/// Whether one of them stands there twice.
template <class T>
bool repeats(const std::vector<T>& selected)
{
    for (std::size_t i = 0; i < selected.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (selected[i] == selected[j])
                return true;
        }
    }
    return false;
}

} // namespace EffectCompiler
