#include "OS/Host/EffectCompiler/StateTables.h"

#include "OS/Host/EffectCompiler/Literals.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace EffectCompiler {
namespace {

/// The states that effects of both families of graphics systems name, each with the type of its
/// value. To add one, add its line; its names go into kEnumerants.
constexpr StateInfo kStates[] = {
    {"AddressU", StateValues::eWrap, Type::Scalar::eInt, 1},
    {"AddressV", StateValues::eWrap, Type::Scalar::eInt, 1},
    {"AddressW", StateValues::eWrap, Type::Scalar::eInt, 1},
    {"WrapS", StateValues::eWrap, Type::Scalar::eInt, 1},
    {"WrapT", StateValues::eWrap, Type::Scalar::eInt, 1},
    {"WrapR", StateValues::eWrap, Type::Scalar::eInt, 1},
    {"MinFilter", StateValues::eFilter, Type::Scalar::eInt, 1},
    {"MagFilter", StateValues::eFilter, Type::Scalar::eInt, 1},
    {"MipFilter", StateValues::eFilter, Type::Scalar::eInt, 1},
    {"CompareMode", StateValues::eCompareMode, Type::Scalar::eInt, 1},
    {"CompareFunc", StateValues::eFunction, Type::Scalar::eInt, 1},
    {"DepthMode", StateValues::eDepthMode, Type::Scalar::eInt, 1},
    {"MaxAnisotropy", StateValues::ePlain, Type::Scalar::eFloat, 1},
    {"MaxMipLevel", StateValues::ePlain, Type::Scalar::eFloat, 1},
    {"MinMipLevel", StateValues::ePlain, Type::Scalar::eFloat, 1},
    {"LODBias", StateValues::ePlain, Type::Scalar::eFloat, 1},
    {"MipMapLodBias", StateValues::ePlain, Type::Scalar::eFloat, 1},
    {"BorderColor", StateValues::ePlain, Type::Scalar::eFloat, 4},
    {"GenerateMipmap", StateValues::eBool, Type::Scalar::eBool, 1},
    {"SRGBTexture", StateValues::eBool, Type::Scalar::eBool, 1},
    {"Texture", StateValues::eTexture, Type::Scalar::eTexture, 1},
    {"Sampler", StateValues::eTexture, Type::Scalar::eTexture, 1},
    {"Texture1D", StateValues::eTexture, Type::Scalar::eTexture, 1},
    {"Texture2D", StateValues::eTexture, Type::Scalar::eTexture, 1},
    {"Texture3D", StateValues::eTexture, Type::Scalar::eTexture, 1},
    {"TextureCubeMap", StateValues::eTexture, Type::Scalar::eTexture, 1},
    {"TextureRectangle", StateValues::eTexture, Type::Scalar::eTexture, 1},
    {"BlendEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"AlphaBlendEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"SeparateAlphaBlendEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"BlendFunc", StateValues::eBlend, Type::Scalar::eInt, 2},
    {"BlendFuncSeparate", StateValues::eBlend, Type::Scalar::eInt, 4},
    {"SrcBlend", StateValues::eBlend, Type::Scalar::eInt, 1},
    {"DestBlend", StateValues::eBlend, Type::Scalar::eInt, 1},
    {"SrcBlendAlpha", StateValues::eBlend, Type::Scalar::eInt, 1},
    {"DestBlendAlpha", StateValues::eBlend, Type::Scalar::eInt, 1},
    {"BlendEquation", StateValues::eBlendEquation, Type::Scalar::eInt, 1},
    {"BlendEquationSeparate", StateValues::eBlendEquation, Type::Scalar::eInt, 2},
    {"BlendOp", StateValues::eBlendEquation, Type::Scalar::eInt, 1},
    {"BlendOpAlpha", StateValues::eBlendEquation, Type::Scalar::eInt, 1},
    {"BlendColor", StateValues::ePlain, Type::Scalar::eFloat, 4},
    {"BlendFactor", StateValues::ePlain, Type::Scalar::eFloat, 4},
    {"AlphaTestEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"AlphaFunc", StateValues::eFunction, Type::Scalar::eFloat, 2},
    {"AlphaRef", StateValues::ePlain, Type::Scalar::eFloat, 1},
    {"ColorMask", StateValues::eBool, Type::Scalar::eBool, 4},
    {"ColorWriteEnable", StateValues::eChannels, Type::Scalar::eInt, 1},
    {"ColorWriteEnable1", StateValues::eChannels, Type::Scalar::eInt, 1},
    {"ColorWriteEnable2", StateValues::eChannels, Type::Scalar::eInt, 1},
    {"ColorWriteEnable3", StateValues::eChannels, Type::Scalar::eInt, 1},
    {"SRGBWriteEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"DepthTestEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"ZEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"DepthMask", StateValues::eBool, Type::Scalar::eBool, 1},
    {"ZWriteEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"DepthFunc", StateValues::eFunction, Type::Scalar::eInt, 1},
    {"ZFunc", StateValues::eFunction, Type::Scalar::eInt, 1},
    {"DepthClampEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"DepthRange", StateValues::ePlain, Type::Scalar::eFloat, 2},
    {"DepthBounds", StateValues::ePlain, Type::Scalar::eFloat, 2},
    {"DepthBoundsEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"DepthBias", StateValues::ePlain, Type::Scalar::eFloat, 1},
    {"SlopeScaleDepthBias", StateValues::ePlain, Type::Scalar::eFloat, 1},
    {"CullFaceEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"CullFace", StateValues::eFace, Type::Scalar::eInt, 1},
    {"CullMode", StateValues::eWinding, Type::Scalar::eInt, 1},
    {"FrontFace", StateValues::eWinding, Type::Scalar::eInt, 1},
    {"ScissorTestEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"Scissor", StateValues::ePlain, Type::Scalar::eInt, 4},
    {"StencilTestEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"StencilEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"TwoSidedStencilMode", StateValues::eBool, Type::Scalar::eBool, 1},
    {"StencilTestTwoSideEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"StencilFunc", StateValues::eStencilTest, Type::Scalar::eInt, 3},
    {"StencilOp", StateValues::eStencilOperation, Type::Scalar::eInt, 3},
    {"StencilPass", StateValues::eStencilOperation, Type::Scalar::eInt, 1},
    {"StencilFail", StateValues::eStencilOperation, Type::Scalar::eInt, 1},
    {"StencilZFail", StateValues::eStencilOperation, Type::Scalar::eInt, 1},
    {"StencilMask", StateValues::ePlain, Type::Scalar::eInt, 1},
    {"StencilWriteMask", StateValues::ePlain, Type::Scalar::eInt, 1},
    {"StencilRef", StateValues::ePlain, Type::Scalar::eInt, 1},
    {"FogEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"FogColor", StateValues::ePlain, Type::Scalar::eFloat, 4},
    {"FogMode", StateValues::eFog, Type::Scalar::eInt, 1},
    {"FogDensity", StateValues::ePlain, Type::Scalar::eFloat, 1},
    {"FogStart", StateValues::ePlain, Type::Scalar::eFloat, 1},
    {"FogEnd", StateValues::ePlain, Type::Scalar::eFloat, 1},
    {"LightingEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"Lighting", StateValues::eBool, Type::Scalar::eBool, 1},
    {"SpecularEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"NormalizeEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"NormalizeNormals", StateValues::eBool, Type::Scalar::eBool, 1},
    {"DitherEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"LogicOpEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"LogicOp", StateValues::eLogic, Type::Scalar::eInt, 1},
    {"ShadeModel", StateValues::eShade, Type::Scalar::eInt, 1},
    {"ShadeMode", StateValues::eShade, Type::Scalar::eInt, 1},
    {"PolygonMode", StateValues::eFill, Type::Scalar::eInt, 2},
    {"FillMode", StateValues::eFill, Type::Scalar::eInt, 1},
    {"PolygonOffset", StateValues::ePlain, Type::Scalar::eFloat, 2},
    {"PolygonOffsetFillEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"LineWidth", StateValues::ePlain, Type::Scalar::eFloat, 1},
    {"LineSmoothEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"PointSize", StateValues::ePlain, Type::Scalar::eFloat, 1},
    {"PointSpriteEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"PointSmoothEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"MultisampleEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"MultiSampleAntialias", StateValues::eBool, Type::Scalar::eBool, 1},
    {"ClearColor", StateValues::ePlain, Type::Scalar::eFloat, 4},
    {"ClearDepth", StateValues::ePlain, Type::Scalar::eFloat, 1},
    {"ClearStencil", StateValues::ePlain, Type::Scalar::eInt, 1},
    {"TextureFactor", StateValues::ePlain, Type::Scalar::eInt, 1},
    {"Texture1DEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"Texture2DEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"Texture3DEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"TextureCubeMapEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"TextureRectangleEnable", StateValues::eBool, Type::Scalar::eBool, 1},
    {"TexCoordIndex", StateValues::ePlain, Type::Scalar::eInt, 1},
    {"VertexProgram", StateValues::eProgram, Type::Scalar::eVoid, 1},
    {"VertexShader", StateValues::eProgram, Type::Scalar::eVoid, 1},
    {"FragmentProgram", StateValues::eProgram, Type::Scalar::eVoid, 1},
    {"PixelShader", StateValues::eProgram, Type::Scalar::eVoid, 1},
    {"GeometryProgram", StateValues::eProgram, Type::Scalar::eVoid, 1},
    {"GeometryShader", StateValues::eProgram, Type::Scalar::eVoid, 1},
    {"TessellationControlProgram", StateValues::eProgram, Type::Scalar::eVoid, 1},
    {"TessellationEvaluationProgram", StateValues::eProgram, Type::Scalar::eVoid, 1},
};

struct Enumerant
{
    StateValues values;
    std::string_view name;
    int value;
};

constexpr Enumerant kEnumerants[] = {
    {StateValues::eWrap, "Repeat", 0x2901},
    {StateValues::eWrap, "Wrap", 0x2901},
    {StateValues::eWrap, "Clamp", 0x2900},
    {StateValues::eWrap, "ClampToEdge", 0x812F},
    {StateValues::eWrap, "ClampToBorder", 0x812D},
    {StateValues::eWrap, "Border", 0x812D},
    {StateValues::eWrap, "MirroredRepeat", 0x8370},
    {StateValues::eWrap, "Mirror", 0x8370},
    {StateValues::eWrap, "MirrorClamp", 0x8742},
    {StateValues::eWrap, "MirrorOnce", 0x8742},
    {StateValues::eWrap, "MirrorClampToEdge", 0x8743},
    {StateValues::eWrap, "MirrorClampToBorder", 0x8912},
    {StateValues::eFilter, "None", 0x0},
    {StateValues::eFilter, "Nearest", 0x2600},
    {StateValues::eFilter, "Point", 0x2600},
    {StateValues::eFilter, "Linear", 0x2601},
    {StateValues::eFilter, "NearestMipMapNearest", 0x2700},
    {StateValues::eFilter, "LinearMipMapNearest", 0x2701},
    {StateValues::eFilter, "NearestMipMapLinear", 0x2702},
    {StateValues::eFilter, "LinearMipMapLinear", 0x2703},
    {StateValues::eFilter, "Anisotropic", 0x2703},
    {StateValues::eFilter, "PyramidalQuad", 0x2601},
    {StateValues::eFilter, "GaussianQuad", 0x2601},
    {StateValues::eCompareMode, "None", 0x0},
    {StateValues::eCompareMode, "CompareRToTexture", 0x884E},
    {StateValues::eCompareMode, "CompareRefToTexture", 0x884E},
    {StateValues::eFunction, "Never", 0x200},
    {StateValues::eFunction, "Less", 0x201},
    {StateValues::eFunction, "Equal", 0x202},
    {StateValues::eFunction, "LEqual", 0x203},
    {StateValues::eFunction, "LessEqual", 0x203},
    {StateValues::eFunction, "Greater", 0x204},
    {StateValues::eFunction, "NotEqual", 0x205},
    {StateValues::eFunction, "GEqual", 0x206},
    {StateValues::eFunction, "GreaterEqual", 0x206},
    {StateValues::eFunction, "Always", 0x207},
    {StateValues::eDepthMode, "Alpha", 0x1906},
    {StateValues::eDepthMode, "Luminance", 0x1909},
    {StateValues::eDepthMode, "Intensity", 0x8049},
    {StateValues::eBlend, "Zero", 0x0},
    {StateValues::eBlend, "One", 0x1},
    {StateValues::eBlend, "SrcColor", 0x300},
    {StateValues::eBlend, "OneMinusSrcColor", 0x301},
    {StateValues::eBlend, "InvSrcColor", 0x301},
    {StateValues::eBlend, "SrcAlpha", 0x302},
    {StateValues::eBlend, "BothSrcAlpha", 0x302},
    {StateValues::eBlend, "OneMinusSrcAlpha", 0x303},
    {StateValues::eBlend, "InvSrcAlpha", 0x303},
    {StateValues::eBlend, "BothInvSrcAlpha", 0x303},
    {StateValues::eBlend, "DestAlpha", 0x304},
    {StateValues::eBlend, "DstAlpha", 0x304},
    {StateValues::eBlend, "OneMinusDestAlpha", 0x305},
    {StateValues::eBlend, "OneMinusDstAlpha", 0x305},
    {StateValues::eBlend, "InvDestAlpha", 0x305},
    {StateValues::eBlend, "DestColor", 0x306},
    {StateValues::eBlend, "DstColor", 0x306},
    {StateValues::eBlend, "OneMinusDestColor", 0x307},
    {StateValues::eBlend, "OneMinusDstColor", 0x307},
    {StateValues::eBlend, "InvDestColor", 0x307},
    {StateValues::eBlend, "SrcAlphaSaturate", 0x308},
    {StateValues::eBlend, "SrcAlphaSat", 0x308},
    {StateValues::eBlend, "ConstantColor", 0x8001},
    {StateValues::eBlend, "BlendFactor", 0x8001},
    {StateValues::eBlend, "OneMinusConstantColor", 0x8002},
    {StateValues::eBlend, "InvBlendFactor", 0x8002},
    {StateValues::eBlend, "ConstantAlpha", 0x8003},
    {StateValues::eBlend, "OneMinusConstantAlpha", 0x8004},
    {StateValues::eBlendEquation, "FuncAdd", 0x8006},
    {StateValues::eBlendEquation, "Add", 0x8006},
    {StateValues::eBlendEquation, "Min", 0x8007},
    {StateValues::eBlendEquation, "Max", 0x8008},
    {StateValues::eBlendEquation, "FuncSubtract", 0x800A},
    {StateValues::eBlendEquation, "Subtract", 0x800A},
    {StateValues::eBlendEquation, "FuncReverseSubtract", 0x800B},
    {StateValues::eBlendEquation, "RevSubtract", 0x800B},
    {StateValues::eBlendEquation, "LogicOp", 0xBF1},
    {StateValues::eFace, "Front", 0x404},
    {StateValues::eFace, "Back", 0x405},
    {StateValues::eFace, "FrontAndBack", 0x408},
    {StateValues::eWinding, "None", 0x0},
    {StateValues::eWinding, "CW", 0x900},
    {StateValues::eWinding, "CCW", 0x901},
    {StateValues::eFill, "Front", 0x404},
    {StateValues::eFill, "Back", 0x405},
    {StateValues::eFill, "FrontAndBack", 0x408},
    {StateValues::eFill, "Point", 0x1B00},
    {StateValues::eFill, "Line", 0x1B01},
    {StateValues::eFill, "Wireframe", 0x1B01},
    {StateValues::eFill, "Fill", 0x1B02},
    {StateValues::eFill, "Solid", 0x1B02},
    {StateValues::eStencilOperation, "Zero", 0x0},
    {StateValues::eStencilOperation, "Keep", 0x1E00},
    {StateValues::eStencilOperation, "Replace", 0x1E01},
    {StateValues::eStencilOperation, "Incr", 0x1E02},
    {StateValues::eStencilOperation, "IncrSat", 0x1E02},
    {StateValues::eStencilOperation, "Decr", 0x1E03},
    {StateValues::eStencilOperation, "DecrSat", 0x1E03},
    {StateValues::eStencilOperation, "Invert", 0x150A},
    {StateValues::eStencilOperation, "IncrWrap", 0x8507},
    {StateValues::eStencilOperation, "DecrWrap", 0x8508},
    {StateValues::eChannels, "Red", 0x1},
    {StateValues::eChannels, "Green", 0x2},
    {StateValues::eChannels, "Blue", 0x4},
    {StateValues::eChannels, "Alpha", 0x8},
    {StateValues::eFog, "None", 0x0},
    {StateValues::eFog, "Exp", 0x800},
    {StateValues::eFog, "Exp2", 0x801},
    {StateValues::eFog, "Linear", 0x2601},
    {StateValues::eShade, "Flat", 0x1D00},
    {StateValues::eShade, "Smooth", 0x1D01},
    {StateValues::eShade, "Gouraud", 0x1D01},
    {StateValues::eLogic, "Clear", 0x1500},
    {StateValues::eLogic, "And", 0x1501},
    {StateValues::eLogic, "AndReverse", 0x1502},
    {StateValues::eLogic, "Copy", 0x1503},
    {StateValues::eLogic, "AndInverted", 0x1504},
    {StateValues::eLogic, "Noop", 0x1505},
    {StateValues::eLogic, "Xor", 0x1506},
    {StateValues::eLogic, "Or", 0x1507},
    {StateValues::eLogic, "Nor", 0x1508},
    {StateValues::eLogic, "Equiv", 0x1509},
    {StateValues::eLogic, "Invert", 0x150A},
    {StateValues::eLogic, "OrReverse", 0x150B},
    {StateValues::eLogic, "CopyInverted", 0x150C},
    {StateValues::eLogic, "OrInverted", 0x150D},
    {StateValues::eLogic, "Nand", 0x150E},
    {StateValues::eLogic, "Set", 0x150F},
};

constexpr std::array<std::string_view, 23> kProfiles = {
    "glslv", "glslf",  "glslg",  "arbvp1", "arbfp1", "vp20",    "vp30",  "vp40",
    "fp20",  "fp30",   "fp40",   "gp4vp",  "gp4fp",  "gp4gp",   "gp5vp", "gp5fp",
    "gp5gp", "gp5tcp", "gp5tep", "hlslv",  "hlslf",  "generic", "latest"};

} // namespace

const StateInfo* findState(std::string_view name)
{
    const auto found = std::find_if(std::begin(kStates), std::end(kStates),
                                    [&](const auto& each) { return isSameName(each.name, name); });
    return found == std::end(kStates) ? nullptr : found;
}

std::optional<int> findEnumerant(StateValues values, std::string_view name)
{
    // "TRUE" and "False" fit everywhere.
    if (isSameName(name, "true") || isSameName(name, "false"))
        return isSameName(name, "true");
    if (values == StateValues::eStencilTest)
        values = StateValues::eFunction;
    for (const Enumerant& each : kEnumerants) {
        if (each.values == values && isSameName(each.name, name))
            return each.value;
    }
    return {};
}

ProgramKind programKindOf(std::string_view state)
{
    const StateInfo* info = findState(state);
    if (!info || info->values != StateValues::eProgram)
        return ProgramKind::eNone;
    if (info->name.starts_with("Vertex"))
        return ProgramKind::eVertex;
    return info->name == "FragmentProgram" || info->name == "PixelShader" ? ProgramKind::eFragment
                                                                          : ProgramKind::eOther;
}

bool isKnownProfile(std::string_view name)
{
    // "vs_3_0", "ps_2_x", "gs_4_0"
    const bool isShaderModel =
        name.size() >= 6 && std::string_view("vpg").find(name[0]) != std::string_view::npos &&
        name.substr(1, 2) == "s_" && name[3] >= '1' && name[3] <= '5' && name[4] == '_';
    return isShaderModel || std::find(kProfiles.begin(), kProfiles.end(), name) != kProfiles.end();
}

} // namespace EffectCompiler
