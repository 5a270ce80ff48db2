#include "GdbServer.h"

#include <FirmwareFile.h>
#include <GdbMemoryMap.h>
#include <GdbPacket.h>
#include <GdbRemoteDriver.h>
#include <MemoryManager.h>
#include <UtilsDialogProcessing.h>
#include <UtilsUniProgThread.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>

/// Drives targets behind GDB servers: one that does as a test says, and an emulated chip.
class tst_GdbRemote : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void packetsHaveAChecksum();
    void answersAreExpanded_data();
    void answersAreExpanded();
    void anAnswerNeverGrowsPastItsLimit();
    void memoryMapsAreRead_data();
    void memoryMapsAreRead();

    void anImageIsErasedWrittenVerifiedAndRead();
    void onlyTheSectorsOfTheImageAreErased();
    void flashCommandsAreUsedWhereTheyAreOffered();
    void aDifferenceIsFound();
    void progressRisesToTheEnd();
    void withoutATargetNothingIsDone();
    void whatAServerLacksIsNotSupported();
    void aHostileServerEndsInAStatus_data();
    void aHostileServerEndsInAStatus();
    void noServerIsNoDevice();
    void anEmulatedChipRunsWhatWasWritten();
};

namespace {

constexpr int ShortAnswerTimeout = 300; // ms
constexpr int LongWait = 60000;
constexpr int ManyBytes = 600;

using Status = GdbRemoteDriver::Status;

MemoryManager smallImage()
{
    MemoryManager image;
    QByteArray code;
    for (int i = 0; i < ManyBytes; ++i)
        code += char(i * 7);
    image.write(GdbServer::PageSize, code);
    image.write(GdbServer::UserConfiguration + 0xC0, "config");
    return image;
}

int connectTo(GdbRemoteDriver &driver, int flag = 1)
{
    const int status = driver.Connect(OPERATION_TYPE_DEBUG);
    return status == Status::Success ? driver.ConnectToTarget(flag) : status;
}

const QByteArray MapWithFlash = R"(<?xml version="1.0"?><!DOCTYPE memory-map PUBLIC "+//IDN gnu.org//DTD GDB Memory
 Map V1.0//EN" "http://sourceware.org/gdb/gdb-memory-map.dtd"><memory-map><memory type="ram" start="0x20000000"
 length="0x4000"/><memory type="flash" start="0x0" length="0x1000"><property name="blocksize">0x400</property></memory>
</memory-map>)";

QByteArray mapOf(const char *start, const char *length, const char *blockSize)
{
    return QByteArrayLiteral("<memory-map><memory type=\"flash\" start=\"") + start + "\" length=\"" + length
        + "\"><property name=\"blocksize\">" + blockSize + "</property></memory></memory-map>";
}

} // namespace

void tst_GdbRemote::packetsHaveAChecksum()
{
    QCOMPARE(GdbPacket::frame("OK"), QByteArray("$OK#9a"));
    QCOMPARE(GdbPacket::frame(""), QByteArray("$#00"));
    QVERIFY(GdbPacket::isChecksum("9A", "OK"));
    QVERIFY(!GdbPacket::isChecksum("9b", "OK"));
    QVERIFY(!GdbPacket::isChecksum("xx", "OK"));
    const QByteArray special("a$#}*z");
    QCOMPARE(GdbPacket::escape(special), QByteArray("a}\x04}\x03}]}\nz"));
    QByteArray back;
    QVERIFY(GdbPacket::expand(GdbPacket::escape(special), &back));
    QCOMPARE(back, special);
}

void tst_GdbRemote::answersAreExpanded_data()
{
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("plain") << QByteArray("abc") << true << QByteArray("abc");
    QTest::newRow("a run") << QByteArray("0* 1") << true << QByteArray("00001");
    QTest::newRow("the longest run") << QByteArray("x*~") << true << QByteArray(98, 'x');
    QTest::newRow("an escaped byte repeated") << QByteArray("}\x03* ") << true << QByteArray("####");
    QTest::newRow("nothing to repeat") << QByteArray("* ") << false << QByteArray();
    QTest::newRow("no count") << QByteArray("0*") << false << QByteArray();
    QTest::newRow("too small a count") << QByteArray("0*\x1f") << false << QByteArray();
    QTest::newRow("too large a count") << QByteArray("0*\xff") << false << QByteArray();
    QTest::newRow("an escape at the end") << QByteArray("0}") << false << QByteArray();
}

