#include <MemoryManager.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QRandomGenerator>

#include <map>

using Segments = QList<QPair<quint32, QByteArray>>;

class tst_MemoryManager : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aNewImageIsEmpty();
    void writesJoinAndOverwrite_data();
    void writesJoinAndOverwrite();
    void readsFillTheGaps();
    void nothingReachesPastTheAddressSpace();
    void removingCutsSegments_data();
    void removingCutsSegments();
    void copiesAreIndependent();
    void behavesLikeAMapOfBytes();
};

static Segments segmentsOf(const MemoryManager &memory)
{
    Segments result;
    const auto segments = memory.segments();
    for (const MemoryManager::Segment &segment : segments)
        result.append({segment.address, segment.data});
    return result;
}

void tst_MemoryManager::aNewImageIsEmpty()
{
    const MemoryManager memory;
    QVERIFY(memory.isEmpty());
    QCOMPARE(memory.size(), 0);
    QCOMPARE(memory.segmentCount(), 0);
    QCOMPARE(memory.firstAddress(), 0U);
    QCOMPARE(memory.lastAddress(), 0U);
    QVERIFY(!memory.contains(0));
    QVERIFY(memory.contains(0, 0));
    QVERIFY(memory.contains(0, -1));
    QCOMPARE(memory.read(0, 2), QByteArray("\xFF\xFF"));
    QCOMPARE(memory.read(0, -1), QByteArray());
}

void tst_MemoryManager::writesJoinAndOverwrite_data()
{
    QTest::addColumn<Segments>("writes");
    QTest::addColumn<Segments>("expected");

    QTest::newRow("one") << Segments{{0x100, "abc"}} << Segments{{0x100, "abc"}};
    QTest::newRow("empty data") << Segments{{0x100, ""}} << Segments{};
    QTest::newRow("empty data past the start") << Segments{{0xFFFFFFFF, ""}} << Segments{};
    QTest::newRow("apart") << Segments{{0x100, "abc"}, {0x104, "d"}} << Segments{{0x100, "abc"}, {0x104, "d"}};
    QTest::newRow("touching behind") << Segments{{0x100, "abc"}, {0x103, "d"}} << Segments{{0x100, "abcd"}};
    QTest::newRow("touching before") << Segments{{0x103, "d"}, {0x100, "abc"}} << Segments{{0x100, "abcd"}};
    QTest::newRow("bridging") << Segments{{0, "a"}, {2, "c"}, {1, "b"}} << Segments{{0, "abc"}};
    QTest::newRow("overwriting inside") << Segments{{0, "abcdef"}, {2, "XY"}} << Segments{{0, "abXYef"}};
    QTest::newRow("overwriting the tail") << Segments{{0, "abc"}, {2, "XYZ"}} << Segments{{0, "abXYZ"}};
    QTest::newRow("overwriting the head") << Segments{{2, "cde"}, {0, "XYZ"}} << Segments{{0, "XYZde"}};
    QTest::newRow("swallowing") << Segments{{2, "c"}, {4, "e"}, {0, "ABCDEF"}} << Segments{{0, "ABCDEF"}};
    QTest::newRow("joining several") << Segments{{0, "ab"}, {4, "ef"}, {8, "ij"}, {1, "XXXXXXX"}}
                                     << Segments{{0, "aXXXXXXXij"}};
    QTest::newRow("the last byte") << Segments{{0xFFFFFFFF, "z"}, {0xFFFFFFFE, "y"}} << Segments{{0xFFFFFFFE, "yz"}};
}

void tst_MemoryManager::writesJoinAndOverwrite()
{
    QFETCH(Segments, writes);
    QFETCH(Segments, expected);
    MemoryManager memory;
    for (const auto &[address, data] : std::as_const(writes))
        QVERIFY(memory.write(address, data));
    QCOMPARE(segmentsOf(memory), expected);
    QCOMPARE(memory.segmentCount(), int(expected.size()));
    if (!expected.isEmpty()) {
        QCOMPARE(memory.firstAddress(), expected.first().first);
        QCOMPARE(memory.lastAddress(), quint32(expected.last().first + expected.last().second.size() - 1));
    }
}

void tst_MemoryManager::readsFillTheGaps()
{
    MemoryManager memory;
    memory.write(0x10, "ab");
    memory.write(0x14, "cd");
    QCOMPARE(memory.read(0x0F, 8, '.'), QByteArray(".ab..cd."));
    QCOMPARE(memory.read(0x11, 1), QByteArray("b"));
    QCOMPARE(memory.read(0x11, 4),
             QByteArray("b\xFF\xFF"
                        "c"));
    QCOMPARE(memory.read(0xFFFFFFFE, 4, '.'), QByteArray("...."));
    QVERIFY(memory.contains(0x10, 2));
    QVERIFY(!memory.contains(0x10, 3));
    QVERIFY(!memory.contains(0x0F));
    QVERIFY(memory.contains(0x15));
    QVERIFY(!memory.contains(0x16));
    QCOMPARE(memory.size(), 4);
}

