#include "Drawing/Composition.h"

#include "Drawing/PictureScaler.h"

#include <algorithm>

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

void drawComposition(const Composition& c)
{
    const Rect& picture = c.picture;
    c.canvas.fill(picture, Theme::kBlack);
    const Clip* shown = clipAt(c, Track::ePicture);
    const Clip* effect = clipAt(c, Track::eEffect);
    if (shown && drawClipPicture(c, *shown, picture, 1.0f) && effect)
        drawEffect(c, *effect);
    if (const Clip* clip = clipAt(c, Track::eOverlay)) {
        const int width = picture.width() * 36 / 100;
        const int height = picture.height() * 36 / 100;
        const int right = picture.right - picture.width() * 8 / 100;
        const int top = picture.top + picture.height() * 9 / 100;
        drawClipPicture(c, *clip, {right - width, top, right, top + height}, kOverlayOpacity);
    }
    if (const Clip* clip = clipAt(c, Track::eTitle))
        drawTitle(c, *clip);
}

} // namespace Vantor
