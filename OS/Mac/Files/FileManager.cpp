#include "OS/Mac/Files/FileManager.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/DynDLL.h"
#include "OS/Mac/Files/File.h"
#include "OS/Mac/Files/LocalPath.h"
#include "OS/Mac/Files/QtFile.h"
#include "OS/Mac/Files/SystemLibraries.h"
#include "OS/Mac/Threads/IOCompletionPort.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/System/iSystemInfo.h>

#include <climits>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Text = LightweightString<wchar_t>;

constexpr std::size_t kAppPathBuffer = 256;
constexpr std::uint64_t k100nsPerSecond = 10'000'000;

std::string readExecutableLink(std::size_t size)
{
    std::string path(size, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    path.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    // What the kernel appends once the file has been replaced by a newer one.
    constexpr std::string_view kReplaced = " (deleted)";
    if (path.ends_with(kReplaced) && access(path.c_str(), F_OK) != 0)
        path.resize(path.size() - kReplaced.size());
    return path;
}

// The program's own path through a buffer of 256 bytes, of which one is a terminator; callers live
// with the cut.
Text executablePath()
{
    std::string path = readExecutableLink(PATH_MAX);
    if (path.size() >= kAppPathBuffer) {
        OSInternal::printLine("FileManager::getApPath() : buffer too small; need size %u\n",
                              static_cast<unsigned int>(path.size() + 1));
        path.resize(kAppPathBuffer - 1);
    }
    return FileManager::OStoTq(path.c_str());
}

Tq::Ptr<iFile> openOwn(const Text& path, unsigned int access, iFile::eOpenBehaviour behaviour,
                       iFile::eShareMode share, std::uint32_t flags)
{
    const LightweightString<char> osPath = FileManager::TqtoOS(path);
    if (!FileManager::isURI(osPath))
        return Tq::Ptr<iFile>(new File(path, access, behaviour, share, flags));
    if (osPath.contains('\0')) // the toolkit would print a warning
        return {};
    const LightweightString<char> mounted = OSInternal::localPath(path);
    if (mounted != osPath && !mounted.empty())
        return Tq::Ptr<iFile>(new File(path, mounted, access, behaviour, share, flags));
    return Tq::Ptr<iFile>(new QtFile(path, access, behaviour, share, flags));
}

Tq::Ptr<iFile> onlyIfOpen(Tq::Ptr<iFile> file)
{
    return file && file->isOpen() ? file : Tq::Ptr<iFile>();
}

std::string formatTime(const std::tm& time, const char* format)
{
    char text[256];
    return std::string(text, std::strftime(text, sizeof text, format, &time));
}

// @return whether an unused name was made of a folder and a prefix
bool makeTemporaryName(std::string& path)
{
    path += "XXXXXX";
    const int descriptor = mkostemp(path.data(), O_CLOEXEC);
    if (descriptor == -1)
        return false;
    close(descriptor);
    return unlink(path.c_str()) == 0;
}

} // namespace

Tq::Ptr<iFile> FileManager::openFile(const Text& path, unsigned int access,
                                     iFile::eOpenBehaviour behaviour, iFile::eShareMode share,
                                     std::uint32_t flags)
{
    // A provider's refusal is final: its path means nothing to the system.
    if (const auto provider = getProviderFor(path))
        return onlyIfOpen(
            provider->openFile(getRemoteFileName(path), access, behaviour, share, flags));
    return onlyIfOpen(openOwn(path, access, behaviour, share, flags));
}

Tq::Ptr<iFile> FileManager::openDirectory(const Text& path, unsigned int access,
                                          iFile::eOpenBehaviour behaviour, iFile::eShareMode share)
{
    return onlyIfOpen(Tq::Ptr<iFile>(
        new File(path, OSInternal::localPath(path), access, behaviour, share, iFile::eDirectory)));
}

bool FileManager::isVirtual(const Text& path)
{
    return FileProviderManager::isVirtual(path);
}

bool FileManager::isWritable(const Text& folder)
{
    return openFile(folder + L".WriteTest", iFile::eAccessWrite, iFile::eCreateNew,
                    iFile::eShareNone, iFile::eDeleteOnClose)
               .get() != nullptr;
}

Tq::Ptr<iDLL> FileManager::openDLL(const Text& path)
{
    return new DynDLL(path);
}

Tq::Ptr<iAsyncContext> FileManager::createAsyncContext(void* /*context*/)
{
    OSInternal::reportAssertion("false", "OS/Mac/FileManager line 512");
    return {};
}

Tq::Ptr<iIOCompletionPort> FileManager::createIOCompletionPort()
{
    return Tq::Ptr<iIOCompletionPort>(new IOCompletionPort);
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

LightweightString<wchar_t> FileManager::getUniversalName(const Text& path)
{
    return Text(L"smb://") + getPathSeparator() + OS()->systemInfo()->getComputerName() + path;
}

LightweightString<wchar_t> FileManager::getTempFileName(const Text& prefix)
{
    const LightweightString<char> name = TqtoOS(prefix);
    if (name.contains('/') || name.contains('\0'))
        return {};
    const char* const chosen = secure_getenv("TMPDIR");
    for (std::string_view folder : {chosen ? chosen : P_tmpdir, P_tmpdir}) {
        while (folder.starts_with("//")) // which would name a server
            folder.remove_prefix(1);
        std::string path(folder);
        path.append(path.ends_with('/') ? "" : "/").append(name.view());
        if (makeTemporaryName(path))
            return OStoTq(path.c_str());
    }
    return {};
}

LightweightString<wchar_t> FileManager::findSysLib(const Text& name)
{
    return OStoTq(OSInternal::findSystemLibrary(OSInternal::localPath(name)));
}

std::uint64_t FileManager::timeNow()
{
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * k100nsPerSecond +
           static_cast<std::uint64_t>(now.tv_nsec) / 100;
}

LightweightString<wchar_t> FileManager::asString(const unsigned long long& time,
                                                 eDateDisplay dateDisplay, eTimeDisplay timeDisplay)
{
    const auto seconds = static_cast<time_t>(time / k100nsPerSecond);
    std::tm local;
    if (!localtime_r(&seconds, &local))
        return {};
    std::string text = formatTime(local, "%b %d, %Y");
    if (timeDisplay != eNoTime)
        text.append(dateDisplay != eNoDate ? " " : "").append(formatTime(local, "%k:%M"));
    return OS()->utils()->fromUTF8(text.c_str(), static_cast<int>(text.size()));
}
