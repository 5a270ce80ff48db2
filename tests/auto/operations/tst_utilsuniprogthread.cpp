#include "ProcedureRig.h"

#include <UtilsUniProgThread.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QRegularExpression>
#include <QThread>

#include <algorithm>
#include <functional>
#include <memory>
#include <thread>

using Operation = ScriptedDriver::Operation;
using Answer = ScriptedDriver::Answer;

namespace {

/// What requests are given. One set for all rows, so that a row can say which of it arrives.
struct Arguments
{
    MemoryManager memory;
    TConfiguration configuration;
    TPowerInfo powerInfo;
    TSelectedDevice device;
    bool result = false;
    unsigned char bytes[8] = {};
    unsigned short size = sizeof bytes;
    QByteArray info;
};

using Request = std::function<int(UtilsUniProgThread &, Arguments &)>;
using PointerOf = std::function<void *(Arguments &)>;

constexpr int AnyFailure = 77;

/// A receiver that knows the signal by its text only, as forms and older applications do.
class TextReceiver : public QObject
{
    Q_OBJECT

public:
    QStringList lines;
    QList<int> types;

public Q_SLOTS:
    void slotLine(const QString &text, LOGGER_MESSAGE_TYPE type)
    {
        lines.append(text);
        types.append(type);
    }
};

} // namespace

Q_DECLARE_METATYPE(Request)
Q_DECLARE_METATYPE(PointerOf)

class tst_UtilsUniProgThread : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aNewThreadIsIdleAtHome();
    void anyDriverCanBeGiven();
    void aRequestCallsTheDriverWithItsArguments_data();
    void aRequestCallsTheDriverWithItsArguments();
    void pointersArriveUnchanged_data();
    void pointersArriveUnchanged();
    void theConnectFlagFollowsTheOptionAtRequestTime_data();
    void theConnectFlagFollowsTheOptionAtRequestTime();
    void swoUsesTheLinkOfThePreviousRequest();
    void theSelectedDeviceIsUsedOnce();
    void theSelectedDeviceSurvivesAFailedConnect();
    void aTargetProcedureForgetsTheSelectedDeviceToo();
    void theSelectedDeviceIsACopy();
    void theDriversProgressIsForwardedOnItsOwnThread();
    void logLinesReachASlotThatIsConnectedByText();
    void theProcedureRunsOnAWorkerNamedLikeTheObject();
};

void tst_UtilsUniProgThread::aNewThreadIsIdleAtHome()
{
    ScriptedDriver driver;
    UtilsUniProgThread thread(&driver, nullptr);
    QVERIFY(!thread.IsProcedureInProgress());
    QCOMPARE(thread.thread(), QThread::currentThread());
    QCOMPARE(thread.parent(), nullptr);
    QCOMPARE(driver.transcript(), QStringList{"GetTargetDescriptor()"});
    QCOMPARE(QMetaType::fromName("LOGGER_MESSAGE_TYPE"), QMetaType::fromType<LOGGER_MESSAGE_TYPE>());

    const QMetaObject *meta = thread.metaObject();
    QStringList methods;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i)
        methods.append(QString::fromLatin1(meta->method(i).methodSignature()));
    QCOMPARE(methods,
             (QStringList{"finished()", "SignalProcedureCompleted(int,QString)",
                          "SignalOperationLogMessage(QString,LOGGER_MESSAGE_TYPE)", "SignalOperationProgress(int)",
                          "SlotProcedureFinished()", "SlotProcedureTargetRelated()", "SlotProcedureControlRelated()"}));
    QCOMPARE(meta->method(meta->methodOffset() + 1).parameterNames(),
             (QList<QByteArray>{"GetStatus", "argErrorMessage"}));
    QCOMPARE(meta->method(meta->methodOffset() + 2).parameterNames(), (QList<QByteArray>{"message", "messageType"}));
    QCOMPARE(meta->method(meta->methodOffset() + 3).parameterNames(), QList<QByteArray>{"percent"});
}

