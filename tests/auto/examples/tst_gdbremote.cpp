#include "GdbRig.h"

#include <GdbPacket.h>
#include <GdbRemoteDriver.h>
#include <MemoryManager.h>
#include <UtilsUniProgThread.h>

#include <UniProgTest.h>

#include <QSignalSpy>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>

/// Drives a target behind a GDB server that does as a test says.
class tst_GdbRemote : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
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
    void aDriverServesOneThreadAfterAnother();
    void proceduresOfTheLibraryFollowEachOther();
};

namespace {

constexpr int LongWait = 60000; // ms

using Status = GdbTarget::Status;

/// How many commands of the server started with @p prefix.
int countOf(const GdbServer &server, const QByteArray &prefix)
{
    const QByteArrayList commands = server.commands();
    return int(std::count_if(commands.cbegin(), commands.cend(),
                             [&](const QByteArray &command) { return command.startsWith(prefix); }));
}

} // namespace

void tst_GdbRemote::anImageIsErasedWrittenVerifiedAndRead()
{
    GdbServer server;
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success));
    bool flag = false;
    QCOMPARE(driver.DetectTarget(&flag), int(Status::Success));
    QVERIFY(flag);
    QCOMPARE(driver.EraseTargetMass(), int(Status::Success));
    QCOMPARE(driver.CheckTargetBlank(&flag, false), int(Status::Success));
    QVERIFY(flag);

    MemoryManager image = GdbRig::smallImage();
    QCOMPARE(driver.WriteTarget(&image, 0), int(Status::Success));
    QCOMPARE(driver.VerifyTarget(&image, &flag, 0), int(Status::Success));
    QVERIFY(flag);
    QCOMPARE(driver.CheckTargetBlank(&flag, false), int(Status::Success));
    QVERIFY(!flag);
    MemoryManager whole;
    QCOMPARE(driver.ReadTarget(&whole), int(Status::Success));
    QCOMPARE(whole.size(), qint64(GdbServer::FlashSize + GdbServer::PageSize));
    QCOMPARE(whole.read(GdbServer::PageSize, GdbRig::CodeSize), image.read(GdbServer::PageSize, GdbRig::CodeSize));
    QCOMPARE(driver.ResetTarget(0), int(Status::Success));
    QCOMPARE(driver.DisconnectFromTarget(), int(Status::Success));
    QCOMPARE(driver.Disconnect(), int(Status::Success));
}

void tst_GdbRemote::onlyTheSectorsOfTheImageAreErased()
{
    GdbServer server;
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success));
    MemoryManager image = GdbRig::smallImage();
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
            return GdbServer::packet('m' + GdbRig::MapWithFlash.left(100));
        if (command.startsWith("qXfer:memory-map:read::"))
            return GdbServer::packet('l' + GdbRig::MapWithFlash.mid(100));
        if (command.startsWith("vFlash"))
            return GdbServer::packet("OK");
        return usual.answer(command);
    });
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success));
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
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success));
    MemoryManager image = GdbRig::smallImage();
    bool verified = true;
    QCOMPARE(driver.VerifyTarget(&image, &verified, 0), int(Status::Success));
    QVERIFY(!verified);
}

void tst_GdbRemote::progressRisesToTheEnd()
{
    GdbServer server;
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success));
    QSignalSpy progress(&driver, &GdbRemoteDriver::SignalUpdateProgress);
    MemoryManager image = GdbRig::smallImage();
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
    MemoryManager image = GdbRig::smallImage();
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
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success));
    talkative.armed = true;
    MemoryManager image = GdbRig::smallImage();
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
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success));
    MemoryManager image = GdbRig::smallImage();
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
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success));
    MemoryManager image = GdbRig::smallImage();
    QCOMPARE(driver.WriteTarget(&image, 0), int(Status::Success));
    QCOMPARE(server.acknowledgements(), qsizetype(2)); // of the features and of the agreement
    driver.Disconnect();
    agreed = false;
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success)); // where everything is acknowledged again, at first
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
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success));
    MemoryManager image = GdbRig::smallImage();
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
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success));
    QCOMPARE(driver.ResetTarget(0), int(Status::Success));
    bool flag = false;
    QCOMPARE(driver.DetectTarget(&flag), int(Status::Success));
    QVERIFY(flag);
    QCOMPARE(driver.DisconnectFromTarget(), int(Status::Success));
    const QByteArrayList commands = server.commands();
    QCOMPARE(commands.mid(commands.size() - 4), QByteArrayList({"c", GdbServer::Interrupt, "me000ed00,4", "c"}));
}

/// Also after a failure, which nobody disconnects.
void tst_GdbRemote::aDriverServesOneThreadAfterAnother()
{
    std::atomic<bool> mapIsBad{true};
    GdbServer server([&](GdbServer &usual, const QByteArray &command) {
        if (command.startsWith("qSupported"))
            return GdbServer::packet("qXfer:memory-map:read+");
        if (command.startsWith("qXfer"))
            return GdbServer::packet(mapIsBad ? "x" : 'l' + GdbRig::MapWithFlash);
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
            status = GdbRig::connectTo(driver);
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

UNIPROG_TEST_MAIN(tst_GdbRemote)
#include "tst_gdbremote.moc"
