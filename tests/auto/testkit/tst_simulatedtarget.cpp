#include "SimulatedTest.h"

#include <UniProgTest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QSignalSpy>

#include <algorithm>
#include <utility>

using Operation = SimulatedProgrammer::Operation;
using Regions = QList<SimulatedProgrammer::FlashRegion>;

class tst_SimulatedTarget : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aNewTargetIsBlankAndRuns();
    void erasingWritingReadingAndVerifyingAgree();
    void aWholeReadGivesEveryRegion();
    void aWriteOnlyClearsBits();
    void aFailedWriteStopsAfterTheBlockThatWasNotErased();
    void onlyTouchedSectorsAreErased_data();
    void onlyTouchedSectorsAreErased();
    void theMassEraseLeavesNothing();
    void nothingReachesOutOfTheFlash_data();
    void nothingReachesOutOfTheFlash();
    void aWriteMayRunOverTouchingRegions();
    void verifyFindsOneWrongByte();
    void theBlankCheckFindsOneByte();
    void emptyImagesAreDoneAtOnce();
    void regionsAreChecked_data();
    void regionsAreChecked();
    void theChipIsDetectedByItsId();
    void aWrongChipIsLeftAlone_data();
    void aWrongChipIsLeftAlone();
    void halfAVoltIsNoSupply_data();
    void halfAVoltIsNoSupply();
    void theTargetIsHaltedAndRunsAgain();
    void progressRisesToAHundred_data();
    void progressRisesToAHundred();
    void progressKeepsItsDistance();
    void aMassEraseReportsNoProgress();
    void swoGivesItsStreamInPieces();
    void swoOutlivesTheConnectionToTheDevice();
    void swoEndsWithTheConnectionToTheTarget();
};

static QByteArray pattern(int size)
{
    QByteArray data(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i)
        data[i] = char(i * 7 + i / 256);
    return data;
}

void tst_SimulatedTarget::aNewTargetIsBlankAndRuns()
{
    const SimulatedProgrammer programmer;
    QVERIFY(programmer.isTargetRunning());
    const auto segments = programmer.flash().segments();
    QCOMPARE(segments.size(), 2);
    QCOMPARE(segments.at(0).address, 0U);
    QCOMPARE(segments.at(0).data, QByteArray(256 * 1024, '\xFF'));
    QCOMPARE(segments.at(1).address, 0x10001000U);
    QCOMPARE(segments.at(1).data, QByteArray(256, '\xFF'));
}

void tst_SimulatedTarget::erasingWritingReadingAndVerifyingAgree()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    // The shape of a real image: the program, and a few words in the page of settings.
    MemoryManager image = imageOf(0, pattern(240 * 1024 + 3));
    image.write(0x100010C0, pattern(12));

    QCOMPARE(programmer.EraseTargetMass(), 0);
    QCOMPARE(programmer.WriteTarget(&image, 0), 0);
    QCOMPARE(programmer.bytesWritten(), image.size());
    for (const MemoryManager::Segment &segment : image.segments())
        QCOMPARE(programmer.flash().read(segment.address, segment.data.size()), segment.data);

    bool verified = false;
    QCOMPARE(programmer.VerifyTarget(&image, &verified, 0), 0);
    QVERIFY(verified);

    MemoryManager read = imageOf(0, QByteArray(240 * 1024 + 3, 'x'));
    read.write(0x100010C0, QByteArray(12, 'x'));
    QCOMPARE(programmer.ReadTarget(&read), 0);
    QVERIFY(read == image);
    QCOMPARE(programmer.refusals(), QStringList());
}

void tst_SimulatedTarget::aWholeReadGivesEveryRegion()
{
    SimulatedProgrammer programmer;
    QVERIFY(programmer.setFlash(0x1234, "hello"));
    connectAll(programmer, 0);
    MemoryManager read;
    QCOMPARE(programmer.ReadTarget(&read), 0);
    QVERIFY(read == programmer.flash());
    QCOMPARE(read.read(0x1234, 5), QByteArray("hello"));
    QVERIFY(programmer.isTargetRunning());
}

