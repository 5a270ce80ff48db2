#include "GdbServer.h"

#include <CommandLine.h>
#include <DriverChoice.h>
#include <FirmwareFile.h>
#include <GdbMemoryMap.h>
#include <GdbPacket.h>
#include <GdbRemoteDriver.h>
#include <MemoryManager.h>
#include <ProgrammerSession.h>
#include <UtilsDialogProcessing.h>
#include <UtilsUniProgThread.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QNetworkProxy>
#include <QProcess>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>

/// Drives targets behind GDB servers: one that does as a test says, and an emulated chip.
class tst_GdbRemote : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void packetsHaveAChecksum();
    void answersAreExpanded_data();
    void answersAreExpanded();
    void anAnswerNeverGrowsPastItsLimit();
    void bytesOfAServerAreSorted_data();
    void bytesOfAServerAreSorted();
    void memoryMapsAreRead_data();
    void memoryMapsAreRead();

    void anImageIsErasedWrittenVerifiedAndRead();
    void onlyTheSectorsOfTheImageAreErased();
    void flashCommandsAreUsedWhereTheyAreOffered();
    void aDifferenceIsFound();
    void progressRisesToTheEnd();
    void withoutATargetNothingIsDone();
    void whatAServerLacksIsNotSupported();
    void whatComesBeforeAnAnswerIsSkipped_data();
    void whatComesBeforeAnAnswerIsSkipped();
    void aRejectedPacketIsSentAgain();
    void acknowledgementsEndWhereTheServerAgrees();
    void packetsFitTheServer_data();
    void packetsFitTheServer();
    void aRunningTargetIsHaltedForTheNextOperation();
    void aHostileServerEndsInAStatus_data();
    void aHostileServerEndsInAStatus();
    void everyOperationSurvivesItsServer_data();
    void everyOperationSurvivesItsServer();
    void aMemoryMapIsNotTrusted_data();
    void aMemoryMapIsNotTrusted();
    void flashCommandsMayFail_data();
    void flashCommandsMayFail();
    void aServerThatDoesNotAcceptIsSilent();
    void noServerIsNoDevice();
    void aDriverServesOneThreadAfterAnother();
    void proceduresOfTheLibraryFollowEachOther();
    void driversAreChosenByText_data();
    void driversAreChosenByText();
    void hostsHaveNamesAndAddresses_data();
    void hostsHaveNamesAndAddresses();
    void whatOnlyTheSimulatorDoesIsRefused_data();
    void whatOnlyTheSimulatorDoesIsRefused();
    void firmwareUpdatesAreNotSupported();
    void anEmulatedChipRunsWhatWasWritten();
};

namespace {

constexpr int ShortAnswerTimeout = 200; // ms; only where the answer never comes
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

/// A server that says OK to its first commands since it was armed and then what a test wants.
struct HostileServer
{
    explicit HostileServer(const GdbServer::Reply &hostileReply, int goodCommandCount)
        : reply(hostileReply)
        , goodCommands(goodCommandCount)
        , server([this](GdbServer &usual, const QByteArray &command) {
            return armed && goodCommands-- <= 0 ? reply : usual.answer(command);
        })
    { }

    const GdbServer::Reply reply;
    std::atomic<int> goodCommands;
    std::atomic<bool> armed{false};
    GdbServer server;
};

/// How many commands of the server started with @p prefix.
int countOf(const GdbServer &server, const QByteArray &prefix)
{
    const QByteArrayList commands = server.commands();
    return int(std::count_if(commands.cbegin(), commands.cend(),
                             [&](const QByteArray &command) { return command.startsWith(prefix); }));
}

const QByteArray Garbage(5 * GdbPacket::MaximumSize, '\0');

} // namespace

