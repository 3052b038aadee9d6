#include "OS/Host/EffectCompiler/Semantics.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace EffectCompiler {
namespace {

bool isOneOf(const std::string& name, std::initializer_list<std::string_view> names)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Other names for the same, and those of attributes by number.
Semantic canonical(Semantic semantic)
{
    std::string& name = semantic.name;
    if (name == "TEX")
        name = "TEXCOORD";
    else if (isOneOf(name, {"COL", "DIFFUSE"}))
        name = "COLOR";
    else if (name == "SPECULAR")
        return {"COLOR", 1};
    if (name != "ATTR")
        return semantic;
    if (semantic.index >= 8)
        return {"TEXCOORD", semantic.index - 8};
    switch (semantic.index) {
    case 0:
        return {"POSITION", 0};
    case 2:
        return {"NORMAL", 0};
    case 3:
        return {"COLOR", 0};
    case 4:
        return {"COLOR", 1};
    default:
        return semantic;
    }
}

/// Colours and texture coordinates always have their number, others from 1 on.
std::string numbered(const Semantic& semantic)
{
    const bool isAlways = isOneOf(semantic.name, {"COLOR", "TEXCOORD", "ATTR"});
    return semantic.name + (isAlways || semantic.index != 0 ? std::to_string(semantic.index) : "");
}

Connection varying(const Semantic& semantic)
{
    return {"cgi_" + numbered(semantic), 4, true};
}

} // namespace

Semantic semanticOf(std::string_view text)
{
    constexpr std::size_t kMostDigits = 4;
    Semantic semantic;
    std::size_t digits = 0;
    while (digits < std::min(text.size(), kMostDigits) &&
           std::isdigit(static_cast<unsigned char>(text[text.size() - 1 - digits])))
        ++digits;
    for (const char c : text.substr(text.size() - digits))
        semantic.index = semantic.index * 10 + (c - '0');
    for (const char c : text.substr(0, text.size() - digits)) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isKept = std::isalnum(byte) || (c == '_' && !semantic.name.ends_with('_'));
        if (isKept)
            semantic.name += static_cast<char>(std::toupper(byte));
    }
    return semantic;
}

Connection inputOf(Stage stage, const Semantic& given)
{
    const Semantic semantic = canonical(given);
    if (stage == Stage::eVertex)
        return {"cga_" + numbered(semantic), 4, true};
    if (isOneOf(semantic.name, {"WPOS", "VPOS", "POSITION", "HPOS", "SV_POSITION"}))
        return {"gl_FragCoord", 4, false};
    if (isOneOf(semantic.name, {"FACE", "VFACE"}))
        return {"(gl_FrontFacing ? 1.0 : -1.0)", 1, false};
    return varying(semantic);
}

Connection outputOf(Stage stage, const Semantic& given)
{
    constexpr int kMostTargets = 8;
    const Semantic semantic = canonical(given);
    if (stage == Stage::eVertex) {
        if (isOneOf(semantic.name, {"POSITION", "HPOS", "SV_POSITION"}))
            return {"gl_Position", 4, false};
        if (isOneOf(semantic.name, {"PSIZE", "PSIZ"}))
            return {"gl_PointSize", 1, false};
        return varying(semantic);
    }
    if (isOneOf(semantic.name, {"COLOR", "SV_TARGET"}) && semantic.index < kMostTargets)
        return {"gl_FragData[" + std::to_string(semantic.index) + "]", 4, false};
    if (isOneOf(semantic.name, {"DEPTH", "DEPR", "SV_DEPTH"}))
        return {"gl_FragDepth", 1, false};
    return {};
}

} // namespace EffectCompiler
