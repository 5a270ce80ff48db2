#include <ScriptedDriver.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QMetaEnum>
#include <QThread>

#include <atomic>
#include <functional>
#include <thread>

using namespace std::chrono_literals;
using Operation = ScriptedDriver::Operation;
using Answer = ScriptedDriver::Answer;
using Call = ScriptedDriver::Call;

namespace {

/// Runs a function on a thread of its own and is joined at the end of the scope. The standard library's thread, and not
/// Qt's: ThreadSanitizer understands its join.
class Worker
{
public:
    explicit Worker(const std::function<void()> &function)
        : thread([this, function] {
            self = QThread::currentThread();
            function();
        })
    { }
    ~Worker()
    {
        join();
    }

    void join()
    {
        if (thread.joinable())
            thread.join();
    }
    /// Known after join().
    QThread *id() const
    {
        return self;
    }

private:
    QThread *self = nullptr;
    std::thread thread;
};

/// Calls every operation of the interface once, with arguments that can be told apart.
void callEverything(UniProgInterface &driver, MemoryManager &memory)
{
    TSelectedDevice device;
    device.name = QStringLiteral("bench");
    TConfiguration configuration;
    TPowerInfo powerInfo;
    TPowerSupplyState supply;
    unsigned char bytes[4] = {};
    unsigned short size = sizeof bytes;
    bool flag = false;
    QByteArray info;

    driver.Connect(OPERATION_TYPE(1));
    driver.ConnectSelectedDevice(&device, OPERATION_TYPE(0));
    driver.Disconnect();
    driver.CommitConfiguration();
    driver.WiFiServerStart();
    driver.FindDevice();
    driver.GetDeviceConfiguration(&configuration);
    driver.SetDeviceConfiguration(&configuration);
    driver.ConnectToTarget(1);
    driver.SetTargetClock();
    driver.DisconnectFromTarget();
    driver.SetTargetInterfaceInUse(true);
    driver.GetTargetDescriptor();
    driver.SetWiFiLinkPassword(QStringLiteral("secret"), true);
    driver.ResetTarget(0);
    driver.SwoGetData(bytes, &size);
    driver.SwoEnable(0xABCD);
    driver.ReadTarget(&memory);
    driver.DetectTarget(&flag);
    driver.VerifyTarget(&memory, &flag, 256);
    driver.WriteTarget(&memory, 0);
    driver.EraseTargetMass();
    driver.EraseTarget(&memory);
    driver.CheckTargetBlank(&flag, true);
    driver.BootloaderEnter();
    driver.BootloaderErase(0x8000, 2);
    driver.BootloaderWrite(0x8000, 3, "abc");
    driver.BootloaderVerify(0xDEADBEEF, 1000);
    driver.BootloaderGetInfo(&info);
    driver.BootloaderExit();
    driver.PowerSwitch(13, 1);
    driver.PowerSetVoltage(13, 3.5F);
    driver.PowerSetBatteryOptions(0x12);
    driver.PowerGetReadings(bytes, 4);
    driver.PowerGetInfo(&powerInfo);
    driver.PowerSaveConfiguration();
    driver.PowerGetSupplyState(&supply);
    driver.PowerBootloaderActivate();
    driver.PowerBootloaderReset();
    driver.PowerBootloaderErase(3);
    driver.PowerBootloaderWrite(0x10008000, 2, "xy");
    driver.PowerBootloaderVerify(0x1, 992, &flag);
    driver.PowerBootloaderGetInfo();
}

} // namespace

class tst_ScriptedDriver : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aFreshDriverLetsEverythingSucceed();
    void everyCallIsWrittenDownInOrder();
    void aCallKnowsItsThread();
    void argumentsAreCopiesOrComparablePointers();
    void anAnswerForAllCallsStaysUntilReplaced();
    void answersForTheNextCallsQueueUp();
    void anAnswerForTheNthCallGoesFirst();
    void outParametersAreWrittenAsScripted();
    void outParametersAreLeftAloneByFailedAndByMuteCalls();
    void bytesNeverExceedTheCallersBuffer();
    void theHookRunsOnTheCallingThread();
    void progressIsEmittedOnTheCallingThread();
    void aDelayedAnswerTakesItsTime();
    void aHeldCallWaitsForItsRelease();
    void aHeldCallThatNobodyReleasesGoesOnWithAWarning();
    void thePasswordIsNeverShownButCanBeChecked();
    void theDescriptorCanBeTakenAway();
    void twoThreadsThatMeetAreNoticed();
    void aThreadThatCallsIntoAnothersConnectionIsNoticed();
    void threadsThatTakeTurnsAreNotNoticed();
    void withoutRecordingCallsAreStillCountedAndScripted();
    void resetForgetsScriptAndCalls();
};

