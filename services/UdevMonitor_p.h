#ifndef UDEVMONITOR_P_H
#define UDEVMONITOR_P_H

#include <QObject>

#include <memory>

struct udev;
struct udev_device;
struct udev_monitor;

struct UdevRelease
{
    void operator()(udev *object) const;
    void operator()(udev_device *object) const;
    void operator()(udev_monitor *object) const;
};

class QSocketNotifier;
class UtilsDetectDeviceWindows;

/// Listens to udev's announcements of USB devices, on the event loop of the thread that built it, and has the watcher
/// report them.
class UdevMonitor : public QObject
{
    Q_OBJECT

public:
    /// The watcher becomes the parent.
    explicit UdevMonitor(UtilsDetectDeviceWindows *watcher);
    ~UdevMonitor() override;

    /// Whether udev is listened to.
    bool isListening() const;

private:
    Q_DISABLE_COPY_MOVE(UdevMonitor)

    void listen();
    void receiveDevice();

    UtilsDetectDeviceWindows *const usbWatcher;
    std::unique_ptr<udev, UdevRelease> context;
    std::unique_ptr<udev_monitor, UdevRelease> monitor;
    std::unique_ptr<QSocketNotifier> notifier; // goes before the socket it watches
};

#endif // UDEVMONITOR_P_H
