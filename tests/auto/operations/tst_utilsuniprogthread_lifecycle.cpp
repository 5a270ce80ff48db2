#include "ProcedureRig.h"

#include <UtilsUniProgThread.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

using namespace std::chrono_literals;
using Operation = ScriptedDriver::Operation;
using Answer = ScriptedDriver::Answer;

namespace {

/// Long enough that a procedure is still running when the test goes on.
constexpr auto AWhile = 50ms;

/// A thread with an event loop. Start it once its guests have moved in.
class HomeThread : public QThread
{
public:
    ~HomeThread() override
    {
        end();
    }

    void end()
    {
        quit();
        wait();
        const std::lock_guard<std::mutex> lock(mutex); // what ThreadSanitizer sees of wait()
    }

protected:
    void run() override
    {
        exec();
        const std::lock_guard<std::mutex> lock(mutex);
    }

private:
    std::mutex mutex;
};

/// Hears an event on the thread it lives in. A function that is called there would be counted by Qt's own atomic
/// numbers, which ThreadSanitizer does not see.
class Guest : public QObject
{
public:
    std::atomic_bool heard{false};

protected:
    void customEvent(QEvent *) override
    {
        heard = true;
    }
};

using Delete = std::function<void(std::unique_ptr<UtilsUniProgThread> &)>;

} // namespace

Q_DECLARE_METATYPE(Delete)

/// Where the object lives, when it is busy, and how it goes.
class tst_UtilsUniProgThread_lifecycle : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theObjectIsBusyUntilItIsHome();
    void aGivenThreadIsTheHome();
    void aRequestFromAnotherThreadHopsHome();
    void aRequestInsideTheCompletionSlotRuns_data();
    void aRequestInsideTheCompletionSlotRuns();
    void aRequestInsideTheFinishedSlotRuns_data();
    void aRequestInsideTheFinishedSlotRuns();
    void theObjectIsNeverIdleBetweenChainedRequests();
    void anObjectThatWasMovedComesBackToItsHome();
    void theEndOfAnotherThreadDoesNotBringTheObjectHome();
    void completionIsEmittedUnderTheLockAndFinishedAfterIt();
    void deletionInEveryPhase_data();
    void deletionInEveryPhase();
    void deletionWhileWaitingForTheTurn();
    void deletionDoesNotDisturbADriverThatWaitsInAnEventLoop_data();
    void deletionDoesNotDisturbADriverThatWaitsInAnEventLoop();
    void anObjectMayGoWhileAnotherOneReportsProgress();
    void anObjectMayGoInASlotOfItsProgress();
    void deletionBeforeTheHopHasArrived();
    void theDriverMayGoBeforeTheObject();
};

void tst_UtilsUniProgThread_lifecycle::theObjectIsBusyUntilItIsHome()
{
    ProcedureRig rig;
    bool busyInSlot = false;
    connect(
        &rig.thread, &UtilsUniProgThread::SignalProcedureCompleted, this,
        [&] { busyInSlot = rig.thread.IsProcedureInProgress(); }, Qt::DirectConnection);
    rig.driver.always(Operation::FindDevice, Answer().untilReleased());
    rig.thread.FindDevice();
    QVERIFY(rig.thread.IsProcedureInProgress());
    QVERIFY(rig.driver.waitUntilHeld());
    QVERIFY(rig.thread.IsProcedureInProgress());
    QVERIFY(rig.thread.thread() != QThread::currentThread());
    rig.driver.release();
    QVERIFY(rig.settle());
    QVERIFY(busyInSlot);
    QCOMPARE(rig.thread.thread(), QThread::currentThread());
}

void tst_UtilsUniProgThread_lifecycle::aGivenThreadIsTheHome()
{
    HomeThread home;
    ScriptedDriver driver;
    auto thread = std::make_unique<UtilsUniProgThread>(&driver, &home);
    ProcedureLog log(thread.get());
    QCOMPARE(thread->thread(), &home);
    home.start();
    driver.always(Operation::FindDevice, Answer().untilReleased()); // home has an event loop that waits for nobody here
    for (int i = 1; i <= 2; ++i) {
        thread->FindDevice();
        QVERIFY(driver.waitUntilHeld());
        QVERIFY(thread->IsProcedureInProgress());
        driver.release();
        QVERIFY(spinUntil([&] { return log.ends == i && !thread->IsProcedureInProgress(); }));
        QCOMPARE(thread->thread(), &home);
    }
    QCOMPARE(log.events, ProcedureLog::controlRun({log.events.at(1)}) + ProcedureLog::controlRun({log.events.at(1)}));
    const QPointer<UtilsUniProgThread> object = thread.get();
    thread.release()->deleteLater(); // it has to go where it lives
    QVERIFY(spinUntil([&] { return object.isNull(); }));
    home.end();
}

