#include "Drawing/PictureStore.h"

#include "Drawing/PictureScaler.h"

#include <OS.h>
#include <OS/Core/Exception.h>
#include <OS/Media/iMediaServices.h>

#include <new>

namespace Vantor {

namespace {

Tq::Ptr<iHostImage> read(const Text& path)
{
    try {
        const Tq::Ptr<iHostImage> image = OS()->mediaServices()->loadImage(path);
        return image && image->getSize().x > 0 && image->getSize().y > 0 ? image : nullptr;
    } catch (const Tq::Exception::RuntimeError&) {
        return nullptr;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

std::int64_t area(const Tq::Ptr<iHostImage>& image)
{
    if (!image)
        return 0;
    const XY<int> size = image->getSize();
    return static_cast<std::int64_t>(size.x) * size.y;
}

/// Lets go of the longest unused images until the rest fits. The youngest always stays.
template <class Map>
void shrink(Map& held, std::int64_t limit)
{
    for (;;) {
        std::int64_t total = 0;
        auto oldest = held.end();
        auto youngest = held.end();
        for (auto it = held.begin(); it != held.end(); ++it) {
            if (!it->second.image)
                continue;
            total += area(it->second.image);
            if (oldest == held.end() || it->second.used < oldest->second.used)
                oldest = it;
            if (youngest == held.end() || it->second.used > youngest->second.used)
                youngest = it;
        }
        if (total <= limit || oldest == youngest)
            return;
        oldest->second.image.reset();
    }
}

} // namespace

PictureStore::Picture* PictureStore::load(const Text& path)
{
    Picture& picture = pictures_[path];
    picture.used = ++clock_;
    if (picture.image || picture.missing)
        return &picture;
    if (loadsLeft_ <= 0) {
        wantsMore_ = true;
        return nullptr;
    }
    --loadsLeft_;
    picture.image = read(path);
    picture.missing = !picture.image;
    if (picture.image)
        picture.size = picture.image->getSize();
    shrink(pictures_, limit_);
    return &picture;
}

Tq::Ptr<iHostImage> PictureStore::scaled(const Text& path, const Tq::Rectangle<int>& rect, Fit fit)
{
    const XY<int> extent = resources_.scaled(rect).size();
    Copy& copy = copies_[{path, extent.x, extent.y, fit}];
    copy.used = ++clock_;
    if (copy.image)
        return copy.image;
    const Picture* picture = load(path);
    if (!picture || !picture->image)
        return nullptr;
    const XY<int> size = picture->image->getSize();
    const Tq::Rectangle<int> part =
        fit == Fit::eCover ? partOfShape(size, extent) : Tq::Rectangle<int>{0, 0, size.x, size.y};
    Tq::Ptr<iHostImage> made = resources_.blank(rect);
    if (!scalePicture(picture->image, part, made))
        return nullptr;
    copy.image = made;
    dropOldest();
    return made;
}

Tq::Ptr<iHostImage> PictureStore::fitted(const Text& path, const Tq::Rectangle<int>& room)
{
    const XY<int> size = path.empty() ? XY<int>() : sizeOf(path);
    return size.x > 0 ? scaled(path, fitInto(size, room), Fit::eStretch) : nullptr;
}

Tq::Ptr<iHostImage> PictureStore::passing(const Text& path, const Tq::Rectangle<int>& room)
{
    if (path == passingPath_ && room == passingRoom_)
        return passing_;
    if (loadsLeft_ <= 0) {
        wantsMore_ = true;
        return nullptr;
    }
    --loadsLeft_;
    passing_.reset();
    passingPath_ = path;
    passingRoom_ = room;
    const Tq::Ptr<iHostImage> image = read(path);
    passingMissing_ = !image;
    passingSize_ = image ? image->getSize() : XY<int>();
    if (!image)
        return nullptr;
    const Tq::Rectangle<int> place = fitInto(passingSize_, room);
    Tq::Ptr<iHostImage> made = resources_.blank(place);
    if (scalePicture(image, {0, 0, passingSize_.x, passingSize_.y}, made))
        passing_ = made;
    return passing_;
}

void PictureStore::dropOldest()
{
    shrink(copies_, limit_);
    std::erase_if(copies_, [](const auto& entry) { return !entry.second.image; });
}

XY<int> PictureStore::sizeOf(const Text& path)
{
    if (path == passingPath_)
        return passingSize_;
    const auto known = pictures_.find(path);
    if (known != pictures_.end() && known->second.size.x > 0)
        return known->second.size;
    const Picture* picture = load(path);
    return picture ? picture->size : XY<int>();
}

bool PictureStore::isMissing(const Text& path) const
{
    if (path == passingPath_)
        return passingMissing_;
    const auto known = pictures_.find(path);
    return known != pictures_.end() && known->second.missing;
}

void PictureStore::forgetMissing()
{
    std::erase_if(pictures_, [](const auto& entry) { return entry.second.missing; });
    passingPath_.clear();
}

void PictureStore::allowLoads(int count)
{
    loadsLeft_ = count;
    wantsMore_ = false;
}

} // namespace Vantor
