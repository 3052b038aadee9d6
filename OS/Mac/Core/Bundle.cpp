#include "OS/Mac/Core/Bundle.h"

#include "OS/Mac/Core/FileHandle.h"

#include <cstdio>
#include <dlfcn.h>
#include <sys/stat.h>

namespace {

constexpr off_t kMaxResourceFile = 256 << 20; // offsets of the format end at 16 MiB of data

// "NAME" of ".../NAME.bundle/"; empty when the folder is named otherwise.
std::string bundleName(std::string folder)
{
    constexpr std::string_view kSuffix = ".bundle";
    while (folder.size() > 1 && folder.back() == '/')
        folder.pop_back();
    const std::string name = folder.substr(folder.rfind('/') + 1);
    return name.size() > kSuffix.size() && name.ends_with(kSuffix)
               ? name.substr(0, name.size() - kSuffix.size())
               : std::string();
}

std::vector<std::uint8_t> readFile(const std::string& path)
{
    std::vector<std::uint8_t> bytes;
    struct stat info;
    if (stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode) || info.st_size > kMaxResourceFile)
        return bytes;
    const OSInternal::FileHandle file(std::fopen(path.c_str(), "rbe"));
    if (file) {
        bytes.resize(static_cast<std::size_t>(info.st_size));
        bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
    }
    return bytes;
}

} // namespace

std::unique_ptr<Bundle> Bundle::open(const std::string& folder)
{
    const std::string name = bundleName(folder);
    if (name.empty())
        return nullptr;
    const std::string base = folder + "/Contents/Linux-x86-64/" + name;
    for (const std::string& path : {base, base + ".so"})
        if (void* library = dlopen(path.c_str(), RTLD_LAZY))
            return std::unique_ptr<Bundle>(new Bundle(folder, library));
    return nullptr;
}

Bundle::Bundle(std::string folder, void* library) : folder_(std::move(folder)), library_(library) {}

Bundle::~Bundle()
{
    dlclose(library_);
}

void* Bundle::function(const char* name) const
{
    return dlsym(library_, name);
}

const ResourceMap& Bundle::resources(const std::string& name)
{
    if (!resources_) {
        file_ = readFile(folder_ + "/Contents/Resources/" + name + ".rsrc");
        resources_ = std::make_unique<ResourceMap>(file_);
    }
    return *resources_;
}
