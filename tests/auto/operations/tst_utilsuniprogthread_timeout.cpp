#include "ProcedureRig.h"

#include <UtilsUniProgThread.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QMutex>
#include <QThread>

#include <atomic>
#include <memory>
#include <thread>

using Operation = ScriptedDriver::Operation;
using Answer = ScriptedDriver::Answer;

namespace {

constexpr int Probe = 12345;

/// How long a request waits for its turn, in whole milliseconds that may be cut off on the way.
constexpr qint64 PatienceMs = 5000 - 10;

/// An object whose request waits for a device that another object holds.
class Waiting
{
public:
    explicit Waiting(int (UtilsUniProgThread::*request)() = &UtilsUniProgThread::FindDevice)
        : thread(std::make_unique<UtilsUniProgThread>(&driver, nullptr))
        , log(thread.get())
    {
        driver.reset();
        (thread.get()->*request)();
        worker = thread->thread();
        // Delivered on the worker, so not before its procedure has given up.
        QMetaObject::invokeMethod(thread.get(), "SignalOperationProgress", Qt::QueuedConnection, Q_ARG(int, Probe));
    }

    bool gaveUp() const
    {
        return log.events.contains(ProcedureLog::progress(Probe));
    }

    ScriptedDriver driver;
    std::unique_ptr<UtilsUniProgThread> thread;
    ProcedureLog log;
    QPointer<QThread> worker;
};

/// Never deleted: the process ends while its worker is still there.
Waiting *leftBehind = nullptr;

} // namespace

/// A request that does not get its turn at the device within 5 s. The objects of all tests wait side by side.
class tst_UtilsUniProgThread_timeout : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void nothingIsEmittedAndTheWorkerStays();
    void theObjectCanBeDeleted();
    void theObjectCanBeDeletedLater();
    void aLaterRequestRuns();
    void aLaterRequestFromAnotherThreadRuns();
    void aLaterRequestMayComeBeforeTheDeviceIsFree();
    void theHolderWasNotDisturbed();
    void anApplicationTakesItsTurnToo();

private:
    qint64 waitedFor = 0;
    std::unique_ptr<ProcedureRig> holder;
    std::unique_ptr<Waiting> watched;
    std::unique_ptr<Waiting> watchedOnTarget;
    std::unique_ptr<Waiting> deleted;
    std::unique_ptr<Waiting> deletedLater;
    std::unique_ptr<Waiting> later;
    std::unique_ptr<Waiting> foreign;
    std::unique_ptr<Waiting> early;
};

void tst_UtilsUniProgThread_timeout::initTestCase()
{
    holder = std::make_unique<ProcedureRig>();
    holder->driver.next(Operation::FindDevice, Answer().untilReleased());
    holder->thread.FindDevice();
    QVERIFY(holder->driver.waitUntilHeld());
    QElapsedTimer clock;
    clock.start();
    for (auto *waiting : {&watched, &deleted, &deletedLater, &later, &foreign, &early})
        *waiting = std::make_unique<Waiting>();
    watchedOnTarget = std::make_unique<Waiting>(&UtilsUniProgThread::ResetTarget);
    leftBehind = new Waiting;
    for (const Waiting *waiting : {watched.get(), watchedOnTarget.get(), deleted.get(), deletedLater.get(), later.get(),
                                   foreign.get(), early.get(), leftBehind})
        QTRY_VERIFY_WITH_TIMEOUT(waiting->gaveUp(), TestLimitMs);
    waitedFor = clock.elapsed();

    // This one asks again while the device is still held.
    early->thread->FindDevice();
    holder->driver.release();
    QVERIFY(holder->settle());
}

void tst_UtilsUniProgThread_timeout::nothingIsEmittedAndTheWorkerStays()
{
    QCoreApplication::processEvents();
    QVERIFY2(waitedFor >= PatienceMs && waitedFor < 3 * PatienceMs, qPrintable(QString::number(waitedFor)));
    for (const Waiting *waiting : {watched.get(), watchedOnTarget.get()}) {
        QCOMPARE(waiting->log.events, QStringList{ProcedureLog::progress(Probe)}); // this test's own
        QCOMPARE(waiting->driver.transcript(), QStringList());
        QVERIFY(waiting->thread->IsProcedureInProgress());
        QCOMPARE(waiting->thread->thread(), waiting->worker.data());
        QVERIFY(waiting->worker->isRunning());
    }
}