void tst_UtilsUniProgThread::anyDriverCanBeGiven()
{
    const UtilsUniProgThread withoutDriver(nullptr, nullptr);
    QVERIFY(!withoutDriver.IsProcedureInProgress());

    // A driver without a descriptor, and one that goes before the thread.
    auto driver = std::make_unique<ScriptedDriver>();
    driver->setTargetDescriptor({});
    const UtilsUniProgThread thread(driver.get(), nullptr);
    driver.reset();
    QVERIFY(!thread.IsProcedureInProgress());
}

void tst_UtilsUniProgThread::aRequestCallsTheDriverWithItsArguments_data()
{
    QTest::addColumn<Request>("request");
    QTest::addColumn<bool>("onTarget");
    QTest::addColumn<QString>("connect");
    QTest::addColumn<QString>("connectToTarget");
    QTest::addColumn<QStringList>("calls");
    const auto target = [](const char *name, int flag, const QStringList &calls, const Request &request) {
        QTest::newRow(name) << request << true << "Connect(1)" << QStringLiteral("ConnectToTarget(%1)").arg(flag)
                            << calls;
    };
    const auto control
        = [](const char *name, const QString &connect, const QStringList &calls, const Request &request) {
              QTest::newRow(name) << request << false << connect << QString() << calls;
          };
    const auto byDevice = QStringLiteral("ConnectSelectedDevice(bench, 0)");
    const auto linkBefore = QStringLiteral("Connect(%1)");
    const QString leavingRunning = QStringLiteral("ConnectToTarget(0)");
    using Thread = UtilsUniProgThread;

    target("WriteTarget", 1, {"EraseTargetMass()", "WriteTarget(pointer, 0)", "ResetTarget(0)"},
           [](Thread &t, Arguments &a) { return t.WriteTarget(&a.memory); });
    target("ReadTarget", 0, {"ReadTarget(pointer)"}, [](Thread &t, Arguments &a) { return t.ReadTarget(&a.memory); });
    target("VerifyTarget", 1, {"VerifyTarget(pointer, pointer, 0)", "ResetTarget(0)"},
           [](Thread &t, Arguments &a) { return t.VerifyTarget(&a.memory, &a.result); });
    target("CheckTargetBlank", 1, {"CheckTargetBlank(pointer, false)", "ResetTarget(0)"},
           [](Thread &t, Arguments &a) { return t.CheckTargetBlank(&a.result); });
    target("DetectTarget", 0, {"DetectTarget(pointer)"},
           [](Thread &t, Arguments &a) { return t.DetectTarget(&a.result); });
    target("EraseTargetMass", 1, {"EraseTargetMass()"}, [](Thread &t, Arguments &) { return t.EraseTargetMass(); });
    target("ResetTarget", 0, {"ResetTarget(0)"}, [](Thread &t, Arguments &) { return t.ResetTarget(); });

    control("FindDevice", "Connect(1)", {"FindDevice()"}, [](Thread &t, Arguments &) { return t.FindDevice(); });
    control("GetDeviceConfiguration", "Connect(1)", {"GetDeviceConfiguration(pointer)"},
            [](Thread &t, Arguments &a) { return t.GetDeviceConfiguration(&a.configuration); });
    control("SetDeviceConfiguration", "Connect(0)", {"SetDeviceConfiguration(pointer)", "CommitConfiguration()"},
            [](Thread &t, Arguments &a) { return t.SetDeviceConfiguration(&a.configuration); });
    control("WiFiServerStart", "Connect(0)", {"WiFiServerStart()"},
            [](Thread &t, Arguments &) { return t.WiFiServerStart(); });
    control("SwoEnable", linkBefore,
            {"SetTargetInterfaceInUse(true)", "SetTargetClock()", leavingRunning, "SwoEnable(0x1234)"},
            [](Thread &t, Arguments &) { return t.SwoEnable(0x1234); });
    control("SwoDisable", linkBefore, {"DisconnectFromTarget()", "SetTargetInterfaceInUse(false)"},
            [](Thread &t, Arguments &) { return t.SwoDisable(); });
    control("SwoGetData", "Connect(1)", {"SwoGetData(pointer, pointer)"},
            [](Thread &t, Arguments &a) { return t.SwoGetData(a.bytes, &a.size); });
    control("PowerSwitch", "Connect(1)", {"PowerSwitch(3, 200)", "PowerSaveConfiguration()"},
            [](Thread &t, Arguments &) { return t.PowerSwitch(3, 200); });
    control("PowerSetVoltage", "Connect(1)", {"PowerSetVoltage(255, 3.25)", "PowerSaveConfiguration()"},
            [](Thread &t, Arguments &) { return t.PowerSetVoltage(255, 3.25F); });
    control("PowerSetBatteryOptions", "Connect(1)", {"PowerSetBatteryOptions(0xffffffff)", "PowerSaveConfiguration()"},
            [](Thread &t, Arguments &) { return t.PowerSetBatteryOptions(0xFFFFFFFF); });
    control("PowerGetReadings", "Connect(1)", {"PowerGetReadings(pointer, 8)"},
            [](Thread &t, Arguments &a) { return t.PowerGetReadings(a.bytes, 8); });
    control("PowerGetInfo", "Connect(1)", {"PowerGetInfo(pointer)"},
            [](Thread &t, Arguments &a) { return t.PowerGetInfo(&a.powerInfo); });
    control("PowerSaveConfiguration", "Connect(0)", {"PowerSaveConfiguration()"},
            [](Thread &t, Arguments &) { return t.PowerSaveConfiguration(); });
    control("PowerBootloaderActivate", "Connect(0)", {"PowerBootloaderActivate()"},
            [](Thread &t, Arguments &) { return t.PowerBootloaderActivate(); });
    control("PowerBootloaderGetInfo", "Connect(1)", {"PowerBootloaderGetInfo()"},
            [](Thread &t, Arguments &) { return t.PowerBootloaderGetInfo(); });
    control("PowerBootloaderReset", "Connect(0)", {"PowerBootloaderReset()"},
            [](Thread &t, Arguments &) { return t.PowerBootloaderReset(); });
    control("BootloaderEnter", byDevice, {"BootloaderEnter()", "BootloaderGetInfo(pointer)"},
            [](Thread &t, Arguments &a) { return t.BootloaderEnter(a.device, &a.info); });
    control("BootloaderExit", byDevice, {"BootloaderExit()"},
            [](Thread &t, Arguments &a) { return t.BootloaderExit(a.device); });
}

