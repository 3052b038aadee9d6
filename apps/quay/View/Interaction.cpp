#include "View/Interaction.h"

#include <OS/Windowing/KeyCodes.h>

#include <algorithm>
#include <cstdlib>

namespace Quay {

namespace {

constexpr int kDragStart = 4; ///< pixels that a press may shake without becoming a drag
constexpr int kWheelStep = 56;
constexpr int kArrowStep = 40;

bool closeTo(const Point& a, const Point& b)
{
    return std::abs(a.x - b.x) <= kDragStart && std::abs(a.y - b.y) <= kDragStart;
}

} // namespace

void Interaction::press(const Point& point)
{
    const Layout layout = layoutOf(state_);
    const Hit hit = hitTest(state_, layout, point);
    state_.pointer = point;
    state_.pointerInside = true;
    state_.message.clear();
    state_.hover = state_.pressed = hit;
    state_.focusShown = false;
    state_.drag = {};
    if (hit.area == Area::eHeader)
        state_.drag = {Drag::Kind::ePanel, hit.panel, 0, point, false};
    if (hit.area == Area::eScrollBar) {
        const Rect bar = layout.scrollBar();
        const bool onBar = point.y >= bar.top && point.y < bar.bottom;
        state_.drag = {Drag::Kind::eScrollBar, -1, onBar ? point.y - bar.top : bar.height() / 2,
                       point, true};
        move(point);
    }
    if (hit.area == Area::eHeader || hit.area == Area::eAction)
        state_.focus = hit;
}

void Interaction::move(const Point& point)
{
    state_.pointer = point;
    state_.pointerInside = true;
    if (state_.drag.kind == Drag::Kind::eNone) {
        state_.hover = hitTest(state_, layoutOf(state_), point);
        return;
    }
    if (!closeTo(point, state_.drag.from))
        state_.drag.moved = true;
    if (state_.drag.kind == Drag::Kind::eScrollBar) {
        const Layout layout = layoutOf(state_);
        const int track = layout.board.height() - layout.scrollBar().height();
        const double at = point.y - state_.drag.grab - layout.board.top;
        if (track > 0)
            state_.scroll =
                static_cast<int>(std::clamp(at / track, 0.0, 1.0) * layout.scrollRange + 0.5);
        settle();
    }
}

void Interaction::release(const Point& point)
{
    state_.pointer = point;
    const Drag drag = state_.drag;
    const Hit pressed = state_.pressed;
    const int target = dropTarget(state_, layoutOf(state_));
    state_.drag = {};
    state_.pressed = {};
    if (drag.kind == Drag::Kind::ePanel && target >= 0)
        movePanel(drag.panel, target);
    const Hit hit = hitTest(state_, layoutOf(state_), point);
    if (pressed.area == Area::eAction && hit == pressed)
        act(actionOf(state_.panels[static_cast<std::size_t>(hit.panel)]
                         .rows[static_cast<std::size_t>(hit.row)],
                     hit.part));
    settle();
    state_.hover = hitTest(state_, layoutOf(state_), point);
}

void Interaction::cancelDrag()
{
    state_.drag = {};
    state_.pressed = {};
}

void Interaction::wheel(const Point& point, int direction)
{
    state_.scroll -= direction * kWheelStep;
    settle();
    state_.pointer = point;
    if (state_.drag.kind == Drag::Kind::eNone)
        state_.hover = hitTest(state_, layoutOf(state_), point);
}

void Interaction::act(const Action& action)
{
    switch (action.kind) {
    case Action::Kind::eOpenFolder:
        state_.folderToOpen = action.path;
        break;
    case Action::Kind::eSetUnits:
        state_.preferences.units = action.value == 1 ? Units::eDecimal : Units::eBinary;
        break;
    case Action::Kind::eSetRefresh:
        state_.preferences.refreshMs = action.value;
        break;
    case Action::Kind::eWatchPort:
        state_.portToWatch = action.path;
        break;
    case Action::Kind::eWatchMidi:
        state_.midiToWatch = action.path;
        break;
    case Action::Kind::eSetSpeed:
        state_.preferences.serialSpeed = action.value;
        break;
    case Action::Kind::eNone:
        return;
    }
    state_.remake();
}

void Interaction::movePanel(int from, int to)
{
    state_.preferences.order = movedOrder(state_.panels, from, to);
    state_.remake();
    state_.focus = {Area::eHeader, to};
}

void Interaction::key(std::uint32_t code, std::uint32_t modifiers)
{
    if (code == Key::eNone)
        return;
    // What is held must stay what it is until it is let go.
    if (state_.drag.kind != Drag::Kind::eNone && code != Key::eEscape)
        return;
    state_.message.clear();
    const bool back = (modifiers & Key::eShift) != 0;
    const bool carry = (modifiers & Key::eControl) != 0;
    const bool shown = state_.focusShown;
    const int panel = state_.focus.panel;
    const int last = static_cast<int>(state_.panels.size()) - 1;
    switch (code) {
    case Key::eEscape:
        if (state_.drag.kind != Drag::Kind::eNone)
            cancelDrag();
        else if (shown)
            state_.focusShown = false;
        else
            state_.quitting = true;
        break;
    case Key::eTab:
        focusNextPanel(back ? -1 : 1);
        break;
    case 'r':
    case 'R':
        state_.readAnew = true;
        break;
    case 'u':
    case 'U':
        act({Action::Kind::eSetUnits, {}, state_.preferences.units == Units::eBinary ? 1 : 0});
        break;
    case Key::eLeft:
    case Key::eRight: {
        const int direction = code == Key::eRight ? 1 : -1;
        if (shown && carry && panel >= 0) {
            movePanel(panel, std::clamp(panel + direction, 0, last));
            focusOn(state_.focus);
        } else if (shown) {
            focusNextPart(direction);
        }
        break;
    }
    case Key::eReturn:
    case Key::eSpace:
        if (const Row* row = focusedRow(); row && shown)
            act(actionOf(*row, state_.focus.part));
        break;
    case Key::eUp:
    case Key::eDown:
        if (shown) {
            focusNextRow(code == Key::eDown ? 1 : -1);
            break;
        }
        [[fallthrough]];
    default:
        scrollKey(code);
        break;
    }
    settle();
}

bool Interaction::scrollKey(std::uint32_t code)
{
    const Layout layout = layoutOf(state_);
    const int page = std::max(kArrowStep, layout.board.height() - kArrowStep);
    switch (code) {
    case Key::eUp:
        state_.scroll -= kArrowStep;
        return true;
    case Key::eDown:
        state_.scroll += kArrowStep;
        return true;
    case Key::ePageUp:
        state_.scroll -= page;
        return true;
    case Key::ePageDown:
        state_.scroll += page;
        return true;
    case Key::eHome:
        state_.scroll = 0;
        return true;
    case Key::eEnd:
        state_.scroll = layout.scrollRange;
        return true;
    default:
        return false;
    }
}

const Row* Interaction::focusedRow() const
{
    const Hit& focus = state_.focus;
    const auto panel = static_cast<std::size_t>(focus.panel);
    if (focus.area != Area::eAction || focus.panel < 0 || panel >= state_.panels.size())
        return nullptr;
    const std::vector<Row>& rows = state_.panels[panel].rows;
    const auto row = static_cast<std::size_t>(focus.row);
    return focus.row >= 0 && row < rows.size() ? &rows[row] : nullptr;
}

void Interaction::focusOn(const Hit& hit)
{
    state_.focus = hit;
    state_.focusShown = true;
    const Layout layout = layoutOf(state_);
    const Rect rect = rectOf(state_, layout, hit);
    // The top goes first where not all of it fits.
    state_.scroll += std::max(0, rect.bottom - layout.board.bottom);
    state_.scroll -=
        std::max(0, layout.board.top - rect.top + std::max(0, rect.bottom - layout.board.bottom));
}

void Interaction::focusNextPanel(int direction)
{
    const int count = static_cast<int>(state_.panels.size());
    if (count == 0)
        return;
    int next = direction > 0 ? 0 : count - 1;
    if (state_.focusShown && state_.focus.panel >= 0)
        next = (state_.focus.panel + direction + count) % count;
    focusOn({Area::eHeader, next});
}

void Interaction::focusNextRow(int direction)
{
    const auto panel = static_cast<std::size_t>(state_.focus.panel);
    if (state_.focus.panel < 0 || panel >= state_.panels.size())
        return;
    const std::vector<Row>& rows = state_.panels[panel].rows;
    int row = state_.focus.area == Area::eAction ? state_.focus.row : -1;
    for (row += direction; row >= 0 && row < static_cast<int>(rows.size()); row += direction) {
        const Row& candidate = rows[static_cast<std::size_t>(row)];
        if (actionCount(candidate) == 0)
            continue;
        const auto* choice = std::get_if<ChoiceRow>(&candidate);
        focusOn({Area::eAction, state_.focus.panel, row, choice ? std::max(0, choice->chosen) : 0});
        return;
    }
    if (row < 0)
        focusOn({Area::eHeader, state_.focus.panel});
}

void Interaction::focusNextPart(int direction)
{
    const Row* row = focusedRow();
    if (!row)
        return;
    Hit hit = state_.focus;
    hit.part = std::clamp(hit.part + direction, 0, std::max(0, actionCount(*row) - 1));
    focusOn(hit);
}

void Interaction::resize(const Point& size)
{
    state_.size = size;
    settle();
}

void Interaction::settle()
{
    if (state_.focus.area == Area::eAction) {
        const Row* row = focusedRow();
        if (!row || state_.focus.part >= actionCount(*row))
            state_.focus = {Area::eHeader, state_.focus.panel};
    }
    if (state_.focus.panel >= static_cast<int>(state_.panels.size()))
        state_.focus = {};
    state_.scroll = layoutOf(state_).scroll;
}

} // namespace Quay