void tst_SimulatedTarget::aWriteOnlyClearsBits()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    MemoryManager first = imageOf(0x100, "\x0F\xFF\x00");
    QCOMPARE(programmer.WriteTarget(&first, 0), 0);

    // Clearing further bits, and writing the same again, needs no erase.
    MemoryManager fewer = imageOf(0x100, QByteArray("\x05\xFE\x00", 3));
    QCOMPARE(programmer.WriteTarget(&fewer, 0), 0);
    QCOMPARE(programmer.WriteTarget(&fewer, 0), 0);

    MemoryManager other = imageOf(0x100, "\x3C\xFE");
    QCOMPARE(programmer.WriteTarget(&other, 0), int(SimulatedProgrammer::NotErased));
    QCOMPARE(programmer.flash().read(0x100, 3), QByteArray("\x04\xFE\x00", 3));
}

void tst_SimulatedTarget::aFailedWriteStopsAfterTheBlockThatWasNotErased()
{
    SimulatedProgrammer programmer;
    QVERIFY(programmer.setFlash(300, QByteArray(1, '\0')));
    connectAll(programmer);
    MemoryManager image = imageOf(0, QByteArray(1024, '\x55'));
    QCOMPARE(programmer.WriteTarget(&image, 0), int(SimulatedProgrammer::NotErased));
    QByteArray expected(512, '\x55');
    expected[300] = '\0';
    QCOMPARE(programmer.flash().read(0, 1024), expected + QByteArray(512, '\xFF'));
    QCOMPARE(programmer.bytesWritten(), 512);
}

void tst_SimulatedTarget::onlyTouchedSectorsAreErased_data()
{
    using Writes = QList<QPair<quint32, int>>;
    QTest::addColumn<Writes>("writes");
    QTest::addColumn<QList<quint32>>("sectors");

    QTest::newRow("one byte") << Writes{{0x800, 1}} << QList<quint32>{0x800};
    QTest::newRow("a whole sector") << Writes{{0x400, 0x400}} << QList<quint32>{0x400};
    QTest::newRow("two bytes across a boundary") << Writes{{0x7FF, 2}} << QList<quint32>{0x400, 0x800};
    QTest::newRow("two segments in one sector") << Writes{{0x10, 1}, {0x20, 1}} << QList<quint32>{0};
    QTest::newRow("both regions") << Writes{{0x3FFFF, 1}, {0x100010C0, 12}} << QList<quint32>{0x3FC00, 0x10001000};
    QTest::newRow("nothing") << Writes{} << QList<quint32>{};
}

void tst_SimulatedTarget::onlyTouchedSectorsAreErased()
{
    using Writes = QList<QPair<quint32, int>>;
    QFETCH(Writes, writes);
    QFETCH(QList<quint32>, sectors);
    SimulatedProgrammer programmer;
    const Regions regions = SimulatedProgrammer::defaultFlashRegions();
    MemoryManager expected;
    for (const auto &region : regions)
        expected.write(region.base, QByteArray(int(region.size), '\x11'));
    for (const auto &segment : expected.segments())
        QVERIFY(programmer.setFlash(segment.address, segment.data));
    for (const quint32 sector : std::as_const(sectors))
        expected.write(sector, QByteArray(sector < 0x10000000 ? 1024 : 256, '\xFF'));

    connectAll(programmer);
    MemoryManager image;
    for (const auto &[address, size] : std::as_const(writes))
        image.write(address, QByteArray(size, '\0'));
    QCOMPARE(programmer.EraseTarget(&image), 0);
    QVERIFY(programmer.flash() == expected);
    QCOMPARE(programmer.sectorsErased(), sectors.size());
}

void tst_SimulatedTarget::theMassEraseLeavesNothing()
{
    SimulatedProgrammer programmer;
    const MemoryManager blank = programmer.flash();
    QVERIFY(programmer.setFlash(0x3FFFF, "x"));
    QVERIFY(programmer.setFlash(0x10001000, "y"));
    connectAll(programmer);
    QCOMPARE(programmer.EraseTargetMass(), 0);
    QVERIFY(programmer.flash() == blank);
    QCOMPARE(programmer.sectorsErased(), 257);
}

void tst_SimulatedTarget::nothingReachesOutOfTheFlash_data()
{
    QTest::addColumn<quint32>("address");
    QTest::addColumn<int>("size");

    QTest::newRow("behind the end") << 0x40000U << 1;
    QTest::newRow("over the end") << 0x3FFFFU << 2;
    QTest::newRow("before the second region") << 0x10000FFFU << 2;
    QTest::newRow("the last address") << 0xFFFFFFFFU << 1;
}

