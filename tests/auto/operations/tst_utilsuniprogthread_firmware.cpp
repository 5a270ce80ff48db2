#include "ProcedureRig.h"

#include <SimulatedProgrammer.h>
#include <UtilsUniProgThread.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

using Operation = ScriptedDriver::Operation;
using Answer = ScriptedDriver::Answer;

using namespace LogLines;

namespace {

constexpr int Failure = 77;
constexpr unsigned int AnyDevice = 1;
constexpr unsigned short SectorSize = 4096;
const QString OperationFailed = QStringLiteral("Operation failed.");

QStringList progress(const QList<int> &values)
{
    QStringList events;
    for (const int value : values)
        events.append(ProcedureLog::progress(value));
    return events;
}

/// Bytes that differ from block to block.
QByteArray payloadOf(int size)
{
    QByteArray payload(size, '\0');
    for (int i = 0; i < size; ++i)
        payload[i] = char(i % 251);
    return payload;
}

/// The placeholder that is compiled in: its payload's size.
constexpr int PowerPayload = 4960;
constexpr int PowerBlocks = 5;
const QStringList PowerLoading{info("Loading firmware..."), ProcedureLog::progress(-1)};
const QStringList PowerWriting = PowerLoading + QStringList{info("Erasing flash..."), info("Writing firmware...")};

} // namespace

class tst_UtilsUniProgThread_firmware : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aDeviceImageIsErasedWrittenAndVerified();
    void theLastBlockIsPadded();
    void progressStopsAtTheMarksThatAreReached_data();
    void progressStopsAtTheMarksThatAreReached();
    void aMissingFileLogsAnEmptyError();
    void aFailedEraseEndsTheUpdate();
    void aFailedBlockEndsTheUpdate_data();
    void aFailedBlockEndsTheUpdate();
    void aFailedVerifyEndsTheUpdate();
    void anEmptyImageIsErasedAndVerified();
    void theFrameExplainsTheStatusOfAnUpdate();
    void deviceAndSectorSizeReachTheImage_data();
    void deviceAndSectorSizeReachTheImage();
    void updatesUseTheConfigurationLink();
    void thePowerModuleIsErasedWrittenVerifiedAndReset();
    void aFailedPowerEraseEndsTheUpdate();
    void aFailedPowerBlockIsTriedAgain_data();
    void aFailedPowerBlockIsTriedAgain();
    void whenThePowerBlocksEndInAFailureNothingFollows();
    void aFailedPowerVerifyIsFollowedByTheReset_data();
    void aFailedPowerVerifyIsFollowedByTheReset();

private:
    QString writeImage(const QByteArray &payload);
    void process(ProcedureRig &rig, const QByteArray &payload, unsigned short sectorSize = SectorSize);

    QTemporaryDir folder;
};

QString tst_UtilsUniProgThread_firmware::writeImage(const QByteArray &payload)
{
    const QString path = folder.filePath(QStringLiteral("firmware.bin"));
    QFile file(path);
    QByteArray header("\x98\xBA\xDC\xFE\x03\0\0\0", 8);
    if (!file.open(QIODevice::WriteOnly) || file.write(header + "1.0" + payload) < 0)
        qFatal("The test image could not be written.");
    return path;
}

void tst_UtilsUniProgThread_firmware::process(ProcedureRig &rig, const QByteArray &payload, unsigned short sectorSize)
{
    TSelectedDevice device;
    device.name = QStringLiteral("bench");
    rig.thread.BootloaderProcess(device, writeImage(payload), AnyDevice, sectorSize);
    QVERIFY(rig.settle());
}

