#include "SimulatedTest.h"

#include <UniProgTest.h>

#include <QApplication>

using Status = SimulatedProgrammer::Status;

/// The simulated programmer as a device: which one is connected, over which link, and what it stores.
class tst_SimulatedDevice : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void devicesAreKnownByWhatIsFilledIn_data();
    void devicesAreKnownByWhatIsFilledIn();
    void connectGoesToTheDeviceConnectedLast();
    void withoutDevicesNothingIsSelected();
    void anUnpluggedDeviceIsNotThere();
    void oldFirmwareIsRefused();
    void wifiLinksAskForTheirPassword_data();
    void wifiLinksAskForTheirPassword();
    void aWrongPasswordIsRefusedAgain();
    void usbAsksForNoPassword();
    void aRefusalMayLeaveTheLinkOpen();
    void passwordsAppearNowhere();
    void theWiFiServerStarts();
    void aConfigurationIsStoredWhenCommitted();
    void anUncommittedConfigurationIsLost();
};

static TSelectedDevice wifiDeviceOf(const SimulatedProgrammer &programmer)
{
    return programmer.devices().constLast();
}

void tst_SimulatedDevice::devicesAreKnownByWhatIsFilledIn_data()
{
    QTest::addColumn<TSelectedDevice>("device");
    QTest::addColumn<int>("index");

    const SimulatedProgrammer programmer;
    const TSelectedDevice usb = programmer.devices().at(0);
    const TSelectedDevice wifi = programmer.devices().at(1);
    const auto with = [](qint32 link, auto member, auto value) {
        TSelectedDevice device;
        device.link = link;
        device.*member = value;
        return device;
    };
    const auto changed = [](TSelectedDevice device, auto member, auto value) {
        device.*member = value;
        return device;
    };
    using D = TSelectedDevice;
    const QString other = QStringLiteral("other");
    QTest::newRow("nothing at all") << D() << -1;
    QTest::newRow("nothing but the link") << with(D::WiFi, &D::firmwareVersion, other) << -1;
    QTest::newRow("the USB device") << usb << 0;
    QTest::newRow("the WiFi device") << wifi << 1;
    QTest::newRow("serial number, USB") << with(D::Usb, &D::serialNumber, usb.serialNumber) << 0;
    QTest::newRow("serial number, WiFi") << with(D::WiFi, &D::serialNumber, usb.serialNumber) << 1;
    QTest::newRow("name") << with(D::Usb, &D::name, usb.name) << 0;
    QTest::newRow("vendor") << with(D::Usb, &D::vendorId, usb.vendorId) << 0;
    QTest::newRow("product") << with(D::Usb, &D::productId, usb.productId) << 0;
    QTest::newRow("path") << with(D::Usb, &D::path, usb.path) << 0;
    QTest::newRow("address") << with(D::WiFi, &D::address, wifi.address) << 1;
    QTest::newRow("port") << with(D::WiFi, &D::port, wifi.port) << 1;
    QTest::newRow("versions do not matter") << changed(usb, &D::firmwareVersion, other) << 0;
    QTest::newRow("another serial number") << changed(usb, &D::serialNumber, other) << -1;
    QTest::newRow("another name") << changed(usb, &D::name, other) << -1;
    QTest::newRow("another vendor") << changed(usb, &D::vendorId, quint16(1)) << -1;
    QTest::newRow("another product") << changed(usb, &D::productId, quint16(2)) << -1;
    QTest::newRow("another path") << changed(usb, &D::path, other) << -1;
    QTest::newRow("another address") << changed(wifi, &D::address, other) << -1;
    QTest::newRow("another port") << changed(wifi, &D::port, quint16(1)) << -1;
    QTest::newRow("a link there is not") << changed(usb, &D::link, qint32(2)) << -1;
}

void tst_SimulatedDevice::devicesAreKnownByWhatIsFilledIn()
{
    QFETCH(TSelectedDevice, device);
    QFETCH(int, index);
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    // Which of the two it was shows by the password only the WiFi device asks for.
    programmer.setWiFiPassword(OPERATION_TYPE_DEBUG, QStringLiteral("secret"));
    const int status
        = QList<int>{Status::NoSelectedDevice, Status::Success, Status::DebugLinkAuthenticationFailed}.at(index + 1);
    QCOMPARE(programmer.ConnectSelectedDevice(&device, OPERATION_TYPE_DEBUG), status);
    QCOMPARE(programmer.isConnected(), status == Status::Success);
    QCOMPARE(programmer.selectDevice(device), index >= 0);
    // Nothing is a mistake of whoever called.
    QCOMPARE(programmer.refusals(), QStringList());
}

