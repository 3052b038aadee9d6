#include "Compute/ComputeRig.h"

#include <algorithm>
#include <cstring>

const Lines kFill = {
    "kernel void fill(global float* out, float first, short n) {",
    "  int i = get_global_id(0);",
    "  if (i < n) out[i] = first + i;",
    "}",
};

const Lines kSwap = {
    "const sampler_t at = CLK_NORMALIZED_COORDS_FALSE | CLK_ADDRESS_CLAMP_TO_EDGE | "
    "CLK_FILTER_NEAREST;",
    "kernel void swap(read_only image2d_t in, write_only image2d_t out, float red) {",
    "  int2 p = (int2)(get_global_id(0), get_global_id(1));",
    "  if (p.x >= get_image_width(out) || p.y >= get_image_height(out)) return;",
    "  float4 v = read_imagef(in, at, p);",
    "  write_imagef(out, p, MAKEPIXEL(red * RED(v), GREEN(v), BLUE(v), ALPHA(v)));",
    "}",
};

// The library's own calls come here; the layer's do not.
extern "C" {
void __real_glFinish();
void __wrap_glFinish();
void __wrap_glFinish()
{
    if (ComputeLayer* const layer = ComputeLayer::instance())
        layer->note("glFinish");
    __real_glFinish();
}
}

ComputeTest::ComputeTest()
{
    if (!layer_)
        return;
    layer_->reset();
    for (int kind = 0; kind < ComputeLayer::eKinds; ++kind)
        before_[static_cast<std::size_t>(kind)] =
            layer_->alive(static_cast<ComputeLayer::Kind>(kind));
}

ComputeTest::~ComputeTest()
{
    if (!layer_)
        return;
    before_[ComputeLayer::eProgram] += programsThatStay_;
    const char* const names[] = {"contexts", "queues", "buffers", "programs", "kernels"};
    for (std::size_t kind = 0; kind < ComputeLayer::eKinds; ++kind)
        EXPECT_EQ(layer_->alive(static_cast<ComputeLayer::Kind>(kind)), before_[kind])
            << "not all " << names[kind] << " were released, or too many";
}

long ComputeTest::seen(const std::string& call) const
{
    const std::vector<std::string> calls = layer_->calls();
    return std::count(calls.begin(), calls.end(), call);
}

Tq::Ptr<iGPUProgramKernel> compile(iGPUComputeContext& context, const Lines& lines)
{
    const auto program = context.compileProgram(lines);
    return program ? program->getKernel(static_cast<unsigned short>(0)) : nullptr;
}

std::vector<float> floatsIn(const Tq::Ptr<iGPUBuffer>& buffer, std::size_t count)
{
    std::vector<float> values(count);
    const Tq::Ptr<unsigned char> bytes = buffer->copyToHost();
    if (!bytes)
        return {};
    std::memcpy(values.data(), bytes.get(), count * sizeof(float));
    return values;
}
