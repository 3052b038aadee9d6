#pragma once

#include <cstddef>
#include <vector>

namespace Quay {

/// The last readings of one value, 0 to 1, oldest first: plain data.
struct History
{
    static constexpr std::size_t kLength = 60;

    std::vector<float> values;

    void add(double value)
    {
        if (values.size() == kLength)
            values.erase(values.begin());
        values.push_back(static_cast<float>(value < 0.0 ? 0.0 : value > 1.0 ? 1.0 : value));
    }
    /// The newest; 0 without one.
    double last() const { return values.empty() ? 0.0 : static_cast<double>(values.back()); }
};

} // namespace Quay
