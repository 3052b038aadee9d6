#include "FrameWriter.h"

#include "Editor.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <limits>

namespace Vantor {

Text writeFrame(EditorState state, double scale, const Text& path)
{
    if (formatOf(nameOf(path)).empty())
        return L"cannot write \"" + path +
               L"\": the name must end in .png, .jpg, .bmp, .tif or .ppm";
    Resources resources(scale);
    const Tq::Ptr<iHostImage> surface = resources.blank({0, 0, state.size.x, state.size.y});
    if (!surface)
        return L"a picture of this size cannot be made";
    state.choices.titleWidth = titleWidth(state, resources);
    Icons icons(resources);
    PictureStore pictures(resources);
    drawFrame(state, resources, icons, pictures, surface->getPrimitivesRenderer(true),
              std::numeric_limits<int>::max());
    if (!OS()->mediaServices()->saveImage(surface, path))
        return L"cannot write \"" + path + L"\"";
    return {};
}

} // namespace Vantor
