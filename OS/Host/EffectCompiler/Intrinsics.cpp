#include "OS/Host/EffectCompiler/Intrinsics.h"

#include <algorithm>
#include <array>

namespace EffectCompiler {
namespace {

using Scalar = Type::Scalar;

constexpr bool kFragments = true;

// clang-format off
constexpr auto kIntrinsics = std::to_array<Intrinsic>({ // sorted by name
    {"abs",          "F F",         "abs($1)"},
    {"acos",         "F F",         "acos($1)"},
    {"all",          "b B",         "all($1)"},
    {"any",          "b B",         "any($1)"},
    {"asin",         "F F",         "asin($1)"},
    {"atan",         "F F",         "atan($1)"},
    {"atan2",        "F F F",       "atan($1, $2)"},
    {"ceil",         "F F",         "ceil($1)"},
    {"clamp",        "F F F F",     "clamp($1, $2, $3)"},
    {"clip",         "v F",         "@clip($1)", {}, kFragments},
    {"cos",          "F F",         "cos($1)"},
    {"cosh",         "F F",         "@cosh($1)"},
    {"cross",        "f3 f3 f3",    "cross($1, $2)"},
    {"ddx",          "F F",         "dFdx($1)", {}, kFragments},
    {"ddy",          "F F",         "dFdy($1)", {}, kFragments},
    {"degrees",      "F F",         "degrees($1)"},
    {"determinant",  "f M",         "@determinant($1)"},
    {"distance",     "f F F",       "distance($1, $2)"},
    {"dot",          "f F F",       "dot($1, $2)"},
    {"exp",          "F F",         "exp($1)"},
    {"exp2",         "F F",         "exp2($1)"},
    {"faceforward",  "F F F F",     "faceforward($1, $2, $3)"},
    {"floor",        "F F",         "floor($1)"},
    {"fmod",         "F F F",       "@fmod($1, $2)"},
    {"frac",         "F F",         "fract($1)"},
    {"frexp",        "F F *F",      "@frexp($1, $2)"},
    {"fwidth",       "F F",         "fwidth($1)", {}, kFragments},
    {"inverse",      "M M",         "@inverse($1)"},
    {"isfinite",     "L F",         "@isfinite($1)"},
    {"isinf",        "L F",         "isinf($1)", "@isinf($1)"},
    {"isnan",        "L F",         "isnan($1)", "@isnan($1)"},
    {"ldexp",        "F F F",       "@ldexp($1, $2)"},
    {"length",       "f F",         "length($1)"},
    {"lerp",         "F F F F",     "mix($1, $2, $3)"},
    {"lit",          "f4 f f f",    "@lit($1, $2, $3)"},
    {"log",          "F F",         "log($1)"},
    {"log10",        "F F",         "@log10($1)"},
    {"log2",         "F F",         "log2($1)"},
    {"max",          "F F F",       "max($1, $2)"},
    {"min",          "F F F",       "min($1, $2)"},
    {"modf",         "F F *F",      "@modf($1, $2)"},
    {"normalize",    "F F",         "normalize($1)"},
    {"pow",          "F F F",       "pow($1, $2)"},
    {"radians",      "F F",         "radians($1)"},
    {"reflect",      "F F F",       "reflect($1, $2)"},
    {"refract",      "F F F f",     "refract($1, $2, $3)"},
    {"round",        "F F",         "floor(($1) + 0.5)"},
    {"rsqrt",        "F F",         "inversesqrt($1)"},
    {"saturate",     "F F",         "clamp($1, 0.0, 1.0)"},
    {"sign",         "F F",         "sign($1)"},
    {"sin",          "F F",         "sin($1)"},
    {"sincos",       "v F *F *F",   "@sincos($1, $2, $3)"},
    {"sinh",         "F F",         "@sinh($1)"},
    {"smoothstep",   "F F F F",     "smoothstep($1, $2, $3)"},
    {"sqrt",         "F F",         "sqrt($1)"},
    {"step",         "F F F",       "step($1, $2)"},
    {"tan",          "F F",         "tan($1)"},
    {"tanh",         "F F",         "@tanh($1)"},
    {"tex1D",        "f4 s1 f",     "texture($1, $2)", "texture1D($1, $2)"},
    {"tex1D",        "f4 s1 f f f", "textureGrad($1, $2, $3, $4)", "!texture1DGradARB($1, $2, $3, $4)"},
    {"tex1Dbias",    "f4 s1 f4",    "@tex1Dbias($1, $2)", {}, kFragments},
    {"tex1Dfetch",   "f4 s1 i4",    "@tex1Dfetch($1, $2)", "-"},
    {"tex1Dgrad",    "f4 s1 f f f", "textureGrad($1, $2, $3, $4)", "!texture1DGradARB($1, $2, $3, $4)"},
    {"tex1Dlod",     "f4 s1 f4",    "@tex1Dlod($1, $2)", "!@tex1Dlod($1, $2)"},
    {"tex1Dproj",    "f4 s1 f2",    "textureProj($1, $2)", "texture1DProj($1, $2)"},
    {"tex1Dproj",    "f4 s1 f4",    "textureProj($1, $2)", "texture1DProj($1, $2)"},
    {"tex1Dsize",    "i3 s1 i",     "ivec3(textureSize($1, $2), 0, 0)", "-"},
    {"tex2D",        "f4 s2 f2",    "texture($1, $2)", "texture2D($1, $2)"},
    {"tex2D",        "f4 s2 f2 f2 f2", "textureGrad($1, $2, $3, $4)", "!texture2DGradARB($1, $2, $3, $4)"},
    {"tex2Dbias",    "f4 s2 f4",    "@tex2Dbias($1, $2)", {}, kFragments},
    {"tex2Dfetch",   "f4 s2 i4",    "@tex2Dfetch($1, $2)", "-"},
    {"tex2Dgrad",    "f4 s2 f2 f2 f2", "textureGrad($1, $2, $3, $4)", "!texture2DGradARB($1, $2, $3, $4)"},
    {"tex2Dlod",     "f4 s2 f4",    "@tex2Dlod($1, $2)", "!@tex2Dlod($1, $2)"},
    {"tex2Dproj",    "f4 s2 f3",    "textureProj($1, $2)", "texture2DProj($1, $2)"},
    {"tex2Dproj",    "f4 s2 f4",    "textureProj($1, $2)", "texture2DProj($1, $2)"},
    {"tex2Dsize",    "i3 s2 i",     "ivec3(textureSize($1, $2), 0)", "-"},
    {"tex3D",        "f4 s3 f3",    "texture($1, $2)", "texture3D($1, $2)"},
    {"tex3D",        "f4 s3 f3 f3 f3", "textureGrad($1, $2, $3, $4)", "!texture3DGradARB($1, $2, $3, $4)"},
    {"tex3Dbias",    "f4 s3 f4",    "@tex3Dbias($1, $2)", {}, kFragments},
    {"tex3Dfetch",   "f4 s3 i4",    "@tex3Dfetch($1, $2)", "-"},
    {"tex3Dgrad",    "f4 s3 f3 f3 f3", "textureGrad($1, $2, $3, $4)", "!texture3DGradARB($1, $2, $3, $4)"},
    {"tex3Dlod",     "f4 s3 f4",    "@tex3Dlod($1, $2)", "!@tex3Dlod($1, $2)"},
    {"tex3Dproj",    "f4 s3 f4",    "textureProj($1, $2)", "texture3DProj($1, $2)"},
    {"tex3Dsize",    "i3 s3 i",     "textureSize($1, $2)", "-"},
    {"texCUBE",      "f4 sc f3",    "texture($1, $2)", "textureCube($1, $2)"},
    {"texCUBE",      "f4 sc f3 f3 f3", "textureGrad($1, $2, $3, $4)", "!textureCubeGradARB($1, $2, $3, $4)"},
    {"texCUBEbias",  "f4 sc f4",    "@texCUBEbias($1, $2)", {}, kFragments},
    {"texCUBEgrad",  "f4 sc f3 f3 f3", "textureGrad($1, $2, $3, $4)", "!textureCubeGradARB($1, $2, $3, $4)"},
    {"texCUBElod",   "f4 sc f4",    "@texCUBElod($1, $2)", "!@texCUBElod($1, $2)"},
    {"texCUBEproj",  "f4 sc f4",    "@texCUBEproj($1, $2)"},
    {"texRECT",      "f4 sr f2",    "texture2DRect($1, $2)"},
    {"texRECT",      "f4 sr f2 f2 f2", "!texture2DRectGradARB($1, $2, $3, $4)"},
    {"texRECTbias",  "f4 sr f4",    "texture2DRect($1, ($2).xy)"},
    {"texRECTlod",   "f4 sr f4",    "texture2DRect($1, ($2).xy)"},
    {"texRECTproj",  "f4 sr f3",    "texture2DRectProj($1, $2)"},
    {"texRECTproj",  "f4 sr f4",    "texture2DRectProj($1, $2)"},
    {"trunc",        "F F",         "trunc($1)", "@trunc($1)"},
});
// clang-format on

constexpr auto byName = [](const auto& left, const auto& right) { return left.name < right.name; };
static_assert(std::is_sorted(kIntrinsics.begin(), kIntrinsics.end(), byName));

/// Takes the next word off a signature.
std::string_view nextWord(std::string_view& words)
{
    const std::size_t end = std::min(words.find(' '), words.size());
    const std::string_view word = words.substr(0, end);
    words.remove_prefix(std::min(end + 1, words.size()));
    return word;
}

Type samplerType(char kind)
{
    Type type = scalarType(Scalar::eSampler);
    switch (kind) {
    case '1':
        type.texture = TextureKind::e1D;
        break;
    case '2':
        type.texture = TextureKind::e2D;
        break;
    case '3':
        type.texture = TextureKind::e3D;
        break;
    case 'c':
        type.texture = TextureKind::eCube;
        break;
    default:
        type.texture = TextureKind::eRect;
        break;
    }
    return type;
}

/// The type that a word of a signature names. @param shape what F stands for, and B, and M
Type typeOf(std::string_view word, const Type& shape)
{
    const auto sized = [&](Scalar scalar) {
        return word.size() > 1 ? vectorType(scalar, word[1] - '0') : scalarType(scalar);
    };
    switch (word[0]) {
    case 'F':
    case 'M':
        return withScalar(shape, Scalar::eFloat);
    case 'L':
    case 'B':
        return withScalar(shape, Scalar::eBool);
    case 'b':
        return scalarType(Scalar::eBool);
    case 'f':
        return sized(Scalar::eFloat);
    case 'i':
        return sized(Scalar::eInt);
    case 's':
        return samplerType(word[1]);
    default:
        return scalarType(Scalar::eVoid);
    }
}

/// Makes shape what both it and another argument for F become.
bool joinShape(std::optional<Type>& shape, const Type& argument)
{
    if (isError(argument))
        return true;
    if (!isNumeric(argument) || (isMatrix(argument) && argument.rows > 1 && argument.columns > 1))
        return false;
    Type row = argument;
    if (isMatrix(argument))
        row = vectorType(argument.scalar, componentsOf(argument));
    if (!shape || (isScalar(*shape) && !isScalar(row)))
        shape = row;
    else if (!isScalar(row) && row.columns < shape->columns)
        shape = row;
    return true;
}

std::optional<Type> shapeOf(std::string_view signature, std::span<const Type> arguments)
{
    std::optional<Type> shape;
    nextWord(signature);
    for (const Type& argument : arguments) {
        const std::string_view word = nextWord(signature);
        if (word == "M") {
            const bool isFit = isMatrix(argument) && isNumeric(argument) &&
                               argument.rows == argument.columns && argument.rows > 1;
            if (!isFit && !isError(argument))
                return {};
            shape = isFit ? argument : matrixType(Scalar::eFloat, 2, 2);
        } else if (word.back() == 'F' || word == "B") {
            if (!joinShape(shape, argument))
                return {};
        }
    }
    return shape ? *shape : scalarType(Scalar::eFloat);
}

} // namespace

std::span<const Intrinsic> intrinsicsNamed(std::string_view name)
{
    Intrinsic key{};
    key.name = name;
    const auto [first, last] =
        std::equal_range(kIntrinsics.begin(), kIntrinsics.end(), key, byName);
    return {first, last};
}

int textureResultWidth(std::string_view& name)
{
    constexpr std::string_view kPrecisions = "fhx";
    const bool isAlias = name.size() > 5 && kPrecisions.find(name[0]) != std::string_view::npos &&
                         name[1] >= '1' && name[1] <= '4' && name.substr(2, 3) == "tex" &&
                         !intrinsicsNamed(name.substr(2)).empty();
    if (!isAlias)
        return 0;
    const int width = name[1] - '0';
    name.remove_prefix(2);
    return width;
}

std::optional<IntrinsicCall> matchIntrinsic(const Intrinsic& intrinsic,
                                            std::span<const Type> arguments)
{
    const auto count = std::count(intrinsic.signature.begin(), intrinsic.signature.end(), ' ');
    if (static_cast<std::size_t>(count) != arguments.size())
        return {};
    const auto shape = shapeOf(intrinsic.signature, arguments);
    if (!shape)
        return {};
    IntrinsicCall call;
    call.intrinsic = &intrinsic;
    std::string_view words = intrinsic.signature;
    call.result = typeOf(nextWord(words), *shape);
    for (const Type& argument : arguments) {
        std::string_view word = nextWord(words);
        const bool isOut = word[0] == '*';
        word.remove_prefix(isOut ? 1 : 0);
        call.parameters.push_back(typeOf(word, *shape));
        call.isOut.push_back(isOut);
        const Type& parameter = call.parameters.back();
        if (isOut ? !converts(parameter, argument) : !converts(argument, parameter))
            return {};
    }
    return call;
}

} // namespace EffectCompiler
