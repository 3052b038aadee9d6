#include "OS/Mac/OpenGL/Text/TextImageCache.h"

#include <algorithm>

CachedGPUImage* TextImageCache::find(const iFont* font, const LightweightString<wchar_t>& text)
{
    const auto found = images_.find(TextToFind{font, text});
    return found == images_.end() ? nullptr : &found->second;
}

void TextImageCache::insert(const TextDescription& key, const CachedGPUImage& image)
{
    images_.emplace(key, image);
    if (images_.size() <= kMost)
        return;
    // Of several made at one time the first in the keys' order.
    images_.erase(
        std::min_element(images_.begin(), images_.end(), [](const auto& a, const auto& b) {
            return a.second.getTime() < b.second.getTime();
        }));
}