void tst_UtilsUniProgThread::aRequestCallsTheDriverWithItsArguments()
{
    QFETCH(Request, request);
    QFETCH(bool, onTarget);
    QFETCH(QString, connect);
    QFETCH(QString, connectToTarget);
    QFETCH(QStringList, calls);

    // The first request of an object, and one after another request, which leaves the other link and the other way to
    // connect behind.
    for (const bool afterAnother : {false, true}) {
        ProcedureRig rig;
        if (afterAnother) {
            rig.thread.EraseTargetMass();
            QVERIFY(rig.settle(1));
            rig.driver.reset();
            rig.log.events.clear();
        }
        Arguments arguments;
        arguments.device.name = QStringLiteral("bench");
        QCOMPARE(request(rig.thread, arguments), 0);
        QVERIFY(rig.thread.IsProcedureInProgress());
        QVERIFY(rig.settle(afterAnother ? 2 : 1));

        QStringList expected{QString(connect).replace("%1", afterAnother ? "1" : "0")};
        if (onTarget)
            expected += {"SetTargetInterfaceInUse(true)", "SetTargetClock()", connectToTarget};
        expected += calls;
        if (onTarget)
            expected += {"DisconnectFromTarget()", "SetTargetInterfaceInUse(false)"};
        expected += "Disconnect()";
        QCOMPARE(rig.driver.transcript(), expected);
        QCOMPARE(rig.log.events.first(), ProcedureLog::line("Starting operation..."));
        QCOMPARE(rig.log.events.contains(ProcedureLog::line("Connecting to target MCU...")), onTarget);
        QCOMPARE(rig.log.events.mid(rig.log.events.size() - 2), (QStringList{ProcedureLog::completed(0), "finished"}));
        QCOMPARE(rig.thread.thread(), QThread::currentThread());
    }
}

