// What a frame costs from the release of its back buffer until it is swapped, against the same GL
// calls written by hand on the updater's thread; and twenty seconds of playing 1080p at 60 frames
// a second. Run it in a display: tests/support/with-display --screen 1920x1080 build/release/...
#include "support/PairedRuns.h"

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/Application/QtApplication.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLSharedContext.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRenderer.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"
#include "OS/Mac/OpenGL/Widgets/GLBackBufferGuard.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWidget.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWindowUpdater.h"
#include "OS/Mac/OpenGL/Widgets/VideoWindow.h"
#include "OS/Mac/Painting/QtImage.h"

#include <OS/Primitives/ImageDescription.h>
#include <OS/Primitives/RectDescription.h>
#include <OS/Threads/CriticalSectionLock.h>

#include <QCoreApplication>
#include <QWidget>
#include <QWindow>
#include <atomic>
#include <cstdio>
#include <fstream>
#include <future>
#include <memory>
#include <thread>

namespace {

constexpr int kWidth = 1280, kHeight = 720, kFrames = 60;

class Task final : public iExecutable
{
public:
    explicit Task(std::function<void()> code) : code_(std::move(code)) {}
    void execute() override { code_(); }

private:
    std::function<void()> code_;
};

// Ends when the updater has done what was queued before.
void finish()
{
    std::promise<void> done;
    QtGLWindowUpdater::instance().queue(new Task([&] { done.set_value(); }));
    done.get_future().wait();
}

Tq::Ptr<QtImage> makePicture(int seed)
{
    Tq::Ptr<QtImage> picture(new QtImage({1920, 1080}, QtImage::getDefaultFormat(), 1));
    const auto renderer = picture->getPrimitivesRenderer(false);
    RectDescription rect;
    rect.rect_ = {0, 0, 1920, 1080};
    rect.topColour_ = {static_cast<float>(seed % 8) / 8.0f, 0.2f, 0.4f, 1.0f};
    rect.bottomColour_ = {0.1f, 0.8f, 0.3f, 1.0f};
    renderer->render(rect);
    return picture;
}

RectDescription overlay(int i)
{
    RectDescription rect;
    rect.rect_ = {20 + 24 * i, 600, 40 + 24 * i, 700};
    rect.topColour_ = rect.bottomColour_ = {1.0f, 1.0f, 0.0f, 1.0f};
    return rect;
}

// -- One frame

struct Stage
{
    QWidget parent;
    Tq::Ptr<QtGLWidget> widget;
    Tq::Ptr<OpenGLImage> image;
    std::vector<RectDescription> bars;

    Stage()
    {
        parent.setGeometry(0, 0, kWidth, kHeight);
        parent.show();
        widget = new QtGLWidget(&parent, OpenGLUtils::getSharedContext().getWidget());
        widget->setGeometry(0, 0, kWidth, kHeight);
        widget->show();
        while (!widget->windowHandle()->isExposed())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        image = new OpenGLImage(makePicture(1), iGPUImage::eARGB8);
        for (int i = 0; i < 50; ++i)
            bars.push_back(overlay(i));
    }

    ImageDescription picture() const
    {
        ImageDescription picture;
        picture.image_ = image;
        picture.sourceROI_ = picture.destROI_ = {0, 0, kWidth, kHeight};
        picture.blend_ = false;
        return picture;
    }

    void ours(bool full)
    {
        Tq::Ptr<GLBackBufferGuard> buffer(new GLBackBufferGuard(widget.get(), {kWidth, kHeight}));
        const auto renderer = buffer->getPrimitivesRenderer(true);
        if (full) {
            renderer->render(picture());
            renderer->renderMulti(bars.data(), static_cast<unsigned int>(bars.size()));
        } else {
            renderer->renderMulti(bars.data(), 0);
        }
        buffer.reset();
        finish();
    }

    void byHand(bool full)
    {
        QtGLWindowUpdater::instance().queue(new Task([this, full] { drawByHand(full); }));
        finish();
    }

