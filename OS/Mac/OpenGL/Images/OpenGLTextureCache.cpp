#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Images/OpenGLTextureCache.h"

#include "OS/Mac/OpenGL/Images/OpenGLImage.h"
#include "OS/Mac/OpenGL/Images/TextureRelease.h"
#include "OS/Mac/Threads/LockRank.h"

#include <OS.h>
#include <OS/Shared/iHeap.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/iThreadManager.h>

#include <QGLFramebufferObject>

#include <new>
#include <utility>

namespace {

constexpr std::size_t kFull = 11;

} // namespace

OpenGLTextureCache& OpenGLTextureCache::instance()
{
    static auto* const cache = new OpenGLTextureCache;
    return *cache;
}

OpenGLTextureCache::OpenGLTextureCache() : safety_(OS()->threadMgr()->createCriticalSection(0))
{
    OSInternal::setLockRank(*safety_, OSInternal::LockRank::eTextureCache);
    OS()->heap()->registerReclaimable(this);
}

OpenGLTextureCache::CacheValue OpenGLTextureCache::extract(const TextureDetails& details)
{
    const CriticalSectionLock lock(safety_);
    const auto found = entries_.find(details);
    if (found == entries_.end())
        return {};
    CacheValue value = std::move(found->second);
    entries_.erase(found);
    return value;
}

void OpenGLTextureCache::insert(const OpenGLImage& image, const TextureDetails& details)
{
    limitUsage();
    CacheValue value{image.framebuffer(), image.buffer()};
    try {
        const CriticalSectionLock lock(safety_);
        entries_.emplace(details, value);
    } catch (const std::bad_alloc&) {
        releaseTextures(std::move(value));
    }
}

void OpenGLTextureCache::limitUsage()
{
    CacheValue evicted;
    {
        const CriticalSectionLock lock(safety_);
        if (entries_.size() < kFull)
            return;
        evicted = std::move(entries_.begin()->second);
        entries_.erase(entries_.begin());
    }
    releaseTextures(std::move(evicted));
}

void OpenGLTextureCache::clear()
{
    Entries all;
    {
        const CriticalSectionLock lock(safety_);
        all.swap(entries_);
    }
    if (!all.empty())
        releaseTextures(std::move(all));
}

std::size_t OpenGLTextureCache::size() const
{
    const CriticalSectionLock lock(safety_);
    return entries_.size();
}

void OpenGLTextureCache::purge()
{
    clear();
}

void OpenGLTextureCache::reportUsage() {}