void tst_UtilsUniProgThread::pointersArriveUnchanged_data()
{
    QTest::addColumn<Request>("request");
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<PointerOf>("first");
    QTest::addColumn<PointerOf>("second");
    using Thread = UtilsUniProgThread;
    const PointerOf none = [](Arguments &) { return nullptr; };
    const PointerOf memory = [](Arguments &a) { return &a.memory; };
    const PointerOf result = [](Arguments &a) { return &a.result; };

    QTest::newRow("the image to write") << Request([](Thread &t, Arguments &a) { return t.WriteTarget(&a.memory); })
                                        << Operation::WriteTarget << memory << none;
    QTest::newRow("the image to read") << Request([](Thread &t, Arguments &a) { return t.ReadTarget(&a.memory); })
                                       << Operation::ReadTarget << memory << none;
    QTest::newRow("image and flag to verify")
        << Request([](Thread &t, Arguments &a) { return t.VerifyTarget(&a.memory, &a.result); })
        << Operation::VerifyTarget << memory << result;
    QTest::newRow("flag of the blank check")
        << Request([](Thread &t, Arguments &a) { return t.CheckTargetBlank(&a.result); }) << Operation::CheckTargetBlank
        << result << none;
    QTest::newRow("flag of the detection") << Request([](Thread &t, Arguments &a) { return t.DetectTarget(&a.result); })
                                           << Operation::DetectTarget << result << none;
    const PointerOf configuration = [](Arguments &a) { return &a.configuration; };
    QTest::newRow("configuration to get")
        << Request([](Thread &t, Arguments &a) { return t.GetDeviceConfiguration(&a.configuration); })
        << Operation::GetDeviceConfiguration << configuration << none;
    QTest::newRow("configuration to set")
        << Request([](Thread &t, Arguments &a) { return t.SetDeviceConfiguration(&a.configuration); })
        << Operation::SetDeviceConfiguration << configuration << none;
    QTest::newRow("SWO buffer and size") << Request([](Thread &t, Arguments &a) {
        return t.SwoGetData(a.bytes, &a.size);
    }) << Operation::SwoGetData << PointerOf([](Arguments &a) { return a.bytes; })
                                         << PointerOf([](Arguments &a) { return &a.size; });
    QTest::newRow("power readings") << Request([](Thread &t, Arguments &a) { return t.PowerGetReadings(a.bytes, 8); })
                                    << Operation::PowerGetReadings << PointerOf([](Arguments &a) { return a.bytes; })
                                    << none;
    QTest::newRow("power info") << Request([](Thread &t, Arguments &a) { return t.PowerGetInfo(&a.powerInfo); })
                                << Operation::PowerGetInfo << PointerOf([](Arguments &a) { return &a.powerInfo; })
                                << none;
    QTest::newRow("bootloader info") << Request([](Thread &t, Arguments &a) {
        return t.BootloaderEnter(a.device, &a.info);
    }) << Operation::BootloaderGetInfo
                                     << PointerOf([](Arguments &a) { return &a.info; }) << none;
}

void tst_UtilsUniProgThread::pointersArriveUnchanged()
{
    QFETCH(Request, request);
    QFETCH(Operation, operation);
    QFETCH(PointerOf, first);
    QFETCH(PointerOf, second);

    ProcedureRig rig;
    Arguments arguments;
    request(rig.thread, arguments);
    QVERIFY(rig.settle());
    const QList<ScriptedDriver::Call> calls = rig.driver.calls();
    const auto call
        = std::find_if(calls.begin(), calls.end(), [&](const auto &made) { return made.operation == operation; });
    QVERIFY(call != calls.end());
    QCOMPARE(call->pointer(0), first(arguments));
    QCOMPARE(call->pointer(1), second(arguments));
}