void tst_SimulatedTarget::nothingReachesOutOfTheFlash()
{
    QFETCH(quint32, address);
    QFETCH(int, size);
    SimulatedProgrammer programmer;
    QVERIFY(!programmer.setFlash(address, QByteArray(size, '\0')));
    connectAll(programmer);
    const MemoryManager blank = programmer.flash();

    // The segment inside is left alone too.
    MemoryManager image = imageOf(0, "good");
    image.write(address, QByteArray(size, '\0'));
    const MemoryManager copy = image;
    bool verified = true;
    QCOMPARE(programmer.WriteTarget(&image, 0), int(SimulatedProgrammer::AddressError));
    QCOMPARE(programmer.EraseTarget(&image), int(SimulatedProgrammer::AddressError));
    QCOMPARE(programmer.ReadTarget(&image), int(SimulatedProgrammer::AddressError));
    QCOMPARE(programmer.VerifyTarget(&image, &verified, 0), int(SimulatedProgrammer::AddressError));
    QVERIFY(!verified);
    QVERIFY(image == copy);
    QVERIFY(programmer.flash() == blank);
}

void tst_SimulatedTarget::aWriteMayRunOverTouchingRegions()
{
    SimulatedProgrammer programmer;
    QVERIFY(programmer.setFlashRegions({{0x2000, 0x1000, 0x100}, {0x1000, 0x1000, 0x400}}));
    connectAll(programmer);
    MemoryManager image = imageOf(0x1F01, pattern(0x300));
    QCOMPARE(programmer.EraseTarget(&image), 0);
    QCOMPARE(programmer.sectorsErased(), 1 + 3);
    QCOMPARE(programmer.WriteTarget(&image, 0), 0);
    QCOMPARE(programmer.flash().segmentCount(), 1);
    QCOMPARE(programmer.flash().read(0x1F01, 0x300), pattern(0x300));
}

void tst_SimulatedTarget::verifyFindsOneWrongByte()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    MemoryManager image = imageOf(0, pattern(5000));
    QCOMPARE(programmer.WriteTarget(&image, 0), 0);
    for (const int offset : {0, 2500, 4999}) {
        const QByteArray right = pattern(5000).mid(offset, 1);
        QVERIFY(programmer.setFlash(quint32(offset), QByteArray(1, char(right.at(0) ^ 0x10))));
        bool verified = true;
        QCOMPARE(programmer.VerifyTarget(&image, &verified, 0), 0);
        QVERIFY(!verified);
        QVERIFY(programmer.setFlash(quint32(offset), right));
        QCOMPARE(programmer.VerifyTarget(&image, &verified, 0), 0);
        QVERIFY(verified);
    }
}

void tst_SimulatedTarget::theBlankCheckFindsOneByte()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    bool blank = false;
    QCOMPARE(programmer.CheckTargetBlank(&blank, false), 0);
    QVERIFY(blank);
    QVERIFY(programmer.setFlash(0x100010FF, "\xFE"));
    QCOMPARE(programmer.CheckTargetBlank(&blank, false), 0);
    QVERIFY(!blank);
}

void tst_SimulatedTarget::emptyImagesAreDoneAtOnce()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QSignalSpy progress(&programmer, &SimulatedProgrammer::SignalUpdateProgress);
    MemoryManager image;
    bool verified = false;
    QCOMPARE(programmer.EraseTarget(&image), 0);
    QCOMPARE(programmer.WriteTarget(&image, 0), 0);
    QCOMPARE(programmer.VerifyTarget(&image, &verified, 0), 0);
    QVERIFY(verified);
    QCOMPARE(progress.size(), 3);
    QCOMPARE(progress.last().first().toInt(), 100);
}

