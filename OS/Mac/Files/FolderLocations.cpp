#include "OS/Mac/Files/FolderLocations.h"

#include "OS/Mac/Core/FileHandle.h"
#include "OS/Mac/Core/PathText.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>

#include <algorithm>
#include <cstdlib>
#include <dlfcn.h>
#include <memory>
#include <pwd.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

using Text = LightweightString<char>;
using std::string_view;

constexpr std::size_t kMostUserDirsBytes = 64 * 1024;

Text withSlash(const Text& folder)
{
    return folder.endsWith('/') ? folder : folder + '/';
}

// @return an absolute path from the environment, or empty
Text absoluteVariable(const char* name)
{
    const Text value(std::getenv(name));
    return value.startsWith('/') ? value : Text();
}

Text homeOfAccount()
{
    const long size = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(size > 0 ? static_cast<std::size_t>(size) : 16384);
    passwd entry;
    passwd* found = nullptr;
    getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
    return found ? Text(found->pw_dir) : Text();
}

Text home()
{
    Text path(std::getenv("HOME"));
    if (path.empty())
        path = homeOfAccount();
    return withSlash(path);
}

Text baseFolder(const char* variable, const char* fallback)
{
    const Text folder = absoluteVariable(variable);
    return folder.empty() ? home() + fallback : withSlash(folder);
}

std::string userDirs()
{
    const Text path = baseFolder("XDG_CONFIG_HOME", ".config/") + "user-dirs.dirs";
    const OSInternal::FileHandle file(std::fopen(path.c_str(), "re"));
    if (!file)
        return {};
    std::string text(kMostUserDirsBytes, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
    return text;
}

Text userFolderOr(const char* key, const char* fallback)
{
    Text base = home();
    const string_view bare = base.view().substr(0, base.size() - 1);
    const Text chosen = FolderLocations::userFolder(userDirs(), key, bare);
    return chosen.empty() ? base + fallback : withSlash(chosen);
}

bool isFolder(const Text& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// The folder that this library's own code was loaded from.
Text libraryFolder()
{
    static const int here = 0;
    Dl_info info;
    if (!dladdr(&here, &info) || !info.dli_fname)
        return {};
    // The program itself is known by the name that it was started with.
    const bool isProgram = !string_view(info.dli_fname).starts_with('/');
    const std::unique_ptr<char, decltype(&std::free)> path(
        realpath(isProgram ? "/proc/self/exe" : info.dli_fname, nullptr), &std::free);
    const Text file(path ? path.get() : info.dli_fname);
    return file.substr(0, file.rfind('/') + 1);
}

Text resources()
{
    const Text chosen(std::getenv("VANTOR_DATA"));
    return chosen.empty() ? FolderLocations::resourcesFor(libraryFolder()) : withSlash(chosen);
}

Text description()
{
    return OSInternal::pathToSystem(OS()->fileMgr()->getAppDescription());
}

} // namespace

namespace FolderLocations {

LightweightString<char> userFolder(string_view text, string_view key, string_view home)
{
    Text result;
    const std::string start = "XDG_" + std::string(key) + "_DIR=\"";
    while (!text.empty()) {
        string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        if (!line.starts_with(start))
            continue;
        line.remove_prefix(start.size());
        Text value;
        if (line.starts_with("$HOME") && (line.substr(5, 1) == "/" || line.substr(5, 1) == "\"")) {
            value.append(home);
            line.remove_prefix(5);
            if (line.starts_with('"'))
                value.push_back('/');
        }
        for (std::size_t i = 0; i < line.size() && line[i] != '"'; ++i) {
            if (line[i] == '\\' && i + 1 < line.size())
                ++i;
            value.push_back(line[i]);
        }
        result = value.startsWith('/') ? value : Text();
    }
    return result;
}

LightweightString<char> resourcesFor(const LightweightString<char>& folder)
{
    if (isFolder(folder + "Shaders"))
        return folder;
    const auto above = [](const Text& path) {
        return path.substr(0, path.size() < 2 ? 1 : path.rfind('/', path.size() - 2) + 1);
    };
    const Text beside = above(folder) + "share/vantor/";
    const Text higher = above(above(folder)) + "share/vantor/";
    return !isFolder(beside) && isFolder(higher) ? higher : beside;
}

LightweightString<char> find(iShell::eFolderLocation location)
{
    switch (location) {
    case iShell::eDocuments:
        return userFolderOr("DOCUMENTS", "Documents/");
    case iShell::eDesktop:
        return userFolderOr("DESKTOP", "Desktop/");
    case iShell::eMovies:
        return userFolderOr("VIDEOS", "Videos/");
    case iShell::eResources:
        return resources();
    case iShell::eHome:
        return home();
    case iShell::ePictures:
        return userFolderOr("PICTURES", "Pictures/");
    case iShell::eTemporary: {
        const Text folder(std::getenv("TMPDIR"));
        return folder.empty() ? Text("/tmp/") : withSlash(folder);
    }
    case iShell::eApplicationData:
        return baseFolder("XDG_DATA_HOME", ".local/share/") + description() + '/';
    case iShell::eFonts:
        return baseFolder("XDG_DATA_HOME", ".local/share/") + "fonts/";
    case iShell::ePreferences:
        return home() + description() + "/Preferences/";
    }
    return {};
}

} // namespace FolderLocations
