#include "ProcedureRig.h"

#include <UtilsConstants.h>
#include <UtilsUniProgThread.h>

#include <ContextTranslator.h>
#include <UniProgTest.h>

#include <QApplication>

#include <climits>

using Operation = ScriptedDriver::Operation;

namespace {

constexpr int AnyFailure = 77;
const QString OperationFailed = QStringLiteral("Operation failed.");

QString errorLine(const QString &text)
{
    return ProcedureLog::line(text, LOGGER_MESSAGE_ERROR);
}

} // namespace

/// What a failure in each phase of a procedure is called, and what is still done after it.
class tst_UtilsUniProgThread_failures : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aFailedDeviceConnectIsExplained_data();
    void aFailedDeviceConnectIsExplained();
    void aFailedTargetConnectIsExplained_data();
    void aFailedTargetConnectIsExplained();
    void aFailedTargetProcedureIsExplained_data();
    void aFailedTargetProcedureIsExplained();
    void aFailedControlProcedureIsExplained_data();
    void aFailedControlProcedureIsExplained();
    void aFailedTargetDisconnectIsTheResultOfASuccess();
    void whenProcedureAndDisconnectFailStatusAndTextPart();
    void anInterfaceThatCannotBeReleasedChangesNothing();
    void aThreadWithoutDriverRefusesRequests();
    void textsAreNotTranslated();
};

void tst_UtilsUniProgThread_failures::aFailedDeviceConnectIsExplained_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");
    QTest::newRow("WiFi password of the link")
        << 4 << "WiFi link authentication failed! \nPlease enter correct WiFi link password";
    QTest::newRow("WiFi password of the debug link")
        << 14 << "WiFi link-debug authentication failed! \nPlease enter correct WiFi link password";
    QTest::newRow("WiFi password of the configuration link")
        << 13 << "WiFi link-config authentication failed! \nPlease enter correct WiFi link password";
    QTest::newRow("firmware too old") << 12 << UtilsConstants::WARNING_INVALID_FIRMWARE_VERSION;
    QTest::newRow("no selected device") << 38 << "There is no selected device.";
    for (const int status : {1, 8, 10, 11, 51, -1, INT_MIN})
        QTest::addRow("other: %d", status) << status << "Connecting to device failed.";
}

void tst_UtilsUniProgThread_failures::aFailedDeviceConnectIsExplained()
{
    QFETCH(int, status);
    QFETCH(QString, text);
    const QStringList expected{ProcedureLog::line("Starting operation..."), errorLine(text),
                               ProcedureLog::completed(status, text), "finished"};

    ProcedureRig onTarget;
    onTarget.driver.always(Operation::Connect, status);
    onTarget.thread.ResetTarget();
    QVERIFY(onTarget.settle());
    QCOMPARE(onTarget.log.events, expected);
    QCOMPARE(onTarget.driver.transcript(), QStringList{"Connect(1)"}); // and no disconnect

    ProcedureRig control;
    control.driver.always(Operation::ConnectSelectedDevice, status);
    control.thread.BootloaderExit(TSelectedDevice());
    QVERIFY(control.settle());
    QCOMPARE(control.log.events, expected);
    QCOMPARE(control.driver.transcript(), QStringList{"ConnectSelectedDevice(, 0)"});
}

void tst_UtilsUniProgThread_failures::aFailedTargetConnectIsExplained_data()
{
    QTest::addColumn<Operation>("step");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");
    const QString failed = QStringLiteral("Connecting to target failed.");
    QTest::newRow("interface in use") << Operation::SetTargetInterfaceInUse << 10
                                      << "Interface to target currently being used.";
    QTest::newRow("clock") << Operation::SetTargetClock << 11 << "Set swd/jtag clock failed.";
    QTest::newRow("target, wrong voltage")
        << Operation::ConnectToTarget << 10 << failed + "\nWrong target voltage.\nCheck power settings.";
    QTest::newRow("target, powered from outside")
        << Operation::ConnectToTarget << 11
        << failed + "\nVpp first entry mode not available.\nPower supplied externally.";
    QTest::newRow("target, vendor") << Operation::ConnectToTarget << 8 << failed;
    QTest::newRow("target, chip") << Operation::ConnectToTarget << 51 << failed;
    QTest::newRow("target, negative") << Operation::ConnectToTarget << -3 << failed;
}

void tst_UtilsUniProgThread_failures::aFailedTargetConnectIsExplained()
{
    QFETCH(Operation, step);
    QFETCH(int, status);
    QFETCH(QString, text);

    ProcedureRig rig;
    rig.driver.nth(step, 1, status);
    rig.thread.ResetTarget();
    QVERIFY(rig.settle());
    // The target is left and the interface released all the same; the procedure itself never ran.
    QCOMPARE(rig.log.events, ProcedureLog::targetRun({}, status, text));
    QStringList calls{"Connect(1)", "SetTargetInterfaceInUse(true)", "SetTargetClock()", "ConnectToTarget(0)"};
    while (!calls.last().startsWith(QVariant::fromValue(step).toString()))
        calls.removeLast();
    calls += {"DisconnectFromTarget()", "SetTargetInterfaceInUse(false)", "Disconnect()"};
    QCOMPARE(rig.driver.transcript(), calls);
}

