#include "ProcedureRig.h"

#include <UtilsUniProgThread.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QElapsedTimer>

#include <functional>

using Operation = ScriptedDriver::Operation;
using Answer = ScriptedDriver::Answer;

using namespace LogLines;

namespace {

constexpr int Failure = 77;

/// Options of the target descriptor.
struct Options
{
    int eraseMode = 0;
    int leaveRunning = 0;
    int verifyAfterWrite = 0;
    int haltAfterReset = 0;
};

using Script = std::function<void(ScriptedDriver &)>;
using Request = std::function<void(UtilsUniProgThread &)>;

const QString Busy = ProcedureLog::progress(-1);
const QString OperationFailed = QStringLiteral("Operation failed.");

Script fails(Operation operation, int status = Failure)
{
    return [=](ScriptedDriver &driver) { driver.always(operation, status); };
}

Script finds(Operation operation, bool flag)
{
    return [=](ScriptedDriver &driver) { driver.always(operation, Answer().giving(flag)); };
}

Script writesNothing(Operation operation, int status = 0)
{
    return [=](ScriptedDriver &driver) { driver.always(operation, Answer(status).givingNothing()); };
}

Script supply(int status, qint32 state, float level)
{
    return [=](ScriptedDriver &driver) {
        driver.always(Operation::PowerGetSupplyState,
                      Answer(status).giving(QVariant::fromValue(TPowerSupplyState{state, level})));
    };
}

const Script AllWell = [](ScriptedDriver &) {};

} // namespace

Q_DECLARE_METATYPE(Options)
Q_DECLARE_METATYPE(Script)
Q_DECLARE_METATYPE(Request)

/// What the procedures say and call. Rows compare the whole log and every call between the connect and the disconnect.
class tst_UtilsUniProgThread_procedures : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void writeTarget_data();
    void writeTarget();
    void verifyTarget_data();
    void verifyTarget();
    void checkTargetBlank_data();
    void checkTargetBlank();
    void otherTargetProcedures_data();
    void otherTargetProcedures();
    void controlProcedures_data();
    void controlProcedures();
    void powerSupplyChecks_data();
    void powerSupplyChecks();
    void swoEnableLogsItsOwnTextAndTheFramesToo();
    void swoDisableLogsItsOwnTextAndTheFramesToo();
    void bootloaderInfoIsFilledOrCleared();
    void callersFlagsMayBeMissing();
    void theWriteSettlesAlsoAfterAFailure();
    void aDescriptorThatExpiresReadsAsZero();
    void resultsReachTheCaller();

private:
    static void setOptions(ScriptedDriver &driver, const Options &options);
    /// The calls without the connects and disconnects of the frame.
    static QStringList procedureCalls(const ScriptedDriver &driver, bool onTarget);
};

void tst_UtilsUniProgThread_procedures::setOptions(ScriptedDriver &driver, const Options &options)
{
    TargetDescriptor &descriptor = *driver.targetDescriptor();
    descriptor.getOperationOptions()->setIntValue(0, options.eraseMode);
    descriptor.getOperationOptions()->setIntValue(1, options.leaveRunning);
    descriptor.getOperationOptions()->setIntValue(2, options.verifyAfterWrite);
    descriptor.getConnectionOptions()->setIntValue(5, options.haltAfterReset);
}

QStringList tst_UtilsUniProgThread_procedures::procedureCalls(const ScriptedDriver &driver, bool onTarget)
{
    const int before = onTarget ? 4 : 1;
    const int after = onTarget ? 3 : 1;
    const QStringList all = driver.transcript();
    return all.mid(before, all.size() - before - after);
}

