#pragma once

#include "support/BackgroundThread.h"

#include "OS/Mac/OpenGL/Widgets/GLRenderTarget.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWidgetPrimitivesBatch.h"

#include <OS/Primitives/RectDescription.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <string>
#include <vector>

/// What the recording target and renderer of one test got, in order.
class CallLog
{
public:
    void note(const std::string& call)
    {
        const std::lock_guard lock(guard_);
        calls_.push_back(call);
    }
    std::vector<std::string> calls() const
    {
        const std::lock_guard lock(guard_);
        return calls_;
    }
    std::size_t count(const std::string& call) const
    {
        const std::lock_guard lock(guard_);
        return static_cast<std::size_t>(std::count(calls_.begin(), calls_.end(), call));
    }

private:
    mutable std::mutex guard_;
    std::vector<std::string> calls_;
};

/// A renderer that writes down what it is asked, in place of one that draws.
class RecordingRenderer final : public iGraphicPrimitivesRenderer
{
public:
    explicit RecordingRenderer(CallLog& log) : log_(log) { log_.note("renderer"); }
    ~RecordingRenderer() override { log_.note("renderer gone"); }

    /// Makes batches draw with one of these, writing to a log, until it goes.
    class Use
    {
    public:
        explicit Use(CallLog& log)
        {
            current() = &log;
            QtGLWidgetPrimitivesBatch::setRendererFactory(make);
        }
        ~Use() { QtGLWidgetPrimitivesBatch::setRendererFactory(nullptr); }
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
    };

    void setClipRegion(Tq::Ptr<iRegion> region) override
    {
        if (region)
            log_.note("clip");
    }
    void setAntialiasingEnabled(bool) override {}
    void renderMulti(const RectDescription* descs, unsigned int count) override
    {
        for (unsigned int i = 0; i < count; ++i)
            log_.note("rect " + std::to_string(descs[i].rect_.left));
    }
    void renderMulti(const EllipseDescription*, unsigned int) override { log_.note("ellipse"); }
    void renderMulti(const LineDescription*, unsigned int) override { log_.note("line"); }
    void renderMulti(const TextDescription*, unsigned int) override { log_.note("text"); }
    void renderMulti(const AlphaRectDescription*, unsigned int) override
    {
        log_.note("alpha rect");
    }
    void renderMulti(const BezierCurveDescription*, unsigned int) override { log_.note("curve"); }
    void renderMulti(const ImageDescription*, unsigned int) override { log_.note("image"); }
    void renderMulti(const ImageDescriptionEx*, unsigned int) override { log_.note("image ex"); }

private:
    static CallLog*& current()
    {
        static CallLog* log = nullptr;
        return log;
    }
    static Tq::Ptr<iGraphicPrimitivesRenderer> make(const XY<int>&, double)
    {
        return new RecordingRenderer(*current());
    }

    CallLog& log_;
};

/// A stand-in for a widget: a bracket with a lock, and nothing to draw on.
class RecordingTarget final : public GLRenderTarget
{
public:
    explicit RecordingTarget(CallLog& log) : log_(log) { state_->setMeasures({{320, 200}, 1.0}); }
    ~RecordingTarget() { state_->end(); }
    RecordingTarget(const RecordingTarget&) = delete;
    RecordingTarget& operator=(const RecordingTarget&) = delete;

    /// Has the next drawing wait until unblock().
    void block() { blocked_ = true; }
    void unblock() { gate_.open(); }

    bool beginRender() override
    {
        lock_.lock();
        if (blocked_.exchange(false))
            gate_.wait();
        log_.note("begin");
        return ready;
    }
    bool endRender() override
    {
        log_.note("end");
        lock_.unlock();
        return visible;
    }
    void noteDrawn(QtGLWidgetPrimitivesBatch&) override {}
    Tq::Ptr<RenderTargetState> getState() const override { return state_; }

    std::atomic<bool> ready{true};
    std::atomic<bool> visible{true};

private:
    CallLog& log_;
    std::recursive_mutex lock_;
    std::atomic<bool> blocked_{false};
    Gate gate_;
    Tq::Ptr<RenderTargetState> state_{new RenderTargetState};
};

/// A rectangle that the log shows as "rect N".
inline RectDescription numbered(int n)
{
    RectDescription rect;
    rect.rect_ = {n, 0, n + 1, 1};
    return rect;
}
