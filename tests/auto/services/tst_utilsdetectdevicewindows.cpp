#include <UtilsDetectDeviceWindows.h>

#include "UsbBus.h"

#include "UsbDevices_p.h"

#include <UniProgTest.h>

#include <QApplication>
#include <QMetaMethod>
#include <QSignalSpy>

#include <algorithm>
#include <memory>
#include <string>

namespace {

using PidVid = std::pair<int, int>;
using PidVids = QList<PidVid>;

constexpr int PatienceMs = 30'000;
constexpr int Vid = 0x1A2B;
constexpr int Pid = 0x1234;
constexpr int OtherPid = 0x0ABC;

UtilsDetectDeviceWindows &watcher()
{
    return UtilsDetectDeviceWindows::getInstance();
}

} // namespace

Q_DECLARE_METATYPE(PidVids)

/// The devices are made up: by umockdev on Linux, by entries in the registry and broadcasts on Windows.
class tst_UtilsDetectDeviceWindows : public UniProgTest
{
    Q_OBJECT

public:
    tst_UtilsDetectDeviceWindows();

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    // These come first: they want a watcher that is not registered yet.
    void thereIsOneInstanceWithoutParent();
    void theMethodsAreTwoSignals();
    void beforeTheRegistrationNothingIsFound();
    void theRegistrationIsAccepted();

    void theMatchStringHasTheVendorFirst_data();
    void theMatchStringHasTheVendorFirst();
    void identifiersMatchBySubstring_data();
    void identifiersMatchBySubstring();
    void theTextOfABufferEndsAtItsFirstNul_data();
    void theTextOfABufferEndsAtItsFirstNul();
    void theKernelsNumbersBecomeAnIdentifier_data();
    void theKernelsNumbersBecomeAnIdentifier();

    void pairsKeepTheOrderOfTheirRegistration();
    void presentDevicesAreReportedBeforeTheCallReturns();
    void aPairIsInTheListWhenItsDevicesAreReported();
    void everyPresentDeviceOfAPairIsReported();
    void arrivalsAndRemovalsOfWatchedDevicesAreReported();
    void devicesThatAreNotWatchedAreNotReported();
    void aReceiverMayChangeTheWatchList();
    void aReceiverMayRunAnEventLoop();

    // The last one: nothing takes the second registration back.
    void aSecondRegistrationReportsEverythingOnceMore();

private:
    void record(const char *what, int pid, int vid);
    /// Waits for these reports and, by means of a device that is plugged in after them, for no more.
    bool onlyReported(const QStringList &reports);

    UsbBus bus;
    QStringList log;
};

tst_UtilsDetectDeviceWindows::tst_UtilsDetectDeviceWindows()
{
    connect(&watcher(), &UtilsDetectDeviceWindows::signalAttached, this,
            [this](int pid, int vid) { record("attached", pid, vid); });
    connect(&watcher(), &UtilsDetectDeviceWindows::signalDetached, this,
            [this](int pid, int vid) { record("detached", pid, vid); });
}

void tst_UtilsDetectDeviceWindows::record(const char *what, int pid, int vid)
{
    log.append(QStringLiteral("%1 %2 %3").arg(QLatin1String(what)).arg(pid, 4, 16, QLatin1Char('0')).arg(vid, 4, 16));
}

bool tst_UtilsDetectDeviceWindows::onlyReported(const QStringList &reports)
{
    constexpr int LastPid = 0xFFFF;
    const QString name = QStringLiteral("last");
    const QStringList lastReports{QStringLiteral("attached ffff 1a2b"), QStringLiteral("detached ffff 1a2b")};
    watcher().registerDeviceByPidVid(LastPid, Vid);
    bus.plugIn(name, Vid, LastPid);
    bus.unplug(name);
    const bool ended = QTest::qWaitFor([&] { return log.contains(lastReports.last()); }, PatienceMs);
    watcher().unregisterDeviceByPidVid(LastPid, Vid);
    if (ended && log == reports + lastReports) {
        log.clear();
        return true;
    }
    qInfo() << "Reported:" << log;
    return false;
}

void tst_UtilsDetectDeviceWindows::initTestCase()
{
    if (!bus.problem().isEmpty())
        QFAIL(qPrintable(bus.problem()));
}

