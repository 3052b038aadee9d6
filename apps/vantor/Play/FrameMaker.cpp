#include "Play/FrameMaker.h"

#include "Drawing/Composition.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <limits>
#include <new>

namespace Vantor {

namespace {

constexpr std::int64_t kPixels = 6LL << 20; ///< of the still pictures that a thread keeps

} // namespace

FrameMaker::FrameMaker() : resources_(1.0), icons_(resources_), pictures_(resources_, kPixels) {}

Tq::Ptr<iHostImage> FrameMaker::draw(const FrameRequest& request, int frame)
{
    const Rect picture{0, 0, request.size.x, request.size.y};
    Tq::Ptr<iHostImage> surface = std::move(surface_);
    surface_.reset();
    if (!surface || surface->getSize() != request.size)
        surface = resources_.blank(picture);
    if (!surface || !request.edit)
        return nullptr;
    pictures_.allowLoads(std::numeric_limits<int>::max());
    Canvas canvas(resources_, surface->getPrimitivesRenderer(true));
    drawComposition({canvas, icons_, pictures_, request.edit->project, request.edit->bin,
                     request.rate, frame, picture});
    return surface;
}

Tq::Ptr<iImage> FrameMaker::make(const FrameRequest& request, int frame)
{
    try {
        const Tq::Ptr<iHostImage> drawn = draw(request, frame);
        const Tq::Ptr<iGPUImage> image =
            drawn ? OS()->mediaServices()->copyToGPU(drawn, iGPUImage::eARGB8) : nullptr;
        if (!image)
            return drawn;
        surface_ = drawn;
        return image;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // namespace Vantor
