#pragma once

#include "Model/FrameSequence.h"
#include "Model/Text.h"

#include <vector>

namespace Vantor {

/// One picture, or one row of pictures, of the bin. Pixels are loaded when they are first drawn.
struct MediaItem
{
    enum class Kind
    {
        ePicture,
        eSequence, ///< a picture file for each frame
        eTestClip  ///< drawn when it is shown; has no file
    };

    Text name;   ///< file name without the folder
    Text path;   ///< as the file manager takes it; of a sequence the folder and the name
    Text format; ///< "PNG", "JPEG", ...
    Kind kind = Kind::ePicture;
    FrameSequence sequence = {}; ///< of a sequence

    /// How many frames it lasts; 0: a picture, which lasts as long as one likes.
    int frames() const;
    /// The file of a frame, or of the nearest there is; empty for the test clip.
    Text fileAt(int frame) const;

    friend bool operator==(const MediaItem&, const MediaItem&) = default;
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
    int add(MediaItem item); ///< likewise
};

/// The format of a picture by its extension, or nothing when the library cannot load such files.
Text formatOf(const Text& name);
/// A clip that is drawn: bars, a hand that goes round and the number of each frame.
MediaItem testClip();
/// Adds every picture of a folder; numbered ones that follow each other are a sequence.
/// @return false when the folder cannot be read
bool addFolder(MediaBin& bin, const Text& folder);

} // namespace Vantor
