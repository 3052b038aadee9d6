#include "Editor.h"

#include <OS.h>
#include <OS/Windowing/iWindowManager.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Vantor {

namespace {

constexpr unsigned int kPlayTickMs = 10;
constexpr unsigned int kFollowTickMs = 40; ///< where a video window shows the frames
constexpr unsigned int kCaretMs = 530;
constexpr unsigned int kFactsMs = 250;
constexpr unsigned int kEffectMs = 500;
constexpr unsigned int kSaveMs = 800; ///< without a further change before it is saved
constexpr int kLoadsPerFrame = 4;

const Theme::Type& typeOf(Focus field)
{
    return field == Focus::eTitle ? Theme::kProject : Theme::kFact;
}

iMouseCursor::eStockCursor cursorFor(const EditorState& state)
{
    const Area area = state.pressed.area != Area::eNone ? state.pressed.area : state.hover.area;
    switch (area) {
    case Area::eTitle:
    case Area::eFilter:
        return iMouseCursor::eIBeam;
    case Area::eClipStart:
    case Area::eClipEnd:
    case Area::eBinEdge:
    case Area::ePlayhead:
        return iMouseCursor::eSizeHorizontal;
    case Area::eTimelineEdge:
        return iMouseCursor::eSizeVertical;
    case Area::eViewer:
        if (state.drag.kind == Drag::Kind::eShift)
            return iMouseCursor::eSizeAll;
        break;
    default:
        break;
    }
    const bool carries = state.drag.moved && state.drag.kind == Drag::Kind::eMedia;
    if (carries)
        return clipToDrop(state, layoutOf(state)).length > 0 ? iMouseCursor::eSizeAll
                                                             : iMouseCursor::eForbidden;
    return state.drag.moved && state.drag.kind == Drag::Kind::eClip ? iMouseCursor::eSizeAll
                                                                    : iMouseCursor::eArrow;
}

} // namespace

Editor::Editor(EditorState state)
    : state_(std::move(state)), interaction_(state_, [this](Focus field, const Text& text) {
          return boundaries(field, text);
      })
{
    useTarget(std::make_unique<Resources>(1.0));
}

void Editor::useTarget(std::unique_ptr<Resources> resources)
{
    resources_ = std::move(resources);
    stores_ = std::make_unique<Stores>(*resources_);
    measuredTitle_.clear();
}

void Editor::attach(Tq::Ptr<iRootWindow> window)
{
    window_ = std::move(window);
    useTarget(std::make_unique<Resources>(window_));
    const XY<int> size = window_->getSize();
    if (size.x > 0 && size.y > 0)
        interaction_.resize(size);
    viewer_ = Viewer::make(layoutOf(state_));
    changed();
}

void Editor::detach()
{
    if (window_ && settings_) {
        keepSession();
        saveSession();
    }
    if (viewer_)
        state_.shown = viewer_->facts();
    viewer_.reset();
    settings_.reset();
    saveTimer_.reset();
    playTimer_.reset();
    factsTimer_.reset();
    controller_.reset();
    opened_ = {};
    lightTimer_.reset();
    effectTimer_.reset();
    effect_ = LiveEffect();
    caretTimer_.reset();
    quitTimer_.reset();
    useTarget(std::make_unique<Resources>(1.0));
    window_.reset();
}

void Editor::remember(Tq::Ptr<iSettings> settings, const Session& session)
{
    settings_ = std::move(settings);
    session_ = session;
    stillTypeTold_ = state_.stillType;
}

void Editor::allowFiles(std::vector<Text> sampleFolders, const Text& exportFolder)
{
    filesAllowed_ = true;
    sampleFolders_ = std::move(sampleFolders);
    exportFolder_ = exportFolder;
}

// Every change puts the saving off, so that dragging an edge writes one file.
void Editor::keepSession()
{
    if (!window_ || !settings_)
        return;
    Session session = session_;
    session.place = placeOf(*window_, session_.place);
    session.zoom = state_.view.scale;
    session.rate =
        static_cast<int>(std::find(kFrameRates.begin(), kFrameRates.end(), state_.player.rate()) -
                         kFrameRates.begin());
    session.loops = state_.player.loops();
    session.viewer = state_.choices.viewer;
    session.viewer.shift = {};
    session.effects = state_.choices.effects;
    session.scopes = state_.choices.scopes;
    session.controller = textOf(state_.controller);
    session.stillType = state_.stillType;
    session.effect = state_.effects.chosen == EffectPanel::kNone ? Text() : state_.effects.name();
    if (session == session_)
        return;
    session_ = session;
    saveTimer_ = window_->createTimer(kSaveMs);
}

void Editor::saveSession()
{
    saveTimer_.reset();
    writeSession(settings_, session_);
    settings_->persist();
}

void Editor::quitAfter(int seconds)
{
    if (window_)
        quitTimer_ = window_->createTimer(static_cast<unsigned int>(seconds) * 1000u);
}

std::vector<int> Editor::boundaries(Focus field, const Text& text)
{
    std::vector<int> positions;
    resources_->font(typeOf(field))->measure(text, positions);
    return positions;
}

