#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/Compute/OpenGLInterop.h"

#include "OS/Host/GLShare/GLShare.h"
#include "OS/Mac/Compute/OpenCLBuffer.h"
#include "OS/Mac/Compute/OpenCLPlatforms.h"
#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"

#include <algorithm>
#include <utility>

namespace {

// What was drawn must have reached the texture before OpenCL reads it.
void finishGL()
{
    if (Host::GLShare::current().kind != Host::GLShare::eNone)
        glFinish();
}

} // namespace

void OpenGLInterop::setQueue(cl_command_queue queue, cl_device_id device)
{
    queue_ = queue;
    shares_ = OpenCLPlatforms::hasExtension(device, "cl_khr_gl_sharing");
    ordersWithGL_ = OpenCLPlatforms::hasExtension(device, "cl_khr_gl_event");
}

Tq::Ptr<iGPUBuffer> OpenGLInterop::createBuffer(const iOpenCLContext& context,
                                                const Tq::Ptr<iGPUImage>& image) const
{
    const Tq::Ptr<OpenGLImage> glImage = image.dynamicCast<OpenGLImage>();
    if (!glImage || !shares_)
        return {};
    const OpenGLContextProtector protector;
    const auto held = glImage->buffer().dynamicCast<OpenCLBuffer>();
    if (held && held->belongsTo(context))
        return held;

    cl_int error = CL_SUCCESS;
    CLMem mem(clCreateFromGLTexture2D(context.getImpl(), CL_MEM_READ_WRITE, GL_TEXTURE_2D, 0,
                                      glImage->getTextureID(), &error));
    if (!mem) {
        OSInternal::printLine(
            "OpenGLInterop::createBuffer() : clCreateFromGLTexture2D() failed (%d)\n", error);
        return {};
    }
    const Tq::Ptr<iGPUBuffer> buffer(new OpenCLBuffer(0, std::move(mem), nullptr));
    glImage->setBuffer(buffer);
    return buffer;
}

OpenGLInterop::Objects OpenGLInterop::fromGL(const cl_mem (&mems)[16], unsigned char count) const
{
    Objects found;
    if (!shares_)
        return found;
    const unsigned char size = std::min<unsigned char>(count, 16);
    for (unsigned char i = 0; i < size; ++i)
        if (clGetGLObjectInfo(mems[i], nullptr, nullptr) == CL_SUCCESS)
            found.mems[found.count++] = mems[i];
    return found;
}

void OpenGLInterop::prepareBuffers(const cl_mem (&mems)[16], unsigned char count) const
{
    const Objects objects = fromGL(mems, count);
    if (objects.count == 0)
        return;
    const OpenGLContextProtector protector;
    finishGL();
    const cl_int error =
        clEnqueueAcquireGLObjects(queue_, objects.count, objects.mems, 0, nullptr, nullptr);
    if (error != CL_SUCCESS)
        OSInternal::printLine("OpenGLInterop::prepareBuffers() : acquire failed (%d)\n", error);
}

void OpenGLInterop::unPrepareBuffers(const cl_mem (&mems)[16], unsigned char count) const
{
    const Objects objects = fromGL(mems, count);
    if (objects.count == 0)
        return;
    const OpenGLContextProtector protector;
    const cl_int error =
        clEnqueueReleaseGLObjects(queue_, objects.count, objects.mems, 0, nullptr, nullptr);
    if (error != CL_SUCCESS)
        OSInternal::printLine("OpenGLInterop::unPrepareBuffers() : release failed (%d)\n", error);
    if (ordersWithGL_)
        clFlush(queue_);
    else
        clFinish(queue_);
}
