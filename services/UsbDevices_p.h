#ifndef USBDEVICES_P_H
#define USBDEVICES_P_H

#include "UtilsWindowsTypes.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <utility>

class UtilsDetectDeviceWindows;

/// The text that stands for a pair of product and vendor identifier in device identifiers.
QString usbMatchString(const std::pair<int, int> &pidVid);

/// Those of the watched pairs whose match string is in \a identifier, in any letter case, in the order of the list.
QList<std::pair<int, int>> matchingUsbDevices(const QString &identifier, const QList<std::pair<int, int>> &watched);

/// The text in a buffer of UTF-16 characters, up to its first NUL or to its end.
QString boundedUtf16(const char16_t *characters, qsizetype capacity);

/// The identifier that a device gets from its kernel's PRODUCT property, vendor/product/release in hexadecimal numbers
/// without leading zeros; "" when the property is damaged.
QString usbIdentifierFromProduct(const QByteArray &product);

/// Emits the watcher's signal for every watched pair that a device with this identifier matches. A receiver may change
/// the watch list; the pairs of before are walked to their end.
void reportUsbArrival(UtilsDetectDeviceWindows &watcher, const QString &identifier);
void reportUsbRemoval(UtilsDetectDeviceWindows &watcher, const QString &identifier);

/// Asks the system for the identifiers of the devices that are present, each cut to \a maximumLength UTF-16 characters;
/// one body per platform.
QStringList presentUsbDevices(const GUID &interfaceClass, qint32 maximumLength);

#endif // USBDEVICES_P_H