void tst_UtilsUniProgThread_lifecycle::aRequestFromAnotherThreadHopsHome()
{
    ProcedureRig rig;
    int returned = -1;
    bool busy = false;
    std::thread([&] {
        returned = rig.thread.ResetTarget();
        busy = rig.thread.IsProcedureInProgress();
    }).join(); // home has not handled an event meanwhile
    QCOMPARE(returned, 0);
    QVERIFY(busy);
    QCOMPARE(rig.driver.callCount(Operation::Connect), 0);
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.lastStatus, 0);
    QCOMPARE(rig.thread.thread(), QThread::currentThread());
}

void tst_UtilsUniProgThread_lifecycle::aRequestInsideTheCompletionSlotRuns_data()
{
    QTest::addColumn<Qt::ConnectionType>("type");
    QTest::newRow("queued") << Qt::AutoConnection;
    QTest::newRow("direct") << Qt::DirectConnection;
    QTest::newRow("blocking") << Qt::BlockingQueuedConnection;
}

void tst_UtilsUniProgThread_lifecycle::aRequestInsideTheCompletionSlotRuns()
{
    QFETCH(Qt::ConnectionType, type);
    constexpr int Requests = 30;
    ProcedureRig rig;
    std::atomic_int left{Requests - 1};
    std::atomic_int refused{0};
    connect(
        &rig.thread, &UtilsUniProgThread::SignalProcedureCompleted, this,
        [&] {
            if (left-- <= 0)
                return;
            if (rig.thread.FindDevice() != 0 || !rig.thread.IsProcedureInProgress())
                ++refused;
        },
        type);
    rig.thread.FindDevice();
    QVERIFY(rig.settle(Requests));
    QCOMPARE(refused.load(), 0);
    QCOMPARE(rig.log.completions, Requests);
    QCOMPARE(rig.log.ends, Requests);
    QStringList expected;
    for (int i = 0; i < Requests; ++i)
        expected += ProcedureLog::controlRun({ProcedureLog::line("My device signaled.", LOGGER_MESSAGE_SUCCESS)});
    QCOMPARE(rig.log.events, expected);
    QCOMPARE(rig.driver.interleavings(), QStringList());
    QCOMPARE(rig.thread.thread(), QThread::currentThread());
}

void tst_UtilsUniProgThread_lifecycle::aRequestInsideTheFinishedSlotRuns_data()
{
    QTest::addColumn<Qt::ConnectionType>("type");
    QTest::newRow("queued") << Qt::AutoConnection;
    QTest::newRow("direct") << Qt::DirectConnection;
}

void tst_UtilsUniProgThread_lifecycle::aRequestInsideTheFinishedSlotRuns()
{
    QFETCH(Qt::ConnectionType, type);
    constexpr int Requests = 30;
    ProcedureRig rig;
    std::atomic_int left{Requests - 1};
    connect(
        &rig.thread, &UtilsUniProgThread::finished, this,
        [&] {
            if (left-- > 0)
                rig.thread.ResetTarget();
        },
        type);
    rig.thread.ResetTarget();
    QVERIFY(rig.settle(Requests));
    QCOMPARE(rig.log.completions, Requests);
    QCOMPARE(rig.log.lastStatus, 0);
}

