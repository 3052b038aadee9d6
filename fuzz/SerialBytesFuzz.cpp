// A serial port's life on a pseudo-terminal: any bytes in any pieces, in between settings, output,
// flushes, modem lines, a device that goes, a port that is let go. What comes in is what was sent,
// in order, at most eight bytes a call; nothing hangs.
#include "OS/Mac/Devices/ComPort.h"

#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <string>
#include <termios.h>
#include <unistd.h>

namespace {

class Receiver final : public iComPortReceiver
{
public:
    void dataReceived(unsigned int count) override
    {
        if (count < 1 || count > sizeof buffer_)
            std::abort();
        const std::lock_guard<std::mutex> lock(mutex_);
        bytes_.append(buffer_, count);
    }
    void* getBuffer() override { return buffer_; }
    std::string bytes() const
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return bytes_;
    }

private:
    mutable std::mutex mutex_;
    std::string bytes_;
    char buffer_[8];
};

struct Input
{
    std::uint8_t byte() { return size > 0 ? (--size, *data++) : std::uint8_t(0); }

    const std::uint8_t* data;
    std::size_t size;
};

bool isSubsequence(const std::string& part, const std::string& whole)
{
    std::size_t at = 0;
    for (const char c : part) {
        at = whole.find(c, at);
        if (at++ == std::string::npos)
            return false;
    }
    return true;
}

// Whatever the port sends is taken, so that nothing blocks.
void drain(int device)
{
    char bytes[4096];
    pollfd waited{device, POLLIN, 0};
    while (poll(&waited, 1, 0) == 1 && read(device, bytes, sizeof bytes) > 0) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    int device = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    char path[64];
    if (device < 0 || grantpt(device) != 0 || unlockpt(device) != 0 ||
        ptsname_r(device, path, sizeof path) != 0)
        std::abort();
    termios raw;
    tcgetattr(device, &raw);
    cfmakeraw(&raw);
    tcsetattr(device, TCSANOW, &raw);

    const Tq::Ptr<Receiver> receiver(new Receiver);
    Tq::Ptr<iComPort> port = ComPort::open(path, receiver);
    std::string sent;
    bool allArrives = port->setConfig({0, 0, 38400, 8});
    Input input{data, size};
    while (input.size > 0 && port) {
        const std::uint8_t step = input.byte();
        switch (step % 8) {
        case 0:
            port->setConfig({input.byte() % 4u, input.byte() % 3u, 9600u * (input.byte() % 8u), 8});
            break;
        case 1:
            port->sendCommand(static_cast<iComPort::eCommand>(input.byte()));
            break;
        case 2:
            port->purge();
            allArrives = false;
            break;
        case 3: {
            std::string text(input.byte() % 64u, 'o');
            port->sendData(text.data(), static_cast<unsigned int>(text.size()));
            if (device >= 0)
                drain(device);
            break;
        }
        case 4:
            if (step == 4 && device >= 0) {
                close(device);
                device = -1;
                allArrives = false;
            }
            break;
        case 5:
            if (step == 5) {
                port.reset();
                allArrives = false;
            }
            break;
        default: {
            std::string text;
            for (int i = step / 8; i >= 0 && input.size > 0; --i)
                text.push_back(static_cast<char>(input.byte()));
            const ssize_t count = device >= 0 ? write(device, text.data(), text.size()) : 0;
            if (count > 0)
                sent.append(text, 0, static_cast<std::size_t>(count));
        }
        }
    }
    for (int tries = 0; allArrives && receiver->bytes().size() < sent.size(); ++tries) {
        if (tries > 5'000)
            std::abort(); // lost
        usleep(1000);
    }
    port.reset();
    const std::string received = receiver->bytes();
    if (allArrives ? received != sent : !isSubsequence(received, sent))
        std::abort();
    if (device >= 0)
        close(device);
    return 0;
}