void tst_SimulatedTarget::regionsAreChecked_data()
{
    QTest::addColumn<Regions>("regions");
    QTest::addColumn<bool>("accepted");

    QTest::newRow("none") << Regions{} << true;
    QTest::newRow("one") << Regions{{0x08000000, 0x1000, 0x100}} << true;
    QTest::newRow("up to the last address") << Regions{{0xFFFFFF00, 0x100, 0x100}} << true;
    QTest::newRow("past the last address") << Regions{{0xFFFFFF00, 0x200, 0x100}} << false;
    constexpr quint32 Half = SimulatedProgrammer::LargestFlash / 2;
    QTest::newRow("the largest ones") << Regions{{0, Half, Half}, {0x80000000, Half, Half}} << true;
    QTest::newRow("too large together") << Regions{{0, Half, Half}, {0x80000000, Half, Half}, {Half, 4, 4}} << false;
    QTest::newRow("too large") << Regions{{0, 0x80000000, 0x80000000}} << false;
    QTest::newRow("no size") << Regions{{0, 0, 0x100}} << false;
    QTest::newRow("no sectors") << Regions{{0, 0x100, 0}} << false;
    QTest::newRow("half a sector") << Regions{{0, 0x180, 0x100}} << false;
    QTest::newRow("overlapping") << Regions{{0x1000, 0x200, 0x100}, {0x0F00, 0x200, 0x100}} << false;
}

void tst_SimulatedTarget::regionsAreChecked()
{
    QFETCH(Regions, regions);
    QFETCH(bool, accepted);
    SimulatedProgrammer programmer;
    const MemoryManager before = programmer.flash();
    QCOMPARE(programmer.setFlashRegions(regions), accepted);
    if (accepted)
        QCOMPARE(programmer.flash().segmentCount(), regions.size());
    else
        QVERIFY(programmer.flash() == before);
}

void tst_SimulatedTarget::theChipIsDetectedByItsId()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    bool detected = false;
    QCOMPARE(programmer.DetectTarget(&detected), 0);
    QVERIFY(detected);
    programmer.setSelectedChipId(42);
    QCOMPARE(programmer.DetectTarget(&detected), 0);
    QVERIFY(!detected);
    programmer.setChipId(42);
    QCOMPARE(programmer.DetectTarget(&detected), 0);
    QVERIFY(detected);
    programmer.setTargetPresent(false);
    QCOMPARE(programmer.DetectTarget(&detected), 0);
    QVERIFY(!detected);
}

void tst_SimulatedTarget::aWrongChipIsLeftAlone_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("another chip") << int(SimulatedProgrammer::ChipNotRecognised);
    QTest::newRow("another vendor") << int(SimulatedProgrammer::UnsupportedVendor);
    QTest::newRow("no chip") << int(SimulatedProgrammer::TargetNotResponding);
}

void tst_SimulatedTarget::aWrongChipIsLeftAlone()
{
    QFETCH(int, status);
    SimulatedProgrammer programmer;
    QVERIFY(programmer.setFlash(0, "keep me"));
    const MemoryManager before = programmer.flash();
    connectAll(programmer);
    if (status == SimulatedProgrammer::ChipNotRecognised)
        programmer.setSelectedChipId(1);
    else if (status == SimulatedProgrammer::UnsupportedVendor)
        programmer.setVendorSupported(false);
    else
        programmer.setTargetPresent(false);

    MemoryManager image = imageOf(0, "other");
    const MemoryManager copy = image;
    bool flag = true;
    QCOMPARE(programmer.EraseTargetMass(), status);
    QCOMPARE(programmer.EraseTarget(&image), status);
    QCOMPARE(programmer.WriteTarget(&image, 0), status);
    QCOMPARE(programmer.ReadTarget(&image), status);
    QCOMPARE(programmer.VerifyTarget(&image, &flag, 0), status);
    QVERIFY(!flag);
    flag = true;
    QCOMPARE(programmer.CheckTargetBlank(&flag, false), status);
    QVERIFY(!flag);
    QVERIFY(image == copy);
    QVERIFY(programmer.flash() == before);
}

void tst_SimulatedTarget::halfAVoltIsNoSupply_data()
{
    QTest::addColumn<float>("external");
    QTest::addColumn<int>("status");
    QTest::newRow("off") << 0.0F << int(SimulatedProgrammer::WrongVoltage);
    QTest::newRow("half a volt") << 0.5F << int(SimulatedProgrammer::WrongVoltage);
    QTest::newRow("three volts") << 3.0F << 0;
    QTest::newRow("five volts") << 5.0F << int(SimulatedProgrammer::WrongVoltage);
}

