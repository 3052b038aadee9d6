#include "Drawing/PictureStore.h"

#include "Drawing/PictureScaler.h"

#include <OS.h>
#include <OS/Core/Exception.h>
#include <OS/Media/iMediaServices.h>

#include <new>

namespace Vantor {

namespace {

constexpr std::int64_t kPicturePixels = 64LL << 20; ///< of all loaded pictures, four bytes each
constexpr std::int64_t kCopyPixels = 64LL << 20;

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
    shrink(pictures_, kPicturePixels);
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

void PictureStore::dropOldest()
{
    shrink(copies_, kCopyPixels);
    std::erase_if(copies_, [](const auto& entry) { return !entry.second.image; });
}

XY<int> PictureStore::sizeOf(const Text& path)
{
    const auto known = pictures_.find(path);
    if (known != pictures_.end() && known->second.size.x > 0)
        return known->second.size;
    const Picture* picture = load(path);
    return picture ? picture->size : XY<int>();
}

bool PictureStore::isMissing(const Text& path) const
{
    const auto known = pictures_.find(path);
    return known != pictures_.end() && known->second.missing;
}

void PictureStore::forgetMissing()
{
    std::erase_if(pictures_, [](const auto& entry) { return entry.second.missing; });
}

void PictureStore::allowLoads(int count)
{
    loadsLeft_ = count;
    wantsMore_ = false;
}

} // namespace Vantor
