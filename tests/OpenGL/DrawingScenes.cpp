#include "OpenGL/DrawingScenes.h"

#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRendererBase.h"
#include "OS/Mac/OpenGL/Text/OpenGLFont.h"
#include "OS/Mac/Painting/QtFont.h"
#include "OS/Mac/Painting/QtImage.h"
#include "OS/Mac/Painting/QtRegion.h"

#include <cstdint>

namespace {

// The same numbers everywhere, unlike the standard library's distributions.
class Numbers
{
public:
    int below(int limit)
    {
        state_ = state_ * 6364136223846793005ull + 1442695040888963407ull;
        return static_cast<int>((state_ >> 33) % static_cast<std::uint64_t>(limit));
    }
    int from(int low, int high) { return low + below(high - low); }
    NormalisedRGB colour(float alpha = 1.0f)
    {
        const auto part = [this] { return static_cast<float>(below(256)) / 255.0f; };
        return {part(), part(), part(), alpha};
    }
    Tq::Rectangle<int> rect()
    {
        const int x = from(-10, 150), y = from(-10, 110);
        return {x, y, x + from(4, 50), y + from(4, 40)};
    }

private:
    std::uint64_t state_ = 7;
};

RectDescription rect(const Tq::Rectangle<int>& area, const NormalisedRGB& top,
                     const NormalisedRGB& bottom)
{
    RectDescription desc;
    desc.rect_ = area;
    desc.topColour_ = top;
    desc.bottomColour_ = bottom;
    return desc;
}

AlphaRectDescription alphaRect(const Tq::Rectangle<int>& area, const NormalisedRGB& colour,
                               float alpha, int mode = AlphaRectDescription::eBlendOver)
{
    AlphaRectDescription desc;
    desc.rect_ = area;
    desc.topColour_ = colour;
    desc.bottomColour_ = {1, 0, 1};
    desc.alpha_ = alpha;
    desc.blendMode_ = mode;
    return desc;
}

EllipseDescription ellipse(const Tq::Rectangle<int>& area, int style, int width,
                           const NormalisedRGB& fill, const NormalisedRGB& line)
{
    EllipseDescription desc;
    desc.rect_ = area;
    desc.fillStyle_ = style;
    desc.lineWidth_ = static_cast<std::uint16_t>(width);
    desc.fillColour_ = fill;
    desc.lineColour_ = line;
    return desc;
}

LineDescription line(XY<int> from, XY<int> to, const NormalisedRGB& colour, int width = 1,
                     int style = LineDescription::eSolid)
{
    LineDescription desc;
    desc.start_ = from;
    desc.end_ = to;
    desc.colour_ = colour;
    desc.lineWidth_ = width;
    desc.lineStyle_ = style;
    return desc;
}

BezierCurveDescription curve(XY<int> a, XY<int> b, XY<int> c, XY<int> d,
                             const NormalisedRGB& colour, int width)
{
    BezierCurveDescription desc;
    desc.start_ = a;
    desc.control1_ = b;
    desc.control2_ = c;
    desc.end_ = d;
    desc.colour_ = colour;
    desc.lineWidth_ = width;
    return desc;
}

template <class T>
void all(iGraphicPrimitivesRenderer& renderer, const std::vector<T>& descs)
{
    renderer.renderMulti(descs.data(), static_cast<unsigned int>(descs.size()));
}

// A picture with soft and hard edges, fading alpha, in one of the formats.
Tq::Ptr<QtImage> picture(QImage::Format format, int size = 40)
{
    const Tq::Ptr<QtImage> image = new QtImage({size, size}, QImage::Format_ARGB32, 1);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x)
            image->image()->setPixel(
                x, y,
                qRgba(x * 255 / size, y * 255 / size, (x * y) % 256,
                      format == QImage::Format_RGB32 ? 255 : (x + y) * 127 / size));
    *image->image() = image->image()->convertToFormat(format);
    return image;
}

