#include "DevicesPage.h"

#include <UtilsDetectDeviceWindows.h>

#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QTime>
#include <QVBoxLayout>

namespace {

enum Column { DeviceColumn, ArrivalColumn, RemovalColumn, ColumnCount };

constexpr int HexadecimalBase = 16;
constexpr int IdDigits = 4;

QString textOf(int vid, int pid)
{
    const auto digits = [](int id) {
        return QString::number(id, HexadecimalBase).toUpper().rightJustified(IdDigits, QLatin1Char('0'));
    };
    return digits(vid) + u':' + digits(pid);
}

QString now()
{
    return QTime::currentTime().toString(QStringLiteral("HH:mm:ss"));
}

} // namespace

DevicesPage::DevicesPage(ProgrammerSession *session, QWidget *parent)
    : Page(session, QStringLiteral("devicesPage"), tr("Devices"), QStringLiteral("programmer/devices.html"), parent)
    , watchLabel(new QLabel(tr("No USB devices are watched."), this))
    , table(new QTableWidget(0, ColumnCount, this))
{
    watchLabel->setObjectName(QStringLiteral("watched"));
    watchLabel->setWordWrap(true);
    body()->addWidget(watchLabel);
    setupTable();
    body()->addWidget(table, 1);
    if (session->isSimulated()) {
        addText(tr("The simulated programmer is no USB device and is not listed. It can be made to signal all the "
                   "same, as a real one among others would be found."));
        addOperations(ProgrammerSession::Subject::Device);
    }
}

DevicesPage::~DevicesPage()
{
    for (const auto &[vid, pid] : std::as_const(watched))
        UtilsDetectDeviceWindows::getInstance().unregisterDeviceByPidVid(pid, vid);
}

void DevicesPage::watch(const QList<UsbId> &ids)
{
    UtilsDetectDeviceWindows &watcher = UtilsDetectDeviceWindows::getInstance();
    // The watcher is the process's, not the window's: a second registration would report everything twice.
    if (!watcher.getHDeviceNotify() && !watcher.registerDeviceNotification(UsbDevices)) {
        watchLabel->setText(tr("This system does not tell which USB devices come and go."));
        return;
    }
    connect(&watcher, &UtilsDetectDeviceWindows::signalAttached, this, &DevicesPage::attached, Qt::UniqueConnection);
    connect(&watcher, &UtilsDetectDeviceWindows::signalDetached, this, &DevicesPage::detached, Qt::UniqueConnection);
    for (const UsbId &id : ids) {
        if (watched.contains(id))
            continue;
        watched.append(id);
        watcher.registerDeviceByPidVid(id.second, id.first);
    }
    QStringList texts;
    for (const auto &[vid, pid] : std::as_const(watched))
        texts.append(textOf(vid, pid));
    watchLabel->setText(tr("USB devices that are watched for: %1").arg(texts.join(tr(", "))));
}

void DevicesPage::setupTable()
{
    table->setObjectName(QStringLiteral("devices"));
    table->setAccessibleName(tr("Devices that came and went"));
    table->setHorizontalHeaderLabels({tr("Device"), tr("Arrived"), tr("Removed")});
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setTabKeyNavigation(false);
}

void DevicesPage::attached(int pid, int vid)
{
    const int row = table->rowCount();
    table->insertRow(row);
    table->setItem(row, DeviceColumn, new QTableWidgetItem(textOf(vid, pid)));
    table->setItem(row, ArrivalColumn, new QTableWidgetItem(now()));
    table->setItem(row, RemovalColumn, new QTableWidgetItem);
    table->scrollToBottom();
}

/// Of several devices with the same identifiers nobody can tell which one went: the first is as good as any.
void DevicesPage::detached(int pid, int vid)
{
    for (int row = 0; row < table->rowCount(); ++row) {
        QTableWidgetItem *removal = table->item(row, RemovalColumn);
        if (table->item(row, DeviceColumn)->text() == textOf(vid, pid) && removal->text().isEmpty()) {
            removal->setText(now());
            return;
        }
    }
}
