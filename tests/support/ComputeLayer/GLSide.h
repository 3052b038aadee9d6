#pragma once

#include "Runtime.h"

#include <functional>
#include <memory>

/// A GL context of the layer's own in the share group that a compute context was made with, so that
/// nothing of the application's GL state changes, whatever context it has current, if any.
class GLSide
{
public:
    /// By the properties of sharing. @return null where the context they name cannot be shared with
    static std::unique_ptr<GLSide> makeGLX(cl_context_properties display,
                                           cl_context_properties share);
    static std::unique_ptr<GLSide> makeEGL(cl_context_properties display,
                                           cl_context_properties share);

    virtual ~GLSide() = default;
    /// Runs code with the context current, waits for GL, and puts the caller's context back.
    virtual void with(const std::function<void()>& code) = 0;
};
