#include "SharedTextures.h"

#include "DressedDevices.h"
#include "GLSide.h"
#include "LayerState.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <map>
#include <mutex>
#include <vector>

namespace {

struct Context
{
    std::shared_ptr<GLSide> gl; // null where it shares with nothing
    int references = 1;
};

struct Texture
{
    std::shared_ptr<GLSide> gl;
    GLuint name = 0;
    GLint level = 0;
    GLint width = 0;
    GLint height = 0;
    GLint bits = 0; // of red

    GLenum type() const { return bits == 16 ? GL_UNSIGNED_SHORT : GL_UNSIGNED_BYTE; }
    std::size_t bytes() const { return static_cast<std::size_t>(width * height * bits / 2); }
};

// Of the two lists; never held in a call of the runtime, whose threads call back.
std::mutex mutex;
// While a context of the layer's own is current.
std::mutex glMutex;
// Never destroyed: objects may be released from static destructors.
auto& contexts = *new std::map<cl_context, Context>;
auto& textures = *new std::map<cl_mem, Texture>;

void with(GLSide& gl, const std::function<void()>& code)
{
    const std::lock_guard lock(glMutex);
    gl.with(code);
}

std::shared_ptr<GLSide> glOf(cl_context context)
{
    const std::lock_guard lock(mutex);
    const auto found = contexts.find(context);
    return found != contexts.end() ? found->second.gl : nullptr;
}

// Without GL where an object is not made from a texture.
Texture textureOf(cl_mem mem)
{
    const std::lock_guard lock(mutex);
    const auto found = textures.find(mem);
    return found != textures.end() ? found->second : Texture();
}

using Properties = std::map<cl_context_properties, cl_context_properties>;

// @return the side of GL that properties name; null where they are wrong
std::unique_ptr<GLSide> glSideOf(Properties& named)
{
    const bool glx = named.count(CL_GLX_DISPLAY_KHR) > 0;
    const bool egl = named.count(CL_EGL_DISPLAY_KHR) > 0;
    if (named.size() != 2 || !named[CL_GL_CONTEXT_KHR] || glx == egl)
        return nullptr;
    LayerState::get().remark(glx ? "GLX" : "EGL");
    return glx ? GLSide::makeGLX(named[CL_GLX_DISPLAY_KHR], named[CL_GL_CONTEXT_KHR])
               : GLSide::makeEGL(named[CL_EGL_DISPLAY_KHR], named[CL_GL_CONTEXT_KHR]);
}

Texture measure(const std::shared_ptr<GLSide>& gl, GLuint name, GLint level)
{
    Texture texture{gl, name, level};
    with(*gl, [&] {
        if (!glIsTexture(name))
            return;
        glBindTexture(GL_TEXTURE_2D, name);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &texture.width);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_HEIGHT, &texture.height);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_RED_SIZE, &texture.bits);
    });
    return texture;
}

void CL_CALLBACK forget(cl_mem mem, void*)
{
    const std::lock_guard lock(mutex);
    textures.erase(mem);
}

// @return whether the texture is still there
bool copyFromGL(const Texture& texture, std::vector<char>& pixels)
{
    bool there = false;
    with(*texture.gl, [&] {
        there = glIsTexture(texture.name);
        glBindTexture(GL_TEXTURE_2D, texture.name);
        glGetTexImage(GL_TEXTURE_2D, texture.level, GL_RGBA, texture.type(), pixels.data());
    });
    return there;
}

void copyToGL(const Texture& texture, const std::vector<char>& pixels)
{
    with(*texture.gl, [&] {
        glBindTexture(GL_TEXTURE_2D, texture.name);
        glTexSubImage2D(GL_TEXTURE_2D, texture.level, 0, 0, texture.width, texture.height, GL_RGBA,
                        texture.type(), pixels.data());
    });
}

cl_int acquireOne(cl_command_queue queue, cl_mem mem, const Texture& texture)
{
    const std::size_t from[3] = {};
    const std::size_t size[] = {static_cast<std::size_t>(texture.width),
                                static_cast<std::size_t>(texture.height), 1};
    std::vector<char> pixels(texture.bytes());
    if (!copyFromGL(texture, pixels))
        return CL_INVALID_GL_OBJECT;
    return runtime.clEnqueueWriteImage(queue, mem, CL_TRUE, from, size, 0, 0, pixels.data(), 0,
                                       nullptr, nullptr);
}

cl_int releaseOne(cl_command_queue queue, cl_mem mem, const Texture& texture)
{
    const std::size_t from[3] = {};
    const std::size_t size[] = {static_cast<std::size_t>(texture.width),
                                static_cast<std::size_t>(texture.height), 1};
    std::vector<char> pixels(texture.bytes());
    const cl_int error = runtime.clEnqueueReadImage(queue, mem, CL_TRUE, from, size, 0, 0,
                                                    pixels.data(), 0, nullptr, nullptr);
    if (error == CL_SUCCESS)
        copyToGL(texture, pixels);
    return error;
}

