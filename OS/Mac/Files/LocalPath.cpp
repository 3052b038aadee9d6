#include "OS/Mac/Files/LocalPath.h"

#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Files/NetworkPath.h"

namespace OSInternal {

LightweightString<char> localPath(const LightweightString<wchar_t>& path)
{
    const LightweightString<char> converted = pathToSystem(path);
    if (converted.contains('\0'))
        return {};
    // A scheme comes first; "/folder/a://b" is a file like any other.
    const auto scheme = converted.find("://");
    if (scheme != converted.npos && converted.find('/') > scheme)
        return resolveNetworkPath(converted);
    return converted;
}

} // namespace OSInternal