void tst_ScriptedDriver::aFreshDriverLetsEverythingSucceed()
{
    ScriptedDriver driver;
    bool detected = false;
    bool verified = false;
    bool blank = false;
    bool mismatch = true;
    TPowerSupplyState supply{1, 5.0F};
    QCOMPARE(driver.Connect(OPERATION_TYPE(1)), 0);
    QCOMPARE(driver.DetectTarget(&detected), 0);
    QCOMPARE(driver.VerifyTarget(nullptr, &verified, 0), 0);
    QCOMPARE(driver.CheckTargetBlank(&blank, false), 0);
    QCOMPARE(driver.PowerBootloaderVerify(0, 0, &mismatch), 0);
    QCOMPARE(driver.PowerGetSupplyState(&supply), 0);
    QVERIFY(detected && verified && blank && !mismatch);
    QCOMPARE(supply.state, 0);
    QCOMPARE(supply.level, 0.0F);
    QVERIFY(driver.GetTargetDescriptor());
}

void tst_ScriptedDriver::everyCallIsWrittenDownInOrder()
{
    ScriptedDriver driver;
    MemoryManager memory;
    callEverything(driver, memory);
    const QStringList expected{
        "Connect(1)",
        "ConnectSelectedDevice(bench, 0)",
        "Disconnect()",
        "CommitConfiguration()",
        "WiFiServerStart()",
        "FindDevice()",
        "GetDeviceConfiguration(pointer)",
        "SetDeviceConfiguration(pointer)",
        "ConnectToTarget(1)",
        "SetTargetClock()",
        "DisconnectFromTarget()",
        "SetTargetInterfaceInUse(true)",
        "GetTargetDescriptor()",
        "SetWiFiLinkPassword(<6 characters>, true)",
        "ResetTarget(0)",
        "SwoGetData(pointer, pointer)",
        "SwoEnable(0xabcd)",
        "ReadTarget(pointer)",
        "DetectTarget(pointer)",
        "VerifyTarget(pointer, pointer, 256)",
        "WriteTarget(pointer, 0)",
        "EraseTargetMass()",
        "EraseTarget(pointer)",
        "CheckTargetBlank(pointer, true)",
        "BootloaderEnter()",
        "BootloaderErase(0x8000, 2)",
        "BootloaderWrite(0x8000, 3, 3 bytes)",
        "BootloaderVerify(0xdeadbeef, 1000)",
        "BootloaderGetInfo(pointer)",
        "BootloaderExit()",
        "PowerSwitch(13, 1)",
        "PowerSetVoltage(13, 3.5)",
        "PowerSetBatteryOptions(0x12)",
        "PowerGetReadings(pointer, 4)",
        "PowerGetInfo(pointer)",
        "PowerSaveConfiguration()",
        "PowerGetSupplyState(pointer)",
        "PowerBootloaderActivate()",
        "PowerBootloaderReset()",
        "PowerBootloaderErase(0x3)",
        "PowerBootloaderWrite(0x10008000, 2, 2 bytes)",
        "PowerBootloaderVerify(0x1, 992, pointer)",
        "PowerBootloaderGetInfo()",
    };
    QCOMPARE(driver.transcript(), expected);

    // Each operation goes by the enumerator of its own name, in the order of the interface.
    const QList<Call> calls = driver.calls();
    const QMetaEnum names = QMetaEnum::fromType<Operation>();
    QCOMPARE(names.keyCount(), int(calls.size()));
    for (int i = 0; i < calls.size(); ++i) {
        QCOMPARE(int(calls[i].operation), i);
        QCOMPARE(driver.callCount(calls[i].operation), 1);
    }
}

void tst_ScriptedDriver::aCallKnowsItsThread()
{
    ScriptedDriver driver;
    driver.FindDevice();
    Worker worker([&driver] { driver.FindDevice(); });
    worker.join();
    QCOMPARE(driver.calls().size(), 2);
    QCOMPARE(driver.calls()[0].thread, QThread::currentThread());
    QCOMPARE(driver.calls()[1].thread, worker.id());
}

