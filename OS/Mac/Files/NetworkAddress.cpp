#include "OS/Mac/Files/NetworkAddress.h"

#include "OS/Mac/Core/PathText.h"

#include <algorithm>
#include <charconv>

namespace OSInternal {

namespace {

struct Scheme
{
    std::string_view name_;
    std::string_view port_;
};
// Those whose servers ignore the case of names, and have shares that a path cannot leave.
constexpr Scheme kSharing[] = {{"smb", "445"}, {"afp", "548"}};

const Scheme* sharing(std::string_view scheme)
{
    const auto* found = std::find_if(std::begin(kSharing), std::end(kSharing),
                                     [&](const Scheme& each) { return each.name_ == scheme; });
    return found == std::end(kSharing) ? nullptr : found;
}

std::string lowerCase(std::string_view text)
{
    std::string result(text);
    for (char& c : result)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return result;
}

// The value of "%41", or -1: then the text stands for itself.
int percentEscape(std::string_view text)
{
    if (text.size() < 3 || text[0] != '%')
        return -1;
    int value = -1;
    const auto [rest, fault] = std::from_chars(text.data() + 1, text.data() + 3, value, 16);
    return fault == std::errc() && rest == text.data() + 3 ? value : -1;
}

// What every address may hold as it is (RFC 3986, 2.3) and some more characters.
std::string encodePart(std::string_view part, std::string_view alsoAllowed)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string result;
    for (const char c : part) {
        const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                             (c >= '0' && c <= '9') ||
                             std::string_view("-._~").find(c) != std::string_view::npos ||
                             alsoAllowed.find(c) != alsoAllowed.npos;
        const auto byte = static_cast<unsigned char>(c);
        if (isPlain)
            result += c;
        else
            result += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return result;
}

// @return false when a byte comes out that no name can hold
bool decodePart(std::string_view text, std::string& result)
{
    while (!text.empty()) {
        const int value = percentEscape(text);
        if (value == 0 || value == '/')
            return false;
        result.push_back(value < 0 ? text[0] : static_cast<char>(value));
        text.remove_prefix(value < 0 ? 1 : 3);
    }
    return true;
}

} // namespace

std::optional<NetworkAddress> NetworkAddress::parse(std::string_view text)
{
    NetworkAddress address;
    const std::size_t colon = text.find("://");
    if (colon == text.npos || colon == 0)
        return {};
    address.scheme_ = lowerCase(text.substr(0, colon));
    text.remove_prefix(colon + 3);
    std::string_view server = text.substr(0, text.find('/'));
    text.remove_prefix(server.size());
    if (const std::size_t at = server.rfind('@'); at != server.npos) {
        const std::string_view user = server.substr(0, at);
        const std::size_t colonOfUser = user.find(':');
        address.user_ = user.substr(0, colonOfUser);
        if (colonOfUser != user.npos)
            address.password_ = user.substr(colonOfUser + 1);
        server.remove_prefix(at + 1);
    }
    // A server in brackets holds colons of its own.
    const std::size_t bracket = server.rfind(']');
    const std::size_t port = server.find(':', bracket == server.npos ? 0 : bracket);
    if (port != server.npos) {
        address.port_ = server.substr(port + 1);
        server = server.substr(0, port);
    }
    const Scheme* scheme = sharing(address.scheme_);
    if (scheme && address.port_ == scheme->port_)
        address.port_.clear();
    address.server_ = server;
    if (address.server_.empty() || !address.appendPath(text))
        return {};
    return address;
}

bool NetworkAddress::appendPath(std::string_view text)
{
    const std::size_t fixedParts = hasShares() ? 1 : 0;
    while (!text.empty()) {
        const std::size_t slash = text.find('/');
        const std::string_view part = text.substr(0, slash);
        text.remove_prefix(slash == text.npos ? text.size() : slash + 1);
        if (part == "..") {
            if (path_.size() <= fixedParts)
                return false;
            path_.pop_back();
        } else if (!part.empty() && part != ".") {
            path_.emplace_back(part);
        }
    }
    return true;
}

std::optional<NetworkAddress> NetworkAddress::decoded() const
{
    NetworkAddress result = *this;
    result.path_.clear();
    for (const std::string& part : path_) {
        std::string plain;
        // A part that comes out as ".." is one.
        if (!decodePart(part, plain) || !result.appendPath(plain))
            return {};
    }
    if (result.path_ == path_)
        return {};
    return result;
}

bool NetworkAddress::contains(const NetworkAddress& other) const
{
    if (scheme_ != other.scheme_ || port_ != other.port_ || !equalsNoCase(server_, other.server_) ||
        path_.size() > other.path_.size())
        return false;
    if (!other.user_.empty() && !user_.empty() && !equalsNoCase(user_, other.user_))
        return false;
    const bool ignoresCase = hasShares();
    return std::equal(path_.begin(), path_.end(), other.path_.begin(),
                      [&](const std::string& a, const std::string& b) {
                          return a == b || (ignoresCase && equalsNoCase(a, b));
                      });
}

bool NetworkAddress::hasShares() const
{
    return sharing(scheme_) != nullptr;
}

std::string NetworkAddress::toUri() const
{
    return write(&encodePart);
}

std::string NetworkAddress::toText() const
{
    return write([](std::string_view part, std::string_view) { return std::string(part); });
}

std::string NetworkAddress::write(Encode encode) const
{
    std::string text = scheme_ + "://";
    if (!user_.empty())
        text += encode(user_, ";") + "@";
    text += encode(server_, "[]:");
    if (!port_.empty())
        text += ":" + encode(port_, "");
    for (const std::string& part : path_)
        text += "/" + encode(part, "");
    return text;
}

bool equalsNoCase(std::string_view a, std::string_view b)
{
    return textFromSystem(a).equalsNoCase(textFromSystem(b).view());
}

} // namespace OSInternal
