#include "OS/Host/EffectCompiler/Syntax.h"

namespace EffectCompiler {
namespace {

std::string textureSuffix(TextureKind kind)
{
    switch (kind) {
    case TextureKind::e1D:
        return "1D";
    case TextureKind::e2D:
        return "2D";
    case TextureKind::e3D:
        return "3D";
    case TextureKind::eCube:
        return "CUBE";
    case TextureKind::eRect:
        return "RECT";
    case TextureKind::eNone:
    case TextureKind::eAny:
        break;
    }
    return "";
}

std::string scalarName(const Type& type)
{
    switch (type.scalar) {
    case Type::Scalar::eVoid:
        return "void";
    case Type::Scalar::eBool:
        return "bool";
    case Type::Scalar::eInt:
        return "int";
    case Type::Scalar::eUint:
        return "uint";
    case Type::Scalar::eFloat:
        return "float";
    case Type::Scalar::eString:
        return "string";
    case Type::Scalar::eTexture:
        return "texture" + textureSuffix(type.texture);
    case Type::Scalar::eSampler:
        return "sampler" + textureSuffix(type.texture);
    case Type::Scalar::eRecord:
        return type.record ? type.record->name : "struct";
    case Type::Scalar::eError:
        break;
    }
    return "unknown";
}

} // namespace

std::string nameOf(const Type& type)
{
    std::string name = scalarName(type);
    if (type.isMatrix)
        name += std::to_string(type.rows) + "x" + std::to_string(type.columns);
    else if (type.isVector)
        name += std::to_string(type.columns);
    for (const int dim : type.dims)
        name += dim > 0 ? "[" + std::to_string(dim) + "]" : "[]";
    return name;
}

} // namespace EffectCompiler