void tst_ScriptedDriver::argumentsAreCopiesOrComparablePointers()
{
    ScriptedDriver driver;
    MemoryManager memory;
    bool verified = false;
    driver.VerifyTarget(&memory, &verified, -1);
    QCOMPARE(driver.calls().last().pointer(0), static_cast<void *>(&memory));
    QCOMPARE(driver.calls().last().pointer(1), static_cast<void *>(&verified));
    QCOMPARE(driver.calls().last().arguments.value(2).toInt(), -1);
    QCOMPARE(driver.calls().last().pointer(7), nullptr);

    driver.ReadTarget(nullptr);
    QCOMPARE(driver.calls().last().toString(), QStringLiteral("ReadTarget(null)"));
    driver.ConnectSelectedDevice(nullptr, OPERATION_TYPE(0));
    QCOMPARE(driver.calls().last().toString(), QStringLiteral("ConnectSelectedDevice(null, 0)"));

    TSelectedDevice device;
    device.serialNumber = QStringLiteral("0042");
    driver.ConnectSelectedDevice(&device, OPERATION_TYPE(0));
    device.serialNumber.clear();
    QCOMPARE(driver.calls().last().arguments.first().value<TSelectedDevice>().serialNumber, QStringLiteral("0042"));

    char data[] = "12345678";
    driver.BootloaderWrite(0x8000, 8, data);
    data[0] = 'x';
    QCOMPARE(driver.calls().last().arguments.last().toByteArray(), QByteArray("12345678"));
    driver.BootloaderWrite(0x8000, 8, nullptr);
    QCOMPARE(driver.calls().last().toString(), QStringLiteral("BootloaderWrite(0x8000, 8, 0 bytes)"));
}

void tst_ScriptedDriver::anAnswerForAllCallsStaysUntilReplaced()
{
    ScriptedDriver driver;
    driver.always(Operation::ResetTarget, 5);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(driver.ResetTarget(0), 5);
    QCOMPARE(driver.FindDevice(), 0);
    driver.always(Operation::ResetTarget, 0);
    QCOMPARE(driver.ResetTarget(0), 0);
}

void tst_ScriptedDriver::answersForTheNextCallsQueueUp()
{
    ScriptedDriver driver;
    driver.always(Operation::ResetTarget, 9);
    driver.next(Operation::ResetTarget, 1, 2);
    driver.next(Operation::ResetTarget, 2);
    driver.next(Operation::ResetTarget, 3, 0);
    QList<int> statuses;
    for (int i = 0; i < 4; ++i)
        statuses.append(driver.ResetTarget(0));
    QCOMPARE(statuses, (QList<int>{1, 1, 2, 9}));
}

void tst_ScriptedDriver::anAnswerForTheNthCallGoesFirst()
{
    ScriptedDriver driver;
    driver.nth(Operation::ResetTarget, 2, 7);
    driver.next(Operation::ResetTarget, 1, 2);
    QList<int> statuses;
    for (int i = 0; i < 4; ++i)
        statuses.append(driver.ResetTarget(0));
    // The second of the two next answers is not used up by the call that had an answer of its own.
    QCOMPARE(statuses, (QList<int>{1, 7, 1, 0}));
}

void tst_ScriptedDriver::outParametersAreWrittenAsScripted()
{
    ScriptedDriver driver;
    bool flag = true;
    driver.next(Operation::DetectTarget, Answer(6).giving(false));
    QCOMPARE(driver.DetectTarget(&flag), 6);
    QCOMPARE(flag, false);

    MemoryManager image;
    image.write(0x100, "abc");
    MemoryManager memory;
    driver.always(Operation::ReadTarget, Answer().giving(QVariant::fromValue(image)));
    driver.ReadTarget(&memory);
    QVERIFY(memory == image);

    TConfiguration stored;
    stored.deviceName = QStringLiteral("lab");
    TConfiguration configuration;
    driver.always(Operation::GetDeviceConfiguration, Answer().giving(QVariant::fromValue(stored)));
    driver.GetDeviceConfiguration(&configuration);
    QCOMPARE(configuration.deviceName, QStringLiteral("lab"));

    TPowerInfo fitted;
    fitted.channelCount = 3;
    TPowerInfo info;
    driver.always(Operation::PowerGetInfo, Answer().giving(QVariant::fromValue(fitted)));
    driver.PowerGetInfo(&info);
    QCOMPARE(info.channelCount, quint8(3));

    TPowerSupplyState state;
    driver.always(Operation::PowerGetSupplyState, Answer().giving(QVariant::fromValue(TPowerSupplyState{1, 1.5F})));
    driver.PowerGetSupplyState(&state);
    QCOMPARE(state.state, 1);
    QCOMPARE(state.level, 1.5F);

    QByteArray bootloader;
    driver.always(Operation::BootloaderGetInfo, Answer().giving(QByteArray("v7")));
    driver.BootloaderGetInfo(&bootloader);
    QCOMPARE(bootloader, QByteArray("v7"));
}

