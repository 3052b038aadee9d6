#include "OS/Mac/Core/Descriptor.h"
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Files/FileManager.h"
#include "OS/Mac/Files/LocalPath.h"

#include <OS/Files/PathFunctions.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>

namespace {

using Item = iFileManager::DirectoryItem;
using Text = LightweightString<wchar_t>;

constexpr std::uint64_t k100nsPerSecond = 10'000'000;
constexpr std::size_t kEntriesBytes = 256 * 1024;

// Fills in what the system knows of an entry; of a link that leads to nothing, what it knows of the
// link. @return false for an entry that has vanished
bool describe(int directory, const char* name, Item& item)
{
    constexpr unsigned int kWanted = STATX_TYPE | STATX_SIZE | STATX_MTIME;
    struct statx info;
    if (statx(directory, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, kWanted, &info) != 0)
        return false;
    item.isLink_ = S_ISLNK(info.stx_mode);
    if (struct statx target;
        item.isLink_ && statx(directory, name, AT_NO_AUTOMOUNT, kWanted, &target) == 0)
        info = target;
    item.isDirectory_ = S_ISDIR(info.stx_mode);
    item.sizeBytes_ = item.isDirectory_ ? 0 : info.stx_size;
    item.modified100ns_ = static_cast<std::uint64_t>(info.stx_mtime.tv_sec) * k100nsPerSecond +
                          info.stx_mtime.tv_nsec / 100;
    return true;
}

// What is listed of a directory.
struct Filter
{
    bool wants(const Item& item) const { return item.isDirectory_ ? directories_ : files_; }
    // Before the system is asked about it: links may lead to either.
    bool mayWant(const dirent64& entry) const
    {
        const std::string_view name = entry.d_name;
        if (name == "." || name == "..")
            return false;
        if (entry.d_type == DT_DIR)
            return directories_;
        return files_ || entry.d_type == DT_LNK || entry.d_type == DT_UNKNOWN;
    }

    Text pattern_;
    bool files_;
    bool directories_;
};

void appendEntry(int directory, const dirent64& entry, const Filter& filter,
                 std::vector<Item>& items)
{
    if (!filter.mayWant(entry))
        return;
    Item item;
    item.name_ = OSInternal::textFromSystem(entry.d_name);
    if ((filter.pattern_.empty() || matchingFile(item.name_, filter.pattern_)) &&
        describe(directory, entry.d_name, item) && filter.wants(item))
        items.push_back(std::move(item));
}

bool appendEntries(int directory, const Filter& filter, std::vector<Item>& items)
{
    const std::unique_ptr<char[]> buffer(new char[kEntriesBytes]);
    for (;;) {
        const ssize_t length = getdents64(directory, buffer.get(), kEntriesBytes);
        if (length < 0 && errno == EINTR)
            continue;
        if (length <= 0)
            return length == 0;
        for (ssize_t at = 0; at < length;) {
            const auto& entry = *reinterpret_cast<const dirent64*>(buffer.get() + at);
            appendEntry(directory, entry, filter, items);
            at += entry.d_reclen;
        }
    }
}

} // namespace

bool FileManager::getDirectoryContents(const Text& path, std::vector<DirectoryItem>& items,
                                       bool wantFiles, bool wantDirectories)
{
    Filter filter{{}, wantFiles, wantDirectories};
    Text folder = path;
    const auto slash = path.rfind(L'/');
    const auto lastPart = slash == path.npos ? 0 : slash + 1;
    if (path.find_first_of(L"?*", lastPart) != path.npos && !fileExists(path)) {
        filter.pattern_ = path.substr(lastPart);
        folder = lastPart == 0 ? Text(L"./") : path.substr(0, lastPart);
    }

    const OSInternal::Descriptor directory(
        open(OSInternal::localPath(folder).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::size_t before = items.size();
    if (!directory || !appendEntries(directory.get(), filter, items)) {
        items.resize(before);
        return false;
    }
    std::sort(items.begin() + static_cast<std::ptrdiff_t>(before), items.end(),
              [](const Item& a, const Item& b) { return a.name_ < b.name_; });
    return true;
}
