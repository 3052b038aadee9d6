#pragma once

#include <OS/Core/Export.h>
#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Files/iFile.h>
#include <OS/Files/iFileProvider.h>

#include <cstdint>

/// The process's list of file providers: the application's sources of virtual files, whose paths
/// are "Virtual:" + the provider's ID + one space + the provider's own name for the file.
///
/// Register one and open its files through OS()->fileMgr(). Every operation may be called from any
/// thread, and by a provider from inside its own calls. Providers are called without any lock: one
/// that is deregistered may still be inside a call of another thread, and lives until that returns.
class OS_API FileProviderManager
{
public:
    /// Adds a provider behind those that are there. Null does nothing.
    static void registerFileProvider(const Tq::Ptr<iFileProvider>& provider);
    /// Removes a provider, however often it was registered; none that is not registered.
    static void deRegisterFileProvider(const Tq::Ptr<iFileProvider>& provider);

    /// Whether a path begins with "Virtual:", the case not ignored.
    static bool isVirtual(const LightweightString<wchar_t>& path);
    /// "abc" of "Virtual:abc def/ghi". Empty without a space, and for a path that is not virtual.
    static LightweightString<wchar_t> getProviderID(const LightweightString<wchar_t>& path);
    /// "def/ghi" of "Virtual:abc def/ghi". Empty without a space, and for a path that is not
    /// virtual.
    static LightweightString<wchar_t> getRemoteFileName(const LightweightString<wchar_t>& path);
    /// The provider that was registered first of those with the path's ID. @return null when there
    /// is none, and for an empty ID
    static Tq::Ptr<iFileProvider> getProviderFor(const LightweightString<wchar_t>& path);

    /// Has a path's provider open it. @return null when there is no provider, or it refuses
    static Tq::Ptr<iFile> openFile(const LightweightString<wchar_t>& path, unsigned int access,
                                   iFile::eOpenBehaviour behaviour, iFile::eShareMode share,
                                   std::uint32_t flags);
    /// @return false when there is no provider
    static bool fileExists(const LightweightString<wchar_t>& path);
    /// Bytes; 0 when there is no provider.
    static std::uint64_t getFileSize(const LightweightString<wchar_t>& path);
    /// A real file with the same contents: what the provider names, and a path that is not virtual
    /// itself. Empty when there is no provider.
    static LightweightString<wchar_t> getRealFilename(const LightweightString<wchar_t>& path);
};
