#pragma once

#include "support/TemporaryFolder.h"

#include <OS/Core/LightweightString.h>
#include <OS/Files/PathFunctions.h>

#include <string>

/// A temporary folder whose paths are asked for as the interfaces take them.
class WideFolder : public TemporaryFolder
{
public:
    /// @param name bytes, also such as are no UTF-8; empty for the folder with its trailing "/"
    LightweightString<wchar_t> wide(const std::string& name = "") const
    {
        return PathFunctions::OStoTq(path(name).c_str());
    }
    std::size_t entries() const { return names().size(); }
};