void tst_GdbRemote::answersAreExpanded()
{
    QFETCH(const QByteArray, wire);
    QFETCH(const bool, valid);
    QByteArray body;
    QCOMPARE(GdbPacket::expand(wire, &body), valid);
    if (valid)
        QTEST(body, "body");
}

void tst_GdbRemote::anAnswerNeverGrowsPastItsLimit()
{
    QByteArray body;
    QVERIFY(!GdbPacket::expand('0' + QByteArray("*~").repeated(GdbPacket::MaximumSize / 3), &body));
    QVERIFY(body.size() < 2 * GdbPacket::MaximumSize);
}

void tst_GdbRemote::memoryMapsAreRead_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<int>("regions");
    QTest::newRow("flash and memory") << MapWithFlash << 1;
    QTest::newRow("empty") << QByteArray() << 0;
    QTest::newRow("cut off") << MapWithFlash.chopped(20) << 0;
    QTest::newRow("no XML") << QByteArray("garbage") << 0;
    QTest::newRow("no sectors") << mapOf("0", "0x1000", "0") << 0;
    QTest::newRow("sectors that do not fit") << mapOf("0", "0x1000", "0x300") << 0;
    QTest::newRow("past the end") << mapOf("0xFFFFFC00", "0x800", "0x400") << 0;
    QTest::newRow("up to the end") << mapOf("0xFFFFFC00", "0x400", "0x400") << 1;
    QTest::newRow("too large") << mapOf("0", "0x10000000", "0x1000") << 0;
    QTest::newRow("too many sectors") << mapOf("0", "0x4000000", "1") << 0;
    QTest::newRow("no start") << mapOf("x", "0x1000", "0x400") << 0;
}

void tst_GdbRemote::memoryMapsAreRead()
{
    QFETCH(const QByteArray, xml);
    QFETCH(const int, regions);
    QCOMPARE(GdbMemoryMap::parse(xml).size(), qsizetype(regions));
}

void tst_GdbRemote::anImageIsErasedWrittenVerifiedAndRead()
{
    GdbServer server;
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(connectTo(driver), int(Status::Success));
    bool flag = false;
    QCOMPARE(driver.DetectTarget(&flag), int(Status::Success));
    QVERIFY(flag);
    QCOMPARE(driver.EraseTargetMass(), int(Status::Success));
    QCOMPARE(driver.CheckTargetBlank(&flag, false), int(Status::Success));
    QVERIFY(flag);

    MemoryManager image = smallImage();
    QCOMPARE(driver.WriteTarget(&image, 0), int(Status::Success));
    QCOMPARE(driver.VerifyTarget(&image, &flag, 0), int(Status::Success));
    QVERIFY(flag);
    QCOMPARE(driver.CheckTargetBlank(&flag, false), int(Status::Success));
    QVERIFY(!flag);
    MemoryManager whole;
    QCOMPARE(driver.ReadTarget(&whole), int(Status::Success));
    QCOMPARE(whole.size(), qint64(GdbServer::FlashSize + GdbServer::PageSize));
    QCOMPARE(whole.read(GdbServer::PageSize, ManyBytes), image.read(GdbServer::PageSize, ManyBytes));
    QCOMPARE(driver.ResetTarget(0), int(Status::Success));
    QCOMPARE(driver.DisconnectFromTarget(), int(Status::Success));
    QCOMPARE(driver.Disconnect(), int(Status::Success));
}

void tst_GdbRemote::onlyTheSectorsOfTheImageAreErased()
{
    GdbServer server;
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(connectTo(driver), int(Status::Success));
    MemoryManager image = smallImage();
    QCOMPARE(driver.EraseTarget(&image), int(Status::Success));
    const QByteArray flash = server.flash();
    QCOMPARE(flash.count('\xFF'), qsizetype(GdbServer::PageSize));
    QCOMPARE(flash.indexOf('\xFF'), qsizetype(GdbServer::PageSize));
}

