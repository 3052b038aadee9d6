#include "common/PictureFile.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>
#include <OS/Files/iProcessManager.h>
#include <OS/Media/iMediaServices.h>

#include <algorithm>

namespace App {

namespace {

constexpr int kMostNames = 9999;
constexpr Text::size_type kLongestName = 60; ///< characters: at most 240 bytes

Text extensionOf(const Text& name)
{
    const Text::size_type dot = name.rfind(L'.');
    return dot == Text::npos ? Text() : name.substr(dot + 1);
}

bool canBeWritten(const Text& name)
{
    const Text extension = extensionOf(name).toUpper();
    std::vector<iMediaServices::ImageType> types;
    OS()->mediaServices()->getSavableImageTypes(types);
    for (const iMediaServices::ImageType& type : types)
        for (const Text& known : type.extensions_)
            if (known == extension)
                return true;
    return false;
}

/// Writes a picture beside a target, under a name of its own. @return its path; empty on failure
Text writeBeside(const Tq::Ptr<iHostImage>& image, const Text& target)
{
    const Text name = nameOf(target);
    const Text folder = target.substr(0, target.size() - name.size());
    const Text path = folder + L".new-" +
                      std::to_wstring(OS()->processMgr()->getCurrentProcessID()).c_str() + L"." +
                      extensionOf(name);
    if (OS()->mediaServices()->saveImage(image, path))
        return path;
    OS()->fileMgr()->deleteFile(path);
    return {};
}

Text cannotWrite(const Text& path)
{
    return L"cannot write \"" + path + L"\"";
}

} // namespace

Text savePicture(const Tq::Ptr<iHostImage>& image, const Text& path)
{
    if (!canBeWritten(nameOf(path)))
        return cannotWrite(path) + L": the name must end in .png, .jpg, .bmp, .tif or .ppm";
    const Text written = writeBeside(image, path);
    if (written.empty())
        return cannotWrite(path);
    if (OS()->fileMgr()->moveFile(written, path, false))
        return {};
    OS()->fileMgr()->deleteFile(written);
    return cannotWrite(path);
}

Text saveNewPicture(const Tq::Ptr<iHostImage>& image, const Text& folder, const Text& name,
                    Text& path, const Text& extension)
{
    iFileManager* files = OS()->fileMgr();
    if (folder.empty() || !files->createDirectory(folder))
        return L"the folder \"" + folder + L"\" cannot be made";
    const Text base = (folder.endsWith(L'/') ? folder : folder + L'/') + name;
    path = base + L"." + extension;
    const Text written = writeBeside(image, path);
    if (written.empty())
        return cannotWrite(path);
    // Another program may take a name between the question and the move: the move decides.
    for (int i = 2; i <= kMostNames; ++i) {
        if (files->moveFile(written, path, true))
            return {};
        if (!files->fileExists(path))
            break;
        path = base + L" " + decimal(i) + L"." + extension;
    }
    files->deleteFile(written);
    return cannotWrite(path);
}

Text fileNameOf(const Text& text)
{
    std::wstring name(text.trimmed().substr(0, kLongestName).view());
    for (wchar_t& c : name)
        if (c < L' ' || c == 0x7F ||
            std::wstring_view(L"/\\:*?\"<>|").find(c) != std::wstring::npos)
            c = L'-';
    const std::size_t first = std::min(name.find_first_not_of(L'.'), name.size());
    const Text result = Text(name.c_str()).substr(static_cast<Text::size_type>(first)).trimmed();
    return result.empty() ? Text(L"Untitled") : result;
}

} // namespace App
