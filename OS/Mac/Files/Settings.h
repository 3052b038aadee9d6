#pragma once

#include "OS/Mac/Files/SettingsText.h"

#include <OS/Files/iSettings.h>
#include <OS/Threads/iCriticalSection.h>

/// iSettings in a text file of the preferences folder; SettingsText describes its form.
///
/// Not for more than one object of a scope: Shell keeps the one that all share. The destructor does
/// not persist.
class Settings final : public iSettings
{
public:
    /// Reads the scope's file; one that can not be read gives an empty store.
    explicit Settings(eType type);

    bool setValue(const char* name, const char* value, const char* section) override;
    LightweightString<char> getValue(const char* name, const char* defaultValue,
                                     const char* section) const override;
    bool removeValue(const char* name, const char* section) override;
    bool getMultipleValues(std::vector<NameValuePair>& out, const char* section) override;
    void persist() override;

    /// The scope's file. Makes the folder that it lies in.
    static LightweightString<wchar_t> getPath(eType type);

private:
    /// The stream stays open until the process ends, deliberately.
    void restore();
    /// @return false when the file should have been written but was not, after a line
    bool save(const LightweightString<wchar_t>& path) const;
    const char* sectionName(const char* section) const;

    SettingsText::Sections sections_;
    Tq::Ptr<iCriticalSection> lock_;
    eType type_;
    bool dirty_;
};
