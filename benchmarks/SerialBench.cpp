// Serial ports: a megabyte through a pseudo-terminal, into our reader and into one written by hand.

#include "support/PairedRuns.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Devices/iHardwareManager.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr std::size_t kBytes = 1'000'000;

class Receiver final : public iComPortReceiver
{
public:
    void dataReceived(unsigned int count) override
    {
        if (received_.fetch_add(count, std::memory_order_relaxed) + count >= kBytes)
            received_.notify_one();
    }
    void* getBuffer() override { return buffer_; }
    void wait() const
    {
        for (std::size_t seen = received_; seen < kBytes; seen = received_)
            received_.wait(seen);
    }

private:
    std::atomic<std::size_t> received_{0};
    char buffer_[8];
};

struct Line
{
    Line() : device(posix_openpt(O_RDWR | O_NOCTTY))
    {
        char name[64] = {};
        if (device < 0 || grantpt(device) != 0 || unlockpt(device) != 0 ||
            ptsname_r(device, name, sizeof name) != 0)
            std::abort();
        path = name;
        termios attributes;
        tcgetattr(device, &attributes);
        cfmakeraw(&attributes);
        tcsetattr(device, TCSANOW, &attributes);
    }
    ~Line() { close(device); }

    void send() const
    {
        static const std::string block(4000, 'x');
        for (std::size_t sent = 0; sent < kBytes;) {
            const ssize_t count =
                write(device, block.data(), std::min(block.size(), kBytes - sent));
            if (count < 0)
                std::abort();
            sent += static_cast<std::size_t>(count);
        }
    }

    int device;
    std::string path;
};

double ours()
{
    const Line line;
    const Tq::Ptr<Receiver> receiver(new Receiver);
    const Tq::Ptr<iComPort> port =
        OS()->hardwareMgr()->openComPort(OS()->utils()->fromUTF8(line.path.c_str(), -1), receiver);
    port->setConfig({0, 0, 38400, 8});
    return Bench::timed(kBytes, [&] {
        line.send();
        receiver->wait();
    });
}

double byHand()
{
    const Line line;
    const int port = open(line.path.c_str(), O_RDWR | O_NOCTTY);
    return Bench::timed(kBytes, [&] {
        std::thread reader([&] {
            char buffer[8];
            pollfd waited{port, POLLIN, 0};
            for (std::size_t received = 0; received < kBytes;) {
                poll(&waited, 1, -1);
                received += static_cast<std::size_t>(read(port, buffer, sizeof buffer));
            }
        });
        line.send();
        reader.join();
        close(port);
    });
}

} // namespace

int main()
{
    Bench::printHeader("A serial port's bytes, each, through a pseudo-terminal");
    Bench::compare("1,000,000 bytes", {{"ours", ours}, {"poll and read by hand", byHand}},
                   {{{"poll and read by hand"}, 1.1}}, 15);
}
