#include "Play/Viewer.h"

#include <OS.h>
#include <OS/Windowing/iWindowManager.h>

namespace Vantor {

std::unique_ptr<Viewer> Viewer::make(const Layout& layout)
{
    const Rect& screen = layout.screen;
    Tq::Ptr<iVideoWindow> window =
        OS()->windowMgr()->createVideoWindow(screen.topLeft(), screen.size());
    if (!window)
        return nullptr;
    std::unique_ptr<Viewer> viewer(new Viewer(window));
    viewer->place_ = screen;
    return viewer;
}

Viewer::~Viewer()
{
    presenter_.show(Showing());
    if (fullScreen_)
        fullScreen_->close();
    window_->close();
}

// Threads share an edit, so that a changed one is a new one.
void Viewer::keepEdit(const EditorState& state)
{
    if (edit_ && edit_->project == state.project && edit_->bin.items == state.bin.items)
        return;
    auto edit = std::make_shared<Edit>();
    edit->project = state.project;
    edit->bin.items = state.bin.items;
    edit_ = std::move(edit);
}

void Viewer::show(EditorState& state, const Layout& layout, const LiveEffect::Path& effect)
{
    keepEdit(state);
    if (!(layout.screen == place_)) {
        place_ = layout.screen;
        window_->setGeometry(place_.topLeft(), place_.size());
    }
    if (fullScreen_ && fullScreen_->isClosed())
        state.fullScreen = false;
    if (state.fullScreen && !fullScreen_) {
        fullScreen_ = OS()->windowMgr()->createVideoWindowFullscreen();
        state.fullScreen = bool(fullScreen_);
    } else if (!state.fullScreen && fullScreen_) {
        fullScreen_->close();
        fullScreen_.reset();
    }
    presenter_.show({fullScreen_ ? fullScreen_ : window_, bool(fullScreen_), state.player,
                     state.choices.viewer, edit_, effect, state.choices.scopes});
}

ShownFrames Viewer::facts() const
{
    const Presenter::Facts facts = presenter_.facts();
    return {facts.presented, facts.dropped, facts.rate, true};
}

ScopeReading Viewer::reading() const
{
    return presenter_.scopes().reading();
}

double Viewer::ratio() const
{
    return window_->getPixelRatio();
}

} // namespace Vantor