void tst_UtilsDetectDeviceWindows::cleanup()
{
    const PidVids watched = watcher().getMonitoringDevices();
    for (const auto &[pid, vid] : watched)
        watcher().unregisterDeviceByPidVid(pid, vid);
    log.clear();
}

void tst_UtilsDetectDeviceWindows::thereIsOneInstanceWithoutParent()
{
    QCOMPARE(&UtilsDetectDeviceWindows::getInstance(), &watcher());
    QVERIFY(!watcher().parent());
    QVERIFY(watcher().getMonitoringDevices().isEmpty());
    QVERIFY(!watcher().getHwnd());
    QVERIFY(!watcher().getHDeviceNotify());
}

void tst_UtilsDetectDeviceWindows::theMethodsAreTwoSignals()
{
    const QMetaObject &metaObject = UtilsDetectDeviceWindows::staticMetaObject;
    QCOMPARE(metaObject.methodCount(), metaObject.methodOffset() + 2);
    const char *const signatures[] = {"signalAttached(int,int)", "signalDetached(int,int)"};
    for (int index = 0; index < 2; ++index) {
        const QMetaMethod method = metaObject.method(metaObject.methodOffset() + index);
        QCOMPARE(method.methodType(), QMetaMethod::Signal);
        QCOMPARE(method.methodSignature(), QByteArray(signatures[index]));
        QCOMPARE(method.parameterNames(), QByteArrayList({"pid", "vid"}));
    }
}

void tst_UtilsDetectDeviceWindows::beforeTheRegistrationNothingIsFound()
{
    bus.plugIn(QStringLiteral("early"), Vid, Pid);
    watcher().registerDeviceByPidVid(Pid, Vid);
    QCOMPARE(watcher().getMonitoringDevices(), PidVids({{Pid, Vid}}));
    QCOMPARE(log, QStringList());
    watcher().unregisterDeviceByPidVid(Pid, Vid);
    bus.unplug(QStringLiteral("early"));
}

void tst_UtilsDetectDeviceWindows::theRegistrationIsAccepted()
{
    QVERIFY(watcher().registerDeviceNotification(UsbBus::HidClass));
    QVERIFY(watcher().getHDeviceNotify());
#ifdef Q_OS_WIN
    QVERIFY(watcher().getHwnd());
#else
    QVERIFY(!watcher().getHwnd());
#endif
}

void tst_UtilsDetectDeviceWindows::theMatchStringHasTheVendorFirst_data()
{
    QTest::addColumn<int>("pid");
    QTest::addColumn<int>("vid");
    QTest::addColumn<QString>("text");
    QTest::newRow("four digits") << 0x1234 << 0x1A2B << "VID_1a2b&PID_1234";
    QTest::newRow("filled with zeros") << 0x0ABC << 0x1 << "VID_0001&PID_0abc";
    QTest::newRow("zero") << 0 << 0 << "VID_0000&PID_0000";
    QTest::newRow("the largest identifiers") << 0xFFFF << 0xFFFF << "VID_ffff&PID_ffff";
    QTest::newRow("five digits") << 0x12345 << 0xABCDE << "VID_abcde&PID_12345";
    QTest::newRow("a negative number") << -1 << 1 << "VID_0001&PID_00-1";
}

void tst_UtilsDetectDeviceWindows::theMatchStringHasTheVendorFirst()
{
    QFETCH(int, pid);
    QFETCH(int, vid);
    QFETCH(QString, text);
    QCOMPARE(watcher().getVidPidString({pid, vid}), text);
}

