#include "FrameWriter.h"

#include "Editor.h"

#include "Drawing/Scene.h"
#include "Model/Timecode.h"
#include "common/PictureFile.h"

#include <limits>

namespace Vantor {

namespace {

const Point kSequenceSize{1920, 1080};

} // namespace

Text writeFrame(EditorState state, double scale, const Text& path)
{
    Resources resources(scale);
    const Tq::Ptr<iHostImage> surface = resources.blank({0, 0, state.size.x, state.size.y});
    if (!surface)
        return L"a picture of this size cannot be made";
    state.choices.titleWidth = titleWidth(state, resources);
    Icons icons(resources);
    PictureStore pictures(resources);
    drawFrame(state, resources, icons, pictures, surface->getPrimitivesRenderer(true),
              std::numeric_limits<int>::max());
    return savePicture(surface, path);
}

Text exportName(const EditorState& state)
{
    Text time = Timecode::full(state.player.frame);
    time.replaceAll(L":", L";");
    return fileNameOf(state.project.title) + L" " + time;
}

Text exportFrame(const EditorState& state, const Text& folder, Text& path)
{
    const Rect frame{0, 0, kSequenceSize.x, kSequenceSize.y};
    Resources resources(1.0);
    const Tq::Ptr<iHostImage> surface = resources.blank(frame);
    if (!surface)
        return L"a picture of this size cannot be made";
    {
        Icons icons(resources);
        PictureStore pictures(resources);
        pictures.allowLoads(std::numeric_limits<int>::max());
        Canvas canvas(resources, surface->getPrimitivesRenderer(true));
        Layout layout;
        layout.picture = frame;
        Scene scene{canvas, icons, pictures, state, layout};
        drawComposition(scene);
    }
    return saveNewPicture(surface, folder, exportName(state), path);
}

} // namespace Vantor
