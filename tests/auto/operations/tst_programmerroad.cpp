#include "ProcedureRig.h"

#include <SimulatedProgrammer.h>
#include <UtilsConstants.h>
#include <UtilsUniProgThread.h>

#include <UniProgTest.h>

#include <QApplication>

#include <functional>

using Operation = SimulatedProgrammer::Operation;
using Status = SimulatedProgrammer::Status;

/// The whole road of a request, from the thread to the cells of the target's flash and back.
class tst_ProgrammerRoad : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aWriteEndsWithTheImageInTheTarget_data();
    void aWriteEndsWithTheImageInTheTarget();
    void aWriteReportsItsProgress();
    void onlyTheSectorsOfTheImageAreErased();
    void everyFailureOfAWriteIsTold_data();
    void everyFailureOfAWriteIsTold();
    void everyFailureOfAConnectionIsTold_data();
    void everyFailureOfAConnectionIsTold();
    void aSecondAttemptSucceeds();
    void whatWasWrittenIsReadAndVerified();
    void theBlankCheckLooksAtTheTarget();
    void theTargetIsDetectedErasedAndReset();
    void theTargetIsLeftHaltedOrRunning();
    void theDeviceStoresItsConfiguration();
    void swoIsCapturedOverSeveralRequests();
    void thePowerModuleIsSwitchedUnlessSuppliedFromOutside();
    void aWiFiLinkOpensWithItsPassword();
    void theBootloaderIsEnteredAndLeft();
    void manyRequestsKeepTheOrder();
};

namespace {

QString errorLine(const QString &text)
{
    return ProcedureLog::line(text, LOGGER_MESSAGE_ERROR);
}

QString successLine(const QString &text)
{
    return ProcedureLog::line(text, LOGGER_MESSAGE_SUCCESS);
}

/// Two segments, as real images of small chips have them: the program, and some words in the page of settings.
MemoryManager realImage()
{
    QByteArray program(240 * 1024 + 5, Qt::Uninitialized);
    for (int i = 0; i < program.size(); ++i)
        program[i] = char(i * 31 + i / 251);
    MemoryManager image;
    image.write(0, program);
    image.write(0x100010C0, QByteArray(12, '\x5A'));
    return image;
}

MemoryManager smallImage()
{
    MemoryManager image;
    image.write(0x400, QByteArray(1024, '\x5A'));
    return image;
}

/// A simulated programmer that takes no time, a thread on it, and what the thread says.
struct Road
{
    Road()
        : thread(&programmer, nullptr)
        , log(&thread)
    {
        programmer.setTimeScale(0);
    }

    void setOption(int option, int value)
    {
        programmer.GetTargetDescriptor()->getOperationOptions()->setIntValue(option, value);
    }

    /// Runs one request to its end; false when it takes too long, or when the programmer was used in a wrong order or
    /// is not left as it was found.
    bool run(const std::function<int()> &request)
    {
        log.events.clear();
        const int ends = log.ends + 1;
        if (request() != 0 || !spinUntil([&] { return log.ends >= ends && !thread.IsProcedureInProgress(); }))
            return false;
        return programmer.refusals().isEmpty() && !programmer.isConnected();
    }

    /// What the thread said, without progress.
    QStringList lines() const
    {
        QStringList result;
        for (const QString &event : log.events)
            if (!event.startsWith(QLatin1String("progress")))
                result.append(event);
        return result;
    }

    SimulatedProgrammer programmer;
    UtilsUniProgThread thread;
    ProcedureLog log;
};

bool holds(const SimulatedProgrammer &programmer, const MemoryManager &image)
{
    const MemoryManager flash = programmer.flash();
    for (const MemoryManager::Segment &segment : image.segments())
        if (flash.read(segment.address, segment.data.size()) != segment.data)
            return false;
    return true;
}

} // namespace

void tst_ProgrammerRoad::aWriteEndsWithTheImageInTheTarget_data()
{
    QTest::addColumn<int>("eraseMode");
    QTest::addColumn<int>("verify");
    QTest::newRow("mass erase") << 0 << 0;
    QTest::newRow("mass erase, verified") << 0 << 1;
    QTest::newRow("sectors, verified") << 2 << 1;
}

