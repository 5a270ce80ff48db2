#include "SimulatedCalls.h"
#include "SimulatedTest.h"

#include <UniProgTest.h>

#include <QApplication>
#include <QMetaEnum>

using Operation = SimulatedProgrammer::Operation;
using Fault = SimulatedProgrammer::Fault;

static constexpr int BlockSize = SimulatedProgrammer::ProgramBlockSize;

class tst_SimulatedFaults : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyNameOfTheHelpIsUnderstood();
    void textsAreRead_data();
    void textsAreRead();
    void wrongTextsAreExplained_data();
    void wrongTextsAreExplained();
    void everyOperationCanFail_data();
    void everyOperationCanFail();
    void onlyTheGivenCallFails();
    void callsAreCountedFromTheMomentTheFaultWasAdded();
    void theFaultAddedFirstStrikesFirst();
    void aFaultOfOneConnectionHitsTheOther();
    void aFaultOfOneEraseHitsTheOther();
    void releasingTheInterfaceCannotFail();
};

void tst_SimulatedFaults::everyNameOfTheHelpIsUnderstood()
{
    const QStringList names = SimulatedProgrammer::faultNames();
    QCOMPARE(QSet<QString>(names.cbegin(), names.cend()).size(), names.size());
    for (const char *name : {"device-connect", "interface-in-use", "clock", "target-connect", "erase", "write",
                             "verify", "verify-mismatch", "target-disconnect", "bootloader-write", "slow"})
        QVERIFY2(names.contains(QLatin1String(name)), name);
    for (const QString &name : names) {
        SimulatedProgrammer programmer;
        QString error = QStringLiteral("untouched");
        QVERIFY(programmer.addFault(name == u"slow" ? QStringLiteral("slow=2") : name, &error));
        QCOMPARE(error, QString());
    }
}

void tst_SimulatedFaults::textsAreRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<int>>("statuses");

    // What three writes of four blocks give.
    const int own = SimulatedProgrammer::WriteError;
    const int lost = SimulatedProgrammer::LinkLost;
    QTest::newRow("name only") << "write" << QList<int>{own, own, own};
    QTest::newRow("status") << "write=7" << QList<int>{7, 7, 7};
    QTest::newRow("negative status") << "write=-1" << QList<int>{-1, -1, -1};
    QTest::newRow("one call") << "write@call=2" << QList<int>{0, own, 0};
    QTest::newRow("one call, status") << "write@call=3:9" << QList<int>{0, 0, 9};
    QTest::newRow("block") << "write@block=4:9" << QList<int>{9, 9, 9};
    QTest::newRow("block there is not") << "write@block=5:9" << QList<int>{0, 0, 0};
    QTest::newRow("byte") << "write@byte=1023:9" << QList<int>{9, 9, 9};
    QTest::newRow("byte there is not") << "write@byte=1024:9" << QList<int>{0, 0, 0};
    QTest::newRow("call and block") << "write@call=2,block=3:9" << QList<int>{0, 9, 0};
    QTest::newRow("block and byte of it") << "write@block=2,byte=300:9" << QList<int>{9, 9, 9};
    QTest::newRow("block and byte of another") << "write@block=2,byte=600:9" << QList<int>{0, 0, 0};
    QTest::newRow("link lost") << "write@call=2:link-lost" << QList<int>{0, lost, lost};
    QTest::newRow("delay") << "write=1ms" << QList<int>{0, 0, 0};
    QTest::newRow("no delay at all") << "write=0ms" << QList<int>{0, 0, 0};
    QTest::newRow("another operation") << "read=5" << QList<int>{0, 0, 0};
    QTest::newRow("slow") << "slow=1000" << QList<int>{0, 0, 0};
}

