#ifndef USBBUS_H
#define USBBUS_H

#include <QString>

#include <memory>

/// Made-up USB devices, announced the way this system announces real ones; one body per platform.
class UsbBus
{
public:
    UsbBus();
    ~UsbBus();

    /// Why the system cannot be made to believe in the devices; "" when it can.
    QString problem() const;

    /// The device is present from now on, and the system announces its arrival.
    void plugIn(const QString &name, int vid, int pid);
    /// The device is there no longer, and the system announces its removal.
    void unplug(const QString &name);

private:
    Q_DISABLE_COPY_MOVE(UsbBus)

    struct Devices;
    std::unique_ptr<Devices> devices;
};

#endif // USBBUS_H
