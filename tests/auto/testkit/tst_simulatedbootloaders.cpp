#include "SimulatedTest.h"

#include <UniProgTest.h>

#include <QApplication>

#include <limits>

static constexpr int BlockSize = SimulatedProgrammer::BootloaderBlockSize;
static constexpr int SectorSize = SimulatedProgrammer::BootloaderSectorSize;
static constexpr int FlashSize = 480 * 1024;

/// The same questions to both bootloaders.
struct Loader
{
    SimulatedProgrammer &programmer;
    bool power;

    quint32 start() const
    {
        return power ? SimulatedProgrammer::PowerBootloaderStart : SimulatedProgrammer::BootloaderStart;
    }
    int enter()
    {
        return power ? programmer.PowerBootloaderActivate() : programmer.BootloaderEnter();
    }
    int erase(int sectors)
    {
        return power ? programmer.PowerBootloaderErase(unsigned(sectors))
                     : programmer.BootloaderErase(start(), sectors);
    }
    int write(quint32 address, int length, const char *data)
    {
        return power ? programmer.PowerBootloaderWrite(address, length, data)
                     : programmer.BootloaderWrite(address, length, data);
    }
    int write(qint64 offset, const QByteArray &data)
    {
        return write(quint32(start() + offset), int(data.size()), data.constData());
    }
    int verify(quint32 crc, int size)
    {
        if (!power)
            return programmer.BootloaderVerify(crc, size);
        bool mismatch = false;
        const int status = programmer.PowerBootloaderVerify(crc, size, &mismatch);
        return mismatch ? SimulatedProgrammer::VerifyError : status;
    }
    int leave()
    {
        return power ? programmer.PowerBootloaderReset() : programmer.BootloaderExit();
    }
    bool isActive() const
    {
        return power ? programmer.isPowerModuleInBootloader() : programmer.isInBootloader();
    }
    QByteArray firmware(int size) const
    {
        return power ? programmer.powerFirmware(size) : programmer.firmware(size);
    }
};

class tst_SimulatedBootloaders : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void crcIsThatOfZlib_data();
    void crcIsThatOfZlib();

    void anUpdateIsTakenOver_data();
    void anUpdateIsTakenOver();
    void aWrongCrcKeepsTheBootloaderActive_data();
    void aWrongCrcKeepsTheBootloaderActive();
    void nothingIsWrittenBeforeTheErase_data();
    void nothingIsWrittenBeforeTheErase();
    void blocksAreWholeAndAligned_data();
    void blocksAreWholeAndAligned();
    void aBlockIsWrittenOnErasedFlashOnly_data();
    void aBlockIsWrittenOnErasedFlashOnly();
    void erasesStayInsideTheFlash_data();
    void erasesStayInsideTheFlash();
    void sizesAreChecked_data();
    void sizesAreChecked();
    void bootloaderCommandsNeedTheBootloader_data();
    void bootloaderCommandsNeedTheBootloader();
    void theBootloaderOutlivesADisconnection_data();
    void theBootloaderOutlivesADisconnection();
    void anEmptyPowerImageIsAccepted();
    void theDeviceOffersOnlyItsBootloader();
    void thePowerModuleOffersOnlyItsBootloader();
    void theBootloaderTellsOfItself();

private:
    static void bothLoaders();
};

static QByteArray payload(int size)
{
    QByteArray data(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i)
        data[i] = char(i * 13 + i / 200 + 1);
    return data;
}

void tst_SimulatedBootloaders::bothLoaders()
{
    QTest::addColumn<bool>("power");
    QTest::newRow("device") << false;
    QTest::newRow("power module") << true;
}

void tst_SimulatedBootloaders::crcIsThatOfZlib_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<quint32>("crc");

    QTest::newRow("nothing") << QByteArray() << 0U;
    QTest::newRow("a zero") << QByteArray(1, '\0') << 0xD202EF8DU;
    QTest::newRow("the check value") << QByteArray("123456789") << 0xCBF43926U;
    QTest::newRow("high bytes") << QByteArray(4, '\xFF') << 0xFFFFFFFFU;
    QTest::newRow("text") << QByteArray("The quick brown fox jumps over the lazy dog") << 0x414FA339U;
}

