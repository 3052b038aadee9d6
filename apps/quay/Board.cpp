#include "Board.h"

#include "Drawing/Scene.h"

#include <OS.h>
#include <OS/Files/iShell.h>
#include <OS/Windowing/iWindowManager.h>

namespace Quay {

namespace {

constexpr unsigned int kSeldomMs = 3000; ///< between two looks at what rarely changes
constexpr unsigned int kSaveMs = 800;    ///< without a further change before it is saved

iMouseCursor::eStockCursor cursorFor(const BoardState& state)
{
    return state.drag.kind == Drag::Kind::ePanel && state.drag.moved ? iMouseCursor::eSizeAll
                                                                     : iMouseCursor::eArrow;
}

} // namespace

Board::Board(BoardState state)
    : state_(std::move(state)), interaction_(state_), resources_(std::make_unique<Resources>(1.0)),
      keptPreferences_(state_.preferences)
{
    state_.remake();
}

void Board::attach(Tq::Ptr<iRootWindow> window, Tq::Ptr<iSettings> settings,
                   const WindowPlace& place)
{
    window_ = std::move(window);
    settings_ = std::move(settings);
    place_ = place;
    resources_ = std::make_unique<Resources>(window_);
    // The reader is gone before the window is.
    volumes_ =
        std::make_unique<VolumeReader>([target = window_.get()] { target->postUserMessage(); });
    serial_ =
        std::make_unique<SerialWatcher>([target = window_.get()] { target->postUserMessage(); });
    midi_ = std::make_unique<MidiWatcher>([target = window_.get()] { target->postUserMessage(); });
    oftenTimer_ = window_->createTimer(static_cast<unsigned int>(state_.preferences.refreshMs));
    seldomTimer_ = window_->createTimer(kSeldomMs);
    live_.start();
    readAll();
    window_->setTitle(state_.data.system.application);
    const Point size = window_->getSize();
    if (size.x > 0 && size.y > 0)
        interaction_.resize(size);
    changed();
}

void Board::detach()
{
    if (window_) {
        keepPlace();
        save();
    }
    live_.close();
    volumes_.reset();
    serial_.reset();
    midi_.reset();
    state_.data.midi.monitor = {};
    state_.data.serial.monitor = {};
    oftenTimer_.reset();
    seldomTimer_.reset();
    saveTimer_.reset();
    quitTimer_.reset();
    resources_ = std::make_unique<Resources>(1.0);
    settings_.reset();
    window_.reset();
}

void Board::quitAfter(int seconds)
{
    if (window_)
        quitTimer_ = window_->createTimer(static_cast<unsigned int>(seconds) * 1000u);
}

void Board::readAll()
{
    // What was told of the folders and of compute is asked for anew, too.
    state_.data.volumes.folders.clear();
    state_.data.volumes.compute = {};
    readSeldom();
    readOften();
}

void Board::readOften()
{
    meters_.read(state_.data);
    state_.remake();
}

void Board::readSeldom()
{
    state_.data.monitors = gatherMonitors();
    state_.data.settings = gatherSettings();
    state_.data.system = gatherSystem();
    gatherSerialPorts(state_.data.serial);
    gatherMidi(state_.data.midi);
    noticeUnplugging();
    if (volumes_)
        volumes_->ask(state_.data.volumes);
    state_.remake();
}

void Board::openFolder()
{
    const Text path = state_.folderToOpen;
    state_.folderToOpen.clear();
    if (path.empty() || !window_)
        return;
    state_.message = OS()->shell()->viewFolder(path)
                         ? path + L" is being shown"
                         : path + L" cannot be shown: the desktop has no program for it";
}

void Board::watchPort()
{
    const Text path = state_.portToWatch;
    state_.portToWatch.clear();
    if (path.empty() || !serial_)
        return;
    SerialMonitor& monitor = state_.data.serial.monitor;
    if (path == monitor.path && monitor.open && !monitor.gone) {
        serial_->stop();
        monitor = {};
    } else {
        monitor = serial_->watch(path, state_.preferences.serialSpeed);
        if (!monitor.open)
            state_.message = path + L" cannot be opened: in use, or not allowed";
    }
    state_.remake();
}

void Board::watchMidi()
{
    const Text name = state_.midiToWatch;
    state_.midiToWatch.clear();
    if (name.empty() || !midi_)
        return;
    MidiMonitor& monitor = state_.data.midi.monitor;
    if (name == monitor.name && monitor.open && !monitor.gone) {
        midi_->stop();
        monitor = {};
    } else {
        monitor = midi_->watch(name);
        if (!monitor.open)
            state_.message = name + L" cannot be opened";
    }
    state_.remake();
}

void Board::noticeUnplugging()
{
    noticeLostMidi();
    SerialPorts& serial = state_.data.serial;
    if (!serial_ || !serial.monitor.open || serial.monitor.gone || !serial.read)
        return;
    for (const SerialPort& port : serial.ports)
        if (port.path == serial.monitor.path)
            return;
    serial.monitor.gone = true;
    serial_->stop();
}

void Board::noticeLostMidi()
{
    const MidiDevices& midi = state_.data.midi;
    if (!midi_ || !midi.monitor.open || midi.monitor.gone)
        return;
    for (const MidiDevice& device : midi.inputs)
        if (device.name == midi.monitor.name)
            return;
    state_.data.midi.monitor.gone = true;
    midi_->stop();
}

void Board::keepPreferences()
{
    if (state_.preferences == keptPreferences_)
        return;
    if (state_.preferences.refreshMs != keptPreferences_.refreshMs) {
        // A graph has one measure of time.
        state_.data.processors.all = {};
        state_.data.processors.each.clear();
        state_.data.memory.used = {};
        oftenTimer_ = window_->createTimer(static_cast<unsigned int>(state_.preferences.refreshMs));
        readOften();
    }
    if (serial_ && state_.preferences.serialSpeed != keptPreferences_.serialSpeed)
        serial_->setSpeed(state_.preferences.serialSpeed);
    keptPreferences_ = state_.preferences;
    saveSoon();
}

void Board::keepPlace()
{
    const WindowPlace place = placeOf(*window_, place_);
    if (place == place_)
        return;
    place_ = place;
    saveSoon();
}

void Board::saveSoon()
{
    if (settings_)
        saveTimer_ = window_->createTimer(kSaveMs);
}

void Board::save()
{
    saveTimer_.reset();
    if (!settings_)
        return;
    writePreferences(settings_, state_.preferences);
    writePlace(settings_, place_);
    settings_->persist();
    state_.data.settings = gatherSettings();
    state_.remake();
}

void Board::keepCursor()
{
    const iMouseCursor::eStockCursor wanted = cursorFor(state_);
    if (wanted == cursor_)
        return;
    cursor_ = wanted;
    iWindowManager* manager = OS()->windowMgr();
    manager->setMouseCursor(manager->createMouseCursor(wanted));
}

iEventHandler::eRC Board::changed()
{
    if (state_.quitting)
        return eQuit;
    if (!window_)
        return eContinue;
    openFolder();
    watchPort();
    watchMidi();
    if (state_.readAnew) {
        state_.readAnew = false;
        readAll();
        state_.message = L"everything has been read anew";
    }
    keepPreferences();
    keepCursor();
    interaction_.settle();
    requestFrame();
    return eContinue;
}

// Several changes before the next turn of the event loop are drawn as one frame: the first posts a
// message, which arrives behind the events that are waiting already.
void Board::requestFrame()
{
    if (frameRequested_)
        return;
    frameRequested_ = true;
    window_->postUserMessage();
}

void Board::draw()
{
    if (!window_)
        return;
    live_.show(state_, layoutOf(state_));
    if (const auto renderer = window_->getPrimitivesRenderer(true))
        drawBoard(state_, *resources_, renderer, &live_);
}

iEventHandler::eRC Board::handleMouse(const MouseEvent& event)
{
    switch (event.kind) {
    case MouseEvent::eLeftDown:
        interaction_.press(event.position);
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
        interaction_.wheel(event.position, event.wheelDirection);
        break;
    default:
        return eContinue;
    }
    return changed();
}

iEventHandler::eRC Board::handleKey(const KeyEvent& event)
{
    // The release of a modifier repeats the last key: only presses count.
    if (!event.pressed)
        return eContinue;
    interaction_.key(event.code, event.modifiers);
    return changed();
}

iEventHandler::eRC Board::handlePaint(const PaintEvent&)
{
    draw();
    return eContinue;
}

iEventHandler::eRC Board::handleUserMessage(const UserMessage&)
{
    frameRequested_ = false;
    const bool volumes = volumes_ && volumes_->take(state_.data.volumes);
    const bool bytes = serial_ && serial_->take(state_.data.serial.monitor);
    const bool messages = midi_ && midi_->take(state_.data.midi.monitor);
    if (volumes || bytes || messages) {
        state_.remake();
        interaction_.settle();
    }
    draw();
    return eContinue;
}

iEventHandler::eRC Board::handleWindowEvent(const WindowEvent& event)
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
        if (window_) {
            interaction_.resize(window_->getSize());
            keepPlace();
        }
        break;
    default:
        break;
    }
    return changed();
}

bool Board::isTick(const Tq::Ptr<iTimer>& timer, const TimerEvent& event) const
{
    return timer && timer->getID() == event.timerID;
}

iEventHandler::eRC Board::handleTimer(const TimerEvent& event)
{
    if (isTick(quitTimer_, event))
        state_.quitting = true;
    else if (isTick(saveTimer_, event))
        save();
    else if (isTick(oftenTimer_, event))
        readOften();
    else if (isTick(seldomTimer_, event))
        readSeldom();
    else
        return eContinue;
    return changed();
}

iEventHandler::eRC Board::handleFileDrop(const LightweightString<wchar_t>&)
{
    state_.message = L"nothing can be dropped here";
    return changed();
}

} // namespace Quay
