// The same scene at 1280 x 720 through the GL renderer, by the toolkit's painter on its framebuffer
// object, and by its painter in main memory. Milliseconds of process time, all threads: a software
// driver draws on several. Run it in a display: tests/support/with-display build/release/...
#include "support/PairedRuns.h"

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRenderer.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"
#include "OS/Mac/OpenGL/Text/OpenGLFont.h"
#include "OS/Mac/Painting/PainterValues.h"
#include "OS/Mac/Painting/QtFont.h"
#include "OS/Mac/Painting/QtImage.h"
#include "OS/Mac/Painting/QtRegion.h"

#include <QGLFramebufferObject>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <ctime>
#include <memory>
#include <random>

namespace {

using PainterValues::toQColor;
using PainterValues::toQRect;

constexpr int kWidth = 1280, kHeight = 720;

// -- The scene
// -------------------------------------------------------------------------------------

struct Scene
{
    std::vector<RectDescription> solids, gradients;
    std::vector<EllipseDescription> ellipses;
    std::vector<LineDescription> lines;
    std::vector<BezierCurveDescription> curves;
    std::vector<TextDescription> texts;
    std::vector<ImageDescription> images, hostImages;
    ImageDescription filling;
    QImage fillingPicture;
    std::vector<QString> strings; // of the texts
    std::vector<QImage> pictures; // of the images
    QFont font;
};

class Numbers
{
public:
    int from(int low, int high) { return std::uniform_int_distribution(low, high)(generator_); }
    NormalisedRGB colour(float alpha = 1.0f)
    {
        const auto part = [this] { return static_cast<float>(from(0, 255)) / 255.0f; };
        return {part(), part(), part(), alpha};
    }
    Tq::Rectangle<int> rect(int width, int height)
    {
        const int x = from(0, kWidth - 60), y = from(0, kHeight - 40);
        return {x, y, x + from(4, width), y + from(4, height)};
    }
    XY<int> point() { return {from(0, kWidth), from(0, kHeight)}; }
    XY<int> near(const XY<int>& p, int distance)
    {
        return {p.x + from(-distance, distance), p.y + from(-distance, distance)};
    }

private:
    std::mt19937 generator_{1};
};

void addShapes(Scene& scene, Numbers& n)
{
    for (int i = 0; i < 5000; ++i) {
        RectDescription rect;
        rect.rect_ = n.rect(60, 40);
        rect.topColour_ = rect.bottomColour_ = n.colour();
        scene.solids.push_back(rect);
        rect.rect_ = n.rect(60, 40);
        const float alpha = i % 2 ? 1.0f : 0.4f + 0.6f * static_cast<float>(n.from(0, 99)) / 100.0f;
        rect.topColour_ = n.colour(alpha);
        rect.bottomColour_ = n.colour(alpha);
        scene.gradients.push_back(rect);

        LineDescription line;
        line.start_ = n.point();
        line.end_ = n.near(line.start_, 60);
        if (i % 2)
            (i % 4 == 1 ? line.end_.x : line.end_.y) = i % 4 == 1 ? line.start_.x : line.start_.y;
        line.colour_ = n.colour();
        line.lineWidth_ = n.from(1, 2);
        scene.lines.push_back(line);
    }
    for (int i = 0; i < 2000; ++i) {
        EllipseDescription ellipse;
        ellipse.rect_ = n.rect(60, 40);
        ellipse.fillStyle_ = i % 3;
        ellipse.fillColour_ = n.colour();
        ellipse.lineColour_ = n.colour();
        ellipse.lineWidth_ = static_cast<std::uint16_t>(n.from(1, 3));
        scene.ellipses.push_back(ellipse);
    }
    for (int i = 0; i < 500; ++i) {
        BezierCurveDescription curve;
        curve.start_ = n.point();
        curve.control1_ = n.near(curve.start_, 100);
        curve.control2_ = n.near(curve.start_, 100);
        curve.end_ = n.near(curve.start_, 150);
        curve.colour_ = n.colour();
        curve.lineWidth_ = n.from(1, 3);
        scene.curves.push_back(curve);
    }
}

void addTexts(Scene& scene, Numbers& n)
{
    const Tq::Ptr<iFont> font = OpenGLFont::make(L"Tahoma", 13, 0, 0);
    scene.font = QtFont::make(L"Tahoma", 13, 0, 0).dynamicCast<QtFont>()->font();
    for (int i = 0; i < 300; ++i) {
        const std::wstring text = L"Clip " + std::to_wstring(i % 20 * 37) + L" of the reel";
        scene.texts.emplace_back(text.c_str(), XY<int>(n.from(0, 1150), n.from(20, 700)),
                                 NormalisedRGB(1, 1, 1), eTextDefault, font);
        scene.strings.push_back(QString::fromStdWString(text));
    }
}

void addImages(Scene& scene, Numbers& n)
{
    std::vector<Tq::Ptr<iHostImage>> hosts;
    std::vector<Tq::Ptr<iGPUImage>> textures;
    for (int i = 0; i < 5; ++i) {
        const Tq::Ptr<QtImage> host = new QtImage({256, 256}, QtImage::getDefaultFormat(), 1);
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x)
                host->image()->setPixel(x, y, qPremultiply(qRgba(x, y, i * 50, (x + y) / 2)));
        hosts.push_back(host);
        textures.push_back(new OpenGLImage(hosts.back(), iGPUImage::eARGB8));
        scene.pictures.push_back(*host->image());
    }
    const Tq::Ptr<QtImage> large = new QtImage({1920, 1080}, QtImage::getDefaultFormat(), 1);
    large->image()->fill(0xFF336699);
    scene.fillingPicture = *large->image();
    scene.filling.image_ = new OpenGLImage(Tq::Ptr<iHostImage>(large), iGPUImage::eARGB8);
    scene.filling.sourceROI_ = {0, 0, 1920, 1080};
    scene.filling.destROI_ = {0, 0, kWidth, kHeight};
    scene.filling.blend_ = false;
    for (int i = 0; i < 50; ++i) {
        const int x = n.from(0, kWidth - 256), y = n.from(0, kHeight - 256);
        ImageDescription image;
        image.image_ = textures[std::size_t(i % 5)];
        image.sourceROI_ = {0, 0, 256, 256};
        image.destROI_ = {x, y, x + 256, y + 256};
        image.opacity_ = i / 5 % 2 ? 1.0f : 0.7f;
        scene.images.push_back(image);
        image.image_ = hosts[std::size_t(i % 5)];
        scene.hostImages.push_back(image);
    }
}