void tst_SimulatedDevice::connectGoesToTheDeviceConnectedLast()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    TSelectedDevice wifi = wifiDeviceOf(programmer);
    QCOMPARE(programmer.ConnectSelectedDevice(&wifi, OPERATION_TYPE_DEBUG), 0);
    QCOMPARE(programmer.Disconnect(), 0);
    programmer.setWiFiPassword(OPERATION_TYPE_DEBUG, QStringLiteral("secret"));
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), int(Status::DebugLinkAuthenticationFailed));

    // A failed connection selects nothing.
    QVERIFY(programmer.selectDevice(programmer.devices().constFirst()));
    QCOMPARE(programmer.ConnectSelectedDevice(&wifi, OPERATION_TYPE_DEBUG), int(Status::DebugLinkAuthenticationFailed));
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
}

void tst_SimulatedDevice::withoutDevicesNothingIsSelected()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    QCOMPARE(programmer.ConnectSelectedDevice(nullptr, OPERATION_TYPE_DEBUG), int(Status::NoSelectedDevice));
    TSelectedDevice usb = programmer.devices().constFirst();
    programmer.setDevices({});
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), int(Status::NoSelectedDevice));
    QCOMPARE(programmer.ConnectSelectedDevice(&usb, OPERATION_TYPE_DEBUG), int(Status::NoSelectedDevice));
    programmer.setDevices({usb});
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
}

void tst_SimulatedDevice::anUnpluggedDeviceIsNotThere()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    programmer.setPluggedIn(false);
    QVERIFY(!programmer.isConnected());
    QCOMPARE(programmer.EraseTargetMass(), int(Status::LinkLost));
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), int(Status::NoSelectedDevice));
    programmer.setPluggedIn(true);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
    QCOMPARE(programmer.refusals(), QStringList());
}

void tst_SimulatedDevice::oldFirmwareIsRefused()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    programmer.setFirmwareTooOld(true);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), int(Status::FirmwareTooOld));
    QVERIFY(!programmer.isConnected());
    programmer.setFirmwareTooOld(false);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
}

void tst_SimulatedDevice::wifiLinksAskForTheirPassword_data()
{
    QTest::addColumn<OPERATION_TYPE>("link");
    QTest::addColumn<int>("status");
    QTest::newRow("configuration link") << OPERATION_TYPE_CONFIGURATION << 13;
    QTest::newRow("debug link") << OPERATION_TYPE_DEBUG << 14;
}

void tst_SimulatedDevice::wifiLinksAskForTheirPassword()
{
    QFETCH(OPERATION_TYPE, link);
    QFETCH(int, status);
    const bool debugLink = link == OPERATION_TYPE_DEBUG;
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    programmer.setWiFiPassword(link, QStringLiteral("right"));
    TSelectedDevice device = wifiDeviceOf(programmer);
    QCOMPARE(programmer.ConnectSelectedDevice(&device, link), status);

    // The password of the other link does not open this one, and the other asks for none.
    QCOMPARE(programmer.SetWiFiLinkPassword(QStringLiteral("right"), !debugLink), 0);
    QCOMPARE(programmer.ConnectSelectedDevice(&device, link), status);
    QCOMPARE(programmer.SetWiFiLinkPassword(QString(), !debugLink), 0);
    const auto otherLink = debugLink ? OPERATION_TYPE_CONFIGURATION : OPERATION_TYPE_DEBUG;
    QCOMPARE(programmer.ConnectSelectedDevice(&device, otherLink), 0);
    QCOMPARE(programmer.Disconnect(), 0);

    QCOMPARE(programmer.SetWiFiLinkPassword(QStringLiteral("right"), debugLink), 0);
    QCOMPARE(programmer.ConnectSelectedDevice(&device, link), 0);
    QCOMPARE(programmer.refusals(), QStringList());
}

void tst_SimulatedDevice::aWrongPasswordIsRefusedAgain()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    programmer.setWiFiPassword(OPERATION_TYPE_DEBUG, QStringLiteral("right"));
    QVERIFY(programmer.selectDevice(wifiDeviceOf(programmer)));
    for (const char *wrong : {"wrong", "Right", "right ", ""}) {
        QCOMPARE(programmer.SetWiFiLinkPassword(QLatin1String(wrong), true), 0);
        QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), int(Status::DebugLinkAuthenticationFailed));
    }
    QCOMPARE(programmer.SetWiFiLinkPassword(QStringLiteral("right"), true), 0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
    QCOMPARE(programmer.Disconnect(), 0);
    programmer.setWiFiPassword(OPERATION_TYPE_DEBUG, QStringLiteral("changed"));
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), int(Status::DebugLinkAuthenticationFailed));
}

