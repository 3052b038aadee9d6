// What the user asks for that is done outside of the state: files, the screen, controllers.
#include "Editor.h"
#include "FrameWriter.h"
#include "Model/Removal.h"
#include "common/PictureFile.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <algorithm>

namespace Vantor {

namespace {

constexpr unsigned int kLightMs = 150; ///< that a controller's light is on for

} // namespace

// Devices come and go: one that is asked for anew is looked for anew.
void Editor::keepController()
{
    if (state_.nextController) {
        state_.nextController = false;
        const std::vector<ControllerPlace> places = findControllers();
        const auto found = std::find(places.begin(), places.end(), state_.controller);
        const auto next = found == places.end() ? places.begin() : found + 1;
        state_.controller = next == places.end() ? ControllerPlace() : *next;
        if (places.empty())
            state_.message = L"no MIDI device or serial port is attached";
    }
    if (state_.controller == opened_)
        return;
    opened_ = state_.controller;
    controller_.reset();
    controller_ = Controller::open(
        opened_, [commands = commands_, window = window_](const ControlCommand* command) {
            commands->add(command);
            if (window)
                window->postUserMessage();
        });
    state_.controllerOpen = bool(controller_);
    if (!controller_ && opened_.kind != ControllerPlace::Kind::eNone)
        state_.message = opened_.name + L" cannot be opened";
}

void Editor::obeyController()
{
    using Kind = ControlCommand::Kind;
    Transport& player = state_.player;
    const std::vector<ControlCommand> commands = commands_->take();
    for (const ControlCommand& command : commands) {
        switch (command.kind) {
        case Kind::eJog:
            player.step(command.value);
            break;
        case Kind::eShuttle:
            player.playAt(command.value);
            break;
        case Kind::ePlay:
            player.toggle();
            break;
        case Kind::eStop:
            player.stop();
            break;
        case Kind::eForwards:
            player.shuttle(1);
            break;
        case Kind::eBackwards:
            player.shuttle(-1);
            break;
        }
    }
    if (!commands.empty())
        state_.view.reveal(player.frame(), layoutOf(state_).lanes.width());
    if (commands_->received() != heard_) {
        heard_ = commands_->received();
        state_.controllerLit = true;
        if (window_)
            lightTimer_ = window_->createTimer(kLightMs);
    }
}

void Editor::grabScreen()
{
    Text path;
    const Tq::Ptr<iHostImage> screen = OS()->mediaServices()->grabScreen({0, 0});
    const Text failure = screen ? saveNewPicture(screen, exportFolder_, L"Screen", path)
                                : Text(L"the screen cannot be grabbed here");
    if (failure.empty())
        interaction_.dropFile(path);
    else
        state_.message = failure;
}

void Editor::runErrands()
{
    const int item = state_.itemToRemove;
    const bool exports = state_.frameToExport;
    state_.itemToRemove = MediaBin::kNone;
    const bool grabs = state_.screenToGrab;
    state_.frameToExport = state_.screenToGrab = false;
    if (state_.stillType != stillTypeTold_) {
        stillTypeTold_ = state_.stillType;
        state_.message = L"frames are written as " + stillExtension(state_.stillType);
    }
    if (!filesAllowed_)
        return;
    if (item != MediaBin::kNone) {
        state_.message = removeItem(state_.bin, item, sampleFolders_);
        state_.pressed = {};
        interaction_.settle();
        state_.hover = hitTest(state_, layoutOf(state_), state_.pointer);
    }
    if (exports) {
        Text path;
        const Text failure = exportFrame(state_, exportFolder_, path);
        state_.message = failure.empty() ? L"frame written to " + path : failure;
    }
    if (grabs)
        grabScreen();
}

} // namespace Vantor