void tst_GdbRemote::packetsHaveAChecksum()
{
    QCOMPARE(GdbPacket::frame("OK"), QByteArray("$OK#9a"));
    QCOMPARE(GdbPacket::frame(""), QByteArray("$#00"));
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

void tst_GdbRemote::bytesOfAServerAreSorted_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("sorted"); // + and - stand for themselves, answers in brackets
    QTest::addColumn<QByteArray>("rest");
    const auto row = [](const char *name, const QByteArray &bytes, const QByteArray &sorted,
                        const QByteArray &rest = {}) { QTest::newRow(name) << bytes << sorted << rest; };
    row("an answer", "+$OK#9a", "+(OK)");
    row("capital digits", "$OK#9A", "(OK)");
    row("the empty answer", "+$#00", "+()");
    row("two answers", '+' + GdbPacket::frame("O41") + GdbPacket::frame("OK"), "+(O41)(OK)");
    row("a rejection", "-", "-");
    row("a damaged answer", "$OK#9b", "!");
    row("no checksum", "$OK#xx", "!");
    row("intact nonsense", "$* #4a", "?");
    row("a notification", "%log:+-%#00+$OK#9a", "+(OK)");
    row("a damaged notification", "%log:x#zz+", "+");
    row("other bytes", "xyz\x03+abc$OK#9a", "+(OK)");
    row("begun again", "$abc$OK#9a", "(OK)");
    row("without its end", "+$OK", "+", "$OK");
    row("without its checksum", "$OK#9", "", "$OK#9");
    row("a notification without its end", "%log", "", "%log");
    row("marks in an answer", GdbPacket::frame("+-%"), "(+-%)");
}

/// The same whether the bytes come at once or one by one.
void tst_GdbRemote::bytesOfAServerAreSorted()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QByteArray, sorted);
    const auto takeAll = [](QByteArray *received, QByteArray *found) {
        for (;;) {
            QByteArray body;
            switch (GdbPacket::take(received, &body)) {
            case GdbPacket::Kind::Nothing:
                return;
            case GdbPacket::Kind::Acknowledgement:
                *found += '+';
                break;
            case GdbPacket::Kind::Rejection:
                *found += '-';
                break;
            case GdbPacket::Kind::Answer:
                *found += '(' + body + ')';
                break;
            case GdbPacket::Kind::DamagedAnswer:
                *found += '!';
                break;
            case GdbPacket::Kind::Nonsense:
                *found += '?';
                break;
            }
        }
    };
    QByteArray received = bytes;
    QByteArray found;
    takeAll(&received, &found);
    QCOMPARE(found, sorted);
    QTEST(received, "rest");

    received.clear();
    found.clear();
    for (const char byte : bytes) {
        received += byte;
        takeAll(&received, &found);
    }
    QCOMPARE(found, sorted);
    QTEST(received, "rest");
}

void tst_GdbRemote::memoryMapsAreRead_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<int>("regions"); // -1: not believed
    QTest::newRow("no flash") << QByteArray("<memory-map><memory type=\"ram\" start=\"0\" length=\"1\"/></memory-map>")
                              << 0;
    QTest::newRow("flash and memory") << MapWithFlash << 1;
    QTest::newRow("empty") << QByteArray() << -1;
    QTest::newRow("cut off") << MapWithFlash.chopped(20) << -1;
    QTest::newRow("no XML") << QByteArray("garbage") << -1;
    QTest::newRow("no sectors") << mapOf("0", "0x1000", "0") << -1;
    QTest::newRow("sectors that do not fit") << mapOf("0", "0x1000", "0x300") << -1;
    QTest::newRow("past the end") << mapOf("0xFFFFFC00", "0x800", "0x400") << -1;
    QTest::newRow("up to the end") << mapOf("0xFFFFFC00", "0x400", "0x400") << 1;
    QTest::newRow("too large") << mapOf("0", "0x10000000", "0x1000") << -1;
    QTest::newRow("too many sectors") << mapOf("0", "0x4000000", "1") << -1;
    QTest::newRow("no start") << mapOf("x", "0x1000", "0x400") << -1;
}

