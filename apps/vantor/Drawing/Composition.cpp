#include "Drawing/Composition.h"

#include "Drawing/PictureScaler.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace Vantor {

namespace {

constexpr float kOverlayOpacity = 0.85f;

const Clip* clipAt(const Composition& c, Track track)
{
    const int index = c.project.clipAt(track, c.frame);
    return index == Project::kNone ? nullptr : &c.project.clips[static_cast<std::size_t>(index)];
}

/// Draws a clip's picture, whole, in the middle of a rectangle. @return whether it is there to be
/// drawn
bool drawClipPicture(const Composition& c, const Clip& clip, const Rect& room, float opacity)
{
    const int found = c.bin.find(clip.name);
    const MediaItem* media =
        found == MediaBin::kNone ? nullptr : &c.bin.items[static_cast<std::size_t>(found)];
    const int frame = c.frame - clip.start + clip.offset;
    if (media && media->kind == MediaItem::Kind::eTestClip) {
        drawTestClip(c.canvas, fitInto({1920, 1080}, room),
                     std::clamp(frame, 0, media->frames() - 1), c.rate);
        return true;
    }
    const Text path = media ? media->fileAt(frame) : Text();
    const bool moves = media && media->frames() > 0;
    const Tq::Ptr<iHostImage> picture =
        moves ? c.pictures.passing(path, room) : c.pictures.fitted(path, room);
    if (path.empty() || c.pictures.isMissing(path)) {
        drawMissing(c.canvas, c.icons, room,
                    nameOf(path.empty() ? clip.name : path) + L" is missing");
        return false;
    }
    if (picture)
        c.canvas.picture(picture, fitInto(c.pictures.sizeOf(path), room), opacity);
    return true;
}

void drawEffect(const Composition& c, const Clip& clip)
{
    const float value = valueAt(clip, c.frame - clip.start);
    const bool warm = clip.effect == Effect::eWarm;
    c.canvas.wash(c.picture, warm ? Theme::rgb(0xFF9A3C) : Theme::kBlack,
                  value * (warm ? 0.13f : 0.55f));
}

void drawTitle(const Composition& c, const Clip& clip)
{
    const Rect& picture = c.picture;
    const Theme::Type type{std::max(12, picture.height() / 12), true};
    const int middle = picture.top + picture.height() * 82 / 100;
    const int half = type.size;
    c.canvas.wash({picture.left, middle - half, picture.right, middle + half}, Theme::kBlack,
                  0.35f);
    c.canvas.textCentred(c.canvas.fitted(clip.name, picture.width() * 8 / 10, type),
                         (picture.left + picture.right) / 2,
                         baselineIn({0, middle - half, 0, middle + half}, type), type,
                         Theme::kWhite);
}

} // namespace

namespace {

// Without GL a page turn is a wipe: the new picture is uncovered from the right.
void drawPassage(const Composition& c, const Passage& passage)
{
    const Rect& picture = c.picture;
    drawClipAlone(c, passage.from);
    if (passage.kind == Entrance::eDissolve) {
        const Tq::Ptr<iHostImage> comes = c.canvas.resources().blank(picture);
        if (!comes)
            return;
        {
            Canvas canvas(c.canvas.resources(), comes->getPrimitivesRenderer(true));
            const Rect whole{0, 0, picture.width(), picture.height()};
            drawClipAlone({canvas, c.icons, c.pictures, c.project, c.bin, c.rate, c.frame, whole},
                          passage.to);
        }
        c.canvas.picture(comes, picture, passage.progress);
        return;
    }
    const int part =
        static_cast<int>(std::lround(passage.progress * static_cast<float>(picture.width())));
    if (part == 0)
        return;
    const bool turns = passage.kind == Entrance::ePageTurn;
    c.canvas.clip(turns ? Rect{picture.right - part, picture.top, picture.right, picture.bottom}
                        : Rect{picture.left, picture.top, picture.left + part, picture.bottom});
    drawClipAlone(c, passage.to);
    c.canvas.endClip();
}

} // namespace

bool drawClipAlone(const Composition& c, int clip)
{
    c.canvas.fill(c.picture, Theme::kBlack);
    return drawClipPicture(c, c.project.clips[static_cast<std::size_t>(clip)], c.picture, 1.0f);
}

bool drawPictureLayer(const Composition& c)
{
    if (const std::optional<Passage> passage = c.project.passageAt(Track::ePicture, c.frame)) {
        drawPassage(c, *passage);
        return true;
    }
    const int shown = c.project.clipAt(Track::ePicture, c.frame);
    if (shown != Project::kNone)
        return drawClipAlone(c, shown);
    c.canvas.fill(c.picture, Theme::kBlack);
    return false;
}

void drawEffectLayer(const Composition& c)
{
    if (const Clip* effect = clipAt(c, Track::eEffect))
        drawEffect(c, *effect);
}

void drawOverlayLayer(const Composition& c)
{
    const Rect& picture = c.picture;
    if (const Clip* clip = clipAt(c, Track::eOverlay)) {
        const int width = picture.width() * 36 / 100;
        const int height = picture.height() * 36 / 100;
        const int right = picture.right - picture.width() * 8 / 100;
        const int top = picture.top + picture.height() * 9 / 100;
        drawClipPicture(c, *clip, {right - width, top, right, top + height}, kOverlayOpacity);
    }
}

void drawTitleLayer(const Composition& c)
{
    if (const Clip* clip = clipAt(c, Track::eTitle))
        drawTitle(c, *clip);
}

void drawComposition(const Composition& c)
{
    if (drawPictureLayer(c))
        drawEffectLayer(c);
    drawOverlayLayer(c);
    drawTitleLayer(c);
}

} // namespace Vantor