void tst_GdbRemote::flashCommandsAreUsedWhereTheyAreOffered()
{
    GdbServer *usual = nullptr;
    GdbServer server([&usual](const QByteArray &command, int) {
        if (command.startsWith("qSupported"))
            return GdbServer::packet("PacketSize=400;qXfer:memory-map:read+");
        if (command.startsWith("qXfer:memory-map:read::0,"))
            return GdbServer::packet('m' + MapWithFlash.left(100));
        if (command.startsWith("qXfer:memory-map:read::"))
            return GdbServer::packet('l' + MapWithFlash.mid(100));
        if (command.startsWith("vFlash"))
            return GdbServer::packet("OK");
        return usual->answer(command);
    });
    usual = &server;
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(connectTo(driver), int(Status::Success));
    MemoryManager image;
    image.write(GdbServer::PageSize, "a#b");
    image.write(GdbServer::UserConfiguration, "ram");
    QCOMPARE(driver.EraseTarget(&image), int(Status::Success));
    QCOMPARE(driver.WriteTarget(&image, 0), int(Status::Success));
    const QByteArrayList expected{"qRcmd," + QByteArray("reset halt").toHex(), "vFlashErase:400,400",
                                  "vFlashWrite:400:a}\x03"
                                  "b",
                                  "M10001000,3:72616d", "vFlashDone"};
    QCOMPARE(server.commands().mid(server.commands().size() - expected.size()), expected);
}

void tst_GdbRemote::aDifferenceIsFound()
{
    GdbServer server;
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(connectTo(driver), int(Status::Success));
    MemoryManager image = smallImage();
    bool verified = true;
    QCOMPARE(driver.VerifyTarget(&image, &verified, 0), int(Status::Success));
    QVERIFY(!verified);
}

void tst_GdbRemote::progressRisesToTheEnd()
{
    GdbServer server;
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(connectTo(driver), int(Status::Success));
    QSignalSpy progress(&driver, &GdbRemoteDriver::SignalUpdateProgress);
    MemoryManager image = smallImage();
    QCOMPARE(driver.WriteTarget(&image, 0), int(Status::Success));
    QVERIFY(progress.size() >= 3);
    QVERIFY(std::is_sorted(progress.cbegin(), progress.cend(),
                           [](const auto &a, const auto &b) { return a.at(0).toInt() < b.at(0).toInt(); }));
    QCOMPARE(progress.constLast().at(0).toInt(), 100);
}

void tst_GdbRemote::withoutATargetNothingIsDone()
{
    GdbServer server;
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    MemoryManager image = smallImage();
    QCOMPARE(driver.WriteTarget(&image, 0), int(Status::ServerClosed));
    QCOMPARE(driver.Connect(OPERATION_TYPE_DEBUG), int(Status::Success));
    QCOMPARE(driver.WriteTarget(&image, 0), int(Status::OutOfOrder));
    QCOMPARE(driver.ConnectToTarget(2), int(Status::WrongArgument));
    QCOMPARE(driver.ReadTarget(nullptr), int(Status::WrongArgument));
    QCOMPARE(driver.DisconnectFromTarget(), int(Status::Success));
    QCOMPARE(driver.Disconnect(), int(Status::Success));
}

void tst_GdbRemote::whatAServerLacksIsNotSupported()
{
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), 1);
    unsigned short size = 5;
    QCOMPARE(driver.SwoEnable(1), int(Status::NotSupported));
    QCOMPARE(driver.SwoGetData(nullptr, &size), int(Status::NotSupported));
    QCOMPARE(size, (unsigned short)(0));
    QCOMPARE(driver.BootloaderEnter(), int(Status::NotSupported));
    QCOMPARE(driver.PowerSwitch(1, 1), int(Status::NotSupported));
    QCOMPARE(driver.WiFiServerStart(), int(Status::NotSupported));
}

void tst_GdbRemote::aHostileServerEndsInAStatus_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("close");
    QTest::addColumn<int>("status");
    const auto row = [](const char *name, const QByteArray &bytes, bool close, int status) {
        QTest::newRow(name) << bytes << close << status;
    };
    row("goes away", {}, true, Status::ServerClosed);
    row("goes away in the middle of an answer", "+$O", true, Status::ServerClosed);
    row("never answers", {}, false, Status::ServerSilent);
    row("acknowledges and never answers", "+", false, Status::ServerSilent);
    row("never ends its answer", "+$OK", false, Status::ServerSilent);
    row("an error", GdbServer::packet("E14").bytes, false, Status::ServerRefused);
    row("an error with a text", GdbServer::packet("E.no flash").bytes, false, Status::ServerRefused);
    row("does not know the command", GdbServer::packet("").bytes, false, Status::ServerRefused);
    row("another answer", GdbServer::packet("T05").bytes, false, Status::ServerUnintelligible);
    row("a wrong checksum, again and again", QByteArray("+$OK#00$OK#00$OK#00"), false, Status::ServerUnintelligible);
    row("refuses every packet", QByteArray("---"), false, Status::ServerUnintelligible);
    row("an answer too long", "+$" + QByteArray(2 * GdbPacket::MaximumSize, 'x'), false, Status::ServerUnintelligible);
    row("garbage", QByteArray(2 * GdbPacket::MaximumSize, '\0'), false, Status::ServerUnintelligible);
    row("a damaged run", GdbServer::packet("* ").bytes, false, Status::ServerUnintelligible);
}