void tst_UtilsUniProgThread_firmware::aDeviceImageIsErasedWrittenAndVerified()
{
    const QByteArray payload = payloadOf(4096);
    ProcedureRig rig;
    process(rig, payload);
    QCOMPARE(rig.log.events,
             ProcedureLog::controlRun(
                 QStringList{info("Loading firmware..."), info("Erasing flash..."), info("Writing firmware...")}
                 + progress({10, 20, 30, 40, 50})
                 + QStringList{info("Verifying write..."),
                               success("Bootloading successful.\nPlease restore link with your device.")}));
    QCOMPARE(
        rig.driver.transcript(),
        (QStringList{"ConnectSelectedDevice(bench, 0)", "BootloaderErase(0x8000, 2)",
                     "BootloaderWrite(0x8000, 992, 992 bytes)", "BootloaderWrite(0x83e0, 992, 992 bytes)",
                     "BootloaderWrite(0x87c0, 992, 992 bytes)", "BootloaderWrite(0x8ba0, 992, 992 bytes)",
                     "BootloaderWrite(0x8f80, 992, 992 bytes)", "BootloaderVerify(0xfedcba98, 4096)", "Disconnect()"}));
    QByteArray written;
    for (const ScriptedDriver::Call &call : rig.driver.calls()) {
        if (call.operation == Operation::BootloaderWrite)
            written += call.arguments.last().toByteArray();
    }
    QCOMPARE(written.left(4096), payload);
    QCOMPARE(written.mid(4096), QByteArray(5 * 992 - 4096, '\xFF'));
}

void tst_UtilsUniProgThread_firmware::theLastBlockIsPadded()
{
    const QByteArray payload = payloadOf(1000);
    ProcedureRig rig;
    process(rig, payload);
    QCOMPARE(rig.driver.callCount(Operation::BootloaderWrite), 2);
    const QList<ScriptedDriver::Call> calls = rig.driver.calls();
    QCOMPARE(calls[2].arguments.last().toByteArray(), payload.left(992));
    QCOMPARE(calls[3].arguments.last().toByteArray(), payload.mid(992) + QByteArray(984, '\xFF'));
}

void tst_UtilsUniProgThread_firmware::progressStopsAtTheMarksThatAreReached_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QList<int>>("marks");
    QTest::newRow("one byte") << 1 << QList<int>{10};
    QTest::newRow("one block") << 992 << QList<int>{10};
    QTest::newRow("two blocks") << 993 << QList<int>{10, 20};
    QTest::newRow("six blocks") << 5000 << QList<int>{10, 20, 30, 40, 50, 60};
    QTest::newRow("ten blocks") << 9920 << QList<int>{10, 20, 30, 40, 50, 60, 70, 80, 90, 100};
    QTest::newRow("eleven blocks") << 9921 << QList<int>{10, 20, 30, 40, 50, 60, 70, 80, 90, 100};
    QTest::newRow("many blocks") << 100'000 << QList<int>{10, 20, 30, 40, 50, 60, 70, 80, 90, 100};
    // An offset in per cent of this one does not fit into 32 bits.
    QTest::newRow("22 million bytes") << 22'000'000 << QList<int>{10, 20, 30, 40, 50, 60, 70, 80, 90, 100};
}

void tst_UtilsUniProgThread_firmware::progressStopsAtTheMarksThatAreReached()
{
    QFETCH(int, size);
    QFETCH(QList<int>, marks);
    ProcedureRig rig;
    rig.driver.setRecording(false);
    process(rig, QByteArray(size, 'p'));
    QCOMPARE(rig.log.events.filter(QStringLiteral("progress")), progress(marks));
    QCOMPARE(rig.driver.callCount(Operation::BootloaderWrite), (size + 991) / 992);
    QCOMPARE(rig.log.lastStatus, 0);
}

void tst_UtilsUniProgThread_firmware::aMissingFileLogsAnEmptyError()
{
    for (const QString &path : {folder.filePath(QStringLiteral("missing.bin")), folder.path()}) {
        ProcedureRig rig;
        rig.thread.BootloaderProcess(TSelectedDevice(), path, AnyDevice, SectorSize);
        QVERIFY(rig.settle());
        QCOMPARE(rig.log.events,
                 ProcedureLog::controlRun({info("Loading firmware..."), error("")}, 1, OperationFailed));
        QCOMPARE(rig.driver.transcript(), (QStringList{"ConnectSelectedDevice(, 0)", "Disconnect()"}));
    }
}