void tst_ScriptedDriver::outParametersAreLeftAloneByFailedAndByMuteCalls()
{
    ScriptedDriver driver;
    bool flag = false;
    driver.next(Operation::CheckTargetBlank, 3);
    driver.CheckTargetBlank(&flag, false);
    QCOMPARE(flag, false);
    driver.next(Operation::CheckTargetBlank, Answer().givingNothing());
    driver.CheckTargetBlank(&flag, false);
    QCOMPARE(flag, false);

    unsigned short size = 2;
    unsigned char bytes[2] = {'o', 'k'};
    driver.next(Operation::SwoGetData, Answer().giving(QByteArray("zz")).givingNothing());
    driver.SwoGetData(bytes, &size);
    QCOMPARE(size, static_cast<unsigned short>(2));
    QCOMPARE(bytes[0], static_cast<unsigned char>('o'));

    // A caller may leave the pointers out.
    driver.always(Operation::ReadTarget, Answer().giving(QVariant::fromValue(MemoryManager())));
    QCOMPARE(driver.ReadTarget(nullptr), 0);
    QCOMPARE(driver.DetectTarget(nullptr), 0);
    QCOMPARE(driver.SwoGetData(nullptr, nullptr), 0);
    QCOMPARE(driver.PowerGetReadings(nullptr, 5), 0);
}

void tst_ScriptedDriver::bytesNeverExceedTheCallersBuffer()
{
    ScriptedDriver driver;
    driver.always(Operation::SwoGetData, Answer().giving(QByteArray("abcdef")));
    driver.always(Operation::PowerGetReadings, Answer().giving(QByteArray("abcdef")));

    QByteArray buffer("........");
    auto *data = reinterpret_cast<unsigned char *>(buffer.data());
    unsigned short size = 4;
    driver.SwoGetData(data, &size);
    QCOMPARE(size, static_cast<unsigned short>(4));
    QCOMPARE(buffer, QByteArray("abcd...."));
    size = 8;
    driver.SwoGetData(data, &size);
    QCOMPARE(size, static_cast<unsigned short>(6));

    driver.always(Operation::SwoGetData, 5); // untold, a call that fails leaves what the caller has
    QCOMPARE(driver.SwoGetData(data, &size), 5);
    QCOMPARE(size, static_cast<unsigned short>(6));

    buffer = "........";
    data = reinterpret_cast<unsigned char *>(buffer.data());
    driver.PowerGetReadings(data, -1);
    QCOMPARE(buffer, QByteArray("........"));
    driver.PowerGetReadings(data, 3);
    QCOMPARE(buffer, QByteArray("abc....."));
}

void tst_ScriptedDriver::theHookRunsOnTheCallingThread()
{
    ScriptedDriver driver;
    QThread *seen = nullptr;
    driver.always(Operation::FindDevice, Answer().calling([&] {
        seen = QThread::currentThread();
        driver.ResetTarget(0); // the driver is not locked meanwhile
    }));
    Worker worker([&driver] { driver.FindDevice(); });
    worker.join();
    QCOMPARE(seen, worker.id());
    QCOMPARE(driver.callCount(Operation::ResetTarget), 1);
}

void tst_ScriptedDriver::progressIsEmittedOnTheCallingThread()
{
    ScriptedDriver driver;
    driver.always(Operation::ReadTarget, Answer().reporting({0, 50, 100}));
    QList<int> values;
    QList<QThread *> threads;
    connect(
        &driver, &ScriptedDriver::SignalUpdateProgress, this,
        [&](int percent) {
            values.append(percent);
            threads.append(QThread::currentThread());
        },
        Qt::DirectConnection);
    Worker worker([&driver] { driver.ReadTarget(nullptr); });
    worker.join();
    QCOMPARE(values, (QList<int>{0, 50, 100}));
    QCOMPARE(threads, QList<QThread *>(3, worker.id()));
}

void tst_ScriptedDriver::aDelayedAnswerTakesItsTime()
{
    ScriptedDriver driver;
    driver.always(Operation::FindDevice, Answer().after(50ms));
    QElapsedTimer timer;
    timer.start();
    driver.FindDevice();
    QVERIFY(timer.elapsed() >= 50);
}

void tst_ScriptedDriver::aHeldCallWaitsForItsRelease()
{
    ScriptedDriver driver;
    driver.next(Operation::FindDevice, Answer(4).untilReleased());
    QVERIFY(!driver.waitUntilHeld(0ms));
    QVERIFY(!driver.waitForCall(Operation::FindDevice, 1, 0ms));

    std::atomic_int status{-1};
    Worker worker([&] { status = driver.FindDevice(); });
    QVERIFY(driver.waitForCall(Operation::FindDevice));
    QVERIFY(driver.waitUntilHeld());
    QCOMPARE(status.load(), -1);
    driver.release();
    worker.join();
    QCOMPARE(status.load(), 4);
}