void tst_GdbRemote::aHostileServerEndsInAStatus()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const bool, close);
    QFETCH(const int, status);
    GdbServer *usual = nullptr;
    GdbServer server([&](const QByteArray &command, int) {
        // The first part of the write goes well.
        const bool inWrite = command.startsWith('M') && !command.startsWith("M400,");
        return inWrite ? GdbServer::Reply{bytes, close} : usual->answer(command);
    });
    usual = &server;
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    driver.setAnswerTimeout(ShortAnswerTimeout);
    QCOMPARE(connectTo(driver), int(Status::Success));
    MemoryManager image = smallImage();
    QCOMPARE(driver.WriteTarget(&image, 0), status);
    // The end of the procedure goes the usual way, without waiting for a server that is in doubt.
    driver.ResetTarget(0);
    QCOMPARE(driver.DisconnectFromTarget(), int(Status::Success));
    QCOMPARE(driver.Disconnect(), int(Status::Success));
    QCOMPARE(connectTo(driver), int(Status::Success)); // and the next operation has a fresh start
}

void tst_GdbRemote::noServerIsNoDevice()
{
    quint16 port = 0;
    {
        QTcpServer nobody;
        QVERIFY(nobody.listen(QHostAddress::LocalHost));
        port = nobody.serverPort();
    }
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), port);
    QCOMPARE(driver.Connect(OPERATION_TYPE_DEBUG), int(Status::ServerUnreachable));
    QCOMPARE(driver.DetectTarget(nullptr), int(Status::WrongArgument));
}

/// The whole road: the library, its dialog and the driver write a real image to an empty chip, which then speaks.
void tst_GdbRemote::anEmulatedChipRunsWhatWasWritten()
{
    const QString emulator = QStandardPaths::findExecutable(QStringLiteral("qemu-system-arm"));
    if (emulator.isEmpty())
        QSKIP("qemu-system-arm is not installed, so there is no chip to be emulated.");
    QTemporaryDir folder;
    quint16 port = 0;
    {
        QTcpServer probe;
        QVERIFY(probe.listen(QHostAddress::LocalHost));
        port = probe.serverPort();
    }
    const QString serial = folder.filePath(QStringLiteral("serial.txt"));
    QProcess chip;
    const auto endChip = qScopeGuard([&chip] {
        chip.kill();
        chip.waitForFinished();
    });
    chip.start(emulator,
               {QStringLiteral("-M"), QStringLiteral("microbit"), QStringLiteral("-display"), QStringLiteral("none"),
                QStringLiteral("-monitor"), QStringLiteral("stdio"), QStringLiteral("-serial"),
                QStringLiteral("file:") + serial, QStringLiteral("-S"), QStringLiteral("-gdb"),
                QStringLiteral("tcp:127.0.0.1:%1").arg(port)});
    QVERIFY(chip.waitForStarted());
    // The emulator serves one client and no probe: its prompt says that it listens.
    QByteArray console;
    QTRY_VERIFY_WITH_TIMEOUT((console += chip.readAllStandardOutput()).contains("(qemu)"), LongWait);

    MemoryManager image;
    QString error;
    QVERIFY2(
        FirmwareFile::load(QStringLiteral("/usr/share/firmware-microbit-micropython/firmware.hex"), 0, &image, &error),
        qPrintable(error));
    // The emulator drops what a debugger writes to these registers, and says OK.
    image.remove(GdbServer::UserConfiguration, GdbServer::PageSize);
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

UNIPROG_TEST_MAIN(tst_GdbRemote)
#include "tst_gdbremote.moc"