void tst_ProgrammerRoad::aWriteEndsWithTheImageInTheTarget()
{
    QFETCH(int, eraseMode);
    QFETCH(int, verify);
    Road road;
    road.setOption(TargetOptionsOperation::EraseMode, eraseMode);
    road.setOption(TargetOptionsOperation::VerifyAfterWrite, verify);
    MemoryManager image = realImage();
    QVERIFY(road.programmer.setFlash(0, QByteArray(4096, '\0')));

    QVERIFY(road.run([&] { return road.thread.WriteTarget(&image); }));
    QStringList inner{ProcedureLog::line("Erasing MCU..."), ProcedureLog::line("Writing MCU...")};
    if (verify)
        inner += {ProcedureLog::line("Verifying..."), successLine("Write operation done and verified.")};
    else
        inner.append(successLine("Write operation done."));
    inner.append(ProcedureLog::line("Chip is running."));
    QCOMPARE(road.lines(), ProcedureLog::targetRun(inner));
    QVERIFY(holds(road.programmer, image));
    QVERIFY(road.programmer.isTargetRunning());
    QVERIFY(!road.programmer.isInterfaceTaken());
    QCOMPARE(road.programmer.connectionType(), OPERATION_TYPE_DEBUG);
    QCOMPARE(road.programmer.bytesWritten(), image.size());
}

void tst_ProgrammerRoad::aWriteReportsItsProgress()
{
    Road road;
    road.setOption(TargetOptionsOperation::VerifyAfterWrite, 1);
    MemoryManager image = smallImage();
    QVERIFY(road.run([&] { return road.thread.WriteTarget(&image); }));
    QCOMPARE(road.log.events.filter(QStringLiteral("progress")),
             (QStringList{"progress -1", "progress 0", "progress 25", "progress 50", "progress 75", "progress 100",
                          "progress -1", "progress 0", "progress 25", "progress 50", "progress 75", "progress 100"}));
}

void tst_ProgrammerRoad::onlyTheSectorsOfTheImageAreErased()
{
    Road road;
    road.setOption(TargetOptionsOperation::EraseMode, 2);
    QVERIFY(road.programmer.setFlash(0, QByteArray(4096, '\0')));
    MemoryManager image = smallImage();
    QVERIFY(road.run([&] { return road.thread.WriteTarget(&image); }));
    QCOMPARE(road.log.lastStatus, 0);
    QCOMPARE(road.programmer.flash().read(0, 4096),
             QByteArray(1024, '\0') + QByteArray(1024, '\x5A') + QByteArray(2048, '\0'));
}

void tst_ProgrammerRoad::everyFailureOfAWriteIsTold_data()
{
    QTest::addColumn<QStringList>("faults");
    QTest::addColumn<QStringList>("lines"); // between connecting to the target and the completion
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("message");

    const QString failed = QStringLiteral("Operation failed.");
    const QString gone = ProcedureLog::line("Disconnected from target.");
    const QString erasing = ProcedureLog::line("Erasing MCU...");
    const QString writing = ProcedureLog::line("Writing MCU...");
    const QString verifying = ProcedureLog::line("Verifying...");
    const QString running = ProcedureLog::line("Chip is running.");
    const QString verified = successLine("Write operation done and verified.");
    const QString notVerified = errorLine("Verification failed.");
    const QString notDisconnected = QStringLiteral("Disconnecting from target failed.");

    const auto connection = [&](const char *fault, int status, const char *text) {
        const QString message = QString::fromLatin1(text);
        QTest::newRow(fault) << QStringList{fault} << QStringList{errorLine(message), gone} << status << message;
    };
    connection("interface-in-use=5", 5, "Interface to target currently being used.");
    connection("clock=6", 6, "Set swd/jtag clock failed.");
    connection("target-connect=10", 10, "Connecting to target failed.\nWrong target voltage.\nCheck power settings.");
    connection("target-connect=11", 11,
               "Connecting to target failed.\nVpp first entry mode not available.\nPower supplied externally.");
    connection("target-connect=7", 7, "Connecting to target failed.");
    connection("target-connect=8", 8, "Connecting to target failed.");

    const auto erase = [&](const char *fault, int status, const QString &message) {
        QTest::newRow(fault) << QStringList{fault} << QStringList{erasing, errorLine(message), gone} << status
                             << message;
    };
    erase("erase=7", 7, failed);
    erase("erase=8", 8, QStringLiteral("Your board doesn't support selected vendor."));
    erase("erase=51", 51, QStringLiteral("Selected chip not recognized."));
    erase("erase=10", 10, failed);
    erase("erase@block=3:9", 9, failed);

    const QStringList writeFailed{erasing, writing, running, errorLine(failed), gone};
    QTest::newRow("write=5") << QStringList{"write=5"} << writeFailed << 5 << failed;
    QTest::newRow("write@block=3:5") << QStringList{"write@block=3:5"} << writeFailed << 5 << failed;
    QTest::newRow("verify=9") << QStringList{"verify=9"}
                              << QStringList{erasing, writing, verifying, notVerified, running, errorLine(failed), gone}
                              << 9 << failed;
    // A mismatch is told, and the procedure succeeds all the same.
    const QStringList mismatch{erasing, writing, verifying, notVerified, running, gone};
    QTest::newRow("verify-mismatch") << QStringList{"verify-mismatch"} << mismatch << 0 << QString();
    QTest::newRow("write@block=2:corrupt") << QStringList{"write@block=2:corrupt"} << mismatch << 0 << QString();
    QTest::newRow("reset=5") << QStringList{"reset=5"} << QStringList{erasing, writing, verifying, verified, gone} << 0
                             << QString();

    QTest::newRow("target-disconnect=5") << QStringList{"target-disconnect=5"}
                                         << QStringList{erasing,  writing, verifying,
                                                        verified, running, errorLine(notDisconnected)}
                                         << 5 << notDisconnected;
    QTest::newRow("write=5 and target-disconnect=6")
        << QStringList{"write=5", "target-disconnect=6"}
        << QStringList{erasing, writing, running, errorLine(failed), errorLine(notDisconnected)} << 5
        << notDisconnected;
    QTest::newRow("write@block=2:link-lost")
        << QStringList{"write@block=2:link-lost"}
        << QStringList{erasing, writing, errorLine(failed), errorLine(notDisconnected)} << int(Status::LinkLost)
        << notDisconnected;
}

