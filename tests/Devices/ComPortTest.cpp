#include "OS/Mac/Devices/ComPort.h"
#include "Devices/TerminalCalls.h"
#include "support/ChildProcess.h"
#include "support/OutputCapture.h"
#include "support/PortReceiver.h"
#include "support/PtyPair.h"
#include "support/TemporaryFolder.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Devices/iHardwareManager.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <sys/ioctl.h>
#include <sys/stat.h>

namespace {

constexpr iComPort::Config kUsual{0, 0, 38400, 8};

Tq::Ptr<iComPort> openPort(const std::string& path, const Tq::Ptr<iComPortReceiver>& receiver)
{
    return OS()->hardwareMgr()->openComPort(OS()->utils()->fromUTF8(path.c_str(), -1), receiver);
}

// An open, configured port on the terminal side of a pair.
struct Rig
{
    Rig() = default;
    explicit Rig(const iComPort::Config& config) { open(config); }

    void open(const iComPort::Config& config = kUsual)
    {
        port = openPort(pair.path(), receiver);
        EXPECT_TRUE(port);
        EXPECT_TRUE(port->setConfig(config));
    }

    PtyPair pair;
    const Tq::Ptr<PortReceiver> receiver{new PortReceiver};
    Tq::Ptr<iComPort> port;
};

std::string pattern(std::size_t count)
{
    std::string bytes(count, '\0');
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<char>(i * 7 + i / 251);
    return bytes;
}

int openDescriptors()
{
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return static_cast<int>(std::distance(begin(entries), end(entries)));
}

int threads()
{
    const std::filesystem::directory_iterator entries("/proc/self/task");
    return static_cast<int>(std::distance(begin(entries), end(entries)));
}

// Waits until the readers of this test have ended. @return whether they did
bool readersEnd(int threadsBefore)
{
    return waitUntil([&] { return threads() <= threadsBefore; });
}

std::string exclusiveLine(const std::string& path, int error)
{
    return "Error setting TIOCEXCL on " + path + " - " + std::strerror(error) + "(" +
           std::to_string(error) + ").\n";
}

std::string openingLine(const std::string& path, int error)
{
    return "Error opening serial port " + path + " - " + std::strerror(error) + "(" +
           std::to_string(error) + ").\n";
}

} // namespace

TEST(ComPort, DeliversABurstInOrderAtMostEightBytesACall)
{
    for (const std::size_t length : {1u, 8u, 20u, 4096u}) {
        Rig rig(kUsual);
        const std::string sent = pattern(length);
        ASSERT_TRUE(rig.pair.send(sent));
        ASSERT_TRUE(rig.receiver->waitFor(length)) << length;
        EXPECT_EQ(rig.receiver->bytes(), sent);
        EXPECT_THAT(rig.receiver->counts(),
                    testing::Each(testing::AllOf(testing::Ge(1u), testing::Le(8u))));
    }
}

TEST(ComPort, LosesNothingToAReceiverThatIsSlow)
{
    Gate gate;
    Rig rig;
    rig.receiver->onData = [&] { gate.wait(); };
    rig.open();
    const std::string sent = pattern(100'000);
    BackgroundThread sender([&] { return rig.pair.send(sent); });
    EXPECT_TRUE(sender.waitUntilBlocked()) << "the line holds what is not read";
    gate.open();
    EXPECT_TRUE(rig.receiver->waitFor(sent.size()));
    EXPECT_TRUE(rig.receiver->bytes() == sent);
    EXPECT_TRUE(sender.result());
}

TEST(ComPort, SendsEverythingAlsoToADeviceThatIsSlow)
{
    Rig rig(kUsual);
    std::string sent = pattern(100'000);
    BackgroundThread sender([&] {
        const bool all = rig.port->sendData(sent.data(), static_cast<unsigned int>(sent.size()));
        rig.port.reset();
        return all;
    });
    EXPECT_TRUE(sender.waitUntilBlocked());
    EXPECT_TRUE(rig.pair.receive(sent.size()) == sent);
    EXPECT_TRUE(sender.result());
}

TEST(ComPort, WhatCannotBeOpenedIsReported)
{
    const TemporaryFolder folder;
    const std::string closed = folder.write("closed", "");
    chmod(closed.c_str(), 0);
    const Tq::Ptr<PortReceiver> receiver(new PortReceiver);
    const WithoutPrivilege ordinary;
    const struct
    {
        std::string path;
        int error;
    } cases[] = {{folder.path("absent"), ENOENT}, {folder.path(), EISDIR}, {closed, EACCES}};
    const int before = openDescriptors();
    for (const auto& c : cases)
        EXPECT_EQ(outputOf([&] { EXPECT_FALSE(openPort(c.path, receiver)); }),
                  openingLine(c.path, c.error));
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(openPort(folder.path("absent"), nullptr)); }), "")
        << "without a receiver the device is not touched";
}

