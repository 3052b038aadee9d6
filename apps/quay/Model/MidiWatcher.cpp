#include "Model/MidiWatcher.h"

#include <OS.h>
#include <OS/Devices/iMIDI.h>
#include <OS/Devices/iMIDIDeviceInfo.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/iThreadManager.h>

#include <utility>

namespace Quay {

namespace {

void keepLast(std::vector<MidiMessage>& messages)
{
    if (messages.size() > MidiMonitor::kKept)
        messages.erase(messages.begin(),
                       messages.end() - static_cast<std::ptrdiff_t>(MidiMonitor::kKept));
}

// Numbers change when devices come and go; a name stays.
bool findInput(const Text& name, unsigned int& index)
{
    auto* const devices = dynamic_cast<iMIDIDeviceInfo*>(OS()->midi());
    MIDIDeviceInfo info;
    for (index = 0; devices && devices->getInputDevInfo(index, info); ++index)
        if (Text(info.name_) == name)
            return true;
    return false;
}

} // namespace

void MidiMonitor::add(std::uint64_t count, const std::vector<MidiMessage>& last)
{
    received += count;
    latest.insert(latest.end(), last.begin(), last.end());
    keepLast(latest);
}

/// What the device's thread leaves for the board: counts everything, keeps the last.
class MidiWatcher::Inbox final : public InputCallbackReceiver
{
public:
    explicit Inbox(std::function<void()> news)
        : news_(std::move(news)), lock_(OS()->threadMgr()->createCriticalSection(0))
    {
    }
    void handleShortMsg(unsigned int, iMidiInputDevice*, unsigned int message) override
    {
        add({message, 0});
    }
    void handleLongMsg(unsigned int, iMidiInputDevice*, const unsigned char*,
                       unsigned int size) override
    {
        add({0, size});
    }
    bool take(MidiMonitor& monitor)
    {
        const CriticalSectionLock held(lock_);
        if (count_ == 0)
            return false;
        monitor.add(std::exchange(count_, 0), messages_);
        messages_.clear();
        return true;
    }

private:
    void add(const MidiMessage& message)
    {
        bool tell = false;
        {
            const CriticalSectionLock held(lock_);
            messages_.push_back(message);
            keepLast(messages_);
            tell = count_++ == 0;
        }
        if (tell) // once for all that comes until it is taken
            news_();
    }

    const std::function<void()> news_;
    const Tq::Ptr<iCriticalSection> lock_;
    std::uint64_t count_ = 0;           // under lock
    std::vector<MidiMessage> messages_; // under lock
};

MidiWatcher::MidiWatcher(std::function<void()> news) : news_(std::move(news)) {}

MidiWatcher::~MidiWatcher()
{
    stop();
}

MidiMonitor MidiWatcher::watch(const Text& name)
{
    stop();
    MidiMonitor monitor;
    monitor.name = name;
    unsigned int index = 0;
    if (!findInput(name, index))
        return monitor;
    inbox_ = std::make_unique<Inbox>(news_);
    iMidiInputDevice* device = nullptr;
    monitor.open = OS()->midi()->open(device, index, *inbox_) == 1;
    device_.reset(device);
    if (monitor.open)
        device_->start();
    return monitor;
}

void MidiWatcher::stop()
{
    if (device_) {
        device_->stop();
        device_->close();
    }
    device_.reset();
    inbox_.reset();
}

bool MidiWatcher::take(MidiMonitor& monitor)
{
    return inbox_ && inbox_->take(monitor);
}

} // namespace Quay