void tst_GdbRemote::memoryMapsAreRead()
{
    QFETCH(const QByteArray, xml);
    QFETCH(const int, regions);
    QList<GdbFlashRegion> found{{1, 2, 3}};
    QCOMPARE(GdbMemoryMap::parse(xml, &found), regions >= 0);
    QCOMPARE(found.size(), qsizetype(std::max(regions, 0)));
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
    GdbServer server([](GdbServer &usual, const QByteArray &command) {
        if (command.startsWith("qSupported"))
            return GdbServer::packet("PacketSize=400;qXfer:memory-map:read+");
        if (command.startsWith("qXfer:memory-map:read::0,"))
            return GdbServer::packet('m' + MapWithFlash.left(100));
        if (command.startsWith("qXfer:memory-map:read::"))
            return GdbServer::packet('l' + MapWithFlash.mid(100));
        if (command.startsWith("vFlash"))
            return GdbServer::packet("OK");
        return usual.answer(command);
    });
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

void tst_GdbRemote::whatComesBeforeAnAnswerIsSkipped_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::newRow("a notification with marks") << QByteArray("%log:took 3-4 s#00+");
    QTest::newRow("an old answer") << GdbPacket::frame("T05thread:p1.-1;") + '+';
    QTest::newRow("something printed") << '+' + GdbPacket::frame("O4142");
    QTest::newRow("nothing printed") << '+' + GdbPacket::frame("O");
    QTest::newRow("a damaged answer") << QByteArray("+$OK#00");
    QTest::newRow("a second acknowledgement") << QByteArray("++");
    QTest::newRow("a late rejection") << QByteArray("+-");
    QTest::newRow("noise") << QByteArray("\r\nhello\x03+");
}

void tst_GdbRemote::whatComesBeforeAnAnswerIsSkipped()
{
    QFETCH(const QByteArray, before);
    HostileServer talkative({before + GdbPacket::frame("OK")}, 0);
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), talkative.server.port());
    QCOMPARE(connectTo(driver), int(Status::Success));
    talkative.armed = true;
    MemoryManager image = smallImage();
    QCOMPARE(driver.WriteTarget(&image, 0), int(Status::Success));
    QCOMPARE(countOf(talkative.server, "M400,"), 1);
}

void tst_GdbRemote::aRejectedPacketIsSentAgain()
{
    int rejections = 0;
    GdbServer server([&](GdbServer &usual, const QByteArray &command) {
        return command.startsWith("M400,") && rejections++ < 2 ? GdbServer::Reply{"-"} : usual.answer(command);
    });
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(connectTo(driver), int(Status::Success));
    MemoryManager image = smallImage();
    QCOMPARE(driver.WriteTarget(&image, 0), int(Status::Success));
    QCOMPARE(countOf(server, "M400,"), 3);
}

void tst_GdbRemote::acknowledgementsEndWhereTheServerAgrees()
{
    std::atomic<bool> agreed{false};
    GdbServer server([&](GdbServer &usual, const QByteArray &command) {
        if (command.startsWith("qSupported"))
            return GdbServer::packet("PacketSize=400;QStartNoAckMode+");
        if (command == "QStartNoAckMode") {
            agreed = true;
            return GdbServer::packet("OK");
        }
        GdbServer::Reply reply = usual.answer(command);
        if (agreed)
            reply.bytes.remove(0, 1);
        return reply;
    });
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(connectTo(driver), int(Status::Success));
    MemoryManager image = smallImage();
    QCOMPARE(driver.WriteTarget(&image, 0), int(Status::Success));
    QCOMPARE(server.acknowledgements(), qsizetype(2)); // of the features and of the agreement
    driver.Disconnect();
    agreed = false;
    QCOMPARE(connectTo(driver), int(Status::Success)); // where everything is acknowledged again, at first
}

void tst_GdbRemote::packetsFitTheServer_data()
{
    QTest::addColumn<QByteArray>("size");
    QTest::addColumn<int>("limit");
    QTest::newRow("small") << QByteArray("60") << 0x60;
    // What makes no sense counts as little, and what is large as enough for a kilobyte.
    QTest::newRow("none") << QByteArray() << 64;
    QTest::newRow("no number") << QByteArray("x") << 64;
    QTest::newRow("nothing") << QByteArray("0") << 64;
    QTest::newRow("past 32 bits") << QByteArray("100000000") << 64;
    QTest::newRow("huge") << QByteArray("ffffffff") << 2 * 1024 + 32;
}

