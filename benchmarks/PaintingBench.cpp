// Drawing an editor-like frame through the renderer against the same frame written with the
// toolkit's painter, and reading pictures against the toolkit's and the libraries' own readers.
// Milliseconds; pictures come from the page cache. Run with QT_QPA_PLATFORM=offscreen.
#include "support/PairedRuns.h"

#include "OS/Mac/Painting/BatchRenderer.h"
#include "OS/Mac/Painting/QtFont.h"
#include "OS/Mac/Painting/QtImage.h"
#include "OS/Mac/Painting/QtRegion.h"
#include "OS/Mac/Primitives/DeferredPrimitivesRenderer.h"

#include "OS/Mac/Media/TiffWriter.h"

#include <OS/Primitives/PrimitivesBatch.h>

#include <QImageReader>
#include <QPainterPath>

#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <tiffio.h>
#include <unistd.h>

namespace {

constexpr int kWidth = 1280, kHeight = 720;
constexpr int kTracks = 12, kClips = 25;
constexpr double kMs = 1e6;

// One clip of the timeline: a shaded body, a frame of lines, a caption.
struct Clip
{
    Tq::Rectangle<int> area;
    QColor top, bottom;
    NormalisedRGB topColour, bottomColour;
    LightweightString<wchar_t> name;
    QString qName;
};

struct Frame
{
    std::vector<Clip> clips;
    std::vector<RectDescription> rects;
    std::vector<LineDescription> lines;
    std::vector<TextDescription> texts;
    std::vector<BezierCurveDescription> curves;
    std::vector<AlphaRectDescription> shades;
    ImageDescription thumbnail;
    Tq::Ptr<QtFont> font;
    Tq::Ptr<iRegion> timeline;
};

Tq::Ptr<QtImage> target(int width = kWidth, int height = kHeight)
{
    return new QtImage({width, height}, QtImage::getDefaultFormat(), 1);
}

LineDescription line(int x1, int y1, int x2, int y2)
{
    LineDescription desc;
    desc.start_ = {x1, y1};
    desc.end_ = {x2, y2};
    desc.colour_ = {0, 0, 0};
    return desc;
}

Frame makeFrame()
{
    Frame frame;
    frame.font = QtFont::make(L"Tahoma", 11, 0, 0).dynamicCast<QtFont>();
    frame.timeline = new QtRegion(Tq::Rectangle<int>{0, 100, kWidth, kHeight});
    for (int track = 0; track < kTracks; ++track)
        for (int i = 0; i < kClips; ++i) {
            const int x = i * 51, y = 110 + track * 50;
            const int tone = (track * 37 + i * 11) % 128 + 64;
            Clip clip;
            clip.area = {x, y, x + 48, y + 44};
            clip.top = QColor(tone, 100, 160);
            clip.bottom = i % 3 ? clip.top : QColor(tone / 2, 50, 80);
            const auto normalised = [](const QColor& c) {
                return NormalisedRGB(float(c.redF()), float(c.greenF()), float(c.blueF()));
            };
            clip.topColour = normalised(clip.top);
            clip.bottomColour = normalised(clip.bottom);
            clip.name =
                L"Clip " + LightweightString<wchar_t>(std::to_wstring(track * kClips + i).c_str());
            clip.qName = QStringLiteral("Clip %1").arg(track * kClips + i);
            frame.clips.push_back(clip);

            RectDescription rect;
            rect.rect_ = clip.area;
            rect.topColour_ = clip.topColour;
            rect.bottomColour_ = clip.bottomColour;
            frame.rects.push_back(rect);
            frame.lines.push_back(line(x, y + 1, x + 47, y + 1));
            frame.lines.push_back(line(x, y + 44, x + 47, y + 44));
            frame.texts.emplace_back(clip.name, XY<int>{x + 3, y + 14}, NormalisedRGB(1, 1, 1),
                                     eTextDefault, frame.font);
            if (i % 4 == 0) {
                BezierCurveDescription curve;
                curve.start_ = {x, y + 40};
                curve.control1_ = {x + 15, y};
                curve.control2_ = {x + 30, y + 60};
                curve.end_ = {x + 47, y + 20};
                curve.colour_ = {1, 1, 0};
                frame.curves.push_back(curve);
            }
        }
    AlphaRectDescription shade;
    shade.rect_ = {400, 100, 700, kHeight};
    shade.topColour_ = {1, 1, 1};
    shade.alpha_ = 0.2f;
    frame.shades.push_back(shade);
    const Tq::Ptr<QtImage> picture = target(160, 90);
    picture->image()->fill(0xFF445566);
    frame.thumbnail.image_ = picture;
    frame.thumbnail.sourceROI_ = {0, 0, 160, 90};
    frame.thumbnail.destROI_ = {10, 5, 170, 95};
    return frame;
}

template <class T>
void all(iGraphicPrimitivesRenderer& renderer, const std::vector<T>& descs)
{
    renderer.renderMulti(descs.data(), static_cast<unsigned int>(descs.size()));
}

void drawThrough(iGraphicPrimitivesRenderer& renderer, const Frame& frame)
{
    RectDescription ground;
    ground.rect_ = {0, 0, kWidth, kHeight};
    ground.topColour_ = ground.bottomColour_ = {0.2f, 0.2f, 0.2f};
    renderer.setAntialiasingEnabled(true);
    renderer.render(ground);
    renderer.render(frame.thumbnail);
    renderer.setClipRegion(frame.timeline);
    all(renderer, frame.rects);
    all(renderer, frame.lines);
    all(renderer, frame.texts);
    all(renderer, frame.curves);
    all(renderer, frame.shades);
}

// The same pixels, as somebody would write them who has the painter only.
void drawByHand(QImage& image, const Frame& frame)
{
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.fillRect(0, 0, kWidth, kHeight, QColor(51, 51, 51));
    const auto& picture = static_cast<const QtImage&>(*frame.thumbnail.image_);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.drawImage(QPoint(10, 5), *picture.image(), QRect(0, 0, 160, 90));
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setClipRegion(QRegion(0, 100, kWidth, kHeight - 100));
    for (const Clip& clip : frame.clips) {
        const QRect area(clip.area.left, clip.area.top, 48, 44);
        if (clip.top == clip.bottom) {
            painter.fillRect(area, clip.top);
        } else {
            QLinearGradient gradient(area.left(), area.top(), area.left(), area.top() + 44);
            gradient.setColorAt(0, clip.top);
            gradient.setColorAt(1, clip.bottom);
            painter.fillRect(area, gradient);
        }
    }
    painter.setPen(QPen(Qt::black, 1));
    for (const Clip& clip : frame.clips) {
        painter.drawLine(clip.area.left, clip.area.top, clip.area.left + 47, clip.area.top);
        painter.drawLine(clip.area.left, clip.area.top + 43, clip.area.left + 47,
                         clip.area.top + 43);
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(frame.font->font());
    painter.setPen(Qt::white);
    for (const Clip& clip : frame.clips)
        painter.drawText(clip.area.left + 3, clip.area.top + 14, clip.qName);
    for (const BezierCurveDescription& curve : frame.curves) {
        QPainterPath path(QPointF(curve.start_.x, curve.start_.y));
        path.cubicTo(curve.control1_.x, curve.control1_.y, curve.control2_.x, curve.control2_.y,
                     curve.end_.x, curve.end_.y);
        painter.strokePath(path, QPen(QColor(255, 255, 0), 1));
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.fillRect(400, 100, 300, kHeight - 100, QColor(255, 255, 255, 51));
}

struct Replayer final : iGraphicPrimitivesBatchRenderer
{
    explicit Replayer(const Tq::Ptr<QImage>& image_) : image(image_) {}
    void render(const PrimitivesBatch& batch) override
    {
        BatchRenderer renderer(image, 1);
        renderer.setAntialiasingEnabled(batch.antialias);
        batch.list->process(renderer);
    }
    Tq::Ptr<QImage> image;
};

void compareFrames()
{
    const Frame frame = makeFrame();
    const Tq::Ptr<QtImage> ours = target(), theirs = target(), deferred = target();
    Replayer replayer(deferred->image());
    constexpr int kFrames = 10;
    const auto direct = [&] {
        return Bench::timed(kFrames * kMs, [&] {
            for (int i = 0; i < kFrames; ++i)
                drawThrough(*ours->getPrimitivesRenderer(true), frame);
        });
    };
    const auto byHand = [&] {
        return Bench::timed(kFrames * kMs, [&] {
            for (int i = 0; i < kFrames; ++i)
                drawByHand(*theirs->image(), frame);
        });
    };
    const auto recorded = [&] {
        return Bench::timed(kFrames * kMs, [&] {
            for (int i = 0; i < kFrames; ++i)
                drawThrough(
                    *Tq::Ptr<iGraphicPrimitivesRenderer>(new DeferredPrimitivesRenderer(&replayer)),
                    frame);
        });
    };
    Bench::compare("frame, renderer", {{"renderer", direct}, {"painter", byHand}},
                   {{{"painter"}, 1.03}}, 15);
    Bench::compare("frame, recorded and replayed", {{"deferred", recorded}, {"painter", byHand}},
                   {{{"painter"}, 1.08}}, 15);
    if (*ours->image() != *theirs->image() || *ours->image() != *deferred->image()) {
        std::printf("the frames differ: see bench-*.png\n");
        ours->image()->save(QStringLiteral("bench-ours.png"));
        theirs->image()->save(QStringLiteral("bench-painter.png"));
        deferred->image()->save(QStringLiteral("bench-deferred.png"));
    }
}

const std::string kJpeg = "/tmp/painting-bench.jpg", kTiff = "/tmp/painting-bench.tif";

LightweightString<wchar_t> wide(const std::string& text)
{
    return LightweightString<wchar_t>(std::wstring(text.begin(), text.end()).c_str());
}

// 12 megapixels of something that neither packs to nothing nor is pure noise.
Tq::Ptr<QtImage> makePicture()
{
    const Tq::Ptr<QtImage> picture = target(4000, 3000);
    unsigned int noise = 1;
    for (int y = 0; y < 3000; ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture->image()->scanLine(y));
        for (int x = 0; x < 4000; ++x) {
            noise = noise * 1664525 + 1013904223;
            const int grain = static_cast<int>(noise >> 28);
            row[x] = qRgb((x / 20 + grain) & 255, (y / 15 + grain) & 255, ((x + y) / 30) & 255);
        }
    }
    return picture;
}

// The library's own call, its swap of red and blue, into memory of the same kind.
void readTiffPlainly()
{
    TIFF* tiff = TIFFOpen(kTiff.c_str(), "r");
    std::uint32_t width = 0, height = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
    QImage image(static_cast<int>(width), static_cast<int>(height), QImage::Format_ARGB32);
    auto* pixels = reinterpret_cast<std::uint32_t*>(image.bits());
    TIFFReadRGBAImageOriented(tiff, width, height, pixels, ORIENTATION_TOPLEFT, 0);
    for (std::size_t i = 0; i < std::size_t(width) * height; ++i)
        pixels[i] = (pixels[i] & 0xFF00FF00) | (pixels[i] & 0xFF) << 16 | (pixels[i] >> 16 & 0xFF);
    TIFFClose(tiff);
    Bench::keep(image);
}

// How far one load raises the peak of a fresh child, as a share of the picture's bytes.
template <class Code>
double peakShare(Code code)
{
    int answer[2];
    if (pipe(answer) != 0)
        return 0.0;
    const pid_t child = fork();
    if (child == 0) {
        const auto peak = [] {
            rusage usage{};
            getrusage(RUSAGE_SELF, &usage);
            return static_cast<double>(usage.ru_maxrss) * 1024.0;
        };
        const double before = peak();
        code();
        const double share = (peak() - before) / (4000.0 * 3000.0 * 4.0);
        _exit(write(answer[1], &share, sizeof share) == sizeof share ? 0 : 1);
    }
    double share = 0.0;
    if (read(answer[0], &share, sizeof share) != sizeof share)
        share = -1.0;
    waitpid(child, nullptr, 0);
    close(answer[0]);
    close(answer[1]);
    return share;
}

void comparePictures()
{
    {
        const Tq::Ptr<QtImage> picture = makePicture();
        picture->image()->save(QString::fromStdString(kJpeg), "jpg", 90);
        TiffWriter::saveTIFF(picture, kTiff.c_str());
    }
    const auto load = [](const std::string& path) {
        const QtImage image(wide(path));
        Bench::keep(image);
    };
    std::printf("| peak of a JPEG load, of the picture's bytes | %.3f | | | <= 1.10 | |\n",
                peakShare([&] { load(kJpeg); }));
    std::printf("| peak of a TIFF load, of the picture's bytes | %.3f | | | <= 1.10 | |\n",
                peakShare([&] { load(kTiff); }));
    Bench::compare("JPEG, 12 megapixels",
                   {{"QtImage", [&] { return Bench::timed(kMs, [&] { load(kJpeg); }); }},
                    {"QImageReader",
                     [] {
                         return Bench::timed(kMs, [] {
                             const QImage image =
                                 QImageReader(QString::fromStdString(kJpeg)).read();
                             Bench::keep(image);
                         });
                     }}},
                   {{{"QImageReader"}, 1.0}});
    Bench::compare("TIFF, 12 megapixels",
                   {{"QtImage", [&] { return Bench::timed(kMs, [&] { load(kTiff); }); }},
                    {"libtiff and swap", [] { return Bench::timed(kMs, readTiffPlainly); }}},
                   {{{"libtiff and swap"}, 1.05}});
    unlink(kJpeg.c_str());
    unlink(kTiff.c_str());
}

} // namespace

int main()
{
    TIFFSetWarningHandler(nullptr);
    Bench::printHeader("Painting", "ms");
    comparePictures(); // first: its children must be small
    compareFrames();
}
