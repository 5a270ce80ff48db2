#ifndef UTILSDETECTDEVICEWINDOWS_H
#define UTILSDETECTDEVICEWINDOWS_H

#include "UtilsWindowsTypes.h"
#include "uniprogutils_export.h"

#include <QList>
#include <QObject>
#include <QString>

#include <utility>

/// Tells when a USB device with a watched product and vendor identifier is plugged in or removed, and which watched
/// devices are there already.
///
/// On Windows a hidden window receives the system's broadcasts for one device interface class. On Linux udev reports
/// the USB devices; the interface class is ignored there and the window handle is null.
///
///     UtilsDetectDeviceWindows &watcher = UtilsDetectDeviceWindows::getInstance();
///     connect(&watcher, &UtilsDetectDeviceWindows::signalAttached, this, &MainWindow::programmerAttached);
///     connect(&watcher, &UtilsDetectDeviceWindows::signalDetached, this, &MainWindow::programmerDetached);
///     watcher.registerDeviceNotification(GUID_DEVINTERFACE_HID); // any GUID on Linux
///     watcher.registerDeviceByPidVid(0x1234, 0x1A2B); // reports a present device at once
///
/// The product identifier comes first in every parameter list, the vendor identifier first in the match string.
///
/// GUI thread only: the signals come from its event loop, except for those of registerDeviceByPidVid(). Receivers may
/// change the watch list. The single instance owns itself and lives until the process ends, longer than QApplication.
///
/// A device is reported as soon as the system announces it. Its driver may still be starting and its access rights may
/// not be set yet, so opening it can fail for a moment: try again a little later.
class UNIPROGUTILS_EXPORT UtilsDetectDeviceWindows : public QObject
{
    Q_OBJECT

public:
    /// The watcher, built by the first call and destroyed when the process ends. Building it asks nothing of the
    /// system.
    static UtilsDetectDeviceWindows &getInstance();
    /// Releases the watch list only: on Windows the window and its registration stay. Send WM_CLOSE to getHwnd() before
    /// that for a clean end.
    ~UtilsDetectDeviceWindows() override;

    /// Starts to listen to arrivals and removals of devices with the interface class \a interfaceClass, which later
    /// searches for present devices use as well. Call it once, on the thread that runs the GUI event loop, while the
    /// application object exists. Returns whether the system accepted it.
    ///
    /// A second call is not guarded: it listens a second time, so every arrival and removal is reported once more, and
    /// the handles are those of the last call.
    bool registerDeviceNotification(GUID interfaceClass);

    /// Watches the devices with this product and vendor identifier, then emits signalAttached() for each one that is
    /// present, before it returns. A pair that is watched already keeps its place and is only searched for again.
    /// Before registerDeviceNotification() no device is found. A value above 0xFFFF matches no device: none has an
    /// identifier of that many digits.
    void registerDeviceByPidVid(int pid, int vid);
    /// Watches the pair no longer. No signal is emitted; a pair that is not watched is ignored.
    void unregisterDeviceByPidVid(int pid, int vid);
    /// The watched pairs, product identifier first, in the order of their registration.
    QList<std::pair<int, int>> getMonitoringDevices() const;

    /// What is looked for, anywhere and in any letter case, in the identifiers that the system gives to devices:
    /// "VID_1a2b&PID_1234" for the product 0x1234 of the vendor 0x1A2B. At least four digits each, more for a value
    /// above 0xFFFF.
    QString getVidPidString(std::pair<int, int> pidVid);

    /// The hidden window; null before registerDeviceNotification(), and always on Linux.
    HWND getHwnd() const;
    /// What the system gave for the registration; null before registerDeviceNotification() and when it failed.
    void *getHDeviceNotify() const;

Q_SIGNALS:
    /// A watched device was plugged in, or was found present when it was registered.
    void signalAttached(int pid, int vid);
    /// A watched device was removed.
    void signalDetached(int pid, int vid);

private:
    explicit UtilsDetectDeviceWindows(QObject *parent);
    Q_DISABLE_COPY_MOVE(UtilsDetectDeviceWindows)

    void searchDevice(int pid, int vid);

    HDEVNOTIFY deviceNotification = nullptr;
    HWND window = nullptr;
    GUID deviceInterfaceClass = {};
    const qint32 instanceIdLength = 500; ///< characters that are read of a device's identifier
    QList<std::pair<int, int>> monitoredDevices;
    bool isInterfaceClassKnown = false; ///< nothing is found before, also where the class is ignored
};

#endif // UTILSDETECTDEVICEWINDOWS_H