template <class One>
cl_int each(cl_command_queue queue, cl_uint count, const cl_mem* mems, One one)
{
    LayerState::get().remark(std::to_string(count));
    for (cl_uint i = 0; i < count; ++i)
        if (!textureOf(mems[i]).gl)
            return CL_INVALID_GL_OBJECT;
    for (cl_uint i = 0; i < count; ++i)
        if (const cl_int error = one(queue, mems[i], textureOf(mems[i])))
            return error;
    return CL_SUCCESS;
}

} // namespace

namespace SharedTextures {

cl_context CL_API_CALL createContext(const cl_context_properties* properties, cl_uint count,
                                     const cl_device_id* devices, Notify notify, void* user,
                                     cl_int* error)
{
    Properties named;
    for (const cl_context_properties* p = properties; p && *p; p += 2)
        named[p[0]] = p[1];
    const cl_context_properties rest[] = {CL_CONTEXT_PLATFORM, named[CL_CONTEXT_PLATFORM], 0};
    named.erase(CL_CONTEXT_PLATFORM);

    Context made;
    if (!named.empty()) {
        made.gl = glSideOf(named);
        if (!made.gl || count != 1 || !DressedDevices::dressOf(*devices).shares)
            return refuse(error, CL_INVALID_GL_SHAREGROUP_REFERENCE_KHR);
    }
    const cl_context context = runtime.clCreateContext(rest, count, devices, notify, user, error);
    if (context) {
        const std::lock_guard lock(mutex);
        contexts[context] = made;
    }
    return context;
}

cl_int CL_API_CALL retainContext(cl_context context)
{
    {
        const std::lock_guard lock(mutex);
        ++contexts[context].references;
    }
    return runtime.clRetainContext(context);
}

cl_int CL_API_CALL releaseContext(cl_context context)
{
    {
        const std::lock_guard lock(mutex);
        if (--contexts[context].references == 0)
            contexts.erase(context);
    }
    return runtime.clReleaseContext(context);
}

cl_mem CL_API_CALL createFromGLTexture(cl_context context, cl_mem_flags flags, cl_GLenum target,
                                       cl_GLint level, cl_GLuint name, cl_int* error)
{
    const std::shared_ptr<GLSide> gl = glOf(context);
    if (!gl)
        return refuse(error, CL_INVALID_CONTEXT);
    if (target != GL_TEXTURE_2D)
        return refuse(error, CL_INVALID_VALUE);
    const Texture texture = measure(gl, name, level);
    if (texture.width < 1 || texture.height < 1)
        return refuse(error, CL_INVALID_GL_OBJECT);
    if (texture.bits != 8 && texture.bits != 16)
        return refuse(error, CL_INVALID_IMAGE_FORMAT_DESCRIPTOR);

    const cl_channel_type channel = texture.bits == 8 ? CL_UNORM_INT8 : CL_UNORM_INT16;
    const cl_image_format format{CL_RGBA, channel};
    cl_image_desc description{};
    description.image_type = CL_MEM_OBJECT_IMAGE2D;
    description.image_width = static_cast<std::size_t>(texture.width);
    description.image_height = static_cast<std::size_t>(texture.height);
    const cl_mem mem = runtime.clCreateImage(context, flags, &format, &description, nullptr, error);
    if (mem) {
        const std::lock_guard lock(mutex);
        textures[mem] = texture;
        runtime.clSetMemObjectDestructorCallback(mem, forget, nullptr);
    }
    return mem;
}

cl_int CL_API_CALL acquire(cl_command_queue queue, cl_uint count, const cl_mem* mems, cl_uint,
                           const cl_event*, cl_event*)
{
    return each(queue, count, mems, acquireOne);
}

cl_int CL_API_CALL release(cl_command_queue queue, cl_uint count, const cl_mem* mems, cl_uint,
                           const cl_event*, cl_event*)
{
    return each(queue, count, mems, releaseOne);
}

cl_int CL_API_CALL releaseMem(cl_mem mem)
{
    if (const Texture texture = textureOf(mem); texture.gl) {
        bool there = false;
        with(*texture.gl, [&] { there = glIsTexture(texture.name); });
        if (!there)
            LayerState::get().remark("after its texture");
    }
    return runtime.clReleaseMemObject(mem);
}

cl_int CL_API_CALL getGLObjectInfo(cl_mem mem, cl_gl_object_type* type, cl_GLuint* name)
{
    const Texture texture = textureOf(mem);
    if (!texture.gl)
        return CL_INVALID_GL_OBJECT;
    if (type)
        *type = CL_GL_OBJECT_TEXTURE2D;
    if (name)
        *name = texture.name;
    return CL_SUCCESS;
}

} // namespace SharedTextures
