#pragma once

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace GLDrawing {

/// A GL texture of 32-bit pixels, clamped at its edges. Made, used and destroyed with a context of
/// the sharing group current.
class Texture
{
public:
    Texture(int width, int height);
    ~Texture();
    Texture(Texture&& other) noexcept;
    Texture& operator=(Texture&& other) noexcept;

    GLuint name() const { return name_; }
    int width() const { return width_; }
    int height() const { return height_; }
    std::size_t bytes() const
    {
        return std::size_t(4) * std::size_t(width_) * std::size_t(height_);
    }

    /// Replaces its pixels. @param pixels 0xAARRGGBB words @param rowPixels from row to row
    void upload(const void* pixels, int rowPixels) const;
    /// Replaces its pixels by those of the framebuffer that is bound, from a place of it upwards.
    void copyFramebuffer(int left, int bottom) const;

private:
    GLuint name_ = 0;
    int width_, height_;
};

/// Textures for pixels that are uploaded afresh at each use, kept for the next picture of the same
/// size: filling one is far cheaper than making one. Holds at most a fixed number of bytes.
class TexturePool
{
public:
    explicit TexturePool(std::size_t mostBytes) : mostBytes_(mostBytes) {}

    /// Starts a round: what was lent in the last one may be lent again.
    void beginRound() { ++round_; }
    /// A texture whose pixels are undefined; the caller's until the next round. Where the bytes of
    /// this round's textures exceed the pool's, a new round begins, and a new number is answered
    /// here; what is drawn has then been drawn.
    const Texture& lend(int width, int height);
    /// Changes when what was lent may be lent again.
    std::uint64_t round() const { return round_; }

    void clear();
    std::size_t bytes() const { return bytes_; }

private:
    struct Entry
    {
        Texture texture;
        std::uint64_t round;
    };
    void makeRoom(std::size_t bytes);

    std::vector<Entry> entries_; // the one used longest ago first
    std::size_t mostBytes_;
    std::size_t bytes_ = 0;
    std::uint64_t round_ = 0;
};

} // namespace GLDrawing