void tst_ProgrammerRoad::everyFailureOfAWriteIsTold()
{
    QFETCH(QStringList, faults);
    QFETCH(QStringList, lines);
    QFETCH(int, status);
    QFETCH(QString, message);
    Road road;
    road.setOption(TargetOptionsOperation::VerifyAfterWrite, 1);
    for (const QString &fault : std::as_const(faults))
        QVERIFY(road.programmer.addFault(fault));
    MemoryManager image = smallImage();
    QVERIFY(road.run([&] { return road.thread.WriteTarget(&image); }));

    QStringList expected{ProcedureLog::line("Starting operation..."),
                         ProcedureLog::line("Connecting to target MCU...")};
    expected += lines;
    expected += {ProcedureLog::completed(status, message), QStringLiteral("finished")};
    QCOMPARE(road.lines(), expected);
    QVERIFY(!road.programmer.isInterfaceTaken());
    QVERIFY(!road.programmer.isTargetConnected());
}

void tst_ProgrammerRoad::everyFailureOfAConnectionIsTold_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("message");

    const QString again = QStringLiteral("authentication failed! \nPlease enter correct WiFi link password");
    QTest::newRow("4") << 4 << "WiFi link " + again;
    QTest::newRow("12") << 12 << UtilsConstants::WARNING_INVALID_FIRMWARE_VERSION;
    QTest::newRow("13") << 13 << "WiFi link-config " + again;
    QTest::newRow("14") << 14 << "WiFi link-debug " + again;
    QTest::newRow("38") << 38 << QStringLiteral("There is no selected device.");
    for (const int other : {1, 5, 8, 10, 11, 51, -1})
        QTest::newRow(qPrintable(QString::number(other))) << other << QStringLiteral("Connecting to device failed.");
}

void tst_ProgrammerRoad::everyFailureOfAConnectionIsTold()
{
    QFETCH(int, status);
    QFETCH(QString, message);
    Road road;
    QVERIFY(road.programmer.addFault(QStringLiteral("device-connect=%1").arg(status)));
    MemoryManager image = smallImage();
    const QStringList expected = ProcedureLog::controlRun({}, status, message);
    QVERIFY(road.run([&] { return road.thread.WriteTarget(&image); }));
    QCOMPARE(road.lines(), expected);
    QVERIFY(road.run([&] { return road.thread.FindDevice(); }));
    QCOMPARE(road.lines(), expected);
    // There is no connection to end.
    QCOMPARE(road.programmer.callCount(Operation::Disconnect), 0);
}

