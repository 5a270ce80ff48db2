#include "SimulatedTest.h"

#include <UniProgTest.h>

#include <QApplication>
#include <QtEndian>

#include <limits>

static constexpr int Supply = SimulatedProgrammer::SupplyChannel;

class tst_SimulatedPower : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
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
};

void tst_SimulatedPower::channelsAreSwitchedAndSet()
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

void tst_SimulatedPower::thereAreSixteenChannels()
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

void tst_SimulatedPower::voltagesHaveLimits_data()
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

void tst_SimulatedPower::voltagesHaveLimits()
{
    QFETCH(float, volts);
    QFETCH(bool, accepted);
    SimulatedProgrammer programmer;
    connectDevice(programmer);
    const float before = programmer.powerChannelVoltage(2);
    QCOMPARE(programmer.PowerSetVoltage(2, volts), accepted ? 0 : int(SimulatedProgrammer::WrongVoltage));
    QCOMPARE(programmer.powerChannelVoltage(2), accepted ? volts : before);
}

void tst_SimulatedPower::theSupplyPinIsMeasured()
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
    programmer.setExternalSupply(60.1F);
    programmer.setExternalSupply(std::numeric_limits<float>::infinity());
    programmer.setExternalSupply(std::numeric_limits<float>::quiet_NaN());
    QCOMPARE(programmer.PowerGetSupplyState(&supply), 0);
    QCOMPARE(supply.state, 1);
    QCOMPARE(supply.level, 5.0F);

    programmer.setExternalSupply(0);
    QCOMPARE(programmer.PowerGetSupplyState(&supply), 0);
    QCOMPARE(supply.state, 0);
    QCOMPARE(supply.level, 0.0F);
}

void tst_SimulatedPower::anExternalSupplyIsNotFoughtAgainst()
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

void tst_SimulatedPower::readingsFillTheBuffer_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {0, 1, 53, 64, 100})
        QTest::newRow(qPrintable(QString::number(size))) << size;
}

void tst_SimulatedPower::readingsFillTheBuffer()
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

void tst_SimulatedPower::thePowerModuleTellsOfItself()
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

void tst_SimulatedPower::theSavedConfigurationComesBackWithAReset()
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

UNIPROG_TEST_MAIN(tst_SimulatedPower)
#include "tst_simulatedpower.moc"
