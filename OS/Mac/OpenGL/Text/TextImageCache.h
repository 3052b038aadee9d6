#pragma once

#include "OS/Mac/OpenGL/Text/CachedGPUImage.h"
#include "OS/Mac/OpenGL/Text/TextDescCompare.h"

#include <map>

/// The pictures of the texts that were drawn: at most 25. The one made first goes first, also where
/// it was drawn a moment ago: deliberate. Under the GL lock.
class TextImageCache
{
public:
    static constexpr std::size_t kMost = 25;

    /// Null where there is none.
    CachedGPUImage* find(const iFont* font, const LightweightString<wchar_t>& text);
    /// An equal key that is there already stays, with its picture.
    void insert(const TextDescription& key, const CachedGPUImage& image);
    void clear() { images_.clear(); }
    std::size_t size() const { return images_.size(); }

private:
    std::map<TextDescription, CachedGPUImage, TextDescCompare> images_;
};