TEST(ComPort, WhatIsNoTerminalFailsAtExclusiveUseAndStaysOpenDeliberately)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("file", "text");
    const int before = openDescriptors();
    EXPECT_EQ(outputOf([&] {
                  EXPECT_FALSE(openPort(path, Tq::Ptr<iComPortReceiver>(new PortReceiver)));
              }),
              exclusiveLine(path, ENOTTY));
    EXPECT_EQ(openDescriptors(), before + 1);
}

TEST(ComPort, APortInUseIsRefusedUntilItIsLetGo)
{
    Rig rig(kUsual);
    const auto openAgain = [&] {
        return outputOf([&] { EXPECT_FALSE(openPort(rig.pair.path(), rig.receiver)); });
    };
    const std::string asRoot = exclusiveLine(rig.pair.path(), EBUSY);
    const std::string asUser = openingLine(rig.pair.path(), EBUSY);
    EXPECT_EQ(openAgain(), geteuid() == 0 ? asRoot : asUser);
    {
        const WithoutPrivilege ordinary(1u << CAP_SYS_ADMIN);
        EXPECT_EQ(openAgain(), asUser);
    }
    rig.port.reset();
    rig.open();
    rig.pair.send("again");
    EXPECT_TRUE(rig.receiver->waitFor(5)) << "a refused opening does not keep it marked";
}

TEST(ComPort, MakesTheLineRawAndBlocking)
{
    PtyPair pair;
    const int fd = open(pair.path().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    const Tq::Ptr<ComPort> port(new ComPort(fd, Tq::Ptr<iComPortReceiver>(new PortReceiver)));
    struct sigaction ignore = {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGIO, &ignore, nullptr);

    EXPECT_TRUE(port->setConfig(kUsual));
    EXPECT_EQ(fcntl(fd, F_GETFL) & O_NONBLOCK, 0);
    const termios line = pair.attributes();
    EXPECT_EQ(line.c_lflag & (ICANON | ECHO | ISIG | IEXTEN), 0u);
    EXPECT_EQ(line.c_iflag & (IXON | ICRNL | ISTRIP | BRKINT), 0u);
    EXPECT_EQ(line.c_oflag & OPOST, 0u);
    EXPECT_EQ(line.c_cc[VMIN], 1);
    EXPECT_EQ(line.c_cc[VTIME], 10);
    struct sigaction now = {};
    sigaction(SIGIO, nullptr, &now);
    EXPECT_EQ(now.sa_handler, SIG_DFL);
    EXPECT_TRUE(now.sa_flags & SA_SIGINFO);
}

TEST(ComPort, SetsEveryConfiguration)
{
    Rig rig;
    rig.pair.setSpeed(B115200);
    rig.port = openPort(rig.pair.path(), rig.receiver);
    constexpr std::pair<std::uint32_t, speed_t> kSpeeds[] = {
        {57600, B115200}, {9600, B9600}, {19200, B19200}, {38400, B38400}, {0, B38400}};
    constexpr std::pair<std::uint32_t, tcflag_t> kParities[] = {
        {0, 0}, {1, PARENB}, {2, PARENB | PARODD}, {3, 0}};
    constexpr std::pair<std::uint32_t, tcflag_t> kStopBits[] = {{0, 0}, {1, CSTOPB}, {2, 0}};
    constexpr std::pair<std::uint32_t, tcflag_t> kDataBits[] = {{7, CS7}, {8, CS8}, {5, CS8}};
    for (const auto& [baudRate, speed] : kSpeeds)
        for (const auto& [parity, parityFlags] : kParities)
            for (const auto& [stopBits, stopFlags] : kStopBits)
                for (const auto& [dataBits, size] : kDataBits) {
                    const TerminalCalls calls(0);
                    // A pseudo-terminal has neither parity nor seven bits, which some C libraries
                    // report; a real line is in UartTest.cpp.
                    const iComPort::Config config{parity, stopBits, baudRate, dataBits};
                    const std::string reported =
                        outputOf([&] { EXPECT_TRUE(rig.port->setConfig(config)); });
                    if (size == CS8 && parityFlags == 0) {
                        EXPECT_EQ(reported, "");
                    }
                    const termios set = calls.settings().at(0);
                    EXPECT_EQ(set.c_cflag, speed | parityFlags | stopFlags | size | CREAD)
                        << parity << stopBits << dataBits << " " << baudRate;
                    EXPECT_EQ(cfgetospeed(&set), speed);
                    const termios line = rig.pair.attributes();
                    EXPECT_EQ(cfgetospeed(&line), speed);
                }
}

TEST(ComPort, ADescriptorThatCannotBlockIsNotConfigured)
{
    const TemporaryFolder folder;
    const int fd = open(folder.path().c_str(), O_PATH);
    const Tq::Ptr<ComPort> port(new ComPort(fd, Tq::Ptr<iComPortReceiver>(new PortReceiver)));
    const TerminalCalls calls(0);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(port->setConfig(kUsual)); }), "failed get old tio\n");
    EXPECT_TRUE(calls.settings().empty());
}

