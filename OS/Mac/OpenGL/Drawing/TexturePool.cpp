#include "OS/Mac/OpenGL/Drawing/TexturePool.h"

#include <algorithm>
#include <utility>

namespace GLDrawing {

Texture::Texture(int width, int height) : width_(width), height_(height)
{
    glGenTextures(1, &name_);
    glBindTexture(GL_TEXTURE_2D, name_);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
}

Texture::~Texture()
{
    if (name_ != 0)
        glDeleteTextures(1, &name_);
}

Texture::Texture(Texture&& other) noexcept
    : name_(std::exchange(other.name_, 0)), width_(other.width_), height_(other.height_)
{
}

Texture& Texture::operator=(Texture&& other) noexcept
{
    std::swap(name_, other.name_);
    width_ = other.width_;
    height_ = other.height_;
    return *this;
}

void Texture::upload(const void* pixels, int rowPixels) const
{
    glBindTexture(GL_TEXTURE_2D, name_);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, rowPixels);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width_, height_, GL_BGRA, GL_UNSIGNED_BYTE, pixels);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void Texture::copyFramebuffer(int left, int bottom) const
{
    glBindTexture(GL_TEXTURE_2D, name_);
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, left, bottom, width_, height_);
    glBindTexture(GL_TEXTURE_2D, 0);
}

const Texture& TexturePool::lend(int width, int height)
{
    const auto fits = [&](const Entry& entry) {
        return entry.round != round_ && entry.texture.width() == width &&
               entry.texture.height() == height;
    };
    const auto found = std::find_if(entries_.begin(), entries_.end(), fits);
    if (found != entries_.end()) {
        found->round = round_;
        std::rotate(found, found + 1, entries_.end());
        return entries_.back().texture;
    }
    makeRoom(std::size_t(4) * std::size_t(width) * std::size_t(height));
    entries_.push_back({Texture(width, height), round_});
    bytes_ += entries_.back().texture.bytes();
    return entries_.back().texture;
}

void TexturePool::makeRoom(std::size_t bytes)
{
    while (!entries_.empty() && bytes_ + bytes > mostBytes_) {
        if (entries_.front().round == round_)
            ++round_;
        bytes_ -= entries_.front().texture.bytes();
        entries_.erase(entries_.begin());
    }
}

void TexturePool::clear()
{
    entries_.clear();
    bytes_ = 0;
    ++round_;
}

} // namespace GLDrawing
