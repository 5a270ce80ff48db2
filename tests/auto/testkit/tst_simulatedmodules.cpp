#include "SimulatedTest.h"

#include <UniProgTest.h>

#include <QApplication>
#include <QtEndian>

#include <limits>

static constexpr int BlockSize = SimulatedProgrammer::BootloaderBlockSize;
static constexpr int SectorSize = SimulatedProgrammer::BootloaderSectorSize;
static constexpr int FlashSize = 480 * 1024;
static constexpr int Supply = SimulatedProgrammer::SupplyChannel;

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

class tst_SimulatedModules : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void crcIsThatOfZlib_data();
    void crcIsThatOfZlib();

    void channelsAreSwitchedAndSet();
    void thereAreSixteenChannels();
    void voltagesHaveLimits_data();
    void voltagesHaveLimits();
    void theSupplyPinIsMeasured();
    void anExternalSupplyIsNotFoughtAgainst();
    void readingsFillTheBuffer_data();
    void readingsFillTheBuffer();
    void thePowerModuleTellsOfItself();
    void theSavedConfigurationComesBackWithAReset();

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

static void connectDevice(SimulatedProgrammer &programmer)
{
    programmer.setTimeScale(0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_CONFIGURATION), 0);
}

void tst_SimulatedModules::bothLoaders()
{
    QTest::addColumn<bool>("power");
    QTest::newRow("device") << false;
    QTest::newRow("power module") << true;
}

void tst_SimulatedModules::crcIsThatOfZlib_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<quint32>("crc");

    QTest::newRow("nothing") << QByteArray() << 0U;
    QTest::newRow("a zero") << QByteArray(1, '\0') << 0xD202EF8DU;
    QTest::newRow("the check value") << QByteArray("123456789") << 0xCBF43926U;
    QTest::newRow("high bytes") << QByteArray(4, '\xFF') << 0xFFFFFFFFU;
    QTest::newRow("text") << QByteArray("The quick brown fox jumps over the lazy dog") << 0x414FA339U;
}

void tst_SimulatedModules::crcIsThatOfZlib()
{
    QFETCH(QByteArray, data);
    QFETCH(quint32, crc);
    QCOMPARE(SimulatedProgrammer::crc32(data), crc);
}

void tst_SimulatedModules::channelsAreSwitchedAndSet()
{
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    for (int channel = 0; channel < SimulatedProgrammer::PowerChannelCount; ++channel) {
        const auto number = static_cast<unsigned char>(channel);
        QCOMPARE(programmer.isPowerChannelOn(channel), channel == Supply);
        QCOMPARE(programmer.PowerSwitch(number, 255), 0);
        QVERIFY(programmer.isPowerChannelOn(channel));
        QCOMPARE(programmer.PowerSetVoltage(number, 2.5F), 0);
        QCOMPARE(programmer.powerChannelVoltage(channel), 2.5F);
        QCOMPARE(programmer.PowerSwitch(number, 0), 0);
        QVERIFY(!programmer.isPowerChannelOn(channel));
        QCOMPARE(programmer.powerChannelVoltage(channel), 2.5F);
    }
    QCOMPARE(programmer.PowerSetBatteryOptions(0xFFFFFFFF), 0);
    QCOMPARE(programmer.batteryOptions(), 0xFFFFFFFF);
}

