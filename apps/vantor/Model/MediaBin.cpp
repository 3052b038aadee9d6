#include "Model/MediaBin.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>
#include <OS/Media/iMediaServices.h>

namespace Vantor {

std::vector<int> MediaBin::visible() const
{
    std::vector<int> indices;
    const Text wanted = filter.trimmed().toLower();
    for (std::size_t i = 0; i < items.size(); ++i)
        if (wanted.empty() || items[i].name.toLower().contains(wanted))
            indices.push_back(static_cast<int>(i));
    return indices;
}

int MediaBin::find(const Text& name) const
{
    for (std::size_t i = 0; i < items.size(); ++i)
        if (items[i].name == name)
            return static_cast<int>(i);
    return kNone;
}

int MediaBin::add(const Text& path, const Text& format)
{
    for (std::size_t i = 0; i < items.size(); ++i)
        if (items[i].path == path)
            return static_cast<int>(i);
    items.push_back({nameOf(path), path, format});
    return static_cast<int>(items.size()) - 1;
}

Text formatOf(const Text& name)
{
    const Text::size_type dot = name.rfind(L'.');
    if (dot == Text::npos)
        return {};
    const Text extension = name.substr(dot + 1).toUpper();
    std::vector<iMediaServices::ImageType> types;
    OS()->mediaServices()->getLoadableImageTypes(types);
    for (const iMediaServices::ImageType& type : types)
        for (const Text& candidate : type.extensions_)
            if (candidate == extension)
                return type.extensions_.back(); // the long form: JPEG, TIFF
    return {};
}

bool addFolder(MediaBin& bin, const Text& folder)
{
    const Text base = folder.endsWith(L'/') ? folder : folder + L'/';
    std::vector<iFileManager::DirectoryItem> entries;
    if (!OS()->fileMgr()->getDirectoryContents(base, entries, true, false))
        return false;
    for (const iFileManager::DirectoryItem& entry : entries) {
        const Text format = formatOf(entry.name_);
        if (!format.empty())
            bin.add(base + entry.name_, format);
    }
    return true;
}

} // namespace Vantor