    void drawByHand(bool full)
    {
        const CriticalSectionLock lock(OpenGLUtils::instance().getLock());
        widget->makeCurrent();
        glViewport(0, 0, kWidth, kHeight);
        if (full) {
            const Tq::Ptr<iGraphicPrimitivesRenderer> renderer(new OpenGLGraphicPrimitivesRenderer(
                {kWidth, kHeight}, 1.0, OpenGLGraphicPrimitivesRenderer::eWindow));
            renderer->render(picture());
            renderer->renderMulti(bars.data(), static_cast<unsigned int>(bars.size()));
        }
        widget->swapBuffers();
        widget->doneCurrent();
    }
};

void compareFrames()
{
    Bench::printHeader("A frame of 1280 x 720 from the back buffer's release to the swap", "us");
    Stage stage;
    for (const bool full : {false, true}) {
        const auto time = [&](void (Stage::*draw)(bool)) {
            return [&stage, draw, full] {
                return Bench::timed(kFrames * 1000.0, [&] {
                    for (int i = 0; i < kFrames; ++i)
                        (stage.*draw)(full);
                });
            };
        };
        Bench::compare(full ? "picture and 50 bars" : "empty",
                       {{"ours", time(&Stage::ours)}, {"by hand", time(&Stage::byHand)}},
                       {{{"by hand"}, 1.05}}, 15);
    }
}

// -- Playing

double residentMiB()
{
    std::ifstream statm("/proc/self/statm");
    double total = 0, resident = 0;
    statm >> total >> resident;
    return resident * 4096 / 1048576;
}

/// @param uploads each frame is a new host image, else a picture that is on the GPU already
void play(const XY<int>& size, bool uploads)
{
    constexpr int kRate = 60, kSeconds = 20;
    QWidget parent;
    parent.setGeometry(0, 0, size.x, size.y);
    parent.show();
    const Tq::Ptr<iVideoWindow> window = VideoWindow::makeInside(parent, {0, 0}, size);
    QCoreApplication::processEvents(QEventLoop::AllEvents, 200);
    std::vector<Tq::Ptr<QtImage>> pictures;
    for (int i = 0; i < 8; ++i)
        pictures.push_back(makePicture(i));
    const Tq::Ptr<OpenGLImage> ready(new OpenGLImage(pictures[0], iGPUImage::eARGB8));
    window->setFrameRate(kRate, 1);

    double before = 0;
    std::atomic<bool> finished{false};
    std::thread player([&] {
        auto due = std::chrono::steady_clock::now();
        for (int i = 0; i < kRate * kSeconds; ++i) {
            if (i == kRate)
                before = residentMiB();
            ImageDescriptionEx frame;
            frame.image_ = ready;
            if (uploads)
                frame.image_ =
                    new OpenGLImage(pictures[static_cast<std::size_t>(i % 8)], iGPUImage::eARGB8);
            frame.sourceRect_ = {0, 0, 1920, 1080};
            frame.destRect_ = {0, 0, static_cast<float>(size.x), static_cast<float>(size.y)};
            frame.blend_ = false;
            window->getBackBuffer(&frame).reset();
            due += std::chrono::nanoseconds(1'000'000'000 / kRate);
            std::this_thread::sleep_until(due);
        }
        finished = true;
    });
    while (!finished)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    player.join();
    const auto s = window->getStatistics();
    std::printf("| 1080p at 60 into %d x %d, %s | %llu | %llu | %llu | %.1f | %.1f |\n", size.x,
                size.y, uploads ? "uploaded" : "on the GPU",
                static_cast<unsigned long long>(s.presented),
                static_cast<unsigned long long>(s.dropped), static_cast<unsigned long long>(s.late),
                s.drawMs, residentMiB() - before);
    std::fflush(stdout);
    window->close();
}

} // namespace

int main()
{
    QtApplication::instance();
    OpenGLUtils::instance();
    if (!OpenGLUtils::isInitialised())
        return 1;
    compareFrames();
    std::printf(
        "\n### Twenty seconds of playing\n\n| what | presented | dropped | late | last frame "
        "drawn in, ms | memory grown, MiB |\n|---|---|---|---|---|---|\n");
    play({640, 360}, true);
    play({1280, 720}, false);
    play({1280, 720}, true);
    return 0;
}
