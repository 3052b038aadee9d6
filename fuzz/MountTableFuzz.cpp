// Any bytes as a mount table, as the name of a folder of the volume service, and as an address:
// volumes, or none; and no address leads out of its share.
#include "OS/Host/Desktop/NetworkVolume.h"
#include "OS/Host/Desktop/Volume.h"
#include "OS/Mac/Files/NetworkAddress.h"
#include "OS/Mac/Files/NetworkPath.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto table = OSInternal::MountTable::parse(text);
    table.holding(text);
    auto volumes = OSInternal::volumesOf(table, {"/nowhere", ""});
    if (const auto share = OSInternal::parseDesktopShare(text))
        OSInternal::NetworkAddress::parse(share->address_);
    if (const auto address = OSInternal::NetworkAddress::parse(text)) {
        const auto again = OSInternal::NetworkAddress::parse(address->toUri());
        const auto decoded = address->decoded();
        for (const auto* each : {&*address, decoded ? &*decoded : nullptr}) {
            if (!each)
                continue;
            for (const std::string& part : each->path_) {
                if (part.empty() || part == "." || part == ".." || part.find('/') != part.npos)
                    std::abort();
            }
        }
        if (again)
            address->contains(*again);
    }
    volumes.resize(volumes.size() + 1);
    volumes.back().address_ = "smb://nas/media";
    volumes.back().path_ = "/nowhere/media";
    const LightweightString<char> address(std::string("smb://nas/media/").append(text).c_str());
    const auto path = OSInternal::resolveNetworkPath(address, {volumes.back()});
    if (!path.empty() && !OSInternal::isWithin(path.view(), "/nowhere/media"))
        std::abort();
    return 0;
}
