// The text overload of OpenGLGraphicPrimitivesRendererBase.
#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRendererBase.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Drawing/DrawingResources.h"
#include "OS/Mac/OpenGL/Text/OpenGLFontBase.h"

#include <OS/Effects/iShaderEffect.h>
#include <OS/OpenGL/iOpenGLTexture.h>

#include <algorithm>

using namespace GLDrawing;

namespace {

// A length that was given the wrong way round is taken the right way round.
int positive(int length)
{
    return length < 1 ? -length : length;
}

// As the toolkit draws it: in bytes.
NormalisedRGB inBytes(const NormalisedRGB& colour)
{
    const auto part = [](float component) {
        return static_cast<float>(NormalisedRGB::toByte(component)) / 255.0f;
    };
    return {part(colour.red), part(colour.green), part(colour.blue), part(colour.alpha)};
}

LightweightString<wchar_t> charactersOf(const TextDescription& desc, std::int32_t from,
                                        std::int32_t to)
{
    const auto length = static_cast<std::int32_t>(desc.text_.size());
    const auto first = static_cast<std::uint32_t>(std::clamp(from, 0, length));
    const auto last = static_cast<std::uint32_t>(std::clamp(to, 0, length));
    return desc.text_.substr(first, last - first);
}

bool intersect(const Box& a, const Box& b)
{
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

} // namespace

/// One call that draws texts: collects quads of one picture in one colour, and hands each run to
/// the effect.
///
/// Texts that do not touch each other may change places, and so may texts of one colour: a few
/// pictures that are drawn again and again are few runs.
class OpenGLGraphicPrimitivesRendererBase::Texts
{
public:
    Texts(OpenGLGraphicPrimitivesRendererBase& renderer, iShaderEffectBase& effect)
        : renderer_(renderer), effect_(effect), resources_(DrawingResources::instance())
    {
    }

    void draw(const TextDescription& desc);
    /// Draws what is collected.
    void flush();

private:
    struct Place
    {
        double left; ///< pixels of descriptions
        double baseline;
    };
    Place placeOf(const TextDescription& desc, const OpenGLFontBase& font, double width) const;
    void drawBand(const TextDescription& desc, const OpenGLFontBase& font, const Place& place);
    void drawUnderline(const TextDescription& desc, const OpenGLFontBase& font, const Place& place);
    void add(const Tq::Ptr<iGPUImage>& image, const OpenGLFontBase& font, const Place& place,
             const NormalisedRGB& colour);
    TextRun& runFor(const Tq::Ptr<iGPUImage>& image, const NormalisedRGB& colour, const Box& box);
    void drawRun(TextRun& run);