void tst_SimulatedBootloaders::crcIsThatOfZlib()
{
    QFETCH(QByteArray, data);
    QFETCH(quint32, crc);
    QCOMPARE(SimulatedProgrammer::crc32(data), crc);
}

void tst_SimulatedBootloaders::anUpdateIsTakenOver_data()
{
    QTest::addColumn<bool>("power");
    QTest::addColumn<int>("size");
    for (const bool power : {false, true}) {
        const QString device = power ? QStringLiteral("power module") : QStringLiteral("device");
        // The last two: the padding of the last block lies outside of the erased sectors.
        for (const int size : {1, BlockSize, BlockSize + 1, 5000, SectorSize - 1, 2 * SectorSize - 1})
            QTest::newRow(qPrintable(QStringLiteral("%1, %2 bytes").arg(device).arg(size))) << power << size;
    }
}

void tst_SimulatedBootloaders::anUpdateIsTakenOver()
{
    QFETCH(bool, power);
    QFETCH(int, size);
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    Loader loader{programmer, power};
    QCOMPARE(loader.enter(), 0);
    QVERIFY(loader.isActive());
    QCOMPARE(loader.erase((size + SectorSize - 1) / SectorSize), 0);
    const QByteArray data = payload(size);
    for (int offset = 0; offset < size; offset += BlockSize)
        QCOMPARE(loader.write(offset, data.mid(offset, BlockSize).leftJustified(BlockSize, '\xFF')), 0);
    QCOMPARE(loader.firmware(size), data);
    QCOMPARE(loader.verify(SimulatedProgrammer::crc32(data), size), 0);
    QCOMPARE(loader.leave(), 0);
    QVERIFY(!loader.isActive());
    QCOMPARE(programmer.refusals(), QStringList());
}

void tst_SimulatedBootloaders::aWrongCrcKeepsTheBootloaderActive_data()
{
    bothLoaders();
}

void tst_SimulatedBootloaders::aWrongCrcKeepsTheBootloaderActive()
{
    QFETCH(bool, power);
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    Loader loader{programmer, power};
    const QByteArray data = payload(BlockSize);
    QCOMPARE(loader.enter(), 0);
    QCOMPARE(loader.erase(1), 0);
    QCOMPARE(loader.write(0, data), 0);
    QCOMPARE(loader.verify(SimulatedProgrammer::crc32(data) + 1, BlockSize), int(SimulatedProgrammer::VerifyError));
    QCOMPARE(loader.verify(SimulatedProgrammer::crc32(data), BlockSize - 1), int(SimulatedProgrammer::VerifyError));
    QCOMPARE(loader.leave(), power ? 0 : int(SimulatedProgrammer::FirmwareInvalid));
    QVERIFY(loader.isActive());

    // The second attempt repairs it.
    QCOMPARE(loader.enter(), 0);
    QCOMPARE(loader.erase(1), 0);
    QCOMPARE(loader.write(0, data), 0);
    QCOMPARE(loader.verify(SimulatedProgrammer::crc32(data), BlockSize), 0);
    QCOMPARE(loader.leave(), 0);
    QVERIFY(!loader.isActive());
}

void tst_SimulatedBootloaders::nothingIsWrittenBeforeTheErase_data()
{
    bothLoaders();
}

void tst_SimulatedBootloaders::nothingIsWrittenBeforeTheErase()
{
    QFETCH(bool, power);
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    Loader loader{programmer, power};
    const QByteArray before = loader.firmware(BlockSize);
    QCOMPARE(loader.enter(), 0);
    QCOMPARE(loader.write(0, payload(BlockSize)), int(SimulatedProgrammer::OutOfOrder));
    QCOMPARE(loader.firmware(BlockSize), before);

    // The erase of the last update does not count.
    QCOMPARE(loader.erase(0), 0);
    QCOMPARE(loader.leave(), 0);
    QCOMPARE(loader.enter(), 0);
    QCOMPARE(loader.write(0, payload(BlockSize)), int(SimulatedProgrammer::OutOfOrder));
    QCOMPARE(programmer.refusals().size(), 2);
}