void tst_GdbRemote::packetsFitTheServer()
{
    QFETCH(const QByteArray, size);
    QFETCH(const int, limit);
    GdbServer server([&](GdbServer &usual, const QByteArray &command) {
        return command.startsWith("qSupported") ? GdbServer::packet("PacketSize=" + size) : usual.answer(command);
    });
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(connectTo(driver), int(Status::Success));
    MemoryManager image = smallImage();
    bool verified = false;
    QCOMPARE(driver.WriteTarget(&image, 0), int(Status::Success));
    QCOMPARE(driver.VerifyTarget(&image, &verified, 0), int(Status::Success));
    QVERIFY(verified);
    const QByteArrayList commands = server.commands();
    for (const QByteArray &command : commands)
        QVERIFY2(GdbPacket::frame(command).size() <= limit, command.constData());
}

void tst_GdbRemote::aRunningTargetIsHaltedForTheNextOperation()
{
    GdbServer server([](GdbServer &usual, const QByteArray &command) {
        GdbServer::Reply reply = usual.answer(command);
        if (command == GdbServer::Interrupt)
            reply.bytes.prepend(GdbPacket::frame("O4142")); // what the target has printed meanwhile
        return reply;
    });
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(connectTo(driver), int(Status::Success));
    QCOMPARE(driver.ResetTarget(0), int(Status::Success));
    bool flag = false;
    QCOMPARE(driver.DetectTarget(&flag), int(Status::Success));
    QVERIFY(flag);
    QCOMPARE(driver.DisconnectFromTarget(), int(Status::Success));
    const QByteArrayList commands = server.commands();
    QCOMPARE(commands.mid(commands.size() - 4), QByteArrayList({"c", GdbServer::Interrupt, "me000ed00,4", "c"}));
}

void tst_GdbRemote::aHostileServerEndsInAStatus_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<GdbServer::Then>("then");
    QTest::addColumn<int>("status");
    using Then = GdbServer::Then;
    const auto row = [](const char *name, const QByteArray &bytes, Then then, int status) {
        QTest::newRow(name) << bytes << then << status;
    };
    row("goes away", {}, Then::Close, Status::ServerClosed);
    row("goes away in the middle of an answer", "+$O", Then::Close, Status::ServerClosed);
    row("never answers", {}, Then::Listen, Status::ServerSilent);
    row("acknowledges and never answers", "+", Then::Listen, Status::ServerSilent);
    row("never ends its answer", "+$OK", Then::Listen, Status::ServerSilent);
    row("an error", GdbServer::packet("E14").bytes, Then::Listen, Status::ServerRefused);
    row("an error with a text", GdbServer::packet("E.no flash").bytes, Then::Listen, Status::ServerRefused);
    row("does not know the command", GdbServer::packet("").bytes, Then::Listen, Status::ServerRefused);
    row("another answer", GdbServer::packet("T05").bytes, Then::Listen, Status::ServerUnintelligible);
    row("a wrong checksum, again and again", QByteArray("+$OK#00$OK#00$OK#00"), Then::Listen,
        Status::ServerUnintelligible);
    row("refuses every packet", QByteArray("---"), Then::Listen, Status::ServerUnintelligible);
    row("an answer too long", "+$" + QByteArray(2 * GdbPacket::MaximumSize, 'x'), Then::Listen,
        Status::ServerUnintelligible);
    row("garbage", Garbage, Then::Listen, Status::ServerUnintelligible);
    row("prints without an end", '+' + GdbPacket::frame("O41").repeated(GdbPacket::MaximumSize), Then::Listen,
        Status::ServerUnintelligible);
    row("sends a byte now and then, for ever", "+", Then::Dribble, Status::ServerSilent);
    row("sends an answer that never ends", "+$", Then::Dribble, Status::ServerSilent);
    row("a damaged run", GdbServer::packet("* ").bytes, Then::Listen, Status::ServerUnintelligible);
}

