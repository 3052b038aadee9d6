#include "OS/Mac/Core/PathText.h"

#include <string_view>

namespace {

constexpr std::string_view kNetworkScheme = "smb://";
constexpr wchar_t kRawByte = 0xDC00; // U+DC80 to U+DCFF carry the bytes 0x80 to 0xFF

void appendUtf8(LightweightString<char>& out, wchar_t c)
{
    const auto code = static_cast<std::uint32_t>(c);
    const auto continuation = [&](unsigned int shift) {
        out.push_back(static_cast<char>(0x80 | ((code >> shift) & 0x3F)));
    };
    if (code < 0x80) {
        out.push_back(static_cast<char>(code));
    } else if (code >= 0xDC80 && code <= 0xDCFF) {
        out.push_back(static_cast<char>(code - kRawByte));
    } else if (code < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (code >> 6)));
        continuation(0);
    } else if (code < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (code >> 12)));
        continuation(6);
        continuation(0);
    } else if (code < 0x110000) {
        out.push_back(static_cast<char>(0xF0 | (code >> 18)));
        continuation(12);
        continuation(6);
        continuation(0);
    } else {
        appendUtf8(out, 0xFFFD);
    }
}

// Decodes one well-formed sequence (RFC 3629). @return its length in bytes, 0 when it is not
// well-formed
std::size_t decodeUtf8(std::string_view text, wchar_t& c)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned int lead = byte(0);
    if (lead < 0x80) {
        c = static_cast<wchar_t>(lead);
        return 1;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length)
        return 0;
    std::uint32_t code = lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
        code = (code << 6) | (byte(i) & 0x3F);
    }
    constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kSmallest[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        return 0;
    c = static_cast<wchar_t>(code);
    return length;
}

void encode(std::string_view prefix, std::wstring_view text, LightweightString<char>& result)
{
    result.reserve(static_cast<std::uint32_t>(prefix.size() + text.size() + 8));
    result.append(prefix);
    for (const wchar_t c : text)
        appendUtf8(result, c);
}

} // namespace

namespace OSInternal {

LightweightString<char> pathToSystem(const LightweightString<wchar_t>& path)
{
    std::wstring_view rest = path.view();
    if (!rest.starts_with(L"//"))
        return textToSystem(rest);
    LightweightString<char> result;
    encode(kNetworkScheme, rest.substr(2), result);
    return result;
}

LightweightString<wchar_t> pathFromSystem(const LightweightString<char>& path)
{
    std::string_view rest = path.view();
    if (rest.starts_with(kNetworkScheme))
        rest.remove_prefix(5);
    return textFromSystem(rest);
}

LightweightString<char> textToSystem(std::wstring_view text)
{
    LightweightString<char> result;
    encode({}, text, result);
    return result;
}

LightweightString<wchar_t> textFromSystem(std::string_view text)
{
    // Filled in place: a listing makes one of these for each name.
    LightweightString<wchar_t> result(static_cast<std::uint32_t>(text.size()), L'\0');
    wchar_t* const first = result.writableData();
    wchar_t* out = first;
    while (!text.empty()) {
        std::size_t length = decodeUtf8(text, *out);
        if (length == 0) {
            *out = kRawByte + static_cast<unsigned char>(text.front());
            length = 1;
        }
        ++out;
        text.remove_prefix(length);
    }
    result.resize(static_cast<std::uint32_t>(out - first));
    return result;
}

LightweightString<char> extensionOf(const LightweightString<char>& path)
{
    const auto dot = path.rfind('.');
    if (dot == path.npos || path.find('/', dot) != path.npos)
        return {};
    return path.substr(dot + 1).toLower();
}

} // namespace OSInternal