void tst_UtilsUniProgThread_lifecycle::theObjectIsNeverIdleBetweenChainedRequests()
{
    constexpr int Requests = 100;
    ProcedureRig rig;
    std::atomic_int completed{0};
    connect(
        &rig.thread, &UtilsUniProgThread::SignalProcedureCompleted, this,
        [&] {
            if (completed + 1 < Requests)
                rig.thread.FindDevice();
            ++completed;
        },
        Qt::DirectConnection);
    std::atomic_bool stop{false};
    std::atomic_int idleTooEarly{0};
    rig.thread.FindDevice();
    std::thread watcher([&] {
        while (!stop) {
            if (!rig.thread.IsProcedureInProgress() && completed < Requests)
                ++idleTooEarly;
            QThread::yieldCurrentThread();
        }
    });
    const bool settled = rig.settle(Requests);
    stop = true;
    watcher.join();
    QVERIFY(settled);
    QCOMPARE(idleTooEarly.load(), 0);
}

void tst_UtilsUniProgThread_lifecycle::anObjectThatWasMovedComesBackToItsHome()
{
    HomeThread elsewhere;
    ProcedureRig rig;
    rig.thread.moveToThread(&elsewhere);
    elsewhere.start();
    rig.thread.FindDevice();
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.lastStatus, 0);
    QCOMPARE(rig.log.completions, 1);
    QCOMPARE(rig.thread.thread(), QThread::currentThread());

    // The other thread is the application's, and goes on.
    Guest guest;
    guest.moveToThread(&elsewhere);
    QCoreApplication::postEvent(&guest, new QEvent(QEvent::User));
    QVERIFY(spinUntil([&guest] { return guest.heard.load(); }));
    elsewhere.end();
}

void tst_UtilsUniProgThread_lifecycle::theEndOfAnotherThreadDoesNotBringTheObjectHome()
{
    ProcedureRig rig;
    QThread stranger;
    connect(&stranger, &QThread::finished, &rig.thread, &UtilsUniProgThread::SlotProcedureFinished);
    // A driver with an event loop of its own delivers the news in the middle of the procedure.
    QThread *livedBefore = nullptr;
    QThread *livedAfter = nullptr;
    rig.driver.always(Operation::FindDevice, Answer().calling([&] {
        livedBefore = rig.thread.thread();
        stranger.start();
        stranger.quit();
        stranger.wait();
        QCoreApplication::processEvents();
        livedAfter = rig.thread.thread();
    }));
    rig.thread.FindDevice();
    QVERIFY(rig.settle());
    QVERIFY(livedBefore != QThread::currentThread());
    QCOMPARE(livedAfter, livedBefore);

    // At home and idle it changes nothing either.
    rig.thread.SlotProcedureFinished();
    QVERIFY(!rig.thread.IsProcedureInProgress());
    QCOMPARE(rig.thread.thread(), QThread::currentThread());
    rig.thread.FindDevice();
    QVERIFY(rig.thread.IsProcedureInProgress());
    QVERIFY(rig.settle(2));
}

void tst_UtilsUniProgThread_lifecycle::completionIsEmittedUnderTheLockAndFinishedAfterIt()
{
    ScriptedDriver driver;
    UtilsUniProgThread first(&driver, nullptr);
    UtilsUniProgThread second(&driver, nullptr);
    driver.reset();
    std::atomic_int connectsInCompletion{-1};
    bool secondCameAfterUnlock = false;
    connect(
        &first, &UtilsUniProgThread::SignalProcedureCompleted, this,
        [&] {
            // The other object is at the door, and stays there.
            QThread::msleep(100);
            connectsInCompletion = driver.callCount(Operation::Connect);
        },
        Qt::DirectConnection);
    connect(
        &first, &UtilsUniProgThread::finished, this,
        [&] { secondCameAfterUnlock = driver.waitForCall(Operation::Connect, 2); }, Qt::DirectConnection);
    driver.next(Operation::FindDevice, Answer().untilReleased());
    ProcedureLog firstLog(&first);
    ProcedureLog secondLog(&second);
    first.FindDevice();
    QVERIFY(driver.waitUntilHeld());
    second.FindDevice();
    driver.release();
    QVERIFY(spinUntil([&] { return firstLog.ends == 1 && secondLog.ends == 1; }));
    QVERIFY(spinUntil([&] { return !first.IsProcedureInProgress() && !second.IsProcedureInProgress(); }));
    QCOMPARE(connectsInCompletion.load(), 1);
    QVERIFY(secondCameAfterUnlock);
}

