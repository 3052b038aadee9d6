#include "FrameWriter.h"

#include "Editor.h"

#include "Model/Timecode.h"
#include "Play/FrameMaker.h"
#include "View/ViewerGeometry.h"
#include "common/PictureFile.h"
#include "common/ScreenGrab.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <algorithm>
#include <limits>

namespace Vantor {

Text writeFrame(EditorState state, double scale, const Text& path)
{
    Resources resources(scale);
    const Tq::Ptr<iHostImage> surface = resources.blank({0, 0, state.size.x, state.size.y});
    if (!surface)
        return L"a picture of this size cannot be made";
    state.choices.titleWidth = titleWidth(state, resources);
    Stores stores(resources);
    drawFrame(state, resources, stores, surface->getPrimitivesRenderer(true),
              std::numeric_limits<int>::max());
    return savePicture(surface, path);
}

Text grabFrame(EditorState state, const Text& path)
{
    const Point size = state.size;
    Tq::Ptr<Editor> editor(new Editor(std::move(state)));
    return grabWindow(
        size, editor, [&](const Tq::Ptr<iRootWindow>& window) { editor->attach(window); },
        [&] { return editor->hasDrawn(); },
        [&] {
            editor->detach();
            editor.reset();
        },
        path);
}

Text exportName(const EditorState& state)
{
    Text time = Timecode::full(state.player.frame(), state.player.rate());
    time.replaceAll(L":", L";");
    return fileNameOf(state.project.title) + L" " + time;
}

Text stillExtension(int type)
{
    std::vector<iMediaServices::ImageType> types;
    OS()->mediaServices()->getSavableImageTypes(types);
    const std::size_t index = static_cast<std::size_t>(std::max(type, 0)) % types.size();
    return types[index].extensions_.front().toLower();
}

Text exportFrame(const EditorState& state, const Text& folder, Text& path)
{
    auto edit = std::make_shared<Edit>();
    edit->project = state.project;
    edit->bin.items = state.bin.items;
    FrameMaker maker;
    const Tq::Ptr<iHostImage> surface =
        maker.draw({edit, state.player.rate(), kSequenceSize}, state.player.frame());
    if (!surface)
        return L"a picture of this size cannot be made";
    return saveNewPicture(surface, folder, exportName(state), path,
                          stillExtension(state.stillType));
}

} // namespace Vantor
