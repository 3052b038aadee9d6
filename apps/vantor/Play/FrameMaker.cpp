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

Tq::Ptr<iHostImage> FrameMaker::drawn(const FrameRequest& request, int frame, const Layers& layers)
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
    layers({canvas, icons_, pictures_, request.edit->project, request.edit->bin, request.rate,
            frame, picture});
    return surface;
}

Tq::Ptr<iHostImage> FrameMaker::draw(const FrameRequest& request, int frame)
{
    return drawn(request, frame, drawComposition);
}

Tq::Ptr<iGPUImage> FrameMaker::onGPU(const FrameRequest& request, int frame, const Layers& layers)
{
    surface_ = drawn(request, frame, layers);
    return surface_ ? OS()->mediaServices()->copyToGPU(surface_, iGPUImage::eARGB8) : nullptr;
}

void FrameMaker::drawOn(const Tq::Ptr<iGPUImage>& image, const FrameRequest& request, int frame,
                        const Layers& layers)
{
    Canvas canvas(onGPU_, image->getPrimitivesRenderer(true));
    layers({canvas,
            icons_,
            pictures_,
            request.edit->project,
            request.edit->bin,
            request.rate,
            frame,
            {0, 0, request.size.x, request.size.y}});
}

// The two pictures are mixed on the GPU, and what lies over them is drawn there.
Tq::Ptr<iGPUImage> FrameMaker::passage(const FrameRequest& request, int frame,
                                       const Passage& passage)
{
    const auto alone = [&](int clip) {
        return onGPU(request, frame, [clip](const Composition& c) { drawClipAlone(c, clip); });
    };
    const Tq::Ptr<iGPUImage> mixed =
        passages_.make(passage.kind, passage.progress, alone(passage.from), alone(passage.to));
    if (mixed)
        drawOn(mixed, request, frame, [](const Composition& c) {
            drawEffectLayer(c);
            drawOverlayLayer(c);
        });
    return mixed;
}

Tq::Ptr<iImage> FrameMaker::make(const FrameRequest& request, int frame)
{
    try {
        if (!request.edit)
            return nullptr;
        Tq::Ptr<iGPUImage> image;
        if (const auto between = request.edit->project.passageAt(Track::ePicture, frame))
            image = passage(request, frame, *between);
        if (!image)
            image = onGPU(request, frame, [](const Composition& c) {
                if (drawPictureLayer(c))
                    drawEffectLayer(c);
                drawOverlayLayer(c);
            });
        if (!image)
            return draw(request, frame);
        drawOn(image, request, frame, drawTitleLayer);
        return image;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // namespace Vantor
