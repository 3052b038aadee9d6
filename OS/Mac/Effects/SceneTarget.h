#pragma once

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include <OS/Primitives/XY.h>

/// A framebuffer with depth whose colours end up in a texture, bound while this lives. Edges are
/// softened where the driver can take several samples of a pixel.
///
/// Under the GL lock with a context current; of that context alone. Whoever makes it puts the
/// framebuffers that were bound back.
class SceneTarget
{
public:
    SceneTarget(GLuint texture, const XY<int>& size, bool isDeep);
    ~SceneTarget();
    SceneTarget(const SceneTarget&) = delete;
    SceneTarget& operator=(const SceneTarget&) = delete;

    /// Whether it can be drawn on.
    bool isComplete() const { return isComplete_; }
    /// Puts what was drawn into the texture.
    void finish();

private:
    bool attach(GLsizei samples);

    XY<int> size_;
    bool isDeep_;
    GLuint output_ = 0;
    GLuint sampled_ = 0; // 0: the output is drawn on itself
    GLuint colours_ = 0;
    GLuint depth_ = 0;
    bool isComplete_ = false;
};
