#include "UtilsDetectDeviceWindows.h"

#include "UsbDevices_p.h"

// registerDeviceNotification() has one body per platform.

UtilsDetectDeviceWindows::UtilsDetectDeviceWindows(QObject *parent)
    : QObject(parent)
{ }

UtilsDetectDeviceWindows::~UtilsDetectDeviceWindows() = default;

UtilsDetectDeviceWindows &UtilsDetectDeviceWindows::getInstance()
{
    static UtilsDetectDeviceWindows instance(nullptr);
    return instance;
}

void UtilsDetectDeviceWindows::registerDeviceByPidVid(int pid, int vid)
{
    const std::pair<int, int> pidVid(pid, vid);
    if (!monitoredDevices.contains(pidVid))
        monitoredDevices.append(pidVid);
    searchDevice(pid, vid);
}

void UtilsDetectDeviceWindows::unregisterDeviceByPidVid(int pid, int vid)
{
    monitoredDevices.removeOne(std::pair<int, int>(pid, vid));
}

QList<std::pair<int, int>> UtilsDetectDeviceWindows::getMonitoringDevices() const
{
    return monitoredDevices;
}

QString UtilsDetectDeviceWindows::getVidPidString(std::pair<int, int> pidVid)
{
    return usbMatchString(pidVid);
}

HWND UtilsDetectDeviceWindows::getHwnd() const
{
    return window;
}

void *UtilsDetectDeviceWindows::getHDeviceNotify() const
{
    return deviceNotification;
}

void UtilsDetectDeviceWindows::searchDevice(int pid, int vid)
{
    if (!isInterfaceClassKnown)
        return;
    const QStringList identifiers = presentUsbDevices(deviceInterfaceClass, instanceIdLength);
    for (const QString &identifier : identifiers) {
        // Several present devices of one kind give one signal each.
        if (!matchingUsbDevices(identifier, {{pid, vid}}).isEmpty())
            Q_EMIT signalAttached(pid, vid);
    }
}
