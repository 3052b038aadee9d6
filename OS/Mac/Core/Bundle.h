#pragma once

#include "OS/Mac/Core/ResourceMap.h"

#include <memory>
#include <string>
#include <vector>

/// A folder that packs a library with its resource file:
/// `NAME.bundle/Contents/Linux-x86-64/NAME` (or NAME.so) and `Contents/Resources/NAME.rsrc`.
class Bundle
{
public:
    /// Opens a bundle. @return null when the folder is none, or its library cannot be loaded; the
    /// reason is then in dlerror()
    static std::unique_ptr<Bundle> open(const std::string& folder);

    ~Bundle();
    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;

    void* function(const char* name) const;

    /// Opens the resource file on first use; the bytes live as long as the bundle.
    const ResourceMap& resources(const std::string& name);

private:
    Bundle(std::string folder, void* library);

    std::string folder_;
    void* library_;
    std::vector<std::uint8_t> file_;
    std::unique_ptr<ResourceMap> resources_;
};
