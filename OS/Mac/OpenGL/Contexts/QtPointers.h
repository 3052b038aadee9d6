#pragma once

#include <OS/Core/Ptr.h>

class QGLFramebufferObject;
class QGLWidget;
class QtGLWidget;

// The toolkit's GL objects carry no count of their own. Include this before a pointer to one is
// used.
template <>
struct Tq::RefCountTraitsOf<QGLFramebufferObject>
{
    using Type = ExternalRefCountTraits;
};
template <>
struct Tq::RefCountTraitsOf<QGLWidget>
{
    using Type = ExternalRefCountTraits;
};
template <>
struct Tq::RefCountTraitsOf<QtGLWidget>
{
    using Type = ExternalRefCountTraits;
};