void tst_UtilsUniProgThread_procedures::writeTarget_data()
{
    QTest::addColumn<Options>("options");
    QTest::addColumn<Script>("script");
    QTest::addColumn<QStringList>("events");
    QTest::addColumn<QStringList>("calls");

    const QString mass = QStringLiteral("EraseTargetMass()");
    const QString sectors = QStringLiteral("EraseTarget(pointer)");
    const QString write = QStringLiteral("WriteTarget(pointer, 0)");
    const QString verify = QStringLiteral("VerifyTarget(pointer, pointer, %1)");
    const QString reset = QStringLiteral("ResetTarget(0)");
    const QStringList erasing{info("Erasing MCU..."), Busy};
    const QStringList writing = erasing + QStringList{info("Writing MCU...")};
    const QStringList verifying = writing + QStringList{info("Verifying..."), Busy};

    QTest::newRow("plain") << Options{} << AllWell
                           << ProcedureLog::targetRun(
                                  writing + QStringList{success("Write operation done."), info("Chip is running.")})
                           << QStringList{mass, write, reset};
    QTest::newRow("only what the image needs, verified, halted")
        << Options{2, 0, 1, 1} << AllWell
        << ProcedureLog::targetRun(
               verifying + QStringList{success("Write operation done and verified."), info("Chip is halted.")})
        << QStringList{sectors, write, verify.arg(0), reset};
    QTest::newRow("any other erase mode erases all")
        << Options{3, 7, -1, -1} << AllWell
        << ProcedureLog::targetRun(
               verifying + QStringList{success("Write operation done and verified."), info("Chip is halted.")})
        << QStringList{mass, write, verify.arg(7), reset};
    QTest::newRow("mass erase fails") << Options{0, 0, 1, 0} << fails(Operation::EraseTargetMass)
                                      << ProcedureLog::targetRun(erasing, Failure, OperationFailed)
                                      << QStringList{mass};
    QTest::newRow("erase fails, vendor") << Options{2, 0, 1, 0} << fails(Operation::EraseTarget, 8)
                                         << ProcedureLog::targetRun(erasing, 8,
                                                                    "Your board doesn't support selected vendor.")
                                         << QStringList{sectors};
    QTest::newRow("write fails") << Options{0, 0, 1, 0} << fails(Operation::WriteTarget)
                                 << ProcedureLog::targetRun(writing + QStringList{info("Chip is running.")}, Failure,
                                                            OperationFailed)
                                 << QStringList{mass, write, reset};
    QTest::newRow("verify fails")
        << Options{0, 0, 1, 0} << fails(Operation::VerifyTarget, 51)
        << ProcedureLog::targetRun(verifying + QStringList{error("Verification failed."), info("Chip is running.")}, 51,
                                   "Selected chip not recognized.")
        << QStringList{mass, write, verify.arg(0), reset};
    // The line is an error, the status is not.
    const QStringList mismatch
        = ProcedureLog::targetRun(verifying + QStringList{error("Verification failed."), info("Chip is running.")});
    QTest::newRow("mismatch") << Options{0, 0, 1, 0} << finds(Operation::VerifyTarget, false) << mismatch
                              << QStringList{mass, write, verify.arg(0), reset};
    QTest::newRow("verify that tells nothing") << Options{0, 0, 1, 0} << writesNothing(Operation::VerifyTarget)
                                               << mismatch << QStringList{mass, write, verify.arg(0), reset};
    QTest::newRow("reset fails") << Options{} << fails(Operation::ResetTarget)
                                 << ProcedureLog::targetRun(writing + QStringList{success("Write operation done.")})
                                 << QStringList{mass, write, reset};
}

void tst_UtilsUniProgThread_procedures::writeTarget()
{
    QFETCH(Options, options);
    QFETCH(Script, script);
    QFETCH(QStringList, events);
    QFETCH(QStringList, calls);
    ProcedureRig rig;
    setOptions(rig.driver, options);
    script(rig.driver);
    MemoryManager memory;
    rig.thread.WriteTarget(&memory);
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.events, events);
    QCOMPARE(procedureCalls(rig.driver, true), calls);
}