void tst_UtilsUniProgThread::theConnectFlagFollowsTheOptionAtRequestTime_data()
{
    QTest::addColumn<Request>("request");
    QTest::addColumn<int>("option");
    QTest::addColumn<int>("flag");
    QTest::addColumn<QString>("call");
    using Thread = UtilsUniProgThread;
    const Request verify = [](Thread &t, Arguments &a) { return t.VerifyTarget(&a.memory, &a.result); };
    const Request blank = [](Thread &t, Arguments &a) { return t.CheckTargetBlank(&a.result); };
    QTest::newRow("verify, 0") << verify << 0 << 1 << "VerifyTarget(pointer, pointer, 0)";
    QTest::newRow("verify, 1") << verify << 1 << 0 << "VerifyTarget(pointer, pointer, 1)";
    QTest::newRow("verify, 256") << verify << 256 << 0 << "VerifyTarget(pointer, pointer, 256)";
    QTest::newRow("verify, -1") << verify << -1 << 0 << "VerifyTarget(pointer, pointer, -1)";
    QTest::newRow("blank check, 0") << blank << 0 << 1 << "CheckTargetBlank(pointer, false)";
    QTest::newRow("blank check, 1") << blank << 1 << 0 << "CheckTargetBlank(pointer, true)";
    QTest::newRow("blank check, 2") << blank << 2 << 0 << "CheckTargetBlank(pointer, true)";
    QTest::newRow("blank check, -1") << blank << -1 << 0 << "CheckTargetBlank(pointer, true)";
    QTest::newRow("blank check, 256") << blank << 256 << 0 << "CheckTargetBlank(pointer, true)";
}

void tst_UtilsUniProgThread::theConnectFlagFollowsTheOptionAtRequestTime()
{
    QFETCH(Request, request);
    QFETCH(int, option);
    QFETCH(int, flag);
    QFETCH(QString, call);

    Arguments arguments;
    {
        ProcedureRig rig;
        rig.driver.targetDescriptor()->getOperationOptions()->setIntValue(1, option);
        request(rig.thread, arguments);
        QVERIFY(rig.settle());
        QVERIFY(rig.driver.transcript().contains(QStringLiteral("ConnectToTarget(%1)").arg(flag)));
        QVERIFY(rig.driver.transcript().contains(call));
        QCOMPARE(rig.driver.transcript().contains(QStringLiteral("ResetTarget(0)")), option == 0);
    }
    {
        // Changed while the device is being connected: the connect keeps what the request saw, the procedure asks anew.
        ProcedureRig rig;
        rig.driver.always(Operation::Connect, Answer().calling([&] {
            rig.driver.targetDescriptor()->getOperationOptions()->setIntValue(1, option);
        }));
        request(rig.thread, arguments);
        QVERIFY(rig.settle());
        QVERIFY(rig.driver.transcript().contains(QStringLiteral("ConnectToTarget(1)")));
        QVERIFY(rig.driver.transcript().contains(call));
        QCOMPARE(rig.driver.transcript().contains(QStringLiteral("ResetTarget(0)")), option == 0);
    }
}

void tst_UtilsUniProgThread::swoUsesTheLinkOfThePreviousRequest()
{
    ProcedureRig rig;
    const auto connects = [&rig] { return rig.driver.transcript().filter(QRegularExpression("^Connect\\(")); };

    rig.thread.SwoDisable(); // nothing before: 0
    QVERIFY(rig.settle(1));
    rig.thread.SwoEnable(1); // the procedure before left 1
    QVERIFY(rig.settle(2));
    rig.thread.WiFiServerStart(); // 0
    QVERIFY(rig.settle(3));
    rig.thread.SwoEnable(1); // still 0
    QVERIFY(rig.settle(4));
    rig.thread.SwoDisable(); // 1 by the procedure before
    QVERIFY(rig.settle(5));
    QCOMPARE(connects(), (QStringList{"Connect(0)", "Connect(1)", "Connect(0)", "Connect(0)", "Connect(1)"}));

    // Before, a write asked for a connect with reset; SWO never does.
    rig.thread.EraseTargetMass();
    QVERIFY(rig.settle(6));
    rig.thread.FindDevice();
    QVERIFY(rig.settle(7));
    rig.driver.reset();
    rig.thread.SwoEnable(1);
    QVERIFY(rig.settle(8));
    QVERIFY(rig.driver.transcript().contains(QStringLiteral("ConnectToTarget(0)")));
}

