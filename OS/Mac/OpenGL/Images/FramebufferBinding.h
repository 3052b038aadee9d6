#pragma once

/// Puts the framebuffer objects and the viewport of the current context back as they were, at the
/// end of a scope. The toolkit restores what it bound last itself, not what is bound.
class FramebufferBinding
{
public:
    FramebufferBinding();
    ~FramebufferBinding();
    FramebufferBinding(const FramebufferBinding&) = delete;
    FramebufferBinding& operator=(const FramebufferBinding&) = delete;

private:
    int draw_ = 0;
    int read_ = 0;
    int viewport_[4] = {};
};
