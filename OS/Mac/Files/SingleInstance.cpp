#include "OS/Mac/Files/SingleInstance.h"

#include "OS/Mac/Core/PathText.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>
#include <OS/Files/iShell.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

namespace {

constexpr const wchar_t* kMarker = L".thereCanBeOnlyOne";

OSInternal::Descriptor openMarker()
{
    const auto folder = OS()->shell()->getFolderLocation(iShell::ePreferences);
    OS()->fileMgr()->createDirectory(folder);
    const LightweightString<char> path = OSInternal::pathToSystem(folder + kMarker);
    OSInternal::Descriptor marker(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (!marker) // one that may only be read can be locked all the same
        marker = OSInternal::Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return marker;
}

} // namespace

SingleInstance::SingleInstance(OSInternal::Descriptor lock) : lock_(std::move(lock)) {}

Tq::Ptr<iObject> SingleInstance::claim()
{
    OSInternal::Descriptor marker = openMarker();
    if (marker && flock(marker.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return {};
    return new SingleInstance(std::move(marker));
}
