#include <UtilsDetectDeviceWindows.h>

#include "UsbBus.h"

#include <UniProgTest.h>

#include <QApplication>
#include <QRegularExpression>

#include <qt_windows.h>

#include <dbt.h>

#include <cstddef>
#include <cstring>
#include <cwchar>
#include <memory>
#include <string>

namespace {

constexpr int Vid = 0x1A2B;
constexpr int Pid = 0x1234;
constexpr GUID InterfaceClass = {0x4D1E55B2, 0xF16F, 0x11CF, {0x88, 0xCB, 0x00, 0x11, 0x11, 0x00, 0x00, 0x30}};
constexpr std::size_t NameOffset = offsetof(DEV_BROADCAST_DEVICEINTERFACE_W, dbcc_name);
const QString Path = QStringLiteral("\\\\?\\USB#VID_1A2B&PID_1234#5&1#{4d1e55b2-f16f-11cf-88cb-001111000030}");

UtilsDetectDeviceWindows &watcher()
{
    return UtilsDetectDeviceWindows::getInstance();
}

LRESULT send(UINT message, WPARAM wParam, const void *structure)
{
    return SendMessageW(watcher().getHwnd(), message, wParam, reinterpret_cast<LPARAM>(structure));
}

/// A broadcast about a device interface, with nothing behind the last character that it claims.
class Broadcast
{
public:
    explicit Broadcast(const QString &name, DWORD type = DBT_DEVTYP_DEVICEINTERFACE)
        : size(NameOffset + std::size_t(name.size()) * sizeof(wchar_t))
        , bytes(new char[size]())
    {
        set(offsetof(DEV_BROADCAST_HDR, dbch_size), DWORD(size));
        set(offsetof(DEV_BROADCAST_HDR, dbch_devicetype), type);
        std::memcpy(bytes.get() + NameOffset, name.utf16(), size - NameOffset);
    }

    void claimSize(DWORD claimed)
    {
        set(offsetof(DEV_BROADCAST_HDR, dbch_size), claimed);
    }

    const void *data() const
    {
        return bytes.get();
    }

private:
    void set(std::size_t offset, DWORD value)
    {
        std::memcpy(bytes.get() + offset, &value, sizeof(value));
    }

    std::size_t size;
    std::unique_ptr<char[]> bytes;
};

} // namespace

/// Real messages to the real window.
class tst_UtilsDetectDeviceWindows_messages : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void theWindowIsHiddenAndForMessagesOnly();
    void anArrivalAndARemovalAreReported_data();
    void anArrivalAndARemovalAreReported();
    void everyPairThatMatchesIsReportedInTheOrderOfTheList();
    void theListMayChangeWhileItIsWalked();
    void otherEventsAreIgnored_data();
    void otherEventsAreIgnored();
    void otherDeviceTypesAreIgnored_data();
    void otherDeviceTypesAreIgnored();
    void damagedBroadcastsAreIgnored_data();
    void damagedBroadcastsAreIgnored();
    void aNameEndsAtItsNulOrWithItsBroadcast();
    void otherMessagesGoToTheSystem();
    void closingTheWindowEndsTheRegistrationAndTheNextOneWorks();
    void theWatcherIsStartedAndClosedAsOftenAsOneLikes();
    void closingAnEarlierWindowClosesTheLatestToo();

private:
    UsbBus bus;
    QStringList log;
};

void tst_UtilsDetectDeviceWindows_messages::initTestCase()
{
    QVERIFY(watcher().registerDeviceNotification(InterfaceClass));
    const auto record = [this](const char *what, int pid, int vid) {
        log.append(
            QStringLiteral("%1 %2 %3").arg(QLatin1String(what)).arg(pid, 4, 16, QLatin1Char('0')).arg(vid, 0, 16));
    };
    connect(&watcher(), &UtilsDetectDeviceWindows::signalAttached, this,
            [record](int pid, int vid) { record("attached", pid, vid); });
    connect(&watcher(), &UtilsDetectDeviceWindows::signalDetached, this,
            [record](int pid, int vid) { record("detached", pid, vid); });
}

