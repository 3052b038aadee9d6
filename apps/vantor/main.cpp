#include "CommandLine.h"
#include "Editor.h"
#include "Effects/LiveEffect.h"
#include "FrameWriter.h"
#include "Model/Timecode.h"
#include "common/GraphicsReport.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Files/iFileManager.h>
#include <OS/Files/iShell.h>
#include <OS/Threads/iThreadManager.h>
#include <OS/Windowing/iWindowManager.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace Vantor {

namespace {

constexpr int kBadArguments = 2;
constexpr int kAlreadyRunning = 3;
constexpr double kNoticeMs = 2000.0;

int fail(const Text& what, int status)
{
    std::fprintf(stderr, "vantor: %s\n", OS()->utils()->toUTF8(what).c_str());
    return status;
}

/// Where sample media may be: beside the installed program, and in the source tree.
std::vector<Text> sampleFolders()
{
    return {OS()->fileMgr()->getAppPath() + L"../share/vantor/media/",
            OS()->utils()->fromUTF8(VANTOR_SOURCE_MEDIA, -1)};
}

/// The first that is there; empty when none is.
Text sampleFolder()
{
    for (const Text& folder : sampleFolders())
        if (OS()->fileMgr()->fileExists(folder))
            return folder;
    return {};
}

/// A path from the root, so that it means the same in the next run.
Text fromRoot(const Text& path)
{
    std::error_code error;
    const std::string here = std::filesystem::current_path(error).string();
    return path.startsWith(L'/') || error ? path
                                          : OS()->utils()->fromUTF8(here.c_str(), -1) + L"/" + path;
}

Text titleOf(const Text& folder)
{
    Text path = folder;
    while (path.size() > 1 && path.endsWith(L'/'))
        path.pop_back();
    const Text name = nameOf(path);
    return name == L"." || name == L".." ? Text() : name;
}

/// Tells the user, who may have clicked an icon and sees no terminal, for two seconds.
void showAlreadyRunning()
{
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY"))
        return;
    iWindowManager* manager = OS()->windowMgr();
    Tq::Ptr<iStatusWindow> status = manager->createStatusWindow();
    if (status) {
        status->setTitle(L"Vantor");
        status->setMessage(L"Vantor is already running.");
        status->setProgress(0.0f); // nothing is under way
        status->show();
        const double end = OS()->utils()->timeNow() + kNoticeMs;
        while (OS()->utils()->timeNow() < end) {
            manager->despatchPendingEvents();
            OS()->threadMgr()->sleep(20);
        }
    }
    status.reset();
    manager->shutdown();
}

/// The pictures of a folder, or the sample media. @return what went wrong, or nothing
Text fillBin(MediaBin& bin, const Text& folder)
{
    const Text from = folder.empty() ? sampleFolder() : folder;
    if (!from.empty() && !addFolder(bin, from))
        return L"cannot read the folder \"" + from + L"\"";
    bin.add(testClip());
    return {};
}

EditorState stateFor(MediaBin bin, const Text& folder, const Point& size, double zoom)
{
    EditorState state = makeEditorState(std::move(bin), titleOf(folder));
    state.size = size;
    if (zoom > 0.0)
        state.view.scale = zoom;
    else // the same stretch of time at every size of the window
        state.view.scale *= static_cast<double>(layoutOf(state).lanes.width()) / 1144.0;
    return state;
}

void useSession(EditorState& state, const Session& session)
{
    state.player.setRate(kFrameRates[static_cast<std::size_t>(session.rate)]);
    state.player.setLoop(session.loops);
    state.choices.viewer = session.viewer;
    state.choices.effects = session.effects;
    state.choices.scopes = session.scopes;
    state.effects.choose(session.effect);
    state.controller = controllerOf(session.controller);
    state.stillType = session.stillType;
}

/// The effect of the command line goes before the others, and is chosen.
void useEffect(EditorState& state, const Text& file)
{
    if (file.empty())
        return;
    state.effects.files.insert(state.effects.files.begin(), {fromRoot(file), effectNameOf(file)});
    state.effects.chosen = 0;
}

void goTo(EditorState& state, const Text& time)
{
    if (const std::optional<int> frame = Timecode::parse(time, state.player.rate())) {
        state.player.seek(*frame);
        state.view.reveal(state.player.frame(), layoutOf(state).lanes.width());
    }
}

void tellFrames(const ShownFrames& shown)
{
    std::printf("vantor: %llu frames presented, %llu dropped, %.1f a second, by %s\n",
                static_cast<unsigned long long>(shown.presented),
                static_cast<unsigned long long>(shown.dropped), shown.rate,
                shown.byGL ? "OpenGL" : "Qt");
}

int runLoop(EditorState state, const Session& session, const Tq::Ptr<iSettings>& settings,
            const CommandLine& line)
{
    iWindowManager* manager = OS()->windowMgr();
    Tq::Ptr<iRootWindow> window = manager->createRootWindow();
    if (!window)
        return fail(L"no window could be made", EXIT_FAILURE);
    Tq::Ptr<Editor> editor(new Editor(std::move(state)));
    editor->allowFiles(sampleFolders(), OS()->shell()->getFolderLocation(iShell::ePictures));
    editor->remember(settings, session);
    iRootWindow::InitArgs args;
    args.eventHandler = editor;
    realizeAt(*window, args, session.place);
    editor->attach(window);
    if (line.seconds > 0)
        editor->quitAfter(line.seconds);
    if (line.play)
        editor->playWhenDrawn();

    const int status = manager->startEventLoop();
    // The two hold each other; fonts and pictures go before the application does.
    editor->detach();
    if (line.play)
        tellFrames(editor->state().shown);
    window->setEventHandler(nullptr);
    args.eventHandler.reset();
    editor.reset();
    window.reset();
    manager->shutdown();
    return status;
}

int runWindow(const CommandLine& line)
{
    const Tq::Ptr<iObject> claim = OS()->shell()->claimSingleInstance();
    if (!claim) {
        const int status = fail(L"Vantor is already running", kAlreadyRunning);
        showAlreadyRunning();
        return status;
    }
    const Tq::Ptr<iSettings> settings = OS()->shell()->getSettings(iSettings::eUser);
    Session session = readSession(settings);
    if (line.sizeGiven) {
        session.place.size = line.size;
        session.place.maximised = session.place.fullScreen = false;
    }
    if (!line.folder.empty())
        session.folder = fromRoot(line.folder);
    MediaBin bin;
    Text wrong = fillBin(bin, session.folder);
    if (!wrong.empty() && !line.folder.empty())
        return fail(wrong, EXIT_FAILURE);
    const Text gone = wrong.empty() ? Text() : session.folder;
    if (!gone.empty()) { // remembered, but not there any more
        session.folder.clear();
        wrong = fillBin(bin, Text());
        if (!wrong.empty())
            return fail(wrong, EXIT_FAILURE);
    }
    EditorState state = stateFor(std::move(bin), session.folder, session.place.size, session.zoom);
    if (!gone.empty())
        state.message = gone + L" cannot be read any more";
    state.effects.files = findEffects();
    useSession(state, session);
    useEffect(state, line.effect);
    if (line.controller.kind != ControllerPlace::Kind::eNone)
        state.controller = line.controller;
    goTo(state, line.at);
    return runLoop(std::move(state), session, settings, line);
}

int runFrame(const CommandLine& line)
{
    MediaBin bin;
    const Text wrong = fillBin(bin, line.folder);
    if (!wrong.empty())
        return fail(wrong, EXIT_FAILURE);
    EditorState state = stateFor(std::move(bin), line.folder, line.size, 0.0);
    state.effects.files = findEffects();
    useEffect(state, line.effect);
    goTo(state, line.at);
    const bool grabs = !line.grabFile.empty();
    if (grabs)
        state.controller = line.controller;
    const Text failure = grabs ? grabFrame(std::move(state), line.grabFile)
                               : writeFrame(std::move(state), line.scale, line.frameFile);
    return failure.empty() ? EXIT_SUCCESS : fail(failure, EXIT_FAILURE);
}

int run(int count, const char* const* arguments)
{
    CommandLine line;
    const Text wrong = parse(count, arguments, line);
    if (!wrong.empty())
        return fail(wrong + L" (--help lists the options)", kBadArguments);
    if (line.help || line.version) {
        std::fputs(line.help ? kHelp : "vantor " VANTOR_VERSION "\n", stdout);
        return EXIT_SUCCESS;
    }

    if (line.glReport) {
        App::printGraphicsReport(line.json);
        return EXIT_SUCCESS;
    }
    return line.frameFile.empty() && line.grabFile.empty() ? runWindow(line) : runFrame(line);
}

} // namespace

} // namespace Vantor

int main(int argc, char** argv)
{
    return Vantor::run(argc - 1, argv + 1);
}
