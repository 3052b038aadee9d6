#include "OS/Mac/Core/DynDLL.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/PathText.h"

#include <charconv>
#include <dlfcn.h>
#include <string>

namespace {

// The first four characters as a code, the first one highest; nothing when they are fewer or wider
// than a byte.
std::optional<ResourceMap::FourCC> fourCC(const LightweightString<wchar_t>& type)
{
    if (type.size() < 4)
        return std::nullopt;
    ResourceMap::FourCC code = 0;
    for (std::uint32_t i = 0; i < 4; ++i) {
        if (type[i] < 0 || type[i] > 0xFF)
            return std::nullopt;
        code = (code << 8) | static_cast<ResourceMap::FourCC>(type[i]);
    }
    return code;
}

// The number of "#number".
std::optional<std::int16_t> resourceId(const LightweightString<wchar_t>& name)
{
    const std::string text(name.begin(), name.end());
    std::int16_t id = 0;
    const char* end = text.data() + text.size();
    if (!text.starts_with('#'))
        return std::nullopt;
    const auto [stop, error] = std::from_chars(text.data() + 1, end, id);
    return error == std::errc() && stop == end ? std::optional(id) : std::nullopt;
}

// The library's name without folder and extension.
std::string baseName(const LightweightString<wchar_t>& path)
{
    std::string name = OSInternal::pathToSystem(path).c_str();
    while (name.size() > 1 && name.back() == '/')
        name.pop_back();
    name.erase(0, name.rfind('/') + 1);
    return name.substr(0, name.rfind('.'));
}

} // namespace

DynDLL::DynDLL(const LightweightString<wchar_t>& path) : filename_(path)
{
    const LightweightString<char> systemPath = OSInternal::pathToSystem(path);
    library_ = dlopen(systemPath.c_str(), RTLD_LAZY);
    if (library_)
        return;
    const char* text = dlerror();
    const std::string reason = text ? text : "";
    bundle_ = Bundle::open(systemPath.c_str());
    if (!bundle_)
        OSInternal::printLine("DynDLL::DynDLL() : dlopen failed (%s)\n", reason.c_str());
}

DynDLL::~DynDLL()
{
    if (library_)
        dlclose(library_);
}

LightweightString<wchar_t> DynDLL::getFilename() const
{
    return filename_;
}

bool DynDLL::valid() const
{
    return library_ || bundle_;
}

bool DynDLL::containsFunction(const LightweightString<char>& name) const
{
    return getFunction(name) != nullptr;
}

void* DynDLL::getFunction(const LightweightString<char>& name) const
{
    if (library_)
        return dlsym(library_, name.c_str());
    return bundle_ ? bundle_->function(name.c_str()) : nullptr;
}

bool DynDLL::containsResource(const LightweightString<wchar_t>&,
                              const LightweightString<wchar_t>&) const
{
    return false;
}

DynDLL::Resource DynDLL::getResource(const LightweightString<wchar_t>& type,
                                     const LightweightString<wchar_t>& name) const
{
    const auto code = fourCC(type);
    const auto id = resourceId(name);
    if (!bundle_ || !code || !id)
        return {};
    const std::lock_guard lock(resourcesOpening_);
    const auto found = bundle_->resources(baseName(filename_)).find(*code, *id);
    return found ? Resource{found->data(), found->size()} : Resource{};
}