void tst_UtilsUniProgThread_firmware::aFailedEraseEndsTheUpdate()
{
    ProcedureRig rig;
    rig.driver.always(Operation::BootloaderErase, Failure);
    process(rig, payloadOf(5000), 0); // and a sector size of 0 divides nothing
    QCOMPARE(
        rig.log.events,
        ProcedureLog::controlRun({info("Loading firmware..."), info("Erasing flash..."), error("Flash erase error.")},
                                 Failure, OperationFailed));
    QCOMPARE(rig.driver.transcript(),
             (QStringList{"ConnectSelectedDevice(bench, 0)", "BootloaderErase(0x8000, 1)", "Disconnect()"}));
}

void tst_UtilsUniProgThread_firmware::aFailedBlockEndsTheUpdate_data()
{
    QTest::addColumn<int>("block");
    QTest::addColumn<QList<int>>("marks");
    QTest::newRow("first") << 1 << QList<int>{};
    QTest::newRow("middle") << 3 << QList<int>{10, 20};
    QTest::newRow("last") << 6 << QList<int>{10, 20, 30, 40, 50};
}

void tst_UtilsUniProgThread_firmware::aFailedBlockEndsTheUpdate()
{
    QFETCH(int, block);
    QFETCH(QList<int>, marks);
    ProcedureRig rig;
    rig.driver.nth(Operation::BootloaderWrite, block, Failure);
    process(rig, payloadOf(5000));
    QCOMPARE(rig.log.events,
             ProcedureLog::controlRun(
                 QStringList{info("Loading firmware..."), info("Erasing flash..."), info("Writing firmware...")}
                     + progress(marks) + QStringList{error("Firmware write error.")},
                 Failure, OperationFailed));
    QCOMPARE(rig.driver.callCount(Operation::BootloaderWrite), block);
    QCOMPARE(rig.driver.callCount(Operation::BootloaderVerify), 0);
}

void tst_UtilsUniProgThread_firmware::aFailedVerifyEndsTheUpdate()
{
    ProcedureRig rig;
    rig.driver.always(Operation::BootloaderVerify, Failure);
    process(rig, payloadOf(10));
    QCOMPARE(rig.log.events.mid(4),
             (QStringList{ProcedureLog::progress(10), info("Verifying write..."), error("File not verified."),
                          ProcedureLog::line(OperationFailed, LOGGER_MESSAGE_ERROR),
                          ProcedureLog::completed(Failure, OperationFailed), "finished"}));
}

void tst_UtilsUniProgThread_firmware::anEmptyImageIsErasedAndVerified()
{
    ProcedureRig rig;
    process(rig, QByteArray());
    QCOMPARE(rig.driver.transcript(),
             (QStringList{"ConnectSelectedDevice(bench, 0)", "BootloaderErase(0x8000, 1)",
                          "BootloaderVerify(0xfedcba98, 0)", "Disconnect()"}));
    QCOMPARE(rig.log.lastStatus, 0);
}

void tst_UtilsUniProgThread_firmware::theFrameExplainsTheStatusOfAnUpdate()
{
    ProcedureRig rig;
    rig.driver.always(Operation::BootloaderErase, 10);
    process(rig, payloadOf(10));
    QCOMPARE(rig.log.lastMessage, QStringLiteral("Wrong target voltage.\nCheck power settings."));
}

void tst_UtilsUniProgThread_firmware::deviceAndSectorSizeReachTheImage_data()
{
    QTest::addColumn<unsigned int>("device");
    QTest::addColumn<QString>("erase");
    QTest::newRow("a device with sectors as given") << AnyDevice << "BootloaderErase(0x8000, 3)";
    QTest::newRow("a device with sectors of 4096 bytes") << 0x1002U << "BootloaderErase(0x8000, 2)";
}

void tst_UtilsUniProgThread_firmware::deviceAndSectorSizeReachTheImage()
{
    QFETCH(unsigned int, device);
    QFETCH(QString, erase);
    ProcedureRig rig;
    rig.thread.BootloaderProcess(TSelectedDevice(), writeImage(payloadOf(4096)), device, 2048);
    QVERIFY(rig.settle());
    QCOMPARE(rig.driver.transcript().at(1), erase);
}

