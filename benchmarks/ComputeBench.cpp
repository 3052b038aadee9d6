// What compute costs beside the bare calls of OpenCL, a frame's way from GL through a kernel and
// back against copies through main memory, and what compiling costs. On a machine without a GPU run
// it twice: as it is, which measures what needs no sharing on whatever device there is, and in a
// display behind the tests' layer, whose copies of textures the figures of images then contain:
//   tests/support/with-display env OPENCL_LAYERS=build/release/tests/libcompute_layer.so
//     OCL_ICD_VENDORS=pocl.icd build/release/benchmarks/ComputeBench
#include "support/PairedRuns.h"

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/Compute/CLHandle.h"
#include "OS/Mac/Compute/OpenCLBuffer.h"
#include "OS/Mac/Compute/OpenCLContext.h"
#include "OS/Mac/Compute/OpenCLPlatforms.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Painting/iPixelGuard.h>

#include <cmath>
#include <ctime>
#include <functional>
#include <string>

namespace {

using Lines = std::vector<LightweightString<char>>;

const Lines kPlain = {
    "kernel void plain(global float* a, global float* b, float c, short d) {}",
};
const Lines kImages = {
    "kernel void images(read_only image2d_t a, write_only image2d_t b, float c, short d) {}",
};
const Lines kInvert = {
    "const sampler_t at = CLK_NORMALIZED_COORDS_FALSE | CLK_ADDRESS_CLAMP | CLK_FILTER_NEAREST;",
    "kernel void invert(read_only image2d_t in, write_only image2d_t out) {",
    "  int2 p = (int2)(get_global_id(0), get_global_id(1));",
    "  if (p.x >= get_image_width(out) || p.y >= get_image_height(out)) return;",
    "  float4 v = read_imagef(in, at, p);",
    "  write_imagef(out, p, (float4)(1 - v.x, 1 - v.y, 1 - v.z, v.w));",
    "}",
};

struct Stage
{
    Tq::Ptr<iOpenCLContext> context;
    cl_command_queue queue;
    std::size_t side; // of a work-group

    void finish() const { clFinish(queue); }
    std::size_t whole(unsigned int size) const { return (size + side - 1) / side * side; }
    CLKernel rawKernel(const Lines& lines, const char* name) const
    {
        std::string source;
        for (const auto& line : lines)
            source += std::string(line.view()) + '\n';
        const char* text = source.c_str();
        cl_device_id device = context->getDevice();
        const CLProgram program(
            clCreateProgramWithSource(context->getImpl(), 1, &text, nullptr, nullptr));
        clBuildProgram(program.get(), 1, &device, "-cl-fast-relaxed-math", nullptr, nullptr);
        return CLKernel(clCreateKernel(program.get(), name, nullptr));
    }
    void runRaw(cl_kernel kernel, unsigned int width, unsigned int height) const
    {
        const std::size_t global[] = {whole(width), whole(height)}, local[] = {side, side};
        clEnqueueNDRangeKernel(queue, kernel, 2, nullptr, global, local, 0, nullptr, nullptr);
    }
};

cl_mem memOf(const Tq::Ptr<iGPUBuffer>& buffer)
{
    return buffer.dynamicCast<OpenCLBuffer>()->getImpl();
}

void setRaw(cl_kernel kernel, cl_mem a, cl_mem b)
{
    const float c = 1.0f;
    const short d = 2;
    clSetKernelArg(kernel, 0, sizeof a, &a);
    clSetKernelArg(kernel, 1, sizeof b, &b);
    clSetKernelArg(kernel, 2, sizeof c, &c);
    clSetKernelArg(kernel, 3, sizeof d, &d);
}

void setOurs(iGPUProgramKernel& kernel, const Tq::Ptr<iGPUBuffer>& a, const Tq::Ptr<iGPUBuffer>& b)
{
    kernel.setArg(0, a);
    kernel.setArg(1, b);
    kernel.setArg(2, 1.0f);
    kernel.setArg(3, short{2});
}

Tq::Ptr<OpenGLImage> makeImage(const XY<int>& size)
{
    return OpenGLImage::create(size, iGPUImage::eARGB8).dynamicCast<OpenGLImage>();
}

// Microseconds of the calling thread's own time for each call of `code`: runtimes have threads of
// their own, which compete with it.
double timedCalls(const Stage& stage, const std::function<void()>& code)
{
    constexpr int kRuns = 500;
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
    };
    const double start = now();
    for (int i = 0; i < kRuns; ++i)
        code();
    const double taken = now() - start;
    stage.finish();
    return taken / kRuns;
}

