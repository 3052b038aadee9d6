#include "View/Interaction.h"

#include <OS/Windowing/KeyCodes.h>

#include <algorithm>
#include <iterator>

namespace Vantor {

namespace {

constexpr double kZoomStep = 1.25;
constexpr std::size_t kUndoSteps = 200;

} // namespace

void Interaction::focusOn(Focus focus, bool byKeyboard)
{
    state_.focus = focus;
    state_.focusShown = byKeyboard;
    state_.caretShown = true;
}

void Interaction::moveFocus(int direction)
{
    int next = static_cast<int>(state_.focus);
    leaveField(true);
    for (int i = 0; i < kFocusCount; ++i) {
        next = (next + direction + kFocusCount) % kFocusCount;
        if (state_.canFocus(static_cast<Focus>(next)))
            break;
    }
    focusOn(static_cast<Focus>(next), true);
    if (state_.editingText())
        state_.activeField().selectAll();
}

void Interaction::leaveField(bool keep)
{
    if (state_.focus == Focus::eTitle) {
        const Text title = state_.titleField.text.trimmed();
        if (keep && !title.empty() && !(title == state_.project.title)) {
            const Project before = state_.project;
            state_.project.title = title;
            remember(before);
        }
        state_.titleField.set(state_.project.title);
    }
    if (state_.editingText()) {
        state_.activeField().anchor = state_.activeField().caret;
        focusOn(Focus::eTimeline, false);
    }
}

void Interaction::key(std::uint32_t code, std::uint32_t modifiers)
{
    if (code == Key::eNone)
        return;
    // What is held must stay what it is until it is let go.
    if (state_.drag.kind != Drag::Kind::eNone && code != Key::eEscape)
        return;
    state_.message.clear();
    if (state_.fullScreen) {
        if (code == Key::eEscape || code == Key::eReturn)
            state_.fullScreen = false;
        else if (!viewerKey(code))
            transportKey(code, modifiers);
        return;
    }
    if (code == Key::eTab) {
        moveFocus((modifiers & Key::eShift) != 0 ? -1 : 1);
        return;
    }
    if (state_.editingText()) {
        if (!fieldKey(code, modifiers))
            commandKey(code, modifiers);
        settle();
        return;
    }
    if (code == Key::eEscape) {
        if (state_.drag.kind != Drag::Kind::eNone)
            cancelDrag();
        else
            state_.quitting = true;
        return;
    }
    if (commandKey(code, modifiers))
        return;
    if (state_.focus == Focus::eBin && binKey(code))
        return;
    if (state_.focus == Focus::eEffects && effectsKey(code, modifiers))
        return;
    const int button = static_cast<int>(state_.focus) - static_cast<int>(Focus::eBackwards);
    const bool onButton = button >= 0 && button < Layout::kButtons;
    if (onButton && (code == Key::eSpace || code == Key::eReturn))
        pressButton(button);
    else if (code == Key::eReturn)
        state_.fullScreen = true;
    else if (code == Key::eDelete || code == Key::eBackspace)
        deleteClip();
    else if (!viewerKey(code))
        transportKey(code, modifiers);
}

bool Interaction::fieldKey(std::uint32_t code, std::uint32_t modifiers)
{
    state_.caretShown = true;
    if (code == Key::eEscape || code == Key::eReturn) {
        leaveField(code == Key::eReturn);
        return true;
    }
    if (!state_.activeField().key(code, modifiers))
        return false;
    if (state_.focus == Focus::eFilter) {
        state_.bin.filter = state_.filterField.text;
        state_.bin.scroll = 0;
    }
    return true;
}

bool Interaction::commandKey(std::uint32_t code, std::uint32_t modifiers)
{
    if (code == Key::eF1 + 1) { // F2: rename
        leaveField(true);
        focusOn(Focus::eTitle, true);
        state_.titleField.selectAll();
        return true;
    }
    if ((modifiers & Key::eControl) == 0)
        return false;
    switch (code) {
    case 'z':
    case 'Z':
        if ((modifiers & Key::eShift) != 0)
            redo();
        else
            undo();
        return true;
    case 'y':
        redo();
        return true;
    case 'e':
    case 'E':
        leaveField(true);
        state_.frameToExport = true;
        return true;
    case 'g':
    case 'G':
        leaveField(true);
        state_.screenToGrab = true;
        return true;
    case 't':
    case 'T':
        ++state_.stillType;
        return true;
    case 'l':
    case 'L':
        state_.player.setLoop(!state_.player.loops());
        return true;
    case 'f':
        leaveField(true);
        focusOn(Focus::eFilter, true);
        state_.filterField.selectAll();
        return true;
    default:
        return false;
    }
}

bool Interaction::binKey(std::uint32_t code)
{
    const std::vector<int> visible = state_.bin.visible();
    // In the bin the key never reaches for the timeline's clips.
    if (code == Key::eDelete) {
        if (std::find(visible.begin(), visible.end(), state_.bin.selected) != visible.end())
            state_.itemToRemove = state_.bin.selected;
        return true;
    }
    if (visible.empty())
        return false;
    const Layout layout = layoutOf(state_);
    const auto found = std::find(visible.begin(), visible.end(), state_.bin.selected);
    const int place =
        found == visible.end() ? -1 : static_cast<int>(std::distance(visible.begin(), found));
    int next = place;
    switch (code) {
    case Key::eLeft:
        next = place - 1;
        break;
    case Key::eRight:
        next = place + 1;
        break;
    case Key::eUp:
        next = place - layout.columns;
        break;
    case Key::eDown:
        next = place + layout.columns;
        break;
    case Key::eReturn:
        if (place >= 0)
            insertPicture(visible[static_cast<std::size_t>(place)], Track::ePicture,
                          state_.player.frame());
        return true;
    default:
        return false;
    }
    const int last = static_cast<int>(visible.size()) - 1;
    if (place < 0)
        next = 0;
    else if (next < 0 || next > last)
        next = place;
    state_.bin.selected = visible[static_cast<std::size_t>(next)];
    const Rect tile = layout.tile(next, state_.bin.scroll);
    state_.bin.scroll -= std::max(0, layout.tiles.top + 12 - tile.top);
    state_.bin.scroll += std::max(0, tile.bottom - layout.tiles.bottom);
    settle();
    return true;
}

void Interaction::deleteClip()
{
    if (state_.selectedClip == Project::kNone)
        return;
    const Project before = state_.project;
    state_.project.remove(state_.selectedClip);
    state_.selectedClip = Project::kNone;
    remember(before);
}

void Interaction::transportKey(std::uint32_t code, std::uint32_t modifiers)
{
    Transport& player = state_.player;
    const int stride = (modifiers & Key::eShift) != 0 ? player.rate().nominal() : 1;
    switch (code) {
    case Key::eSpace:
        player.toggle();
        break;
    case 'j':
    case 'J':
        player.shuttle(-1);
        break;
    case 'k':
    case 'K':
        player.stop();
        break;
    case 'l':
    case 'L':
        player.shuttle(1);
        break;
    case Key::eLeft:
        player.step(-stride);
        break;
    case Key::eRight:
        player.step(stride);
        break;
    case Key::eHome:
        player.step(-player.length());
        break;
    case Key::eEnd:
        player.step(player.length());
        break;
    case 'x':
    case 'X':
        changeEntrance();
        return;
    case Key::eUp:
        player.seek(state_.project.previousEdge(player.frame()));
        break;
    case Key::eDown:
        player.seek(state_.project.nextEdge(player.frame()));
        break;
    case '+':
    case '-': {
        const Layout layout = layoutOf(state_);
        const double x = state_.view.xOf(player.frame(), layout.lanes.left);
        state_.view.zoomAround(x, layout.lanes.left, code == '+' ? kZoomStep : 1.0 / kZoomStep);
        break;
    }
    default:
        return;
    }
    revealPlayhead();
}

void Interaction::revealPlayhead()
{
    state_.view.reveal(state_.player.frame(), layoutOf(state_).lanes.width());
}

void Interaction::remember(const Project& before)
{
    state_.done.push_back(before);
    if (state_.done.size() > kUndoSteps)
        state_.done.erase(state_.done.begin());
    state_.undone.clear();
}

void Interaction::undo()
{
    if (state_.done.empty())
        return;
    state_.undone.push_back(state_.project);
    state_.project = state_.done.back();
    state_.done.pop_back();
    afterProjectChange();
}

void Interaction::redo()
{
    if (state_.undone.empty())
        return;
    state_.done.push_back(state_.project);
    state_.project = state_.undone.back();
    state_.undone.pop_back();
    afterProjectChange();
}

void Interaction::afterProjectChange()
{
    state_.drag = {};
    state_.selectedClip = Project::kNone;
    state_.titleField.set(state_.project.title);
    state_.player.setLength(state_.project.length);
}

} // namespace Vantor