void tst_ProgrammerRoad::aSecondAttemptSucceeds()
{
    MemoryManager image = smallImage();
    for (const char *fault : {"device-connect@call=1:link-lost", "target-connect@call=1", "erase@call=1:link-lost",
                              "write@call=1,byte=700", "target-disconnect@call=1"}) {
        Road road;
        QVERIFY(road.programmer.addFault(QLatin1String(fault)));
        QVERIFY(road.run([&] { return road.thread.WriteTarget(&image); }));
        QVERIFY2(road.log.lastStatus != 0, fault);
        QVERIFY(road.run([&] { return road.thread.WriteTarget(&image); }));
        QVERIFY2(road.log.lastStatus == 0, fault);
        QVERIFY(holds(road.programmer, image));
    }
}

void tst_ProgrammerRoad::whatWasWrittenIsReadAndVerified()
{
    Road road;
    const MemoryManager image = realImage();
    for (const MemoryManager::Segment &segment : image.segments())
        QVERIFY(road.programmer.setFlash(segment.address, segment.data));

    MemoryManager read;
    QVERIFY(road.run([&] { return road.thread.ReadTarget(&read); }));
    QCOMPARE(road.lines(),
             ProcedureLog::targetRun({ProcedureLog::line("Reading MCU..."), successLine("Read operation done.")}));
    QVERIFY(read == road.programmer.flash());
    QVERIFY(road.programmer.isTargetRunning());

    bool verified = false;
    QVERIFY(road.run([&] { return road.thread.VerifyTarget(&read, &verified); }));
    QVERIFY(verified);
    const QString verifying = ProcedureLog::line("Verifying...");
    const QString running = ProcedureLog::line("Chip is running.");
    QCOMPARE(road.lines(), ProcedureLog::targetRun({verifying, successLine("File is verified."), running}));

    QVERIFY(road.programmer.setFlash(0x1234, QByteArray(1, '\0')));
    QVERIFY(road.run([&] { return road.thread.VerifyTarget(&read, &verified); }));
    QVERIFY(!verified);
    QCOMPARE(road.lines(), ProcedureLog::targetRun({verifying, errorLine("File not verified."), running}));
}

void tst_ProgrammerRoad::theBlankCheckLooksAtTheTarget()
{
    Road road;
    const QString checking = ProcedureLog::line("Checking if MCU is blank...");
    const QString running = ProcedureLog::line("Chip is running.");
    bool blank = false;
    QVERIFY(road.run([&] { return road.thread.CheckTargetBlank(&blank); }));
    QVERIFY(blank);
    QCOMPARE(road.lines(), ProcedureLog::targetRun({checking, successLine("Chip is blank."), running}));

    QVERIFY(road.programmer.setFlash(0x100, "x"));
    QVERIFY(road.run([&] { return road.thread.CheckTargetBlank(&blank); }));
    QVERIFY(!blank);
    QCOMPARE(road.lines(), ProcedureLog::targetRun({checking, errorLine("Chip is not blank."), running}));

    road.setOption(TargetOptionsOperation::LeaveRunning, 1);
    QVERIFY(road.run([&] { return road.thread.CheckTargetBlank(&blank); }));
    QCOMPARE(road.lines(), ProcedureLog::targetRun({checking, errorLine("Chip is not blank at 0x0.")}));
    QVERIFY(road.programmer.isTargetRunning());
}

void tst_ProgrammerRoad::theTargetIsDetectedErasedAndReset()
{
    Road road;
    bool detected = false;
    QVERIFY(road.run([&] { return road.thread.DetectTarget(&detected); }));
    QVERIFY(detected);
    QCOMPARE(road.lines(), ProcedureLog::targetRun({successLine("Target is detected.")}));
    road.programmer.setSelectedChipId(1);
    QVERIFY(road.run([&] { return road.thread.DetectTarget(&detected); }));
    QVERIFY(!detected);
    QCOMPARE(road.lines(), ProcedureLog::targetRun({errorLine("Target is not detected.")}));

    const QString erasing = ProcedureLog::line("Erasing MCU...");
    QVERIFY(road.programmer.setFlash(0x100, "x"));
    QVERIFY(road.run([&] { return road.thread.EraseTargetMass(); }));
    QCOMPARE(road.lines(), ProcedureLog::targetRun({erasing}, 51, QStringLiteral("Selected chip not recognized.")));
    road.programmer.setChipId(1);
    QVERIFY(road.run([&] { return road.thread.EraseTargetMass(); }));
    QCOMPARE(road.lines(), ProcedureLog::targetRun({erasing, successLine("Erase operation done.")}));
    QCOMPARE(road.programmer.flash().read(0x100, 1), QByteArray("\xFF"));
    QVERIFY(!road.programmer.isTargetRunning());

    QVERIFY(road.run([&] { return road.thread.ResetTarget(); }));
    QCOMPARE(road.lines(), ProcedureLog::targetRun({successLine("Reset operation done.")}));
    QVERIFY(road.programmer.isTargetRunning());
}