void tst_SimulatedTarget::halfAVoltIsNoSupply()
{
    QFETCH(float, external);
    QFETCH(int, status);
    SimulatedProgrammer programmer;
    programmer.setTimeScale(0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
    QCOMPARE(programmer.PowerSwitch(SimulatedProgrammer::SupplyChannel, 0), 0);
    programmer.setExternalSupply(external);
    QCOMPARE(programmer.SetTargetInterfaceInUse(true), 0);
    QCOMPARE(programmer.SetTargetClock(), 0);
    QCOMPARE(programmer.ConnectToTarget(1), status);
    QCOMPARE(programmer.isTargetConnected(), status == 0);
}

void tst_SimulatedTarget::theTargetIsHaltedAndRunsAgain()
{
    SimulatedProgrammer programmer;
    connectAll(programmer, 1);
    QVERIFY(!programmer.isTargetRunning());
    QCOMPARE(programmer.ResetTarget(0), 0);
    QVERIFY(programmer.isTargetRunning());

    MemoryManager image;
    bool flag = false;
    QCOMPARE(programmer.VerifyTarget(&image, &flag, 1), 0);
    QCOMPARE(programmer.CheckTargetBlank(&flag, true), 0);
    QVERIFY(programmer.isTargetRunning());
    QCOMPARE(programmer.VerifyTarget(&image, &flag, 0), 0);
    QVERIFY(!programmer.isTargetRunning());
    QCOMPARE(programmer.ResetTarget(0), 0);
    QCOMPARE(programmer.CheckTargetBlank(&flag, false), 0);
    QVERIFY(!programmer.isTargetRunning());
    QCOMPARE(programmer.ResetTarget(0), 0);
    QCOMPARE(programmer.WriteTarget(&image, 0), 0);
    QVERIFY(!programmer.isTargetRunning());

    const QSharedPointer<TargetDescriptor> descriptor = programmer.GetTargetDescriptor();
    descriptor->getConnectionOptions()->setIntValue(TargetOptionsConnection::HaltAfterReset, 1);
    QCOMPARE(programmer.ResetTarget(0), 0);
    QVERIFY(!programmer.isTargetRunning());
    programmer.setTargetDescriptor({});
    QVERIFY(!programmer.GetTargetDescriptor());
    QCOMPARE(programmer.ResetTarget(0), 0);
    QVERIFY(programmer.isTargetRunning());
    programmer.setTargetPresent(false);
    QCOMPARE(programmer.ResetTarget(0), int(SimulatedProgrammer::TargetNotResponding));
}

void tst_SimulatedTarget::progressRisesToAHundred_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QList<int>>("percents");

    QTest::newRow("one block") << 1 << QList<int>{0, 100};
    QTest::newRow("four blocks") << 1024 << QList<int>{0, 25, 50, 75, 100};
    QTest::newRow("three blocks, the last one short") << 513 << QList<int>{0, 49, 99, 100};
    QList<int> all;
    for (int percent = 0; percent <= 100; ++percent)
        all.append(percent);
    QTest::newRow("more than a hundred blocks") << 100 * 1024 << all;
}

void tst_SimulatedTarget::progressRisesToAHundred()
{
    QFETCH(int, size);
    QFETCH(QList<int>, percents);
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QList<int> seen;
    connect(&programmer, &SimulatedProgrammer::SignalUpdateProgress, this, [&](int percent) { seen.append(percent); });
    MemoryManager image = imageOf(0, pattern(size));
    bool verified = false;

    QCOMPARE(programmer.WriteTarget(&image, 0), 0);
    QCOMPARE(std::exchange(seen, {}), percents);
    QCOMPARE(programmer.VerifyTarget(&image, &verified, 0), 0);
    QCOMPARE(std::exchange(seen, {}), percents);
    QCOMPARE(programmer.ReadTarget(&image), 0);
    QCOMPARE(std::exchange(seen, {}), percents);

    QCOMPARE(programmer.EraseTarget(&image), 0);
    QCOMPARE(seen.constFirst(), 0);
    QCOMPARE(seen.constLast(), 100);
    QVERIFY(std::is_sorted(seen.cbegin(), seen.cend(), std::less_equal<int>()));
}