void tst_GdbRemote::aHostileServerEndsInAStatus()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const GdbServer::Then, then);
    QFETCH(const int, status);
    HostileServer hostile({bytes, then}, 1);
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), hostile.server.port());
    QCOMPARE(connectTo(driver), int(Status::Success));
    hostile.armed = true;
    if (status == Status::ServerSilent)
        driver.setAnswerTimeout(ShortAnswerTimeout);
    MemoryManager image = smallImage();
    QCOMPARE(driver.WriteTarget(&image, 0), status);
    hostile.armed = false;
    driver.setAnswerTimeout(GdbTarget::DefaultTimeout);
    // The end of the procedure goes the usual way, without waiting for a server that is in doubt.
    QCOMPARE(driver.ResetTarget(0),
             int(status == Status::ServerRefused || bytes == GdbServer::packet("T05").bytes ? Status::Success
                                                                                            : Status::ServerClosed));
    QCOMPARE(driver.DisconnectFromTarget(), int(Status::Success));
    QCOMPARE(driver.Disconnect(), int(Status::Success));
    QCOMPARE(connectTo(driver), int(Status::Success)); // and the next operation has a fresh start
}

void tst_GdbRemote::everyOperationSurvivesItsServer_data()
{
    QTest::addColumn<QByteArray>("operation");
    QTest::addColumn<int>("goodCommands");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<GdbServer::Then>("then");
    QTest::addColumn<int>("status");
    using Then = GdbServer::Then;
    const auto row = [](const char *operation, int goodCommands, const char *behaviour, const QByteArray &bytes,
                        Then then, int status) {
        QTest::addRow("%s, after %d commands: %s", operation, goodCommands, behaviour)
            << QByteArray(operation) << goodCommands << bytes << then << status;
    };
    const auto rows = [&](const char *operation, int goodCommands) {
        row(operation, goodCommands, "goes away", {}, Then::Close, Status::ServerClosed);
        row(operation, goodCommands, "goes away in an answer", "+$0", Then::Close, Status::ServerClosed);
        row(operation, goodCommands, "garbage", Garbage, Then::Listen, Status::ServerUnintelligible);
        row(operation, goodCommands, "never answers", {}, Then::Listen, Status::ServerSilent);
    };
    const auto wrongAnswers = [&](const char *operation, int goodCommands) {
        row(operation, goodCommands, "error", GdbServer::packet("E01").bytes, Then::Listen, Status::ServerRefused);
        row(operation, goodCommands, "another answer", GdbServer::packet("zz").bytes, Then::Listen,
            Status::ServerUnintelligible);
        row(operation, goodCommands, "too short an answer", GdbServer::packet("0").bytes, Then::Listen,
            Status::ServerUnintelligible);
    };
    rows("connect", 0);
    rows("connect target", 0);
    rows("connect target", 1); // asks for the flash of the chip
    rows("detect", 0);
    row("detect", 0, "error", GdbServer::packet("E01").bytes, Then::Listen, Status::Success); // no such register
    for (const char *operation : {"read", "verify", "blank check", "erase", "erase sectors"}) {
        rows(operation, 1);
        wrongAnswers(operation, 1);
    }
    rows("reset", 0);
    wrongAnswers("reset", 0);
    // Continuing has no answer, only an acknowledgement.
    row("reset", 1, "goes away", {}, Then::Close, Status::ServerClosed);
    row("reset", 1, "garbage", Garbage, Then::Listen, Status::ServerUnintelligible);
    row("reset", 1, "never answers", {}, Then::Listen, Status::ServerSilent);
}

