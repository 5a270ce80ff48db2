#include "SimulatedCalls.h"
#include "SimulatedTest.h"

#include <UniProgTest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QMetaEnum>

#include <limits>
#include <memory>

using Operation = SimulatedProgrammer::Operation;
using Status = SimulatedProgrammer::Status;

class tst_SimulatedProgrammer : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void itIsADriverWithASignal();
    void statusesKeepTheNumbersOfTheLibrary();
    void everythingStartsDisconnected();

    void theWholeRoadKeepsTheOrder();
    void nothingWorksWithoutAConnection();
    void connectingTwiceIsRefused();
    void theStepsToTheTargetHaveAnOrder();
    void targetOperationsNeedTheTarget();
    void leavingTheTargetTwiceIsHarmless();
    void anInterfaceInUseElsewhereIsNotTaken();
    void releasingTheInterfaceLeavesTheTarget();
    void theTargetConnectionOutlivesTheDeviceConnection();
    void hostileArgumentsAreRefused();
    void callsAreCounted();

    void aLostLinkIsNobodysMistake();
    void losingNoLinkDoesNothing();
    void aConnectionBeingMadeIsLostToo();
    void aLongOperationEndsWithTheLink();
    void timesAreScaled();
    void nonsenseIsNoTimeScale();
    void deletingTheProgrammerEndsItsOperation();
    void settingsMayChangeWhileAnOperationRuns();
    void aReceiverOfProgressMayAskTheProgrammer();
};

void tst_SimulatedProgrammer::itIsADriverWithASignal()
{
    SimulatedProgrammer programmer;
    UniProgInterface *driver = &programmer;
    QCOMPARE(dynamic_cast<QObject *>(driver), &programmer);
    // The library connects to this text.
    QVERIFY(programmer.metaObject()->indexOfSignal("SignalUpdateProgress(int)") >= 0);
    QVERIFY(driver->GetTargetDescriptor());
}

void tst_SimulatedProgrammer::statusesKeepTheNumbersOfTheLibrary()
{
    QCOMPARE(int(Status::Success), 0);
    QCOMPARE(int(Status::WiFiAuthenticationFailed), 4);
    QCOMPARE(int(Status::UnsupportedVendor), 8);
    QCOMPARE(int(Status::WrongVoltage), 10);
    QCOMPARE(int(Status::PoweredExternally), 11);
    QCOMPARE(int(Status::FirmwareTooOld), 12);
    QCOMPARE(int(Status::ConfigurationLinkAuthenticationFailed), 13);
    QCOMPARE(int(Status::DebugLinkAuthenticationFailed), 14);
    QCOMPARE(int(Status::NoSelectedDevice), 38);
    QCOMPARE(int(Status::ChipNotRecognised), 51);
}

void tst_SimulatedProgrammer::everythingStartsDisconnected()
{
    const SimulatedProgrammer programmer;
    QVERIFY(!programmer.isConnected());
    QVERIFY(!programmer.isInterfaceTaken());
    QVERIFY(!programmer.isTargetConnected());
    QVERIFY(programmer.isTargetRunning());
    QVERIFY(!programmer.isWiFiServerRunning());
    QVERIFY(!programmer.isInBootloader());
    QVERIFY(!programmer.isPowerModuleInBootloader());
    QVERIFY(!programmer.isHanging());
    QCOMPARE(programmer.timeScale(), 1.0);
    QCOMPARE(programmer.devices().size(), 2);
    QCOMPARE(programmer.devices().at(0).link, qint32(TSelectedDevice::Usb));
    QCOMPARE(programmer.devices().at(1).link, qint32(TSelectedDevice::WiFi));
    QCOMPARE(programmer.refusals(), QStringList());
    QCOMPARE(programmer.callCount(Operation::Connect), 0);
    QCOMPARE(programmer.sectorsErased(), 0);
    QCOMPARE(programmer.bytesWritten(), 0);
}

