#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/Files/iSettings.h>

/// The desktop's shell, reached as OS()->shell(): settings, the user's folders, opening things with
/// the desktop's programs, and the guard of a single instance. Any thread.
class OS_API iShell : public iObject
{
public:
    /// All folders come with their trailing "/". They need not exist.
    enum eFolderLocation : int
    {
        eDocuments = 0,
        eDesktop = 1,
        eMovies = 2,
        eResources = 3, ///< the application's data: it holds "Shaders/"
        eHome = 4,
        ePictures = 5,
        eTemporary = 6,       ///< $TMPDIR, else the system's
        eApplicationData = 7, ///< the user's own data of this program
        eFonts = 8,           ///< the user's own fonts
        ePreferences = 9      ///< the settings files
    };

    /// The store of a scope, made at the first request and kept for good. Takes a lock.
    /// @return null for anything that is no scope
    virtual Tq::Ptr<iSettings> getSettings(iSettings::eType type) = 0;
    /// @return empty for anything that is no location
    virtual LightweightString<wchar_t> getFolderLocation(eFolderLocation location) = 0;
    /// Opens a file with the program that the desktop has for it (xdg-open). Does not wait for that
    /// program.
    /// @return false when the file is missing or the desktop has no way to open it
    virtual bool viewDocument(const LightweightString<wchar_t>& path) = 0;
    /// Shows a folder in the desktop's file manager; for a file, the folder that holds it.
    virtual bool viewFolder(const LightweightString<wchar_t>& path) = 0;
    /// Opens an address ("https://", "mailto:", ...) with the desktop's program.
    /// @return false for what has no scheme, for "file:" and for control characters, too
    virtual bool viewAddress(const LightweightString<wchar_t>& address) = 0;
    /// Claims to be the only running instance of this application for this user.
    ///
    /// The claim is an advisory lock on ".thereCanBeOnlyOne" in the preferences folder, so it ends
    /// with the process however that ends; the file itself stays.
    ///
    /// @return what holds the claim: keep it while the program runs. Null while it is held already,
    /// by another process or this one. Where no marker can be made (a read-only home) the claim is
    /// granted without one.
    virtual Tq::Ptr<iObject> claimSingleInstance() = 0;
};