void tst_GdbRemote::everyOperationSurvivesItsServer()
{
    QFETCH(const QByteArray, operation);
    QFETCH(const int, goodCommands);
    QFETCH(const QByteArray, bytes);
    QFETCH(const GdbServer::Then, then);
    QFETCH(const int, status);
    MemoryManager image = smallImage();
    bool flag = true;
    const QHash<QByteArray, std::function<int(GdbRemoteDriver &)>> operations{
        {"connect", [](GdbRemoteDriver &driver) { return driver.Connect(OPERATION_TYPE_DEBUG); }},
        {"connect target", [](GdbRemoteDriver &driver) { return driver.ConnectToTarget(1); }},
        {"detect", [&](GdbRemoteDriver &driver) { return driver.DetectTarget(&flag); }},
        {"read", [&](GdbRemoteDriver &driver) { return driver.ReadTarget(&image); }},
        {"verify", [&](GdbRemoteDriver &driver) { return driver.VerifyTarget(&image, &flag, 0); }},
        {"blank check", [&](GdbRemoteDriver &driver) { return driver.CheckTargetBlank(&flag, false); }},
        {"erase", [](GdbRemoteDriver &driver) { return driver.EraseTargetMass(); }},
        {"erase sectors", [&](GdbRemoteDriver &driver) { return driver.EraseTarget(&image); }},
        {"reset", [](GdbRemoteDriver &driver) { return driver.ResetTarget(0); }},
    };
    HostileServer hostile({bytes, then}, goodCommands);
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), hostile.server.port());
    if (operation == "connect target")
        QCOMPARE(driver.Connect(OPERATION_TYPE_DEBUG), int(Status::Success));
    else if (operation != "connect")
        QCOMPARE(connectTo(driver), int(Status::Success));
    hostile.armed = true;
    if (status == Status::ServerSilent)
        driver.setAnswerTimeout(ShortAnswerTimeout);
    QCOMPARE(operations.value(operation)(driver), status);
    if (operation == "detect" || operation == "verify" || operation == "blank check")
        QVERIFY(!flag);
    hostile.armed = false;
    QCOMPARE(driver.DisconnectFromTarget(), int(Status::Success));
    QCOMPARE(driver.Disconnect(), int(Status::Success));
    driver.setAnswerTimeout(GdbTarget::DefaultTimeout);
    QCOMPARE(connectTo(driver), int(Status::Success));
}

void tst_GdbRemote::aMemoryMapIsNotTrusted_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("status");
    QTest::newRow("whole") << 'l' + MapWithFlash << int(Status::Success);
    QTest::newRow("of a target without flash") << QByteArray("l<memory-map/>") << int(Status::Success);
    QTest::newRow("none") << QByteArray("E01") << int(Status::Success);
    QTest::newRow("damaged") << 'l' + MapWithFlash.chopped(5) << int(Status::ServerUnintelligible);
    QTest::newRow("empty") << QByteArray("l") << int(Status::ServerUnintelligible);
    QTest::newRow("a piece of nothing") << QByteArray("m") << int(Status::ServerUnintelligible);
    QTest::newRow("pieces without an end") << QByteArray("m<!-- -->") << int(Status::ServerUnintelligible);
    QTest::newRow("large pieces without an end") << 'm' + QByteArray(4000, ' ') << int(Status::ServerUnintelligible);
    QTest::newRow("no piece") << QByteArray("x") << int(Status::ServerUnintelligible);
}

void tst_GdbRemote::aMemoryMapIsNotTrusted()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const int, status);
    GdbServer server([&](GdbServer &usual, const QByteArray &command) {
        if (command.startsWith("qSupported"))
            return GdbServer::packet("PacketSize=1000;qXfer:memory-map:read+");
        return command.startsWith("qXfer") ? GdbServer::packet(answer) : usual.answer(command);
    });
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(connectTo(driver), status);
}

void tst_GdbRemote::flashCommandsMayFail_data()
{
    QTest::addColumn<QByteArray>("failing");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("status");
    for (const char *command : {"vFlashErase", "vFlashWrite", "vFlashDone"}) {
        QTest::addRow("%s: error", command) << QByteArray(command) << QByteArray("E01") << int(Status::ServerRefused);
        QTest::addRow("%s: no flash", command)
            << QByteArray(command) << QByteArray("E.memtype") << int(Status::ServerRefused);
        QTest::addRow("%s: not known", command) << QByteArray(command) << QByteArray() << int(Status::ServerRefused);
        QTest::addRow("%s: another answer", command)
            << QByteArray(command) << QByteArray("S05") << int(Status::ServerUnintelligible);
    }
}

