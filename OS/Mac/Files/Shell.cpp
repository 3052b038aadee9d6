#include "OS/Mac/Files/Shell.h"

#include "OS/Host/Desktop/Opener.h"
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Files/ChildWatcher.h"
#include "OS/Mac/Files/FolderLocations.h"
#include "OS/Mac/Files/NetworkPath.h"
#include "OS/Mac/Files/Settings.h"
#include "OS/Mac/Files/SingleInstance.h"

#include <algorithm>
#include <climits>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Text = LightweightString<char>;

bool openWithDesktop(const Text& target)
{
    const pid_t opener = Opener::open(target.c_str());
    if (opener == 0)
        return false;
    ChildWatcher::instance().watch(
        std::make_shared<ChildProcess>(opener, OSInternal::Descriptor(), OSInternal::Descriptor()));
    return true;
}

bool isNetworkAddress(const Text& path)
{
    return path.startsWith("smb://");
}

// @return empty when the working folder is gone
Text absolute(const Text& path)
{
    if (path.startsWith('/'))
        return path;
    char here[PATH_MAX];
    return getcwd(here, sizeof here) ? Text(here) + '/' + path : Text();
}

// @return an absolute path or a network address for something that may be opened; else empty
Text findTarget(const LightweightString<wchar_t>& path, struct stat& info)
{
    Text systemPath = OSInternal::pathToSystem(path);
    if (systemPath.empty() || systemPath.contains('\0'))
        return {};
    if (isNetworkAddress(systemPath)) {
        const Text mounted = OSInternal::resolveNetworkPath(systemPath);
        if (mounted.empty())
            return systemPath; // the desktop may mount it
        systemPath = mounted;
    }
    const Text target = absolute(systemPath);
    return stat(target.c_str(), &info) == 0 ? target : Text();
}

// RFC 3986: a letter, then letters, digits, "+", "-" and ".".
std::string_view schemeOf(std::string_view address)
{
    const auto isLetter = [](char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; };
    const auto belongs = [&](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
    };
    const std::string_view scheme = address.substr(0, address.find(':'));
    const bool isScheme = scheme.size() < address.size() && !scheme.empty() &&
                          isLetter(scheme.front()) &&
                          std::all_of(scheme.begin(), scheme.end(), belongs);
    return isScheme ? scheme : std::string_view();
}

bool isControl(wchar_t c)
{
    return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

} // namespace

Tq::Ptr<iSettings> Shell::getSettings(iSettings::eType type)
{
    if (type != iSettings::eUser && type != iSettings::eGlobal)
        return {};
    const std::lock_guard<std::mutex> lock(settingsLock_);
    Tq::Ptr<iSettings>& settings = settings_[static_cast<std::size_t>(type)];
    if (!settings)
        settings = new Settings(type);
    return settings;
}

LightweightString<wchar_t> Shell::getFolderLocation(eFolderLocation location)
{
    return OSInternal::pathFromSystem(FolderLocations::find(location));
}

bool Shell::viewDocument(const LightweightString<wchar_t>& path)
{
    struct stat info;
    const Text target = findTarget(path, info);
    return !target.empty() && openWithDesktop(target);
}

bool Shell::viewFolder(const LightweightString<wchar_t>& path)
{
    struct stat info = {};
    const Text target = findTarget(path, info);
    const bool isFolder = isNetworkAddress(target) || S_ISDIR(info.st_mode);
    return !target.empty() &&
           openWithDesktop(isFolder ? target : target.substr(0, target.rfind('/') + 1));
}

bool Shell::viewAddress(const LightweightString<wchar_t>& address)
{
    const Text text = OSInternal::textToSystem(address);
    const std::string_view scheme = schemeOf(text);
    if (scheme.empty() || Text(scheme).equalsNoCase("file") ||
        std::any_of(address.begin(), address.end(), isControl))
        return false;
    return openWithDesktop(text);
}

Tq::Ptr<iObject> Shell::claimSingleInstance()
{
    return SingleInstance::claim();
}