void tst_UtilsUniProgThread_timeout::theObjectCanBeDeleted()
{
    deleted->thread.reset();
    QVERIFY(deleted->worker.isNull());
}

void tst_UtilsUniProgThread_timeout::theObjectCanBeDeletedLater()
{
    const QPointer<UtilsUniProgThread> object = deletedLater->thread.get();
    deletedLater->thread.release()->deleteLater();
    QTRY_VERIFY_WITH_TIMEOUT(object.isNull() && deletedLater->worker.isNull(), TestLimitMs);
}

void tst_UtilsUniProgThread_timeout::aLaterRequestRuns()
{
    for (int i = 1; i <= 2; ++i) {
        later->thread->ResetTarget();
        QVERIFY(later->thread->IsProcedureInProgress());
        QTRY_VERIFY_WITH_TIMEOUT(later->log.ends == i && !later->thread->IsProcedureInProgress(), TestLimitMs);
        QCOMPARE(later->log.lastStatus, 0);
        QCOMPARE(later->log.completions, i); // the one that gave up is never reported
        QCOMPARE(later->thread->thread(), QThread::currentThread());
    }
    QTRY_VERIFY_WITH_TIMEOUT(later->worker.isNull(), TestLimitMs);
    QCOMPARE(later->driver.callCount(Operation::FindDevice), 0);
}

void tst_UtilsUniProgThread_timeout::aLaterRequestFromAnotherThreadRuns()
{
    std::thread([this] { foreign->thread->ResetTarget(); }).join();
    QTRY_VERIFY_WITH_TIMEOUT(foreign->log.ends == 1 && !foreign->thread->IsProcedureInProgress(), TestLimitMs);
    QCOMPARE(foreign->log.lastStatus, 0);
}

void tst_UtilsUniProgThread_timeout::aLaterRequestMayComeBeforeTheDeviceIsFree()
{
    QTRY_VERIFY_WITH_TIMEOUT(early->log.ends == 1 && !early->thread->IsProcedureInProgress(), TestLimitMs);
    QCOMPARE(early->log.lastStatus, 0);
    QCOMPARE(early->driver.callCount(Operation::FindDevice), 1);
}

void tst_UtilsUniProgThread_timeout::theHolderWasNotDisturbed()
{
    QCOMPARE(holder->log.events,
             ProcedureLog::controlRun({ProcedureLog::line("My device signaled.", LOGGER_MESSAGE_SUCCESS)}));
}

void tst_UtilsUniProgThread_timeout::anApplicationTakesItsTurnToo()
{
    QMutex &turn = *UtilsUniProgThread::mutexAccessThread;
    ProcedureRig rig;
    // Looked at on the worker, where a mutex that it holds itself cannot be had again.
    std::atomic_int freeMeanwhile{0};
    std::atomic_int freeAtTheEnd{0};
    const auto count = [&turn](std::atomic_int &times) {
        if (turn.tryLock()) {
            ++times;
            turn.unlock();
        }
    };
    for (const Operation operation : {Operation::Connect, Operation::FindDevice, Operation::Disconnect})
        rig.driver.always(operation, Answer().calling([&] { count(freeMeanwhile); }));
    connect(
        &rig.thread, &UtilsUniProgThread::SignalProcedureCompleted, this, [&] { count(freeMeanwhile); },
        Qt::DirectConnection);
    connect(
        &rig.thread, &UtilsUniProgThread::finished, this, [&] { count(freeAtTheEnd); }, Qt::DirectConnection);

    turn.lock();
    rig.thread.FindDevice();
    rig.driver.FindDevice(); // the application's own call, while the request waits
    turn.unlock();
    QVERIFY(rig.settle());
    QCOMPARE(rig.driver.interleavings(), QStringList());
    QCOMPARE(rig.driver.transcript(), (QStringList{"FindDevice()", "Connect(1)", "FindDevice()", "Disconnect()"}));
    QCOMPARE(freeMeanwhile.load(), 0);
    QCOMPARE(freeAtTheEnd.load(), 1);
}

UNIPROG_TEST_MAIN(tst_UtilsUniProgThread_timeout)
#include "tst_utilsuniprogthread_timeout.moc"
