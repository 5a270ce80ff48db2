#include "SimulatedTest.h"

#include <UniProgTest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QSignalSpy>

#include <limits>

using Operation = SimulatedProgrammer::Operation;
using Effect = SimulatedProgrammer::Effect;
using Fault = SimulatedProgrammer::Fault;

static constexpr int BlockSize = SimulatedProgrammer::ProgramBlockSize;
static constexpr int LoaderBlockSize = SimulatedProgrammer::BootloaderBlockSize;

/// What a fault does to an operation that is under way.
class tst_SimulatedFaultEffects : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aWriteFailsAtItsBlock();
    void aWriteFailsAfterItsBytes_data();
    void aWriteFailsAfterItsBytes();
    void aReadFailsAtItsBlock();
    void anEraseFailsAtItsSector();
    void aFailedCheckIsNoGoodResult();
    void aVerifyMismatchIsDamagedFlash();
    void corruptionHitsItsBlock_data();
    void corruptionHitsItsBlock();
    void aBootloaderBlockFailsAtEveryAttempt();
    void aBootloaderCallFailsOnce();
    void aCorruptBootloaderBlockIsFoundByTheCrc();
    void theLinkIsLostAtABlock();
    void aHangingWriteGoesOnWhenReleased();
    void aHangingWriteEndsWithTheLink();
    void clearingTheFaultsReleasesAHang();
    void aDelayedCallSucceeds();
    void slownessIsForgottenWithTheFaults();
};

void tst_SimulatedFaultEffects::aWriteFailsAtItsBlock()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QVERIFY(programmer.addFault(QStringLiteral("write@block=3:5")));
    QSignalSpy progress(&programmer, &SimulatedProgrammer::SignalUpdateProgress);
    MemoryManager image = imageOf(0, QByteArray(4 * BlockSize, '\x21'));
    QCOMPARE(programmer.WriteTarget(&image, 0), 5);
    QCOMPARE(programmer.flash().read(0, 4 * BlockSize),
             QByteArray(2 * BlockSize, '\x21') + QByteArray(2 * BlockSize, '\xFF'));
    QCOMPARE(programmer.bytesWritten(), 2 * BlockSize);
    QCOMPARE(progress.last().first().toInt(), 50);
}

void tst_SimulatedFaultEffects::aWriteFailsAfterItsBytes_data()
{
    QTest::addColumn<int>("bytes");
    for (const int bytes : {0, 1, BlockSize - 1, BlockSize, BlockSize + 1, 2 * BlockSize - 1})
        QTest::newRow(qPrintable(QString::number(bytes))) << bytes;
}

void tst_SimulatedFaultEffects::aWriteFailsAfterItsBytes()
{
    QFETCH(int, bytes);
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QVERIFY(programmer.addFault(QStringLiteral("write@byte=%1:5").arg(bytes)));
    MemoryManager image = imageOf(0, QByteArray(2 * BlockSize, '\x21'));
    QCOMPARE(programmer.WriteTarget(&image, 0), 5);
    QCOMPARE(programmer.flash().read(0, 2 * BlockSize),
             QByteArray(bytes, '\x21') + QByteArray(2 * BlockSize - bytes, '\xFF'));
    QCOMPARE(programmer.bytesWritten(), bytes);
}

void tst_SimulatedFaultEffects::aReadFailsAtItsBlock()
{
    SimulatedProgrammer programmer;
    QVERIFY(programmer.setFlash(0, QByteArray(4 * BlockSize, '\x21')));
    connectAll(programmer);
    QVERIFY(programmer.addFault(QStringLiteral("read@block=2:5")));
    MemoryManager memory;
    QCOMPARE(programmer.ReadTarget(&memory), 5);
    QCOMPARE(memory.size(), BlockSize);
    QCOMPARE(memory.read(0, BlockSize), QByteArray(BlockSize, '\x21'));
}

void tst_SimulatedFaultEffects::anEraseFailsAtItsSector()
{
    SimulatedProgrammer programmer;
    QVERIFY(programmer.setFlash(0, QByteArray(4096, '\0')));
    connectAll(programmer);
    QVERIFY(programmer.addFault(QStringLiteral("erase@block=3:5")));
    QCOMPARE(programmer.EraseTargetMass(), 5);
    QCOMPARE(programmer.sectorsErased(), 2);
    QCOMPARE(programmer.flash().read(0, 4096), QByteArray(2048, '\xFF') + QByteArray(2048, '\0'));
}