void tst_UtilsUniProgThread_failures::aFailedTargetProcedureIsExplained_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");
    QTest::newRow("vendor") << 8 << "Your board doesn't support selected vendor.";
    QTest::newRow("chip") << 51 << "Selected chip not recognized.";
    for (const int status : {1, 4, 10, 11, 12, 13, 14, 38, -1})
        QTest::addRow("other: %d", status) << status << OperationFailed;
}

void tst_UtilsUniProgThread_failures::aFailedTargetProcedureIsExplained()
{
    QFETCH(int, status);
    QFETCH(QString, text);
    ProcedureRig rig;
    rig.driver.always(Operation::ResetTarget, status);
    rig.thread.ResetTarget();
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.events, ProcedureLog::targetRun({}, status, text));
}

void tst_UtilsUniProgThread_failures::aFailedControlProcedureIsExplained_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");
    QTest::newRow("wrong voltage") << 10 << "Wrong target voltage.\nCheck power settings.";
    QTest::newRow("powered from outside") << 11 << "Power supplied externally. Can't apply voltage.";
    for (const int status : {1, 4, 8, 12, 13, 14, 38, 51, -1})
        QTest::addRow("other: %d", status) << status << OperationFailed;
}

void tst_UtilsUniProgThread_failures::aFailedControlProcedureIsExplained()
{
    QFETCH(int, status);
    QFETCH(QString, text);
    ProcedureRig rig;
    rig.driver.always(Operation::FindDevice, status);
    rig.thread.FindDevice();
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.events, ProcedureLog::controlRun({}, status, text));
    QCOMPARE(rig.driver.transcript(), (QStringList{"Connect(1)", "FindDevice()", "Disconnect()"}));
}

void tst_UtilsUniProgThread_failures::aFailedTargetDisconnectIsTheResultOfASuccess()
{
    const QString text = QStringLiteral("Disconnecting from target failed.");
    ProcedureRig rig;
    rig.driver.always(Operation::DisconnectFromTarget, 8);
    rig.thread.ResetTarget();
    QVERIFY(rig.settle());
    QCOMPARE(
        rig.log.events,
        (QStringList{ProcedureLog::line("Starting operation..."), ProcedureLog::line("Connecting to target MCU..."),
                     ProcedureLog::line("Reset operation done.", LOGGER_MESSAGE_SUCCESS), errorLine(text),
                     ProcedureLog::completed(8, text), "finished"}));
    QCOMPARE(rig.driver.transcript().mid(5),
             (QStringList{"DisconnectFromTarget()", "SetTargetInterfaceInUse(false)", "Disconnect()"}));
}

void tst_UtilsUniProgThread_failures::whenProcedureAndDisconnectFailStatusAndTextPart()
{
    const QString text = QStringLiteral("Disconnecting from target failed.");
    ProcedureRig rig;
    rig.driver.always(Operation::ResetTarget, 51);
    rig.driver.always(Operation::DisconnectFromTarget, AnyFailure);
    rig.thread.ResetTarget();
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.events.mid(2),
             (QStringList{errorLine("Selected chip not recognized."), errorLine(text),
                          ProcedureLog::completed(51, text), "finished"}));
}

void tst_UtilsUniProgThread_failures::anInterfaceThatCannotBeReleasedChangesNothing()
{
    ProcedureRig rig;
    rig.driver.nth(Operation::SetTargetInterfaceInUse, 2, AnyFailure);
    rig.driver.always(Operation::Disconnect, AnyFailure);
    rig.thread.ResetTarget();
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.events,
             ProcedureLog::targetRun({ProcedureLog::line("Reset operation done.", LOGGER_MESSAGE_SUCCESS)}));
}

void tst_UtilsUniProgThread_failures::aThreadWithoutDriverRefusesRequests()
{
    UtilsUniProgThread thread(nullptr, nullptr);
    ProcedureLog log(&thread);
    thread.BootloaderExit(TSelectedDevice());
    QTRY_VERIFY_WITH_TIMEOUT(log.ends == 1 && !thread.IsProcedureInProgress(), TestLimitMs);
    bool blank = true;
    thread.CheckTargetBlank(&blank); // no descriptor either
    QTRY_VERIFY_WITH_TIMEOUT(log.ends == 2 && !thread.IsProcedureInProgress(), TestLimitMs);
    const QString text = UtilsConstants::WARNING_NO_SELECTED_DEVICE;
    const QStringList refused{ProcedureLog::line("Starting operation..."), errorLine(text),
                              ProcedureLog::completed(38, text), "finished"};
    QCOMPARE(log.events, refused + refused);
}

void tst_UtilsUniProgThread_failures::textsAreNotTranslated()
{
    const ContextTranslator translator; // of whatever is asked
    ProcedureRig rig;
    rig.driver.always(Operation::Connect, 38);
    rig.thread.FindDevice();
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.lastMessage, QStringLiteral("There is no selected device."));
    QVERIFY(rig.log.events.filter("<").isEmpty());
}

UNIPROG_TEST_MAIN(tst_UtilsUniProgThread_failures)
#include "tst_utilsuniprogthread_failures.moc"