void tst_SimulatedBootloaders::blocksAreWholeAndAligned_data()
{
    QTest::addColumn<bool>("power");
    QTest::addColumn<qint64>("offset");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("status");

    const int argument = SimulatedProgrammer::InvalidArgument;
    const int address = SimulatedProgrammer::AddressError;
    for (const bool power : {false, true}) {
        const char *device = power ? "power module" : "device";
        QTest::addRow("%s, empty", device) << power << qint64(0) << 0 << argument;
        QTest::addRow("%s, negative", device) << power << qint64(0) << -BlockSize << argument;
        QTest::addRow("%s, least", device) << power << qint64(0) << std::numeric_limits<int>::min() << argument;
        QTest::addRow("%s, short", device) << power << qint64(0) << BlockSize - 1 << argument;
        QTest::addRow("%s, long", device) << power << qint64(0) << BlockSize + 1 << argument;
        QTest::addRow("%s, huge", device) << power << qint64(0) << std::numeric_limits<int>::max() << argument;
        QTest::addRow("%s, one byte off", device) << power << qint64(1) << BlockSize << address;
        QTest::addRow("%s, before the flash", device) << power << qint64(-BlockSize) << BlockSize << address;
        QTest::addRow("%s, past the flash", device)
            << power << qint64(FlashSize / BlockSize * BlockSize) << BlockSize << address;
        QTest::addRow("%s, far off", device) << power << qint64(0x40000000) * BlockSize / 1024 << BlockSize << address;
    }
}

void tst_SimulatedBootloaders::blocksAreWholeAndAligned()
{
    QFETCH(bool, power);
    QFETCH(qint64, offset);
    QFETCH(int, length);
    QFETCH(int, status);
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    Loader loader{programmer, power};
    QCOMPARE(loader.enter(), 0);
    QCOMPARE(loader.erase(FlashSize / SectorSize), 0);
    const QByteArray data = payload(2 * BlockSize);
    QCOMPARE(loader.write(quint32(loader.start() + offset), length, data.constData()), status);
    QCOMPARE(loader.firmware(FlashSize), QByteArray(FlashSize, '\xFF'));
    QCOMPARE(loader.write(loader.start(), BlockSize, nullptr), int(SimulatedProgrammer::InvalidArgument));
    QCOMPARE(programmer.bytesWritten(), 0);
}

void tst_SimulatedBootloaders::aBlockIsWrittenOnErasedFlashOnly_data()
{
    bothLoaders();
}

void tst_SimulatedBootloaders::aBlockIsWrittenOnErasedFlashOnly()
{
    QFETCH(bool, power);
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    Loader loader{programmer, power};
    QCOMPARE(loader.enter(), 0);
    QCOMPARE(loader.erase(1), 0);
    const QByteArray first(BlockSize, '\x55');
    QCOMPARE(loader.write(0, first), 0);
    QCOMPARE(loader.write(0, first), 0);
    QCOMPARE(loader.write(0, QByteArray(BlockSize, '\xAA')), int(SimulatedProgrammer::NotErased));
    QCOMPARE(loader.firmware(BlockSize), first);

    // The fifth block reaches 864 bytes into the second sector, which was not erased.
    const int inside = SectorSize - 4 * BlockSize;
    QCOMPARE(loader.write(4 * BlockSize, QByteArray(BlockSize, '\x55')), int(SimulatedProgrammer::NotErased));
    QCOMPARE(loader.write(4 * BlockSize, QByteArray(inside, '\x55').leftJustified(BlockSize, '\xFF')), 0);
    QCOMPARE(loader.firmware(SectorSize + 1).right(inside + 1), QByteArray(inside, '\x55') + QByteArray(1, '\0'));
}

void tst_SimulatedBootloaders::erasesStayInsideTheFlash_data()
{
    bothLoaders();
}

