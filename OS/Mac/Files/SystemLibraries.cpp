#include "OS/Mac/Files/SystemLibraries.h"

#include "OS/Mac/Core/Descriptor.h"

#include <algorithm>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <fstream>
#include <glob.h>
#include <link.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace OSInternal {

namespace {

using Folders = std::vector<std::string>;
using Version = std::vector<unsigned int>;

constexpr int kMostIncludes = 16; // of ld.so.conf in itself

// Whether the loader would take a file: a shared object for this processor. Text files of the same
// name are the linker's.
bool isLoadable(const std::string& path)
{
    struct stat info;
    if (stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode))
        return false;
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    const Descriptor own(open("/proc/self/exe", O_RDONLY | O_CLOEXEC));
    ElfW(Ehdr) header, ownHeader;
    if (read(file.get(), &header, sizeof header) != sizeof header ||
        read(own.get(), &ownHeader, sizeof ownHeader) != sizeof ownHeader)
        return false;
    return std::memcmp(header.e_ident, ownHeader.e_ident, EI_VERSION) == 0 &&
           header.e_machine == ownHeader.e_machine && header.e_type == ET_DYN;
}

struct CloseLibrary
{
    void operator()(void* library) const { dlclose(library); }
};

// The loader's own list. @param wanted which of it, in the loader's order
void appendLoaderFolders(Folders& folders, bool fromEnvironment)
{
    const std::unique_ptr<void, CloseLibrary> self(dlopen(nullptr, RTLD_LAZY));
    Dl_serinfo size;
    if (!self || dlinfo(self.get(), RTLD_DI_SERINFOSIZE, &size) != 0)
        return;
    const std::unique_ptr<char[]> memory(new char[size.dls_size]);
    auto* info = reinterpret_cast<Dl_serinfo*>(memory.get());
    std::memcpy(info, &size, sizeof size);
    if (dlinfo(self.get(), RTLD_DI_SERINFOSIZE, info) != 0 ||
        dlinfo(self.get(), RTLD_DI_SERINFO, info) != 0)
        return;
    constexpr unsigned int kFromEnvironment = 0x02; // LA_SER_LIBPATH
    for (unsigned int i = 0; i < info->dls_cnt; ++i)
        if (((info->dls_serpath[i].dls_flags & kFromEnvironment) != 0) == fromEnvironment)
            folders.emplace_back(info->dls_serpath[i].dls_name);
}

void appendConfigured(Folders& folders, const std::string& file, int depth);

void appendIncluded(Folders& folders, const std::string& pattern, int depth)
{
    glob_t found = {};
    if (glob(pattern.c_str(), 0, nullptr, &found) == 0)
        for (std::size_t i = 0; i < found.gl_pathc; ++i)
            appendConfigured(folders, found.gl_pathv[i], depth);
    globfree(&found);
}

// A folder on each line, "#" before a remark, "include" before a pattern of further files
// (ldconfig(8)).
void appendConfigured(Folders& folders, const std::string& file, int depth)
{
    if (depth > kMostIncludes)
        return;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        const LightweightString<char> text(line.substr(0, line.find('#')).c_str());
        const LightweightString<char> trimmed = text.trimmed();
        constexpr std::string_view kInclude = "include";
        if (trimmed.startsWith('/'))
            folders.emplace_back(trimmed.view());
        else if (trimmed.startsWith(kInclude)) {
            const LightweightString<char> rest = trimmed.substr(kInclude.size()).trimmed();
            const std::string base = rest.startsWith('/') ? "" : "/etc/";
            appendIncluded(folders, base + rest.c_str(), depth + 1);
        }
    }
}

Folders searchedFolders()
{
    Folders folders;
    appendLoaderFolders(folders, true);
    appendConfigured(folders, "/etc/ld.so.conf", 0);
    appendLoaderFolders(folders, false);
    return folders;
}

// The numbers behind "libz.so"; nothing for another name.
std::optional<Version> versionOf(std::string_view name, std::string_view stem)
{
    if (!name.starts_with(stem))
        return {};
    Version version;
    for (name.remove_prefix(stem.size()); !name.empty();) {
        if (name.front() != '.')
            return {};
        name.remove_prefix(1);
        const std::size_t digits = std::min(name.find_first_not_of("0123456789"), name.size());
        if (digits == 0 || digits > 9)
            return {};
        version.push_back(
            static_cast<unsigned int>(std::stoul(std::string(name.substr(0, digits)))));
        name.remove_prefix(digits);
    }
    return version;
}

// The newer first; of one version the name with the fewest numbers, which is the one that programs
// are linked to.
bool isNewer(const Version& a, const Version& b)
{
    const auto [inA, inB] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    if (inA != a.end() && inB != b.end())
        return *inA > *inB;
    if (a.empty() || b.empty())
        return !a.empty();
    return a.size() < b.size();
}

std::string newestIn(const std::string& folder, const std::string& stem)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), &closedir);
    std::string best;
    Version bestVersion;
    while (const dirent* entry = entries ? readdir(entries.get()) : nullptr) {
        const auto version = versionOf(entry->d_name, stem);
        const std::string path = folder + "/" + entry->d_name;
        if (version && (best.empty() || isNewer(*version, bestVersion)) && isLoadable(path)) {
            best = path;
            bestVersion = *version;
        }
    }
    return best;
}

} // namespace

LightweightString<char> findSystemLibrary(const LightweightString<char>& name)
{
    const std::string wanted(name.view());
    if (wanted.empty())
        return {};
    if (name.contains('/'))
        return isLoadable(wanted) ? name : LightweightString<char>();
    const bool exact = name.contains(".so");
    const std::string stem = (wanted.starts_with("lib") ? "" : "lib") + wanted + ".so";
    for (const std::string& folder : searchedFolders()) {
        const std::string path = exact ? folder + "/" + wanted : newestIn(folder, stem);
        if (!path.empty() && isLoadable(path))
            return path.c_str();
    }
    return {};
}

} // namespace OSInternal