TEST(ComPort, ADeviceThatRefusesEverythingIsReportedAndLetGo)
{
    PtyPair pair;
    Tq::Ptr<ComPort> port(new ComPort(open(pair.path().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK),
                                      Tq::Ptr<iComPortReceiver>(new PortReceiver)));
    const TerminalCalls broken(EIO);
    EXPECT_EQ(outputOf([&] {
                  EXPECT_TRUE(port->setConfig(kUsual));
                  for (int command = 0; command < 4; ++command)
                      EXPECT_FALSE(port->sendCommand(static_cast<iComPort::eCommand>(command)));
                  port->purge();
                  port.reset();
              }),
              "failed get old tio\nfailed set options\n"
              "Error waiting for drain - Input/output error(5).\n");
    EXPECT_EQ(outputOf([&] {
                  EXPECT_FALSE(openPort(pair.path(), Tq::Ptr<iComPortReceiver>(new PortReceiver)));
              }),
              exclusiveLine(pair.path(), EIO));
}

TEST(ComPort, SetsModemLinesAndFlushesAsPublished)
{
    Rig rig(kUsual);
    TerminalCalls calls(0);
    calls.answerRequests();
    for (const int command : {0, 1, 2, 3})
        EXPECT_TRUE(rig.port->sendCommand(static_cast<iComPort::eCommand>(command)));
    for (const int command : {4, -1, 1000})
        EXPECT_FALSE(rig.port->sendCommand(static_cast<iComPort::eCommand>(command)));
    rig.port->purge();
    const std::vector<std::pair<unsigned long, long>> expected = {
        {TIOCMSET, 2}, {TIOCMBIC, 2}, {TIOCMSET, 4}, {TIOCMBIC, 4}, {TCFLSH, 0}};
    EXPECT_EQ(calls.requests(), expected);
}

TEST(ComPort, PurgeDropsWhatHasComeInAndNotWhatGoesOut)
{
    Gate taken, gate;
    Rig rig;
    rig.receiver->onData = [&] {
        taken.open();
        gate.wait();
    };
    rig.open();
    ASSERT_TRUE(rig.pair.send(pattern(200)));
    taken.wait();
    char text[] = "out";
    EXPECT_TRUE(rig.port->sendData(text, 3));
    rig.port->purge();
    EXPECT_EQ(rig.pair.receive(3), "out");
    gate.open();
    ASSERT_TRUE(rig.pair.send("end"));
    EXPECT_TRUE(waitUntil([&] { return rig.receiver->bytes().find("end") != std::string::npos; }));
    EXPECT_LT(rig.receiver->bytes().size(), 200u);
}