void tst_GdbRemote::flashCommandsMayFail()
{
    QFETCH(const QByteArray, failing);
    QFETCH(const QByteArray, answer);
    QFETCH(const int, status);
    GdbServer server([&](GdbServer &usual, const QByteArray &command) {
        if (command.startsWith("qSupported"))
            return GdbServer::packet("PacketSize=1000;qXfer:memory-map:read+");
        if (command.startsWith("qXfer"))
            return GdbServer::packet('l' + MapWithFlash);
        if (command.startsWith("vFlash"))
            return GdbServer::packet(command.startsWith(failing) ? answer : "OK");
        return usual.answer(command);
    });
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(connectTo(driver), int(Status::Success));
    MemoryManager image = smallImage();
    const int erased = driver.EraseTarget(&image);
    QCOMPARE(erased == Status::Success ? driver.WriteTarget(&image, 0) : erased, status);
    QCOMPARE(driver.ResetTarget(0), int(Status::Success)); // the connection is as good as before
}

/// The system takes the connection before anybody accepts it.
void tst_GdbRemote::aServerThatDoesNotAcceptIsSilent()
{
    QTcpServer server;
    server.setProxy(QNetworkProxy::NoProxy);
    QVERIFY(server.listen(QHostAddress::LocalHost));
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.serverPort());
    driver.setAnswerTimeout(ShortAnswerTimeout);
    QCOMPARE(driver.Connect(OPERATION_TYPE_DEBUG), int(Status::ServerSilent));
    QCOMPARE(driver.ConnectToTarget(0), int(Status::ServerClosed));
}

void tst_GdbRemote::noServerIsNoDevice()
{
    QTcpSocket nobody; // has a port, at which it does not listen
    nobody.setProxy(QNetworkProxy::NoProxy);
    QVERIFY(nobody.bind(QHostAddress::LocalHost));
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), nobody.localPort());
    QCOMPARE(driver.Connect(OPERATION_TYPE_DEBUG), int(Status::ServerUnreachable));
    QCOMPARE(driver.DetectTarget(nullptr), int(Status::WrongArgument));
    GdbRemoteDriver nowhere(QStringLiteral("no-such-host.invalid"), 3333);
    nowhere.setAnswerTimeout(ShortAnswerTimeout);
    QCOMPARE(nowhere.Connect(OPERATION_TYPE_DEBUG), int(Status::ServerUnreachable));
}

/// Also after a failure, which nobody disconnects.
void tst_GdbRemote::aDriverServesOneThreadAfterAnother()
{
    std::atomic<bool> mapIsBad{true};
    GdbServer server([&](GdbServer &usual, const QByteArray &command) {
        if (command.startsWith("qSupported"))
            return GdbServer::packet("qXfer:memory-map:read+");
        if (command.startsWith("qXfer"))
            return GdbServer::packet(mapIsBad ? "x" : 'l' + MapWithFlash);
        return usual.answer(command);
    });
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    const auto inItsOwnThread = [](const std::function<void()> &work) {
        const std::unique_ptr<QThread> thread(QThread::create(work));
        thread->start();
        return thread->wait(LongWait);
    };
    int status = -1;
    QVERIFY(inItsOwnThread([&] { status = driver.Connect(OPERATION_TYPE_DEBUG); }));
    QCOMPARE(status, int(Status::ServerUnintelligible));
    QCOMPARE(driver.ResetTarget(0), int(Status::ServerClosed)); // nothing of that thread is left
    mapIsBad = false;
    for (int i = 0; i < 2; ++i) {
        QVERIFY(inItsOwnThread([&] {
            status = connectTo(driver);
            driver.DisconnectFromTarget();
            driver.Disconnect();
        }));
        QCOMPARE(status, int(Status::Success));
    }
}

void tst_GdbRemote::proceduresOfTheLibraryFollowEachOther()
{
    GdbServer server;
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    UtilsUniProgThread thread(&driver, nullptr);
    QList<int> completed;
    connect(&thread, &UtilsUniProgThread::SignalProcedureCompleted, this,
            [&](int status) { completed.append(status); });
    const auto finishes = [&](int count) {
        return QTest::qWaitFor([&] { return completed.size() == count && !thread.IsProcedureInProgress(); }, LongWait)
            && completed.constLast() == Status::Success;
    };
    thread.EraseTargetMass();
    QVERIFY(finishes(1));
    bool blank = false;
    thread.CheckTargetBlank(&blank);
    QVERIFY(finishes(2));
    QVERIFY(blank);
    bool detected = false;
    thread.DetectTarget(&detected);
    QVERIFY(finishes(3));
    QVERIFY(detected);
}

