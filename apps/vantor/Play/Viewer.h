#pragma once

#include "Play/Presenter.h"
#include "View/EditorState.h"

#include <OS/Windowing/iRootWindow.h>

#include <memory>

namespace Vantor {

/// The viewer as a video window over the editor's, and as one that fills a monitor. On the thread
/// of the event loop.
class Viewer
{
public:
    /// @return null where there are no video windows
    static std::unique_ptr<Viewer> make(const Layout& layout);
    ~Viewer();

    /// Shows the state from now on; makes and drops the window that fills the screen.
    /// @param effect that the picture is passed through; null: as it is
    void show(EditorState& state, const Layout& layout, const LiveEffect::Path& effect);
    ShownFrames facts() const;
    /// Device pixels for each logical one.
    double ratio() const;
    /// Whether what was shown last is on the screen, as far as it can be known.
    bool isSettled() const { return presenter_.facts().settled; }
    /// What the scopes show of it.
    ScopeReading reading() const;
    bool isMeasured() const { return presenter_.scopes().isUpToDate(); }

private:
    explicit Viewer(Tq::Ptr<iVideoWindow> window) : window_(std::move(window)) {}
    void keepEdit(const EditorState& state);

    Tq::Ptr<iVideoWindow> window_;
    Tq::Ptr<iVideoWindow> fullScreen_; ///< null while the picture does not fill the screen
    Rect place_;
    std::shared_ptr<const Edit> edit_;
    Presenter presenter_;
};

} // namespace Vantor
