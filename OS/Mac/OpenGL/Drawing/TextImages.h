#pragma once

#include "OS/Mac/OpenGL/Drawing/TexturePool.h"

#include <OS/Primitives/TextDescription.h>

#include <functional>
#include <list>
#include <map>

namespace GLDrawing {

/// How text is wanted: what, besides a description, its pixels depend on.
struct TextManner
{
    double ratio = 1.0;
    bool antialias = false;

    friend auto operator<=>(const TextManner&, const TextManner&) = default;
};

/// A text in a texture, and where its pixels belong.
struct TextImage
{
    GLuint texture = 0; ///< 0: there is nothing to draw
    int left = 0;       ///< of the target, pixels
    int top = 0;
    int width = 0;
    int height = 0;
};

/// Texts as pictures: drawn by the toolkit's renderer with everything that belongs to them (band,
/// halo, underline), kept for the next time.
///
/// A text whose place has another fraction of a pixel is another picture. Holds at most so many
/// bytes; the one used longest ago goes first. Under the GL lock. Fonts of the descriptions are
/// held, but not used: their faces are copied, for the toolkit's fonts are not to be used by two
/// threads at a time.
class TextImages
{
public:
    explicit TextImages(std::size_t mostBytes) : mostBytes_(mostBytes) {}

    /// @param beforeMaking is called before a new picture is made, which may drop old ones
    TextImage find(const TextDescription& desc, const TextManner& manner,
                   const std::function<void()>& beforeMaking);
    void clear();
    std::size_t bytes() const { return bytes_; }

private:
    struct Key
    {
        const iFont* font;
        LightweightString<wchar_t> text;
        std::uint32_t colour, backColour; // 8 bits each
        std::int32_t style, highlightStart, highlightEnd;
        int phaseX, phaseY;
        TextManner manner;

        bool operator<(const Key& other) const;
    };
    struct Entry
    {
        Tq::Ptr<iFont> font; // its address is in the key
        Texture texture;
        int left, top; // from the origin, pixels
        std::list<const Key*>::iterator age;
    };
    const Entry* make(const Key& key, const TextDescription& desc);
    void makeRoom(std::size_t bytes);

    std::map<Key, Entry> entries_;
    std::list<const Key*> ages_; // the one used longest ago first
    std::size_t mostBytes_;
    std::size_t bytes_ = 0;
};

} // namespace GLDrawing