void benchBuffers(const Stage& stage)
{
    Bench::printHeader("Four arguments and an empty kernel, on buffers", "us");
    const auto kernel = stage.context->compileProgram(kPlain)->getKernel("plain");
    const CLKernel raw = stage.rawKernel(kPlain, "plain");
    const auto a = stage.context->createBuffer(64), b = stage.context->createBuffer(64);
    const auto ours = [&] {
        setOurs(*kernel, a, b);
        kernel->execute2D(16, 16);
    };
    const auto bare = [&] {
        setRaw(raw.get(), memOf(a), memOf(b));
        stage.runRaw(raw.get(), 16, 16);
        clFlush(stage.queue);
    };
    Bench::compare("buffers",
                   {{"ours", [&] { return timedCalls(stage, ours); }},
                    {"bare calls", [&] { return timedCalls(stage, bare); }}},
                   {{{"bare calls"}, 1.1}}, 25);
}

void benchImages(const Stage& stage)
{
    Bench::printHeader("Four arguments and an empty kernel, on images acquired and released", "us");
    const auto kernel = stage.context->compileProgram(kImages)->getKernel("images");
    const CLKernel raw = stage.rawKernel(kImages, "images");
    const auto in = makeImage({16, 16}), out = makeImage({16, 16});
    const auto from = stage.context->createBuffer(in), to = stage.context->createBuffer(out);
    const cl_mem shared[] = {memOf(from), memOf(to)};
    const auto ours = [&] {
        setOurs(*kernel, from, to);
        kernel->execute2D(16, 16);
    };
    const auto bare = [&] {
        const OpenGLContextProtector protector;
        setRaw(raw.get(), shared[0], shared[1]);
        glFinish();
        clEnqueueAcquireGLObjects(stage.queue, 2, shared, 0, nullptr, nullptr);
        stage.runRaw(raw.get(), 16, 16);
        clEnqueueReleaseGLObjects(stage.queue, 2, shared, 0, nullptr, nullptr);
        stage.finish();
    };
    Bench::compare("images",
                   {{"ours", [&] { return timedCalls(stage, ours); }},
                    {"bare calls", [&] { return timedCalls(stage, bare); }}},
                   {{{"bare calls"}, 1.1}});
}

// The way without sharing: each frame is read back, uploaded to OpenCL, and the result likewise.
class ThroughMainMemory
{
public:
    ThroughMainMemory(const Stage& stage, const XY<int>& size)
        : stage_(stage), size_(size), kernel_(stage.rawKernel(kInvert, "invert")), in_(make()),
          out_(make())
    {
        const cl_mem in = in_.get(), out = out_.get();
        clSetKernelArg(kernel_.get(), 0, sizeof in, &in);
        clSetKernelArg(kernel_.get(), 1, sizeof out, &out);
    }

    Tq::Ptr<iGPUImage> run(const Tq::Ptr<iGPUImage>& frame)
    {
        iMediaServices* const media = OS()->mediaServices();
        const Tq::Ptr<iHostImage> host = media->copyToHost(frame);
        const Tq::Ptr<iPixelGuard> pixels = host->lock();
        const std::size_t from[3] = {}, all[] = {static_cast<std::size_t>(size_.x),
                                                 static_cast<std::size_t>(size_.y), 1};
        const auto row = static_cast<std::size_t>(pixels->getStride());
        clEnqueueWriteImage(stage_.queue, in_.get(), CL_TRUE, from, all, row, 0,
                            pixels->getPixels(), 0, nullptr, nullptr);
        stage_.runRaw(kernel_.get(), static_cast<unsigned int>(size_.x),
                      static_cast<unsigned int>(size_.y));
        clEnqueueReadImage(stage_.queue, out_.get(), CL_TRUE, from, all, row, 0,
                           pixels->getPixels(), 0, nullptr, nullptr);
        return media->copyToGPU(host, iGPUImage::eARGB8);
    }

private:
    CLMem make() const
    {
        const cl_image_format format{CL_RGBA, CL_UNORM_INT8};
        cl_image_desc description{};
        description.image_type = CL_MEM_OBJECT_IMAGE2D;
        description.image_width = static_cast<std::size_t>(size_.x);
        description.image_height = static_cast<std::size_t>(size_.y);
        return CLMem(clCreateImage(stage_.context->getImpl(), CL_MEM_READ_WRITE, &format,
                                   &description, nullptr, nullptr));
    }