void tst_UtilsUniProgThread_procedures::verifyTarget_data()
{
    QTest::addColumn<int>("leaveRunning");
    QTest::addColumn<Script>("script");
    QTest::addColumn<QStringList>("events");
    QTest::addColumn<bool>("resets");
    const QStringList verifying{info("Verifying..."), Busy};
    const QStringList running{info("Chip is running.")};
    const QStringList verified = verifying + QStringList{success("File is verified.")};
    const QStringList different = verifying + QStringList{error("File not verified.")};

    QTest::newRow("equal") << 0 << AllWell << ProcedureLog::targetRun(verified + running) << true;
    QTest::newRow("equal, left running") << 1 << AllWell << ProcedureLog::targetRun(verified) << false;
    QTest::newRow("different") << 0 << finds(Operation::VerifyTarget, false)
                               << ProcedureLog::targetRun(different + running) << true;
    QTest::newRow("different, left running")
        << -1 << finds(Operation::VerifyTarget, false) << ProcedureLog::targetRun(different) << false;
    QTest::newRow("failed") << 0 << fails(Operation::VerifyTarget)
                            << ProcedureLog::targetRun(verifying + running, Failure, OperationFailed) << true;
    QTest::newRow("failed, left running")
        << 1 << fails(Operation::VerifyTarget) << ProcedureLog::targetRun(verifying, Failure, OperationFailed) << false;
    QTest::newRow("failed reset") << 0 << fails(Operation::ResetTarget) << ProcedureLog::targetRun(verified) << true;
    QTest::newRow("a flag that is not written keeps the caller's value")
        << 1 << writesNothing(Operation::VerifyTarget) << ProcedureLog::targetRun(different) << false;
}

void tst_UtilsUniProgThread_procedures::verifyTarget()
{
    QFETCH(int, leaveRunning);
    QFETCH(Script, script);
    QFETCH(QStringList, events);
    QFETCH(bool, resets);
    ProcedureRig rig;
    setOptions(rig.driver, {0, leaveRunning, 0, 0});
    script(rig.driver);
    MemoryManager memory;
    bool verified = false;
    rig.thread.VerifyTarget(&memory, &verified);
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.events, events);
    QCOMPARE(rig.driver.callCount(Operation::ResetTarget), int(resets));
}

void tst_UtilsUniProgThread_procedures::checkTargetBlank_data()
{
    QTest::addColumn<int>("leaveRunning");
    QTest::addColumn<Script>("script");
    QTest::addColumn<QStringList>("events");
    QTest::addColumn<bool>("resets");
    const QStringList checking{info("Checking if MCU is blank..."), Busy};
    const QStringList halted{info("Chip is halted.")};
    const QStringList blank = checking + QStringList{success("Chip is blank.")};

    QTest::newRow("blank") << 0 << AllWell << ProcedureLog::targetRun(blank + halted) << true;
    QTest::newRow("blank, left running") << 1 << AllWell << ProcedureLog::targetRun(blank) << false;
    QTest::newRow("not blank") << 0 << finds(Operation::CheckTargetBlank, false)
                               << ProcedureLog::targetRun(checking + QStringList{error("Chip is not blank.")} + halted)
                               << true;
    QTest::newRow("not blank, left running")
        << 256 << finds(Operation::CheckTargetBlank, false)
        << ProcedureLog::targetRun(checking + QStringList{error("Chip is not blank at 0x0.")}) << false;
    QTest::newRow("failed") << 0 << fails(Operation::CheckTargetBlank)
                            << ProcedureLog::targetRun(checking + halted, Failure, OperationFailed) << true;
    QTest::newRow("failed, left running") << 1 << fails(Operation::CheckTargetBlank)
                                          << ProcedureLog::targetRun(checking, Failure, OperationFailed) << false;
    QTest::newRow("failed reset") << 0 << fails(Operation::ResetTarget) << ProcedureLog::targetRun(blank) << true;
}

void tst_UtilsUniProgThread_procedures::checkTargetBlank()
{
    QFETCH(int, leaveRunning);
    QFETCH(Script, script);
    QFETCH(QStringList, events);
    QFETCH(bool, resets);
    ProcedureRig rig;
    setOptions(rig.driver, {0, leaveRunning, 0, 1});
    script(rig.driver);
    bool blank = false;
    rig.thread.CheckTargetBlank(&blank);
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.events, events);
    QCOMPARE(rig.driver.callCount(Operation::ResetTarget), int(resets));
}