void tst_UtilsUniProgThread_lifecycle::deletionInEveryPhase_data()
{
    QTest::addColumn<QString>("phase");
    QTest::addColumn<Delete>("remove");
    const Delete now = [](std::unique_ptr<UtilsUniProgThread> &thread) { thread.reset(); };
    const Delete later = [](std::unique_ptr<UtilsUniProgThread> &thread) { thread.release()->deleteLater(); };
    for (const char *phase : {"idle", "requested", "running", "completed", "finished", "completed, requested again"}) {
        QTest::addRow("delete, %s", phase) << QString::fromLatin1(phase) << now;
        QTest::addRow("deleteLater, %s", phase) << QString::fromLatin1(phase) << later;
    }
}

void tst_UtilsUniProgThread_lifecycle::deletionInEveryPhase()
{
    QFETCH(QString, phase);
    QFETCH(Delete, remove);
    constexpr int Rounds = 10; // the phases are short: several tries meet more of their edges
    for (int round = 0; round < Rounds; ++round) {
        ScriptedDriver driver;
        auto thread = std::make_unique<UtilsUniProgThread>(&driver, nullptr);
        const QPointer<UtilsUniProgThread> object = thread.get();
        ProcedureLog log(thread.get());
        QPointer<QThread> worker;
        const bool requested = phase != QLatin1String("idle");
        if (phase == QLatin1String("running"))
            driver.always(Operation::FindDevice, Answer().after(AWhile));
        if (requested) {
            thread->FindDevice();
            worker = thread->thread();
        }
        if (phase == QLatin1String("running"))
            QVERIFY(driver.waitForCall(Operation::FindDevice));
        else if (phase.startsWith(QLatin1String("completed")))
            QVERIFY(spinUntil([&] { return log.completions == 1; }));
        else if (phase == QLatin1String("finished"))
            QVERIFY(spinUntil([&] { return log.ends == 1; }));
        if (phase.endsWith(QLatin1String("again")))
            thread->FindDevice();

        remove(thread);
        QVERIFY(spinUntil([&] { return object.isNull(); }));
        QVERIFY(spinUntil([&] { return worker.isNull(); }));
        // What has begun has ended: the device is not left connected.
        QCOMPARE(driver.callCount(Operation::Disconnect), driver.callCount(Operation::Connect));
        if (requested)
            QVERIFY(driver.callCount(Operation::Connect) >= 1);
    }
}

void tst_UtilsUniProgThread_lifecycle::deletionWhileWaitingForTheTurn()
{
    ScriptedDriver driver;
    UtilsUniProgThread holder(&driver, nullptr);
    ProcedureLog log(&holder);
    auto waiting = std::make_unique<UtilsUniProgThread>(&driver, nullptr);
    driver.reset();
    driver.next(Operation::FindDevice, Answer().after(AWhile));
    holder.FindDevice();
    QVERIFY(driver.waitForCall(Operation::FindDevice));
    waiting->FindDevice();
    waiting.reset(); // waits for its turn, and for the procedure
    QCOMPARE(driver.callCount(Operation::FindDevice), 2);
    QVERIFY(spinUntil([&] { return log.ends == 1 && !holder.IsProcedureInProgress(); }));
    QCOMPARE(driver.interleavings(), QStringList());
}

void tst_UtilsUniProgThread_lifecycle::deletionDoesNotDisturbADriverThatWaitsInAnEventLoop_data()
{
    using Remove = std::function<void(UtilsUniProgThread *)>;
    QTest::addColumn<Remove>("removeAtHome");
    QTest::addColumn<Remove>("removeOnWorker");
    const Remove nothing = [](UtilsUniProgThread *) {};
    const Remove now = [](UtilsUniProgThread *thread) { delete thread; };
    const Remove later = [](UtilsUniProgThread *thread) { thread->deleteLater(); };
    const Remove laterThanARequest = [](UtilsUniProgThread *thread) {
        thread->FindDevice();
        thread->deleteLater();
    };
    QTest::newRow("delete") << now << nothing;
    QTest::newRow("deleteLater") << later << nothing;
    QTest::newRow("deleteLater on the worker") << nothing << later;
    QTest::newRow("deleteLater on both") << later << later;
    QTest::newRow("delete, and deleteLater on the worker") << now << later;
    QTest::newRow("deleteLater after another request") << laterThanARequest << nothing;
}