void tst_ProgrammerRoad::theTargetIsLeftHaltedOrRunning()
{
    Road road;
    MemoryManager image = smallImage();
    road.programmer.GetTargetDescriptor()->getConnectionOptions()->setIntValue(TargetOptionsConnection::HaltAfterReset,
                                                                               1);
    QVERIFY(road.run([&] { return road.thread.WriteTarget(&image); }));
    QVERIFY(road.lines().contains(ProcedureLog::line("Chip is halted.")));
    QVERIFY(!road.programmer.isTargetRunning());

    // Verifying may leave alone what it finds.
    road.setOption(TargetOptionsOperation::LeaveRunning, 1);
    bool verified = false;
    for (const bool running : {false, true}) {
        if (running) {
            road.programmer.GetTargetDescriptor()->getConnectionOptions()->setIntValue(
                TargetOptionsConnection::HaltAfterReset, 0);
            QVERIFY(road.run([&] { return road.thread.ResetTarget(); }));
        }
        QVERIFY(road.run([&] { return road.thread.VerifyTarget(&image, &verified); }));
        QVERIFY(verified);
        QCOMPARE(road.programmer.isTargetRunning(), running);
    }
}

void tst_ProgrammerRoad::theDeviceStoresItsConfiguration()
{
    Road road;
    TConfiguration configuration;
    QVERIFY(road.run([&] { return road.thread.GetDeviceConfiguration(&configuration); }));
    QCOMPARE(road.lines(), ProcedureLog::controlRun({successLine("Getting device config done.")}));
    QCOMPARE(configuration.deviceName, QStringLiteral("Simulated programmer"));
    configuration.deviceName = QStringLiteral("bench 4");
    QVERIFY(road.run([&] { return road.thread.SetDeviceConfiguration(&configuration); }));
    QCOMPARE(road.lines(), ProcedureLog::controlRun({successLine("Setting device config done.")}));
    QCOMPARE(road.programmer.connectionType(), OPERATION_TYPE_CONFIGURATION);
    QCOMPARE(road.programmer.configuration().deviceName, QStringLiteral("bench 4"));

    QVERIFY(road.run([&] { return road.thread.WiFiServerStart(); }));
    QCOMPARE(road.lines(), ProcedureLog::controlRun({successLine("WiFi is enabled.")}));
    QVERIFY(road.programmer.isWiFiServerRunning());
}

void tst_ProgrammerRoad::swoIsCapturedOverSeveralRequests()
{
    Road road;
    road.programmer.setSwoStream("tick ");
    QVERIFY(road.run([&] { return road.thread.SwoEnable(0); }));
    QCOMPARE(road.log.lastStatus, 0);
    QVERIFY(road.programmer.isTargetConnected());

    unsigned char buffer[8];
    unsigned short size = sizeof buffer;
    for (const char *expected : {"tick tic", "k tick t"}) {
        QVERIFY(road.run([&] { return road.thread.SwoGetData(buffer, &size); }));
        QCOMPARE(QByteArray(reinterpret_cast<const char *>(buffer), size), QByteArray(expected));
    }
    QVERIFY(road.run([&] { return road.thread.SwoDisable(); }));
    QCOMPARE(road.lines(), ProcedureLog::controlRun({ProcedureLog::line("Disconnected from target.")}));
    QVERIFY(!road.programmer.isTargetConnected());
    QVERIFY(!road.programmer.isInterfaceTaken());
}

