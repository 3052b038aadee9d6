#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OpenGL/WidgetRig.h"
#include "support/BackgroundThread.h"
#include "support/Stopwatch.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLSharedContext.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRenderer.h"
#include "OS/Mac/OpenGL/Images/OpenGLTextureCache.h"
#include "OS/Mac/OpenGL/Widgets/GLBackBufferGuard.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWidgetPool.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWindowUpdater.h"
#include "OS/Mac/OpenGL/Widgets/VideoWindow.h"
#include "OS/Mac/Painting/QtImage.h"

#include <OS/Primitives/EllipseDescription.h>
#include <OS/Primitives/ImageDescription.h>
#include <OS/Primitives/RectDescription.h>
#include <OS/Threads/iWaitable.h>

#include <QWindow>
#include <cstdlib>
#include <random>

namespace {

// VANTOR_TORTURE_SECONDS: two in the suite, ten in CI, a minute in the long run.
double tortureMs()
{
    const char* seconds = std::getenv("VANTOR_TORTURE_SECONDS");
    return (seconds ? std::atof(seconds) : 2.0) * 1000.0;
}

/// The names that the sharing group uses, once nothing is drawn and no cache keeps any.
struct GLNames
{
    int textures = 0;
    int framebuffers = 0;

    static GLNames inUse()
    {
        const OpenGLContextProtector protector(OpenGLUtils::getSharedContext());
        OpenGLGraphicPrimitivesRenderer::clearCaches();
        OpenGLTextureCache::instance().clear();
        GLNames names;
        for (GLuint name = 1; name < 4096; ++name) {
            names.textures += glIsTexture(name) ? 1 : 0;
            names.framebuffers += glIsFramebuffer(name) ? 1 : 0;
        }
        return names;
    }
};

/// Does one thing or another to widgets and video windows, from the thread of the event loop.
class Tormentor
{
public:
    Tormentor(QWidget& parent, unsigned int seed) : parent_(parent), random_(seed)
    {
        fill(*picture_->getPrimitivesRenderer(false), {0, 0, 40, 30}, kBlue);
    }

    void step()
    {
        switch (upTo(11)) {
        case 0:
            if (widgets_.size() < 5)
                widgets_.push_back(QtGLWidgetPool::instance().get(&parent_, position(), size()));
            break;
        case 1:
            if (auto* widget = any())
                widget->setGeometry(QRect(position().x, position().y, size().x, size().y));
            break;
        case 2:
            if (auto* widget = any())
                widget->hide();
            break;
        case 3:
            if (auto* widget = any())
                widget->show();
            break;
        case 4:
            if (auto* widget = any())
                widget->hasBeenExposed();
            break;
        case 5:
            letGo(upTo(2) == 0);
            break;
        case 6:
            moveWindows();
            break;
        case 7:
            pump();
            break;
        default:
            if (auto* widget = any()) {
                draw(*Tq::Ptr<GLBackBufferGuard>(
                    new GLBackBufferGuard(widget, {widget->width(), widget->height()})));
            }
        }
    }

    /// Lets everything go.
    void rest()
    {
        if (video_)
            video_->close();
        player_.reset();
        video_.reset();
        widgets_.clear();
        QtGLWidgetPool::instance().shutdown();
        pump();
        finishUpdater();
    }

    std::atomic<std::uint64_t> windowsMade{0};

private:
    unsigned int upTo(unsigned int limit) { return static_cast<unsigned int>(random_()) % limit; }
    XY<int> position() { return {int(upTo(120)), int(upTo(100))}; }
    XY<int> size() { return {int(1 + upTo(140)), int(1 + upTo(110))}; }
    QtGLWidget* any()
    {
        return widgets_.empty() ? nullptr : widgets_[upTo(unsigned(widgets_.size()))].get();
    }
    void letGo(bool pooled)
    {
        if (widgets_.empty())
            return;
        const auto at = widgets_.begin() + upTo(unsigned(widgets_.size()));
        const Tq::Ptr<QtGLWidget> widget = *at;
        widgets_.erase(at);
        if (pooled && widget->windowHandle()->isExposed())
            QtGLWidgetPool::instance().insert(widget);
    }
    void draw(iGPUImage& target)
    {
        const auto renderer = target.getPrimitivesRenderer(true);
        fill(*renderer, {0, 0, 200, 200}, kRed);
        EllipseDescription ellipse;
        ellipse.rect_ = {5, 5, 60, 50};
        ellipse.endAngle_ = 360;
        renderer->render(ellipse);
        ImageDescription image;
        image.image_ = picture_;
        image.sourceROI_ = image.destROI_ = {0, 0, 40, 30};
        renderer->render(image);
    }
    // A video window that a player draws into meanwhile: it goes while frames are in flight.
    void moveWindows()
    {
        if (!video_) {
            video_ = VideoWindow::makeInside(parent_, position(), size());
            ++windowsMade;
            player_ = std::make_unique<BackgroundThread<void>>([window = video_]() mutable {
                window->setFrameRate(500, 1);
                while (window->waitForRoom(iWaitable::kNoTimeOut) != iWaitable::eWaitFailed) {
                    const auto buffer = window->getBackBuffer();
                    fill(*buffer->getPrimitivesRenderer(true), {0, 0, 100, 100}, kGreen);
                }
                window.reset();
            });
            return;
        }
        switch (upTo(5)) {
        case 0:
            video_->hide();
            break;
        case 1:
            video_->close();
            video_.reset();
            player_.reset();
            break;
        case 2:
            video_->setGeometry(position(), size());
            break;
        default:
            video_->show();
        }
    }

    QWidget& parent_;
    std::mt19937 random_;
    Tq::Ptr<QtImage> picture_{new QtImage({40, 30}, QtImage::getDefaultFormat(), 1)};
    std::vector<Tq::Ptr<QtGLWidget>> widgets_;
    Tq::Ptr<iVideoWindow> video_;
    std::unique_ptr<BackgroundThread<void>> player_;
};

class WidgetTorture : public GLWidgetTest
{
};

TEST_F(WidgetTorture, EndsWithoutACrashAnErrorOrALeak)
{
    const int widgetsBefore = QtGLWidget::getLiveCount();
    GLNames before;
    std::uint64_t steps = 0;
    const unsigned int seed = std::random_device()();
    RecordProperty("seed", int(seed));
    SCOPED_TRACE("seed " + std::to_string(seed));
    for (int phase = 0; phase < 2; ++phase) { // first everything that is made once
        Tormentor tormentor(*window, seed + unsigned(phase));
        const Stopwatch running;
        for (std::uint64_t i = 0; phase == 0 ? i < 300 : running.elapsedMs() < tortureMs(); ++i) {
            tormentor.step();
            ++steps;
        }
        EXPECT_GT(tormentor.windowsMade, 0u);
        tormentor.rest();
        const GLNames now = GLNames::inUse();
        if (phase == 0)
            before = now;
        EXPECT_LE(now.textures, before.textures);
        EXPECT_LE(now.framebuffers, before.framebuffers);
    }
    EXPECT_EQ(QtGLWidget::getLiveCount(), widgetsBefore);
    EXPECT_EQ(trap.faults(), "");
    RecordProperty("steps", int(steps));

    // And everything still works.
    const auto widget = makeWidget();
    drawFrame(*widget, kRed, kGreen);
    EXPECT_TRUE(waitFor([&] { return showsFrame(*widget, kRed, kGreen); }));
}

} // namespace