void tst_UtilsDetectDeviceWindows::identifiersMatchBySubstring_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<PidVids>("watched");
    QTest::addColumn<PidVids>("matching");
    const PidVids one = {{0x1234, 0x1A2B}};
    const QString path = QStringLiteral("\\\\?\\USB#%1#6&1f2e3d4c&0&1#{4d1e55b2-f16f-11cf-88cb-001111000030}");
    QTest::newRow("lower case") << path.arg(QStringLiteral("vid_1a2b&pid_1234")) << one << one;
    QTest::newRow("upper case") << path.arg(QStringLiteral("VID_1A2B&PID_1234")) << one << one;
    QTest::newRow("mixed case") << path.arg(QStringLiteral("Vid_1a2B&pId_1234")) << one << one;
    QTest::newRow("more digits") << QStringLiteral("VID_0001&PID_00023") << PidVids({{2, 1}}) << PidVids({{2, 1}});
    QTest::newRow("another product") << QStringLiteral("VID_1A2B&PID_1235") << one << PidVids();
    QTest::newRow("product and vendor exchanged") << QStringLiteral("VID_1234&PID_1A2B") << one << PidVids();
    QTest::newRow("a wide value") << QStringLiteral("VID_1A2B&PID_1234") << PidVids({{0x11234, 0x1A2B}}) << PidVids();
    QTest::newRow("a wide value that is there")
        << QStringLiteral("VID_1A2B&PID_11234") << PidVids({{0x11234, 0x1A2B}}) << PidVids({{0x11234, 0x1A2B}});
    QTest::newRow("nothing") << QString() << one << PidVids();
    QTest::newRow("nothing watched") << QStringLiteral("VID_1A2B&PID_1234") << PidVids() << PidVids();
    QTest::newRow("several, in the order of the list")
        << QStringLiteral("VID_1A2B&PID_12345") << PidVids({{0x12345, 0x1A2B}, {1, 1}, {0x1234, 0x1A2B}})
        << PidVids({{0x12345, 0x1A2B}, {0x1234, 0x1A2B}});
}

void tst_UtilsDetectDeviceWindows::identifiersMatchBySubstring()
{
    QFETCH(QString, identifier);
    QFETCH(PidVids, watched);
    QFETCH(PidVids, matching);
    QCOMPARE(matchingUsbDevices(identifier, watched), matching);
}

void tst_UtilsDetectDeviceWindows::theTextOfABufferEndsAtItsFirstNul_data()
{
    QTest::addColumn<QString>("buffer");
    QTest::addColumn<int>("capacity");
    QTest::addColumn<QString>("text");
    const QString content = QStringLiteral("USB") + QChar(0) + QStringLiteral("stale") + QChar(0);
    QTest::newRow("terminated") << content << int(content.size()) << "USB";
    QTest::newRow("nothing after the NUL") << content << 4 << "USB";
    QTest::newRow("not terminated") << content << 3 << "USB";
    QTest::newRow("cut") << content << 2 << "US";
    QTest::newRow("empty") << content << 0 << "";
    QTest::newRow("a NUL at the beginning") << content.mid(3) << 3 << "";
}

void tst_UtilsDetectDeviceWindows::theTextOfABufferEndsAtItsFirstNul()
{
    QFETCH(QString, buffer);
    QFETCH(int, capacity);
    QFETCH(QString, text);
    // Exactly as long, so that the sanitizers see a character too many.
    const std::u16string characters = buffer.left(capacity).toStdU16String();
    const std::unique_ptr<char16_t[]> copy(new char16_t[std::size_t(capacity)]);
    std::copy(characters.begin(), characters.end(), copy.get());
    QCOMPARE(boundedUtf16(copy.get(), capacity), text);
}

void tst_UtilsDetectDeviceWindows::theKernelsNumbersBecomeAnIdentifier_data()
{
    QTest::addColumn<QByteArray>("product");
    QTest::addColumn<QString>("identifier");
    QTest::newRow("usual") << QByteArray("1a2b/1234/100") << "VID_1a2b&PID_1234";
    QTest::newRow("short numbers") << QByteArray("1/abc/0") << "VID_0001&PID_0abc";
    QTest::newRow("none") << QByteArray() << "";
    QTest::newRow("two fields") << QByteArray("1a2b/1234") << "";
    QTest::newRow("four fields") << QByteArray("1a2b/1234/100/1") << "";
    QTest::newRow("no numbers") << QByteArray("vendor/product/100") << "";
    QTest::newRow("empty fields") << QByteArray("//") << "";
    QTest::newRow("too large") << QByteArray("1a2b/11234/100") << "";
    QTest::newRow("negative") << QByteArray("1a2b/-1/100") << "";
}

void tst_UtilsDetectDeviceWindows::theKernelsNumbersBecomeAnIdentifier()
{
    QFETCH(QByteArray, product);
    QFETCH(QString, identifier);
    QCOMPARE(usbIdentifierFromProduct(product), identifier);
}

