#include "OS/Host/EffectCompiler/Literals.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace EffectCompiler {
namespace {

char lowered(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
}

std::optional<double> parseWhole(std::string_view digits, int base)
{
    std::uint64_t value = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    if (error != std::errc() || end != digits.data() + digits.size() || value > UINT32_MAX)
        return {};
    return static_cast<double>(value);
}

std::optional<double> parseFraction(std::string_view digits)
{
    double value = 0.0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (end != digits.data() + digits.size())
        return {};
    if (error == std::errc::result_out_of_range && digits.find("e-") != std::string_view::npos)
        return 0.0;
    return error == std::errc() ? std::optional(value) : std::nullopt;
}

constexpr std::pair<std::string_view, Type::Scalar> kScalars[] = {
    {"float", Type::Scalar::eFloat},  {"half", Type::Scalar::eFloat},
    {"fixed", Type::Scalar::eFloat},  {"double", Type::Scalar::eFloat},
    {"int", Type::Scalar::eInt},      {"bool", Type::Scalar::eBool},
    {"uint", Type::Scalar::eUint},    {"dword", Type::Scalar::eUint},
    {"cfloat", Type::Scalar::eFloat}, {"cint", Type::Scalar::eInt},
    {"void", Type::Scalar::eVoid}};

constexpr std::pair<std::string_view, TextureKind> kTextureKinds[] = {
    {"", TextureKind::eAny},  {"1d", TextureKind::e1D},     {"2d", TextureKind::e2D},
    {"3d", TextureKind::e3D}, {"cube", TextureKind::eCube}, {"rect", TextureKind::eRect}};

std::optional<Type> objectType(std::string_view name)
{
    if (name.size() > 11)
        return {};
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), lowered);
    Type type;
    if (lower == "string") {
        type.scalar = Type::Scalar::eString;
        return type;
    }
    for (const auto& [prefix, scalar] : {std::pair("texture", Type::Scalar::eTexture),
                                         std::pair("sampler", Type::Scalar::eSampler)}) {
        if (!lower.starts_with(prefix))
            continue;
        type.scalar = scalar;
        for (const auto& [suffix, kind] : kTextureKinds) {
            type.texture = kind;
            if (lower.substr(7) == suffix)
                return type;
        }
    }
    return {};
}

} // namespace

std::optional<NumberLiteral> parseNumber(std::string_view text)
{
    std::string digits(text);
    std::transform(digits.begin(), digits.end(), digits.begin(), lowered);
    NumberLiteral number;
    number.type.scalar = Type::Scalar::eInt;
    const bool isHex = digits.starts_with("0x");
    bool isFloat = !isHex && digits.find_first_of(".ehf") != std::string::npos;
    while (!digits.empty() && (digits.back() == 'u' || digits.back() == 'l')) {
        if (digits.back() == 'u')
            number.type.scalar = Type::Scalar::eUint;
        digits.pop_back();
    }
    if (isFloat && (digits.ends_with("h") || digits.ends_with("f")))
        digits.pop_back();
    std::optional<double> value;
    if (isHex) {
        value = parseWhole(std::string_view(digits).substr(2), 16);
    } else if (isFloat) {
        value = parseFraction(digits);
        number.type.scalar = Type::Scalar::eFloat;
    } else {
        const bool isOctal = digits.starts_with("0") && digits.size() > 1;
        value = parseWhole(digits, isOctal ? 8 : 10);
    }
    if (!value)
        return {};
    number.value = *value;
    return number;
}

std::string parseString(std::string_view quoted)
{
    std::string text;
    const std::string_view inside = quoted.substr(1, quoted.size() - 2);
    for (std::size_t i = 0; i < inside.size(); ++i) {
        if (inside[i] != '\\' || i + 1 == inside.size()) {
            text += inside[i];
            continue;
        }
        const char escape = inside[++i];
        const bool isHex = escape == 'x';
        const std::size_t start = isHex ? i + 1 : i;
        const std::string_view digits = inside.substr(start, isHex ? 2 : 3);
        unsigned int code = 0;
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), code, isHex ? 16 : 8);
        if (error == std::errc()) {
            text += static_cast<char>(static_cast<unsigned char>(code));
            i = start + static_cast<std::size_t>(end - digits.data()) - 1;
            continue;
        }
        constexpr std::string_view kEscapes = "ntrab", kMeant = "\n\t\r\a\b";
        const std::size_t known = kEscapes.find(escape);
        text += known == std::string_view::npos ? escape : kMeant[known];
    }
    return text;
}

std::optional<Type> builtInType(std::string_view name)
{
    Type type;
    if (name.empty())
        return {};
    for (const auto& [prefix, scalar] : kScalars) {
        // Asked of every name: most differ in the first character.
        if (name[0] != prefix[0] || !name.starts_with(prefix))
            continue;
        const std::string_view size = name.substr(prefix.size());
        const auto isDimension = [&](std::size_t at) { return size[at] >= '1' && size[at] <= '4'; };
        type.scalar = scalar;
        if (size.empty())
            return type;
        if (scalar == Type::Scalar::eVoid)
            return {};
        type.columns = static_cast<std::uint8_t>(size.back() - '0');
        if (size.size() == 1 && isDimension(0)) {
            type.isVector = true;
            return type;
        }
        if (size.size() == 3 && isDimension(0) && size[1] == 'x' && isDimension(2)) {
            type.rows = static_cast<std::uint8_t>(size[0] - '0');
            type.isMatrix = true;
            return type;
        }
        return {};
    }
    // "string", "sampler..", "texture.."
    const char first = lowered(name[0]);
    return first == 's' || first == 't' ? objectType(name) : std::nullopt;
}

bool isSameName(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lowered(x) == lowered(y); });
}

} // namespace EffectCompiler
