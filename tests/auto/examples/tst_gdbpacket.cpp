#include "GdbRig.h"

#include <GdbMemoryMap.h>
#include <GdbPacket.h>

#include <UniProgTest.h>

#include <algorithm>

/// Packets and memory maps, without a server.
class tst_GdbPacket : public UniProgTest
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
};

namespace {

QByteArray mapOf(const char *start, const char *length, const char *blockSize)
{
    return QByteArrayLiteral("<memory-map><memory type=\"flash\" start=\"") + start + "\" length=\"" + length
        + "\"><property name=\"blocksize\">" + blockSize + "</property></memory></memory-map>";
}

} // namespace

void tst_GdbPacket::packetsHaveAChecksum()
{
    QCOMPARE(GdbPacket::frame("OK"), QByteArray("$OK#9a"));
    QCOMPARE(GdbPacket::frame(""), QByteArray("$#00"));
    const QByteArray special("a$#}*z");
    QCOMPARE(GdbPacket::escape(special), QByteArray("a}\x04}\x03}]}\nz"));
    QByteArray back;
    QVERIFY(GdbPacket::expand(GdbPacket::escape(special), &back));
    QCOMPARE(back, special);
}

void tst_GdbPacket::answersAreExpanded_data()
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

void tst_GdbPacket::answersAreExpanded()
{
    QFETCH(const QByteArray, wire);
    QFETCH(const bool, valid);
    QByteArray body;
    QCOMPARE(GdbPacket::expand(wire, &body), valid);
    if (valid)
        QTEST(body, "body");
}

void tst_GdbPacket::anAnswerNeverGrowsPastItsLimit()
{
    QByteArray body;
    QVERIFY(!GdbPacket::expand('0' + QByteArray("*~").repeated(GdbPacket::MaximumSize / 3), &body));
    QVERIFY(body.size() < 2 * GdbPacket::MaximumSize);
}

void tst_GdbPacket::bytesOfAServerAreSorted_data()
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
void tst_GdbPacket::bytesOfAServerAreSorted()
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

void tst_GdbPacket::memoryMapsAreRead_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<int>("regions"); // -1: not believed
    QTest::newRow("no flash") << QByteArray("<memory-map><memory type=\"ram\" start=\"0\" length=\"1\"/></memory-map>")
                              << 0;
    QTest::newRow("flash and memory") << GdbRig::MapWithFlash << 1;
    QTest::newRow("empty") << QByteArray() << -1;
    QTest::newRow("cut off") << GdbRig::MapWithFlash.chopped(20) << -1;
    QTest::newRow("no XML") << QByteArray("garbage") << -1;
    QTest::newRow("no sectors") << mapOf("0", "0x1000", "0") << -1;
    QTest::newRow("sectors that do not fit") << mapOf("0", "0x1000", "0x300") << -1;
    QTest::newRow("past the end") << mapOf("0xFFFFFC00", "0x800", "0x400") << -1;
    QTest::newRow("up to the end") << mapOf("0xFFFFFC00", "0x400", "0x400") << 1;
    QTest::newRow("too large") << mapOf("0", "0x10000000", "0x1000") << -1;
    QTest::newRow("too many sectors") << mapOf("0", "0x4000000", "1") << -1;
    QTest::newRow("no start") << mapOf("x", "0x1000", "0x400") << -1;
}

void tst_GdbPacket::memoryMapsAreRead()
{
    QFETCH(const QByteArray, xml);
    QFETCH(const int, regions);
    QList<GdbFlashRegion> found{{1, 2, 3}};
    QCOMPARE(GdbMemoryMap::parse(xml, &found), regions >= 0);
    QCOMPARE(found.size(), qsizetype(std::max(regions, 0)));
}

UNIPROG_TEST_MAIN(tst_GdbPacket)
#include "tst_gdbpacket.moc"
