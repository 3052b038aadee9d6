#include "common/PictureFile.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

namespace App {

namespace {

bool canBeWritten(const Text& name)
{
    const Text::size_type dot = name.rfind(L'.');
    if (dot == Text::npos)
        return false;
    const Text extension = name.substr(dot + 1).toUpper();
    std::vector<iMediaServices::ImageType> types;
    OS()->mediaServices()->getSavableImageTypes(types);
    for (const iMediaServices::ImageType& type : types)
        for (const Text& known : type.extensions_)
            if (known == extension)
                return true;
    return false;
}

} // namespace

Text savePicture(const Tq::Ptr<iHostImage>& image, const Text& path)
{
    if (!canBeWritten(nameOf(path)))
        return L"cannot write \"" + path +
               L"\": the name must end in .png, .jpg, .bmp, .tif or .ppm";
    if (!OS()->mediaServices()->saveImage(image, path))
        return L"cannot write \"" + path + L"\"";
    return {};
}

} // namespace App
