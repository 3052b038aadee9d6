#include "Model/MediaBin.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>
#include <OS/Media/iMediaServices.h>

namespace Vantor {

namespace {

constexpr int kTestClipFrames = 300;

} // namespace

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
    MediaItem item;
    item.name = nameOf(path);
    item.path = path;
    item.format = format;
    return add(std::move(item));
}

int MediaBin::add(MediaItem item)
{
    for (std::size_t i = 0; i < items.size(); ++i)
        if (items[i].path == item.path)
            return static_cast<int>(i);
    items.push_back(std::move(item));
    return static_cast<int>(items.size()) - 1;
}

int MediaItem::frames() const
{
    switch (kind) {
    case Kind::eSequence:
        return sequence.count;
    case Kind::eTestClip:
        return kTestClipFrames;
    default:
        return 0;
    }
}

Text MediaItem::fileAt(int frame) const
{
    switch (kind) {
    case Kind::eSequence:
        return path.substr(0, path.size() - name.size()) + sequence.fileAt(frame);
    case Kind::eTestClip:
        return {};
    default:
        return path;
    }
}

MediaItem testClip()
{
    MediaItem item;
    item.name = L"Test clip";
    item.path = L"generated:Test clip";
    item.format = L"CLIP";
    item.kind = MediaItem::Kind::eTestClip;
    return item;
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
    std::vector<Text> names;
    for (const iFileManager::DirectoryItem& entry : entries)
        if (!formatOf(entry.name_).empty())
            names.push_back(entry.name_);
    const FoundFiles found = findSequences(names);
    for (const FrameSequence& sequence : found.sequences) {
        MediaItem item;
        item.name = sequence.name();
        item.path = base + item.name;
        item.format = formatOf(item.name);
        item.kind = MediaItem::Kind::eSequence;
        item.sequence = sequence;
        bin.add(std::move(item));
    }
    for (const Text& name : found.others)
        bin.add(base + name, formatOf(name));
    return true;
}

} // namespace Vantor