void tst_SimulatedBootloaders::erasesStayInsideTheFlash()
{
    QFETCH(bool, power);
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    Loader loader{programmer, power};
    QCOMPARE(loader.enter(), 0);
    const QByteArray before = loader.firmware(FlashSize);
    const int wrong = SimulatedProgrammer::AddressError;
    QCOMPARE(loader.erase(FlashSize / SectorSize + 1), wrong);
    QCOMPARE(loader.erase(std::numeric_limits<int>::max()), wrong);
    QCOMPARE(loader.erase(-1), power ? wrong : int(SimulatedProgrammer::InvalidArgument));
    if (!power) {
        const quint32 start = loader.start();
        for (const quint32 address : {0U, start - SectorSize, start + 1, start + FlashSize, 0xFFFFF000U})
            QCOMPARE(programmer.BootloaderErase(address, 1), wrong);
        QCOMPARE(programmer.BootloaderErase(start + SectorSize, FlashSize / SectorSize), wrong);
    }
    QCOMPARE(loader.firmware(FlashSize), before);

    QCOMPARE(loader.erase(2), 0);
    QCOMPARE(programmer.sectorsErased(), 2);
    QCOMPARE(loader.firmware(FlashSize), QByteArray(2 * SectorSize, '\xFF') + before.mid(2 * SectorSize));
}

void tst_SimulatedBootloaders::sizesAreChecked_data()
{
    bothLoaders();
}

void tst_SimulatedBootloaders::sizesAreChecked()
{
    QFETCH(bool, power);
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    Loader loader{programmer, power};
    QCOMPARE(loader.enter(), 0);
    QCOMPARE(loader.verify(0, 0), 0);
    QCOMPARE(loader.verify(0, -1), int(SimulatedProgrammer::InvalidArgument));
    QCOMPARE(loader.verify(0, FlashSize + 1), int(SimulatedProgrammer::AddressError));
    QCOMPARE(loader.verify(0, std::numeric_limits<int>::max()), int(SimulatedProgrammer::AddressError));
    QCOMPARE(loader.verify(SimulatedProgrammer::crc32(loader.firmware(FlashSize)), FlashSize), 0);

    QCOMPARE(loader.firmware(-1), QByteArray());
    QCOMPARE(loader.firmware(std::numeric_limits<int>::max()).size(), FlashSize);
}

void tst_SimulatedBootloaders::bootloaderCommandsNeedTheBootloader_data()
{
    bothLoaders();
}

void tst_SimulatedBootloaders::bootloaderCommandsNeedTheBootloader()
{
    QFETCH(bool, power);
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    Loader loader{programmer, power};
    const int wrong = SimulatedProgrammer::OutOfOrder;
    QByteArray info;
    QCOMPARE(loader.erase(1), wrong);
    QCOMPARE(loader.write(0, payload(BlockSize)), wrong);
    QCOMPARE(loader.verify(0, 0), wrong);
    QCOMPARE(loader.leave(), wrong);
    QCOMPARE(power ? programmer.PowerBootloaderGetInfo() : programmer.BootloaderGetInfo(&info), wrong);
    QCOMPARE(programmer.refusals().size(), 5);
    QCOMPARE(programmer.refusals().constFirst(),
             power ? QStringLiteral("PowerBootloaderErase: the power module is not in its bootloader")
                   : QStringLiteral("BootloaderErase: the device is not in its bootloader"));
}

void tst_SimulatedBootloaders::theBootloaderOutlivesADisconnection_data()
{
    bothLoaders();
}

void tst_SimulatedBootloaders::theBootloaderOutlivesADisconnection()
{
    QFETCH(bool, power);
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    Loader loader{programmer, power};
    QCOMPARE(loader.enter(), 0);
    QCOMPARE(programmer.Disconnect(), 0);
    QCOMPARE(loader.erase(1), int(SimulatedProgrammer::NotConnected));
    QVERIFY(loader.isActive());
    QCOMPARE(programmer.Connect(OPERATION_TYPE_CONFIGURATION), 0);
    QCOMPARE(loader.erase(1), 0);
    programmer.loseLink();
    QVERIFY(loader.isActive());
    QCOMPARE(programmer.Connect(OPERATION_TYPE_CONFIGURATION), 0);
    QCOMPARE(loader.write(0, payload(BlockSize)), 0);
}