void tst_SimulatedProgrammer::theWholeRoadKeepsTheOrder()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QVERIFY(programmer.isConnected());
    QCOMPARE(programmer.connectionType(), OPERATION_TYPE_DEBUG);
    QVERIFY(programmer.isInterfaceTaken());
    QVERIFY(programmer.isTargetConnected());
    MemoryManager image = imageOf(0, "firmware");
    bool verified = false;
    QCOMPARE(programmer.EraseTargetMass(), 0);
    QCOMPARE(programmer.WriteTarget(&image, 0), 0);
    QCOMPARE(programmer.VerifyTarget(&image, &verified, 0), 0);
    QVERIFY(verified);
    QCOMPARE(programmer.ResetTarget(0), 0);
    QCOMPARE(programmer.DisconnectFromTarget(), 0);
    QVERIFY(!programmer.isTargetConnected());
    QVERIFY(programmer.isInterfaceTaken());
    QCOMPARE(programmer.SetTargetInterfaceInUse(false), 0);
    QVERIFY(!programmer.isInterfaceTaken());
    QCOMPARE(programmer.Disconnect(), 0);
    QVERIFY(!programmer.isConnected());
    QCOMPARE(programmer.refusals(), QStringList());
}

void tst_SimulatedProgrammer::nothingWorksWithoutAConnection()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    QStringList refusals; // each under its own name
    const QMetaEnum names = QMetaEnum::fromType<Operation>();
    for (int i = 0; i < names.keyCount(); ++i) {
        const auto operation = Operation(names.value(i));
        if (operation == Operation::Connect || operation == Operation::ConnectSelectedDevice
            || operation == Operation::SetWiFiLinkPassword)
            continue;
        QCOMPARE(callOf(programmer, operation), int(Status::NotConnected));
        refusals.append(QString::fromLatin1(names.key(i)) + QStringLiteral(": no connection to the device"));
    }
    QCOMPARE(programmer.SetTargetInterfaceInUse(false), int(Status::NotConnected));
    refusals.append(QStringLiteral("SetTargetInterfaceInUse: no connection to the device"));
    QCOMPARE(programmer.refusals(), refusals);
}

void tst_SimulatedProgrammer::connectingTwiceIsRefused()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    TSelectedDevice device = programmer.devices().constLast();
    QCOMPARE(programmer.Connect(OPERATION_TYPE_CONFIGURATION), 0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), int(Status::OutOfOrder));
    QCOMPARE(programmer.ConnectSelectedDevice(&device, OPERATION_TYPE_DEBUG), int(Status::OutOfOrder));
    QCOMPARE(programmer.connectionType(), OPERATION_TYPE_CONFIGURATION);
    QVERIFY(programmer.isConnected());
    QCOMPARE(programmer.refusals(),
             (QStringList{QStringLiteral("Connect: the device is connected already"),
                          QStringLiteral("ConnectSelectedDevice: the device is connected already")}));
}

void tst_SimulatedProgrammer::theStepsToTheTargetHaveAnOrder()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    const int wrong = Status::OutOfOrder;
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
    QCOMPARE(programmer.SetTargetClock(), wrong);
    QCOMPARE(programmer.ConnectToTarget(1), wrong);
    QCOMPARE(programmer.SetTargetInterfaceInUse(true), 0);
    QCOMPARE(programmer.ConnectToTarget(1), wrong);
    QCOMPARE(programmer.SetTargetClock(), 0);
    QCOMPARE(programmer.ConnectToTarget(1), 0);
    QCOMPARE(programmer.ConnectToTarget(1), wrong);
    // The interface that is taken may be taken again: nobody else has it.
    QCOMPARE(programmer.SetTargetInterfaceInUse(true), 0);
    QVERIFY(programmer.isTargetConnected());
    QCOMPARE(programmer.refusals(),
             (QStringList{QStringLiteral("SetTargetClock: the interface to the target is not taken"),
                          QStringLiteral("ConnectToTarget: the interface to the target is not taken"),
                          QStringLiteral("ConnectToTarget: the clock of the interface is not set"),
                          QStringLiteral("ConnectToTarget: the target is connected already")}));

    // The clock has to be set for every taking.
    QCOMPARE(programmer.SetTargetInterfaceInUse(false), 0);
    QCOMPARE(programmer.SetTargetInterfaceInUse(true), 0);
    QCOMPARE(programmer.ConnectToTarget(0), wrong);
}

