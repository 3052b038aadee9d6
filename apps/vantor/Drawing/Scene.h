#pragma once

#include "Drawing/PictureStore.h"
#include "View/EditorState.h"
#include "common/Canvas.h"
#include "common/Icons.h"

namespace Vantor {

/// What the drawing of one frame works with.
struct Scene
{
    Canvas& canvas;
    Icons& icons;
    PictureStore& pictures;
    const EditorState& state;
    const Layout layout;

    /// The path of a clip's picture; empty when the bin does not hold it.
    Text pathOf(const Clip& clip) const
    {
        const int item = state.bin.find(clip.name);
        return item == MediaBin::kNone ? Text()
                                       : state.bin.items[static_cast<std::size_t>(item)].path;
    }
};

/// Draws the whole window.
void drawEditor(Scene& scene);

void drawTopBar(Scene& scene);
void drawMediaBin(Scene& scene);
void drawViewer(Scene& scene);
/// The picture under the playhead, in the layout's place for it.
void drawComposition(Scene& scene);
void drawTransport(Scene& scene);
void drawTimeline(Scene& scene);
void drawClips(Scene& scene);
void drawRuler(Scene& scene);
void drawPlayhead(Scene& scene);
void drawStatusLine(Scene& scene);

/// The text of a field, with its caret and selection while it is being edited.
void drawFieldText(Scene& scene, Focus field, const Rect& rect, const TextField& text,
                   const Theme::Type& type, const NormalisedRGB& colour,
                   const NormalisedRGB& ground);
/// Stands in for a picture that is not there.
void drawMissing(Scene& scene, const Rect& rect, const Text& words);
/// Around what has the keyboard, while the keyboard moved it there.
void drawFocusRing(Scene& scene, const Rect& rect, Focus focus);

} // namespace Vantor