void tst_UtilsUniProgThread_firmware::updatesUseTheConfigurationLink()
{
    ProcedureRig rig;
    rig.thread.FindDevice(); // leaves the other link behind
    QVERIFY(rig.settle(1));
    rig.driver.reset();
    rig.thread.PowerBootloaderWrite();
    QVERIFY(rig.settle(2));
    QCOMPARE(rig.driver.transcript().first(), QStringLiteral("Connect(0)"));

    rig.thread.FindDevice();
    QVERIFY(rig.settle(3));
    rig.driver.reset();
    process(rig, payloadOf(10));
    QCOMPARE(rig.driver.transcript().first(), QStringLiteral("ConnectSelectedDevice(bench, 0)"));
}

void tst_UtilsUniProgThread_firmware::thePowerModuleIsErasedWrittenVerifiedAndReset()
{
    ProcedureRig rig;
    rig.thread.PowerBootloaderWrite();
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.events,
             ProcedureLog::controlRun(
                 PowerWriting + progress({20, 40, 60, 80, 100})
                 + QStringList{info("Verifying write..."), success("Write operation done and verified.")}));
    const QStringList transcript = rig.driver.transcript();
    QCOMPARE(transcript.mid(0, 7),
             (QStringList{"Connect(0)", "PowerBootloaderErase(0x2)", "PowerBootloaderWrite(0x10008000, 992, 992 bytes)",
                          "PowerBootloaderWrite(0x100083e0, 992, 992 bytes)",
                          "PowerBootloaderWrite(0x100087c0, 992, 992 bytes)",
                          "PowerBootloaderWrite(0x10008ba0, 992, 992 bytes)",
                          "PowerBootloaderWrite(0x10008f80, 992, 992 bytes)"}));
    QCOMPARE(transcript.mid(8), (QStringList{"PowerBootloaderReset()", "Disconnect()"}));

    // What was verified is what was written.
    QByteArray written;
    for (const ScriptedDriver::Call &call : rig.driver.calls()) {
        if (call.operation == Operation::PowerBootloaderWrite)
            written += call.arguments.last().toByteArray();
    }
    const QVariantList verified = rig.driver.calls().at(7).arguments;
    QCOMPARE(verified.at(0).toUInt(), SimulatedProgrammer::crc32(written));
    QCOMPARE(verified.at(1).toInt(), PowerPayload);
}

void tst_UtilsUniProgThread_firmware::aFailedPowerEraseEndsTheUpdate()
{
    ProcedureRig rig;
    rig.driver.always(Operation::PowerBootloaderErase, Failure);
    rig.thread.PowerBootloaderWrite();
    QVERIFY(rig.settle());
    QCOMPARE(
        rig.log.events,
        ProcedureLog::controlRun(PowerLoading + QStringList{info("Erasing flash..."), error("Firmware erase error.")},
                                 Failure, OperationFailed));
    QCOMPARE(rig.driver.transcript(), (QStringList{"Connect(0)", "PowerBootloaderErase(0x2)", "Disconnect()"}));
}

void tst_UtilsUniProgThread_firmware::aFailedPowerBlockIsTriedAgain_data()
{
    QTest::addColumn<QList<int>>("failing");
    QTest::addColumn<QStringList>("attempts");
    const QString failed = error("Firmware write error.");
    QTest::newRow("first") << QList<int>{1} << QStringList{failed} + progress({20, 40, 60, 80});
    QTest::newRow("middle") << QList<int>{3} << progress({20, 40}) + QStringList{failed} + progress({60, 80});
    QTest::newRow("all but the last") << QList<int>{1, 2, 3, 4}
                                      << QStringList{failed, failed, failed, failed} + progress({20});
}