void tst_MemoryManager::nothingReachesPastTheAddressSpace()
{
    MemoryManager memory;
    QVERIFY(memory.write(0xFFFFFFFE, "ab"));
    QVERIFY(!memory.write(0xFFFFFFFF, "xy"));
    QCOMPARE(segmentsOf(memory), (Segments{{0xFFFFFFFE, "ab"}}));
    QCOMPARE(memory.lastAddress(), 0xFFFFFFFF);
    QVERIFY(memory.contains(0xFFFFFFFF));
    QVERIFY(!memory.contains(0xFFFFFFFF, 2));
    QCOMPARE(memory.read(0xFFFFFFFF, 3, '.'), QByteArray("b.."));
    memory.remove(0xFFFFFFFF, 100);
    QCOMPARE(segmentsOf(memory), (Segments{{0xFFFFFFFE, "a"}}));
}

void tst_MemoryManager::removingCutsSegments_data()
{
    QTest::addColumn<quint32>("address");
    QTest::addColumn<int>("size");
    QTest::addColumn<Segments>("expected");

    const Segments whole{{0x10, "abcd"}, {0x20, "ef"}};
    QTest::newRow("nothing") << 0x10U << 0 << whole;
    QTest::newRow("negative") << 0x10U << -5 << whole;
    QTest::newRow("before") << 0x00U << 0x10 << whole;
    QTest::newRow("between") << 0x14U << 0x0C << whole;
    QTest::newRow("behind") << 0x22U << 100 << whole;
    QTest::newRow("head") << 0x0FU << 2 << Segments{{0x11, "bcd"}, {0x20, "ef"}};
    QTest::newRow("tail") << 0x13U << 2 << Segments{{0x10, "abc"}, {0x20, "ef"}};
    QTest::newRow("middle") << 0x11U << 2 << Segments{{0x10, "a"}, {0x13, "d"}, {0x20, "ef"}};
    QTest::newRow("one whole") << 0x10U << 4 << Segments{{0x20, "ef"}};
    QTest::newRow("across") << 0x12U << 0x0F << Segments{{0x10, "ab"}, {0x21, "f"}};
    QTest::newRow("all") << 0x00U << 0x100 << Segments{};
}

void tst_MemoryManager::removingCutsSegments()
{
    QFETCH(quint32, address);
    QFETCH(int, size);
    QFETCH(Segments, expected);
    MemoryManager memory;
    memory.write(0x10, "abcd");
    memory.write(0x20, "ef");
    memory.remove(address, size);
    QCOMPARE(segmentsOf(memory), expected);
}

void tst_MemoryManager::copiesAreIndependent()
{
    MemoryManager memory;
    memory.write(0, "abc");
    MemoryManager copy(memory);
    QVERIFY(copy == memory);
    copy.write(1, "X");
    QVERIFY(copy != memory);
    QCOMPARE(memory.read(0, 3), QByteArray("abc"));
    memory = copy;
    QVERIFY(copy == memory);
    const MemoryManager moved(std::move(copy));
    QVERIFY(moved == memory);
    memory.clear();
    QVERIFY(memory.isEmpty());
}

void tst_MemoryManager::behavesLikeAMapOfBytes()
{
    QRandomGenerator random(20'260'101);
    MemoryManager memory;
    std::map<quint32, char> model;
    constexpr quint32 Space = 256;
    for (int step = 0; step < 20'000; ++step) {
        const quint32 address = random.bounded(Space);
        const int size = random.bounded(24);
        if (random.bounded(3) != 0) {
            const QByteArray data(size, char('a' + random.bounded(26)));
            QVERIFY(memory.write(address, data));
            for (int i = 0; i < size; ++i)
                model[address + quint32(i)] = data.at(i);
        } else {
            memory.remove(address, size);
            for (int i = 0; i < size; ++i)
                model.erase(address + quint32(i));
        }
        QCOMPARE(memory.size(), qint64(model.size()));
        const QByteArray bytes = memory.read(0, Space + 32, '\0');
        int segments = 0;
        for (quint32 at = 0; at < quint32(bytes.size()); ++at) {
            const auto byte = model.find(at);
            QCOMPARE(bytes.at(at), byte == model.end() ? '\0' : byte->second);
            segments += byte != model.end() && (at == 0 || model.count(at - 1) == 0) ? 1 : 0;
        }
        QCOMPARE(memory.segmentCount(), segments);
    }
}

UNIPROG_TEST_MAIN(tst_MemoryManager)
#include "tst_memorymanager.moc"