void tst_SimulatedFaultEffects::aFailedCheckIsNoGoodResult()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QVERIFY(programmer.addFault(QStringLiteral("verify@block=2:5")));
    QVERIFY(programmer.addFault(QStringLiteral("blank-check@block=2:5")));
    MemoryManager image = imageOf(0, QByteArray(4 * BlockSize, '\xFF'));
    bool flag = true;
    QCOMPARE(programmer.VerifyTarget(&image, &flag, 0), 5);
    QVERIFY(!flag);
    flag = true;
    QCOMPARE(programmer.CheckTargetBlank(&flag, false), 5);
    QVERIFY(!flag);
}

void tst_SimulatedFaultEffects::aVerifyMismatchIsDamagedFlash()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QVERIFY(programmer.addFault(QStringLiteral("verify-mismatch")));
    MemoryManager image = imageOf(0, QByteArray(1000, '\x21'));
    QCOMPARE(programmer.WriteTarget(&image, 0), 0);
    bool verified = true;
    QCOMPARE(programmer.VerifyTarget(&image, &verified, 0), 0);
    QVERIFY(!verified);
    QVERIFY(programmer.flash().read(0, 1000) != QByteArray(1000, '\x21'));

    // It is the memory that is wrong, not the comparison.
    programmer.clearFaults();
    QCOMPARE(programmer.VerifyTarget(&image, &verified, 0), 0);
    QVERIFY(!verified);
}

void tst_SimulatedFaultEffects::corruptionHitsItsBlock_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<int>("address");

    QTest::newRow("writing") << "write@block=2:corrupt" << Operation::WriteTarget << BlockSize;
    QTest::newRow("writing, by bytes") << "write@byte=600:corrupt" << Operation::WriteTarget << 2 * BlockSize;
    QTest::newRow("verifying") << "verify@block=4:corrupt" << Operation::VerifyTarget << 3 * BlockSize;
    QTest::newRow("checking") << "blank-check=corrupt" << Operation::CheckTargetBlank << 0;
    QTest::newRow("erasing") << "erase@block=2:corrupt" << Operation::EraseTargetMass << 1024;
    QTest::newRow("reading") << "read@block=3:corrupt" << Operation::ReadTarget << 2 * BlockSize;
}

void tst_SimulatedFaultEffects::corruptionHitsItsBlock()
{
    QFETCH(QString, fault);
    QFETCH(Operation, operation);
    QFETCH(int, address);
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QVERIFY(programmer.addFault(fault));
    MemoryManager image = imageOf(0, QByteArray(8 * BlockSize, '\xFF'));
    bool flag = true;
    switch (operation) {
    case Operation::WriteTarget:
        QCOMPARE(programmer.WriteTarget(&image, 0), 0);
        break;
    case Operation::VerifyTarget:
        QCOMPARE(programmer.VerifyTarget(&image, &flag, 0), 0);
        break;
    case Operation::CheckTargetBlank:
        QCOMPARE(programmer.CheckTargetBlank(&flag, false), 0);
        break;
    case Operation::EraseTargetMass:
        QCOMPARE(programmer.EraseTargetMass(), 0);
        break;
    default:
        QCOMPARE(programmer.ReadTarget(&image), 0);
        break;
    }

    const bool reading = operation == Operation::ReadTarget;
    QByteArray expected(8 * BlockSize, '\xFF');
    expected[address] = '\xFE';
    QCOMPARE((reading ? image : programmer.flash()).read(0, 8 * BlockSize), expected);
    if (reading)
        QCOMPARE(programmer.flash().read(0, 8 * BlockSize), QByteArray(8 * BlockSize, '\xFF'));
    QCOMPARE(flag, operation != Operation::VerifyTarget && operation != Operation::CheckTargetBlank);
}

