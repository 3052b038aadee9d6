#include "Model/Removal.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Files/iFileManager.h>

#include <algorithm>
#include <filesystem>

namespace Vantor {

namespace {

namespace fs = std::filesystem;

fs::path native(const Text& path)
{
    return OS()->utils()->toUTF8(path).c_str();
}

/// Whether a file lies in one of some folders, whatever links lead there.
bool liesIn(const Text& file, const std::vector<Text>& folders)
{
    const Text folder = file.substr(0, file.size() - nameOf(file).size());
    return std::any_of(folders.begin(), folders.end(), [&](const Text& other) {
        std::error_code error;
        return folder == other || fs::equivalent(native(folder), native(other), error);
    });
}

} // namespace

Text removeItem(MediaBin& bin, int index, const std::vector<Text>& sampleFolders)
{
    if (index < 0 || index >= static_cast<int>(bin.items.size()))
        return {};
    const MediaItem item = bin.items[static_cast<std::size_t>(index)];
    Text message;
    if (item.kind != MediaItem::Kind::ePicture)
        message = item.name + (item.kind == MediaItem::Kind::eSequence
                                   ? L" taken out of the bin; its files stay"
                                   : L" taken out of the bin");
    else if (liesIn(item.path, sampleFolders))
        message = item.name + L" taken out of the bin; sample media are not trashed";
    else if (!OS()->fileMgr()->fileExists(item.path))
        message = item.name + L" taken out of the bin; its file was gone";
    else if (OS()->fileMgr()->recycleFile(item.path))
        message = item.name + L" moved to the trash";
    else
        return item.name + L" stays: it cannot be moved to the trash";
    bin.items.erase(bin.items.begin() + index);
    // Nothing is selected: a key that is held down takes one item only.
    bin.selected = MediaBin::kNone;
    return message;
}

} // namespace Vantor