void tst_SimulatedProgrammer::targetOperationsNeedTheTarget()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
    QCOMPARE(programmer.SetTargetInterfaceInUse(true), 0);
    QCOMPARE(programmer.SetTargetClock(), 0);
    MemoryManager memory;
    bool flag = false;
    const QList<int> statuses{
        programmer.ResetTarget(0),
        programmer.SwoEnable(0),
        programmer.ReadTarget(&memory),
        programmer.DetectTarget(&flag),
        programmer.VerifyTarget(&memory, &flag, 0),
        programmer.WriteTarget(&memory, 0),
        programmer.EraseTargetMass(),
        programmer.EraseTarget(&memory),
        programmer.CheckTargetBlank(&flag, false),
    };
    QCOMPARE(statuses, QList<int>(statuses.size(), Status::OutOfOrder));
    QCOMPARE(programmer.refusals().constFirst(), QStringLiteral("ResetTarget: no connection to the target"));
    QCOMPARE(programmer.refusals().size(), statuses.size());
}

void tst_SimulatedProgrammer::leavingTheTargetTwiceIsHarmless()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    for (int i = 0; i < 2; ++i)
        QCOMPARE(programmer.DisconnectFromTarget(), 0);
    for (int i = 0; i < 2; ++i)
        QCOMPARE(programmer.SetTargetInterfaceInUse(false), 0);
    QCOMPARE(programmer.refusals(), QStringList());
}

void tst_SimulatedProgrammer::anInterfaceInUseElsewhereIsNotTaken()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    programmer.setInterfaceInUseElsewhere(true);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
    QCOMPARE(programmer.SetTargetInterfaceInUse(true), int(Status::InterfaceInUse));
    QVERIFY(!programmer.isInterfaceTaken());
    QCOMPARE(programmer.SetTargetInterfaceInUse(false), 0);
    programmer.setInterfaceInUseElsewhere(false);
    QCOMPARE(programmer.SetTargetInterfaceInUse(true), 0);
    QCOMPARE(programmer.refusals(), QStringList());
}

void tst_SimulatedProgrammer::releasingTheInterfaceLeavesTheTarget()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QCOMPARE(programmer.SetTargetInterfaceInUse(false), 0);
    QVERIFY(!programmer.isTargetConnected());
    QCOMPARE(programmer.EraseTargetMass(), int(Status::OutOfOrder));
}

void tst_SimulatedProgrammer::theTargetConnectionOutlivesTheDeviceConnection()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QCOMPARE(programmer.Disconnect(), 0);
    QVERIFY(programmer.isTargetConnected());
    QCOMPARE(programmer.EraseTargetMass(), int(Status::NotConnected));
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
    QCOMPARE(programmer.EraseTargetMass(), 0);
}

