#pragma once

#include "Drawing/PictureStore.h"
#include "Model/FrameRate.h"
#include "Model/MediaBin.h"
#include "Model/Project.h"
#include "common/Canvas.h"
#include "common/Icons.h"

namespace Vantor {

/// What one frame of the sequence is drawn with, and where.
struct Composition
{
    Canvas& canvas;
    Icons& icons;
    PictureStore& pictures;
    const Project& project;
    const MediaBin& bin;
    FrameRate rate;
    int frame;
    Rect picture; ///< of the whole frame; nothing is drawn beyond
};

/// Draws the frame: picture, effect, overlay and title. On whatever thread the canvas may be used.
void drawComposition(const Composition& composition);
/// Its layers, from below: drawComposition() is all of them.
/// @return whether there is a picture that an effect can change
bool drawPictureLayer(const Composition& composition);
void drawEffectLayer(const Composition& composition);
void drawOverlayLayer(const Composition& composition);
void drawTitleLayer(const Composition& composition);
/// A clip's picture alone, on black; beyond its ends it goes on, or stands still.
/// @return whether it is there
bool drawClipAlone(const Composition& composition, int clip);

/// Stands in for a picture that is not there.
void drawMissing(Canvas& canvas, Icons& icons, const Rect& rect, const Text& words);
/// One frame of the test clip.
void drawTestClip(Canvas& canvas, const Rect& rect, int frame, const FrameRate& rate);

} // namespace Vantor
