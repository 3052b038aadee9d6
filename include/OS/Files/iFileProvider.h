#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/Files/iFile.h>

#include <cstdint>

/// A source of virtual files, written by the application and registered with FileProviderManager.
///
/// It answers for paths "Virtual:" + its ID + one space + its own name for the file. Called on
/// whatever thread asks the file manager, without any lock of this library.
class OS_API iFileProvider : public iObject
{
public:
    /// Text without a space, compared exactly.
    virtual LightweightString<wchar_t> getID() const = 0;
    /// Opens a file. @param name the provider's own name; the rest as given to
    /// iFileManager::openFile @return null when there is none
    virtual Tq::Ptr<iFile> openFile(const LightweightString<wchar_t>& name, unsigned int access,
                                    iFile::eOpenBehaviour behaviour, iFile::eShareMode share,
                                    std::uint32_t flags) = 0;
    virtual bool fileExists(const LightweightString<wchar_t>& name) = 0;
    /// Bytes; 0 when there is none.
    virtual std::uint64_t getFileSize(const LightweightString<wchar_t>& name) = 0;
    /// The path of a real file with the same contents; empty when there is none.
    virtual LightweightString<wchar_t> getRealFilename(const LightweightString<wchar_t>& name) = 0;
};
