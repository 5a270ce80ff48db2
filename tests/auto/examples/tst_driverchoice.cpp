#include "GdbServer.h"

#include <CommandLine.h>
#include <DriverChoice.h>
#include <GdbRemoteDriver.h>
#include <ProgrammerSession.h>
#include <UniProgInterface.h>

#include <UniProgTest.h>

#include <QHostAddress>
#include <QSignalSpy>

#include <memory>

/// The driver that the command line asks for.
class tst_DriverChoice : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void driversAreChosenByText_data();
    void driversAreChosenByText();
    void hostsHaveNamesAndAddresses_data();
    void hostsHaveNamesAndAddresses();
    void whatOnlyTheSimulatorDoesIsRefused_data();
    void whatOnlyTheSimulatorDoesIsRefused();
    void firmwareUpdatesAreNotSupported();
};

namespace {

constexpr int LongWait = 60000; // ms

} // namespace

void tst_DriverChoice::driversAreChosenByText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    for (const char *valid : {"gdb:localhost:3333", "gdb:127.0.0.1:65535", "gdb:::1:3333", "gdb:[::1]:3333"})
        QTest::newRow(valid) << QString::fromLatin1(valid) << true;
    for (const char *invalid : {"gdb", "gdb:", "gdb::", "gdb:localhost", "gdb::3333", "gdb:[]:3333", "gdb:[::1:3333",
                                "gdb:localhost:", "gdb:localhost:0", "gdb:localhost:70000", "gdb:localhost:-1",
                                "gdb:localhost:x", "usb:localhost:3333", "localhost:3333"})
        QTest::newRow(invalid) << QString::fromLatin1(invalid) << false;
}

void tst_DriverChoice::driversAreChosenByText()
{
    QFETCH(const QString, text);
    QFETCH(const bool, valid);
    std::unique_ptr<UniProgInterface> driver;
    QString error;
    QCOMPARE(DriverChoice::create(text, &driver, &error), valid);
    QCOMPARE(driver != nullptr, valid);
    QCOMPARE(error.contains(text), !valid);
}

void tst_DriverChoice::hostsHaveNamesAndAddresses_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QHostAddress>("address");
    QTest::newRow("a name") << QStringLiteral("localhost") << QHostAddress(QHostAddress::LocalHost);
    QTest::newRow("IPv4") << QStringLiteral("127.0.0.1") << QHostAddress(QHostAddress::LocalHost);
    QTest::newRow("IPv6") << QStringLiteral("::1") << QHostAddress(QHostAddress::LocalHostIPv6);
    QTest::newRow("IPv6 in brackets") << QStringLiteral("[::1]") << QHostAddress(QHostAddress::LocalHostIPv6);
}

void tst_DriverChoice::hostsHaveNamesAndAddresses()
{
    QFETCH(const QString, host);
    QFETCH(const QHostAddress, address);
    GdbServer server({}, address);
    if (server.port() == 0)
        QSKIP("This machine does not have that kind of address.");
    std::unique_ptr<UniProgInterface> driver;
    QString error;
    QVERIFY(DriverChoice::create(QStringLiteral("gdb:%1:%2").arg(host).arg(server.port()), &driver, &error));
    QCOMPARE(driver->Connect(OPERATION_TYPE_DEBUG), int(GdbTarget::Success));
}

void tst_DriverChoice::whatOnlyTheSimulatorDoesIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("a fault") << QStringList{QStringLiteral("--fault"), QStringLiteral("device-connect=38")};
    QTest::newRow("a comparison") << QStringList{QStringLiteral("--compare"), QStringLiteral("--image"),
                                                 QStringLiteral("image.hex")};
    QTest::newRow("WiFi") << QStringList{QStringLiteral("--wifi")};
    QTest::newRow("a missing driver") << QStringList{QStringLiteral("--no-driver")};
    QTest::newRow("another speed") << QStringList{QStringLiteral("--speed"), QStringLiteral("2")};
}

void tst_DriverChoice::whatOnlyTheSimulatorDoesIsRefused()
{
    QFETCH(const QStringList, arguments);
    const QString choice = QStringLiteral("gdb:localhost:3333");
    CommandLine commandLine;
    QString error;
    const QStringList all = QStringList{QStringLiteral("programmer"), QStringLiteral("--driver"), choice} + arguments;
    QVERIFY2(readCommandLine(all, &commandLine, &error), qPrintable(error));
    std::unique_ptr<UniProgInterface> driver;
    QVERIFY(DriverChoice::create(commandLine.driver, &driver, &error));
    ProgrammerSession session(ProgrammerSession::Driver::Simulated, std::move(driver));
    QVERIFY(!applySettings(commandLine, &session, &error));
    QVERIFY2(error.contains(QStringLiteral("Only the simulated programmer")), qPrintable(error));
}

void tst_DriverChoice::firmwareUpdatesAreNotSupported()
{
    GdbServer server;
    ProgrammerSession session(ProgrammerSession::Driver::Simulated,
                              std::make_unique<GdbRemoteDriver>(QStringLiteral("127.0.0.1"), server.port()));
    QSignalSpy completed(&session, &ProgrammerSession::completed);
    for (const ProgrammerSession::Operation operation :
         {ProgrammerSession::Operation::EnterBootloader, ProgrammerSession::Operation::ResetPowerModule}) {
        completed.clear();
        session.start(operation);
        QTRY_COMPARE_WITH_TIMEOUT(completed.size(), qsizetype(1), LongWait);
        QCOMPARE(completed.constFirst().at(1).toInt(), int(GdbTarget::NotSupported));
        QTRY_VERIFY(!session.thread().IsProcedureInProgress());
    }
}

UNIPROG_TEST_MAIN(tst_DriverChoice)
#include "tst_driverchoice.moc"