void tst_UtilsUniProgThread_procedures::otherTargetProcedures_data()
{
    QTest::addColumn<Request>("request");
    QTest::addColumn<Script>("script");
    QTest::addColumn<QStringList>("events");
    static MemoryManager memory;
    static bool flag = false;
    const Request read = [](UtilsUniProgThread &thread) { thread.ReadTarget(&memory); };
    const Request detect = [](UtilsUniProgThread &thread) { thread.DetectTarget(&flag); };
    const Request erase = [](UtilsUniProgThread &thread) { thread.EraseTargetMass(); };
    const Request reset = [](UtilsUniProgThread &thread) { thread.ResetTarget(); };
    const QStringList reading{info("Reading MCU...")};
    const QStringList erasing{info("Erasing MCU..."), Busy};

    QTest::newRow("read") << read << AllWell
                          << ProcedureLog::targetRun(reading + QStringList{success("Read operation done.")});
    QTest::newRow("read fails") << read << fails(Operation::ReadTarget)
                                << ProcedureLog::targetRun(reading, Failure, OperationFailed);
    QTest::newRow("read with progress") << read << Script([](ScriptedDriver &driver) {
        driver.always(Operation::ReadTarget, Answer().reporting({0, 100}));
    })
                                        << ProcedureLog::targetRun(reading
                                                                   + QStringList{ProcedureLog::progress(0),
                                                                                 ProcedureLog::progress(100),
                                                                                 success("Read operation done.")});
    QTest::newRow("detect") << detect << AllWell << ProcedureLog::targetRun({success("Target is detected.")});
    QTest::newRow("detect none") << detect << finds(Operation::DetectTarget, false)
                                 << ProcedureLog::targetRun({error("Target is not detected.")});
    QTest::newRow("detect fails") << detect << fails(Operation::DetectTarget)
                                  << ProcedureLog::targetRun({}, Failure, OperationFailed);
    QTest::newRow("erase") << erase << AllWell
                           << ProcedureLog::targetRun(erasing + QStringList{success("Erase operation done.")});
    QTest::newRow("erase fails") << erase << fails(Operation::EraseTargetMass)
                                 << ProcedureLog::targetRun(erasing, Failure, OperationFailed);
    QTest::newRow("reset") << reset << AllWell << ProcedureLog::targetRun({success("Reset operation done.")});
    QTest::newRow("reset fails") << reset << fails(Operation::ResetTarget)
                                 << ProcedureLog::targetRun({}, Failure, OperationFailed);
}

void tst_UtilsUniProgThread_procedures::otherTargetProcedures()
{
    QFETCH(Request, request);
    QFETCH(Script, script);
    QFETCH(QStringList, events);
    ProcedureRig rig;
    script(rig.driver);
    request(rig.thread);
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.events, events);
    QCOMPARE(procedureCalls(rig.driver, true).size(), 1);
}

void tst_UtilsUniProgThread_procedures::controlProcedures_data()
{
    QTest::addColumn<Request>("request");
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("line"); // on success
    QTest::addColumn<QString>("followUp"); // called on success
    static TConfiguration configuration;
    static TPowerInfo powerInfo;
    static unsigned char bytes[4];
    static unsigned short size = sizeof bytes;
    using Thread = UtilsUniProgThread;
    const QString none;
    const QString save = QStringLiteral("PowerSaveConfiguration()");
    const auto row
        = [](const Request &request, Operation operation, const QString &line = {}, const QString &followUp = {}) {
              QTest::newRow(qPrintable(QVariant::fromValue(operation).toString()))
                  << request << operation << line << followUp;
          };

    row([](Thread &t) { t.FindDevice(); }, Operation::FindDevice, success("My device signaled."));
    row([](Thread &t) { t.GetDeviceConfiguration(&configuration); }, Operation::GetDeviceConfiguration,
        success("Getting device config done."));
    row([](Thread &t) { t.SetDeviceConfiguration(&configuration); }, Operation::SetDeviceConfiguration,
        success("Setting device config done."), "CommitConfiguration()");
    row([](Thread &t) { t.WiFiServerStart(); }, Operation::WiFiServerStart, success("WiFi is enabled."));
    row([](Thread &t) { t.SwoGetData(bytes, &size); }, Operation::SwoGetData);
    row([](Thread &t) { t.PowerSwitch(1, 1); }, Operation::PowerSwitch, none, save);
    row([](Thread &t) { t.PowerSetVoltage(1, 1.5F); }, Operation::PowerSetVoltage, none, save);
    row([](Thread &t) { t.PowerSetBatteryOptions(1); }, Operation::PowerSetBatteryOptions, none, save);
    row([](Thread &t) { t.PowerGetInfo(&powerInfo); }, Operation::PowerGetInfo);
    row([](Thread &t) { t.PowerGetReadings(bytes, 4); }, Operation::PowerGetReadings);
    row([](Thread &t) { t.PowerSaveConfiguration(); }, Operation::PowerSaveConfiguration);
    row([](Thread &t) { t.PowerBootloaderActivate(); }, Operation::PowerBootloaderActivate);
    row([](Thread &t) { t.PowerBootloaderGetInfo(); }, Operation::PowerBootloaderGetInfo);
    row([](Thread &t) { t.PowerBootloaderReset(); }, Operation::PowerBootloaderReset);
    row([](Thread &t) { t.BootloaderExit(TSelectedDevice()); }, Operation::BootloaderExit);
}

