#pragma once

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/Effects/SamplerStates.h"

#include <OS/Primitives/XY.h>

#include <map>
#include <optional>
#include <vector>

/// A texture that an effect reads.
struct EffectTexture
{
    GLenum target = GL_TEXTURE_2D;
    GLuint name = 0; ///< 0: transparent black
    XY<int> size;
};

/// What effects keep in the sharing group for their textures: sampler objects, which hold the ways
/// of reading them, and a transparent black texture of each kind. Under the GL lock with a context
/// of the group current. Goes with the group.
class EffectTextureResources
{
public:
    static constexpr std::size_t kMostSamplers = 256;

    static EffectTextureResources& instance();

    /// 0 where the driver has no sampler objects, or there are too many.
    GLuint sampler(const SamplerStates& states);
    GLuint blank(GLenum target);

private:
    std::map<SamplerStates, GLuint> samplers_;
    std::map<GLenum, GLuint> blanks_;
    std::optional<bool> hasSamplerObjects_;
};

/// Textures bound to units while this lives. Afterwards units and textures are as they were. Where
/// there are no sampler objects, all samplers of one texture read as the last of them does.
class EffectTexturesInUse
{
public:
    EffectTexturesInUse();
    ~EffectTexturesInUse();
    EffectTexturesInUse(const EffectTexturesInUse&) = delete;
    EffectTexturesInUse& operator=(const EffectTexturesInUse&) = delete;

    /// Binds a texture to the next unit. @param target what the program reads: a texture of another
    /// kind counts as transparent black
    void bind(GLenum target, const EffectTexture& texture, const SamplerStates& states);

private:
    // What a texture had where its own states had to be changed.
    struct Kept
    {
        GLint wrap[3] = {};
        GLint filters[2] = {};
        GLfloat border[4] = {};
    };
    struct Unit
    {
        GLenum target;
        GLint binding;
        GLint sampler = 0;
        bool hasSampler = false;
        std::optional<Kept> kept;
    };
    static Kept exchange(GLenum target, const SamplerStates& states);
    static void putBack(GLenum target, const Kept& kept);

    std::vector<Unit> units_;
    GLint active_ = GL_TEXTURE0;
};
