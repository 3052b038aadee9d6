#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>

#include <cstdint>

/// A shared library or a bundle that was loaded by name, with its functions and resources.
///
/// Made by iFileManager::openDLL. Operations are read-only and may be called from any thread while
/// a reference is held; functions and resources must not be used after the last one is released.
class OS_API iDLL : public iObject
{
public:
    /// A piece of a resource file; both fields are 0 when nothing was found. The bytes belong to
    /// the library object and live as long as it does.
    struct Resource
    {
        const std::uint8_t* data = nullptr;
        std::uint64_t size = 0; ///< bytes
    };

    /// The name as given when it was opened.
    virtual LightweightString<wchar_t> getFilename() const = 0;
    /// True when a library or a bundle was loaded.
    virtual bool valid() const = 0;
    virtual bool containsFunction(const LightweightString<char>& name) const = 0;
    /// @return the function's address, null when there is none or nothing was loaded
    virtual void* getFunction(const LightweightString<char>& name) const = 0;
    /// Always false, deliberately: ask getResource.
    virtual bool containsResource(const LightweightString<wchar_t>& type,
                                  const LightweightString<wchar_t>& name) const = 0;
    /// Reads a resource of the bundle's resource file `NAME.rsrc`.
    ///
    /// @param type four characters, the resource's type; more are ignored, fewer find nothing
    /// @param name "#" and a decimal resource number from -32768 to 32767; any other form finds
    /// nothing
    /// @return the bytes, empty when anything fails. Nothing is printed.
    virtual Resource getResource(const LightweightString<wchar_t>& type,
                                 const LightweightString<wchar_t>& name) const = 0;
};