ImageDescription image(const Tq::Ptr<QtImage>& source, XY<int> place, bool blend = true,
                       float opacity = 1.0f)
{
    ImageDescription desc;
    desc.image_ = source;
    const XY<int> size = source->getSize();
    desc.sourceROI_ = {0, 0, size.x, size.y};
    desc.destROI_ = {place.x, place.y, place.x + size.x, place.y + size.y};
    desc.blend_ = blend;
    desc.opacity_ = opacity;
    return desc;
}

const NormalisedRGB kRed{1, 0, 0}, kGreen{0, 1, 0}, kYellow{1, 1, 0}, kWhite{1, 1, 1};

// -- The scenes
// ------------------------------------------------------------------------------------

void solids(iGraphicPrimitivesRenderer& r)
{
    Numbers n;
    std::vector<RectDescription> descs;
    for (int i = 0; i < 60; ++i) {
        const NormalisedRGB colour = n.colour(i % 3 ? 1.0f : 0.5f);
        descs.push_back(rect(n.rect(), colour, colour));
    }
    all(r, descs);
}

void gradients(iGraphicPrimitivesRenderer& r)
{
    Numbers n;
    std::vector<RectDescription> descs;
    for (int i = 0; i < 40; ++i)
        descs.push_back(rect(n.rect(), n.colour(i % 2 ? 1.0f : 0.3f), n.colour()));
    descs.push_back(rect({5, 90, 40, 60}, kRed, kGreen)); // turned round
    all(r, descs);
}

void alphaRects(iGraphicPrimitivesRenderer& r)
{
    Numbers n;
    std::vector<AlphaRectDescription> descs;
    for (int i = 0; i < 40; ++i)
        descs.push_back(alphaRect(n.rect(), n.colour(), static_cast<float>(n.below(11)) / 10));
    all(r, descs);
    r.render(rect({20, 20, 70, 70}, {1, 1, 1, 0.5f}, {1, 0, 0, 0.2f})); // still blended
}

void ellipses(iGraphicPrimitivesRenderer& r)
{
    Numbers n;
    std::vector<EllipseDescription> descs;
    for (int i = 0; i < 24; ++i)
        descs.push_back(ellipse(n.rect(), i % 3, i % 5, n.colour(), n.colour()));
    all(r, descs);
}

void bigEllipses(iGraphicPrimitivesRenderer& r)
{
    r.render(ellipse({4, 4, 76, 56}, 2, 12, kRed, kWhite));
    r.render(ellipse({80, 4, 156, 30}, 2, 1, kGreen, kYellow));
    r.render(ellipse({80, 34, 156, 60}, 1, 4, kGreen, kYellow));
    r.render(ellipse({4, 64, 60, 116}, 2, 6, {1, 0, 0, 0.5f}, {1, 1, 1, 0.5f})); // replaces
    r.render(alphaRect({0, 0, 0, 0}, kRed, 0));
    r.render(ellipse({64, 64, 110, 116}, 2, 6, {1, 0, 0, 0.5f}, {1, 1, 1, 0.5f})); // blended
    r.render(ellipse({116, 64, 156, 116}, 0, 5, {0, 1, 1, 0.7f}, kRed));
}

void pies(iGraphicPrimitivesRenderer& r)
{
    const int spans[][2] = {{0, 90},  {45, 300}, {200, 100}, {-30, 30},
                            {0, 359}, {90, 450}, {10, 190},  {270, 300}};
    std::vector<EllipseDescription> descs;
    for (int i = 0; i < 8; ++i) {
        const int x = i % 4 * 40, y = i / 4 * 60;
        EllipseDescription desc =
            ellipse({x + 2, y + 4, x + 38, y + 56}, i % 3, 1 + i % 4 * 2, kRed, kYellow);
        if (i == 5)
            desc.fillColour_.alpha = desc.lineColour_.alpha = 0.5f;
        desc.startAngle_ = static_cast<std::int16_t>(spans[i][0]);
        desc.endAngle_ = static_cast<std::int16_t>(spans[i][1]);
        descs.push_back(desc);
    }
    all(r, descs);
}