Scene makeScene()
{
    Scene scene;
    Numbers n;
    addShapes(scene, n);
    addTexts(scene, n);
    addImages(scene, n);
    return scene;
}

// -- The contenders
// --------------------------------------------------------------------------------

template <class T>
void all(iGraphicPrimitivesRenderer& renderer, const std::vector<T>& descs)
{
    renderer.renderMulti(descs.data(), static_cast<unsigned int>(descs.size()));
}

enum Part
{
    eSolids,
    eGradients,
    eEllipses,
    eLines,
    eCurves,
    eTexts,
    eImages,
    eHostImages,
    eFilling, // one picture, scaled to the frame
    eSingles, // one description for each call, of changing kinds
    eAll
};

bool has(Part wanted, Part part)
{
    return wanted == part || (wanted == eAll && part < eHostImages);
}

void drawThrough(iGraphicPrimitivesRenderer& r, const Scene& scene, Part part)
{
    r.setAntialiasingEnabled(true);
    r.render(AlphaRectDescription()); // blends from here on, as the painter does
    if (has(part, eSolids))
        all(r, scene.solids);
    if (has(part, eGradients))
        all(r, scene.gradients);
    if (has(part, eEllipses))
        all(r, scene.ellipses);
    if (has(part, eLines))
        all(r, scene.lines);
    if (has(part, eCurves))
        all(r, scene.curves);
    if (has(part, eTexts))
        all(r, scene.texts);
    if (has(part, eImages))
        all(r, scene.images);
    if (has(part, eHostImages))
        all(r, scene.hostImages);
    if (has(part, eFilling))
        r.render(scene.filling);
    for (std::size_t i = 0; has(part, eSingles) && i < scene.texts.size(); ++i) {
        r.render(scene.solids[i]);
        r.render(scene.lines[i]);
        r.render(scene.texts[i]);
    }
}

