#include "OS/Host/Desktop/NetworkVolume.h"

#include "OS/Host/Desktop/MountTable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>

namespace OSInternal {

namespace {

constexpr std::array<std::string_view, 3> kSmb = {"cifs", "smb3", "smbfs"};

constexpr std::array<std::string_view, 20> kNetwork = {
    "nfs",        "nfs4",        "ncpfs",        "afpfs",          "afs",
    "ceph",       "glusterfs",   "lustre",       "davfs",          "fuse.sshfs",
    "fuse.davfs", "fuse.rclone", "fuse.afpfs",   "fuse.ceph",      "fuse.curlftpfs",
    "fuse.s3fs",  "fuse.goofys", "fuse.gcsfuse", "fuse.glusterfs", "fuse.smbnetfs"};

template <std::size_t N>
bool isOneOf(std::string_view text, const std::array<std::string_view, N>& all)
{
    return std::find(all.begin(), all.end(), text) != all.end();
}

std::string_view schemeOf(std::string_view fileSystem)
{
    if (fileSystem.starts_with("fuse."))
        fileSystem.remove_prefix(5);
    if (fileSystem == "sshfs")
        return "sftp";
    if (fileSystem == "nfs4")
        return "nfs";
    return fileSystem == "ncpfs" ? "ncp" : fileSystem;
}

// "server:/folder" with "/" alone between the two. A server in brackets holds colons of its own.
std::string serverAndFolder(std::string_view source)
{
    const std::size_t bracket = source.find("]:");
    const std::size_t colon = bracket == source.npos ? source.find(':') : bracket + 1;
    if (colon == source.npos)
        return std::string(source);
    std::string_view folder = source.substr(colon + 1);
    while (folder.starts_with('/'))
        folder.remove_prefix(1);
    std::string result(source.substr(0, colon));
    return folder.empty() ? result : result + "/" + std::string(folder);
}

// What is seen of a share. The folder below the share that a mount began at stands in its source,
// in its root, or in both; a bind mount of a part of it has it in the root.
std::string smbAddress(const MountEntry& entry)
{
    std::string source = entry.source_;
    std::replace(source.begin(), source.end(), '\\', '/');
    while (source.ends_with('/'))
        source.pop_back();
    if (entry.root_ != "/") {
        const std::size_t share = source.find('/', 2);
        const std::size_t below = share == source.npos ? share : source.find('/', share + 1);
        const std::string folder = below == source.npos ? "" : source.substr(below);
        if (folder.empty() || !isWithin(entry.root_, folder))
            source += entry.root_;
        else
            source.replace(below, source.npos, entry.root_);
    }
    return "smb:" + source;
}

int hexDigit(char c)
{
    int value = -1;
    std::from_chars(&c, &c + 1, value, 16);
    return value;
}

std::string percentDecoded(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const bool isEscape =
            text.size() >= 3 && text[0] == '%' && hexDigit(text[1]) >= 0 && hexDigit(text[2]) >= 0;
        result.push_back(isEscape ? static_cast<char>(hexDigit(text[1]) * 16 + hexDigit(text[2]))
                                  : text[0]);
        text.remove_prefix(isEscape ? 3 : 1);
    }
    return result;
}

using Properties = std::map<std::string, std::string, std::less<>>;

Properties parseProperties(std::string_view text)
{
    Properties properties;
    while (!text.empty()) {
        const std::size_t comma = text.find(',');
        const std::string_view pair = text.substr(0, comma);
        const std::size_t equals = pair.find('=');
        if (equals != pair.npos)
            properties.emplace(pair.substr(0, equals), percentDecoded(pair.substr(equals + 1)));
        text.remove_prefix(comma == text.npos ? text.size() : comma + 1);
    }
    return properties;
}

std::string valueOf(const Properties& properties, std::string_view key)
{
    const auto found = properties.find(key);
    return found == properties.end() ? std::string() : found->second;
}

// The kinds of the service's folders that are network volumes, and the properties that name the
// server and the folder on it.
struct ShareKind
{
    std::string_view kind_;
    std::string_view scheme_;
    const char* server_;
    const char* folder_; // null: the whole server
    bool needsFolder_;
};
constexpr ShareKind kShareKinds[] = {{"smb-share", "smb", "server", "share", true},
                                     {"afp-volume", "afp", "host", "volume", true},
                                     {"nfs", "nfs", "host", "prefix", true},
                                     {"dav", "dav", "host", "prefix", false},
                                     {"sftp", "sftp", "host", nullptr, false},
                                     {"ftp", "ftp", "host", nullptr, false},
                                     {"ftps", "ftps", "host", nullptr, false},
                                     {"ftpis", "ftpis", "host", nullptr, false},
                                     {"google-drive", "google-drive", "host", nullptr, false},
                                     {"onedrive", "onedrive", "host", nullptr, false}};

} // namespace

bool isNetworkMount(const MountEntry& entry)
{
    return isOneOf(entry.fileSystem_, kSmb) || isOneOf(entry.fileSystem_, kNetwork) ||
           (entry.fileSystem_.starts_with("fuse") &&
            entry.source_.find("://") != std::string::npos);
}

std::string addressOf(const MountEntry& entry)
{
    if (isOneOf(entry.fileSystem_, kSmb) && entry.source_.size() > 2)
        return smbAddress(entry);
    if (entry.source_.find("://") != std::string::npos)
        return entry.source_;
    return std::string(schemeOf(entry.fileSystem_)) + "://" + serverAndFolder(entry.source_);
}

std::optional<DesktopShare> parseDesktopShare(std::string_view folderName)
{
    const std::size_t colon = folderName.find(':');
    const std::string_view kind = folderName.substr(0, colon);
    const auto* known = std::find_if(std::begin(kShareKinds), std::end(kShareKinds),
                                     [&](const ShareKind& each) { return each.kind_ == kind; });
    if (colon == folderName.npos || known == std::end(kShareKinds))
        return {};
    const Properties properties = parseProperties(folderName.substr(colon + 1));
    const std::string server = valueOf(properties, known->server_);
    std::string folder = known->folder_ ? valueOf(properties, known->folder_) : std::string();
    folder.erase(0, folder.find_first_not_of('/'));
    if (server.empty() || (known->needsFolder_ && folder.empty()))
        return {};
    DesktopShare share;
    share.scheme_ = known->scheme_;
    if (kind == "dav" && valueOf(properties, "ssl") == "true")
        share.scheme_ += "s";
    share.address_ = share.scheme_ + "://";
    const std::string domain = valueOf(properties, "domain");
    const std::string user = valueOf(properties, "user");
    if (!user.empty())
        share.address_ += (domain.empty() ? "" : domain + ";") + user + "@";
    share.address_ += server;
    const std::string port = valueOf(properties, "port");
    if (!port.empty())
        share.address_ += ":" + port;
    if (!folder.empty())
        share.address_ += "/" + folder;
    share.name_ = folder.empty() ? server : folder.substr(folder.rfind('/') + 1);
    return share;
}

} // namespace OSInternal