void tst_SimulatedFaults::textsAreRead()
{
    QFETCH(QString, text);
    QFETCH(QList<int>, statuses);
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QVERIFY(programmer.addFault(text));
    MemoryManager image = imageOf(0, QByteArray(4 * BlockSize, '\x21'));
    QList<int> seen;
    for (int i = 0; i < 3; ++i)
        seen.append(programmer.WriteTarget(&image, 0));
    QCOMPARE(seen, statuses);

    programmer.clearFaults();
    if (programmer.isConnected())
        QCOMPARE(programmer.WriteTarget(&image, 0), 0);
}

void tst_SimulatedFaults::wrongTextsAreExplained_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("part");

    QTest::newRow("empty") << ""
                           << "there is no fault \"\"";
    QTest::newRow("unknown name") << "writing=5"
                                  << "there is no fault \"writing\"";
    QTest::newRow("name with blank") << "write =5"
                                     << "there is no fault \"write \"";
    QTest::newRow("no outcome") << "write="
                                << "\"\" is no outcome";
    QTest::newRow("success") << "write=0"
                             << "\"0\" is no outcome";
    QTest::newRow("word") << "write=badly"
                          << "\"badly\" is no outcome";
    QTest::newRow("too large") << "write=4294967296"
                               << "\"4294967296\" is no outcome";
    QTest::newRow("negative time") << "write=-5ms"
                                   << "\"-5ms\" is no outcome";
    QTest::newRow("no time") << "write=ms"
                             << "\"ms\" is no outcome";
    QTest::newRow("no condition") << "write@"
                                  << "\"\" is no condition";
    QTest::newRow("no condition, outcome") << "write@:5"
                                           << "\"\" is no condition";
    QTest::newRow("unknown condition") << "write@page=3:5"
                                       << "\"page=3\" is no condition";
    QTest::newRow("condition without number") << "write@block:5"
                                              << "\"block\" is no condition";
    QTest::newRow("second condition") << "write@block=1,:5"
                                      << "\"\" is no condition";
    QTest::newRow("block 0") << "write@block=0:5"
                             << "\"block=0\" is no condition";
    QTest::newRow("negative call") << "write@call=-1:5"
                                   << "\"call=-1\" is no condition";
    QTest::newRow("call with plus") << "write@call=+1:5"
                                    << "\"call=+1\" is no condition";
    QTest::newRow("huge block") << "write@block=99999999999:5"
                                << "\"block=99999999999\" is no condition";
    QTest::newRow("two outcomes") << "write@block=3:5:6"
                                  << "\"5:6\" is no outcome";
    QTest::newRow("blocks of a connection") << "device-connect@block=1"
                                            << "does not work in blocks";
    QTest::newRow("corrupt connection") << "device-connect=corrupt"
                                        << "does not work in blocks";
    QTest::newRow("slow without number") << "slow"
                                         << "from 1 to 1000";
    QTest::newRow("slow by nothing") << "slow=0"
                                     << "from 1 to 1000";
    QTest::newRow("slow without end") << "slow=1001"
                                      << "from 1 to 1000";
    QTest::newRow("slow call") << "slow@call=1"
                               << "there is no fault \"slow\"";
    QTest::newRow("abbreviation with status") << "verify-mismatch=5"
                                              << "there is no fault \"verify-mismatch\"";
}

void tst_SimulatedFaults::wrongTextsAreExplained()
{
    QFETCH(QString, text);
    QFETCH(QString, part);
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QString error;
    QVERIFY(!programmer.addFault(text, &error));
    QVERIFY2(error.startsWith(u'"' + text + u'"'), qPrintable(error));
    QVERIFY2(error.contains(part), qPrintable(error));
    QVERIFY(!programmer.addFault(text));
    MemoryManager image = imageOf(0, "data");
    QCOMPARE(programmer.WriteTarget(&image, 0), 0);
}

static void addOperation(const char *fault, Operation operation, const QList<Operation> &before)
{
    QTest::newRow(QMetaEnum::fromType<Operation>().valueToKey(int(operation))) << fault << operation << before;
}

