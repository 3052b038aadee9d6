#pragma once

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include <vector>

/// A uniform of a linked program.
struct ShaderUniform
{
    GLint location = -1;
    GLenum type = GL_FLOAT;
    GLint elements = 1; ///< of an array

    /// Gives it numbers: row by row, element by element. Those that are missing count as 0, further
    /// ones are not used. With its program in use.
    void set(const std::vector<float>& numbers) const;
};
