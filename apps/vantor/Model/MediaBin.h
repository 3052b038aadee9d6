#pragma once

#include "Model/Text.h"

#include <vector>

namespace Vantor {

/// One picture of the bin. Its pixels are loaded when they are first drawn.
struct MediaItem
{
    Text name;   ///< file name without the folder
    Text path;   ///< as the file manager takes it
    Text format; ///< "PNG", "JPEG", ...
};

/// The pictures at hand: plain data.
struct MediaBin
{
    static constexpr int kNone = -1;

    std::vector<MediaItem> items;
    int selected = kNone; ///< an index into items
    int scroll = 0;       ///< pixels
    Text filter;

    /// The indices of the items whose name holds the filter, in order; case does not matter.
    std::vector<int> visible() const;
    /// The index of the item of a name, or kNone.
    int find(const Text& name) const;
    /// Adds a picture, or finds it where it is in the bin already. @return its index
    int add(const Text& path, const Text& format);
};

/// The format of a picture by its extension, or nothing when the library cannot load such files.
Text formatOf(const Text& name);
/// Adds every picture of a folder. @return false when the folder cannot be read
bool addFolder(MediaBin& bin, const Text& folder);

} // namespace Vantor
