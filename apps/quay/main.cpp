#include "Board.h"
#include "CommandLine.h"
#include "FrameWriter.h"
#include "common/GraphicsReport.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Files/iShell.h>
#include <OS/Windowing/iWindowManager.h>

#include <cstdio>
#include <cstdlib>

namespace Quay {

namespace {

constexpr int kBadArguments = 2;
const Point kFirstSize{1280, 800};

int fail(const Text& what, int status)
{
    std::fprintf(stderr, "quay: %s\n", OS()->utils()->toUTF8(what).c_str());
    return status;
}

int runWindow(const CommandOptions& options)
{
    iWindowManager* manager = OS()->windowMgr();
    Tq::Ptr<iRootWindow> window = manager->createRootWindow();
    if (!window)
        return fail(L"no window could be made", EXIT_FAILURE);
    const Tq::Ptr<iSettings> settings = OS()->shell()->getSettings(iSettings::eUser);
    WindowPlace place =
        readPlace(settings, {kFirstSize, {80, 60}}, Layout::kSmallest, Layout::kLargest);
    if (options.size.x > 0)
        place = {options.size, place.position};
    BoardState state;
    state.size = place.size;
    state.preferences = readPreferences(settings);
    Tq::Ptr<Board> board(new Board(std::move(state)));
    iRootWindow::InitArgs args;
    args.eventHandler = board;
    realizeAt(*window, args, place);
    board->attach(window, settings, place);
    if (options.seconds > 0)
        board->quitAfter(options.seconds);

    const int status = manager->startEventLoop();
    // The two hold each other; fonts and pictures go before the application does.
    board->detach();
    window->setEventHandler(nullptr);
    args.eventHandler.reset();
    board.reset();
    window.reset();
    manager->shutdown();
    return status;
}

int runFrame(const CommandOptions& options)
{
    BoardState state;
    state.size = options.size.x > 0 ? options.size : kFirstSize;
    const int milliseconds = options.seconds > 0 ? options.seconds * 1000 : 1000;
    state.data = watch(milliseconds);
    state.remake();
    const bool grabs = !options.grabFile.empty();
    const Text failure = grabs ? grabFrame(std::move(state), options.grabFile)
                               : writeFrame(state, options.scale, options.frameFile);
    return failure.empty() ? EXIT_SUCCESS : fail(failure, EXIT_FAILURE);
}

int run(int count, const char* const* arguments)
{
    CommandOptions options;
    const Text wrong = parse(count, arguments, options);
    if (!wrong.empty())
        return fail(wrong + L" (--help lists the options)", kBadArguments);
    if (options.help || options.version) {
        std::fputs(options.help ? kHelp : "quay " QUAY_VERSION "\n", stdout);
        return EXIT_SUCCESS;
    }
    if (options.glReport) {
        App::printGraphicsReport(options.json);
        return EXIT_SUCCESS;
    }
    return options.frameFile.empty() && options.grabFile.empty() ? runWindow(options)
                                                                 : runFrame(options);
}

} // namespace

} // namespace Quay

int main(int argc, char** argv)
{
    return Quay::run(argc - 1, argv + 1);
}