void tst_SimulatedBootloaders::anEmptyPowerImageIsAccepted()
{
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    bool mismatch = true;
    QCOMPARE(programmer.PowerBootloaderActivate(), 0);
    QCOMPARE(programmer.PowerBootloaderErase(0), 0);
    QCOMPARE(programmer.PowerBootloaderVerify(0, 0, &mismatch), 0);
    QVERIFY(!mismatch);
    QCOMPARE(programmer.PowerBootloaderVerify(1, 0, &mismatch), 0);
    QVERIFY(mismatch);
    QCOMPARE(programmer.PowerBootloaderReset(), 0);
    QVERIFY(!programmer.isPowerModuleInBootloader());
    QCOMPARE(programmer.sectorsErased(), 0);
}

void tst_SimulatedBootloaders::theDeviceOffersOnlyItsBootloader()
{
    SimulatedProgrammer programmer;
    connectAll(programmer);
    QCOMPARE(programmer.BootloaderEnter(), 0);
    QVERIFY(!programmer.isTargetConnected());
    QVERIFY(!programmer.isInterfaceTaken());
    QCOMPARE(programmer.BootloaderEnter(), 0);

    TConfiguration configuration;
    const int wrong = SimulatedProgrammer::OutOfOrder;
    QCOMPARE(programmer.SetTargetInterfaceInUse(true), wrong);
    QCOMPARE(programmer.GetDeviceConfiguration(&configuration), wrong);
    QCOMPARE(programmer.PowerSwitch(0, 1), wrong);
    QCOMPARE(programmer.PowerBootloaderActivate(), wrong);
    QCOMPARE(programmer.FindDevice(), wrong);

    QCOMPARE(programmer.BootloaderExit(), 0);
    QCOMPARE(programmer.FindDevice(), 0);
}

void tst_SimulatedBootloaders::thePowerModuleOffersOnlyItsBootloader()
{
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    QCOMPARE(programmer.PowerBootloaderActivate(), 0);
    QCOMPARE(programmer.PowerBootloaderActivate(), 0);
    QCOMPARE(programmer.PowerBootloaderGetInfo(), 0);
    TPowerInfo info;
    TPowerSupplyState supply;
    unsigned char byte = 0;
    const int wrong = SimulatedProgrammer::OutOfOrder;
    QCOMPARE(programmer.PowerSwitch(0, 1), wrong);
    QCOMPARE(programmer.PowerSetVoltage(0, 3.0F), wrong);
    QCOMPARE(programmer.PowerSetBatteryOptions(1), wrong);
    QCOMPARE(programmer.PowerGetReadings(&byte, 1), wrong);
    QCOMPARE(programmer.PowerGetInfo(&info), wrong);
    QCOMPARE(programmer.PowerSaveConfiguration(), wrong);
    QCOMPARE(programmer.PowerGetSupplyState(&supply), wrong);
    // The rest of the device works on.
    QCOMPARE(programmer.FindDevice(), 0);
    QCOMPARE(programmer.PowerBootloaderReset(), 0);
    QCOMPARE(programmer.PowerSwitch(0, 1), 0);
}

void tst_SimulatedBootloaders::theBootloaderTellsOfItself()
{
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    QCOMPARE(programmer.BootloaderEnter(), 0);
    QByteArray info;
    QCOMPARE(programmer.BootloaderGetInfo(&info), 0);
    QCOMPARE(info, QByteArray("\x02\x10\x00\x00\x00\x01\x00\x10", 8));
    programmer.setBootloaderInfo("other");
    QCOMPARE(programmer.BootloaderGetInfo(&info), 0);
    QCOMPARE(info, QByteArray("other"));
}

UNIPROG_TEST_MAIN(tst_SimulatedBootloaders)
#include "tst_simulatedbootloaders.moc"