    OpenGLGraphicPrimitivesRendererBase& renderer_;
    iShaderEffectBase& effect_;
    DrawingResources& resources_;
    std::size_t count_ = 0; // of runs: the rest is room for the next
};

OpenGLGraphicPrimitivesRendererBase::Texts::Place
OpenGLGraphicPrimitivesRendererBase::Texts::placeOf(const TextDescription& desc,
                                                    const OpenGLFontBase& font, double width) const
{
    Place place{static_cast<double>(desc.pos_.x), static_cast<double>(desc.pos_.y)};
    if (horizontalAlignment(desc.alignment_) == eTextCentre)
        place.left -= width * 0.5;
    else if (horizontalAlignment(desc.alignment_) == eTextRight)
        place.left -= width;
    if (verticalAlignment(desc.alignment_) != verticalAlignment(eTextBaseline))
        place.baseline += font.ascent();
    return place;
}

void OpenGLGraphicPrimitivesRendererBase::Texts::draw(const TextDescription& desc)
{
    auto* const font = dynamic_cast<OpenGLFontBase*>(desc.font_.get());
    if (!font || desc.text_.empty())
        return;
    const Tq::Ptr<iGPUImage> image = font->renderText(desc, renderer_.target_.ratio);
    if (!image)
        return;
    const Place place = placeOf(desc, *font, image->getSize().x / renderer_.target_.ratio);
    if (desc.highlightStart_ != desc.highlightEnd_)
        drawBand(desc, *font, place);
    if (desc.textStyle_ == TextDescription::eHalo)
        for (const auto& [dx, dy] : {std::pair(-1, -1), {1, 1}, {-1, 1}, {1, -1}})
            add(image, *font, {place.left + dx, place.baseline + dy}, desc.backColour_);
    if (desc.textStyle_ == TextDescription::eUnderline)
        drawUnderline(desc, *font, place);
    add(image, *font, place, desc.colour_);
}

// Under the selected characters only, from two pixels above the ascent to the descent.
void OpenGLGraphicPrimitivesRendererBase::Texts::drawBand(const TextDescription& desc,
                                                          const OpenGLFontBase& font,
                                                          const Place& place)
{
    const Tq::Ptr<iFont> ruler = font.hostFontForThread();
    const auto [low, high] = std::minmax(desc.highlightStart_, desc.highlightEnd_);
    const int left = nearestEdge(place.left) + ruler->measure(charactersOf(desc, 0, low)).x;
    const int width = ruler->measure(charactersOf(desc, low, high)).x;
    RectDescription band;
    const int baseline = nearestEdge(place.baseline);
    band.rect_ = {left, baseline - font.ascent() - 2, left + width, baseline + font.descent()};
    band.topColour_ = band.bottomColour_ = desc.backColour_;
    flush();
    renderer_.render(band);
}

void OpenGLGraphicPrimitivesRendererBase::Texts::drawUnderline(const TextDescription& desc,
                                                               const OpenGLFontBase& font,
                                                               const Place& place)
{
    const Tq::Ptr<iFont> ruler = font.hostFontForThread();
    const auto first = std::find_if(desc.text_.begin(), desc.text_.end(),
                                    [](wchar_t character) { return character != L' '; });
    const auto spaces = static_cast<int>(first - desc.text_.begin());
    const int left = nearestEdge(place.left);
    LineDescription line;
    const int below = nearestEdge(place.baseline) + 2;
    line.start_ = {left + spaces * ruler->measure(L" ").x, below};
    line.end_ = {left + ruler->measure(desc.text_).x, below};
    line.colour_ = desc.colour_;
    line.lineWidth_ = 1;
    flush();
    renderer_.render(line);
}

void OpenGLGraphicPrimitivesRendererBase::Texts::add(const Tq::Ptr<iGPUImage>& image,
                                                     const OpenGLFontBase& font, const Place& place,
                                                     const NormalisedRGB& colour)
{
    const double ratio = renderer_.target_.ratio;
    const XY<int> size(positive(image->getSize().x), positive(image->getSize().y));
    Box box;
    box.left = nearestEdge(place.left * ratio);
    box.top = nearestEdge(place.baseline * ratio) - nearestEdge(font.baselineAt(ratio) * ratio);
    box.right = box.left + size.x;
    box.bottom = box.top + size.y;
    const Box seen = box.intersected(renderer_.clip_.bounds());
    if (seen.isEmpty())
        return;
    const auto u = [&](int x) { return float(x - box.left) / static_cast<float>(size.x); };
    const auto v = [&](int y) { return float(y - box.top) / static_cast<float>(size.y); };
    TextRun& run = runFor(image, inBytes(colour), seen);
    for (const auto& [x, y] : {std::pair(seen.left, seen.top),
                               {seen.right, seen.top},
                               {seen.right, seen.bottom},
                               {seen.left, seen.bottom}})
        run.quads.push_back({static_cast<float>(x), static_cast<float>(y), u(x), v(y)});
    run.boxes.push_back(seen);
}

TextRun& OpenGLGraphicPrimitivesRendererBase::Texts::runFor(const Tq::Ptr<iGPUImage>& image,
                                                            const NormalisedRGB& colour,
                                                            const Box& box)
{
    constexpr std::size_t kFarthest = 64; // looking for a run must not cost more than it saves
    std::vector<TextRun>& runs = resources_.textRuns;
    const auto covers = [&](const Box& other) { return intersect(other, box); };
    for (std::size_t i = count_; i > 0 && count_ - i < kFarthest; --i) {
        TextRun& run = runs[i - 1];
        const bool sameColour = run.colour == colour;
        if (sameColour && run.image == image)
            return run;
        if (!sameColour && std::any_of(run.boxes.begin(), run.boxes.end(), covers))
            break;
    }
    if (count_ == runs.size())
        runs.emplace_back();
    TextRun& run = runs[count_++];
    run.image = image;
    run.colour = colour;
    return run;
}

void OpenGLGraphicPrimitivesRendererBase::Texts::flush()
{
    if (count_ == 0)
        return;
    {
        // For its scissor.
        const QuadPainter painter(renderer_.target_, renderer_.clip_, resources_.vertexBuffer,
                                  resources_.run);
        for (std::size_t i = 0; i < count_; ++i)
            drawRun(resources_.textRuns[i]);
    }
    count_ = 0;
}

void OpenGLGraphicPrimitivesRendererBase::Texts::drawRun(TextRun& run)
{
    iShaderEffectBase::Drawing& drawing = resources_.textDrawing;
    const auto* texture = dynamic_cast<const iOpenGLTexture*>(run.image.get());
    if (renderer_.clip_.isSeveral()) {
        resources_.images.clear();
        renderer_.clip_.cut(run.quads, resources_.images);
        run.quads.swap(resources_.images);
    }
    if (texture && !run.quads.empty()) {
        effect_.setColour(resources_.faceColour, run.colour);
        // Each channel takes on its own share of it: see Shaders/TextEffects.fx.
        glBlendColor(run.colour.red, run.colour.green, run.colour.blue, 1.0f);
        const DrawingTarget& target = renderer_.target_;
        const auto toClip = target.toClip();
        std::copy(toClip.begin(), toClip.end(), drawing.toClip_);
        drawing.technique_ = resources_.textTechnique;
        drawing.pictures_.resize(1);
        drawing.pictures_[0].textureID_ = texture->getTextureID();
        drawing.pictures_[0].size_ = run.image->getSize();
        drawing.outputSize_ = drawing.size_ = {target.width, target.height};
        drawing.corners_.clear();
        for (const ImageVertex& corner : run.quads)
            drawing.corners_.push_back({corner.x, corner.y, corner.u, corner.v});
        effect_.draw(drawing);
    }
    run.image.reset();
    run.quads.clear();
    run.boxes.clear();
}

Tq::Ptr<iShaderEffect> OpenGLGraphicPrimitivesRendererBase::getTextEffectsShader()
{
    return OpenGLUtils::instance().getTextEffectsShader();
}

void OpenGLGraphicPrimitivesRendererBase::renderMulti(const TextDescription* descs,
                                                      unsigned int count)
{
    if (count == 0 || clip_.isEmpty())
        return;
    DrawingResources& resources = DrawingResources::instance();
    if (!resources.hasAskedForTextEffects) {
        resources.hasAskedForTextEffects = true;
        resources.textEffects = getTextEffectsShader();
    }
    if (!resources.textEffects)
        return;
    Texts texts(*this, *resources.textEffects);
    for (const TextDescription* desc = descs; desc != descs + count; ++desc)
        texts.draw(*desc);
    texts.flush();
}