void tst_SimulatedFaultEffects::aBootloaderBlockFailsAtEveryAttempt()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_CONFIGURATION), 0);
    QCOMPARE(programmer.PowerBootloaderActivate(), 0);
    QCOMPARE(programmer.PowerBootloaderErase(2), 0);
    QVERIFY(programmer.addFault(QStringLiteral("power-bootloader-write@block=2:5")));
    const QByteArray block(LoaderBlockSize, '\x21');
    const quint32 start = SimulatedProgrammer::PowerBootloaderStart;
    QCOMPARE(programmer.PowerBootloaderWrite(start, LoaderBlockSize, block.constData()), 0);
    QCOMPARE(programmer.PowerBootloaderWrite(start + LoaderBlockSize, LoaderBlockSize, block.constData()), 5);
    QCOMPARE(programmer.PowerBootloaderWrite(start + LoaderBlockSize, LoaderBlockSize, block.constData()), 5);
    QCOMPARE(programmer.PowerBootloaderWrite(start + 2 * LoaderBlockSize, LoaderBlockSize, block.constData()), 0);
    QCOMPARE(programmer.powerFirmware(3 * LoaderBlockSize), block + QByteArray(LoaderBlockSize, '\xFF') + block);
}

void tst_SimulatedFaultEffects::aBootloaderCallFailsOnce()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_CONFIGURATION), 0);
    QCOMPARE(programmer.BootloaderEnter(), 0);
    QCOMPARE(programmer.BootloaderErase(SimulatedProgrammer::BootloaderStart, 2), 0);
    // Half of the second block is written when it fails; the second attempt completes it.
    QVERIFY(programmer.addFault(QStringLiteral("bootloader-write@call=2,byte=%1:5").arg(LoaderBlockSize * 3 / 2)));
    const QByteArray block(LoaderBlockSize, '\x21');
    const quint32 start = SimulatedProgrammer::BootloaderStart;
    QCOMPARE(programmer.BootloaderWrite(start, LoaderBlockSize, block.constData()), 0);
    QCOMPARE(programmer.BootloaderWrite(start + LoaderBlockSize, LoaderBlockSize, block.constData()), 5);
    QCOMPARE(programmer.firmware(2 * LoaderBlockSize),
             QByteArray(LoaderBlockSize * 3 / 2, '\x21') + QByteArray(LoaderBlockSize / 2, '\xFF'));
    QCOMPARE(programmer.BootloaderWrite(start + LoaderBlockSize, LoaderBlockSize, block.constData()), 0);
    QCOMPARE(programmer.firmware(2 * LoaderBlockSize), block + block);
}

void tst_SimulatedFaultEffects::aCorruptBootloaderBlockIsFoundByTheCrc()
{
    const QByteArray block(LoaderBlockSize, '\x21');
    for (const char *fault : {"power-bootloader-write=corrupt", "power-bootloader-mismatch"}) {
        SimulatedProgrammer programmer;
        programmer.setTimeScale(0);
        QVERIFY(programmer.addFault(QLatin1String(fault)));
        QCOMPARE(programmer.Connect(OPERATION_TYPE_CONFIGURATION), 0);
        QCOMPARE(programmer.PowerBootloaderActivate(), 0);
        QCOMPARE(programmer.PowerBootloaderErase(1), 0);
        QCOMPARE(programmer.PowerBootloaderWrite(SimulatedProgrammer::PowerBootloaderStart, LoaderBlockSize,
                                                 block.constData()),
                 0);
        bool mismatch = false;
        QCOMPARE(programmer.PowerBootloaderVerify(SimulatedProgrammer::crc32(block), LoaderBlockSize, &mismatch), 0);
        QVERIFY(mismatch);
    }
}

void tst_SimulatedFaultEffects::theLinkIsLostAtABlock()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QVERIFY(programmer.addFault(QStringLiteral("write@call=1,block=2:link-lost")));
    MemoryManager image = imageOf(0, QByteArray(4 * BlockSize, '\x21'));
    const int lost = SimulatedProgrammer::LinkLost;
    QCOMPARE(programmer.WriteTarget(&image, 0), lost);
    QCOMPARE(programmer.bytesWritten(), BlockSize);
    QVERIFY(!programmer.isConnected());
    QVERIFY(!programmer.isInterfaceTaken());
    QVERIFY(!programmer.isTargetConnected());

    // What the library still tries is in vain, and no mistake.
    QCOMPARE(programmer.ResetTarget(0), lost);
    QCOMPARE(programmer.DisconnectFromTarget(), lost);
    QCOMPARE(programmer.SetTargetInterfaceInUse(false), lost);
    QCOMPARE(programmer.Disconnect(), lost);
    QCOMPARE(programmer.refusals(), QStringList());

    connectAll(programmer);
    QCOMPARE(programmer.WriteTarget(&image, 0), 0);
}