void straightLines(iGraphicPrimitivesRenderer& r)
{
    Numbers n;
    std::vector<LineDescription> descs;
    for (int i = 0; i < 40; ++i) {
        const int x = n.below(160), y = n.below(120);
        const XY<int> to = i % 2 ? XY<int>(x, n.below(120)) : XY<int>(n.below(160), y);
        descs.push_back(line({x, y}, to, n.colour(i % 4 ? 1.0f : 0.5f), i % 5));
    }
    all(r, descs);
}

void slantedLines(iGraphicPrimitivesRenderer& r)
{
    Numbers n;
    std::vector<LineDescription> descs;
    for (int i = 0; i < 30; ++i) {
        const XY<int> from(n.below(160), n.below(120)), to(n.below(160), n.below(120));
        descs.push_back(line(from, to, n.colour(i % 7 == 0 ? 0.5f : 1.0f), i % 5));
        if (i % 3 == 0)
            descs.push_back(line(from, {to.x, from.y}, n.colour(), 2));
    }
    all(r, descs);
}

void dottedLines(iGraphicPrimitivesRenderer& r)
{
    std::vector<LineDescription> descs;
    for (int i = 0; i < 5; ++i) {
        descs.push_back(line({5 + i, 5 + 3 * i}, {150, 5 + 3 * i}, kWhite, 5, 1));
        descs.push_back(line({150 - 4 * i, 115}, {150 - 4 * i, 30 + i}, kYellow, 1, 1));
    }
    descs.push_back(line({5, 30}, {100, 110}, kGreen, 1, 1));
    descs.push_back(line({90, 30}, {5, 115}, {1, 0, 0, 0.5f}, 1, 1));
    all(r, descs);
}

void curves(iGraphicPrimitivesRenderer& r)
{
    Numbers n;
    std::vector<BezierCurveDescription> descs;
    const auto point = [&] { return XY<int>(n.from(-20, 180), n.from(-20, 140)); };
    for (int i = 0; i < 12; ++i)
        descs.push_back(
            curve(point(), point(), point(), point(), n.colour(i == 5 ? 0.5f : 1.0f), 1 + i % 4));
    descs.push_back(curve({10, 10}, {10, 10}, {150, 10}, {150, 10}, kWhite, 3)); // straight
    descs.push_back(curve({10, 60}, {150, 20}, {10, 20}, {150, 60}, kYellow, 6));
    all(r, descs);
}

void images(iGraphicPrimitivesRenderer& r)
{
    const auto premultiplied = picture(QImage::Format_ARGB32_Premultiplied);
    const auto straight = picture(QImage::Format_ARGB32);
    const auto opaque = picture(QImage::Format_RGB32);
    std::vector<ImageDescription> descs{
        image(premultiplied, {2, 2}),
        image(premultiplied, {44, 2}, false),
        image(premultiplied, {86, 2}, true, 0.5f),
        image(premultiplied, {128, 2}, false, 0.5f), // leaves the target on the right
        image(straight, {2, 44}),
        image(straight, {44, 44}, false),
        image(opaque, {86, 44}),
        image(opaque, {128, 44}, true, 0.25f),
    };
    ImageDescription part = image(opaque, {0, 0});
    part.sourceROI_ = {10, 10, 30, 25};
    part.destROI_ = {5, 90, 25, 105};
    descs.push_back(part);
    part.sourceROI_ = {-10, 30, 20, 60}; // beyond the image
    part.destROI_ = {40, 88, 70, 118};
    descs.push_back(part);
    all(r, descs);
    r.render(rect({100, 90, 140, 110}, {1, 1, 1, 0.5f}, {1, 1, 1, 0.5f})); // replaces again
}

// Each renderer has fonts of its own.
Tq::Ptr<iFont> fontFor(const iGraphicPrimitivesRenderer& r, unsigned int size, unsigned int flags)
{
    if (dynamic_cast<const OpenGLGraphicPrimitivesRendererBase*>(&r))
        return OpenGLFont::make(L"Tahoma", size, 0, flags);
    return QtFont::make(L"Tahoma", size, 0, flags);
}