int titleWidth(const EditorState& state, Resources& resources)
{
    const Text& title = state.titleField.text;
    return static_cast<int>(
        std::ceil(resources.font(Theme::kProject)->measure(title).x / resources.scale()));
}

// The layout needs the width of the title as it is being typed; the window's own follows when it is
// kept.
void Editor::keepTitle()
{
    if (!(state_.titleField.text == measuredTitle_)) {
        measuredTitle_ = state_.titleField.text;
        state_.choices.titleWidth = titleWidth(state_, *resources_);
    }
    if (!(state_.project.title == windowTitle_)) {
        windowTitle_ = state_.project.title;
        window_->setTitle(windowTitle_ + L" \u2013 Vantor");
    }
}

iEventHandler::eRC Editor::changed()
{
    state_.player.setLength(state_.project.length);
    if (state_.quitting)
        return eQuit;
    runErrands();
    keepController();
    keepViewer();
    if (window_) {
        keepSession();
        keepTitle();
        keepTimers();
        keepCursor();
        requestFrame();
    }
    return eContinue;
}

void Editor::keepTimers()
{
    if (!state_.player.playing()) {
        playTimer_.reset();
    } else if (!playTimer_) {
        playTimer_ = window_->createTimer(viewer_ ? kFollowTickMs : kPlayTickMs);
    }
    if (!state_.player.playing() && (viewer_ || playsWhenDrawn_))
        factsTimer_ = window_->createTimer(kFactsMs);
    if (!state_.editingText())
        caretTimer_.reset();
    else if (!caretTimer_)
        caretTimer_ = window_->createTimer(kCaretMs);
}

// Effects need GL, and what does without it says so.
void Editor::keepEffect()
{
    if (!viewer_) {
        state_.scopes.trouble = L"scopes need OpenGL";
        state_.effects.trouble =
            state_.effects.chosen == EffectPanel::kNone ? Text() : Text(L"effects need OpenGL");
        return;
    }
    effect_.follow(state_.effects);
    if (state_.effects.chosen == EffectPanel::kNone)
        effectTimer_.reset();
    else if (!effectTimer_ && window_)
        effectTimer_ = window_->createTimer(kEffectMs);
}

void Editor::keepViewer()
{
    keepEffect();
    if (viewer_) {
        state_.choices.ratio = viewer_->ratio() > 0.0 ? viewer_->ratio() : 1.0;
        viewer_->show(state_, layoutOf(state_), effect_.path());
        state_.shown = viewer_->facts();
        state_.scopes = viewer_->reading();
    } else if (state_.fullScreen && window_) {
        state_.fullScreen = false;
        state_.message = L"the picture cannot fill the screen without OpenGL";
    }
}

// Frames are shown by another thread: the last of them is counted when nothing happens here.
iEventHandler::eRC Editor::learnFacts()
{
    factsTimer_.reset();
    if (playsWhenDrawn_ && hasDrawn()) {
        playsWhenDrawn_ = false;
        state_.player.shuttle(1);
        return changed();
    }
    if (viewer_) {
        const ShownFrames before = state_.shown;
        state_.shown = viewer_->facts();
        const ScopeReading read = std::exchange(state_.scopes, viewer_->reading());
        if (!(state_.shown == before) || !(state_.scopes == read))
            requestFrame();
    }
    if (playsWhenDrawn_ || (viewer_ && !(viewer_->isSettled() && viewer_->isMeasured())))
        factsTimer_ = window_->createTimer(kFactsMs);
    return eContinue;
}

bool Editor::hasDrawn() const
{
    return !stores_->pictures.wantsMore() && !frameRequested_ &&
           (!viewer_ || (viewer_->isSettled() && viewer_->isMeasured()));
}

void Editor::keepCursor()
{
    const iMouseCursor::eStockCursor wanted = cursorFor(state_);
    if (wanted == cursor_)
        return;
    cursor_ = wanted;
    iWindowManager* manager = OS()->windowMgr();
    manager->setMouseCursor(manager->createMouseCursor(wanted));
}

// Several changes before the next turn of the event loop are drawn as one frame: the first posts a
// message, which arrives behind the events that are waiting already.
void Editor::requestFrame()
{
    if (frameRequested_ || !window_)
        return;
    frameRequested_ = true;
    window_->postUserMessage();
}

bool drawFrame(const EditorState& state, Resources& resources, Stores& stores,
               const Tq::Ptr<iGraphicPrimitivesRenderer>& renderer, int loads)
{
    stores.pictures.allowLoads(loads);
    Canvas canvas(resources, renderer);
    Scene scene{canvas, stores, state, layoutOf(state)};
    drawEditor(scene);
    return stores.pictures.wantsMore();
}

void Editor::draw(const Tq::Ptr<iGraphicPrimitivesRenderer>& renderer)
{
    if (renderer && drawFrame(state_, *resources_, *stores_, renderer, kLoadsPerFrame))
        requestFrame();
}

} // namespace Vantor
