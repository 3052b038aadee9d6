#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Effects/iShaderEffect.h>
#include <OS/Painting/iHostImage.h>
#include <OS/Primitives/XY.h>
#include <OS/Threads/iCriticalSection.h>

#include <atomic>

class OpenGLImage;
class OpenGLRenderContext;
class OpenGLSharedContext;

/// The process's OpenGL services: the GL lock, the contexts, and what the driver can do.
///
/// Built by the first instance() on the thread of the Qt application object (the library makes one
/// where there is none). Called first elsewhere, or where the Qt platform can make no GL widget, it
/// prints "OpenGLUtils::instance() : %s\n" with the reason and stays unbuilt: contexts, images and
/// video windows are then refused, and the next call tries again. Nothing of it is destroyed at
/// exit: call shutdown() before the Qt application object goes.
class OpenGLUtils
{
public:
    static OpenGLUtils& instance();
    OpenGLUtils(const OpenGLUtils&) = delete;
    OpenGLUtils& operator=(const OpenGLUtils&) = delete;

    /// Always true: the toolkit brings its own software path where there is no driver. From any
    /// thread.
    static bool isAvailable() { return true; }
    /// Whether GL can be used. Stays true after shutdown().
    static bool isInitialised() { return initialised_.load(std::memory_order_acquire); }

    /// The context all others share with, made by the first call.
    static OpenGLSharedContext& getSharedContext();
    /// The calling thread's context without a window, made by the thread's first call and never
    /// destroyed, deliberately. Takes the GL lock.
    OpenGLRenderContext& getRenderContext();

    /// The GL lock, recursive: whoever calls GL holds it. Where it is missing the assertion report
    /// for "threadSafety_" at "OS/Mac/OpenGLUtils line 153" is printed.
    Tq::Ptr<iCriticalSection> getLock() const;
    /// A lock for the application's own caches; nothing of the library's takes it. Likewise
    /// "cacheSafety_" at "OS/Mac/OpenGLUtils line 166".
    Tq::Ptr<iCriticalSection> getCacheLock() const;
    /// True.
    bool multiThreadMakeCurrentAllowed() const { return true; }

    /// 0 before OpenGLUtils is built.
    static unsigned int getNumTextureUnits() { return numTextureUnits_; }
    static XY<int> getMaxTextureSize() { return maxTextureDimensions_; }
    /// Whether a texture may have this size: both sides at most the largest, neither 0. Sides below
    /// 0 are not rejected, deliberately. From any thread.
    static bool isTextureSizePossible(const XY<int>& size);
    /// The size of a texture in texels; (0, 0) for a name that is none. Under the GL lock, which it
    /// takes; leaves texture unit 0 selected.
    XY<int> getTextureDimensions(unsigned int textureId);

    /// 256 x 256 opaque black pixels, made again where they are missing. Takes the GL lock.
    Tq::Ptr<OpenGLImage> getBlackTexture();
    /// Makes them. Where that fails, logs "OpenGLUtils::createBlackTexture() failed\n".
    void createBlackTexture();
    /// The effect that draws text, "Shaders/TextEffects.fx" of the application's data: loaded when
    /// it is first asked for, and kept. Null where it cannot be loaded. Under the GL lock.
    Tq::Ptr<iShaderEffect> getTextEffectsShader();

    /// Reads an image's texture back as it is stored: the answer has the physical size.
    /// @return null for null and for an image without a texture
    Tq::Ptr<iHostImage> copyToHost(const Tq::Ptr<OpenGLImage>& image);
    /// Reads a texture back as blue, green, red and alpha. Components of 16 bits come as 8.
    /// @param size the texture's; any other is refused, with "OpenGLUtils::copyToHost() : the
    /// texture has another size\n"
    /// @param glType of the components
    /// @return null where it is refused or there is no memory
    Tq::Ptr<iHostImage> copyToHost(unsigned int textureId, const XY<int>& size,
                                   unsigned int glType);

    /// Gives back what is kept of textures for later images and later drawing; nothing where
    /// OpenGLUtils is not built. Any thread.
    static void clearCaches();

    /// What the driver says of itself; empty before OpenGLUtils is built. From any thread.
    static LightweightString<char> getVendor();

    /// Makes no context current on the calling thread.
    static void resetContext();
    /// Does nothing, deliberately.
    static void checkForErrors() {}
    /// Releases everything of GL, where it was built. On the thread that built it, without the GL
    /// lock.
    static void shutdown();

private:
    OpenGLUtils();
    void build();
    void readLimits();
    void reset();
    void releaseTextures();

    Tq::Ptr<OpenGLImage> blackTexture_;
    Tq::Ptr<iShaderEffect> textEffectsShader_;
    bool textEffectsAsked_ = false;
    Tq::Ptr<iCriticalSection> threadSafety_;
    Tq::Ptr<iCriticalSection> cacheSafety_;

    static inline std::atomic<bool> initialised_{false};
    // Written before initialised_ is set.
    static inline XY<int> maxTextureDimensions_;
    static inline unsigned int numTextureUnits_ = 0;
    static inline LightweightString<char> vendor_;
};
