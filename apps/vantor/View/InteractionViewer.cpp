#include "View/Interaction.h"
#include "View/ViewerGeometry.h"

#include <algorithm>

namespace Vantor {

// A picture that is larger than the screen is held by the hand; twice shows it alone.
void Interaction::pressViewer(const Point& point, bool twice)
{
    focusOn(Focus::eTimeline, false);
    state_.selectedClip = Project::kNone;
    const Layout layout = layoutOf(state_);
    if (twice && layout.screen.contains(point)) {
        state_.fullScreen = true;
        return;
    }
    if (layout.picture.intersection(layout.screen) == layout.picture)
        return;
    startDrag(Drag::Kind::eShift, 0, 0, point);
    shiftBefore_ = state_.choices.viewer.shift;
}

void Interaction::pressChip(int chip)
{
    ViewerChoices& viewer = state_.choices.viewer;
    switch (static_cast<ViewerChip>(chip)) {
    case ViewerChip::eLoop:
        state_.player.setLoop(!state_.player.loops());
        break;
    case ViewerChip::eSafeAreas:
        viewer.safeAreas = !viewer.safeAreas;
        break;
    case ViewerChip::eTimeCode:
        viewer.timeCode = !viewer.timeCode;
        break;
    case ViewerChip::eFrameNumber:
        viewer.frameNumber = !viewer.frameNumber;
        break;
    case ViewerChip::eRate:
        changeRate(1, true);
        break;
    case ViewerChip::eZoom:
        zoomViewer(static_cast<ViewerZoom>((static_cast<int>(viewer.zoom) + 1) % kViewerZooms));
        break;
    case ViewerChip::eEffects:
        state_.choices.effects = !state_.choices.effects;
        if (!state_.canFocus(state_.focus))
            focusOn(Focus::eTimeline, false);
        break;
    case ViewerChip::eScopes:
        state_.choices.scopes = !state_.choices.scopes;
        break;
    case ViewerChip::eFullScreen:
        state_.fullScreen = true;
        break;
    }
}

void Interaction::changeRate(int by, bool around)
{
    const int count = static_cast<int>(kFrameRates.size());
    const auto found = std::find(kFrameRates.begin(), kFrameRates.end(), state_.player.rate());
    const int now = static_cast<int>(found - kFrameRates.begin());
    const int next = around ? (now + by + count) % count : std::clamp(now + by, 0, count - 1);
    state_.player.setRate(kFrameRates[static_cast<std::size_t>(next)]);
}

void Interaction::zoomViewer(ViewerZoom zoom)
{
    state_.choices.viewer.zoom = zoom;
    const Layout layout = layoutOf(state_);
    state_.choices.viewer.shift =
        soundShift(layout.screen, state_.choices.ratio, state_.choices.viewer);
}

void Interaction::dragShift(const Point& point)
{
    const Point& from = state_.drag.from;
    state_.choices.viewer.shift = {shiftBefore_.x + point.x - from.x,
                                   shiftBefore_.y + point.y - from.y};
}

bool Interaction::viewerKey(std::uint32_t code)
{
    ViewerChoices& viewer = state_.choices.viewer;
    switch (code) {
    case 'f':
    case 'F':
        zoomViewer(ViewerZoom::eFit);
        return true;
    case '5':
        zoomViewer(ViewerZoom::eHalf);
        return true;
    case '1':
        zoomViewer(ViewerZoom::eFull);
        return true;
    case '2':
        zoomViewer(ViewerZoom::eDouble);
        return true;
    case 's':
    case 'S':
        viewer.safeAreas = !viewer.safeAreas;
        return true;
    case 't':
    case 'T':
        viewer.timeCode = !viewer.timeCode;
        return true;
    case 'n':
    case 'N':
        viewer.frameNumber = !viewer.frameNumber;
        return true;
    case 'e':
    case 'E':
        pressChip(static_cast<int>(ViewerChip::eEffects));
        return true;
    case 'w':
    case 'W':
        pressChip(static_cast<int>(ViewerChip::eScopes));
        return true;
    case ',':
    case '.':
        chooseEffect(code == '.' ? 1 : -1);
        return true;
    case '[':
    case ']':
        changeRate(code == ']' ? 1 : -1, false);
        return true;
    default:
        return false;
    }
}

} // namespace Vantor
