#pragma once

#include <OS/Compute/iGPUBuffer.h>
#include <OS/Compute/iGPUProgram.h>
#include <OS/OpenGL/iGPUImage.h>

#include <vector>

/// Compute on a GPU: makes buffers and compiles programs. Made by
/// OS()->mediaServices()->createGPUComputeContext; used through Tq::Ptr from any thread.
///
/// Failures leave one line on standard output and null; nothing is thrown.
class OS_API iGPUComputeContext : public iObject
{
public:
    enum eType : int
    {
        eOpenCL = 0
    };

    ~iGPUComputeContext() override = default;

    /// Memory of the device, to be read and written; its contents are whatever was there.
    /// @return null, after "OpenCLBuffer::make() : clCreateBuffer() failed (%d)\n": 0 bytes, too
    /// many
    virtual Tq::Ptr<iGPUBuffer> createBuffer(unsigned int sizeBytes) = 0;
    /// The memory of an image on the GPU: kernels read and write the image itself. Made once for
    /// each image; it lives as long as the image's texture, which keeps the buffer of the context
    /// that asked last. Takes the GL lock.
    /// @return null for what is no image of this library and where the context does not share with
    ///         GL, and after "OpenGLInterop::createBuffer() : clCreateFromGLTexture2D() failed
    ///         (%d)\n": a driver may refuse a format
    virtual Tq::Ptr<iGPUBuffer> createBuffer(const Tq::Ptr<iGPUImage>& image) = 0;
    /// Compiles OpenCL C, with relaxed arithmetic. Before the lines come the macros RED(p),
    /// GREEN(p), BLUE(p) and ALPHA(p), the components of a pixel that was read, and MAKEPIXEL(r, g,
    /// b, a), which stores blue first, deliberately: it matches the bytes of GPU images.
    /// @return null where it does not compile, after the compiler's log between two lines of
    /// dashes,
    ///         at most 10,239 bytes of it. The runtime's program is not released then,
    ///         deliberately.
    virtual Tq::Ptr<iGPUProgram>
    compileProgram(const std::vector<LightweightString<char>>& lines) = 0;
};
