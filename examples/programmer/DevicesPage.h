#ifndef DEVICESPAGE_H
#define DEVICESPAGE_H

#include "Page.h"

#include <UtilsWindowsTypes.h>

#include <QList>

#include <utility>

class QLabel;
class QTableWidget;

/// The page that shows watched USB devices as they come and go, and can make the programmer signal.
class DevicesPage : public Page
{
    Q_OBJECT

public:
    /// The interface class that is watched: all USB devices, whatever they are. Only Windows looks at it.
    static constexpr GUID UsbDevices = {0xA5DCBF10, 0x6530, 0x11D2, {0x90, 0x1F, 0x00, 0xC0, 0x4F, 0xB9, 0x51, 0xED}};

    explicit DevicesPage(ProgrammerSession *session, QWidget *parent = nullptr);
    /// Watches no longer.
    ~DevicesPage() override;

    /// A vendor and a product identifier.
    using UsbId = std::pair<int, int>;

    /// From now on shows the devices with these identifiers: those that are there, and each one that comes or goes. A
    /// program without a user does not call it.
    void watch(const QList<UsbId> &ids);

private:
    void setupTable();
    void attached(int pid, int vid);
    void detached(int pid, int vid);

    QList<UsbId> watched;
    QLabel *watchLabel;
    QTableWidget *table;
};

#endif // DEVICESPAGE_H