    const Stage& stage_;
    XY<int> size_;
    CLKernel kernel_;
    CLMem in_, out_;
};

void benchFrame(const Stage& stage)
{
    Bench::printHeader("A frame of 1920 x 1080 from GL through a kernel and back", "ms");
    const XY<int> size{1920, 1080};
    const auto kernel =
        stage.context->compileProgram(kInvert)->getKernel(static_cast<unsigned short>(0));
    const auto in = makeImage(size), out = makeImage(size);
    const auto from = stage.context->createBuffer(in), to = stage.context->createBuffer(out);
    ThroughMainMemory peer(stage, size);
    constexpr double kMillions = 1e6;
    Bench::compare("shared",
                   {{"shared",
                     [&] {
                         return Bench::timed(kMillions, [&] {
                             kernel->setArg(0, from);
                             kernel->setArg(1, to);
                             kernel->execute2D(1920, 1080);
                             stage.finish();
                         });
                     }},
                    {"copies through main memory",
                     [&] {
                         return Bench::timed(kMillions, [&] {
                             peer.run(in);
                             const OpenGLContextProtector protector;
                             glFinish();
                         });
                     }}},
                   {{{"copies through main memory"}, 0.0}});
}

void benchCompile(const Stage& stage)
{
    Bench::printHeader("Compiling a program of one kernel", "ms");
    int serial = 0;
    const auto compile = [&](const std::string& remark) {
        Lines lines = kInvert;
        lines.push_back(remark.c_str());
        return Bench::timed(1e6, [&] { Bench::keep(stage.context->compileProgram(lines)); });
    };
    const std::string process =
        std::to_string(std::chrono::steady_clock::now().time_since_epoch().count());
    Bench::compare("from the runtime's cache",
                   {{"cached", [&] { return compile("// the same"); }},
                    {"new source",
                     [&] {
                         return compile("kernel void k" + process + std::to_string(serial++) +
                                        "(global int* a) { *a = 1; }");
                     }}},
                   {{{"new source"}, 0.0}});
}

// On the first device of any kind, where there is no GPU.
Tq::Ptr<iOpenCLContext> makeAnyway()
{
    for (cl_platform_id platform : OpenCLPlatforms::list(OpenCLPlatforms::count()))
        for (cl_device_id device : OpenCLPlatforms::devices(platform, CL_DEVICE_TYPE_ALL))
            if (CLContext context{clCreateContext(nullptr, 1, &device, nullptr, nullptr, nullptr)})
                return new OpenCLContext(std::move(context), device);
    return {};
}

} // namespace

int main()
{
    OpenGLUtils::instance();
    Tq::Ptr<iOpenCLContext> context = OpenCLContext::make();
    if (!context)
        context = makeAnyway();
    if (!context)
        return 1;
    std::printf("%s\n", OpenCLPlatforms::text(context->getDevice(), CL_DEVICE_NAME).c_str());
    std::size_t largest = 0;
    clGetDeviceInfo(context->getDevice(), CL_DEVICE_MAX_WORK_GROUP_SIZE, sizeof largest, &largest,
                    nullptr);
    const Stage stage{context, context->getCommandQueue(),
                      static_cast<std::size_t>(std::sqrt(static_cast<double>(largest & 0xFFFF)))};
    benchBuffers(stage);
    if (OpenGLUtils::isInitialised() && context->createBuffer(makeImage({4, 4}))) {
        benchImages(stage);
        benchFrame(stage);
    }
    benchCompile(stage);
    OpenGLUtils::shutdown();
    return 0;
}