void tst_UtilsUniProgThread::theSelectedDeviceIsUsedOnce()
{
    ProcedureRig rig;
    rig.thread.BootloaderExit(TSelectedDevice());
    QVERIFY(rig.settle(1));
    rig.driver.always(Operation::FindDevice, AnyFailure); // a failure later on does not matter
    rig.thread.FindDevice();
    QVERIFY(rig.settle(2));
    QCOMPARE(rig.driver.callCount(Operation::ConnectSelectedDevice), 1);
    QCOMPARE(rig.driver.callCount(Operation::Connect), 1);
}

void tst_UtilsUniProgThread::theSelectedDeviceSurvivesAFailedConnect()
{
    ProcedureRig rig;
    TSelectedDevice device;
    device.name = QStringLiteral("bench");
    QByteArray info;
    rig.driver.next(Operation::ConnectSelectedDevice, 13, 2);
    rig.thread.BootloaderEnter(device, &info);
    QVERIFY(rig.settle(1));
    rig.thread.ResetTarget();
    QVERIFY(rig.settle(2));
    rig.thread.FindDevice();
    QVERIFY(rig.settle(3));
    rig.thread.FindDevice();
    QVERIFY(rig.settle(4));
    QCOMPARE(rig.driver.transcript(),
             (QStringList{"ConnectSelectedDevice(bench, 0)", "ConnectSelectedDevice(bench, 1)",
                          "ConnectSelectedDevice(bench, 1)", "FindDevice()", "Disconnect()", "Connect(1)",
                          "FindDevice()", "Disconnect()"}));
}

void tst_UtilsUniProgThread::aTargetProcedureForgetsTheSelectedDeviceToo()
{
    ProcedureRig rig;
    rig.driver.next(Operation::ConnectSelectedDevice, 38);
    rig.thread.BootloaderExit(TSelectedDevice());
    QVERIFY(rig.settle(1));
    rig.driver.always(Operation::ConnectToTarget, AnyFailure);
    rig.thread.ResetTarget();
    QVERIFY(rig.settle(2));
    rig.thread.ResetTarget();
    QVERIFY(rig.settle(3));
    QCOMPARE(rig.driver.callCount(Operation::ConnectSelectedDevice), 2);
    QCOMPARE(rig.driver.callCount(Operation::Connect), 1);
}

void tst_UtilsUniProgThread::theSelectedDeviceIsACopy()
{
    ProcedureRig rig;
    TSelectedDevice device;
    device.link = TSelectedDevice::WiFi;
    device.vendorId = 0x1234;
    device.productId = 0x5678;
    device.port = 80;
    device.name = QStringLiteral("name");
    device.serialNumber = QStringLiteral("serial");
    device.firmwareVersion = QStringLiteral("firmware");
    device.hardwareRevision = QStringLiteral("hardware");
    device.address = QStringLiteral("address");
    device.path = QStringLiteral("path");
    QVERIFY(rig.settle(0));
    rig.driver.next(Operation::ConnectSelectedDevice, Answer().untilReleased());
    rig.thread.BootloaderExit(device);
    const TSelectedDevice given = device;
    device = TSelectedDevice();
    QVERIFY(rig.driver.waitUntilHeld());
    rig.driver.release();
    QVERIFY(rig.settle());
    const auto arrived = rig.driver.calls().first().arguments.first().value<TSelectedDevice>();
    QCOMPARE(arrived.link, given.link);
    QCOMPARE(arrived.vendorId, given.vendorId);
    QCOMPARE(arrived.productId, given.productId);
    QCOMPARE(arrived.port, given.port);
    QCOMPARE(arrived.name, given.name);
    QCOMPARE(arrived.serialNumber, given.serialNumber);
    QCOMPARE(arrived.firmwareVersion, given.firmwareVersion);
    QCOMPARE(arrived.hardwareRevision, given.hardwareRevision);
    QCOMPARE(arrived.address, given.address);
    QCOMPARE(arrived.path, given.path);
}

