#include "OS/Mac/System/MemoryStatistics.h"

#include <algorithm>
#include <sstream>

namespace {

// The bytes behind "NAME:" on a line of its own; the file counts in units of 1024.
std::optional<std::uint64_t> field(const std::string& meminfo, const std::string& name)
{
    std::istringstream lines(meminfo);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with(name + ":")) {
            std::istringstream rest(line.substr(name.size() + 1));
            std::uint64_t kibibytes = 0;
            if (rest >> kibibytes)
                return kibibytes * 1024;
        }
    return std::nullopt;
}

} // namespace

std::optional<iSystemInfo::MemoryInfo>
parseMemoryInfo(const std::string& meminfo, const std::string& statm, std::uint64_t pageSize)
{
    const auto total = field(meminfo, "MemTotal");
    const auto free = field(meminfo, "MemFree");
    const auto active = field(meminfo, "Active");
    const auto inactive = field(meminfo, "Inactive");
    if (!total || !free || !active || !inactive)
        return std::nullopt;

    iSystemInfo::MemoryInfo info;
    info.totalPhysical_ = *total;
    info.availablePhysical_ = *free + *inactive;
    // What is left, so that free, active, inactive and wired add up to the total.
    info.wired_ = *total - std::min(*total, *free + *active + *inactive);
    std::uint64_t virtualPages = 0;
    std::uint64_t residentPages = 0;
    std::istringstream pages(statm);
    if (pages >> virtualPages >> residentPages) {
        info.processVirtual_ = virtualPages * pageSize;
        info.processResident_ = residentPages * pageSize;
    }
    return info;
}
