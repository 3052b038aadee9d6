#pragma once

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include <array>
#include <vector>

/// How a sampler reads its texture, as GL's values. What its file does not say is clamped to the
/// edge and softened, as the library's textures are.
struct SamplerStates
{
    GLenum addressU = GL_CLAMP_TO_EDGE;
    GLenum addressV = GL_CLAMP_TO_EDGE;
    GLenum addressW = GL_CLAMP_TO_EDGE;
    GLenum minFilter = GL_LINEAR;
    GLenum magFilter = GL_LINEAR;
    std::array<float, 4> border{};

    /// Reads the states by their names, whose case does not matter. The plain clamp becomes clamp
    /// to edge, deliberately; every other address is kept. Textures have no smaller versions of
    /// themselves: a filter between them becomes the one within.
    static SamplerStates of(const std::vector<EffectCompiler::StateAssignment>& states);

    friend auto operator<=>(const SamplerStates&, const SamplerStates&) = default;
};