void tst_UtilsDetectDeviceWindows_messages::init()
{
    UniProgTest::init();
    watcher().registerDeviceByPidVid(Pid, Vid);
    QCOMPARE(log, QStringList());
}

void tst_UtilsDetectDeviceWindows_messages::cleanup()
{
    const QList<std::pair<int, int>> watched = watcher().getMonitoringDevices();
    for (const auto &[pid, vid] : watched)
        watcher().unregisterDeviceByPidVid(pid, vid);
    log.clear();
}

void tst_UtilsDetectDeviceWindows_messages::theWindowIsHiddenAndForMessagesOnly()
{
    const HWND window = watcher().getHwnd();
    QVERIFY(IsWindow(window));
    QVERIFY(!IsWindowVisible(window));
    QCOMPARE(GetWindowThreadProcessId(window, nullptr), GetCurrentThreadId());
    wchar_t name[64] = {};
    GetClassNameW(window, name, int(std::size(name)));
    const QString windowClass = QString::fromWCharArray(name);
    QVERIFY(QRegularExpression(QStringLiteral("^UsbHidDeviceWatcher[1-9][0-9]*$")).match(windowClass).hasMatch());
    GetWindowTextW(window, name, int(std::size(name)));
    QCOMPARE(QString::fromWCharArray(name), windowClass);
    // The suffix is the address of the window procedure.
    QCOMPARE(windowClass.mid(int(std::strlen("UsbHidDeviceWatcher"))).toULongLong(),
             quint64(GetWindowLongPtrW(window, GWLP_WNDPROC)));
    QCOMPARE(FindWindowExW(HWND_MESSAGE, nullptr, name, nullptr), window);
}

void tst_UtilsDetectDeviceWindows_messages::anArrivalAndARemovalAreReported_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("upper case") << Path;
    QTest::newRow("lower case") << Path.toLower();
    QTest::newRow("mixed case") << QStringLiteral("viD_1a2B&Pid_1234");
}

void tst_UtilsDetectDeviceWindows_messages::anArrivalAndARemovalAreReported()
{
    QFETCH(QString, name);
    const Broadcast broadcast(name);
    send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, broadcast.data());
    QCOMPARE(log, QStringList(QStringLiteral("attached 1234 1a2b")));
    send(WM_DEVICECHANGE, DBT_DEVICEREMOVECOMPLETE, broadcast.data());
    QCOMPARE(log, QStringList({QStringLiteral("attached 1234 1a2b"), QStringLiteral("detached 1234 1a2b")}));
}

void tst_UtilsDetectDeviceWindows_messages::everyPairThatMatchesIsReportedInTheOrderOfTheList()
{
    watcher().unregisterDeviceByPidVid(Pid, Vid);
    watcher().registerDeviceByPidVid(0x12345, Vid);
    watcher().registerDeviceByPidVid(0x4321, Vid);
    watcher().registerDeviceByPidVid(Pid, Vid);
    send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, Broadcast(QStringLiteral("VID_1A2B&PID_12345")).data());
    QCOMPARE(log, QStringList({QStringLiteral("attached 12345 1a2b"), QStringLiteral("attached 1234 1a2b")}));
}

void tst_UtilsDetectDeviceWindows_messages::theListMayChangeWhileItIsWalked()
{
    watcher().registerDeviceByPidVid(0x12345, Vid);
    QObject receiver;
    connect(&watcher(), &UtilsDetectDeviceWindows::signalAttached, &receiver, [] {
        watcher().unregisterDeviceByPidVid(Pid, Vid);
        watcher().unregisterDeviceByPidVid(0x12345, Vid);
    });
    const Broadcast broadcast(QStringLiteral("VID_1A2B&PID_12345"));
    send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, broadcast.data());
    const QStringList both{QStringLiteral("attached 1234 1a2b"), QStringLiteral("attached 12345 1a2b")};
    QCOMPARE(log, both);
    send(WM_DEVICECHANGE, DBT_DEVICEREMOVECOMPLETE, broadcast.data());
    QCOMPARE(log, both);
}