void tst_UtilsUniProgThread_lifecycle::deletionDoesNotDisturbADriverThatWaitsInAnEventLoop()
{
    using Remove = std::function<void(UtilsUniProgThread *)>;
    QFETCH(Remove, removeAtHome);
    QFETCH(Remove, removeOnWorker);
    ScriptedDriver driver;
    std::atomic_bool waitedToTheEnd{false};
    driver.always(Operation::FindDevice, Answer().calling([&] {
        QEventLoop loop;
        QTimer::singleShot(AWhile, &loop, [&] {
            waitedToTheEnd = true;
            loop.quit();
        });
        loop.exec();
    }));
    auto *thread = new UtilsUniProgThread(&driver, nullptr);
    const QPointer<UtilsUniProgThread> object = thread;
    connect(
        thread, &UtilsUniProgThread::SignalOperationLogMessage, this, [&] { removeOnWorker(thread); },
        Qt::DirectConnection);
    thread->FindDevice();
    QVERIFY(driver.waitForCall(Operation::FindDevice));
    removeAtHome(thread);
    QVERIFY(spinUntil([&] { return object.isNull(); }));
    QVERIFY(waitedToTheEnd);
    QCOMPARE(driver.callCount(Operation::Disconnect), driver.callCount(Operation::Connect));
}

void tst_UtilsUniProgThread_lifecycle::anObjectMayGoWhileAnotherOneReportsProgress()
{
    constexpr int Objects = 3000;
    ProcedureRig rig;
    std::atomic_bool enough{false};
    rig.driver.always(Operation::FindDevice, Answer().calling([&] {
        while (!enough)
            Q_EMIT rig.driver.SignalUpdateProgress(50);
    }));
    rig.thread.FindDevice();
    QVERIFY(rig.driver.waitForCall(Operation::FindDevice));
    static std::atomic_int heard{0}; // not captured: ThreadSanitizer does not see how Qt hands a capture over
    for (int i = 0; i < Objects; ++i) {
        UtilsUniProgThread other(&rig.driver, nullptr);
        connect(
            &other, &UtilsUniProgThread::SignalOperationProgress, this, [] { ++heard; }, Qt::DirectConnection);
    }
    enough = true;
    QVERIFY(rig.settle());
    const int heardByTheDead = heard;
    Q_EMIT rig.driver.SignalUpdateProgress(100);
    QCOMPARE(heard.load(), heardByTheDead);
}

void tst_UtilsUniProgThread_lifecycle::anObjectMayGoInASlotOfItsProgress()
{
    ScriptedDriver driver;
    const QPointer<UtilsUniProgThread> thread = new UtilsUniProgThread(&driver, nullptr);
    QList<int> heard;
    connect(thread, &UtilsUniProgThread::SignalOperationProgress, this, [&](int percent) {
        heard.append(percent);
        if (percent == 1) {
            Q_EMIT driver.SignalUpdateProgress(2); // it may be told of more meanwhile
            delete thread;
            Q_EMIT driver.SignalUpdateProgress(3);
        }
    });
    Q_EMIT driver.SignalUpdateProgress(1);
    QVERIFY(!thread);
    QCOMPARE(heard, (QList<int>{1, 2}));
}

void tst_UtilsUniProgThread_lifecycle::deletionBeforeTheHopHasArrived()
{
    ScriptedDriver driver;
    auto thread = std::make_unique<UtilsUniProgThread>(&driver, nullptr);
    std::thread([&] { thread->FindDevice(); }).join();
    QVERIFY(thread->IsProcedureInProgress());
    thread.reset();
    QCoreApplication::processEvents();
    QCOMPARE(driver.callCount(Operation::Connect), 0);
}

void tst_UtilsUniProgThread_lifecycle::theDriverMayGoBeforeTheObject()
{
    auto driver = std::make_unique<ScriptedDriver>();
    UtilsUniProgThread thread(driver.get(), nullptr);
    ProcedureLog log(&thread);
    thread.FindDevice();
    QVERIFY(spinUntil([&] { return log.ends == 1 && !thread.IsProcedureInProgress(); }));
    driver.reset();
    QVERIFY(!thread.IsProcedureInProgress());
}

UNIPROG_TEST_MAIN(tst_UtilsUniProgThread_lifecycle)
#include "tst_utilsuniprogthread_lifecycle.moc"
