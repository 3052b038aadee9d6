#include "OS/Host/EffectCompiler/GlslNames.h"

#include <algorithm>
#include <array>

namespace EffectCompiler {
namespace {

// Keywords, words kept for later, and functions of GLSL up to 4.60; sorted.
// clang-format off
constexpr auto kReserved = std::to_array<std::string_view>({
    "EmitVertex", "EndPrimitive", "abs", "acos", "acosh", "active", "all", "allInvocations", "any",
    "anyInvocation", "asin", "asinh", "asm", "atan", "atanh", "atomicAdd", "atomicAnd",
    "atomicCompSwap", "atomicCounter", "atomicCounterDecrement", "atomicCounterIncrement",
    "atomicExchange", "atomicMax", "atomicMin", "atomicOr", "atomicXor", "atomic_uint",
    "attribute", "barrier", "bitCount", "bitfieldExtract", "bitfieldInsert", "bitfieldReverse",
    "bool", "break", "buffer", "bvec2", "bvec3", "bvec4", "case", "cast", "ceil", "centroid",
    "clamp", "class", "coherent", "column_major", "common", "const", "continue", "cos", "cosh",
    "cross", "dFdx", "dFdxCoarse", "dFdxFine", "dFdy", "dFdyCoarse", "dFdyFine", "default",
    "defined", "degrees", "demote", "determinant", "discard", "distance", "dmat2", "dmat3",
    "dmat4", "do", "dot", "double", "dvec2", "dvec3", "dvec4", "else", "enum", "equal", "exp",
    "exp2", "extern", "external", "faceforward", "false", "filter", "findLSB", "findMSB", "fixed",
    "flat", "float", "floatBitsToInt", "floatBitsToUint", "floor", "fma", "for", "fract", "frexp",
    "ftransform", "fvec2", "fvec3", "fvec4", "fwidth", "fwidthCoarse", "fwidthFine", "goto",
    "greaterThan", "greaterThanEqual", "groupMemoryBarrier", "half", "highp", "hvec2", "hvec3",
    "hvec4", "if", "iimage2D", "image1D", "image2D", "image2DRect", "image3D", "imageAtomicAdd",
    "imageBuffer", "imageCube", "imageLoad", "imageSize", "imageStore", "imulExtended", "in",
    "inline", "inout", "input", "int", "intBitsToFloat", "interface", "interpolateAtCentroid",
    "interpolateAtOffset", "interpolateAtSample", "invariant", "inverse", "inversesqrt",
    "isampler1D", "isampler2D", "isampler2DRect", "isampler3D", "isamplerBuffer", "isamplerCube",
    "isinf", "isnan", "ivec2", "ivec3", "ivec4", "layout", "ldexp", "length", "lessThan",
    "lessThanEqual", "log", "log2", "long", "lowp", "main", "mat2", "mat2x2", "mat2x3", "mat2x4",
    "mat3", "mat3x2", "mat3x3", "mat3x4", "mat4", "mat4x2", "mat4x3", "mat4x4", "matrixCompMult",
    "max", "mediump", "memoryBarrier", "min", "mix", "mod", "modf", "namespace", "noinline",
    "noise1", "noise2", "noise3", "noise4", "noperspective", "normalize", "not", "notEqual", "out",
    "outerProduct", "output", "packDouble2x32", "packFloat2x16", "packHalf2x16", "packSnorm2x16",
    "packSnorm4x8", "packUnorm2x16", "packUnorm4x8", "packed", "partition", "patch", "pow",
    "precise", "precision", "public", "radians", "readonly", "reflect", "refract", "resource",
    "restrict", "return", "round", "roundEven", "row_major", "sample", "sampler1D",
    "sampler1DArray", "sampler1DArrayShadow", "sampler1DShadow", "sampler2D", "sampler2DArray",
    "sampler2DArrayShadow", "sampler2DMS", "sampler2DMSArray", "sampler2DRect",
    "sampler2DRectShadow", "sampler2DShadow", "sampler3D", "sampler3DRect", "samplerBuffer",
    "samplerCube", "samplerCubeArray", "samplerCubeArrayShadow", "samplerCubeShadow", "shadow1D",
    "shadow1DLod", "shadow1DProj", "shadow1DProjLod", "shadow2D", "shadow2DLod", "shadow2DProj",
    "shadow2DProjLod", "shadow2DRect", "shadow2DRectProj", "shared", "short", "sign", "sin",
    "sinh", "sizeof", "smooth", "smoothstep", "sqrt", "static", "step", "struct", "subroutine",
    "superp", "switch", "tan", "tanh", "template", "texelFetch", "texelFetchOffset", "texture",
    "texture1D", "texture1DArray", "texture1DArrayLod", "texture1DGradARB", "texture1DLod",
    "texture1DProj", "texture1DProjGradARB", "texture1DProjLod", "texture2D", "texture2DArray",
    "texture2DArrayLod", "texture2DGradARB", "texture2DLod", "texture2DProj",
    "texture2DProjGradARB", "texture2DProjLod", "texture2DRect", "texture2DRectGradARB",
    "texture2DRectProj", "texture2DRectProjGradARB", "texture3D", "texture3DGradARB",
    "texture3DLod", "texture3DProj", "texture3DProjGradARB", "texture3DProjLod", "textureCube",
    "textureCubeGradARB", "textureCubeLod", "textureGather", "textureGatherOffset",
    "textureGatherOffsets", "textureGrad", "textureGradOffset", "textureLod", "textureLodOffset",
    "textureOffset", "textureProj", "textureProjGrad", "textureProjGradOffset", "textureProjLod",
    "textureProjLodOffset", "textureProjOffset", "textureQueryLevels", "textureQueryLod",
    "textureSamples", "textureSize", "this", "transpose", "true", "trunc", "typedef", "uaddCarry",
    "uimage2D", "uint", "uintBitsToFloat", "umulExtended", "uniform", "union", "unpackDouble2x32",
    "unpackHalf2x16", "unpackSnorm2x16", "unpackSnorm4x8", "unpackUnorm2x16", "unpackUnorm4x8",
    "unsigned", "usampler1D", "usampler2D", "usampler2DRect", "usampler3D", "usamplerBuffer",
    "usamplerCube", "using", "usubBorrow", "uvec2", "uvec3", "uvec4", "varying", "vec2", "vec3",
    "vec4", "void", "volatile", "while", "writeonly"});
// clang-format on
static_assert(std::is_sorted(kReserved.begin(), kReserved.end()));

/// What begins like this is GLSL's, or ours: inputs, outputs, helpers.
constexpr std::array<std::string_view, 5> kPrefixes = {"gl_", "GL_", "cgi_", "cga_", "fx_"};

/// Without "__", which GLSL keeps for itself, and not ending in "_", so that a number can follow.
std::string simplified(std::string_view name)
{
    std::string text;
    for (const char c : name) {
        const bool isName =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
        const char kept = isName ? c : '_';
        if (kept != '_' || (!text.empty() && text.back() != '_'))
            text += kept;
    }
    while (!text.empty() && text.back() == '_')
        text.pop_back();
    const bool isName = !text.empty() && (text[0] < '0' || text[0] > '9');
    return isName ? text : "x" + text;
}

} // namespace

bool isReservedName(std::string_view name)
{
    return std::binary_search(kReserved.begin(), kReserved.end(), name) ||
           std::any_of(kPrefixes.begin(), kPrefixes.end(),
                       [&](std::string_view prefix) { return name.starts_with(prefix); }) ||
           name.find("__") != std::string_view::npos;
}

std::string GlslNames::free(std::string_view name)
{
    constexpr std::size_t kLongest = 200; // drivers need not take more than 1024
    const std::string_view shortened = name.substr(0, kLongest);
    std::string candidate(shortened);
    const bool isPlain =
        simplified(shortened) == shortened || (name.ends_with('_') && !isReservedName(name));
    if (isPlain && !isReservedName(candidate) && !isTaken(candidate))
        return candidate;
    std::string base = simplified(shortened);
    if (isReservedName(base + "_1"))
        base = "own_" + base;
    int& number = next_[base];
    do
        candidate = base + "_" + std::to_string(++number);
    while (isTaken(candidate));
    return candidate;
}

std::string GlslNames::global(std::string_view name)
{
    std::string chosen = free(name);
    taken_.insert(chosen);
    return chosen;
}

std::string GlslNames::local(std::string_view name)
{
    std::string chosen = free(name);
    taken_.insert(chosen);
    locals_.push_back(chosen);
    return chosen;
}

void GlslNames::closeScope()
{
    while (locals_.size() > marks_.back()) {
        taken_.erase(locals_.back());
        locals_.pop_back();
    }
    marks_.pop_back();
}

} // namespace EffectCompiler