void tst_UtilsDetectDeviceWindows::pairsKeepTheOrderOfTheirRegistration()
{
    watcher().registerDeviceByPidVid(3, 1);
    watcher().registerDeviceByPidVid(1, 3);
    watcher().registerDeviceByPidVid(2, 2);
    watcher().registerDeviceByPidVid(3, 1);
    const PidVids all = {{3, 1}, {1, 3}, {2, 2}};
    QCOMPARE(watcher().getMonitoringDevices(), all);
    watcher().unregisterDeviceByPidVid(3, 3);
    QCOMPARE(watcher().getMonitoringDevices(), all);
    watcher().unregisterDeviceByPidVid(1, 3);
    QCOMPARE(watcher().getMonitoringDevices(), PidVids({{3, 1}, {2, 2}}));
    QCOMPARE(log, QStringList());
}

void tst_UtilsDetectDeviceWindows::presentDevicesAreReportedBeforeTheCallReturns()
{
    bus.plugIn(QStringLiteral("present"), Vid, Pid);
    QVERIFY(onlyReported({}));
    const QStringList report(QStringLiteral("attached 1234 1a2b"));
    watcher().registerDeviceByPidVid(Pid, Vid);
    QCOMPARE(log, report);
    watcher().registerDeviceByPidVid(Pid, Vid);
    QCOMPARE(log, report + report);
    QCOMPARE(watcher().getMonitoringDevices(), PidVids({{Pid, Vid}}));
    watcher().registerDeviceByPidVid(OtherPid, Vid);
    QCOMPARE(log, report + report);
    watcher().unregisterDeviceByPidVid(Pid, Vid);
    bus.unplug(QStringLiteral("present"));
    QVERIFY(onlyReported(report + report));
    watcher().registerDeviceByPidVid(Pid, Vid);
    QCOMPARE(log, QStringList());
}

void tst_UtilsDetectDeviceWindows::aPairIsInTheListWhenItsDevicesAreReported()
{
    bus.plugIn(QStringLiteral("present"), Vid, Pid);
    QVERIFY(onlyReported({}));
    QObject receiver;
    PidVids watchedThen;
    connect(&watcher(), &UtilsDetectDeviceWindows::signalAttached, &receiver,
            [&watchedThen] { watchedThen = watcher().getMonitoringDevices(); });
    watcher().registerDeviceByPidVid(Pid, Vid);
    QCOMPARE(watchedThen, PidVids({{Pid, Vid}}));
    watcher().unregisterDeviceByPidVid(Pid, Vid);
    bus.unplug(QStringLiteral("present"));
    QVERIFY(onlyReported({QStringLiteral("attached 1234 1a2b")}));
}

void tst_UtilsDetectDeviceWindows::everyPresentDeviceOfAPairIsReported()
{
    bus.plugIn(QStringLiteral("one"), Vid, OtherPid);
    bus.plugIn(QStringLiteral("two"), Vid, OtherPid);
    bus.plugIn(QStringLiteral("three"), Vid, Pid);
    QVERIFY(onlyReported({}));
    watcher().registerDeviceByPidVid(OtherPid, Vid);
    const QStringList reports{QStringLiteral("attached 0abc 1a2b"), QStringLiteral("attached 0abc 1a2b")};
    QCOMPARE(log, reports);
    watcher().unregisterDeviceByPidVid(OtherPid, Vid);
    for (const char *name : {"one", "two", "three"})
        bus.unplug(QLatin1String(name));
    QVERIFY(onlyReported(reports));
}

void tst_UtilsDetectDeviceWindows::arrivalsAndRemovalsOfWatchedDevicesAreReported()
{
    watcher().registerDeviceByPidVid(Pid, Vid);
    watcher().registerDeviceByPidVid(OtherPid, Vid);
    bus.plugIn(QStringLiteral("one"), Vid, Pid);
    bus.plugIn(QStringLiteral("two"), Vid, OtherPid);
    bus.unplug(QStringLiteral("one"));
    bus.plugIn(QStringLiteral("one"), Vid, Pid);
    bus.unplug(QStringLiteral("two"));
    bus.unplug(QStringLiteral("one"));
    QVERIFY(onlyReported({QStringLiteral("attached 1234 1a2b"), QStringLiteral("attached 0abc 1a2b"),
                          QStringLiteral("detached 1234 1a2b"), QStringLiteral("attached 1234 1a2b"),
                          QStringLiteral("detached 0abc 1a2b"), QStringLiteral("detached 1234 1a2b")}));
}

