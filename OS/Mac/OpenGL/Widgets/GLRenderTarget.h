#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/Primitives/XY.h>

#include <atomic>
#include <mutex>

class QtGLWidgetPrimitivesBatch;

/// What other threads may know of a render target, kept beyond its end by whoever still refers to
/// it.
class RenderTargetState final : public iObject
{
public:
    struct Measures
    {
        XY<int> size;       ///< logical pixels
        double ratio = 1.0; ///< device pixels for each of them

        /// Nearest whole numbers.
        XY<int> deviceSize() const;
        friend bool operator==(const Measures& a, const Measures& b)
        {
            return a.size.x == b.size.x && a.size.y == b.size.y && a.ratio == b.ratio;
        }
    };

    Measures getMeasures() const;
    void setMeasures(const Measures& measures);

    /// False from the moment that the target's destruction begins. The destruction then waits for
    /// the updater, so a task that found it alive may use it to the task's end.
    bool isAlive() const { return alive_.load(std::memory_order_acquire); }
    void end() { alive_.store(false, std::memory_order_release); }

private:
    std::atomic<bool> alive_{true};
    mutable std::mutex guard_; // a leaf
    Measures measures_;
};

/// What a batch of primitives is drawn into: a widget, or a stand-in for one in a test.
class GLRenderTarget
{
public:
    /// Takes the GL lock and makes the target ready. endRender must follow, whatever is returned.
    /// @return whether GL can be called: not before the target is bound to the updater
    virtual bool beginRender() = 0;
    /// Shows what was drawn and gives the GL lock back. @return whether it can be seen
    virtual bool endRender() = 0;
    /// Called between the two, with what is drawn: it may be drawn again when the target's contents
    /// are lost.
    virtual void noteDrawn(QtGLWidgetPrimitivesBatch& batch) = 0;
    /// Never null. From any thread while the target lives.
    virtual Tq::Ptr<RenderTargetState> getState() const = 0;

protected:
    ~GLRenderTarget() = default;
};