void tst_SimulatedTarget::progressKeepsItsDistance()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    programmer.setTimeScale(0.5);
    QList<QPair<int, qint64>> seen;
    QElapsedTimer clock;
    clock.start();
    connect(&programmer, &SimulatedProgrammer::SignalUpdateProgress, this, [&](int percent) {
        seen.append({percent, clock.elapsed()});
    });
    MemoryManager image = imageOf(0, pattern(100 * 1024));
    QCOMPARE(programmer.WriteTarget(&image, 0), 0);
    QCOMPARE(seen.constFirst().first, 0);
    QCOMPARE(seen.constLast().first, 100);
    QVERIFY(seen.size() < 100);
    for (qsizetype i = 1; i + 1 < seen.size(); ++i) {
        QVERIFY(seen.at(i).first > seen.at(i - 1).first);
        QVERIFY(seen.at(i).second - seen.at(i - 1).second >= SimulatedProgrammer::ProgressIntervalMs - 1);
    }
}

void tst_SimulatedTarget::aMassEraseReportsNoProgress()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QSignalSpy progress(&programmer, &SimulatedProgrammer::SignalUpdateProgress);
    QCOMPARE(programmer.EraseTargetMass(), 0);
    QCOMPARE(progress.size(), 0);
}

void tst_SimulatedTarget::swoGivesItsStreamInPieces()
{
    SimulatedProgrammer programmer;
    connectAll(programmer, 0);
    unsigned char buffer[10];
    unsigned short size = sizeof buffer;
    QCOMPARE(programmer.SwoGetData(buffer, &size), int(SimulatedProgrammer::OutOfOrder));

    programmer.setSwoStream("abcd");
    QCOMPARE(programmer.SwoEnable(0), 0);
    QCOMPARE(programmer.SwoGetData(buffer, &size), 0);
    QCOMPARE(QByteArray(reinterpret_cast<char *>(buffer), size), QByteArray("abcdabcdab"));
    size = 3;
    QCOMPARE(programmer.SwoGetData(buffer, &size), 0);
    QCOMPARE(QByteArray(reinterpret_cast<char *>(buffer), size), QByteArray("cda"));

    programmer.setSwoStream("once", false);
    size = 3;
    QCOMPARE(programmer.SwoGetData(buffer, &size), 0);
    QCOMPARE(QByteArray(reinterpret_cast<char *>(buffer), size), QByteArray("onc"));
    size = 3;
    QCOMPARE(programmer.SwoGetData(buffer, &size), 0);
    QCOMPARE(QByteArray(reinterpret_cast<char *>(buffer), size), QByteArray("e"));
    size = 3;
    QCOMPARE(programmer.SwoGetData(buffer, &size), 0);
    QCOMPARE(size, 0);

    programmer.setSwoStream({});
    size = 3;
    QCOMPARE(programmer.SwoGetData(buffer, &size), 0);
    QCOMPARE(size, 0);
    QCOMPARE(programmer.SwoGetData(nullptr, &size), 0);
}

void tst_SimulatedTarget::swoOutlivesTheConnectionToTheDevice()
{
    SimulatedProgrammer programmer;
    connectAll(programmer, 0);
    QCOMPARE(programmer.SwoEnable(0), 0);
    QCOMPARE(programmer.Disconnect(), 0);
    unsigned char buffer[4];
    unsigned short size = sizeof buffer;
    QCOMPARE(programmer.SwoGetData(buffer, &size), int(SimulatedProgrammer::NotConnected));
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
    QCOMPARE(programmer.SwoGetData(buffer, &size), 0);
    QCOMPARE(size, 4);
}

void tst_SimulatedTarget::swoEndsWithTheConnectionToTheTarget()
{
    unsigned char buffer[4];
    unsigned short size = sizeof buffer;
    for (const bool release : {false, true}) {
        SimulatedProgrammer programmer;
        connectAll(programmer, 0);
        QCOMPARE(programmer.SwoEnable(0), 0);
        QCOMPARE(release ? programmer.SetTargetInterfaceInUse(false) : programmer.DisconnectFromTarget(), 0);
        QVERIFY(!programmer.isTargetConnected());
        QCOMPARE(programmer.SwoGetData(buffer, &size), int(SimulatedProgrammer::OutOfOrder));
    }
}

UNIPROG_TEST_MAIN(tst_SimulatedTarget)

#include "tst_simulatedtarget.moc"
