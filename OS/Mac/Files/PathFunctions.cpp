#include <OS/Files/PathFunctions.h>

#include "OS/Mac/Core/PathText.h"

LightweightString<wchar_t> getPath(const LightweightString<wchar_t>& path)
{
    const auto slash = path.rfind(L'/');
    return slash == path.npos ? path : path.substr(0, slash + 1);
}

LightweightString<char> PathFunctions::TqtoOS(const LightweightString<wchar_t>& path)
{
    return OSInternal::pathToSystem(path);
}

LightweightString<wchar_t> PathFunctions::OStoTq(const LightweightString<char>& path)
{
    return OSInternal::pathFromSystem(path);
}

bool PathFunctions::isURI(const LightweightString<wchar_t>& path)
{
    return path.contains(L"://");
}

bool PathFunctions::isURI(const LightweightString<char>& path)
{
    return path.contains("://");
}

bool PathFunctions::extMatch(const LightweightString<wchar_t>& name,
                             const LightweightString<wchar_t>& ext)
{
    return !ext.empty() && ext.size() < name.size() &&
           name.substr(name.size() - ext.size()).equalsNoCase(ext.view());
}
