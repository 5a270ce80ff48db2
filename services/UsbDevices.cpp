#include "UsbDevices_p.h"

#include "UtilsDetectDeviceWindows.h"

#include <QByteArray>

#include <algorithm>
#include <iterator>

static constexpr int IdentifierDigits = 4;
static constexpr int Hexadecimal = 16;

QString usbMatchString(const std::pair<int, int> &pidVid)
{
    const auto digits = [](int number) {
        return QString::number(number, Hexadecimal).rightJustified(IdentifierDigits, QLatin1Char('0'));
    };
    return QLatin1String("VID_") + digits(pidVid.second) + QLatin1String("&PID_") + digits(pidVid.first);
}

QList<std::pair<int, int>> matchingUsbDevices(const QString &identifier, const QList<std::pair<int, int>> &watched)
{
    // The match string has lower-case digits, the system's identifiers mostly upper-case ones.
    QList<std::pair<int, int>> matching;
    std::copy_if(watched.begin(), watched.end(), std::back_inserter(matching),
                 [&identifier](const std::pair<int, int> &pidVid) {
                     return identifier.contains(usbMatchString(pidVid), Qt::CaseInsensitive);
                 });
    return matching;
}

QString boundedUtf16(const char16_t *characters, qsizetype capacity)
{
    return QString::fromUtf16(characters, std::find(characters, characters + capacity, u'\0') - characters);
}

QString usbIdentifierFromProduct(const QByteArray &product)
{
    constexpr int FieldCount = 3;
    const QList<QByteArray> fields = product.split('/');
    if (fields.size() != FieldCount)
        return {};
    bool vendorIsNumber = false;
    bool productIsNumber = false;
    const int vendor = fields[0].toUShort(&vendorIsNumber, Hexadecimal);
    const int productNumber = fields[1].toUShort(&productIsNumber, Hexadecimal);
    return vendorIsNumber && productIsNumber ? usbMatchString({productNumber, vendor}) : QString();
}

void reportUsbArrival(UtilsDetectDeviceWindows &watcher, const QString &identifier)
{
    const QList<std::pair<int, int>> devices = matchingUsbDevices(identifier, watcher.getMonitoringDevices());
    for (const auto &[pid, vid] : devices)
        Q_EMIT watcher.signalAttached(pid, vid);
}

void reportUsbRemoval(UtilsDetectDeviceWindows &watcher, const QString &identifier)
{
    const QList<std::pair<int, int>> devices = matchingUsbDevices(identifier, watcher.getMonitoringDevices());
    for (const auto &[pid, vid] : devices)
        Q_EMIT watcher.signalDetached(pid, vid);
}
