#pragma once

#include "Model/MediaBin.h"

#include <vector>

namespace Vantor {

/// Takes an item out of the bin and its file to the desktop's trash. A file of the sample media
/// stays where it is, and so do those of a sequence; one that cannot be trashed stays in the bin,
/// too.
///
/// @param sampleFolders whose files belong to the product
/// @return what has happened, for the status line
Text removeItem(MediaBin& bin, int index, const std::vector<Text>& sampleFolders);

} // namespace Vantor
