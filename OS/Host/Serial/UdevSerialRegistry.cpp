// The kernel's devices through libudev, which reads /sys itself: its daemon need not run. Whatever
// only the daemon knows is left alone.
#include "OS/Host/Serial/SerialRegistry.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <libudev.h>

namespace Host {

namespace {

struct Unref
{
    void operator()(udev* context) const { udev_unref(context); }
    void operator()(udev_enumerate* scan) const { udev_enumerate_unref(scan); }
    void operator()(udev_device* device) const { udev_device_unref(device); }
};

template <class T>
using Handle = std::unique_ptr<T, Unref>;

// Consoles and pseudo-terminals have no parent; of the ports that a PC may have, those without a
// chip are of type 0.
bool isSerialPort(udev_device* device)
{
    const char* type = udev_device_get_sysattr_value(device, "type");
    return udev_device_get_parent(device) && udev_device_get_devnode(device) &&
           !(type && std::strcmp(type, "0") == 0);
}

std::string attribute(udev_device* device, const char* name)
{
    const char* value = udev_device_get_sysattr_value(device, name);
    return value ? value : "";
}

std::uint16_t hexadecimal(const std::string& text)
{
    std::uint16_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value, 16);
    return value;
}

SerialPort describe(udev_device* device)
{
    SerialPort port;
    port.device = udev_device_get_devnode(device);
    // Belongs to the port's own device.
    udev_device* usb = udev_device_get_parent_with_subsystem_devtype(device, "usb", "usb_device");
    if (usb) {
        port.manufacturer = attribute(usb, "manufacturer");
        port.product = attribute(usb, "product");
        port.serialNumber = attribute(usb, "serial");
        port.vendorID = hexadecimal(attribute(usb, "idVendor"));
        port.productID = hexadecimal(attribute(usb, "idProduct"));
    }
    return port;
}

class UdevSerialRegistry final : public SerialRegistry
{
public:
    explicit UdevSerialRegistry(Handle<udev> context) : context_(std::move(context)) {}

    int list(std::vector<SerialPort>& ports) override
    {
        const Handle<udev_enumerate> scan(udev_enumerate_new(context_.get()));
        if (!scan)
            return -ENOMEM;
        int status = udev_enumerate_add_match_subsystem(scan.get(), "tty");
        if (status >= 0)
            status = udev_enumerate_scan_devices(scan.get());
        if (status < 0)
            return status;
        udev_list_entry* entry = nullptr;
        udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(scan.get()))
        {
            const Handle<udev_device> device(
                udev_device_new_from_syspath(context_.get(), udev_list_entry_get_name(entry)));
            if (device && isSerialPort(device.get())) // null: unplugged since
                ports.push_back(describe(device.get()));
        }
        return 0;
    }

private:
    Handle<udev> context_;
};

} // namespace

std::unique_ptr<SerialRegistry> openSerialRegistry()
{
    Handle<udev> context(udev_new());
    if (!context)
        return nullptr;
    return std::make_unique<UdevSerialRegistry>(std::move(context));
}

} // namespace Host