void tst_UtilsUniProgThread::theDriversProgressIsForwardedOnItsOwnThread()
{
    ProcedureRig rig;
    QList<int> values;
    QList<QThread *> threads;
    connect(
        &rig.thread, &UtilsUniProgThread::SignalOperationProgress, this,
        [&](int percent) {
            values.append(percent);
            threads.append(QThread::currentThread());
        },
        Qt::DirectConnection);

    Q_EMIT rig.driver.SignalUpdateProgress(7); // also without a request
    QCOMPARE(values, QList<int>{7});
    QCOMPARE(threads, QList<QThread *>{QThread::currentThread()});
    values.clear();
    threads.clear();

    std::thread([&] { Q_EMIT rig.driver.SignalUpdateProgress(8); }).join();
    QCOMPARE(values, QList<int>{8}); // at once, without the event loop of the thread that the object lives in
    QVERIFY(threads.constFirst() != QThread::currentThread());
    values = {7};
    threads = {nullptr};

    rig.driver.always(Operation::FindDevice, Answer().reporting({-1, 0, 100, 1000}));
    rig.thread.FindDevice();
    QVERIFY(rig.settle());
    QCOMPARE(values, (QList<int>{7, -1, 0, 100, 1000}));
    QCOMPARE(threads.mid(1), QList<QThread *>(4, rig.driver.calls().first().thread));
}

void tst_UtilsUniProgThread::logLinesReachASlotThatIsConnectedByText()
{
    ProcedureRig rig;
    TextReceiver receiver;
    QVERIFY(connect(&rig.thread, SIGNAL(SignalOperationLogMessage(QString, LOGGER_MESSAGE_TYPE)), &receiver,
                    SLOT(slotLine(QString, LOGGER_MESSAGE_TYPE))));
    rig.thread.FindDevice();
    QVERIFY(rig.settle());
    QCOMPARE(receiver.lines, (QStringList{"Starting operation...", "My device signaled."}));
    QCOMPARE(receiver.types, (QList<int>{0, 3}));
}

void tst_UtilsUniProgThread::theProcedureRunsOnAWorkerNamedLikeTheObject()
{
    ProcedureRig rig;
    rig.thread.setObjectName(QStringLiteral("programmer"));
    QString name;
    QThread *lived = nullptr;
    QThread::Priority priority = QThread::IdlePriority;
    rig.driver.always(Operation::FindDevice, Answer().calling([&] {
        name = QThread::currentThread()->objectName();
        priority = QThread::currentThread()->priority();
        lived = rig.thread.thread();
    }));
    rig.thread.FindDevice();
    QVERIFY(rig.settle());
    QCOMPARE(name, QStringLiteral("programmer"));
    QCOMPARE(priority, QThread::InheritPriority);
    QVERIFY(lived != QThread::currentThread());
    QCOMPARE(lived, rig.driver.calls().first().thread);

    // Every request has a worker of its own, which deletes itself.
    QPointer<QThread> worker;
    rig.driver.always(Operation::FindDevice, Answer().untilReleased());
    rig.thread.FindDevice();
    QVERIFY(rig.driver.waitUntilHeld());
    worker = rig.thread.thread();
    rig.driver.release();
    QVERIFY(rig.settle(2));
    QTRY_VERIFY_WITH_TIMEOUT(worker.isNull(), TestLimitMs);
}

UNIPROG_TEST_MAIN(tst_UtilsUniProgThread)
#include "tst_utilsuniprogthread.moc"