void paintEllipse(QPainter& p, const EllipseDescription& desc)
{
    const double t = desc.lineWidth_;
    const QRectF box(desc.rect_.left + t / 2, desc.rect_.top + t / 2, desc.rect_.width() - t,
                     desc.rect_.height() - t);
    p.setBrush(desc.fillStyle_ == 1 ? QBrush(Qt::NoBrush) : QBrush(toQColor(desc.fillColour_)));
    p.setPen(desc.fillStyle_ == 0 ? QPen(Qt::NoPen) : QPen(toQColor(desc.lineColour_), t));
    p.drawEllipse(box);
}

void paintLine(QPainter& p, const LineDescription& desc)
{
    const bool straight = desc.start_.x == desc.end_.x || desc.start_.y == desc.end_.y;
    p.setRenderHint(QPainter::Antialiasing, !straight);
    p.setPen(QPen(toQColor(desc.colour_), desc.lineWidth_));
    p.drawLine(desc.start_.x, desc.start_.y - 1, desc.end_.x, desc.end_.y - 1);
}

void paintCurve(QPainter& p, const BezierCurveDescription& desc)
{
    QPainterPath path(QPointF(desc.start_.x, desc.start_.y));
    path.cubicTo(desc.control1_.x, desc.control1_.y, desc.control2_.x, desc.control2_.y,
                 desc.end_.x, desc.end_.y);
    p.strokePath(path, QPen(toQColor(desc.colour_), desc.lineWidth_));
}

void paintImages(QPainter& p, const Scene& scene)
{
    for (std::size_t i = 0; i < scene.images.size(); ++i) {
        p.setOpacity(static_cast<double>(scene.images[i].opacity_));
        p.drawImage(scene.images[i].destROI_.left, scene.images[i].destROI_.top,
                    scene.pictures[i % 5]);
    }
    p.setOpacity(1.0);
}

void paint(QPaintDevice& device, const Scene& scene, Part part)
{
    QPainter p(&device);
    if (has(part, eSolids))
        for (const auto& desc : scene.solids)
            p.fillRect(toQRect(desc.rect_), toQColor(desc.topColour_));
    if (has(part, eGradients))
        for (const auto& desc : scene.gradients) {
            QLinearGradient gradient(desc.rect_.left, desc.rect_.top, desc.rect_.left,
                                     desc.rect_.bottom);
            gradient.setColorAt(0, toQColor(desc.topColour_));
            gradient.setColorAt(1, toQColor(desc.bottomColour_));
            p.fillRect(toQRect(desc.rect_), gradient);
        }
    p.setRenderHint(QPainter::Antialiasing); // rectangles on whole pixels are faster without
    if (has(part, eEllipses))
        for (const auto& desc : scene.ellipses)
            paintEllipse(p, desc);
    if (has(part, eLines)) {
        for (const auto& desc : scene.lines)
            paintLine(p, desc);
        p.setRenderHint(QPainter::Antialiasing);
    }
    if (has(part, eCurves))
        for (const auto& desc : scene.curves)
            paintCurve(p, desc);
    p.setFont(scene.font);
    const auto text = [&](std::size_t i) {
        p.setPen(Qt::white);
        p.drawText(scene.texts[i].pos_.x, scene.texts[i].pos_.y, scene.strings[i]);
    };
    for (std::size_t i = 0; has(part, eTexts) && i < scene.texts.size(); ++i)
        text(i);
    for (std::size_t i = 0; has(part, eSingles) && i < scene.texts.size(); ++i) {
        p.fillRect(toQRect(scene.solids[i].rect_), toQColor(scene.solids[i].topColour_));
        paintLine(p, scene.lines[i]);
        text(i);
    }
    if (has(part, eImages) || has(part, eHostImages))
        paintImages(p, scene);
    if (has(part, eFilling)) {
        p.setRenderHint(QPainter::SmoothPixmapTransform);
        p.drawImage(QRect(0, 0, kWidth, kHeight), scene.fillingPicture);
    }
}

