#include "Model/SerialWatcher.h"

#include <OS.h>
#include <OS/Devices/iHardwareManager.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/iThreadManager.h>

#include <algorithm>
#include <utility>

namespace Quay {

namespace {

constexpr std::uint32_t kDataBits = 8;

void keepLast(std::vector<std::uint8_t>& bytes)
{
    if (bytes.size() > SerialMonitor::kKept)
        bytes.erase(bytes.begin(), bytes.end() - static_cast<std::ptrdiff_t>(SerialMonitor::kKept));
}

} // namespace

void SerialMonitor::add(std::uint64_t count, const std::vector<std::uint8_t>& last)
{
    received += count;
    latest.insert(latest.end(), last.begin(), last.end());
    keepLast(latest);
}

/// What the port's thread leaves for the board: counts everything, keeps the last.
class SerialWatcher::Inbox final : public iComPortReceiver
{
public:
    explicit Inbox(std::function<void()> news)
        : news_(std::move(news)), lock_(OS()->threadMgr()->createCriticalSection(0))
    {
    }
    void* getBuffer() override { return buffer_; }
    void dataReceived(unsigned int count) override
    {
        bool tell = false;
        {
            const CriticalSectionLock held(lock_);
            bytes_.insert(bytes_.end(), buffer_, buffer_ + count);
            keepLast(bytes_);
            tell = count_ == 0;
            count_ += count;
        }
        if (tell) // once for all that comes until it is taken
            news_();
    }
    bool take(SerialMonitor& monitor)
    {
        const CriticalSectionLock held(lock_);
        if (count_ == 0)
            return false;
        monitor.add(std::exchange(count_, 0), bytes_);
        bytes_.clear();
        return true;
    }

private:
    const std::function<void()> news_;
    const Tq::Ptr<iCriticalSection> lock_;
    std::uint8_t buffer_[8];
    std::uint64_t count_ = 0;         // under lock
    std::vector<std::uint8_t> bytes_; // under lock
};

SerialWatcher::SerialWatcher(std::function<void()> news) : news_(std::move(news)) {}

SerialWatcher::~SerialWatcher() = default;

SerialMonitor SerialWatcher::watch(const Text& path, int speed)
{
    stop();
    inbox_ = Tq::Ptr<Inbox>(new Inbox(news_));
    port_ = OS()->hardwareMgr()->openComPort(path, inbox_);
    setSpeed(speed);
    SerialMonitor monitor;
    monitor.path = path;
    monitor.open = static_cast<bool>(port_);
    return monitor;
}

void SerialWatcher::setSpeed(int speed)
{
    if (port_)
        port_->setConfig({0, 0, static_cast<std::uint32_t>(speed), kDataBits});
}

void SerialWatcher::stop()
{
    port_.reset();
    inbox_.reset();
}

bool SerialWatcher::take(SerialMonitor& monitor)
{
    return inbox_ && inbox_->take(monitor);
}

} // namespace Quay