void tst_UtilsDetectDeviceWindows::devicesThatAreNotWatchedAreNotReported()
{
    watcher().registerDeviceByPidVid(Pid, Vid);
    bus.plugIn(QStringLiteral("another product"), Vid, OtherPid);
    bus.plugIn(QStringLiteral("another vendor"), Vid + 1, Pid);
    bus.plugIn(QStringLiteral("exchanged"), Pid, Vid);
    for (const char *name : {"another product", "another vendor", "exchanged"})
        bus.unplug(QLatin1String(name));
    QVERIFY(onlyReported({}));

    watcher().unregisterDeviceByPidVid(Pid, Vid);
    bus.plugIn(QStringLiteral("late"), Vid, Pid);
    bus.unplug(QStringLiteral("late"));
    QVERIFY(onlyReported({}));
}

void tst_UtilsDetectDeviceWindows::aReceiverMayChangeTheWatchList()
{
    watcher().registerDeviceByPidVid(Pid, Vid);
    QObject receiver;
    connect(&watcher(), &UtilsDetectDeviceWindows::signalAttached, &receiver, [](int pid, int vid) {
        if (pid == Pid) {
            watcher().unregisterDeviceByPidVid(pid, vid);
            watcher().registerDeviceByPidVid(OtherPid, vid);
        }
    });
    bus.plugIn(QStringLiteral("one"), Vid, Pid);
    QTRY_COMPARE_WITH_TIMEOUT(watcher().getMonitoringDevices(), PidVids({{OtherPid, Vid}}), PatienceMs);
    bus.unplug(QStringLiteral("one"));
    bus.plugIn(QStringLiteral("two"), Vid, OtherPid);
    bus.unplug(QStringLiteral("two"));
    QVERIFY(onlyReported({QStringLiteral("attached 1234 1a2b"), QStringLiteral("attached 0abc 1a2b"),
                          QStringLiteral("detached 0abc 1a2b")}));
}

void tst_UtilsDetectDeviceWindows::aReceiverMayRunAnEventLoop()
{
    watcher().registerDeviceByPidVid(Pid, Vid);
    watcher().registerDeviceByPidVid(OtherPid, Vid);
    QObject receiver;
    bool nestedReportCame = false;
    connect(&watcher(), &UtilsDetectDeviceWindows::signalAttached, &receiver, [&](int pid) {
        if (pid != Pid)
            return;
        bus.plugIn(QStringLiteral("two"), Vid, OtherPid);
        QSignalSpy spy(&watcher(), &UtilsDetectDeviceWindows::signalAttached);
        nestedReportCame = log.contains(QStringLiteral("attached 0abc 1a2b")) || spy.wait(PatienceMs);
    });
    bus.plugIn(QStringLiteral("one"), Vid, Pid);
    QTRY_VERIFY_WITH_TIMEOUT(nestedReportCame, PatienceMs);
    bus.unplug(QStringLiteral("one"));
    bus.unplug(QStringLiteral("two"));
    QVERIFY(onlyReported({QStringLiteral("attached 1234 1a2b"), QStringLiteral("attached 0abc 1a2b"),
                          QStringLiteral("detached 1234 1a2b"), QStringLiteral("detached 0abc 1a2b")}));
}

void tst_UtilsDetectDeviceWindows::aSecondRegistrationReportsEverythingOnceMore()
{
    void *const firstHandle = watcher().getHDeviceNotify();
    const HWND firstWindow = watcher().getHwnd();
    QVERIFY(watcher().registerDeviceNotification(UsbBus::HidClass));
    QVERIFY(watcher().getHDeviceNotify() != firstHandle);
    QVERIFY(!firstWindow || watcher().getHwnd() != firstWindow);

    watcher().registerDeviceByPidVid(Pid, Vid);
    QCOMPARE(log, QStringList());
    bus.plugIn(QStringLiteral("one"), Vid, Pid);
    const QString attached = QStringLiteral("attached 1234 1a2b");
    QTRY_COMPARE_WITH_TIMEOUT(log, QStringList({attached, attached}), PatienceMs);
    bus.unplug(QStringLiteral("one"));
    const QString detached = QStringLiteral("detached 1234 1a2b");
    QTRY_COMPARE_WITH_TIMEOUT(log, QStringList({attached, attached, detached, detached}), PatienceMs);
}

UNIPROG_TEST_MAIN(tst_UtilsDetectDeviceWindows)
#include "tst_utilsdetectdevicewindows.moc"
