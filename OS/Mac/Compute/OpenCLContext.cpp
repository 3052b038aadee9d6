#include "OS/Mac/Compute/OpenCLContext.h"

#include "OS/Mac/Compute/GLCLProgram.h"
#include "OS/Mac/Compute/OpenCLPlatforms.h"
#include "OS/Mac/Compute/OpenGLInterop.h"
#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <utility>

namespace {

// How kernels name what is in a pixel. MAKEPIXEL matches the byte order of GPU images.
constexpr const char* kPrelude[] = {
    "#define RED( PIXEL )         PIXEL.x",
    "#define GREEN( PIXEL )       PIXEL.y",
    "#define BLUE( PIXEL )        PIXEL.z",
    "#define ALPHA( PIXEL )       PIXEL.w",
    "#define MAKEPIXEL( R,G,B,A ) ( float4 )( B,G,R,A )",
};

void logTimed(const char* text)
{
    OSInternal::printTimed(OS()->utils()->elapsedTime(), text);
}

Tq::Ptr<iOpenCLContext> makeOn(cl_device_id device, const cl_context_properties* properties)
{
    cl_int error = CL_SUCCESS;
    CLContext context(clCreateContext(properties, 1, &device, nullptr, nullptr, &error));
    if (!context)
        return {};
    Tq::Ptr<iOpenCLContext> made(new OpenCLContext(std::move(context), device));
    if (!made->getCommandQueue())
        return {};
    return made;
}

} // namespace

Tq::Ptr<iOpenCLContext> OpenCLContext::make()
{
    const cl_uint count = OpenCLPlatforms::count();
    if (count == 0) {
        logTimed("OpenCLContext::make() : Failed to find any CL platforms");
        return {};
    }
    const std::vector<cl_platform_id> platforms = OpenCLPlatforms::list(count);
    if (platforms.empty())
        return {};

    const OpenGLContextProtector protector;
    for (cl_platform_id platform : platforms) {
        const auto properties = OpenCLPlatforms::contextProperties(platform);
        for (cl_device_id device : OpenCLPlatforms::devices(platform, CL_DEVICE_TYPE_GPU)) {
            if (OpenCLPlatforms::isPassedOver(device))
                continue;
            if (Tq::Ptr<iOpenCLContext> made = makeOn(device, properties.data()))
                return made;
        }
    }
    logTimed("OpenCLContext::make() : Failed to create a cl_context");
    return {};
}

OpenCLContext::OpenCLContext(CLContext context, cl_device_id device)
    : OpenCLContextBase(std::move(context), device, new OpenGLInterop)
{
}

Tq::Ptr<iGPUProgram>
OpenCLContext::compileProgram(const std::vector<LightweightString<char>>& lines)
{
    std::vector<LightweightString<char>> all(std::begin(kPrelude), std::end(kPrelude));
    all.insert(all.end(), lines.begin(), lines.end());
    return GLCLProgram::make(*this, all);
}
