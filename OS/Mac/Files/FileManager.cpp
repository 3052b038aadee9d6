#include "OS/Mac/Files/FileManager.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/DynDLL.h"
#include "OS/Mac/Core/PathText.h"

#include <climits>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t kAppPathBuffer = 256;

std::string readExecutableLink(std::size_t size)
{
    std::string path(size, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    path.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return path;
}

// The program's own path through a buffer of 256 bytes, of which one is a terminator; callers live
// with the cut.
LightweightString<wchar_t> executablePath()
{
    std::string path = readExecutableLink(PATH_MAX);
    if (path.size() >= kAppPathBuffer) {
        OSInternal::printLine("FileManager::getApPath() : buffer too small; need size %u\n",
                              static_cast<unsigned int>(path.size() + 1));
        path.resize(kAppPathBuffer - 1);
    }
    return FileManager::OStoTq(path.c_str());
}

} // namespace

LightweightString<char> FileManager::TqtoOS(const LightweightString<wchar_t>& path)
{
    return OSInternal::pathToSystem(path);
}

LightweightString<wchar_t> FileManager::OStoTq(const LightweightString<char>& path)
{
    return OSInternal::pathFromSystem(path);
}

bool FileManager::isURI(const LightweightString<wchar_t>& path)
{
    return path.contains(L"://");
}

bool FileManager::isURI(const LightweightString<char>& path)
{
    return path.contains("://");
}

bool FileManager::fileExists(const LightweightString<wchar_t>& path)
{
    struct stat info;
    return !path.empty() && stat(TqtoOS(path).c_str(), &info) == 0;
}

Tq::Ptr<iDLL> FileManager::openDLL(const LightweightString<wchar_t>& path)
{
    return new DynDLL(path);
}

LightweightString<wchar_t> FileManager::getAppPath()
{
    const LightweightString<wchar_t> path = executablePath();
    return path.substr(0, path.find_last_of(L'/') + 1);
}

LightweightString<wchar_t> FileManager::getAppName()
{
    const LightweightString<wchar_t> path = executablePath();
    return path.substr(path.find_last_of(L'/') + 1);
}

LightweightString<wchar_t> FileManager::getAppDescription()
{
    const LightweightString<wchar_t> name = getAppName();
    if (name.startsWith(L"quay"))
        return L"Quay Board";
    if (name.startsWith(L"vantor"))
        return L"Vantor";
    return name;
}

wchar_t FileManager::getPathSeparator()
{
    return L'/';
}