// Milliseconds of the process's time.
template <class Code>
double processMs(Code code)
{
    const auto now = [] {
        timespec t{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
        return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
    };
    const double start = now();
    code();
    return now() - start;
}

class Frames
{
public:
    Frames()
    {
        target_ = std::make_unique<OpenGLImage>(XY<int>(kWidth, kHeight), iGPUImage::eARGB8);
        const OpenGLContextProtector protector;
        toolkit_ = std::make_unique<QGLFramebufferObject>(kWidth, kHeight, GL_TEXTURE_2D);
        memory_ = QImage(kWidth, kHeight, QImage::Format_ARGB32_Premultiplied);
    }
    ~Frames()
    {
        const OpenGLContextProtector protector;
        toolkit_.reset();
        OpenGLGraphicPrimitivesRenderer::shutdown();
    }

    double ours(Part part, const Tq::Ptr<iRegion>& clip = {})
    {
        const OpenGLContextProtector protector;
        glFinish();
        return processMs([&] {
            target_->bind();
            glViewport(0, 0, kWidth, kHeight);
            clear();
            {
                OpenGLGraphicPrimitivesRenderer renderer(
                    {kWidth, kHeight}, 1.0, OpenGLGraphicPrimitivesRendererBase::eTexture);
                renderer.setClipRegion(clip);
                drawThrough(renderer, scene_, part);
            }
            target_->unbind();
            glFinish();
        });
    }
    double withToolkitOnGL(Part part)
    {
        const OpenGLContextProtector protector;
        glFinish();
        return processMs([&] {
            toolkit_->bind();
            clear();
            paint(*toolkit_, scene_, part);
            toolkit_->release();
            glFinish();
        });
    }
    double withToolkitInMemory(Part part)
    {
        return processMs([&] {
            memory_.fill(0xFF000000);
            paint(memory_, scene_, part);
        });
    }

private:
    static void clear()
    {
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    Scene scene_ = makeScene();
    std::unique_ptr<OpenGLImage> target_;
    std::unique_ptr<QGLFramebufferObject> toolkit_;
    QImage memory_;
};

void comparePart(Frames& frames, const char* name, Part part, double aimOnGL, double aimInMemory)
{
    Bench::compare(name,
                   {{"ours", [&, part] { return frames.ours(part); }},
                    {"painter on GL", [&, part] { return frames.withToolkitOnGL(part); }},
                    {"painter in memory", [&, part] { return frames.withToolkitInMemory(part); }}},
                   {{{"painter on GL"}, aimOnGL}, {{"painter in memory"}, aimInMemory}}, 9);
}

Tq::Ptr<iRegion> twelveBoxes()
{
    QRegion region;
    for (int i = 0; i < 12; ++i)
        region += QRect(i % 4 * 320 + 40, i / 4 * 240 + 30, 240, 180);
    return new QtRegion(region);
}

} // namespace

int main()
{
    OpenGLUtils::instance();
    if (!OpenGLUtils::isInitialised())
        return 1;
    {
        Frames frames;
        Bench::printHeader("Drawing with GL, 1280 x 720, process time", "ms");
        comparePart(frames, "5,000 solid rectangles", eSolids, 0.12, 2.5);
        comparePart(frames, "5,000 gradients", eGradients, 0.08, 0.40);
        comparePart(frames, "2,000 ellipses", eEllipses, 0.40, 0.60);
        comparePart(frames, "5,000 lines", eLines, 0.50, 0.60);
        comparePart(frames, "500 curves", eCurves, 0.95, 0.80);
        comparePart(frames, "300 texts", eTexts, 0.65, 2.0);
        comparePart(frames, "50 images", eImages, 0.40, 4.5);
        comparePart(frames, "50 host images", eHostImages, 0.0, 0.0);
        comparePart(frames, "1080p scaled to the frame", eFilling, 0.0, 0.0);
        comparePart(frames, "300 times a rectangle, a line, a text", eSingles, 0.0, 0.0);
        comparePart(frames, "whole frame", eAll, 0.33, 0.9);
        const Tq::Ptr<iRegion> clip = twelveBoxes();
        for (const auto& [name, part] : {std::pair("gradients in 12 boxes", eGradients),
                                         {"ellipses in 12 boxes", eEllipses},
                                         {"whole frame in 12 boxes", eAll}})
            Bench::compare(name,
                           {{"ours", [&, part = part] { return frames.ours(part, clip); }},
                            {"unclipped", [&, part = part] { return frames.ours(part); }}},
                           {{{"unclipped"}, 0.9}}, 9);
    }
    OpenGLUtils::shutdown();
}
