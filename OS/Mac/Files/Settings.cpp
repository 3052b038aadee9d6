#include "OS/Mac/Files/Settings.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Core/ReplacementFile.h"
#include "OS/Mac/Threads/LockRank.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>
#include <OS/Files/iShell.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/iThreadManager.h>

#include <cstring>

namespace {

const char* textOf(const char* text)
{
    return text ? text : "";
}

} // namespace

Settings::Settings(eType type)
    : lock_(OS()->threadMgr()->createCriticalSection(0)), type_(type), dirty_(false)
{
    OSInternal::setLockRank(*lock_, OSInternal::LockRank::eSettings);
    restore();
}

const char* Settings::sectionName(const char* section) const
{
    if (section && *section)
        return section;
    return type_ == eGlobal ? "Configuration" : "";
}

bool Settings::setValue(const char* name, const char* value, const char* section)
{
    const SettingsText::Text nameText(textOf(name)), valueText(textOf(value));
    const CriticalSectionLock lock(lock_);
    auto& values = sections_[sectionName(section)];
    const auto [found, isNew] = values.try_emplace(nameText, valueText);
    if (!isNew && found->second == valueText)
        return true;
    found->second = valueText;
    dirty_ = true;
    return true;
}

LightweightString<char> Settings::getValue(const char* name, const char* defaultValue,
                                           const char* section) const
{
    const CriticalSectionLock lock(lock_);
    const auto values = sections_.find(std::string_view(sectionName(section)));
    if (values != sections_.end()) {
        const auto value = values->second.find(std::string_view(textOf(name)));
        if (value != values->second.end())
            return value->second;
    }
    return defaultValue;
}

bool Settings::removeValue(const char* name, const char* section)
{
    const CriticalSectionLock lock(lock_);
    const auto values = sections_.find(std::string_view(sectionName(section)));
    if (values == sections_.end())
        return false;
    const auto value = values->second.find(std::string_view(textOf(name)));
    if (value == values->second.end())
        return false;
    values->second.erase(value);
    dirty_ = true;
    return true;
}

bool Settings::getMultipleValues(std::vector<NameValuePair>& out, const char* section)
{
    const auto values = sections_.find(std::string_view(sectionName(section)));
    if (values == sections_.end())
        return false;
    for (const auto& [name, value] : values->second)
        out.emplace_back(name, value);
    return true;
}

void Settings::persist()
{
    if (dirty_)
        dirty_ = !save(getPath(type_));
}

LightweightString<wchar_t> Settings::getPath(eType type)
{
    iFileManager* files = OS()->fileMgr();
    const LightweightString<wchar_t> folder = OS()->shell()->getFolderLocation(iShell::eHome) +
                                              files->getAppDescription() + L"/Preferences";
    files->createDirectory(folder);
    return folder + (type == eGlobal ? L"/GlobalSettings.txt" : L"/UserSettings.txt");
}

void Settings::restore()
{
    sections_.clear();
    dirty_ = false;
    if (std::FILE* stream = std::fopen(OSInternal::pathToSystem(getPath(type_)).c_str(), "re"))
        SettingsText::read(stream, sections_);
}

bool Settings::save(const LightweightString<wchar_t>& path) const
{
    using OSInternal::ReplacementFile;
    const LightweightString<char> systemPath = OSInternal::pathToSystem(path);
    ReplacementFile file(systemPath);
    if (file.status() == ReplacementFile::Status::eRefused)
        return true; // left alone, and the changes are lost, deliberately

    SettingsText::Losses losses;
    const bool written =
        file.openAnyway() &&
        SettingsText::write(
            sections_,
            [&](std::string_view piece) { return file.write(piece.data(), piece.size()); }, losses);
    if (losses.count > 0)
        OSInternal::printLine("Settings::save() : %u values do not fit into %s, such as %s\n",
                              losses.count, systemPath.c_str(), losses.first.c_str());
    if (written && file.commit())
        return true;
    OSInternal::printLine("Settings::save() : cannot write %s: %s\n", systemPath.c_str(),
                          strerrordesc_np(file.error()));
    return false;
}