void tst_UtilsDetectDeviceWindows_messages::otherEventsAreIgnored_data()
{
    QTest::addColumn<uint>("event");
    QTest::newRow("nodes changed") << uint(DBT_DEVNODES_CHANGED);
    QTest::newRow("configuration changed") << uint(DBT_CONFIGCHANGED);
    QTest::newRow("query remove") << uint(DBT_DEVICEQUERYREMOVE);
    QTest::newRow("query remove failed") << uint(DBT_DEVICEQUERYREMOVEFAILED);
    QTest::newRow("remove pending") << uint(DBT_DEVICEREMOVEPENDING);
    QTest::newRow("type specific") << uint(DBT_DEVICETYPESPECIFIC);
    QTest::newRow("custom") << uint(DBT_CUSTOMEVENT);
    QTest::newRow("user defined") << uint(DBT_USERDEFINED);
    QTest::newRow("none") << 0U;
}

void tst_UtilsDetectDeviceWindows_messages::otherEventsAreIgnored()
{
    QFETCH(uint, event);
    send(WM_DEVICECHANGE, event, Broadcast(Path).data());
    QCOMPARE(log, QStringList());
}

void tst_UtilsDetectDeviceWindows_messages::otherDeviceTypesAreIgnored_data()
{
    QTest::addColumn<uint>("type");
    QTest::newRow("OEM") << uint(DBT_DEVTYP_OEM);
    QTest::newRow("node") << uint(DBT_DEVTYP_DEVNODE);
    QTest::newRow("volume") << uint(DBT_DEVTYP_VOLUME);
    QTest::newRow("port") << uint(DBT_DEVTYP_PORT);
    QTest::newRow("net") << uint(DBT_DEVTYP_NET);
    QTest::newRow("handle") << uint(DBT_DEVTYP_HANDLE);
}

void tst_UtilsDetectDeviceWindows_messages::otherDeviceTypesAreIgnored()
{
    QFETCH(uint, type);
    const Broadcast broadcast(Path, type);
    send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, broadcast.data());
    send(WM_DEVICECHANGE, DBT_DEVICEREMOVECOMPLETE, broadcast.data());
    QCOMPARE(log, QStringList());
}

void tst_UtilsDetectDeviceWindows_messages::damagedBroadcastsAreIgnored_data()
{
    QTest::addColumn<uint>("size");
    QTest::newRow("of no bytes") << 0U;
    QTest::newRow("shorter than a header") << uint(sizeof(DEV_BROADCAST_HDR) - 1);
    QTest::newRow("a header only") << uint(sizeof(DEV_BROADCAST_HDR));
    QTest::newRow("without the whole class") << uint(NameOffset - 1);
    QTest::newRow("without a name") << uint(NameOffset);
    QTest::newRow("half a character") << uint(NameOffset + 1);
}

void tst_UtilsDetectDeviceWindows_messages::damagedBroadcastsAreIgnored()
{
    QFETCH(uint, size);
    Broadcast broadcast(Path);
    broadcast.claimSize(size);
    for (const WPARAM event : {DBT_DEVICEARRIVAL, DBT_DEVICEREMOVECOMPLETE}) {
        send(WM_DEVICECHANGE, event, broadcast.data());
        send(WM_DEVICECHANGE, event, nullptr);
    }
    QCOMPARE(log, QStringList());
}

