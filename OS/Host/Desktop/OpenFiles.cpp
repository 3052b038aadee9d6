#include "OS/Host/Desktop/OpenFiles.h"

#include "OS/Host/Desktop/MountTable.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace fs = std::filesystem;

namespace OSInternal {

namespace {

bool leadsInto(const fs::path& link, const std::string& folder)
{
    std::error_code fault;
    const fs::path target = fs::read_symlink(link, fault);
    return !fault && isWithin(target.native(), folder);
}

bool hasOpen(const fs::path& process, const std::string& folder)
{
    std::error_code fault;
    for (fs::directory_iterator at(process / "fd", fault), end; !fault && at != end;
         at.increment(fault)) {
        if (leadsInto(at->path(), folder))
            return true;
    }
    return false;
}

// Each line ends in the mapped file's path; only line ends are escaped in it.
bool hasMapped(const fs::path& process, const std::string& folder)
{
    std::ifstream maps(process / "maps");
    for (std::string line; std::getline(maps, line);) {
        const std::size_t path = line.find('/');
        if (path != line.npos && isWithin(std::string_view(line).substr(path), folder))
            return true;
    }
    return false;
}

} // namespace

bool isInUse(const std::string& folder)
{
    std::error_code fault;
    for (fs::directory_iterator at("/proc", fault), end; !fault && at != end; at.increment(fault)) {
        const fs::path process = at->path();
        const std::string name = process.filename();
        if (name.find_first_not_of("0123456789") != name.npos)
            continue;
        if (leadsInto(process / "cwd", folder) || hasOpen(process, folder) ||
            hasMapped(process, folder))
            return true;
    }
    return false;
}

} // namespace OSInternal
