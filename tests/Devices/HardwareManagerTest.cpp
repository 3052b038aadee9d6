#include "OS/Mac/Devices/HardwareManager.h"
#include "OS/Mac/Devices/FirewireDevice.h"
#include "support/OutputCapture.h"

#include <OS.h>

#include <gtest/gtest.h>

#include <cerrno>

namespace {

using Ports = std::map<LightweightString<wchar_t>, LightweightString<wchar_t>>;

std::vector<Host::SerialPort> pluggedIn;
int registryStatus;

class FakeRegistry final : public Host::SerialRegistry
{
public:
    int list(std::vector<Host::SerialPort>& ports) override
    {
        ports.insert(ports.end(), pluggedIn.begin(), pluggedIn.end());
        return registryStatus;
    }
};

class HardwareManagerTest : public testing::Test
{
protected:
    HardwareManagerTest()
    {
        pluggedIn.clear();
        registryStatus = 0;
        HardwareManager::setRegistry(
            []() -> HardwareManager::Registry { return std::make_unique<FakeRegistry>(); });
    }
    ~HardwareManagerTest() override { HardwareManager::setRegistry(nullptr); }

    static Ports ports()
    {
        Ports result;
        OS()->hardwareMgr()->getComPorts(result);
        return result;
    }
    static iSerialPortDetails* details()
    {
        return dynamic_cast<iSerialPortDetails*>(OS()->hardwareMgr());
    }
};

Host::SerialPort usbPort(const char* device, const char* product)
{
    return {device, "Acme", product, "A1", 0x0403, 0x6001};
}

} // namespace

TEST_F(HardwareManagerTest, AddsEachPortUnderItsOwnPath)
{
    pluggedIn = {usbPort("/dev/ttyUSB0", "Wheel"),
                 {"/dev/ttyS0", "", "", "", 0, 0},
                 {"/dev/tty\u00e9", "", "", "", 0, 0}};
    Ports result = {{L"kept", L"as it was"}};
    EXPECT_EQ(outputOf([&] { OS()->hardwareMgr()->getComPorts(result); }), "");
    EXPECT_EQ(result, (Ports{{L"/dev/ttyS0", L"/dev/ttyS0"},
                             {L"/dev/ttyUSB0", L"/dev/ttyUSB0"},
                             {L"/dev/tty\u00e9", L"/dev/tty\u00e9"},
                             {L"kept", L"as it was"}}));
    pluggedIn.clear();
    OS()->hardwareMgr()->getComPorts(result);
    EXPECT_EQ(result.size(), 4u) << "a machine without ports changes nothing";
}

TEST_F(HardwareManagerTest, ReportsARegistryThatDoesNotAnswer)
{
    std::vector<iSerialPortDetails::Details> list;
    registryStatus = -EACCES;
    EXPECT_EQ(outputOf([] { EXPECT_TRUE(ports().empty()); }),
              "IOServiceGetMatchingServices returned -13\n"
              "assertion failed kernResult == KERN_SUCCESS at OS/Mac/HardwareManager line 66\n");
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(details()->getSerialPorts(list)); }), "");

    HardwareManager::setRegistry([]() -> HardwareManager::Registry { return nullptr; });
    EXPECT_EQ(outputOf([] { EXPECT_TRUE(ports().empty()); }),
              "IOServiceMatching returned a NULL dictionary.\n"
              "IOServiceGetMatchingServices returned -19\n"
              "assertion failed kernResult == KERN_SUCCESS at OS/Mac/HardwareManager line 66\n");
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(details()->getSerialPorts(list)); }), "");
}

TEST_F(HardwareManagerTest, CutsAPathThatIsNone)
{
    const std::string longest = "/dev/" + std::string(1018, 'x');
    pluggedIn = {{longest, "", "", "", 0, 0}, {longest + "yz", "", "", "", 0, 0}};
    Ports found;
    EXPECT_EQ(outputOf([&] { found = ports(); }),
              "assertion failed result at OS/Mac/HardwareManager line 91\n");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found.begin()->first.size(), 1023u);
}

TEST_F(HardwareManagerTest, KnowsWhatIsBehindAPort)
{
    pluggedIn = {usbPort("/dev/ttyUSB1", "W\u00fcrfel"),
                 usbPort("/dev/ttyACM0", "a\xff"),
                 {"/dev/ttyS0", "", "", "", 0, 0}};
    std::vector<iSerialPortDetails::Details> list(7);
    ASSERT_TRUE(details()->getSerialPorts(list));
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0].path_, L"/dev/ttyACM0");
    EXPECT_EQ(list[0].product_, (LightweightString<wchar_t>(L"a\xDCFF"))) << "no byte is lost";
    EXPECT_EQ(list[1].path_, L"/dev/ttyS0");
    EXPECT_TRUE(list[1].product_.empty());
    EXPECT_EQ(list[2].path_, L"/dev/ttyUSB1");
    EXPECT_EQ(list[2].manufacturer_, L"Acme");
    EXPECT_EQ(list[2].product_, L"W\u00fcrfel");
    EXPECT_EQ(list[2].serialNumber_, L"A1");
    EXPECT_EQ(list[2].vendorID_, 0x0403);
    EXPECT_EQ(list[2].productID_, 0x6001);
}

TEST_F(HardwareManagerTest, KeepsTheLatestHandlerOfDeviceEvents)
{
    const Tq::Ptr<iDeviceEventHandler> first(new iDeviceEventHandler);
    const Tq::Ptr<iDeviceEventHandler> second(new iDeviceEventHandler);
    OS()->hardwareMgr()->registerForDeviceEvents(first);
    OS()->hardwareMgr()->registerForDeviceEvents(second);
    EXPECT_EQ(*first->refCount(), 1);
    EXPECT_EQ(*second->refCount(), 2);
    OS()->hardwareMgr()->registerForDeviceEvents(nullptr);
    EXPECT_EQ(*second->refCount(), 1);
}

TEST_F(HardwareManagerTest, HasNoFirewireDevices)
{
    EXPECT_FALSE(OS()->hardwareMgr()->getFirewireDevice(L"camera"));
    const Tq::Ptr<iFirewireDevice> device(new FirewireDevice);
    EXPECT_EQ(device->getMode(), 3);
    for (int mode = 0; mode <= 3; ++mode)
        EXPECT_FALSE(device->setMode(static_cast<iFirewireDevice::eMode>(mode)));
}
