#include "OS/Mac/Files/FileManager.h"

#include <OS/Files/PathFunctions.h>

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace {

using Item = iFileManager::DirectoryItem;

constexpr std::uint64_t k100nsPerSecond = 10'000'000;

// Fills in what the system knows of an entry. An entry that vanished meanwhile, or a link to
// nothing, keeps zeros.
bool describe(int directory, const char* name, Item& item)
{
    struct stat info;
    if (fstatat(directory, name, &info, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    item.isLink_ = S_ISLNK(info.st_mode);
    if (item.isLink_) {
        struct stat target;
        if (fstatat(directory, name, &target, 0) == 0)
            info = target;
    }
    item.isDirectory_ = S_ISDIR(info.st_mode);
    item.sizeBytes_ = item.isDirectory_ ? 0 : static_cast<std::uint64_t>(info.st_size);
    item.modified100ns_ = static_cast<std::uint64_t>(info.st_mtim.tv_sec) * k100nsPerSecond +
                          static_cast<std::uint64_t>(info.st_mtim.tv_nsec) / 100;
    return true;
}

} // namespace

bool FileManager::getDirectoryContents(const LightweightString<wchar_t>& path,
                                       std::vector<DirectoryItem>& items, bool wantFiles,
                                       bool wantDirectories)
{
    LightweightString<wchar_t> folder = path;
    LightweightString<wchar_t> pattern;
    const auto slash = path.find_last_of(L'/');
    const auto lastPart = slash == path.npos ? 0 : slash + 1;
    if (path.find_first_of(L"?*", lastPart) != path.npos && !fileExists(path)) {
        pattern = path.substr(lastPart);
        folder = lastPart == 0 ? LightweightString<wchar_t>(L"./") : path.substr(0, lastPart);
    }

    const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(TqtoOS(folder).c_str()), &closedir);
    if (!directory)
        return false;

    std::vector<DirectoryItem> found;
    while (const dirent* entry = readdir(directory.get())) {
        const std::string_view name = entry->d_name;
        DirectoryItem item;
        if (name == "." || name == ".." || !describe(dirfd(directory.get()), entry->d_name, item))
            continue;
        item.name_ = OStoTq(entry->d_name);
        if ((item.isDirectory_ ? wantDirectories : wantFiles) &&
            (pattern.empty() || matchingFile(item.name_, pattern)))
            found.push_back(item);
    }
    std::sort(found.begin(), found.end(),
              [](const Item& a, const Item& b) { return a.name_ < b.name_; });
    items.insert(items.end(), found.begin(), found.end());
    return true;
}
