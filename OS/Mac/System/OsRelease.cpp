#include "OS/Mac/System/OsRelease.h"

#include <fstream>

namespace {

// A value as a shell would read it: one pair of quotes off, a backslash before a character dropped.
std::string unquoted(std::string text)
{
    const bool quoted = text.size() >= 2 && (text.front() == '"' || text.front() == '\'') &&
                        text.back() == text.front();
    if (quoted)
        text = text.substr(1, text.size() - 2);
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size())
            ++i;
        result += text[i];
    }
    return result;
}

} // namespace

OsRelease OsRelease::read()
{
    OsRelease release = read("/etc/os-release");
    return release.name.empty() ? read("/usr/lib/os-release") : release;
}

OsRelease OsRelease::read(const std::string& path)
{
    OsRelease release;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("NAME="))
            release.name = unquoted(line.substr(5));
        else if (line.starts_with("VERSION_ID="))
            release.version = unquoted(line.substr(11));
    }
    return release;
}
