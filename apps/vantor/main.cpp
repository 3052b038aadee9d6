#include "CommandLine.h"
#include "Editor.h"
#include "FrameWriter.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Files/iFileManager.h>
#include <OS/Windowing/iWindowManager.h>

#include <cstdio>
#include <cstdlib>

namespace Vantor {

namespace {

constexpr int kBadArguments = 2;

int fail(const Text& what, int status)
{
    std::fprintf(stderr, "vantor: %s\n", OS()->utils()->toUTF8(what).c_str());
    return status;
}

/// Where the sample media are: beside the installed program, else in the source tree; empty when
/// neither is there.
Text sampleFolder()
{
    iFileManager* files = OS()->fileMgr();
    const Text installed = files->getAppPath() + L"../share/vantor/media/";
    if (files->fileExists(installed))
        return installed;
    const Text source = OS()->utils()->fromUTF8(VANTOR_SOURCE_MEDIA, -1);
    return files->fileExists(source) ? source : Text();
}

Text titleOf(const Text& folder)
{
    Text path = folder;
    while (path.size() > 1 && path.endsWith(L'/'))
        path.pop_back();
    const Text name = nameOf(path);
    return name == L"." || name == L".." ? Text() : name;
}

int runWindow(EditorState state, int seconds)
{
    iWindowManager* manager = OS()->windowMgr();
    Tq::Ptr<iRootWindow> window = manager->createRootWindow();
    if (!window)
        return fail(L"no window could be made", EXIT_FAILURE);
    Tq::Ptr<Editor> editor(new Editor(std::move(state)));
    iRootWindow::InitArgs args;
    args.size = editor->state().size;
    args.position = {80, 60};
    args.titleBar = true;
    args.eventHandler = editor;
    window->realize(args);
    editor->attach(window);
    if (seconds > 0)
        editor->quitAfter(seconds);

    const int status = manager->startEventLoop();
    // The two hold each other; fonts and pictures go before the application does.
    editor->detach();
    window->setEventHandler(nullptr);
    args.eventHandler.reset();
    editor.reset();
    window.reset();
    manager->shutdown();
    return status;
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

    MediaBin bin;
    const Text folder = line.folder.empty() ? sampleFolder() : line.folder;
    if (!folder.empty() && !addFolder(bin, folder))
        return fail(L"cannot read the folder \"" + folder + L"\"", EXIT_FAILURE);
    EditorState state = makeEditorState(std::move(bin), titleOf(line.folder));
    state.size = line.size;
    // The same stretch of time at every size of the window.
    state.view.scale *= static_cast<double>(layoutOf(state).lanes.width()) / 1144.0;

    if (line.frameFile.empty())
        return runWindow(std::move(state), line.seconds);
    const Text failure = writeFrame(std::move(state), line.scale, line.frameFile);
    return failure.empty() ? EXIT_SUCCESS : fail(failure, EXIT_FAILURE);
}

} // namespace

} // namespace Vantor

int main(int argc, char** argv)
{
    return Vantor::run(argc - 1, argv + 1);
}