void tst_GdbRemote::driversAreChosenByText_data()
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

void tst_GdbRemote::driversAreChosenByText()
{
    QFETCH(const QString, text);
    QFETCH(const bool, valid);
    std::unique_ptr<UniProgInterface> driver;
    QString error;
    QCOMPARE(DriverChoice::create(text, &driver, &error), valid);
    QCOMPARE(driver != nullptr, valid);
    QCOMPARE(error.contains(text), !valid);
}

void tst_GdbRemote::hostsHaveNamesAndAddresses_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QHostAddress>("address");
    QTest::newRow("a name") << QStringLiteral("localhost") << QHostAddress(QHostAddress::LocalHost);
    QTest::newRow("IPv4") << QStringLiteral("127.0.0.1") << QHostAddress(QHostAddress::LocalHost);
    QTest::newRow("IPv6") << QStringLiteral("::1") << QHostAddress(QHostAddress::LocalHostIPv6);
    QTest::newRow("IPv6 in brackets") << QStringLiteral("[::1]") << QHostAddress(QHostAddress::LocalHostIPv6);
}

void tst_GdbRemote::hostsHaveNamesAndAddresses()
{
    QFETCH(const QString, host);
    QFETCH(const QHostAddress, address);
    GdbServer server({}, address);
    if (server.port() == 0)
        QSKIP("This machine does not have that kind of address.");
    std::unique_ptr<UniProgInterface> driver;
    QString error;
    QVERIFY(DriverChoice::create(QStringLiteral("gdb:%1:%2").arg(host).arg(server.port()), &driver, &error));
    QCOMPARE(driver->Connect(OPERATION_TYPE_DEBUG), int(Status::Success));
}

void tst_GdbRemote::whatOnlyTheSimulatorDoesIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("a fault") << QStringList{QStringLiteral("--fault"), QStringLiteral("device-connect=38")};
    QTest::newRow("a comparison") << QStringList{QStringLiteral("--compare"), QStringLiteral("--image"),
                                                 QStringLiteral("image.hex")};
    QTest::newRow("WiFi") << QStringList{QStringLiteral("--wifi")};
    QTest::newRow("a missing driver") << QStringList{QStringLiteral("--no-driver")};
    QTest::newRow("another speed") << QStringList{QStringLiteral("--speed"), QStringLiteral("2")};
}

void tst_GdbRemote::whatOnlyTheSimulatorDoesIsRefused()
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

void tst_GdbRemote::firmwareUpdatesAreNotSupported()
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
        QCOMPARE(completed.constFirst().at(1).toInt(), int(Status::NotSupported));
        QTRY_VERIFY(!session.thread().IsProcedureInProgress());
    }
}

/// The whole road: the library, its dialog and the driver write a real image to an empty chip, which then speaks.
void tst_GdbRemote::anEmulatedChipRunsWhatWasWritten()
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
    chip.start(emulator,
               {QStringLiteral("-M"), QStringLiteral("microbit"), QStringLiteral("-display"), QStringLiteral("none"),
                QStringLiteral("-monitor"), QStringLiteral("stdio"), QStringLiteral("-serial"),
                QStringLiteral("file:") + serial, QStringLiteral("-S"), QStringLiteral("-gdb"),
                QStringLiteral("tcp:127.0.0.1:0")});
    QVERIFY(chip.waitForStarted());
    // The emulator chooses a free port; it serves one client and no probe, and says where it listens.
    chip.write("info chardev\n");
    QString console;
    const QRegularExpression listening(QStringLiteral("disconnected:tcp:127\\.0\\.0\\.1:(\\d+),"));
    QTRY_VERIFY_WITH_TIMEOUT((console += QString::fromLatin1(chip.readAllStandardOutput())).contains(listening),
                             LongWait);
    const quint16 port = listening.match(console).captured(1).toUShort();

    MemoryManager image;
    QString error;
    QVERIFY2(
        FirmwareFile::load(QStringLiteral("/usr/share/firmware-microbit-micropython/firmware.hex"), 0, &image, &error),
        qPrintable(error));
    // The emulator drops what a debugger writes to these registers, and says OK; a reset empties them, too.
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
