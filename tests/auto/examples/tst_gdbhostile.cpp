#include "GdbRig.h"

#include <GdbPacket.h>
#include <GdbRemoteDriver.h>
#include <MemoryManager.h>

#include <UniProgTest.h>

#include <QHash>
#include <QHostAddress>
#include <QNetworkProxy>
#include <QTcpServer>
#include <QTcpSocket>

#include <functional>

/// Servers that do what no server should: every operation ends, with a status that says why.
class tst_GdbHostile : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
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
};

namespace {

constexpr int ShortAnswerTimeout = 200; // ms; only where the answer never comes

using Status = GdbTarget::Status;

const QByteArray Garbage(5 * GdbPacket::MaximumSize, '\0');

} // namespace

void tst_GdbHostile::aHostileServerEndsInAStatus_data()
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

void tst_GdbHostile::aHostileServerEndsInAStatus()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const GdbServer::Then, then);
    QFETCH(const int, status);
    HostileServer hostile({bytes, then}, 1);
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), hostile.server.port());
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success));
    hostile.armed = true;
    if (status == Status::ServerSilent)
        driver.setAnswerTimeout(ShortAnswerTimeout);
    MemoryManager image = GdbRig::smallImage();
    QCOMPARE(driver.WriteTarget(&image, 0), status);
    hostile.armed = false;
    driver.setAnswerTimeout(GdbTarget::DefaultTimeout);
    // The end of the procedure goes the usual way, without waiting for a server that is in doubt.
    QCOMPARE(driver.ResetTarget(0),
             int(status == Status::ServerRefused || bytes == GdbServer::packet("T05").bytes ? Status::Success
                                                                                            : Status::ServerClosed));
    QCOMPARE(driver.DisconnectFromTarget(), int(Status::Success));
    QCOMPARE(driver.Disconnect(), int(Status::Success));
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success)); // and the next operation has a fresh start
}

void tst_GdbHostile::everyOperationSurvivesItsServer_data()
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

void tst_GdbHostile::everyOperationSurvivesItsServer()
{
    QFETCH(const QByteArray, operation);
    QFETCH(const int, goodCommands);
    QFETCH(const QByteArray, bytes);
    QFETCH(const GdbServer::Then, then);
    QFETCH(const int, status);
    MemoryManager image = GdbRig::smallImage();
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
        QCOMPARE(GdbRig::connectTo(driver), int(Status::Success));
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
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success));
}

void tst_GdbHostile::aMemoryMapIsNotTrusted_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("status");
    QTest::newRow("whole") << 'l' + GdbRig::MapWithFlash << int(Status::Success);
    QTest::newRow("of a target without flash") << QByteArray("l<memory-map/>") << int(Status::Success);
    QTest::newRow("none") << QByteArray("E01") << int(Status::Success);
    QTest::newRow("damaged") << 'l' + GdbRig::MapWithFlash.chopped(5) << int(Status::ServerUnintelligible);
    QTest::newRow("empty") << QByteArray("l") << int(Status::ServerUnintelligible);
    QTest::newRow("a piece of nothing") << QByteArray("m") << int(Status::ServerUnintelligible);
    QTest::newRow("pieces without an end") << QByteArray("m<!-- -->") << int(Status::ServerUnintelligible);
    QTest::newRow("large pieces without an end") << 'm' + QByteArray(4000, ' ') << int(Status::ServerUnintelligible);
    QTest::newRow("no piece") << QByteArray("x") << int(Status::ServerUnintelligible);
}

void tst_GdbHostile::aMemoryMapIsNotTrusted()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const int, status);
    GdbServer server([&](GdbServer &usual, const QByteArray &command) {
        if (command.startsWith("qSupported"))
            return GdbServer::packet("PacketSize=1000;qXfer:memory-map:read+");
        return command.startsWith("qXfer") ? GdbServer::packet(answer) : usual.answer(command);
    });
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(GdbRig::connectTo(driver), status);
}

void tst_GdbHostile::flashCommandsMayFail_data()
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

void tst_GdbHostile::flashCommandsMayFail()
{
    QFETCH(const QByteArray, failing);
    QFETCH(const QByteArray, answer);
    QFETCH(const int, status);
    GdbServer server([&](GdbServer &usual, const QByteArray &command) {
        if (command.startsWith("qSupported"))
            return GdbServer::packet("PacketSize=1000;qXfer:memory-map:read+");
        if (command.startsWith("qXfer"))
            return GdbServer::packet('l' + GdbRig::MapWithFlash);
        if (command.startsWith("vFlash"))
            return GdbServer::packet(command.startsWith(failing) ? answer : "OK");
        return usual.answer(command);
    });
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.port());
    QCOMPARE(GdbRig::connectTo(driver), int(Status::Success));
    MemoryManager image = GdbRig::smallImage();
    const int erased = driver.EraseTarget(&image);
    QCOMPARE(erased == Status::Success ? driver.WriteTarget(&image, 0) : erased, status);
    QCOMPARE(driver.ResetTarget(0), int(Status::Success)); // the connection is as good as before
}

/// The system takes the connection before anybody accepts it.
void tst_GdbHostile::aServerThatDoesNotAcceptIsSilent()
{
    QTcpServer server;
    server.setProxy(QNetworkProxy::NoProxy);
    QVERIFY(server.listen(QHostAddress::LocalHost));
    GdbRemoteDriver driver(QStringLiteral("127.0.0.1"), server.serverPort());
    driver.setAnswerTimeout(ShortAnswerTimeout);
    QCOMPARE(driver.Connect(OPERATION_TYPE_DEBUG), int(Status::ServerSilent));
    QCOMPARE(driver.ConnectToTarget(0), int(Status::ServerClosed));
}

void tst_GdbHostile::noServerIsNoDevice()
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

UNIPROG_TEST_MAIN(tst_GdbHostile)
#include "tst_gdbhostile.moc"
