// What the window tells the editor.
#include "Editor.h"

namespace Vantor {

iEventHandler::eRC Editor::handleMouse(const MouseEvent& event)
{
    switch (event.kind) {
    case MouseEvent::eLeftDown:
        interaction_.press(event.position, event.modifiers, event.time);
        break;
    case MouseEvent::eLeftUp:
        interaction_.release(event.position);
        break;
    case MouseEvent::eMove: {
        const Hit before = state_.hover;
        interaction_.move(event.position);
        if (state_.drag.kind == Drag::Kind::eNone && state_.hover == before)
            return eContinue;
        break;
    }
    case MouseEvent::eWheel:
        interaction_.wheel(event.position, event.wheelDirection, event.modifiers);
        break;
    default:
        return eContinue;
    }
    return changed();
}

iEventHandler::eRC Editor::handleKey(const KeyEvent& event)
{
    // The release of a modifier repeats the last key: only presses count.
    if (!event.pressed)
        return eContinue;
    interaction_.key(event.code, event.modifiers);
    return changed();
}

iEventHandler::eRC Editor::handlePaint(const PaintEvent&)
{
    if (window_)
        draw(window_->getPrimitivesRenderer(true));
    return eContinue;
}

// Frames that were asked for, and what a controller says.
iEventHandler::eRC Editor::handleUserMessage(const UserMessage&)
{
    if (commands_->received() != heard_) {
        obeyController();
        frameRequested_ = false;
        return changed();
    }
    frameRequested_ = false;
    if (window_)
        draw(window_->getPrimitivesRenderer(true));
    return eContinue;
}

iEventHandler::eRC Editor::handleWindowEvent(const WindowEvent& event)
{
    switch (event.kind) {
    case WindowEvent::eCloseRequested:
        state_.quitting = true;
        break;
    case WindowEvent::eHidden:
        interaction_.cancelDrag();
        state_.hover = {};
        break;
    case WindowEvent::eResized:
        if (window_)
            interaction_.resize(window_->getSize());
        break;
    default:
        break;
    }
    return changed();
}

bool Editor::isTick(const Tq::Ptr<iTimer>& timer, const TimerEvent& event) const
{
    return timer && timer->getID() == event.timerID;
}

void Editor::followClock()
{
    Transport& player = state_.player;
    const double now = player.now();
    if (viewer_)
        return;
    drawn_.show(player.run(), player.ticksAt(now), now, player.playing());
    state_.shown = {drawn_.shown(), drawn_.dropped(), drawn_.rate(), false};
}

iEventHandler::eRC Editor::handleTimer(const TimerEvent& event)
{
    if (isTick(quitTimer_, event)) {
        state_.quitting = true;
    } else if (isTick(saveTimer_, event)) {
        saveSession();
        return eContinue;
    } else if (isTick(factsTimer_, event)) {
        return learnFacts();
    } else if (isTick(lightTimer_, event)) {
        lightTimer_.reset();
        state_.controllerLit = false;
    } else if (isTick(effectTimer_, event)) {
        const LiveEffect::Path before = effect_.path();
        const Text trouble = state_.effects.trouble;
        keepEffect();
        if (effect_.path() == before && state_.effects.trouble == trouble)
            return eContinue;
    } else if (isTick(caretTimer_, event)) {
        state_.caretShown = !state_.caretShown;
    } else if (isTick(playTimer_, event) || !window_) {
        if (!state_.player.update())
            return eContinue;
        state_.view.reveal(state_.player.frame(), layoutOf(state_).lanes.width());
        followClock();
    } else {
        return eContinue;
    }
    return changed();
}

iEventHandler::eRC Editor::handleFileDrop(const LightweightString<wchar_t>& path)
{
    stores_->pictures.forgetMissing();
    interaction_.dropFile(path);
    return changed();
}

} // namespace Vantor
