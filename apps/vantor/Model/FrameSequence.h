#pragma once

#include "Model/Text.h"

#include <vector>

namespace Vantor {

/// Pictures whose names differ in a number only, one after the other: "shot_0001.png" and on.
struct FrameSequence
{
    static constexpr int kFewest = 3; ///< pictures; fewer are pictures of their own

    Text prefix;             ///< before the number
    Text suffix;             ///< behind it
    unsigned int digits = 1; ///< at least so many; zeros in front
    int first = 0;           ///< the number of the first picture
    int count = 0;

    /// The file name of one of its pictures, 0 to count - 1; others give the nearest.
    Text fileAt(int index) const;
    /// "shot_[0001-0120].png"
    Text name() const;

    friend bool operator==(const FrameSequence&, const FrameSequence&) = default;
};

/// Finds the sequences among file names; the numbers of one have no gap.
struct FoundFiles
{
    std::vector<FrameSequence> sequences; ///< in the order of their names
    std::vector<Text> others;             ///< the rest, in the order given
};
FoundFiles findSequences(const std::vector<Text>& names);

} // namespace Vantor
