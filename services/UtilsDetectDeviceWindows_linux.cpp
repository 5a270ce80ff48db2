#include "UtilsDetectDeviceWindows.h"

#include "UdevMonitor_p.h"
#include "UsbDevices_p.h"

#include <QByteArray>

#include <libudev.h>

namespace {

struct EnumerationRelease
{
    void operator()(udev_enumerate *object) const
    {
        udev_enumerate_unref(object);
    }
};

} // namespace

bool UtilsDetectDeviceWindows::registerDeviceNotification(GUID interfaceClass)
{
    deviceInterfaceClass = interfaceClass;
    isInterfaceClassKnown = true;
    // As on Windows, an earlier registration goes on listening.
    auto *monitor = new UdevMonitor(this);
    if (monitor->isListening()) {
        deviceNotification = monitor;
    } else {
        deviceNotification = nullptr;
        delete monitor;
    }
    return deviceNotification != nullptr;
}

QStringList presentUsbDevices(const GUID &, qint32 maximumLength)
{
    const std::unique_ptr<udev, UdevRelease> context(udev_new());
    const std::unique_ptr<udev_enumerate, EnumerationRelease> devices(context ? udev_enumerate_new(context.get())
                                                                              : nullptr);
    if (!devices)
        return {};
    udev_enumerate_add_match_subsystem(devices.get(), "usb");
    udev_enumerate_add_match_property(devices.get(), "DEVTYPE", "usb_device");
    udev_enumerate_scan_devices(devices.get());

    QStringList identifiers;
    udev_list_entry *entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(devices.get()))
    {
        const std::unique_ptr<udev_device, UdevRelease> device(
            udev_device_new_from_syspath(context.get(), udev_list_entry_get_name(entry)));
        if (device)
            identifiers.append(
                usbIdentifierFromProduct(udev_device_get_property_value(device.get(), "PRODUCT")).left(maximumLength));
    }
    return identifiers;
}