void texts(iGraphicPrimitivesRenderer& r)
{
    // At places that are whole pixels at every scale: GL puts a text on whole ones only.
    const Tq::Ptr<iFont> font = fontFor(r, 13, 0);
    std::vector<TextDescription> descs;
    descs.emplace_back(L"Plain gjpqy", XY<int>(4, 20), kWhite, eTextDefault, font);
    descs.emplace_back(L"Halo text", XY<int>(4, 40), kYellow, eTextDefault, font);
    descs.back().textStyle_ = TextDescription::eHalo;
    descs.back().backColour_ = {0.5f, 0, 0};
    descs.emplace_back(L"  Underlined", XY<int>(4, 60), kGreen, eTextDefault, font);
    descs.back().textStyle_ = TextDescription::eUnderline;
    descs.emplace_back(L"Highlighted", XY<int>(4, 80), kWhite, eTextDefault, font);
    descs.back().highlightStart_ = 8;
    descs.back().highlightEnd_ = 3;
    descs.back().backColour_ = {0, 0, 1};
    descs.emplace_back(L"Half", XY<int>(-8, 100), kRed, eTextDefault, font);
    descs.emplace_back(L"Big", XY<int>(100, 60), kWhite, eTextDefault, fontFor(r, 34, 0));
    descs.emplace_back(L"", XY<int>(50, 98), kWhite, eTextDefault, font);
    descs.emplace_back(L"no font", XY<int>(50, 98), kWhite, eTextDefault, nullptr);
    all(r, descs);
    r.render(descs.front()); // once more, from the cache
}

void clipped(iGraphicPrimitivesRenderer& r, const QRegion& region)
{
    r.setClipRegion(new QtRegion(region));
    gradients(r);
    ellipses(r);
    slantedLines(r);
    pies(r);
    curves(r);
    images(r);
    texts(r);
    r.setClipRegion(nullptr);
    r.render(rect({150, 110, 160, 120}, kRed, kRed));
}

QRegion twelveBoxes()
{
    QRegion region;
    for (int i = 0; i < 12; ++i)
        region += QRect(i % 4 * 40 + 3, i / 4 * 40 + 5, 31, 28);
    return region;
}

QRegion star()
{
    QPolygon polygon;
    for (int i = 0; i < 5; ++i)
        polygon << QPoint(80 + int(58 * std::sin(i * 4 * M_PI / 5)),
                          60 - int(58 * std::cos(i * 4 * M_PI / 5)));
    return QRegion(polygon, Qt::WindingFill);
}

} // namespace

const std::vector<DrawingScene>& drawingScenes()
{
    static const std::vector<DrawingScene> scenes{
        {"solids", solids, 1, 0, 0.01},
        {"gradients", gradients, 3, 0, 0.01},
        {"alpha rectangles", alphaRects, 3, 0, 0.01},
        {"ellipses", ellipses, 40, 0.03, 0.03},
        {"big ellipses", bigEllipses, 40, 0.02, 0.02},
        {"pies", pies, 40, 0.02, 0.02},
        {"straight lines", straightLines, 1, 0, 0.02},
        {"slanted lines", slantedLines, 40, 0.03, 0.03},
        {"dotted lines", dottedLines, 40, 0.01, 0.02},
        {"curves", curves, 40, 0.03, 0.03},
        {"images", images, 3, 0, 0.04},
        {"texts", texts, 24, 0.001, 0.01},
        {"one box", [](auto& r) { clipped(r, QRect(20, 15, 101, 77)); }, 40, 0.05, 0.05},
        {"twelve boxes", [](auto& r) { clipped(r, twelveBoxes()); }, 40, 0.05, 0.05},
        {"star", [](auto& r) { clipped(r, star()); }, 40, 0.05, 0.05},
        {"nothing", [](auto& r) { clipped(r, QRegion()); }, 1, 0, 0},
    };
    return scenes;
}
