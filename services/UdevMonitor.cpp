#include "UdevMonitor_p.h"

#include "UsbDevices_p.h"
#include "UtilsDetectDeviceWindows.h"

#include <QAbstractEventDispatcher>
#include <QByteArray>
#include <QSocketNotifier>

#include <libudev.h>

void UdevRelease::operator()(udev *object) const
{
    udev_unref(object);
}

void UdevRelease::operator()(udev_device *object) const
{
    udev_device_unref(object);
}

void UdevRelease::operator()(udev_monitor *object) const
{
    udev_monitor_unref(object);
}

UdevMonitor::UdevMonitor(UtilsDetectDeviceWindows *watcher)
    : QObject(watcher)
    , usbWatcher(watcher)
    , context(udev_new())
    , monitor(context ? udev_monitor_new_from_netlink(context.get(), "udev") : nullptr)
{
    listen();
}

UdevMonitor::~UdevMonitor() = default;

bool UdevMonitor::isListening() const
{
    return notifier != nullptr;
}

void UdevMonitor::listen()
{
    // Without an event loop nobody would ever read the socket.
    if (!monitor || !QAbstractEventDispatcher::instance())
        return;
    if (udev_monitor_filter_add_match_subsystem_devtype(monitor.get(), "usb", "usb_device") < 0
        || udev_monitor_enable_receiving(monitor.get()) < 0)
        return;
    notifier = std::make_unique<QSocketNotifier>(udev_monitor_get_fd(monitor.get()), QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, &UdevMonitor::receiveDevice);
}

/// One device at a time: the notifier comes back while there are more, also in an event loop that a receiver runs.
void UdevMonitor::receiveDevice()
{
    const std::unique_ptr<udev_device, UdevRelease> device(udev_monitor_receive_device(monitor.get()));
    if (!device)
        return;
    const QByteArray action = udev_device_get_action(device.get());
    // The attributes of a removed device are gone; the kernel sends this property with both announcements.
    const QString identifier = usbIdentifierFromProduct(udev_device_get_property_value(device.get(), "PRODUCT"));
    if (action == "add")
        reportUsbArrival(*usbWatcher, identifier);
    else if (action == "remove")
        reportUsbRemoval(*usbWatcher, identifier);
}
