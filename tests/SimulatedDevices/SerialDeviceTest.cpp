// Serial ports on simulated devices: a made-up /sys, and device files whose requests the tests
// answer.

#include "support/OutputCapture.h"
#include "support/PortReceiver.h"

#include <OS.h>
#include <OS/Devices/iHardwareManager.h>
#include <OS/Devices/iSerialPortDetails.h>

#include <gtest/gtest.h>
#include <umockdev.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

class SimulatedDevices : public testing::Test
{
protected:
    SimulatedDevices() : bed_(umockdev_testbed_new())
    {
        if (!umockdev_in_mock_environment())
            throw std::runtime_error("not under umockdev");
    }
    ~SimulatedDevices() override { g_object_unref(bed_); }

    using Values = std::vector<const char*>;

    // A device below /sys. @param attributes, properties names and values in turn
    std::string add(const char* subsystem, const char* name, const std::string& parent,
                    Values attributes, Values properties)
    {
        attributes.push_back(nullptr);
        properties.push_back(nullptr);
        char* path = umockdev_testbed_add_devicev(
            bed_, subsystem, name, parent.empty() ? nullptr : parent.c_str(),
            const_cast<char**>(attributes.data()), const_cast<char**>(properties.data()));
        std::string result = path ? path : "";
        g_free(path);
        return result;
    }
    // A port that can be opened. @return the device's end of its line
    int addLine(const char* name)
    {
        const std::string text = std::string("P: /devices/usb1/") + name + "\nN: " + name +
                                 "\nE: DEVNAME=/dev/" + name +
                                 "\nE: SUBSYSTEM=tty\nE: MAJOR=188\nE: MINOR=0\n";
        EXPECT_TRUE(umockdev_testbed_add_from_string(bed_, text.c_str(), nullptr));
        return umockdev_testbed_get_dev_fd(bed_, (std::string("/dev/") + name).c_str());
    }

    static std::vector<LightweightString<wchar_t>> ports()
    {
        std::map<LightweightString<wchar_t>, LightweightString<wchar_t>> found;
        OS()->hardwareMgr()->getComPorts(found);
        std::vector<LightweightString<wchar_t>> paths;
        for (const auto& [key, value] : found) {
            EXPECT_EQ(key, value);
            paths.push_back(value);
        }
        return paths;
    }

    UMockdevTestbed* bed_;
};

// Answers what a device's modem lines would, and refuses what it is told to.
class ModemLines
{
public:
    ModemLines(UMockdevTestbed* bed, const char* path) : handler_(umockdev_ioctl_base_new())
    {
        g_signal_connect(handler_, "handle-ioctl", G_CALLBACK(&ModemLines::handle), this);
        EXPECT_TRUE(umockdev_testbed_attach_ioctl(bed, path, handler_, nullptr));
    }
    ~ModemLines() { g_object_unref(handler_); }

    std::atomic<unsigned long> refused{0};
    std::atomic<int> error{EBUSY};
    std::atomic<int> lines{TIOCM_CAR};

private:
    static gboolean handle(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer self)
    {
        return static_cast<ModemLines*>(self)->answer(client);
    }
    gboolean answer(UMockdevIoctlClient* client)
    {
        gulong request = 0;
        UMockdevIoctlData* argument = nullptr;
        g_object_get(client, "request", &request, "arg", &argument, nullptr);
        if (request == refused) {
            umockdev_ioctl_client_complete(client, -1, error);
            return TRUE;
        }
        if (request == TIOCEXCL || request == TIOCNXCL) {
            umockdev_ioctl_client_complete(client, 0, 0);
            return TRUE;
        }
        if (request != TIOCMSET && request != TIOCMBIC)
            return FALSE;
        UMockdevIoctlData* value = umockdev_ioctl_data_resolve(argument, 0, sizeof(int), nullptr);
        int bits = 0;
        std::memcpy(&bits, value->data, sizeof bits);
        lines = request == TIOCMSET ? bits : lines & ~bits;
        umockdev_ioctl_client_complete(client, 0, 0);
        return TRUE;
    }

    UMockdevIoctlBase* handler_;
};

} // namespace