void tst_SimulatedFaultEffects::aHangingWriteGoesOnWhenReleased()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QVERIFY(programmer.addFault(QStringLiteral("write@block=2:hang")));
    MemoryManager image = imageOf(0, QByteArray(4 * BlockSize, '\x21'));
    int status = -1;
    Worker worker([&] { status = programmer.WriteTarget(&image, 0); });
    QTRY_VERIFY_WITH_TIMEOUT(programmer.isHanging(), ThreadLimitMs);
    QCOMPARE(programmer.bytesWritten(), BlockSize);

    // Nobody else gets in meanwhile, and the target stays what it is.
    bool detected = false;
    QCOMPARE(programmer.DetectTarget(&detected), int(SimulatedProgrammer::Busy));
    QCOMPARE(programmer.refusals(), QStringList{QStringLiteral("DetectTarget: another operation is running")});
    QVERIFY(!programmer.setFlashRegions(SimulatedProgrammer::defaultFlashRegions()));
    QVERIFY(programmer.isHanging());

    programmer.releaseHang();
    worker.join();
    QVERIFY(!programmer.isHanging());
    QCOMPARE(status, 0);
    QCOMPARE(programmer.bytesWritten(), 4 * BlockSize);
    QCOMPARE(programmer.DetectTarget(&detected), 0);
}

void tst_SimulatedFaultEffects::aHangingWriteEndsWithTheLink()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QVERIFY(programmer.addFault(QStringLiteral("write=hang")));
    MemoryManager image = imageOf(0, "data");
    int status = -1;
    Worker worker([&] { status = programmer.WriteTarget(&image, 0); });
    QTRY_VERIFY_WITH_TIMEOUT(programmer.isHanging(), ThreadLimitMs);
    programmer.loseLink();
    worker.join();
    QCOMPARE(status, int(SimulatedProgrammer::LinkLost));
    QCOMPARE(programmer.bytesWritten(), 0);
    QVERIFY(!programmer.isHanging());
}

void tst_SimulatedFaultEffects::clearingTheFaultsReleasesAHang()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    QVERIFY(programmer.addFault(QStringLiteral("device-connect=hang")));
    int status = -1;
    Worker worker([&] { status = programmer.Connect(OPERATION_TYPE_DEBUG); });
    QTRY_VERIFY_WITH_TIMEOUT(programmer.isHanging(), ThreadLimitMs);
    programmer.clearFaults();
    worker.join();
    QCOMPARE(status, 0);
    QVERIFY(programmer.isConnected());
}

void tst_SimulatedFaultEffects::aDelayedCallSucceeds()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    Fault fault;
    fault.operation = Operation::Connect;
    fault.effect = Effect::Delay;
    fault.delay = 20;
    programmer.addFault(fault);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
    QVERIFY(timer.elapsed() >= 19);

    // Nonsense delays nothing.
    fault.operation = Operation::FindDevice;
    fault.delay = std::numeric_limits<int>::min();
    programmer.addFault(fault);
    QCOMPARE(programmer.FindDevice(), 0);
}

void tst_SimulatedFaultEffects::slownessIsForgottenWithTheFaults()
{
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0.001);
    QVERIFY(programmer.addFault(QStringLiteral("slow=200")));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
    // A connection takes 150 ms; a thousandth of that, 200 times.
    QVERIFY(timer.elapsed() >= 29);
    programmer.clearFaults();
    QVERIFY(programmer.addFault(QStringLiteral("slow=1")));
    QCOMPARE(programmer.FindDevice(), 0);
}

UNIPROG_TEST_MAIN(tst_SimulatedFaultEffects)

#include "tst_simulatedfaulteffects.moc"