void tst_ScriptedDriver::aHeldCallThatNobodyReleasesGoesOnWithAWarning()
{
    ScriptedDriver driver;
    driver.setHoldLimit(1ms);
    driver.always(Operation::FindDevice, Answer(4).untilReleased());
    driver.release(); // too early: nothing is held
    QTest::ignoreMessage(QtWarningMsg, "ScriptedDriver: FindDevice was held and never released");
    QCOMPARE(driver.FindDevice(), 4);
}

void tst_ScriptedDriver::thePasswordIsNeverShownButCanBeChecked()
{
    ScriptedDriver driver;
    const QString password = QStringLiteral("correct horse");
    QVERIFY(!driver.receivedWiFiLinkPassword(password));
    driver.SetWiFiLinkPassword(password, false);
    QVERIFY(driver.receivedWiFiLinkPassword(password));
    QVERIFY(!driver.receivedWiFiLinkPassword(QStringLiteral("battery staple")));
    QCOMPARE(driver.calls().last().arguments, (QVariantList{QStringLiteral("<13 characters>"), false}));
    driver.reset();
    QVERIFY(!driver.receivedWiFiLinkPassword(password));
}

void tst_ScriptedDriver::theDescriptorCanBeTakenAway()
{
    ScriptedDriver driver;
    const QWeakPointer<TargetDescriptor> own = driver.GetTargetDescriptor();
    QVERIFY(own);
    driver.setTargetDescriptor({});
    QVERIFY(!own);
    QVERIFY(!driver.GetTargetDescriptor());
}

void tst_ScriptedDriver::twoThreadsThatMeetAreNoticed()
{
    ScriptedDriver driver;
    driver.next(Operation::ReadTarget, Answer().untilReleased());
    Worker worker([&driver] { driver.ReadTarget(nullptr); });
    QVERIFY(driver.waitUntilHeld());
    driver.SetWiFiLinkPassword(QString(), false);
    driver.GetTargetDescriptor();
    QCOMPARE(driver.interleavings(), QStringList());
    driver.FindDevice();
    QCOMPARE(driver.interleavings(), QStringList{"FindDevice was called while another operation was running"});
    driver.release();
    worker.join();
}

void tst_ScriptedDriver::aThreadThatCallsIntoAnothersConnectionIsNoticed()
{
    ScriptedDriver driver;
    driver.Connect(OPERATION_TYPE(1));
    Worker worker([&driver] { driver.FindDevice(); });
    worker.join();
    QCOMPARE(driver.interleavings(), QStringList{"FindDevice was called while another thread had the device"});
}

void tst_ScriptedDriver::threadsThatTakeTurnsAreNotNoticed()
{
    ScriptedDriver driver;
    driver.Connect(OPERATION_TYPE(1));
    driver.FindDevice();
    driver.Disconnect();
    driver.next(Operation::Connect, 38); // a connect that fails takes nothing
    driver.Connect(OPERATION_TYPE(1));
    Worker worker([&driver] {
        TSelectedDevice device;
        driver.ConnectSelectedDevice(&device, OPERATION_TYPE(0));
        driver.Disconnect();
    });
    worker.join();
    driver.Connect(OPERATION_TYPE(0));
    QCOMPARE(driver.interleavings(), QStringList());
}

void tst_ScriptedDriver::withoutRecordingCallsAreStillCountedAndScripted()
{
    ScriptedDriver driver;
    driver.setRecording(false);
    driver.nth(Operation::FindDevice, 2, 5);
    QCOMPARE(driver.FindDevice(), 0);
    QCOMPARE(driver.FindDevice(), 5);
    QCOMPARE(driver.callCount(Operation::FindDevice), 2);
    QVERIFY(driver.calls().isEmpty());
    driver.setRecording(true);
    driver.FindDevice();
    QCOMPARE(driver.transcript(), QStringList{"FindDevice()"});
}

void tst_ScriptedDriver::resetForgetsScriptAndCalls()
{
    ScriptedDriver driver;
    driver.always(Operation::FindDevice, 5);
    driver.FindDevice();
    driver.reset();
    QVERIFY(driver.calls().isEmpty());
    QCOMPARE(driver.callCount(Operation::FindDevice), 0);
    QCOMPARE(driver.FindDevice(), 0);
    driver.nth(Operation::FindDevice, 2, 6);
    QCOMPARE(driver.FindDevice(), 6);
}

UNIPROG_TEST_MAIN(tst_ScriptedDriver)
#include "tst_scripteddriver.moc"
