#include "Control/Controller.h"

#include "Control/JogProtocol.h"
#include "Control/MidiCommands.h"

#include <OS.h>
#include <OS/Devices/MIDICallbacks.h>
#include <OS/Devices/iComPort.h>
#include <OS/Devices/iComPortReceiver.h>
#include <OS/Devices/iHardwareManager.h>
#include <OS/Devices/iMIDI.h>
#include <OS/Devices/iMIDIDeviceInfo.h>
#include <OS/Devices/iMidiInputDevice.h>

#include <array>
#include <map>

namespace Vantor {

namespace {

constexpr wchar_t kMidi[] = L"midi:";
constexpr wchar_t kSerial[] = L"serial:";

std::vector<Text> midiNames()
{
    std::vector<Text> names;
    auto* const info = dynamic_cast<iMIDIDeviceInfo*>(OS()->midi());
    const unsigned int count = OS()->midi()->getNumInputDevs();
    for (unsigned int i = 0; info && i < count; ++i) {
        MIDIDeviceInfo device;
        if (info->getInputDevInfo(i, device))
            names.push_back(device.name_);
    }
    return names;
}

class MidiController final : public Controller, private InputCallbackReceiver
{
public:
    explicit MidiController(Deliver deliver) : deliver_(std::move(deliver)) {}
    ~MidiController() override
    {
        if (!device_)
            return;
        device_->stop();
        device_->close();
        delete device_;
    }
    MidiController(const MidiController&) = delete;
    MidiController& operator=(const MidiController&) = delete;

    bool open(unsigned int index)
    {
        return OS()->midi()->open(device_, index, *this) == 1 && device_->start() == 1;
    }

private:
    void handleShortMsg(unsigned int, iMidiInputDevice*, unsigned int message) override
    {
        const std::optional<ControlCommand> command = commandOf(message);
        deliver_(command ? &*command : nullptr);
    }
    void handleLongMsg(unsigned int, iMidiInputDevice*, const unsigned char*, unsigned int) override
    {
        deliver_(nullptr);
    }

    Deliver deliver_;
    iMidiInputDevice* device_ = nullptr;
};

/// Reads lines from the port.
class JogReceiver final : public iComPortReceiver
{
public:
    explicit JogReceiver(Controller::Deliver deliver) : deliver_(std::move(deliver)) {}

    void dataReceived(unsigned int count) override
    {
        bool means = false;
        for (unsigned int i = 0; i < count; ++i)
            if (const std::optional<ControlCommand> command = protocol_.take(bytes_[i])) {
                deliver_(&*command);
                means = true;
            }
        if (!means)
            deliver_(nullptr);
    }
    void* getBuffer() override { return bytes_.data(); }

private:
    Controller::Deliver deliver_;
    JogProtocol protocol_;
    std::array<unsigned char, 8> bytes_ = {};
};

class JogWheel final : public Controller
{
public:
    explicit JogWheel(Tq::Ptr<iComPort> port) : port_(std::move(port)) {}

private:
    Tq::Ptr<iComPort> port_;
};

std::unique_ptr<Controller> openMidi(const Text& name, Controller::Deliver deliver)
{
    const std::vector<Text> names = midiNames();
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!(names[i] == name))
            continue;
        auto controller = std::make_unique<MidiController>(std::move(deliver));
        if (controller->open(static_cast<unsigned int>(i)))
            return controller;
        return nullptr;
    }
    return nullptr;
}

std::unique_ptr<Controller> openSerial(const Text& path, Controller::Deliver deliver)
{
    const Tq::Ptr<iComPort> port = OS()->hardwareMgr()->openComPort(
        path, Tq::Ptr<iComPortReceiver>(new JogReceiver(std::move(deliver))));
    if (!port || !port->setConfig({0, 0, 9600, 8}))
        return nullptr;
    return std::make_unique<JogWheel>(port);
}

} // namespace

std::vector<ControllerPlace> findControllers()
{
    std::vector<ControllerPlace> places;
    for (const Text& name : midiNames())
        places.push_back({ControllerPlace::Kind::eMidi, name});
    std::map<Text, Text> ports;
    OS()->hardwareMgr()->getComPorts(ports);
    for (const auto& [path, same] : ports)
        places.push_back({ControllerPlace::Kind::eSerial, path});
    return places;
}

Text textOf(const ControllerPlace& place)
{
    if (place.kind == ControllerPlace::Kind::eNone)
        return {};
    return (place.kind == ControllerPlace::Kind::eMidi ? kMidi : kSerial) + place.name;
}

ControllerPlace controllerOf(const Text& text)
{
    for (const auto& [kind, prefix] : {std::pair{ControllerPlace::Kind::eMidi, Text(kMidi)},
                                       std::pair{ControllerPlace::Kind::eSerial, Text(kSerial)}})
        if (text.startsWith(prefix) && text.size() > prefix.size())
            return {kind, text.substr(prefix.size())};
    return {};
}

std::unique_ptr<Controller> Controller::open(const ControllerPlace& place, Deliver deliver)
{
    switch (place.kind) {
    case ControllerPlace::Kind::eMidi:
        return openMidi(place.name, std::move(deliver));
    case ControllerPlace::Kind::eSerial:
        return openSerial(place.name, std::move(deliver));
    default:
        return nullptr;
    }
}

} // namespace Vantor
