#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/iObject.h>

#include <vector>

/// A small store of text values in named sections, kept in a text file. Reached as
/// OS()->shell()->getSettings(), one object for each scope of the process.
///
/// The file is read when the object is made; changes stay in memory until persist(). Values are
/// text: callers convert. A name may not contain "=" nor begin with "[", and neither name nor value
/// may contain a line break: the file knows no quoting. What it can not hold stays in memory: a
/// save ends such a value at the line break, leaves such a name out, and prints one line.
///
/// A null or empty section means "Configuration" in the global scope and the section without a name
/// in the user's. A null name or value is an empty one. setValue, getValue and removeValue take the
/// store's lock, a leaf, and may be called from any thread; getMultipleValues and persist take
/// none: nobody may change the store meanwhile. Nothing throws.
class OS_API iSettings : public iObject
{
public:
    enum eType : int
    {
        eUser = 0,  ///< "/UserSettings.txt"
        eGlobal = 1 ///< "/GlobalSettings.txt"
    };

    struct NameValuePair
    {
        NameValuePair(const LightweightString<char>& nameText,
                      const LightweightString<char>& valueText)
            : name(nameText), value(valueText)
        {
        }
        LightweightString<char> name;
        LightweightString<char> value;
    };

    /// Sets a value. Setting what is already there is no change. @return true, always
    virtual bool setValue(const char* name, const char* value, const char* section) = 0;
    /// @return the value, which may be empty; without one `defaultValue`, empty when that is null
    virtual LightweightString<char> getValue(const char* name, const char* defaultValue,
                                             const char* section) const = 0;
    /// @return whether there was one
    virtual bool removeValue(const char* name, const char* section) = 0;
    /// Appends all values of a section in the order of their names (bytes).
    /// @return false when there is no such section
    virtual bool getMultipleValues(std::vector<NameValuePair>& out, const char* section) = 0;
    /// Saves what has changed; nothing is written when nothing has.
    ///
    /// The new file is written beside the old one, flushed and renamed over it, links resolved and
    /// the mode kept: a crash or a power cut leaves the old or the new one, whole. A file that may
    /// not be written is left alone and the changes are not saved, silently and deliberately; one
    /// in a folder that refuses new files is written in place. A write that fails half-way (a full
    /// disk) keeps the old file, prints one line, and the next persist() tries again.
    virtual void persist() = 0;
};