void tst_UtilsUniProgThread_procedures::controlProcedures()
{
    QFETCH(Request, request);
    QFETCH(Operation, operation);
    QFETCH(QString, line);
    QFETCH(QString, followUp);
    {
        ProcedureRig rig;
        if (!followUp.isEmpty()) { // the result of the follow-up is ignored
            rig.driver.always(Operation::PowerSaveConfiguration, Failure);
            rig.driver.always(Operation::CommitConfiguration, Failure);
        }
        request(rig.thread);
        QVERIFY(rig.settle());
        QCOMPARE(rig.log.events, ProcedureLog::controlRun(line.isEmpty() ? QStringList() : QStringList{line}));
        const QStringList calls = procedureCalls(rig.driver, false);
        QCOMPARE(calls.size(), followUp.isEmpty() ? 1 : 2);
        if (!followUp.isEmpty())
            QCOMPARE(calls.last(), followUp);
    }
    {
        ProcedureRig rig;
        rig.driver.always(operation, Failure);
        request(rig.thread);
        QVERIFY(rig.settle());
        QCOMPARE(rig.log.events, ProcedureLog::controlRun({}, Failure, OperationFailed));
        QCOMPARE(procedureCalls(rig.driver, false).size(), 1);
    }
}

void tst_UtilsUniProgThread_procedures::powerSupplyChecks_data()
{
    QTest::addColumn<Request>("request");
    QTest::addColumn<Script>("script");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<int>("status");
    const Request switching = [](UtilsUniProgThread &thread) { thread.PowerSwitch(13, 1); };
    const Request voltage = [](UtilsUniProgThread &thread) { thread.PowerSetVoltage(13, 3.5F); };
    const QString ask = QStringLiteral("PowerGetSupplyState(pointer)");
    const QString save = QStringLiteral("PowerSaveConfiguration()");
    const QStringList switched{ask, "PowerSwitch(13, 1)", save};
    const QStringList set{ask, "PowerSetVoltage(13, 3.5)", save};

    QTest::newRow("switch: powered") << switching << supply(0, 1, 1.0F) << QStringList{ask} << 11;
    QTest::newRow("switch: powered, though the question failed")
        << switching << supply(Failure, 1, 3.3F) << QStringList{ask} << 11;
    QTest::newRow("switch: just not powered") << switching << supply(0, 1, 0.99F) << switched << 0;
    QTest::newRow("switch: level without state") << switching << supply(0, 0, 5.0F) << switched << 0;
    QTest::newRow("switch: another state") << switching << supply(0, 2, 5.0F) << switched << 0;
    QTest::newRow("switch: the question failed")
        << switching << supply(Failure, 0, 0.0F) << QStringList{ask} << Failure;
    QTest::newRow("switch: the question failed without an answer")
        << switching << writesNothing(Operation::PowerGetSupplyState, Failure) << QStringList{ask} << Failure;
    QTest::newRow("switch: no answer") << switching << writesNothing(Operation::PowerGetSupplyState) << switched << 0;
    QTest::newRow("voltage: powered") << voltage << supply(0, 1, 1.0F) << set << 0;
    QTest::newRow("voltage: the question failed") << voltage << supply(Failure, 0, 0.0F) << set << 0;
    QTest::newRow("voltage: powered and refused") << voltage << Script([](ScriptedDriver &driver) {
        supply(0, 1, 5.0F)(driver);
        driver.always(Operation::PowerSetVoltage, 10);
    }) << set.mid(0, 2) << 10;
}