void tst_SimulatedProgrammer::hostileArgumentsAreRefused()
{
    SimulatedProgrammer p;
    connectAll(p);
    MemoryManager memory;
    bool flag = true;
    unsigned short size = 4;
    unsigned char byte = 0;
    QList<int> statuses{
        p.GetDeviceConfiguration(nullptr),
        p.SetDeviceConfiguration(nullptr),
        p.ConnectToTarget(2),
        p.ConnectToTarget(-1),
        p.ResetTarget(1),
        p.SwoGetData(nullptr, &size),
        p.SwoGetData(&byte, nullptr),
        p.ReadTarget(nullptr),
        p.DetectTarget(nullptr),
        p.VerifyTarget(nullptr, &flag, 0),
        p.VerifyTarget(&memory, nullptr, 0),
        p.WriteTarget(nullptr, 0),
        p.WriteTarget(&memory, 1),
        p.EraseTarget(nullptr),
        p.CheckTargetBlank(nullptr, false),
        p.PowerGetReadings(nullptr, 4),
        p.PowerGetReadings(&byte, -1),
        p.PowerGetReadings(&byte, std::numeric_limits<int>::min()),
        p.PowerGetInfo(nullptr),
        p.PowerGetSupplyState(nullptr),
        p.PowerBootloaderVerify(0, 0, nullptr),
    };
    QCOMPARE(p.BootloaderEnter(), 0);
    statuses.append(p.BootloaderGetInfo(nullptr));
    QCOMPARE(statuses, QList<int>(statuses.size(), Status::InvalidArgument));
    QCOMPARE(p.refusals().size(), statuses.size());
    QCOMPARE(p.refusals().constLast(), QStringLiteral("BootloaderGetInfo: invalid argument"));
    QCOMPARE(size, 4);
    QVERIFY(flag);
}

void tst_SimulatedProgrammer::callsAreCounted()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
    QCOMPARE(programmer.PowerSaveConfiguration(), 0);
    QCOMPARE(programmer.PowerSaveConfiguration(), 0);
    QCOMPARE(programmer.EraseTargetMass(), int(Status::OutOfOrder));
    QCOMPARE(programmer.SetWiFiLinkPassword(QStringLiteral("x"), true), 0);
    QCOMPARE(programmer.callCount(Operation::PowerSaveConfiguration), 2);
    QCOMPARE(programmer.successCount(Operation::PowerSaveConfiguration), 2);
    QCOMPARE(programmer.callCount(Operation::EraseTargetMass), 1);
    QCOMPARE(programmer.successCount(Operation::EraseTargetMass), 0);
    QCOMPARE(programmer.callCount(Operation::SetWiFiLinkPassword), 1);
    QCOMPARE(programmer.callCount(Operation::EraseTarget), 0);
    QCOMPARE(programmer.refusals().size(), 1);
    programmer.clearRecord();
    QCOMPARE(programmer.callCount(Operation::PowerSaveConfiguration), 0);
    QCOMPARE(programmer.successCount(Operation::PowerSaveConfiguration), 0);
    QCOMPARE(programmer.refusals(), QStringList());
    QVERIFY(programmer.isConnected());
}

void tst_SimulatedProgrammer::aLostLinkIsNobodysMistake()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    programmer.loseLink();
    QVERIFY(!programmer.isConnected());
    QVERIFY(!programmer.isTargetConnected());
    QVERIFY(!programmer.isInterfaceTaken());
    QCOMPARE(programmer.EraseTargetMass(), int(Status::LinkLost));
    QCOMPARE(programmer.DisconnectFromTarget(), int(Status::LinkLost));
    QCOMPARE(programmer.Disconnect(), int(Status::LinkLost));
    QCOMPARE(programmer.refusals(), QStringList());
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
}

void tst_SimulatedProgrammer::losingNoLinkDoesNothing()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    programmer.loseLink();
    QCOMPARE(programmer.Disconnect(), int(Status::NotConnected));
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
    QVERIFY(programmer.isConnected());
}

void tst_SimulatedProgrammer::aConnectionBeingMadeIsLostToo()
{
    SimulatedProgrammer programmer;
    QVERIFY(programmer.addFault(QStringLiteral("device-connect@call=1:hang")));
    int status = -1;
    Worker worker([&] { status = programmer.Connect(OPERATION_TYPE_DEBUG); });
    QTRY_VERIFY_WITH_TIMEOUT(programmer.isHanging(), ThreadLimitMs);
    programmer.loseLink();
    worker.join();
    QCOMPARE(status, int(Status::LinkLost));
    QVERIFY(!programmer.isConnected());
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
}

