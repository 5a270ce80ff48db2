#ifndef USBBUS_H
#define USBBUS_H

#include <UtilsWindowsTypes.h>

#include <QString>

#include <memory>

/// Made-up USB devices, announced the way this system announces real ones; one body per platform.
class UsbBus
{
public:
    /// Human interface devices.
    static constexpr GUID HidClass = {0x4D1E55B2, 0xF16F, 0x11CF, {0x88, 0xCB, 0x00, 0x11, 0x11, 0x00, 0x00, 0x30}};

    /// Its devices have the interface @p interfaceClass; Linux does not look at it.
    explicit UsbBus(const GUID &interfaceClass = HidClass);
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
