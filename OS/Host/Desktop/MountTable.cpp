#include "OS/Host/Desktop/MountTable.h"

#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <poll.h>
#include <set>
#include <unistd.h>
#include <unordered_map>
#include <utility>

namespace OSInternal {

namespace {

class Descriptor
{
public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor()
    {
        if (descriptor_ >= 0)
            close(descriptor_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return descriptor_; }

private:
    int descriptor_;
};

// -- One line -----------------------------------------------------------------------------------

// Fields are parted by single blanks, so that an empty source stays a field.
std::string_view nextField(std::string_view& line)
{
    const std::size_t blank = line.find(' ');
    const std::string_view field = line.substr(0, blank);
    line.remove_prefix(blank == line.npos ? line.size() : blank + 1);
    return field;
}

template <class Number>
bool parseNumber(std::string_view text, Number& number)
{
    const char* end = text.data() + text.size();
    const auto [rest, fault] = std::from_chars(text.data(), end, number);
    return fault == std::errc() && rest == end;
}

bool parseDevice(std::string_view text, MountEntry& entry)
{
    const std::size_t colon = text.find(':');
    return colon != text.npos && parseNumber(text.substr(0, colon), entry.major_) &&
           parseNumber(text.substr(colon + 1), entry.minor_);
}

// The value of "\ooo", or -1. The kernel writes blanks, tabs, line ends and backslashes so; it
// never writes a zero byte, which no path can hold.
int octalEscape(std::string_view text)
{
    if (text.size() < 4 || text[0] != '\\')
        return -1;
    int value = 0;
    for (const char c : text.substr(1, 3)) {
        if (c < '0' || c > '7')
            return -1;
        value = value * 8 + (c - '0');
    }
    return value > 0 && value < 256 ? value : -1;
}

std::string unescape(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const int value = octalEscape(text);
        result.push_back(value < 0 ? text[0] : static_cast<char>(value));
        text.remove_prefix(value < 0 ? 1 : 4);
    }
    return result;
}

bool hasOption(std::string_view options, std::string_view wanted)
{
    while (!options.empty()) {
        const std::size_t comma = options.find(',');
        if (options.substr(0, comma) == wanted)
            return true;
        options.remove_prefix(comma == options.npos ? options.size() : comma + 1);
    }
    return false;
}

// 36 35 98:0 /mnt1 /mnt2 rw,noatime master:1 - ext3 /dev/root rw,errors=continue
bool parseLine(std::string_view line, MountEntry& entry)
{
    if (!parseNumber(nextField(line), entry.id_) ||
        !parseNumber(nextField(line), entry.parentId_) || !parseDevice(nextField(line), entry))
        return false;
    entry.root_ = unescape(nextField(line));
    entry.path_ = unescape(nextField(line));
    const std::string_view options = nextField(line);
    while (!line.empty() && nextField(line) != "-") // fields that later kernels may add to
        continue;
    entry.fileSystem_ = unescape(nextField(line));
    entry.source_ = unescape(nextField(line));
    entry.readOnly_ = hasOption(options, "ro") || hasOption(nextField(line), "ro");
    return entry.path_.starts_with('/') && !entry.fileSystem_.empty();
}

// -- Which mounts others are mounted over -------------------------------------------------------

class Cover
{
public:
    explicit Cover(const std::vector<MountEntry>& entries)
    {
        for (const MountEntry& entry : entries) {
            byId_.emplace(entry.id_, &entry);
            if (entry.id_ != entry.parentId_)
                places_.emplace(entry.parentId_, entry.path_);
        }
    }

    // A mount is covered when another stands on its own root, or when its place is out of reach:
    // one on the same parent that came later stands higher up, or the parent's place is out of
    // reach. The chain of parents is walked without recursion, and a text in which it is a ring
    // ends too.
    bool covers(const MountEntry& entry)
    {
        std::vector<const MountEntry*> chain;
        bool outOfReach = false;
        for (const MountEntry* at = &entry; at; at = parentOf(*at)) {
            const auto [known, isNew] = outOfReach_.emplace(at, false);
            if (!isNew) {
                outOfReach = known->second;
                break;
            }
            chain.push_back(at);
        }
        for (auto at = chain.rbegin(); at != chain.rend(); ++at)
            outOfReach_[*at] = outOfReach = outOfReach || isBelowAnother(**at);
        return outOfReach || places_.contains({entry.id_, entry.path_});
    }

private:
    const MountEntry* parentOf(const MountEntry& entry) const
    {
        const auto found = byId_.find(entry.parentId_);
        return found == byId_.end() ? nullptr : found->second;
    }
    bool isBelowAnother(const MountEntry& entry) const
    {
        std::string_view folder = entry.path_;
        while (folder.size() > 1) {
            const std::size_t slash = folder.rfind('/');
            folder = folder.substr(0, slash == 0 ? 1 : slash);
            if (places_.contains({entry.parentId_, folder}))
                return true;
        }
        return false;
    }

    std::unordered_map<int, const MountEntry*> byId_;
    std::set<std::pair<int, std::string_view>> places_; // parent and path
    std::unordered_map<const MountEntry*, bool> outOfReach_;
};

// -- The file -----------------------------------------------------------------------------------

bool readAll(int file, std::string& text)
{
    constexpr std::size_t kPiece = 64 * 1024;
    constexpr std::size_t kLongest = 64 * 1024 * 1024; // the kernel allows 100,000 mounts
    text.clear();
    while (text.size() < kLongest) {
        const std::size_t before = text.size();
        text.resize(before + kPiece);
        const ssize_t length = ::read(file, text.data() + before, kPiece);
        text.resize(before + (length > 0 ? static_cast<std::size_t>(length) : 0));
        if (length == 0)
            return true;
        if (length < 0 && errno != EINTR)
            return false;
    }
    return true;
}

// The kernel raises this condition on an open mount table once the mounts have changed.
bool hasChanged(int file)
{
    pollfd question{file, POLLPRI, 0};
    return poll(&question, 1, 0) > 0 && (question.revents & POLLPRI);
}

} // namespace

std::optional<MountTable> MountTable::read(const std::string& path)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() < 0)
        return {};
    std::string text;
    if (!readAll(file.get(), text))
        return {};
    // The table comes in pieces: a mount made in between can push a line out of sight.
    for (int tries = 0; tries < 5 && hasChanged(file.get()); ++tries) {
        if (lseek(file.get(), 0, SEEK_SET) != 0 || !readAll(file.get(), text))
            return {};
    }
    return parse(text);
}

MountTable MountTable::parse(std::string_view text)
{
    std::vector<MountEntry> all;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        MountEntry entry;
        if (parseLine(text.substr(0, end), entry))
            all.push_back(std::move(entry));
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
    }
    Cover cover(all);
    std::vector<bool> covered;
    covered.reserve(all.size());
    for (const MountEntry& entry : all)
        covered.push_back(cover.covers(entry));
    MountTable table;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (!covered[i])
            table.entries_.push_back(std::move(all[i]));
    }
    return table;
}

const MountEntry* MountTable::holding(std::string_view path) const
{
    const MountEntry* best = nullptr;
    for (const MountEntry& entry : entries_) {
        if (isWithin(path, entry.path_) && (!best || entry.path_.size() >= best->path_.size()))
            best = &entry;
    }
    return best;
}

bool isWithin(std::string_view path, std::string_view folder)
{
    if (folder == "/")
        return path.starts_with('/');
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

} // namespace OSInternal