void tst_SimulatedProgrammer::aLongOperationEndsWithTheLink()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    programmer.setTimeScale(1000);
    MemoryManager image = imageOf(0, QByteArray(100'000, '\0'));
    int status = -1;
    // More than half an hour, if nobody ends it.
    Worker worker([&] { status = programmer.WriteTarget(&image, 0); });
    QTRY_VERIFY_WITH_TIMEOUT(programmer.callCount(Operation::WriteTarget) == 1, ThreadLimitMs);
    programmer.loseLink();
    worker.join();
    QCOMPARE(status, int(Status::LinkLost));
    QVERIFY(programmer.bytesWritten() < image.size());
}

void tst_SimulatedProgrammer::timesAreScaled()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    MemoryManager image = imageOf(0, QByteArray(10'000, '\0'));
    programmer.setTimeScale(0.25);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(programmer.WriteTarget(&image, 0), 0);
    // 20 us a byte; a quarter of that.
    QVERIFY(timer.elapsed() >= 49);
}

void tst_SimulatedProgrammer::nonsenseIsNoTimeScale()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0.5);
    for (const double scale :
         {-1.0, 1000.5, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        programmer.setTimeScale(scale);
        QCOMPARE(programmer.timeScale(), 0.5);
    }
    programmer.setTimeScale(1000);
    QCOMPARE(programmer.timeScale(), 1000.0);
}

void tst_SimulatedProgrammer::deletingTheProgrammerEndsItsOperation()
{
    auto programmer = std::make_unique<SimulatedProgrammer>();
    connectAll(*programmer);
    QVERIFY(programmer->addFault(QStringLiteral("erase=hang")));
    int status = -1;
    SimulatedProgrammer *driver = programmer.get();
    Worker worker([&status, driver] { status = driver->EraseTargetMass(); });
    QTRY_VERIFY_WITH_TIMEOUT(programmer->isHanging(), ThreadLimitMs);
    programmer.reset();
    worker.join();
    QCOMPARE(status, int(Status::LinkLost));
}

void tst_SimulatedProgrammer::settingsMayChangeWhileAnOperationRuns()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    programmer.setTimeScale(0.01);
    int status = -1;
    MemoryManager image = imageOf(0, QByteArray(200 * 1024, '\0'));
    Worker worker([&] { status = programmer.WriteTarget(&image, 0); });
    for (int i = 0; i < 200; ++i) {
        programmer.setExternalSupply(float(i % 5));
        programmer.setSwoStream(QByteArray::number(i));
        programmer.setFlash(0x3F000, QByteArray::number(i));
        programmer.SetWiFiLinkPassword(QString::number(i), true);
        QVERIFY(programmer.addFault(QStringLiteral("read@call=%1").arg(i + 1)));
        QVERIFY(programmer.flash().contains(0x3F000));
        QVERIFY(programmer.bytesWritten() <= image.size());
    }
    programmer.clearFaults();
    worker.join();
    QCOMPARE(status, 0);
    QCOMPARE(programmer.flash().read(0, 200 * 1024), QByteArray(200 * 1024, '\0'));
}

void tst_SimulatedProgrammer::aReceiverOfProgressMayAskTheProgrammer()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    MemoryManager image = imageOf(0, QByteArray(1024, '\0'));
    QList<qint64> written;
    connect(&programmer, &SimulatedProgrammer::SignalUpdateProgress, &programmer, [&](int percent) {
        written.append(programmer.bytesWritten());
        if (percent == 50)
            programmer.loseLink();
    });
    QCOMPARE(programmer.WriteTarget(&image, 0), int(Status::LinkLost));
    QCOMPARE(written, (QList<qint64>{0, 256, 512}));
}

UNIPROG_TEST_MAIN(tst_SimulatedProgrammer)

#include "tst_simulatedprogrammer.moc"