TEST_F(SimulatedDevices, TheListHoldsRealPortsOnly)
{
    EXPECT_TRUE(ports().empty());
    add("tty", "tty1", "", {"dev", "4:1"}, {"DEVNAME", "tty1"});
    add("tty", "console", "", {"dev", "5:1"}, {"DEVNAME", "/dev/console"});
    const std::string board = add("pnp", "00:00", "", {}, {});
    add("tty", "ttyS0", board, {"type", "4", "dev", "4:64"}, {"DEVNAME", "/dev/ttyS0"});
    add("tty", "ttyS1", board, {"type", "0", "dev", "4:65"}, {"DEVNAME", "/dev/ttyS1"});
    add("tty", "unnamed", board, {"type", "4"}, {});
    const std::string usb = add("usb", "1-1", "", {}, {"DEVTYPE", "usb_device"});
    add("tty", "ttyACM0", usb, {"dev", "166:0"}, {"DEVNAME", "/dev/ttyACM0"});
    EXPECT_EQ(ports(), (std::vector<LightweightString<wchar_t>>{L"/dev/ttyACM0", L"/dev/ttyS0"}));
}

TEST_F(SimulatedDevices, APortKnowsItsUsbDevice)
{
    const std::string usb = add("usb", "1-1", "",
                                {"idVendor", "0403", "idProduct", "6001", "manufacturer", "Acme",
                                 "product", "Jog wheel", "serial", "A100"},
                                {"DEVTYPE", "usb_device"});
    const std::string interface = add("usb", "1-1:1.0", usb, {}, {"DEVTYPE", "usb_interface"});
    add("tty", "ttyUSB0", interface, {"dev", "188:0"}, {"DEVNAME", "/dev/ttyUSB0"});
    const std::string nameless =
        add("usb", "1-2", "", {"idVendor", "junk"}, {"DEVTYPE", "usb_device"});
    add("tty", "ttyUSB1", nameless, {"dev", "188:1"}, {"DEVNAME", "/dev/ttyUSB1"});

    std::vector<iSerialPortDetails::Details> list;
    ASSERT_TRUE(dynamic_cast<iSerialPortDetails*>(OS()->hardwareMgr())->getSerialPorts(list));
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].path_, L"/dev/ttyUSB0");
    EXPECT_EQ(list[0].manufacturer_, L"Acme");
    EXPECT_EQ(list[0].product_, L"Jog wheel");
    EXPECT_EQ(list[0].serialNumber_, L"A100");
    EXPECT_EQ(list[0].vendorID_, 0x0403);
    EXPECT_EQ(list[0].productID_, 0x6001);
    EXPECT_TRUE(list[1].manufacturer_.empty());
    EXPECT_EQ(list[1].vendorID_, 0);
}

TEST_F(SimulatedDevices, ALineCarriesDataAndModemLines)
{
    const int device = addLine("ttyUSB0");
    ModemLines modem(bed_, "/dev/ttyUSB0");
    const Tq::Ptr<PortReceiver> receiver(new PortReceiver);
    const Tq::Ptr<iComPort> port = OS()->hardwareMgr()->openComPort(L"/dev/ttyUSB0", receiver);
    ASSERT_TRUE(port);
    ASSERT_TRUE(port->setConfig({0, 0, 9600, 8}));
    ASSERT_EQ(write(device, "twenty bytes, burst.", 20), 20);
    ASSERT_TRUE(receiver->waitFor(20));
    EXPECT_EQ(receiver->bytes(), "twenty bytes, burst.");
    const std::pair<iComPort::eCommand, int> commands[] = {{iComPort::eDTROn, 2},
                                                           {iComPort::eRTSOn, 4},
                                                           {iComPort::eDTROff, 4},
                                                           {iComPort::eRTSOff, 0}};
    for (const auto& [command, lines] : commands) {
        EXPECT_TRUE(port->sendCommand(command));
        EXPECT_EQ(modem.lines, lines) << "after command " << command;
    }
    modem.refused = TIOCMSET;
    EXPECT_FALSE(port->sendCommand(iComPort::eDTROn));
    EXPECT_EQ(modem.lines, 0);
}

TEST_F(SimulatedDevices, ExclusiveUseThatTheDeviceRefusesIsReported)
{
    addLine("ttyUSB0");
    ModemLines modem(bed_, "/dev/ttyUSB0");
    modem.refused = TIOCEXCL;
    const Tq::Ptr<PortReceiver> receiver(new PortReceiver);
    for (const int error : {EBUSY, EIO}) {
        modem.error = error;
        EXPECT_EQ(outputOf([&] {
                      EXPECT_FALSE(OS()->hardwareMgr()->openComPort(L"/dev/ttyUSB0", receiver));
                  }),
                  "Error setting TIOCEXCL on /dev/ttyUSB0 - " + std::string(std::strerror(error)) +
                      "(" + std::to_string(error) + ").\n");
    }
}