void tst_SimulatedDevice::usbAsksForNoPassword()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    programmer.setWiFiPassword(OPERATION_TYPE_CONFIGURATION, QStringLiteral("right"));
    programmer.setWiFiPassword(OPERATION_TYPE_DEBUG, QStringLiteral("right"));
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
    QCOMPARE(programmer.Disconnect(), 0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_CONFIGURATION), 0);
}

void tst_SimulatedDevice::aRefusalMayLeaveTheLinkOpen()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    programmer.setWiFiRefusalNamesLink(false);
    programmer.setWiFiPassword(OPERATION_TYPE_DEBUG, QStringLiteral("right"));
    QVERIFY(programmer.selectDevice(wifiDeviceOf(programmer)));
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 4);
    QCOMPARE(programmer.SetWiFiLinkPassword(QStringLiteral("right"), true), 0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
}

void tst_SimulatedDevice::passwordsAppearNowhere()
{
    const QString secret = QStringLiteral("Geheim123");
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    programmer.setWiFiPassword(OPERATION_TYPE_DEBUG, secret);
    QVERIFY(programmer.selectDevice(wifiDeviceOf(programmer)));
    QCOMPARE(programmer.SetWiFiLinkPassword(secret, false), 0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), int(Status::DebugLinkAuthenticationFailed));
    TConfiguration configuration;
    configuration.networkPassword = secret;
    QCOMPARE(programmer.SetDeviceConfiguration(&configuration), int(Status::NotConnected));
    QCOMPARE(programmer.refusals(), QStringList{QStringLiteral("SetDeviceConfiguration: no connection to the device")});
    QVERIFY(!programmer.objectName().contains(secret));
    for (const QByteArray &name : programmer.dynamicPropertyNames())
        QVERIFY(!programmer.property(name.constData()).toString().contains(secret));
}

void tst_SimulatedDevice::theWiFiServerStarts()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_CONFIGURATION), 0);
    QCOMPARE(programmer.WiFiServerStart(), 0);
    QVERIFY(programmer.isWiFiServerRunning());
}

void tst_SimulatedDevice::aConfigurationIsStoredWhenCommitted()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    TConfiguration stored;
    stored.deviceName = QStringLiteral("old");
    stored.networkPassword = QStringLiteral("secret");
    programmer.setConfiguration(stored);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_CONFIGURATION), 0);
    TConfiguration configuration;
    QCOMPARE(programmer.GetDeviceConfiguration(&configuration), 0);
    QCOMPARE(configuration.deviceName, QStringLiteral("old"));
    QCOMPARE(configuration.networkPassword, QStringLiteral("secret"));

    QCOMPARE(programmer.CommitConfiguration(), int(Status::OutOfOrder));
    configuration.deviceName = QStringLiteral("new");
    configuration.debugClock = 4000000;
    QCOMPARE(programmer.SetDeviceConfiguration(&configuration), 0);
    QCOMPARE(programmer.configuration().deviceName, QStringLiteral("old"));
    TConfiguration seen;
    QCOMPARE(programmer.GetDeviceConfiguration(&seen), 0);
    QCOMPARE(seen.deviceName, QStringLiteral("new"));
    QCOMPARE(programmer.CommitConfiguration(), 0);
    QCOMPARE(programmer.configuration().deviceName, QStringLiteral("new"));
    QCOMPARE(programmer.configuration().debugClock, 4000000U);
    QCOMPARE(programmer.CommitConfiguration(), int(Status::OutOfOrder));
}

void tst_SimulatedDevice::anUncommittedConfigurationIsLost()
{
    for (const bool lose : {false, true}) {
        SimulatedProgrammer programmer;
        programmer.setTimeScale(0);
        TConfiguration configuration;
        configuration.deviceName = QStringLiteral("new");
        QCOMPARE(programmer.Connect(OPERATION_TYPE_CONFIGURATION), 0);
        QCOMPARE(programmer.SetDeviceConfiguration(&configuration), 0);
        if (lose)
            programmer.loseLink();
        else
            QCOMPARE(programmer.Disconnect(), 0);
        QCOMPARE(programmer.Connect(OPERATION_TYPE_CONFIGURATION), 0);
        QCOMPARE(programmer.GetDeviceConfiguration(&configuration), 0);
        QVERIFY(configuration.deviceName != QStringLiteral("new"));
        QCOMPARE(programmer.CommitConfiguration(), int(Status::OutOfOrder));
    }
}

UNIPROG_TEST_MAIN(tst_SimulatedDevice)

#include "tst_simulateddevice.moc"
