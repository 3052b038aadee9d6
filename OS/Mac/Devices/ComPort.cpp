#include "OS/Mac/Devices/ComPort.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Threads/Thread.h"

#include <OS.h>
#include <OS/Threads/iThreadManager.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

using OSInternal::printLine;

namespace {

constexpr std::size_t kReadBytes = 8;
// A client that is interrupted between opening and setConfig must not lose its reader.
constexpr int kUnconfiguredMs = 50;
constexpr int kWithoutWakeupMs = 100;

// A privileged process opens a port that another one holds: only the mark tells.
bool claimPort(int fd)
{
    int taken = 0;
    if (ioctl(fd, TIOCGEXCL, &taken) == 0 && taken) {
        errno = EBUSY;
        return false;
    }
    return ioctl(fd, TIOCEXCL) == 0;
}

// The speed's bits for the control flags; `keep` for a speed that is not applied.
tcflag_t speedBits(std::uint32_t baudRate, tcflag_t keep)
{
    switch (baudRate) {
    case 9600:
        return B9600;
    case 19200:
        return B19200;
    case 38400:
        return B38400;
    default:
        return keep & (CBAUD | CIBAUD);
    }
}

tcflag_t controlFlags(const iComPort::Config& config, tcflag_t current)
{
    tcflag_t flags = CREAD; // without it a UART receives nothing
    flags |= config.dataBits == 7 ? CS7 : CS8;
    if (config.parity == 2)
        flags |= PARENB | PARODD;
    else if (config.parity == 1)
        flags |= PARENB;
    if (config.stopBits == 1)
        flags |= CSTOPB;
    // The speed is part of the flags here: left out, the line would hang up.
    return flags | speedBits(config.baudRate, current);
}

void resetIoSignal()
{
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    action.sa_flags = SA_SIGINFO;
    sigemptyset(&action.sa_mask);
    sigaction(SIGIO, &action, nullptr);
}

} // namespace

Tq::Ptr<iComPort> ComPort::open(const char* path, Tq::Ptr<iComPortReceiver> receiver)
{
    if (!receiver)
        return {};
    OSInternal::Descriptor port(::open(path, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!port) {
        const int error = errno;
        printLine("Error opening serial port %s - %s(%d).\n", path, std::strerror(error), error);
        return {};
    }
    if (!claimPort(port.get())) {
        const int error = errno;
        printLine("Error setting TIOCEXCL on %s - %s(%d).\n", path, std::strerror(error), error);
        port.release(); // deliberately left open
        return {};
    }
    return new ComPort(port.release(), std::move(receiver));
}

ComPort::ComPort(int fd, Tq::Ptr<iComPortReceiver> receiver)
    : receiver_(std::move(receiver)), fd_(fd), wakeup_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    readerFinished_ = OS()->threadMgr()->createEvent(false, false, nullptr);
    iThread::InitArgs args;
    args.func_ = &ComPort::threadFn;
    args.arg_ = this;
    args.name_ = "ComPort";
    args.priority_ = iThread::ePriorityIdle;
    thread_ = OS()->threadMgr()->createThread(args);
    if (!thread_.dynamicCast<Thread>()->hasThread())
        running_.store(false, std::memory_order_relaxed); // nobody would report the end
}

ComPort::~ComPort()
{
    if (tcdrain(fd_.get()) != 0) {
        const int error = errno;
        printLine("Error waiting for drain - %s(%d).\n", std::strerror(error), error);
    }
    fcntl(fd_.get(), F_SETFL, O_NONBLOCK);
    if (running_.exchange(false, std::memory_order_acq_rel))
        endReader();
    // The mark outlives this descriptor where another one is open.
    ioctl(fd_.get(), TIOCNXCL);
}