void tst_SimulatedFaults::everyOperationCanFail_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QList<Operation>>("before");

    const QList<Operation> nothing;
    const QList<Operation> device{Operation::Connect};
    const QList<Operation> interface = device + QList{Operation::SetTargetInterfaceInUse, Operation::SetTargetClock};
    const QList<Operation> target = interface + QList{Operation::ConnectToTarget};
    const QList<Operation> loader = device + QList{Operation::BootloaderEnter};
    const QList<Operation> power = device + QList{Operation::PowerBootloaderActivate};

    addOperation("device-connect", Operation::Connect, nothing);
    addOperation("device-connect", Operation::ConnectSelectedDevice, nothing);
    addOperation("device-disconnect", Operation::Disconnect, device);
    addOperation("configuration-commit", Operation::CommitConfiguration,
                 device + QList{Operation::SetDeviceConfiguration});
    addOperation("wifi-start", Operation::WiFiServerStart, device);
    addOperation("find-device", Operation::FindDevice, device);
    addOperation("configuration-get", Operation::GetDeviceConfiguration, device);
    addOperation("configuration-set", Operation::SetDeviceConfiguration, device);
    addOperation("target-connect", Operation::ConnectToTarget, interface);
    addOperation("clock", Operation::SetTargetClock, device + QList{Operation::SetTargetInterfaceInUse});
    addOperation("target-disconnect", Operation::DisconnectFromTarget, target);
    addOperation("interface-in-use", Operation::SetTargetInterfaceInUse, device);
    addOperation("reset", Operation::ResetTarget, target);
    addOperation("swo-enable", Operation::SwoEnable, target);
    addOperation("swo-data", Operation::SwoGetData, target + QList{Operation::SwoEnable});
    addOperation("read", Operation::ReadTarget, target);
    addOperation("detect", Operation::DetectTarget, target);
    addOperation("verify", Operation::VerifyTarget, target);
    addOperation("write", Operation::WriteTarget, target);
    addOperation("erase", Operation::EraseTargetMass, target);
    addOperation("erase", Operation::EraseTarget, target);
    addOperation("blank-check", Operation::CheckTargetBlank, target);
    addOperation("bootloader-enter", Operation::BootloaderEnter, device);
    addOperation("bootloader-erase", Operation::BootloaderErase, loader);
    addOperation("bootloader-write", Operation::BootloaderWrite, loader + QList{Operation::BootloaderErase});
    addOperation("bootloader-verify", Operation::BootloaderVerify,
                 loader + QList{Operation::BootloaderErase, Operation::BootloaderWrite});
    addOperation("bootloader-info", Operation::BootloaderGetInfo, loader);
    addOperation("bootloader-exit", Operation::BootloaderExit, loader);
    addOperation("power-switch", Operation::PowerSwitch, device);
    addOperation("power-voltage", Operation::PowerSetVoltage, device);
    addOperation("power-battery", Operation::PowerSetBatteryOptions, device);
    addOperation("power-readings", Operation::PowerGetReadings, device);
    addOperation("power-info", Operation::PowerGetInfo, device);
    addOperation("power-save", Operation::PowerSaveConfiguration, device);
    addOperation("power-supply", Operation::PowerGetSupplyState, device);
    addOperation("power-bootloader-activate", Operation::PowerBootloaderActivate, device);
    addOperation("power-bootloader-reset", Operation::PowerBootloaderReset, power);
    addOperation("power-bootloader-erase", Operation::PowerBootloaderErase, power);
    addOperation("power-bootloader-write", Operation::PowerBootloaderWrite,
                 power + QList{Operation::PowerBootloaderErase});
    addOperation("power-bootloader-verify", Operation::PowerBootloaderVerify,
                 power + QList{Operation::PowerBootloaderErase, Operation::PowerBootloaderWrite});
    addOperation("power-bootloader-info", Operation::PowerBootloaderGetInfo, power);
}

