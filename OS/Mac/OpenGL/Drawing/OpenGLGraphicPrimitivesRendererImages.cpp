// The image overloads of OpenGLGraphicPrimitivesRendererBase.
#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRendererBase.h"

#include "OS/Mac/OpenGL/Drawing/DrawingResources.h"
#include "OS/Mac/OpenGL/Drawing/ImagePlacement.h"
#include "OS/Mac/OpenGL/Drawing/ImageSource.h"
#include "OS/Mac/OpenGL/Drawing/ImageUploads.h"
#include "OS/Mac/OpenGL/Drawing/QuadPainter.h"

#include <algorithm>

using namespace GLDrawing;

/// One call that draws images: collects quads of one texture, drawn alike, and hands each run to
/// GL.
class OpenGLGraphicPrimitivesRendererBase::Images
{
public:
    explicit Images(const OpenGLGraphicPrimitivesRendererBase& renderer)
        : target_(renderer.target_), targetTexture_(renderer.targetTexture_),
          resources_(DrawingResources::instance()),
          painter_(target_, renderer.clip_, resources_.vertexBuffer, resources_.run),
          uploads_(resources_.uploads)
    {
        resources_.images.clear();
        resources_.scaledImages.clear();
    }

    /// Says what will be drawn, before any of it is.
    void announce(const iImageBase* image, const ImagePlacement& placement);
    void draw(const iImageBase* image, const ImagePlacement& placement, bool blend, float opacity);
    void flush();

private:
    // What the quads of one run have in common.
    struct Run
    {
        ImageSource source;
        Blending blending = Blending::eNone;
        float opacity = 1.0f;
        bool isScaled = false;

        friend bool operator==(const Run&, const Run&) = default;
    };

    ImagePlacement seenOf(const HostPixels& pixels, const ImagePlacement& placement) const;
    void drawHost(const iHostImage& image, const ImagePlacement& placement, bool blend,
                  float opacity);
    void drawTarget(const ImageSource& source, const ImagePlacement& placement, bool blend,
                    float opacity);
    void add(const ImageSource& source, const ImagePlacement& placement, bool blend, float opacity);
    void start(const Run& run);
    bool usePrograms();

    const DrawingTarget& target_;
    GLuint targetTexture_;
    DrawingResources& resources_;
    QuadPainter painter_;
    ImageUploads uploads_;
    Run run_;
};

void OpenGLGraphicPrimitivesRendererBase::Images::announce(const iImageBase* image,
                                                           const ImagePlacement& placement)
{
    const auto* host = dynamic_cast<const iHostImage*>(image);
    if (!host)
        return;
    const ImagePlacement seen = seenOf(HostPixels(*host), placement);
    if (!seen.isEmpty())
        uploads_.announce(*host, seen.sourcePixels());
}

// What can be seen of a host image, the source in its pixels.
ImagePlacement
OpenGLGraphicPrimitivesRendererBase::Images::seenOf(const HostPixels& pixels,
                                                    const ImagePlacement& placement) const
{
    return placement.scaled(pixels.scale(), pixels.scale())
        .within(XY<int>(pixels.image().width(), pixels.image().height()))
        .within(painter_.visible());
}

void OpenGLGraphicPrimitivesRendererBase::Images::draw(const iImageBase* image,
                                                       const ImagePlacement& placement, bool blend,
                                                       float opacity)
{
    if (const auto* host = dynamic_cast<const iHostImage*>(image))
        return drawHost(*host, placement, blend, opacity);
    const ImageSource source = ImageSource::of(image);
    if (source.texture == 0)
        return;
    const ImagePlacement seen =
        placement.scaled(static_cast<double>(source.scaleX), static_cast<double>(source.scaleY))
            .within(source.size)
            .within(painter_.visible());
    if (seen.isEmpty())
        return;
    if (source.texture == targetTexture_)
        drawTarget(source, seen, blend, opacity);
    else
        add(source, seen, blend, opacity);
}

void OpenGLGraphicPrimitivesRendererBase::Images::drawHost(const iHostImage& image,
                                                           const ImagePlacement& placement,
                                                           bool blend, float opacity)
{
    const HostPixels pixels(image);
    const ImagePlacement seen = seenOf(pixels, placement);
    if (seen.isEmpty())
        return;
    if (!uploads_.holds(image))
        flush(); // the texture may have been lent to another image
    const UploadedPart uploaded = uploads_.upload(image, pixels);
    if (uploaded.texture != 0)
        add(ImageSource::of(uploaded), seen.relativeTo(uploaded.part.topLeft()), blend, opacity);
}