void ComPort::endReader()
{
    if (pthread_equal(readerThread_.load(std::memory_order_relaxed), pthread_self())) {
        *releasedByReader_ = true; // it must not touch this object any more
        return;
    }
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(wakeup_.get(), &one, sizeof one);
    // Where the data that it was told of is gone (purged, or taken by another process) the reader
    // sleeps in its read. Setting the attributes has it look again, and it finds a descriptor that
    // does not block.
    termios attributes;
    if (tcgetattr(fd_.get(), &attributes) == 0)
        tcsetattr(fd_.get(), TCSANOW, &attributes);
    readerFinished_->wait(iWaitable::kNoTimeOut);
}

iThread::eExecRC ComPort::threadFn(void* port)
{
    static_cast<ComPort*>(port)->threadFn();
    return iThread::eExecSucceeded;
}

void ComPort::threadFn()
{
    // Its own references: the port may go while the event is being set, or by the receiver's hand.
    const Tq::Ptr<iThreadEvent> finished = readerFinished_;
    Tq::Ptr<iComPortReceiver> receiver = receiver_;
    bool released = false;
    releasedByReader_ = &released;
    readerThread_.store(pthread_self(), std::memory_order_relaxed);

    while (waitForData()) {
        void* buffer = receiver->getBuffer();
        if (released)
            return;
        const ssize_t count = read(fd_.get(), buffer, kReadBytes);
        if (count < 1)
            break;
        receiver->dataReceived(static_cast<unsigned int>(count));
        if (released)
            return;
    }
    receiver.reset(); // before anybody is told
    running_.store(false, std::memory_order_release);
    finished->set();
}

// Waits until a read would not block, or would fail. @return false when the port is being closed
bool ComPort::waitForData() const
{
    pollfd waited[] = {{fd_.get(), POLLIN, 0}, {wakeup_.get(), POLLIN, 0}};
    while (running_.load(std::memory_order_acquire)) {
        const int limitMs = !configured_.load(std::memory_order_relaxed) ? kUnconfiguredMs
                            : wakeup_                                    ? -1
                                                                         : kWithoutWakeupMs;
        const int ready = poll(waited, std::size(waited), limitMs);
        const bool ended = ready < 0    ? errno != EINTR
                           : ready == 0 ? !configured_.load(std::memory_order_relaxed)
                                        : waited[0].revents != 0;
        if (ended)
            return true;
    }
    return false;
}

bool ComPort::sendData(void* data, unsigned int length)
{
    return write(fd_.get(), data, length) == static_cast<ssize_t>(length);
}

bool ComPort::sendCommand(eCommand command)
{
    int lines = 0;
    switch (command) {
    case eDTROn:
        lines = TIOCM_DTR;
        return ioctl(fd_.get(), TIOCMSET, &lines) != -1;
    case eDTROff:
        lines = TIOCM_DTR;
        return ioctl(fd_.get(), TIOCMBIC, &lines) != -1;
    case eRTSOn:
        lines = TIOCM_RTS;
        return ioctl(fd_.get(), TIOCMSET, &lines) != -1;
    case eRTSOff:
        lines = TIOCM_RTS;
        return ioctl(fd_.get(), TIOCMBIC, &lines) != -1;
    }
    return false;
}

void ComPort::purge()
{
    ioctl(fd_.get(), TCFLSH, nullptr); // the null argument is the kernel's "input"
}

bool ComPort::setConfig(const Config& config)
{
    termios current = {};
    if (tcgetattr(fd_.get(), &current) != 0) {
        printLine("failed get old tio\n");
        current = {};
    }
    termios wanted = current;
    cfmakeraw(&wanted);
    wanted.c_cc[VMIN] = 1;
    wanted.c_cc[VTIME] = 10; // tenths of a second
    resetIoSignal();
    if (fcntl(fd_.get(), F_SETFL, 0) == -1)
        return false;
    configured_.store(true, std::memory_order_relaxed);
    wanted.c_cflag = controlFlags(config, current.c_cflag);
    if (tcsetattr(fd_.get(), TCSANOW, &wanted) != 0)
        printLine("failed set options\n");
    return true;
}