void tst_SimulatedModules::thereAreSixteenChannels()
{
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    for (const unsigned char channel : {16, 255}) {
        QCOMPARE(programmer.PowerSwitch(channel, 1), int(SimulatedProgrammer::InvalidArgument));
        QCOMPARE(programmer.PowerSetVoltage(channel, 3.0F), int(SimulatedProgrammer::InvalidArgument));
    }
    for (const int channel : {-1, 16, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        QVERIFY(!programmer.isPowerChannelOn(channel));
        QCOMPARE(programmer.powerChannelVoltage(channel), 0.0F);
    }
}

void tst_SimulatedModules::voltagesHaveLimits_data()
{
    QTest::addColumn<float>("volts");
    QTest::addColumn<bool>("accepted");

    QTest::newRow("lowest") << 1.2F << true;
    QTest::newRow("highest") << 5.5F << true;
    QTest::newRow("too low") << 1.1F << false;
    QTest::newRow("too high") << 5.6F << false;
    QTest::newRow("negative") << -3.3F << false;
    QTest::newRow("infinite") << std::numeric_limits<float>::infinity() << false;
    QTest::newRow("no number") << std::numeric_limits<float>::quiet_NaN() << false;
}

void tst_SimulatedModules::voltagesHaveLimits()
{
    QFETCH(float, volts);
    QFETCH(bool, accepted);
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    const float before = programmer.powerChannelVoltage(2);
    QCOMPARE(programmer.PowerSetVoltage(2, volts), accepted ? 0 : int(SimulatedProgrammer::WrongVoltage));
    QCOMPARE(programmer.powerChannelVoltage(2), accepted ? volts : before);
}

void tst_SimulatedModules::theSupplyPinIsMeasured()
{
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    TPowerSupplyState supply;
    QCOMPARE(programmer.PowerGetSupplyState(&supply), 0);
    QCOMPARE(supply.state, 0);
    QCOMPARE(supply.level, 3.3F);

    QCOMPARE(programmer.PowerSetVoltage(Supply, 1.8F), 0);
    QCOMPARE(programmer.PowerGetSupplyState(&supply), 0);
    QCOMPARE(supply.level, 1.8F);

    QCOMPARE(programmer.PowerSwitch(Supply, 0), 0);
    QCOMPARE(programmer.PowerGetSupplyState(&supply), 0);
    QCOMPARE(supply.level, 0.0F);

    programmer.setExternalSupply(5.0F);
    programmer.setExternalSupply(-1.0F);
    programmer.setExternalSupply(std::numeric_limits<float>::quiet_NaN());
    QCOMPARE(programmer.PowerGetSupplyState(&supply), 0);
    QCOMPARE(supply.state, 1);
    QCOMPARE(supply.level, 5.0F);

    programmer.setExternalSupply(0);
    QCOMPARE(programmer.PowerGetSupplyState(&supply), 0);
    QCOMPARE(supply.state, 0);
    QCOMPARE(supply.level, 0.0F);
}

void tst_SimulatedModules::anExternalSupplyIsNotFoughtAgainst()
{
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    programmer.setExternalSupply(3.0F);
    QCOMPARE(programmer.PowerSwitch(Supply, 1), int(SimulatedProgrammer::PoweredExternally));
    QCOMPARE(programmer.PowerSetVoltage(Supply, 3.0F), int(SimulatedProgrammer::PoweredExternally));
    QCOMPARE(programmer.PowerSwitch(Supply, 0), 0);
    QCOMPARE(programmer.PowerSwitch(0, 1), 0);
    QCOMPARE(programmer.PowerSetVoltage(0, 3.0F), 0);
    QCOMPARE(programmer.refusals(), QStringList());
}

void tst_SimulatedModules::readingsFillTheBuffer_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {0, 1, 53, 64, 100})
        QTest::newRow(qPrintable(QString::number(size))) << size;
}

void tst_SimulatedModules::readingsFillTheBuffer()
{
    QFETCH(int, size);
    QByteArray expected(100, '\0');
    qToLittleEndian(quint16(1500), expected.data());
    qToLittleEndian(quint16(10), expected.data() + 2);
    qToLittleEndian(quint16(3300), expected.data() + 4 * Supply);
    qToLittleEndian(quint16(10), expected.data() + 4 * Supply + 2);

    SimulatedProgrammer programmer;
    connectDevice(programmer);
    QCOMPARE(programmer.PowerSetVoltage(0, 1.5F), 0);
    QCOMPARE(programmer.PowerSwitch(0, 1), 0);
    QCOMPARE(programmer.PowerSetVoltage(1, 1.5F), 0);
    QByteArray buffer(101, '#');
    QCOMPARE(programmer.PowerGetReadings(reinterpret_cast<unsigned char *>(buffer.data()), size), 0);
    QCOMPARE(buffer, expected.left(size) + QByteArray(101 - size, '#'));
}

