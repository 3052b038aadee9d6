// Images drawn through effects by OpenGLGraphicPrimitivesRendererBase.
#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRendererBase.h"

#include "OS/Mac/OpenGL/Drawing/ImagePlacement.h"
#include "OS/Mac/OpenGL/Drawing/ReadablePicture.h"

#include <algorithm>
#include <utility>

using namespace GLDrawing;

namespace {

using Drawing = iShaderEffectBase::Drawing;

// The scissor around a clip region, for a scope.
class ScissorInUse
{
public:
    ScissorInUse(const DrawingTarget& target, const ClipRegion& clip) : isOn_(clip.isLimited())
    {
        if (!isOn_)
            return;
        const auto [left, bottom, width, height] = target.toScissor(clip.bounds());
        glEnable(GL_SCISSOR_TEST);
        glScissor(left, bottom, width, height);
    }
    ~ScissorInUse()
    {
        if (isOn_)
            glDisable(GL_SCISSOR_TEST);
    }
    ScissorInUse(const ScissorInUse&) = delete;
    ScissorInUse& operator=(const ScissorInUse&) = delete;

private:
    bool isOn_;
};

// What of a place can be seen, as corners; counted in shares of the whole.
std::vector<iShaderEffectBase::Corner> cornersOf(const ImagePlacement& whole,
                                                 const ClipRegion& clip)
{
    std::vector<ImageVertex> quads;
    whole.within(clip.bounds()).addTo(quads);
    if (clip.isSeveral()) {
        std::vector<ImageVertex> inside;
        clip.cut(quads, inside);
        quads = std::move(inside);
    }
    std::vector<iShaderEffectBase::Corner> corners;
    corners.reserve(quads.size());
    for (const ImageVertex& vertex : quads)
        corners.push_back({vertex.x, vertex.y, vertex.u, vertex.v});
    return corners;
}

int pixels(double from, double to)
{
    return std::max(nearestEdge(to) - nearestEdge(from), 1);
}

} // namespace

void OpenGLGraphicPrimitivesRendererBase::drawWithEffect(const ImageDescriptionEx& desc)
{
    const Tq::Ptr<iShaderEffectBase> effect = desc.technique_.effect_;
    if (!effect->hasTechnique(desc.technique_.name_))
        return;
    const PixelMeasure measure = PixelMeasure::of(desc.image_.get());
    const ImagePlacement placement =
        ImagePlacement(desc.sourceRect_, desc.destRect_, target_.ratio)
            .scaled(static_cast<double>(measure.scale.x), static_cast<double>(measure.scale.y))
            .within(measure.size);
    if (placement.isEmpty())
        return;
    Drawing drawing;
    drawing.corners_ = cornersOf(placement.asShares(), clip_);
    if (drawing.corners_.empty())
        return;
    const ReadablePicture picture =
        readablePicture(desc.image_.get(), placement.source(), measure.scale, targetTexture_);
    if (picture.texture == 0)
        return;
    drawing.pictures_.push_back({picture.texture, picture.size, picture.part.left, picture.part.top,
                                 picture.part.right, picture.part.bottom});
    const std::array<float, 4> toClip = target_.toClip();
    std::copy(toClip.begin(), toClip.end(), drawing.toClip_);
    const ImageDescriptionEx::Rect dest = placement.dest();
    drawing.size_ = {pixels(static_cast<double>(dest.left), static_cast<double>(dest.right)),
                     pixels(static_cast<double>(dest.top), static_cast<double>(dest.bottom))};
    drawing.outputSize_ = {target_.width, target_.height};
    drawing.blend_ = desc.blend_;
    drawing.technique_ = desc.technique_.name_;
    drawing.values_ = desc.technique_.values_;
    const ScissorInUse scissor(target_, clip_);
    effect->draw(drawing);
}

void OpenGLGraphicPrimitivesRendererBase::renderMulti(const ImageDescriptionEx* descs,
                                                      unsigned int count)
{
    if (count == 0 || clip_.isEmpty())
        return;
    const ImageDescriptionEx* const end = descs + count;
    const auto hasEffect = [](const ImageDescriptionEx& desc) {
        return static_cast<bool>(desc.technique_.effect_);
    };
    for (const ImageDescriptionEx* desc = descs; desc != end;) {
        const ImageDescriptionEx* const runEnd = std::find_if(desc, end, hasEffect);
        if (runEnd != desc)
            drawWithoutEffects(desc, runEnd);
        desc = runEnd;
        for (; desc != end && hasEffect(*desc); ++desc)
            drawWithEffect(*desc);
    }
}
