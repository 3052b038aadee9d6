#pragma once

#include "Drawing/DigitPictures.h"
#include "Effects/LiveEffect.h"
#include "Model/PlayCount.h"
#include "Model/Transport.h"
#include "Model/ViewerChoices.h"
#include "Play/FrameReader.h"
#include "Play/ScopeWatch.h"

#include <OS/Threads/iSemaphore.h>
#include <OS/Threads/iThread.h>
#include <OS/Windowing/iVideoWindow.h>

#include <atomic>
#include <memory>

namespace Vantor {

/// What is to be shown: plain data, handed over as a whole.
struct Showing
{
    Tq::Ptr<iVideoWindow> window; ///< null: nothing is shown
    bool alone = false;           ///< the picture fills the window
    Transport transport;
    ViewerChoices choices;
    std::shared_ptr<const Edit> edit;
    LiveEffect::Path effect; ///< null: as it is
    bool measured = false;   ///< for the scopes

    /// Whether it is the same to be seen, however far the clock has gone.
    bool looksLike(const Showing& other) const
    {
        return window.get() == other.window.get() && alone == other.alone && edit == other.edit &&
               effect == other.effect && measured == other.measured && choices == other.choices &&
               transport.run() == other.transport.run();
    }
};

/// Shows the frames in a video window, each at its time, on a thread of its own.
///
/// The time decides: a frame that is not ready when its time has passed is left out. Construction,
/// show() and destruction belong to the thread of the event loop.
class Presenter
{
public:
    /// @param make of frames, on threads of the reader's; null: FrameMaker's
    explicit Presenter(FrameReader::Make make = nullptr);
    ~Presenter();
    Presenter(const Presenter&) = delete;
    Presenter& operator=(const Presenter&) = delete;

    /// From now on. Does not wait.
    void show(const Showing& showing);

    /// What became of the frames; from any thread.
    struct Facts
    {
        std::uint64_t presented = 0;
        std::uint64_t dropped = 0;
        double rate = 0.0;    ///< frames a second while playing; 0: unknown
        bool settled = false; ///< a picture that stands still is on the screen
    };
    Facts facts() const;
    const ScopeWatch& scopes() const { return scopes_; }

private:
    struct Shown; ///< what is on the screen

    static iThread::eExecRC run(void* presenter);
    void loop();
    Showing current() const;
    double present(const Showing& showing);
    double settle(const Showing& showing);
    bool draw(const Showing& showing, const Tq::Ptr<iImage>& image, const Point& pixels, int frame);
    void count(const Showing& showing, std::int64_t tick, double ms);
    Tq::Ptr<iImage> graded(const Tq::Ptr<iImage>& image, const LiveEffect::Path& path);

    const Tq::Ptr<iCriticalSection> lock_;
    const Tq::Ptr<iSemaphore> wake_; ///< a unit for each thing that may be new
    std::atomic<bool> ends_{false};
    Showing showing_; ///< under lock_, and so the next six
    std::uint64_t changes_ = 0;
    std::uint64_t settledChanges_ = 0;
    PlayCount count_;
    std::uint64_t presentedBefore_ = 0; ///< in windows that were left
    std::uint64_t droppedBefore_ = 0;
    std::uint64_t lostStanding_ = 0; ///< and shown again: not counted as dropped

    // On the thread only.
    Resources resources_{1.0};
    DigitPictures digits_;
    std::unique_ptr<Grade> grade_;
    bool gradeTried_ = false;
    std::unique_ptr<Shown> shown_;

    ScopeWatch scopes_;
    std::unique_ptr<FrameReader> reader_;
    Tq::Ptr<iThread> thread_;
};

} // namespace Vantor