void tst_UtilsDetectDeviceWindows_messages::aNameEndsAtItsNulOrWithItsBroadcast()
{
    const QString text = watcher().getVidPidString({Pid, Vid});
    send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, Broadcast(QStringLiteral("USB") + QChar(0) + text).data());
    Broadcast cut(text);
    cut.claimSize(DWORD(NameOffset + std::size_t(text.size() - 1) * sizeof(wchar_t)));
    send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, cut.data());
    QCOMPARE(log, QStringList());
    send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, Broadcast(text).data());
    QCOMPARE(log, QStringList(QStringLiteral("attached 1234 1a2b")));
}

void tst_UtilsDetectDeviceWindows_messages::otherMessagesGoToTheSystem()
{
    send(WM_USER, DBT_DEVICEARRIVAL, Broadcast(Path).data());
    QCOMPARE(log, QStringList());
    QVERIFY(SetWindowTextW(watcher().getHwnd(), L"another text"));
    QCOMPARE(GetWindowTextLengthW(watcher().getHwnd()), int(std::wcslen(L"another text")));
}

void tst_UtilsDetectDeviceWindows_messages::closingTheWindowEndsTheRegistrationAndTheNextOneWorks()
{
    constexpr int Rounds = 10;
    const QString attached = QStringLiteral("attached 1234 1a2b");
    for (int round = 0; round < Rounds; ++round) {
        const HWND window = watcher().getHwnd();
        send(WM_CLOSE, 0, nullptr);
        QVERIFY(!IsWindow(window));
        QCOMPARE(watcher().getHwnd(), window);
        QVERIFY(watcher().registerDeviceNotification(InterfaceClass));
        QVERIFY(IsWindow(watcher().getHwnd()));
        log.clear();
        send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, Broadcast(Path).data());
        QCOMPARE(log, QStringList(attached));
    }
}

void tst_UtilsDetectDeviceWindows_messages::theWatcherIsStartedAndClosedAsOftenAsOneLikes()
{
    constexpr int Rounds = 5;
    const QString attached = QStringLiteral("attached 1234 1a2b");
    const QString detached = QStringLiteral("detached 1234 1a2b");
    for (int round = 0; round < Rounds; ++round) {
        send(WM_CLOSE, 0, nullptr);
        QVERIFY(!IsWindow(watcher().getHwnd()));
        log.clear();
        bus.plugIn(QStringLiteral("unheard"), Vid, Pid);
        QCOMPARE(log, QStringList());
        QVERIFY(watcher().registerDeviceNotification(InterfaceClass));
        QCOMPARE(log, QStringList()); // only a search finds what is present
        watcher().registerDeviceByPidVid(Pid, Vid);
        bus.plugIn(QStringLiteral("heard"), Vid, Pid);
        QCOMPARE(log, QStringList({attached, attached}));
        watcher().registerDeviceByPidVid(Pid, Vid); // two are present
        bus.unplug(QStringLiteral("unheard"));
        bus.unplug(QStringLiteral("heard"));
        QCOMPARE(log, QStringList({attached, attached, attached, attached, detached, detached}));
        QCOMPARE(watcher().getMonitoringDevices().size(), 1);
    }
}

// What is ended is the stored registration and window, and then the system closes the window that got the message.
void tst_UtilsDetectDeviceWindows_messages::closingAnEarlierWindowClosesTheLatestToo()
{
    const HWND earlier = watcher().getHwnd();
    QVERIFY(watcher().registerDeviceNotification(InterfaceClass));
    const HWND latest = watcher().getHwnd();
    QVERIFY(earlier != latest);
    QVERIFY(IsWindow(earlier));
    QVERIFY(IsWindow(latest));
    SendMessageW(earlier, WM_CLOSE, 0, 0);
    QVERIFY(!IsWindow(earlier));
    QVERIFY(!IsWindow(latest));
    QCOMPARE(watcher().getHwnd(), latest);
}

UNIPROG_TEST_MAIN(tst_UtilsDetectDeviceWindows_messages)
#include "tst_utilsdetectdevicewindows_messages.moc"
