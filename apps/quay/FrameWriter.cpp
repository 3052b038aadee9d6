#include "FrameWriter.h"

#include "Board.h"
#include "Drawing/Scene.h"
#include "Model/Gather.h"
#include "common/PictureFile.h"
#include "common/ScreenGrab.h"

#include <OS.h>
#include <OS/Threads/iThreadManager.h>

#include <algorithm>

namespace Quay {

namespace {

constexpr int kReadingMs = 50; ///< the kernel counts in steps of 10 ms

} // namespace

BoardData watch(int milliseconds)
{
    // Without a window nothing else has asked for the application that knows the monitors.
    Resources(1.0).font(Theme::kFact);
    BoardData data;
    data.monitors = gatherMonitors();
    data.settings = gatherSettings();
    data.volumes = gatherVolumes({});
    data.system = gatherSystem();
    gatherSerialPorts(data.serial);
    gatherMidi(data.midi);
    Meters meters;
    meters.read(data);
    const int intervalMs = std::max(kReadingMs, milliseconds / static_cast<int>(History::kLength));
    for (int elapsed = intervalMs; elapsed <= milliseconds; elapsed += intervalMs) {
        OS()->threadMgr()->sleep(static_cast<unsigned int>(intervalMs));
        meters.read(data);
    }
    return data;
}

Text writeFrame(const BoardState& state, double scale, const Text& path)
{
    Resources resources(scale);
    const Tq::Ptr<iHostImage> surface = resources.blank({0, 0, state.size.x, state.size.y});
    if (!surface)
        return L"a picture of this size cannot be made";
    drawBoard(state, resources, surface->getPrimitivesRenderer(true));
    return savePicture(surface, path);
}

Text grabFrame(BoardState state, const Text& path)
{
    const Point size = state.size;
    Tq::Ptr<Board> board(new Board(std::move(state)));
    return grabWindow(
        size, board,
        [&](const Tq::Ptr<iRootWindow>& window) {
            board->attach(window, nullptr, {size, {0, 0}});
        },
        [&] { return board->hasDrawn(); },
        [&] {
            board->detach();
            board.reset();
        },
        path);
}

} // namespace Quay
