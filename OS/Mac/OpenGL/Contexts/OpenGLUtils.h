#pragma once

/// The process's OpenGL services.
class OpenGLUtils
{
public:
    /// Always true: the toolkit brings its own software path where there is no driver. From any
    /// thread.
    static bool isAvailable() { return true; }
};
