// Any bytes as a path: every name comes back byte for byte, and a virtual path's parts are its own.

#include <OS/Files/FileProviderManager.h>
#include <OS/Files/PathFunctions.h>

#include "OS/Mac/Files/LocalPath.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const LightweightString<char> bytes{
        std::string_view(reinterpret_cast<const char*>(data), size)};
    const LightweightString<wchar_t> path = PathFunctions::OStoTq(bytes);
    if (!bytes.startsWith("smb://") && !bytes.startsWith("//"))
        require(PathFunctions::TqtoOS(path) == bytes);
    require(path.startsWith(getPath(path).view()));
    require(PathFunctions::isURI(path) || !PathFunctions::isURI(bytes) ||
            bytes.startsWith("smb://"));
    if (bytes.contains('\0'))
        require(OSInternal::localPath(path).empty());

    const auto id = FileProviderManager::getProviderID(path);
    const auto remote = FileProviderManager::getRemoteFileName(path);
    if (FileProviderManager::isVirtual(path) && path.contains(L' '))
        require(L"Virtual:" + id + L" " + remote == path && !id.contains(L' '));
    else
        require(id.empty() && remote.empty());
    FileProviderManager::fileExists(path);

    // Characters that no path of the system's can give.
    LightweightString<wchar_t> wide;
    for (std::size_t at = 0; at + 4 <= size; at += 4)
        wide.push_back(static_cast<wchar_t>(data[at] | data[at + 1] << 8 | data[at + 2] << 16));
    const LightweightString<char> system = PathFunctions::TqtoOS(wide);
    require(PathFunctions::TqtoOS(PathFunctions::OStoTq(system)) == system ||
            system.startsWith("smb://") || system.startsWith("//"));
    return 0;
}