void tst_SimulatedFaults::everyOperationCanFail()
{
    QFETCH(QString, fault);
    QFETCH(Operation, operation);
    QFETCH(QList<Operation>, before);
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    for (const Operation step : std::as_const(before))
        QCOMPARE(callOf(programmer, step), 0);
    programmer.clearRecord();

    QVERIFY(programmer.addFault(fault));
    const int own = callOf(programmer, operation);
    QVERIFY2(own > 100, qPrintable(QString::number(own)));
    programmer.clearFaults();

    Fault chosen;
    chosen.operation = operation;
    chosen.status = 77;
    programmer.addFault(chosen);
    QCOMPARE(callOf(programmer, operation), 77);
    QCOMPARE(programmer.callCount(operation), 2);
    QCOMPARE(programmer.successCount(operation), 0);
    programmer.clearFaults();

    // A failed call has changed nothing that keeps the next from succeeding.
    QCOMPARE(callOf(programmer, operation), 0);
    QCOMPARE(programmer.callCount(operation), 3);
    QCOMPARE(programmer.successCount(operation), 1);
    QCOMPARE(programmer.refusals(), QStringList());
}

void tst_SimulatedFaults::onlyTheGivenCallFails()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    Fault fault;
    fault.operation = Operation::ResetTarget;
    fault.status = 5;
    fault.call = 3;
    programmer.addFault(fault);
    QList<int> statuses;
    for (int i = 0; i < 5; ++i)
        statuses.append(programmer.ResetTarget(0));
    QCOMPARE(statuses, (QList<int>{0, 0, 5, 0, 0}));
}

void tst_SimulatedFaults::callsAreCountedFromTheMomentTheFaultWasAdded()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QCOMPARE(programmer.ResetTarget(0), 0);
    QVERIFY(programmer.addFault(QStringLiteral("reset@call=2:5")));
    QCOMPARE(programmer.ResetTarget(0), 0);
    // A call that is refused is none.
    QCOMPARE(programmer.ResetTarget(1), int(SimulatedProgrammer::InvalidArgument));
    QVERIFY(programmer.addFault(QStringLiteral("reset@call=2:6")));
    QCOMPARE(programmer.ResetTarget(0), 5);
    QCOMPARE(programmer.ResetTarget(0), 6);
    QCOMPARE(programmer.ResetTarget(0), 0);
}

void tst_SimulatedFaults::theFaultAddedFirstStrikesFirst()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QVERIFY(programmer.addFault(QStringLiteral("reset=1ms")));
    QVERIFY(programmer.addFault(QStringLiteral("reset=6")));
    QVERIFY(programmer.addFault(QStringLiteral("reset=7")));
    QCOMPARE(programmer.ResetTarget(0), 6);
}

void tst_SimulatedFaults::aFaultOfOneConnectionHitsTheOther()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    Fault fault;
    fault.operation = Operation::ConnectSelectedDevice;
    fault.status = 12;
    fault.call = 2;
    programmer.addFault(fault);
    TSelectedDevice device = programmer.devices().constFirst();
    QCOMPARE(programmer.ConnectSelectedDevice(&device, OPERATION_TYPE_DEBUG), 0);
    QCOMPARE(programmer.Disconnect(), 0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 12);
    QVERIFY(!programmer.isConnected());
}

void tst_SimulatedFaults::aFaultOfOneEraseHitsTheOther()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QVERIFY(programmer.addFault(QStringLiteral("erase=7")));
    MemoryManager image = imageOf(0, "data");
    QCOMPARE(programmer.EraseTarget(&image), 7);
    QCOMPARE(programmer.EraseTargetMass(), 7);
}

void tst_SimulatedFaults::releasingTheInterfaceCannotFail()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QVERIFY(programmer.addFault(QStringLiteral("interface-in-use@call=1:5")));
    QCOMPARE(programmer.SetTargetInterfaceInUse(false), 0);
    QVERIFY(!programmer.isInterfaceTaken());
    QCOMPARE(programmer.SetTargetInterfaceInUse(true), 5);
    QVERIFY(!programmer.isInterfaceTaken());
    QCOMPARE(programmer.SetTargetInterfaceInUse(true), 0);
}

UNIPROG_TEST_MAIN(tst_SimulatedFaults)

#include "tst_simulatedfaults.moc"