void tst_UtilsUniProgThread_firmware::aFailedPowerBlockIsTriedAgain()
{
    QFETCH(QList<int>, failing);
    QFETCH(QStringList, attempts);
    ProcedureRig rig;
    for (const int attempt : failing)
        rig.driver.nth(Operation::PowerBootloaderWrite, attempt, Failure);
    rig.thread.PowerBootloaderWrite();
    QVERIFY(rig.settle());
    // The number of attempts stays, so blocks at the end are missing; a driver that checks nothing lets it pass.
    QCOMPARE(rig.log.events,
             ProcedureLog::controlRun(
                 PowerWriting + attempts
                 + QStringList{info("Verifying write..."), success("Write operation done and verified.")}));
    QCOMPARE(rig.driver.callCount(Operation::PowerBootloaderWrite), PowerBlocks);
    QFile resource(QStringLiteral("://bin/pm_enc"));
    QVERIFY(resource.open(QIODevice::ReadOnly));
    const QByteArray payload = resource.readAll().right(PowerPayload);
    int offset = 0;
    int attempt = 0;
    for (const ScriptedDriver::Call &call : rig.driver.calls()) {
        if (call.operation != Operation::PowerBootloaderWrite)
            continue;
        QCOMPARE(call.arguments.first().toUInt(), 0x10008000U + unsigned(offset));
        QCOMPARE(call.arguments.last().toByteArray(), payload.mid(offset, 992));
        if (!failing.contains(++attempt))
            offset += 992;
    }
}

void tst_UtilsUniProgThread_firmware::whenThePowerBlocksEndInAFailureNothingFollows()
{
    ProcedureRig rig;
    rig.driver.nth(Operation::PowerBootloaderWrite, PowerBlocks, 11);
    rig.thread.PowerBootloaderWrite();
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.events,
             ProcedureLog::controlRun(PowerWriting + progress({20, 40, 60, 80})
                                          + QStringList{error("Firmware write error.")},
                                      11, "Power supplied externally. Can't apply voltage."));
    QCOMPARE(rig.driver.callCount(Operation::PowerBootloaderVerify), 0);
    QCOMPARE(rig.driver.callCount(Operation::PowerBootloaderReset), 0);
}

void tst_UtilsUniProgThread_firmware::aFailedPowerVerifyIsFollowedByTheReset_data()
{
    QTest::addColumn<int>("verifyStatus");
    QTest::addColumn<bool>("mismatch");
    QTest::addColumn<int>("resetStatus");
    QTest::addColumn<QString>("line");
    const QString failed = error("Verification failed.");
    const QString different = error("File not verified.");
    const QString equal = success("Write operation done and verified.");
    QTest::newRow("verify fails") << Failure << false << 0 << failed;
    QTest::newRow("verify fails and tells of a mismatch") << Failure << true << 0 << failed;
    QTest::newRow("mismatch") << 0 << true << 0 << different;
    QTest::newRow("reset fails") << 0 << false << 5 << equal;
    QTest::newRow("mismatch, and the reset fails") << 0 << true << 5 << different;
    QTest::newRow("both fail") << Failure << false << 5 << failed;
}

void tst_UtilsUniProgThread_firmware::aFailedPowerVerifyIsFollowedByTheReset()
{
    QFETCH(int, verifyStatus);
    QFETCH(bool, mismatch);
    QFETCH(int, resetStatus);
    QFETCH(QString, line);
    ProcedureRig rig;
    rig.driver.always(Operation::PowerBootloaderVerify, Answer(verifyStatus).giving(mismatch));
    rig.driver.always(Operation::PowerBootloaderReset, resetStatus);
    rig.thread.PowerBootloaderWrite();
    QVERIFY(rig.settle());
    QStringList events = PowerWriting + progress({20, 40, 60, 80, 100}) + QStringList{info("Verifying write..."), line};
    if (resetStatus != 0)
        events.append(error("Power module reset error."));
    QCOMPARE(rig.log.events,
             ProcedureLog::controlRun(events, resetStatus, resetStatus == 0 ? QString() : OperationFailed));
    QCOMPARE(rig.driver.callCount(Operation::PowerBootloaderReset), 1);

    // A check that tells nothing found no mismatch.
    ProcedureRig silent;
    silent.driver.always(Operation::PowerBootloaderVerify, Answer().givingNothing());
    silent.thread.PowerBootloaderWrite();
    QVERIFY(silent.settle());
    QVERIFY(silent.log.events.contains(success("Write operation done and verified.")));
}

UNIPROG_TEST_MAIN(tst_UtilsUniProgThread_firmware)
#include "tst_utilsuniprogthread_firmware.moc"