// GL must not read what it draws into: the part is copied first.
void OpenGLGraphicPrimitivesRendererBase::Images::drawTarget(const ImageSource& source,
                                                             const ImagePlacement& placement,
                                                             bool blend, float opacity)
{
    if (source.program.layout != ImageProgram::eWords)
        return;
    flush();
    const Tq::Rectangle<int> part = placement.sourcePixels();
    const Texture& copy = resources_.uploads.lend(part.width(), part.height());
    copy.copyFramebuffer(part.left, part.top);
    UploadedPart uploaded;
    uploaded.texture = copy.name();
    uploaded.part = part;
    uploaded.isOpaque = source.program.isOpaque;
    add(ImageSource::of(uploaded), placement.relativeTo(part.topLeft()), blend, opacity);
    flush();
}

void OpenGLGraphicPrimitivesRendererBase::Images::add(const ImageSource& source,
                                                      const ImagePlacement& placement, bool blend,
                                                      float opacity)
{
    Run run{source, Blending::eNone, std::clamp(opacity, 0.0f, 1.0f), !placement.isOneToOne()};
    const bool needsLimits =
        run.isScaled && !(source.program.layout == ImageProgram::eWords && source.endsAtEdges &&
                          placement.takesInAll(source.size));
    if (!(opacity > 0.0f))
        run.opacity = 0.0f; // not a number, too
    if (blend)
        run.blending =
            source.program.isOpaque && run.opacity == 1.0f ? Blending::eNone : Blending::eOver;
    else
        run.blending = run.opacity == 1.0f ? Blending::eNone : Blending::eMix;
    run.source.program.isScaled = needsLimits;
    run.source.program.hasOpacity = run.blending == Blending::eOver && run.opacity != 1.0f;
    start(run);
    if (needsLimits)
        placement.addTo(resources_.scaledImages);
    else
        placement.addTo(resources_.images);
}

void OpenGLGraphicPrimitivesRendererBase::Images::start(const Run& run)
{
    if (run == run_)
        return;
    flush();
    run_ = run;
}

void OpenGLGraphicPrimitivesRendererBase::Images::flush()
{
    if (resources_.images.empty() && resources_.scaledImages.empty())
        return;
    const ImageSource& source = run_.source;
    const Program& program = resources_.programs.image(source.program);
    if (painter_.use(program)) {
        setUniform(program.perPixel, source.perPixelX, source.perPixelY);
        if (source.program.hasOpacity)
            setUniform(program.opacity, run_.opacity);
        if (source.program.layout != ImageProgram::eWords)
            setUniform(program.texels, static_cast<float>(source.texels.x),
                       static_cast<float>(source.texels.y));
        const TextureInUse texture(source.texture,
                                   !run_.isScaled || source.program.layout != ImageProgram::eWords);
        painter_.draw(resources_.images, run_.blending, run_.opacity);
        painter_.draw(resources_.scaledImages, run_.blending, run_.opacity);
    }
    resources_.images.clear();
    resources_.scaledImages.clear();
}

void OpenGLGraphicPrimitivesRendererBase::renderMulti(const ImageDescription* descs,
                                                      unsigned int count)
{
    blend_ = false;
    if (count == 0 || clip_.isEmpty())
        return;
    Images images(*this);
    const auto placementOf = [this](const ImageDescription& desc) {
        return ImagePlacement(desc.sourceROI_, desc.destROI_, target_.ratio);
    };
    for (const ImageDescription* desc = descs; desc != descs + count; ++desc)
        images.announce(desc->image_.get(), placementOf(*desc));
    for (const ImageDescription* desc = descs; desc != descs + count; ++desc)
        images.draw(desc->image_.get(), placementOf(*desc), desc->blend_, desc->opacity_);
    images.flush();
}

void OpenGLGraphicPrimitivesRendererBase::drawWithoutEffects(const ImageDescriptionEx* descs,
                                                             const ImageDescriptionEx* end)
{
    Images images(*this);
    const auto placementOf = [this](const ImageDescriptionEx& desc) {
        return ImagePlacement(desc.sourceRect_, desc.destRect_, target_.ratio);
    };
    for (const ImageDescriptionEx* desc = descs; desc != end; ++desc)
        images.announce(desc->image_.get(), placementOf(*desc));
    for (const ImageDescriptionEx* desc = descs; desc != end; ++desc)
        images.draw(desc->image_.get(), placementOf(*desc), desc->blend_, 1.0f);
    images.flush();
}
