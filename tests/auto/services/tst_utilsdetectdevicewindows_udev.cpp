#include <UtilsDetectDeviceWindows.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QScopeGuard>

#include <umockdev.h>

namespace {

constexpr int PatienceMs = 30'000;
constexpr int Vid = 0x1A2B;
constexpr int Pid = 0x1234;
constexpr char KernelIds[] = "1a2b/1234/100";
const QString Attached = QStringLiteral("attached");
const QString Detached = QStringLiteral("detached");

UtilsDetectDeviceWindows &watcher()
{
    return UtilsDetectDeviceWindows::getInstance();
}

} // namespace

/// What udev has to say beside arrivals and removals, of devices that umockdev makes up.
class tst_UtilsDetectDeviceWindows_udev : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    // This one comes first: nothing takes an accepted registration back.
    void aRefusedRegistrationIsToldOf();
    void theNextRegistrationIsAccepted();

    void interfacesAndDriversAreNoDevices();
    void otherSubsystemsAreNoDevices();
    void aDeviceWithoutNumbersIsNotReported();

private:
    QByteArray add(const char *subsystem, const char *name, const char *parent, const char *type, const char *product);
    void announce(const char *action, const QByteArray &path);
    void remove(const QByteArray &path);

    UMockdevTestbed *testbed = nullptr;
    QStringList log;
};

/// Makes a device up and announces its arrival.
QByteArray tst_UtilsDetectDeviceWindows_udev::add(const char *subsystem, const char *name, const char *parent,
                                                  const char *type, const char *product)
{
    gchar *const path = umockdev_testbed_add_device(testbed, subsystem, name, parent, nullptr, "DEVTYPE", type,
                                                    "PRODUCT", product, nullptr);
    const QByteArray result(path);
    g_free(path);
    return result;
}

void tst_UtilsDetectDeviceWindows_udev::announce(const char *action, const QByteArray &path)
{
    umockdev_testbed_uevent(testbed, path.constData(), action);
}

void tst_UtilsDetectDeviceWindows_udev::remove(const QByteArray &path)
{
    announce("remove", path);
    umockdev_testbed_remove_device(testbed, path.constData());
}

void tst_UtilsDetectDeviceWindows_udev::initTestCase()
{
    QVERIFY2(qgetenv("LD_PRELOAD").contains("libumockdev-preload"),
             "Without libumockdev-preload.so.0 in LD_PRELOAD, udev shows the real devices.");
    testbed = umockdev_testbed_new();
    connect(&watcher(), &UtilsDetectDeviceWindows::signalAttached, this, [this] { log.append(Attached); });
    connect(&watcher(), &UtilsDetectDeviceWindows::signalDetached, this, [this] { log.append(Detached); });
}

void tst_UtilsDetectDeviceWindows_udev::init()
{
    UniProgTest::init();
    watcher().registerDeviceByPidVid(Pid, Vid);
    QCOMPARE(log, QStringList());
}

void tst_UtilsDetectDeviceWindows_udev::cleanup()
{
    watcher().unregisterDeviceByPidVid(Pid, Vid);
    log.clear();
}

void tst_UtilsDetectDeviceWindows_udev::cleanupTestCase()
{
    if (testbed)
        g_object_unref(testbed);
}

void tst_UtilsDetectDeviceWindows_udev::aRefusedRegistrationIsToldOf()
{
    // The sockets of the made-up udev are files of its folder.
    const char variable[] = "UMOCKDEV_DIR";
    const QByteArray folder = qgetenv(variable);
    QVERIFY(!folder.isEmpty());
    qputenv(variable, folder + "/missing");
    const auto restore = qScopeGuard([&] { qputenv(variable, folder); });
    QVERIFY(!watcher().registerDeviceNotification(GUID()));
    QVERIFY(!watcher().getHDeviceNotify());
    QVERIFY(!watcher().getHwnd());
}

void tst_UtilsDetectDeviceWindows_udev::theNextRegistrationIsAccepted()
{
    QVERIFY(watcher().registerDeviceNotification(GUID()));
    QVERIFY(watcher().getHDeviceNotify());
}

void tst_UtilsDetectDeviceWindows_udev::interfacesAndDriversAreNoDevices()
{
    // Every device has interfaces, which are announced with its numbers, and so are the drivers that take and leave it.
    const QByteArray device = add("usb", "1-1", nullptr, "usb_device", KernelIds);
    const QByteArray interface = add("usb", "1-1:1.0", device.constData(), "usb_interface", KernelIds);
    announce("bind", interface);
    announce("bind", device);
    announce("change", device);
    QTRY_COMPARE_WITH_TIMEOUT(log, QStringList{Attached}, PatienceMs);
    watcher().registerDeviceByPidVid(Pid, Vid);
    QCOMPARE(log, QStringList({Attached, Attached}));

    announce("unbind", interface);
    remove(interface);
    announce("unbind", device);
    remove(device);
    QTRY_COMPARE_WITH_TIMEOUT(log, QStringList({Attached, Attached, Detached}), PatienceMs);
}

void tst_UtilsDetectDeviceWindows_udev::otherSubsystemsAreNoDevices()
{
    const QByteArray input = add("input", "input1", nullptr, "usb_device", KernelIds);
    watcher().registerDeviceByPidVid(Pid, Vid);
    QCOMPARE(log, QStringList());
    remove(input);
    // Announcements come in their order: with this one, those before it have been read.
    const QByteArray device = add("usb", "1-1", nullptr, "usb_device", KernelIds);
    QTRY_COMPARE_WITH_TIMEOUT(log, QStringList{Attached}, PatienceMs);
    remove(device);
    QTRY_COMPARE_WITH_TIMEOUT(log, QStringList({Attached, Detached}), PatienceMs);
}

void tst_UtilsDetectDeviceWindows_udev::aDeviceWithoutNumbersIsNotReported()
{
    const QByteArray damaged = add("usb", "1-1", nullptr, "usb_device", "no numbers");
    gchar *const path
        = umockdev_testbed_add_device(testbed, "usb", "1-2", nullptr, nullptr, "DEVTYPE", "usb_device", nullptr);
    const QByteArray without(path);
    g_free(path);
    watcher().registerDeviceByPidVid(Pid, Vid);
    QCOMPARE(log, QStringList());
    remove(damaged);
    remove(without);
    const QByteArray device = add("usb", "1-3", nullptr, "usb_device", KernelIds);
    QTRY_COMPARE_WITH_TIMEOUT(log, QStringList{Attached}, PatienceMs);
    remove(device);
    QTRY_COMPARE_WITH_TIMEOUT(log, QStringList({Attached, Detached}), PatienceMs);
}

UNIPROG_TEST_MAIN(tst_UtilsDetectDeviceWindows_udev)
#include "tst_utilsdetectdevicewindows_udev.moc"