void tst_ProgrammerRoad::thePowerModuleIsSwitchedUnlessSuppliedFromOutside()
{
    Road road;
    QVERIFY(road.run([&] { return road.thread.PowerSwitch(SimulatedProgrammer::SupplyChannel, 0); }));
    QCOMPARE(road.lines(), ProcedureLog::controlRun({}));
    QCOMPARE(road.programmer.successCount(Operation::PowerSaveConfiguration), 1);

    // Without supply there is no target.
    bool detected = false;
    QVERIFY(road.run([&] { return road.thread.DetectTarget(&detected); }));
    QCOMPARE(road.log.lastStatus, 10);
    QCOMPARE(road.log.lastMessage,
             QStringLiteral("Connecting to target failed.\nWrong target voltage.\nCheck power settings."));

    road.programmer.setExternalSupply(1.0F);
    const QStringList refused
        = ProcedureLog::controlRun({}, 11, QStringLiteral("Power supplied externally. Can't apply voltage."));
    QVERIFY(road.run([&] { return road.thread.PowerSwitch(SimulatedProgrammer::SupplyChannel, 1); }));
    QCOMPARE(road.lines(), refused);
    QCOMPARE(road.programmer.callCount(Operation::PowerSwitch), 1);
    QVERIFY(road.run([&] { return road.thread.PowerSetVoltage(SimulatedProgrammer::SupplyChannel, 3.0F); }));
    QCOMPARE(road.lines(), refused);
    QCOMPARE(road.programmer.callCount(Operation::PowerSetVoltage), 1);

    QVERIFY(road.run([&] { return road.thread.PowerSetVoltage(2, 9.0F); }));
    QCOMPARE(road.lines(),
             ProcedureLog::controlRun({}, 10, QStringLiteral("Wrong target voltage.\nCheck power settings.")));
}

void tst_ProgrammerRoad::aWiFiLinkOpensWithItsPassword()
{
    Road road;
    MemoryManager image = smallImage();
    road.programmer.setWiFiPassword(OPERATION_TYPE_DEBUG, QStringLiteral("open sesame"));
    QVERIFY(road.programmer.selectDevice(road.programmer.devices().constLast()));
    QVERIFY(road.run([&] { return road.thread.WriteTarget(&image); }));
    QCOMPARE(road.log.lastStatus, 14);
    QCOMPARE(road.programmer.SetWiFiLinkPassword(QStringLiteral("wrong"), true), 0);
    QVERIFY(road.run([&] { return road.thread.WriteTarget(&image); }));
    QCOMPARE(road.log.lastStatus, 14);
    QCOMPARE(road.programmer.SetWiFiLinkPassword(QStringLiteral("open sesame"), true), 0);
    QVERIFY(road.run([&] { return road.thread.WriteTarget(&image); }));
    QCOMPARE(road.log.lastStatus, 0);
    QVERIFY(holds(road.programmer, image));
}

void tst_ProgrammerRoad::theBootloaderIsEnteredAndLeft()
{
    Road road;
    const TSelectedDevice device = road.programmer.devices().constFirst();
    QByteArray info;
    QVERIFY(road.run([&] { return road.thread.BootloaderEnter(device, &info); }));
    QCOMPARE(road.log.lastStatus, 0);
    QCOMPARE(info.size(), 8);
    QVERIFY(road.programmer.isInBootloader());
    QVERIFY(road.run([&] { return road.thread.BootloaderExit(device); }));
    QCOMPARE(road.log.lastStatus, 0);
    QVERIFY(!road.programmer.isInBootloader());

    TSelectedDevice unknown = device;
    unknown.serialNumber = QStringLiteral("lost");
    QVERIFY(road.run([&] { return road.thread.BootloaderEnter(unknown, &info); }));
    QCOMPARE(road.log.lastStatus, 38);
}

void tst_ProgrammerRoad::manyRequestsKeepTheOrder()
{
    constexpr int Requests = 100;
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    UtilsUniProgThread first(&programmer, nullptr);
    UtilsUniProgThread second(&programmer, nullptr);
    ProcedureLog firstLog(&first);
    ProcedureLog secondLog(&second);
    bool detected[2] = {};
    // The two run side by side; the driver refuses whatever comes in between.
    for (int i = 0; i < Requests; ++i) {
        QCOMPARE(first.DetectTarget(&detected[0]), 0);
        QCOMPARE(second.DetectTarget(&detected[1]), 0);
        QVERIFY(spinUntil([&] {
            return firstLog.ends == i + 1 && secondLog.ends == i + 1 && !first.IsProcedureInProgress()
                && !second.IsProcedureInProgress();
        }));
    }
    QVERIFY(detected[0] && detected[1]);
    QCOMPARE(firstLog.completions, Requests);
    QCOMPARE(secondLog.completions, Requests);
    QCOMPARE(programmer.successCount(Operation::DetectTarget), 2 * Requests);
    QCOMPARE(programmer.refusals(), QStringList());
}

UNIPROG_TEST_MAIN(tst_ProgrammerRoad)

#include "tst_programmerroad.moc"
