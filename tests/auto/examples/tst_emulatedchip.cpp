#include <FirmwareFile.h>
#include <GdbRemoteDriver.h>
#include <MemoryManager.h>
#include <UtilsDialogProcessing.h>
#include <UtilsUniProgThread.h>

#include <UniProgTest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

#include <algorithm>

/// The whole road to a chip that QEMU emulates: library, dialog, driver.
class tst_EmulatedChip : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void anEmulatedChipRunsWhatWasWritten();
};

namespace {

constexpr int LongWait = 60000; // ms
constexpr quint32 UserConfiguration = 0x10001000;
constexpr int PageSize = 1024;

/// Starts an empty chip that waits for a debugger, and says at which port: one that the emulator has found free. A
/// probe would take the place of its one client. 0 when it does not start.
quint16 startChip(QProcess *chip, const QString &emulator, const QString &serial)
{
    chip->start(emulator,
                {QStringLiteral("-M"), QStringLiteral("microbit"), QStringLiteral("-display"), QStringLiteral("none"),
                 QStringLiteral("-monitor"), QStringLiteral("stdio"), QStringLiteral("-serial"),
                 QStringLiteral("file:") + serial, QStringLiteral("-S"), QStringLiteral("-gdb"),
                 QStringLiteral("tcp:127.0.0.1:0")});
    if (!chip->waitForStarted())
        return 0;
    chip->write("info chardev\n");
    QString console;
    const QRegularExpression listening(QStringLiteral("disconnected:tcp:127\\.0\\.0\\.1:(\\d+),"));
    const bool listens = QTest::qWaitFor(
        [&] { return (console += QString::fromLatin1(chip->readAllStandardOutput())).contains(listening); }, LongWait);
    return listens ? listening.match(console).captured(1).toUShort() : quint16(0);
}

} // namespace

/// A real image is written to an empty chip, which then speaks.
void tst_EmulatedChip::anEmulatedChipRunsWhatWasWritten()
{
    const QString emulator = QStandardPaths::findExecutable(QStringLiteral("qemu-system-arm"));
    if (emulator.isEmpty())
        QSKIP("qemu-system-arm is not installed, so there is no chip to be emulated.");
    QTemporaryDir folder;
    const QString serial = folder.filePath(QStringLiteral("serial.txt"));
    QProcess chip;
    const auto endChip = qScopeGuard([&chip] {
        chip.kill();
        chip.waitForFinished();
    });
    const quint16 port = startChip(&chip, emulator, serial);
    QVERIFY(port != 0);
    MemoryManager image;
    QString error;
    QVERIFY2(
        FirmwareFile::load(QStringLiteral("/usr/share/firmware-microbit-micropython/firmware.hex"), 0, &image, &error),
        qPrintable(error));
    // The emulator drops what a debugger writes to these registers, and says OK; a reset empties them, too.
    image.remove(UserConfiguration, PageSize);
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), port);
    driver.GetTargetDescriptor()->getOperationOptions()->setIntValue(TargetOptionsOperation::VerifyAfterWrite, 1);
    UtilsUniProgThread thread(&driver, nullptr);
    QWidget window;
    window.resize(800, 600);
    window.show();
    auto *dialog = new UtilsDialogProcessing(&window);
    connect(&thread, &UtilsUniProgThread::SignalOperationLogMessage, dialog, &UtilsDialogProcessing::slotUpdateLog);
    connect(&thread, &UtilsUniProgThread::SignalOperationProgress, dialog,
            &UtilsDialogProcessing::slotUpdateProgressbar);
    connect(&thread, &UtilsUniProgThread::SignalProcedureCompleted, dialog,
            &UtilsDialogProcessing::slotProcedureCompleted);
    dialog->show();
    QStringList log;
    connect(&thread, &UtilsUniProgThread::SignalOperationLogMessage, &window,
            [&](const QString &line, LOGGER_MESSAGE_TYPE) { log.append(line); });
    QList<int> completed;
    connect(&thread, &UtilsUniProgThread::SignalProcedureCompleted, &window,
            [&](int status) { completed.append(status); });

    QElapsedTimer sinceTick;
    qint64 longestStall = 0;
    QTimer ticker;
    connect(&ticker, &QTimer::timeout, &window, [&] { longestStall = std::max(longestStall, sinceTick.restart()); });
    sinceTick.start();
    ticker.start(1);
    thread.WriteTarget(&image);
    QTRY_COMPARE_WITH_TIMEOUT(completed.size(), qsizetype(1), LongWait);
    ticker.stop();
    qInfo("Longest stall of the event loop while writing: %lld ms", static_cast<long long>(longestStall));
    QCOMPARE(completed.constFirst(), 0);
    QVERIFY2(log.contains(QStringLiteral("Write operation done and verified.")), qPrintable(log.join(u'\n')));
    QVERIFY(log.contains(QStringLiteral("Chip is running.")));

    const auto greeting = [&serial] {
        QFile file(serial);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    QTRY_VERIFY_WITH_TIMEOUT(greeting().contains("Type \"help()\" for more information."), LongWait);
    QVERIFY(greeting().contains("MicroPython v1.9.2"));
    QTRY_VERIFY(!thread.IsProcedureInProgress());
}

UNIPROG_TEST_MAIN(tst_EmulatedChip)
#include "tst_emulatedchip.moc"
