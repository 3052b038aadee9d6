#include "OS/Host/EffectCompiler/GlslHelpers.h"

#include <algorithm>
#include <array>

namespace EffectCompiler {
namespace {

struct Helper
{
    std::string_view name;
    /// T is the type, B the type of bool of its size; "t" and "b" stand for both in lower case
    /// where only scalars are meant.
    std::string_view text;
    std::string_view text120 = {};  ///< where GLSL 1.20 differs
    std::string_view ofScalar = {}; ///< where T is no vector
};

// clang-format off
constexpr auto kHelpers = std::to_array<Helper>({
    {"fmod", // the sign of a, which GLSL's mod has not
     "T fx_fmod(T a, T b) { return a - b * trunc(a / b); }",
     "T fx_fmod(T a, T b) { T q = a / b; return a - b * (sign(q) * floor(abs(q))); }"},
    {"remainder", // GLSL leaves % of negative numbers open
     "T fx_remainder(T a, T b) { return a - b * (a / b); }"},
    {"select", // picks, where mix would let infinities of the other through
     "T fx_select(B c, T a, T b) { $select }"},
    {"and", "T fx_and(T a, T b) { $and }"},
    {"or", "T fx_or(T a, T b) { $or }"},
    {"clip",
     "void fx_clip(T x) { if (any(lessThan(x, T(0.0)))) discard; }", {},
     "void fx_clip(T x) { if (x < 0.0) discard; }"},
    {"cosh", "T fx_cosh(T x) { return (exp(x) + exp(-x)) * 0.5; }"},
    {"sinh", "T fx_sinh(T x) { return (exp(x) - exp(-x)) * 0.5; }"},
    {"tanh", // of what is near, exp stays finite
     "T fx_tanh(T x) { T e = exp(2.0 * clamp(x, -20.0, 20.0)); return (e - 1.0) / (e + 1.0); }"},
    {"frexp",
     "T fx_frexp(T x, out T e) { $frexp }", {},
     "float fx_frexp(float x, out float e) { e = x == 0.0 ? 0.0 : floor(log2(abs(x))) + 1.0; return x / exp2(e); }"},
    {"isnan", "B fx_isnan(T x) { return notEqual(x, x); }", {}, "bool fx_isnan(float x) { return x != x; }"},
    {"isinf",
     "B fx_isinf(T x) { return greaterThan(abs(x), T(3.4028235e38)); }", {},
     "bool fx_isinf(float x) { return abs(x) > 3.4028235e38; }"},
    {"isfinite",
     "B fx_isfinite(T x) { return lessThanEqual(abs(x), T(3.4028235e38)); }", {},
     "bool fx_isfinite(float x) { return abs(x) <= 3.4028235e38; }"},
    {"ldexp", "T fx_ldexp(T x, T e) { return x * exp2(e); }"},
    {"log10", "T fx_log10(T x) { return log2(x) * 0.30102999566; }"},
    {"modf",
     "T fx_modf(T x, out T i) { i = trunc(x); return x - i; }",
     "T fx_modf(T x, out T i) { i = sign(x) * floor(abs(x)); return x - i; }"},
    {"trunc", "T fx_trunc(T x) { return sign(x) * floor(abs(x)); }"},
    {"sincos", "void fx_sincos(T x, out T s, out T c) { s = sin(x); c = cos(x); }"},
    {"lit",
     "vec4 fx_lit(float d, float h, float m)\n"
     "{\n"
     "    return vec4(1.0, max(d, 0.0), d < 0.0 || h < 0.0 ? 0.0 : pow(h, m), 1.0);\n"
     "}"},
    {"tex1Dbias", "vec4 fx_tex1Dbias(sampler1D s, vec4 p) { return texture(s, p.x, p.w); }",
                  "vec4 fx_tex1Dbias(sampler1D s, vec4 p) { return texture1D(s, p.x, p.w); }"},
    {"tex2Dbias", "vec4 fx_tex2Dbias(sampler2D s, vec4 p) { return texture(s, p.xy, p.w); }",
                  "vec4 fx_tex2Dbias(sampler2D s, vec4 p) { return texture2D(s, p.xy, p.w); }"},
    {"tex3Dbias", "vec4 fx_tex3Dbias(sampler3D s, vec4 p) { return texture(s, p.xyz, p.w); }",
                  "vec4 fx_tex3Dbias(sampler3D s, vec4 p) { return texture3D(s, p.xyz, p.w); }"},
    {"texCUBEbias", "vec4 fx_texCUBEbias(samplerCube s, vec4 p) { return texture(s, p.xyz, p.w); }",
                    "vec4 fx_texCUBEbias(samplerCube s, vec4 p) { return textureCube(s, p.xyz, p.w); }"},
    {"tex1Dlod", "vec4 fx_tex1Dlod(sampler1D s, vec4 p) { return textureLod(s, p.x, p.w); }",
                 "vec4 fx_tex1Dlod(sampler1D s, vec4 p) { return texture1DLod(s, p.x, p.w); }"},
    {"tex2Dlod", "vec4 fx_tex2Dlod(sampler2D s, vec4 p) { return textureLod(s, p.xy, p.w); }",
                 "vec4 fx_tex2Dlod(sampler2D s, vec4 p) { return texture2DLod(s, p.xy, p.w); }"},
    {"tex3Dlod", "vec4 fx_tex3Dlod(sampler3D s, vec4 p) { return textureLod(s, p.xyz, p.w); }",
                 "vec4 fx_tex3Dlod(sampler3D s, vec4 p) { return texture3DLod(s, p.xyz, p.w); }"},
    {"texCUBElod", "vec4 fx_texCUBElod(samplerCube s, vec4 p) { return textureLod(s, p.xyz, p.w); }",
                   "vec4 fx_texCUBElod(samplerCube s, vec4 p) { return textureCubeLod(s, p.xyz, p.w); }"},
    {"texCUBEproj", "vec4 fx_texCUBEproj(samplerCube s, vec4 p) { return texture(s, p.xyz / p.w); }",
                    "vec4 fx_texCUBEproj(samplerCube s, vec4 p) { return textureCube(s, p.xyz / p.w); }"},
    {"tex1Dfetch", "vec4 fx_tex1Dfetch(sampler1D s, ivec4 p) { return texelFetch(s, p.x, p.w); }"},
    {"tex2Dfetch", "vec4 fx_tex2Dfetch(sampler2D s, ivec4 p) { return texelFetch(s, p.xy, p.w); }"},
    {"tex3Dfetch", "vec4 fx_tex3Dfetch(sampler3D s, ivec4 p) { return texelFetch(s, p.xyz, p.w); }"},
});

struct MatrixHelper
{
    std::string_view name, type, text;
};

constexpr auto kMatrixHelpers = std::to_array<MatrixHelper>({
    {"determinant", "mat2", "float fx_determinant(mat2 m) { return m[0].x * m[1].y - m[0].y * m[1].x; }"},
    {"determinant", "mat3", "float fx_determinant(mat3 m) { return dot(m[0], cross(m[1], m[2])); }"},
    {"determinant", "mat4",
     "float fx_determinant(mat4 m)\n"
     "{\n"
     "    vec3 a = cross(m[2].yzw, m[3].yzw);\n"
     "    vec3 b = m[2].x * m[3].yzw - m[3].x * m[2].yzw;\n"
     "    float s = m[0].x * dot(m[1].yzw, a) - m[1].x * dot(m[0].yzw, a);\n"
     "    return s + dot(cross(m[0].yzw, m[1].yzw), b);\n"
     "}"},
    {"inverse", "mat2",
     "mat2 fx_inverse(mat2 m)\n"
     "{\n"
     "    return mat2(m[1].y, -m[0].y, -m[1].x, m[0].x) / (m[0].x * m[1].y - m[0].y * m[1].x);\n"
     "}"},
    {"inverse", "mat3",
     "mat3 fx_inverse(mat3 m)\n"
     "{\n"
     "    mat3 c = mat3(cross(m[1], m[2]), cross(m[2], m[0]), cross(m[0], m[1]));\n"
     "    return transpose(c) / dot(m[0], c[0]);\n"
     "}"},
    {"inverse", "mat4", // by two rows each: the products of the upper and of the lower half
     "mat4 fx_inverse(mat4 m)\n"
     "{\n"
     "    vec3 a = m[0].xyz, b = m[1].xyz, c = m[2].xyz, d = m[3].xyz;\n"
     "    float x = m[0].w, y = m[1].w, z = m[2].w, w = m[3].w;\n"
     "    vec3 s = cross(a, b), t = cross(c, d), u = a * y - b * x, v = c * w - d * z;\n"
     "    float k = 1.0 / (dot(s, v) + dot(t, u));\n"
     "    s *= k; t *= k; u *= k; v *= k;\n"
     "    return transpose(mat4(vec4(cross(b, v) + t * y, -dot(b, t)),\n"
     "                          vec4(cross(v, a) - t * x, dot(a, t)),\n"
     "                          vec4(cross(d, u) + s * w, -dot(d, s)),\n"
     "                          vec4(cross(u, c) - s * z, dot(c, s))));\n"
     "}"},
});
// clang-format on

const Helper* helperNamed(std::string_view name)
{
    const auto found = std::find_if(kHelpers.begin(), kHelpers.end(),
                                    [&](const Helper& helper) { return helper.name == name; });
    return found == kHelpers.end() ? nullptr : &*found;
}

/// "3" of "vec3", "1" of "float".
int sizeOf(std::string_view type)
{
    const char last = type.empty() ? '1' : type.back();
    return last >= '2' && last <= '4' ? last - '0' : 1;
}

std::string boolName(std::string_view type)
{
    const int size = sizeOf(type);
    return size == 1 ? "bool" : "bvec" + std::to_string(size);
}

/// "return T(a.x && b.x, a.y && b.y);" and its like: what has no operator for vectors.
std::string byComponents(std::string_view form, std::string_view type)
{
    std::string text;
    for (int i = 0; i < sizeOf(type); ++i) {
        const std::string part = std::string(".") + "xyzw"[i];
        text += i > 0 ? ", " : "";
        if (form == "$select")
            text += "c" + part + " ? a" + part + " : b" + part;
        else
            text += "a" + part + (form == "$and" ? " && b" : " || b") + part;
    }
    return "return " + std::string(type) + "(" + text + ");";
}

std::string frexpBody(std::string_view type)
{
    std::string text = std::string(type) + " m;";
    for (int i = 0; i < sizeOf(type); ++i) {
        const std::string part = std::string(".") + "xyzw"[i];
        text +=
            " e" + part + " = x" + part + " == 0.0 ? 0.0 : floor(log2(abs(x" + part + "))) + 1.0;";
    }
    return text + " m = x / exp2(e); return m;";
}

/// Writes the type where the table has T, and its kind of bool where it has B.
std::string instantiated(std::string_view text, std::string_view type)
{
    const auto isLetter = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_';
    };
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isWord =
            (i == 0 || !isLetter(text[i - 1])) && (i + 1 == text.size() || !isLetter(text[i + 1]));
        if (isWord && text[i] == 'T')
            result += type;
        else if (isWord && text[i] == 'B')
            result += boolName(type);
        else
            result += text[i];
    }
    for (const std::string_view form : {"$select", "$and", "$or", "$frexp"}) {
        const std::size_t at = result.find(form);
        if (at != std::string::npos)
            result.replace(at, form.size(),
                           form == "$frexp" ? frexpBody(type) : byComponents(form, type));
    }
    return result;
}

} // namespace

bool isHelperGeneric(std::string_view name)
{
    const Helper* helper = helperNamed(name);
    return !helper || helper->text.find("T ") != std::string_view::npos;
}

std::string helperText(std::string_view name, std::string_view type, int version)
{
    for (const MatrixHelper& helper : kMatrixHelpers) {
        if (helper.name == name && helper.type == type)
            return std::string(helper.text);
    }
    const Helper* helper = helperNamed(name);
    if (!helper)
        return {};
    if (sizeOf(type) == 1 && !helper->ofScalar.empty())
        return instantiated(helper->ofScalar, type);
    const bool isOld = version < 130 && !helper->text120.empty();
    return instantiated(isOld ? helper->text120 : helper->text, type);
}

} // namespace EffectCompiler