void tst_UtilsUniProgThread_procedures::powerSupplyChecks()
{
    QFETCH(Request, request);
    QFETCH(Script, script);
    QFETCH(QStringList, calls);
    QFETCH(int, status);
    ProcedureRig rig;
    script(rig.driver);
    request(rig.thread);
    QVERIFY(rig.settle());
    QCOMPARE(procedureCalls(rig.driver, false), calls);
    QCOMPARE(rig.log.lastStatus, status);
    QString text;
    if (status == 11)
        text = QStringLiteral("Power supplied externally. Can't apply voltage.");
    else if (status == 10)
        text = QStringLiteral("Wrong target voltage.\nCheck power settings.");
    else if (status != 0)
        text = OperationFailed;
    QCOMPARE(rig.log.events, ProcedureLog::controlRun({}, status, text));
}

void tst_UtilsUniProgThread_procedures::swoEnableLogsItsOwnTextAndTheFramesToo()
{
    const QString voltage = QStringLiteral("Wrong target voltage.\nCheck power settings.");
    ProcedureRig rig;
    rig.driver.always(Operation::ConnectToTarget, 10);
    rig.thread.SwoEnable(5);
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.events,
             ProcedureLog::controlRun(
                 {ProcedureLog::line("Connecting to target failed.\n" + voltage, LOGGER_MESSAGE_ERROR)}, 10, voltage));
    QCOMPARE(rig.driver.callCount(Operation::SwoEnable), 0);

    ProcedureRig refused;
    refused.driver.always(Operation::SwoEnable, Failure);
    refused.thread.SwoEnable(5);
    QVERIFY(refused.settle());
    QCOMPARE(refused.log.events, ProcedureLog::controlRun({}, Failure, OperationFailed));
}

void tst_UtilsUniProgThread_procedures::swoDisableLogsItsOwnTextAndTheFramesToo()
{
    ProcedureRig rig;
    rig.thread.SwoDisable();
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.events, ProcedureLog::controlRun({info("Disconnected from target.")}));

    ProcedureRig failing;
    failing.driver.always(Operation::DisconnectFromTarget, Failure);
    failing.thread.SwoDisable();
    QVERIFY(failing.settle());
    QCOMPARE(failing.log.events,
             ProcedureLog::controlRun({error("Disconnecting from target failed.")}, Failure, OperationFailed));
    QCOMPARE(procedureCalls(failing.driver, false),
             (QStringList{"DisconnectFromTarget()", "SetTargetInterfaceInUse(false)"}));
}

void tst_UtilsUniProgThread_procedures::bootloaderInfoIsFilledOrCleared()
{
    ProcedureRig rig;
    QByteArray bootloader("old");
    rig.driver.next(Operation::BootloaderGetInfo, Answer().giving(QByteArray("v7")));
    rig.thread.BootloaderEnter(TSelectedDevice(), &bootloader);
    QVERIFY(rig.settle(1));
    QCOMPARE(bootloader, QByteArray("v7"));
    QCOMPARE(rig.log.events, ProcedureLog::controlRun({}));

    rig.driver.next(Operation::BootloaderEnter, Failure); // not asked: left as it was
    rig.thread.BootloaderEnter(TSelectedDevice(), &bootloader);
    QVERIFY(rig.settle(2));
    QCOMPARE(bootloader, QByteArray("v7"));
    QCOMPARE(rig.log.lastStatus, Failure);

    rig.driver.next(Operation::BootloaderGetInfo, Answer(5).giving(QByteArray("half")));
    rig.thread.BootloaderEnter(TSelectedDevice(), &bootloader);
    QVERIFY(rig.settle(3));
    QCOMPARE(bootloader, QByteArray());
    QCOMPARE(rig.log.lastStatus, 5);

    rig.driver.next(Operation::BootloaderGetInfo, 5);
    rig.thread.BootloaderEnter(TSelectedDevice(), nullptr);
    QVERIFY(rig.settle(4));
    QCOMPARE(rig.log.lastStatus, 5);
}