TEST(ComPort, AnUnpluggedDeviceEndsTheReaderAndFailsTheWriter)
{
    const int before = threads();
    Rig rig(kUsual);
    std::string large = pattern(100'000);
    BackgroundThread writer(
        [&] { return rig.port->sendData(large.data(), static_cast<unsigned int>(large.size())); });
    EXPECT_TRUE(writer.waitUntilBlocked());
    rig.pair.unplug();
    EXPECT_FALSE(writer.result());
    EXPECT_TRUE(readersEnd(before));
    EXPECT_FALSE(rig.port->sendData(large.data(), 1));
    EXPECT_EQ(outputOf([&] { rig.port.reset(); }),
              "Error waiting for drain - Input/output error(5).\n");
}

TEST(ComPort, CanBeLetGoAtAnyMoment)
{
    // While the reader waits, while data streams in, and as soon as it is open.
    const int before = threads();
    for (int i = 0; i < 200; ++i) {
        Rig rig;
        rig.port = openPort(rig.pair.path(), rig.receiver);
        if (i % 4 != 0)
            rig.port->setConfig(kUsual);
        if (i % 4 > 1)
            rig.pair.send(pattern(100));
        if (i % 4 == 3)
            rig.receiver->waitFor(8);
        rig.port.reset();
        ASSERT_EQ(*rig.receiver->refCount(), 1) << "nobody else holds the receiver now";
        const std::size_t received = rig.receiver->bytes().size();
        rig.pair.send("late");
        ASSERT_EQ(rig.receiver->bytes().size(), received);
    }
    EXPECT_TRUE(readersEnd(before));
}

TEST(ComPort, CanBeLetGoByItsOwnReceiver)
{
    for (const bool whileReading : {false, true}) {
        const int before = threads();
        Gate open, released;
        Rig rig;
        auto& moment = whileReading ? rig.receiver->onRead : rig.receiver->onData;
        moment = [&] {
            open.wait();
            rig.port.reset();
            released.open();
        };
        rig.open();
        open.open();
        rig.pair.send("x");
        released.wait();
        EXPECT_TRUE(readersEnd(before));
        EXPECT_EQ(__atomic_load_n(rig.receiver->refCount(), __ATOMIC_ACQUIRE), 1);
        moment = [] {};
        rig.open();
    }
}

TEST(ComPort, ClosesThoughTheDataThatItWasToldOfIsGone)
{
    Gate open, purged;
    Rig rig;
    rig.receiver->onRead = [&] {
        open.wait();
        rig.port->purge(); // as another process would take it, between the news and the read
        purged.open();
    };
    rig.open();
    rig.pair.send("x");
    open.open();
    purged.wait();
    rig.port.reset();
    EXPECT_EQ(rig.receiver->bytes(), "");
}

TEST(ComPort, AReaderWithoutDataEndsWhenThePortIsNeverConfigured)
{
    const int before = threads();
    Rig rig;
    rig.port = openPort(rig.pair.path(), rig.receiver);
    EXPECT_TRUE(readersEnd(before));
    rig.port->setConfig(kUsual);
    rig.pair.send("unheard");
    rig.port.reset();
    EXPECT_EQ(rig.receiver->bytes(), "");
}

TEST(ComPort, DataThatIsThereComesAlsoWithoutConfiguration)
{
    Rig rig;
    rig.pair.send("early");
    rig.port = openPort(rig.pair.path(), rig.receiver);
    EXPECT_TRUE(rig.receiver->waitFor(5));
    rig.port.reset();
}

TEST(ComPort, ClosesWithoutAReaderAndWithoutAWakeup)
{
    Rig rig;
    {
        const NoThreads none;
        EXPECT_EQ(outputOf([&] { rig.open(); }),
                  "assertion failed rc == 0 at OS/Mac/Thread line 44\n");
    }
    rig.port.reset();
    {
        const NoWakeups none;
        rig.open();
    }
    rig.pair.send("heard");
    EXPECT_TRUE(rig.receiver->waitFor(5));
    rig.port.reset();
}
