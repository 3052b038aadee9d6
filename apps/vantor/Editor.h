#pragma once

#include "Control/ControlQueue.h"
#include "Drawing/Scene.h"
#include "Effects/LiveEffect.h"
#include "Model/PlayCount.h"
#include "Model/Session.h"
#include "Play/Viewer.h"
#include "View/Interaction.h"
#include "common/Icons.h"
#include "common/Resources.h"

#include <OS/Windowing/iEventHandler.h>
#include <OS/Windowing/iMouseCursor.h>
#include <OS/Windowing/iRootWindow.h>
#include <OS/Windowing/iTimer.h>

#include <memory>

namespace Vantor {

/// The editor: receives a window's events, changes the state through Interaction, and draws it.
///
/// Works without a window too: events change the state and nothing is drawn. Everything runs on the
/// thread of the event loop.
class Editor final : public iEventHandler
{
public:
    explicit Editor(EditorState state);

    const EditorState& state() const { return state_; }
    /// Begins to play as soon as the first picture is on the screen.
    void playWhenDrawn() { playsWhenDrawn_ = true; }
    /// Whether what is to be seen is on the screen, as far as the editor can know.
    bool hasDrawn() const;

    /// Draws in this window from now on, until detach(). The window keeps the editor, so that the
    /// two hold each other in between.
    void attach(Tq::Ptr<iRootWindow> window);
    void detach();
    /// Saves the session after changes and at the end, from now on until detach().
    void remember(Tq::Ptr<iSettings> settings, const Session& session);
    /// Trashes and writes files where the user asks for it, from now on.
    /// @param sampleFolders whose files belong to the product and are never trashed
    /// @param exportFolder where pictures of frames go
    void allowFiles(std::vector<Text> sampleFolders, const Text& exportFolder);
    /// Ends the program after a time of running.
    void quitAfter(int seconds);

    eRC handleMouse(const MouseEvent& event) override;
    eRC handleKey(const KeyEvent& event) override;
    eRC handlePaint(const PaintEvent& event) override;
    eRC handleWindowEvent(const WindowEvent& event) override;
    eRC handleTimer(const TimerEvent& event) override;
    eRC handleFileDrop(const LightweightString<wchar_t>& path) override;
    eRC handleUserMessage(const UserMessage& message) override;

private:
    void draw(const Tq::Ptr<iGraphicPrimitivesRenderer>& renderer);
    void requestFrame();
    /// What every change of the state is followed by. @return whether the program goes on
    eRC changed();
    void keepTimers();
    void keepViewer();
    void keepEffect();
    void keepController();
    void obeyController();
    void grabScreen();
    eRC learnFacts();
    void keepCursor();
    void keepTitle();
    void keepSession();
    void saveSession();
    void runErrands();
    void followClock();
    std::vector<int> boundaries(Focus field, const Text& text);
    bool isTick(const Tq::Ptr<iTimer>& timer, const TimerEvent& event) const;
    void useTarget(std::unique_ptr<Resources> resources);

    EditorState state_;
    Interaction interaction_;
    Tq::Ptr<iRootWindow> window_;
    std::unique_ptr<Resources> resources_;
    std::unique_ptr<Stores> stores_;
    Text measuredTitle_;
    Text windowTitle_;
    Tq::Ptr<iSettings> settings_; ///< null: nothing is remembered
    Session session_;
    bool filesAllowed_ = false;
    std::vector<Text> sampleFolders_;
    Text exportFolder_;
    bool frameRequested_ = false;

    Tq::Ptr<iTimer> playTimer_;
    Tq::Ptr<iTimer> factsTimer_; ///< what was shown becomes known a moment later
    Tq::Ptr<iTimer> caretTimer_;
    Tq::Ptr<iTimer> quitTimer_;
    Tq::Ptr<iTimer> saveTimer_;
    PlayCount drawn_;             ///< frames, where the editor draws them itself
    Tq::Ptr<iTimer> effectTimer_; ///< looks whether somebody edits the effect's file
    std::unique_ptr<Viewer> viewer_;
    LiveEffect effect_;
    Tq::Ptr<iTimer> lightTimer_; ///< puts the controller's light out
    std::shared_ptr<ControlQueue> commands_ = std::make_shared<ControlQueue>();
    std::uint64_t heard_ = 0; ///< messages of the controller that the light was on for
    ControllerPlace opened_;
    int stillTypeTold_ = 0;
    std::unique_ptr<Controller> controller_;
    bool playsWhenDrawn_ = false;

    iMouseCursor::eStockCursor cursor_ = iMouseCursor::eArrow;
};

/// Draws one frame of a state. @param loads how many picture files may be read for it
/// @return whether pictures were left out because no more could be read
bool drawFrame(const EditorState& state, Resources& resources, Stores& stores,
               const Tq::Ptr<iGraphicPrimitivesRenderer>& renderer, int loads);

/// The width of the project's title as it stands in the top bar.
int titleWidth(const EditorState& state, Resources& resources);

} // namespace Vantor
