#include "ProgrammerApplication.h"

#include "UsbBus.h"

#include <UtilsDetectDeviceWindows.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QLabel>
#include <QTableWidget>
#include <QTime>

/// Devices that come and go; they are made up as for the test of the watcher.
class tst_ProgrammerDevices : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void nothingIsWatchedUnlessAsked();
    void presentDevicesAreShownAtOnce();
    void arrivalsAndRemovalsAreShownWithTheirTimes();
    void devicesWithTheSameIdentifiersLeaveOneAfterAnother();
    void aSecondCallWatchesMore();
    void theWindowLeavesNothingWatched();

private:
    UsbBus bus{DevicesPage::UsbDevices};
};

namespace {

constexpr int LongWait = ProgrammerApplication::LongWait;
constexpr int Vid = 0x1A2B;
constexpr int Pid = 0x0ABC;
constexpr int OtherPid = 0x1234;

QList<DevicesPage::UsbId> ids()
{
    return {{Vid, Pid}};
}

QTableWidget *tableOf(const ProgrammerApplication &application)
{
    return application.find<QTableWidget>("devices");
}

QString cell(const ProgrammerApplication &application, int row, int column)
{
    return tableOf(application)->item(row, column)->text();
}

bool isTime(const QString &text)
{
    return QTime::fromString(text, QStringLiteral("HH:mm:ss")).isValid();
}

} // namespace

void tst_ProgrammerDevices::initTestCase()
{
    if (!bus.problem().isEmpty())
        QFAIL(qPrintable(bus.problem()));
}

void tst_ProgrammerDevices::nothingIsWatchedUnlessAsked()
{
    const ProgrammerApplication application;
    QCOMPARE(application.find<QLabel>("watched")->text(), QStringLiteral("No USB devices are watched."));
    QVERIFY(!UtilsDetectDeviceWindows::getInstance().getHDeviceNotify());
}

void tst_ProgrammerDevices::presentDevicesAreShownAtOnce()
{
    bus.plugIn(QStringLiteral("early"), Vid, Pid);
    ProgrammerApplication application;
    application.window.watchDevices(ids());
    QCOMPARE(application.find<QLabel>("watched")->text(),
             QStringLiteral("USB devices that are watched for: 1A2B:0ABC"));
    QCOMPARE(tableOf(application)->rowCount(), 1);
    QCOMPARE(cell(application, 0, 0), QStringLiteral("1A2B:0ABC"));
    QVERIFY(isTime(cell(application, 0, 1)));
    QCOMPARE(cell(application, 0, 2), QString());
    bus.unplug(QStringLiteral("early"));
    QTRY_VERIFY_WITH_TIMEOUT(isTime(cell(application, 0, 2)), LongWait);
}

void tst_ProgrammerDevices::arrivalsAndRemovalsAreShownWithTheirTimes()
{
    ProgrammerApplication application;
    application.window.watchDevices({{Vid, Pid}, {Vid, OtherPid}});
    QCOMPARE(tableOf(application)->rowCount(), 0);
    bus.plugIn(QStringLiteral("stranger"), Vid, 0xFFFF);
    bus.plugIn(QStringLiteral("first"), Vid, OtherPid);
    QTRY_COMPARE_WITH_TIMEOUT(tableOf(application)->rowCount(), 1, LongWait);
    QCOMPARE(cell(application, 0, 0), QStringLiteral("1A2B:1234"));
    QCOMPARE(cell(application, 0, 2), QString());
    bus.unplug(QStringLiteral("first"));
    QTRY_VERIFY_WITH_TIMEOUT(isTime(cell(application, 0, 2)), LongWait);
    bus.plugIn(QStringLiteral("again"), Vid, OtherPid);
    QTRY_COMPARE_WITH_TIMEOUT(tableOf(application)->rowCount(), 2, LongWait);
    QCOMPARE(cell(application, 1, 2), QString());
    bus.unplug(QStringLiteral("again"));
    QTRY_VERIFY_WITH_TIMEOUT(isTime(cell(application, 1, 2)), LongWait);
    bus.unplug(QStringLiteral("stranger"));
}

void tst_ProgrammerDevices::devicesWithTheSameIdentifiersLeaveOneAfterAnother()
{
    ProgrammerApplication application;
    application.window.watchDevices(ids());
    bus.plugIn(QStringLiteral("one"), Vid, Pid);
    bus.plugIn(QStringLiteral("two"), Vid, Pid);
    QTRY_COMPARE_WITH_TIMEOUT(tableOf(application)->rowCount(), 2, LongWait);
    bus.unplug(QStringLiteral("one"));
    QTRY_VERIFY_WITH_TIMEOUT(isTime(cell(application, 0, 2)), LongWait);
    QCOMPARE(cell(application, 1, 2), QString());
    bus.unplug(QStringLiteral("two"));
    QTRY_VERIFY_WITH_TIMEOUT(isTime(cell(application, 1, 2)), LongWait);
}

void tst_ProgrammerDevices::aSecondCallWatchesMore()
{
    ProgrammerApplication application;
    application.window.watchDevices(ids());
    application.window.watchDevices({{Vid, Pid}, {Vid, OtherPid}});
    bus.plugIn(QStringLiteral("once"), Vid, Pid);
    bus.plugIn(QStringLiteral("last"), Vid, OtherPid);
    QTRY_VERIFY_WITH_TIMEOUT(tableOf(application)->rowCount() > 1, LongWait);
    QCOMPARE(tableOf(application)->rowCount(), 2);
    bus.unplug(QStringLiteral("once"));
    bus.unplug(QStringLiteral("last"));
    QTRY_VERIFY_WITH_TIMEOUT(isTime(cell(application, 1, 2)), LongWait);
}

void tst_ProgrammerDevices::theWindowLeavesNothingWatched()
{
    {
        ProgrammerApplication application;
        application.window.watchDevices(ids());
        QCOMPARE(UtilsDetectDeviceWindows::getInstance().getMonitoringDevices().size(), 1);
    }
    QVERIFY(UtilsDetectDeviceWindows::getInstance().getMonitoringDevices().isEmpty());
}

UNIPROG_TEST_MAIN(tst_ProgrammerDevices)

#include "tst_programmerdevices.moc"
