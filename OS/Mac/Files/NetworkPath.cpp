#include "OS/Mac/Files/NetworkPath.h"

#include "OS/Mac/Files/NetworkAddress.h"

#include <string>
#include <sys/stat.h>
#include <tuple>

namespace OSInternal {

namespace {

std::string localPath(const NetworkAddress& wanted, const std::vector<Volume>& volumes)
{
    const auto rank = [](const Volume& volume, const NetworkAddress& address) {
        return std::make_tuple(address.path_.size(), !volume.readOnly_, !volume.byDesktop_);
    };
    const Volume* best = nullptr;
    NetworkAddress bestAddress;
    for (const Volume& volume : volumes) {
        const std::optional<NetworkAddress> address = NetworkAddress::parse(volume.address_);
        if (address && address->contains(wanted) &&
            (!best || rank(volume, *address) > rank(*best, bestAddress))) {
            best = &volume;
            bestAddress = *address;
        }
    }
    if (!best)
        return {};
    std::string path = best->path_ == "/" ? std::string() : best->path_;
    for (std::size_t i = bestAddress.path_.size(); i < wanted.path_.size(); ++i)
        path += "/" + wanted.path_[i];
    return path.empty() ? "/" : path;
}

bool exists(const std::string& path)
{
    struct stat info;
    return !path.empty() && lstat(path.c_str(), &info) == 0;
}

} // namespace

LightweightString<char> resolveNetworkPath(const LightweightString<char>& address,
                                           const std::vector<Volume>& volumes)
{
    const std::optional<NetworkAddress> wanted = NetworkAddress::parse(address.view());
    if (!wanted)
        return {};
    std::string path = localPath(*wanted, volumes);
    if (const std::optional<NetworkAddress> decoded = wanted->decoded(); decoded && !exists(path)) {
        std::string plain = localPath(*decoded, volumes);
        if (path.empty() || exists(plain))
            path = std::move(plain);
    }
    return LightweightString<char>(std::string_view(path));
}

LightweightString<char> resolveNetworkPath(const LightweightString<char>& address)
{
    const auto volumes = readVolumes(VolumeSources::ofProcess());
    return volumes ? resolveNetworkPath(address, *volumes) : LightweightString<char>();
}

} // namespace OSInternal