void tst_UtilsUniProgThread_procedures::callersFlagsMayBeMissing()
{
    ProcedureRig rig;
    MemoryManager memory;
    rig.thread.VerifyTarget(&memory, nullptr);
    QVERIFY(rig.settle(1));
    QVERIFY(rig.log.events.contains(success("File is verified.")));
    rig.thread.CheckTargetBlank(nullptr);
    QVERIFY(rig.settle(2));
    QVERIFY(rig.log.events.contains(success("Chip is blank.")));
    rig.driver.always(Operation::DetectTarget, Answer().giving(false));
    rig.thread.DetectTarget(nullptr);
    QVERIFY(rig.settle(3));
    QVERIFY(rig.log.events.contains(error("Target is not detected.")));
    QVERIFY(!rig.driver.transcript().join(' ').contains("null"));
}

void tst_UtilsUniProgThread_procedures::theWriteSettlesAlsoAfterAFailure()
{
    // The time between the end of the write and the next call, as the driver sees it.
    for (const int status : {0, Failure}) {
        ProcedureRig rig;
        QElapsedTimer timer;
        qint64 settled = -1;
        rig.driver.always(Operation::WriteTarget, Answer(status).calling([&] { timer.start(); }));
        rig.driver.always(Operation::ResetTarget, Answer().calling([&] { settled = timer.elapsed(); }));
        MemoryManager memory;
        rig.thread.WriteTarget(&memory);
        QVERIFY(rig.settle());
        QVERIFY2(settled >= 500 && settled < 10 * 500, qPrintable(QString::number(settled)));
    }
}

void tst_UtilsUniProgThread_procedures::aDescriptorThatExpiresReadsAsZero()
{
    ProcedureRig rig;
    setOptions(rig.driver, {2, 1, 1, 1});
    // The application changes the chip while the device is being erased.
    rig.driver.always(Operation::EraseTarget, Answer().calling([&] { rig.driver.setTargetDescriptor({}); }));
    MemoryManager memory;
    rig.thread.WriteTarget(&memory);
    QVERIFY(rig.settle(1));
    QVERIFY(rig.log.events.contains(info("Chip is running.")));

    rig.driver.reset();
    bool blank = false;
    rig.thread.CheckTargetBlank(&blank);
    QVERIFY(rig.settle(2));
    QVERIFY(rig.driver.transcript().contains(QStringLiteral("ConnectToTarget(1)")));
    QVERIFY(rig.driver.transcript().contains(QStringLiteral("CheckTargetBlank(pointer, false)")));

    rig.driver.reset();
    rig.thread.WriteTarget(&memory);
    QVERIFY(rig.settle(3));
    QCOMPARE(procedureCalls(rig.driver, true),
             (QStringList{"EraseTargetMass()", "WriteTarget(pointer, 0)", "ResetTarget(0)"}));
}

void tst_UtilsUniProgThread_procedures::resultsReachTheCaller()
{
    ProcedureRig rig;
    bool flag = true;
    rig.driver.next(Operation::DetectTarget, Answer().giving(false));
    rig.thread.DetectTarget(&flag);
    QVERIFY(rig.settle(1));
    QCOMPARE(flag, false);
    rig.thread.CheckTargetBlank(&flag);
    QVERIFY(rig.settle(2));
    QCOMPARE(flag, true);

    MemoryManager image;
    image.write(0, "abc");
    rig.driver.next(Operation::ReadTarget, Answer().giving(QVariant::fromValue(image)));
    MemoryManager memory;
    rig.thread.ReadTarget(&memory);
    QVERIFY(rig.settle(3));
    QVERIFY(memory == image);

    unsigned char bytes[4] = {};
    unsigned short size = sizeof bytes;
    rig.driver.next(Operation::SwoGetData, Answer().giving(QByteArray("ok")));
    rig.thread.SwoGetData(bytes, &size);
    QVERIFY(rig.settle(4));
    QCOMPARE(int(size), 2);
    QCOMPARE(bytes[0], static_cast<unsigned char>('o'));
}

UNIPROG_TEST_MAIN(tst_UtilsUniProgThread_procedures)
#include "tst_utilsuniprogthread_procedures.moc"
