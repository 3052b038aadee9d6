// Serial ports on real UARTs. VANTOR_TEST_UARTS names two ("/dev/ttyS1 /dev/ttyS2") that are joined
// to each other; without it there is nothing to test. They are to be had in a virtual machine.
#include "OS/Mac/Core/Descriptor.h"
#include "support/OutputCapture.h"
#include "support/PortReceiver.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Devices/iHardwareManager.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <map>
#include <sstream>
#include <sys/ioctl.h>
#include <termios.h>

namespace {

LightweightString<wchar_t> wide(const std::string& path)
{
    return OS()->utils()->fromUTF8(path.c_str(), -1);
}

class Uart : public testing::Test
{
protected:
    void SetUp() override
    {
        const char* names = std::getenv("VANTOR_TEST_UARTS");
        if (!names)
            GTEST_SKIP() << "no pair of UARTs: VANTOR_TEST_UARTS is not set";
        std::istringstream(names) >> near_ >> far_;
        farReceiver_ = Tq::Ptr<PortReceiver>(new PortReceiver);
        nearReceiver_ = Tq::Ptr<PortReceiver>(new PortReceiver);
    }

    Tq::Ptr<iComPort> open(const std::string& path, const Tq::Ptr<PortReceiver>& receiver,
                           const iComPort::Config& config) const
    {
        const Tq::Ptr<iComPort> port = OS()->hardwareMgr()->openComPort(wide(path), receiver);
        EXPECT_TRUE(port) << path;
        EXPECT_TRUE(port && port->setConfig(config));
        return port;
    }

    std::string near_, far_;
    Tq::Ptr<PortReceiver> nearReceiver_, farReceiver_;
};

// What the kernel says of a port in use; needs the privilege to open it.
struct Witness
{
    explicit Witness(const std::string& path)
        : port(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK))
    {
    }
    termios attributes() const
    {
        termios result{};
        EXPECT_EQ(tcgetattr(port.get(), &result), 0);
        return result;
    }
    int outgoingLines() const
    {
        int lines = 0;
        EXPECT_EQ(ioctl(port.get(), TIOCMGET, &lines), 0);
        return lines & (TIOCM_DTR | TIOCM_RTS);
    }

    OSInternal::Descriptor port;
};

} // namespace

TEST_F(Uart, IsListedAndPlacesWithoutAChipAreNot)
{
    std::map<LightweightString<wchar_t>, LightweightString<wchar_t>> ports;
    OS()->hardwareMgr()->getComPorts(ports);
    EXPECT_TRUE(ports.count(wide(near_)));
    EXPECT_TRUE(ports.count(wide(far_)));
    EXPECT_FALSE(ports.count(L"/dev/ttyS3"));
    EXPECT_FALSE(ports.count(L"/dev/tty0"));
}

TEST_F(Uart, TakesEveryConfigurationAndReceives)
{
    constexpr std::pair<std::uint32_t, speed_t> kSpeeds[] = {
        {9600, B9600}, {19200, B19200}, {57600, B19200}, {38400, B38400}};
    constexpr std::pair<std::uint32_t, tcflag_t> kParities[] = {
        {0, 0}, {1, PARENB}, {2, PARENB | PARODD}};
    const Tq::Ptr<iComPort> far = open(far_, farReceiver_, {0, 0, 38400, 8});
    const Tq::Ptr<iComPort> near = open(near_, nearReceiver_, {0, 0, 38400, 8});
    const Witness witness(near_);
    std::size_t sent = 0;
    for (const auto& [baudRate, speed] : kSpeeds)
        for (const auto& [parity, parityFlags] : kParities)
            for (const std::uint32_t stopBits : {0u, 1u})
                for (const std::uint32_t dataBits : {7u, 8u}) {
                    const iComPort::Config config{parity, stopBits, baudRate, dataBits};
                    EXPECT_EQ(outputOf([&] { EXPECT_TRUE(near->setConfig(config)); }), "");
                    const termios line = witness.attributes();
                    const tcflag_t expected = speed | parityFlags | (stopBits == 1 ? CSTOPB : 0) |
                                              (dataBits == 7 ? CS7 : CS8) | CREAD;
                    EXPECT_EQ(line.c_cflag & ~static_cast<tcflag_t>(CIBAUD), expected);
                    char text[] = "forth";
                    EXPECT_TRUE(near->sendData(text, 5));
                    EXPECT_TRUE(far->sendData(text, 5));
                    sent += 5;
                    ASSERT_TRUE(nearReceiver_->waitFor(sent)) << "the receiver is enabled";
                    ASSERT_TRUE(farReceiver_->waitFor(sent));
                }
    EXPECT_EQ(nearReceiver_->bytes(), farReceiver_->bytes());
}

TEST_F(Uart, SetsItsModemLines)
{
    const Tq::Ptr<iComPort> port = open(near_, nearReceiver_, {0, 0, 9600, 8});
    const Witness witness(near_);
    EXPECT_EQ(witness.outgoingLines(), TIOCM_DTR | TIOCM_RTS) << "as the kernel opens it";
    const std::pair<iComPort::eCommand, int> commands[] = {{iComPort::eRTSOff, TIOCM_DTR},
                                                           {iComPort::eRTSOn, TIOCM_RTS},
                                                           {iComPort::eDTROff, TIOCM_RTS},
                                                           {iComPort::eDTROn, TIOCM_DTR},
                                                           {iComPort::eDTROff, 0}};
    for (const auto& [command, lines] : commands) {
        EXPECT_TRUE(port->sendCommand(command));
        EXPECT_EQ(witness.outgoingLines(), lines) << "after command " << command;
    }
    EXPECT_FALSE(port->sendCommand(static_cast<iComPort::eCommand>(4)));
    EXPECT_EQ(witness.outgoingLines(), 0);
}

TEST_F(Uart, ClosesAfterItsLastByteAndCanBeOpenedAgain)
{
    const Tq::Ptr<iComPort> far = open(far_, farReceiver_, {0, 0, 9600, 8});
    std::string text(4000, 'x');
    for (int i = 1; i <= 3; ++i) {
        Tq::Ptr<iComPort> near = open(near_, nearReceiver_, {0, 0, 9600, 8});
        EXPECT_TRUE(near->sendData(text.data(), static_cast<unsigned int>(text.size())));
        EXPECT_EQ(outputOf([&] { near.reset(); }), "");
        ASSERT_TRUE(farReceiver_->waitFor(text.size() * static_cast<std::size_t>(i)));
    }
}
