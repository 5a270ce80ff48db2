#include <TargetDescriptor.h>
#include <UniProgInterface.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QThread>

class tst_TargetDescriptor : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void anUnsetOptionReadsAsZero();
    void operationAndConnectionOptionsAreApart();
    void theRecordsStartEmpty();
    void optionsMayBeEditedWhileAWorkerReadsThem();
};

void tst_TargetDescriptor::anUnsetOptionReadsAsZero()
{
    TargetDescriptor descriptor;
    QCOMPARE(descriptor.getOperationOptions()->getIntValue(TargetOptionsOperation::EraseMode), 0);
    QCOMPARE(descriptor.getConnectionOptions()->getIntValue(-1), 0);
}

void tst_TargetDescriptor::operationAndConnectionOptionsAreApart()
{
    TargetDescriptor descriptor;
    descriptor.getOperationOptions()->setIntValue(TargetOptionsOperation::VerifyAfterWrite, 7);
    descriptor.getConnectionOptions()->setIntValue(TargetOptionsConnection::HaltAfterReset, -1);
    QCOMPARE(descriptor.getOperationOptions()->getIntValue(2), 7);
    QCOMPARE(descriptor.getOperationOptions()->getIntValue(5), 0);
    QCOMPARE(descriptor.getConnectionOptions()->getIntValue(5), -1);
    QCOMPARE(descriptor.getConnectionOptions()->getIntValue(2), 0);

    descriptor.getOperationOptions()->setIntValue(2, 0);
    QCOMPARE(descriptor.getOperationOptions()->getIntValue(2), 0);
}

void tst_TargetDescriptor::theRecordsStartEmpty()
{
    const TSelectedDevice device;
    QCOMPARE(device.link, qint32(TSelectedDevice::Usb));
    QVERIFY(device.name.isEmpty() && device.serialNumber.isEmpty() && device.firmwareVersion.isEmpty()
            && device.hardwareRevision.isEmpty() && device.address.isEmpty() && device.path.isEmpty());
    const TConfiguration configuration;
    QVERIFY(configuration.deviceName.isEmpty() && !configuration.wifiEnabled);
    const TPowerInfo info;
    QCOMPARE(info.channelCount, quint8(0));
    const TPowerSupplyState supply;
    QCOMPARE(supply.state, 0);
    QCOMPARE(supply.level, 0.0F);
    QCOMPARE(int(OPERATION_TYPE_CONFIGURATION), 0);
    QCOMPARE(int(OPERATION_TYPE_DEBUG), 1);
}

void tst_TargetDescriptor::optionsMayBeEditedWhileAWorkerReadsThem()
{
    TargetDescriptor descriptor;
    constexpr int Rounds = 10'000;
    QScopedPointer<QThread> reader(QThread::create([&descriptor] {
        int last = 0;
        while (last < Rounds) {
            const int value = descriptor.getOperationOptions()->getIntValue(0);
            if (value < last)
                qWarning("An option went backwards.");
            last = value;
        }
    }));
    reader->start();
    for (int value = 1; value <= Rounds; ++value)
        descriptor.getOperationOptions()->setIntValue(0, value);
    QVERIFY(reader->wait(30'000));
}

UNIPROG_TEST_MAIN(tst_TargetDescriptor)
#include "tst_targetdescriptor.moc"