void tst_SimulatedModules::thePowerModuleTellsOfItself()
{
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    TPowerInfo info;
    QCOMPARE(programmer.PowerGetInfo(&info), 0);
    QCOMPARE(info.channelCount, 16);

    TPowerInfo other;
    other.firmwareVersion = 0x0203;
    other.batteryPresent = true;
    other.batteryLevel = 42;
    programmer.setPowerInfo(other);
    QCOMPARE(programmer.PowerGetInfo(&info), 0);
    QCOMPARE(info.firmwareVersion, 0x0203);
    QVERIFY(info.batteryPresent);
    QCOMPARE(info.batteryLevel, 42);
}

void tst_SimulatedModules::theSavedConfigurationComesBackWithAReset()
{
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    QCOMPARE(programmer.PowerSwitch(3, 1), 0);
    QCOMPARE(programmer.PowerSetBatteryOptions(7), 0);
    QCOMPARE(programmer.PowerSaveConfiguration(), 0);
    QCOMPARE(programmer.PowerSwitch(3, 0), 0);
    QCOMPARE(programmer.PowerSwitch(4, 1), 0);
    QCOMPARE(programmer.PowerSetBatteryOptions(8), 0);

    QCOMPARE(programmer.PowerBootloaderActivate(), 0);
    QCOMPARE(programmer.PowerBootloaderReset(), 0);
    QVERIFY(programmer.isPowerChannelOn(3));
    QVERIFY(!programmer.isPowerChannelOn(4));
    QCOMPARE(programmer.batteryOptions(), 7U);
}

void tst_SimulatedModules::anUpdateIsTakenOver_data()
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

void tst_SimulatedModules::anUpdateIsTakenOver()
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

void tst_SimulatedModules::aWrongCrcKeepsTheBootloaderActive_data()
{
    bothLoaders();
}

void tst_SimulatedModules::aWrongCrcKeepsTheBootloaderActive()
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

void tst_SimulatedModules::nothingIsWrittenBeforeTheErase_data()
{
    bothLoaders();
}

void tst_SimulatedModules::nothingIsWrittenBeforeTheErase()
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

void tst_SimulatedModules::blocksAreWholeAndAligned_data()
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

void tst_SimulatedModules::blocksAreWholeAndAligned()
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

void tst_SimulatedModules::aBlockIsWrittenOnErasedFlashOnly_data()
{
    bothLoaders();
}

void tst_SimulatedModules::aBlockIsWrittenOnErasedFlashOnly()
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

void tst_SimulatedModules::erasesStayInsideTheFlash_data()
{
    bothLoaders();
}

void tst_SimulatedModules::erasesStayInsideTheFlash()
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

void tst_SimulatedModules::sizesAreChecked_data()
{
    bothLoaders();
}

void tst_SimulatedModules::sizesAreChecked()
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

void tst_SimulatedModules::bootloaderCommandsNeedTheBootloader_data()
{
    bothLoaders();
}

void tst_SimulatedModules::bootloaderCommandsNeedTheBootloader()
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

void tst_SimulatedModules::theBootloaderOutlivesADisconnection_data()
{
    bothLoaders();
}

void tst_SimulatedModules::theBootloaderOutlivesADisconnection()
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

void tst_SimulatedModules::anEmptyPowerImageIsAccepted()
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

void tst_SimulatedModules::theDeviceOffersOnlyItsBootloader()
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

void tst_SimulatedModules::thePowerModuleOffersOnlyItsBootloader()
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

void tst_SimulatedModules::theBootloaderTellsOfItself()
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

UNIPROG_TEST_MAIN(tst_SimulatedModules)

#include "tst_simulatedmodules.moc"
