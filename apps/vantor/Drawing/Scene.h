#pragma once

#include "Drawing/Composition.h"
#include "Drawing/PictureStore.h"
#include "Drawing/ScopePictures.h"
#include "View/EditorState.h"
#include "common/Canvas.h"
#include "common/Icons.h"

namespace Vantor {

/// The pictures that are kept from one frame to the next, for one target.
struct Stores
{
    explicit Stores(Resources& resources) : icons(resources), pictures(resources), scopes(resources)
    {
    }
    Icons icons;
    PictureStore pictures;
    ScopePictures scopes;
};

/// What the drawing of one frame works with.
struct Scene
{
    Canvas& canvas;
    Stores& stores;
    const EditorState& state;
    const Layout layout;

    /// What a clip shows; null when the bin does not hold it.
    const MediaItem* mediaOf(const Clip& clip) const
    {
        const int item = state.bin.find(clip.name);
        return item == MediaBin::kNone ? nullptr : &state.bin.items[static_cast<std::size_t>(item)];
    }
};

/// Draws the whole window.
void drawEditor(Scene& scene);

void drawTopBar(Scene& scene);
void drawMediaBin(Scene& scene);
void drawViewer(Scene& scene);
void drawTransport(Scene& scene);
void drawEffects(Scene& scene);
void drawScopes(Scene& scene);
void drawTimeline(Scene& scene);
void drawClips(Scene& scene);
void drawRuler(Scene& scene);
void drawPlayhead(Scene& scene);
void drawStatusLine(Scene& scene);

/// The text of a field, with its caret and selection while it is being edited.
void drawFieldText(Scene& scene, Focus field, const Rect& rect, const TextField& text,
                   const Theme::Type& type, const NormalisedRGB& colour,
                   const NormalisedRGB& ground);
/// A small picture of a thing of the bin; a null one is missing. @param frame of what moves
void drawThumbnail(Scene& scene, const MediaItem* media, int frame, const Rect& rect,
                   const Text& missing);
/// Around what has the keyboard, while the keyboard moved it there.
void drawFocusRing(Scene& scene, const Rect& rect, Focus focus);

} // namespace Vantor
