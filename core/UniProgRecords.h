#ifndef UNIPROGRECORDS_H
#define UNIPROGRECORDS_H

#include <QString>
#include <QtGlobal>

/// The records that pass through UniProgInterface. They are plain values: copy them freely, share them with nobody.

/// Which link of the programmer a connection uses. The values are fixed: they cross to the device.
enum OPERATION_TYPE {
    OPERATION_TYPE_CONFIGURATION = 0, ///< configuration link: settings, WiFi, power module configuration, bootloaders
    OPERATION_TYPE_DEBUG = 1 ///< debug link: the target, its supply, and what reads or finds the device
};

/// The device a connection is made to when it is not the one connected last.
struct TSelectedDevice
{
    /// How the device is reached.
    enum Link : qint32 { Usb = 0, WiFi = 1 };

    qint32 link = Usb;
    quint16 vendorId = 0;
    quint16 productId = 0;
    quint16 port = 0; ///< TCP port of a WiFi device
    QString name;
    QString serialNumber;
    QString firmwareVersion;
    QString hardwareRevision;
    QString address; ///< IP address of a WiFi device
    QString path; ///< system path of a USB device
};

/// The configuration stored in a device.
struct TConfiguration
{
    QString deviceName;
    QString networkName;
    QString networkPassword; ///< secret: never log it
    bool wifiEnabled = false;
    quint32 debugClock = 0; ///< SWD/JTAG clock in Hz
};

/// What the power module says of itself.
struct TPowerInfo
{
    quint16 firmwareVersion = 0; ///< major in the high byte, minor in the low byte
    quint8 channelCount = 0;
    bool batteryPresent = false;
    quint8 batteryLevel = 0; ///< per cent
};

/// State of the supply pin of the target.
struct TPowerSupplyState
{
    qint32 state = 0; ///< 1: the target is powered from outside
    float level = 0.0F; ///< volts measured at the pin
};

#endif // UNIPROGRECORDS_H
