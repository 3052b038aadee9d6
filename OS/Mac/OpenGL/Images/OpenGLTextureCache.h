#pragma once

#include "OS/Mac/OpenGL/Contexts/QtPointers.h"
#include "OS/Mac/OpenGL/Images/TextureDetails.h"

#include <OS/Compute/iGPUBuffer.h>
#include <OS/Shared/iReclaimable.h>
#include <OS/Threads/iCriticalSection.h>

#include <cstddef>
#include <map>

class OpenGLImage;
class QGLFramebufferObject;

/// The textures of released images, kept for the next image of the same storage.
///
/// Holds at most eleven. Any thread; the lock is a leaf and is never held together with the GL
/// lock: textures are deleted after it is left, under the GL lock with a context current.
/// Registered with the heap, whose reclaim() empties it. Made when OpenGLUtils is built, and never
/// destroyed; OpenGLUtils::shutdown() empties it.
class OpenGLTextureCache final : public iReclaimable
{
public:
    struct CacheValue
    {
        Tq::Ptr<QGLFramebufferObject> framebuffer_;
        Tq::Ptr<iGPUBuffer> buffer_; // made of the texture: goes before it
    };

    static OpenGLTextureCache& instance();
    OpenGLTextureCache(const OpenGLTextureCache&) = delete;
    OpenGLTextureCache& operator=(const OpenGLTextureCache&) = delete;

    /// Takes a texture of exactly these details out. @return empty pointers where there is none
    CacheValue extract(const TextureDetails& details);
    /// Keeps what an image holds, after limitUsage(). Several of the same details are kept side by
    /// side. Where memory runs out, the texture is deleted instead.
    void insert(const OpenGLImage& image, const TextureDetails& details);
    /// Deletes every texture.
    void clear();
    std::size_t size() const;

    /// As clear().
    void purge() override;
    /// Where eleven or more are held, deletes the one with the smallest details: not the oldest,
    /// deliberately. One for each call.
    void limitUsage() override;
    /// Does nothing.
    void reportUsage() override;

private:
    using Entries = std::multimap<TextureDetails, CacheValue>;

    OpenGLTextureCache();

    Tq::Ptr<iCriticalSection> safety_;
    Entries entries_;
};
