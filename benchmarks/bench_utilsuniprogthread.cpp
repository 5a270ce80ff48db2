// From a request to its completion signal in the requesting thread, with a driver that costs nothing, beside bare Qt
// doing the same: one QThread per job, a worker object moved to it, and the same queued signals back.
//
// Both are timed in turns in one loop, so that they meet the same machine; the counter "ratio" is the class's time
// divided by bare Qt's.

#include "BenchmarkMain.h"

#include <ScriptedDriver.h>
#include <UtilsUniProgThread.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

namespace {

/// Free of charge for the operations that are used here.
class FreeDriver : public ScriptedDriver
{
public:
    int Connect(OPERATION_TYPE) override
    {
        return 0;
    }
    int FindDevice() override
    {
        return 0;
    }
    int Disconnect() override
    {
        return 0;
    }
};

/// What the thread does for FindDevice, written with Qt alone.
class BareJob : public QObject
{
    Q_OBJECT

public:
    void start()
    {
        auto *worker = new QThread;
        moveToThread(worker);
        connect(worker, &QThread::started, this, &BareJob::run);
        connect(worker, &QThread::finished, this, &BareJob::goHome);
        connect(this, &BareJob::finished, worker, &QThread::quit);
        connect(worker, &QThread::finished, worker, &QObject::deleteLater);
        worker->start();
    }

    QThread *const home = QThread::currentThread();

Q_SIGNALS:
    void finished();
    void completed(int status, const QString &message);
    void logMessage(const QString &message, LOGGER_MESSAGE_TYPE type);

private:
    void run()
    {
        Q_EMIT logMessage(QStringLiteral("Starting operation..."), LOGGER_MESSAGE_DEFAULT);
        Q_EMIT logMessage(QStringLiteral("My device signaled."), LOGGER_MESSAGE_SUCCESS);
        Q_EMIT completed(0, QString());
        Q_EMIT finished();
    }

    void goHome()
    {
        moveToThread(home);
    }
};

/// Receives the signals of either and notes when the completion arrives.
class Receiver : public QObject
{
    Q_OBJECT

public:
    template <typename Job>
    qint64 nanosecondsOf(Job &&job)
    {
        QElapsedTimer timer;
        timer.start();
        job();
        loop.exec();
        return timer.nsecsElapsed();
    }

public Q_SLOTS:
    void slotLine(const QString &text, LOGGER_MESSAGE_TYPE)
    {
        characters += text.size();
    }
    void slotCompleted(int, const QString &)
    {
        loop.quit();
    }

private:
    QEventLoop loop;
    qsizetype characters = 0;
};

template <typename IsBusy>
void settle(IsBusy &&isBusy)
{
    while (isBusy())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    QCoreApplication::processEvents();
}

qint64 median(std::vector<qint64> &times)
{
    const auto middle = times.begin() + qsizetype(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

void requestToCompletion(benchmark::State &state)
{
    FreeDriver driver;
    UtilsUniProgThread thread(&driver, nullptr);
    BareJob bare;
    Receiver receiver;
    QObject::connect(&thread, &UtilsUniProgThread::SignalOperationLogMessage, &receiver, &Receiver::slotLine);
    QObject::connect(&thread, &UtilsUniProgThread::SignalProcedureCompleted, &receiver, &Receiver::slotCompleted);
    QObject::connect(&bare, &BareJob::logMessage, &receiver, &Receiver::slotLine);
    QObject::connect(&bare, &BareJob::completed, &receiver, &Receiver::slotCompleted);

    std::vector<qint64> threadTimes;
    std::vector<qint64> bareTimes;
    for (auto _ : state) {
        threadTimes.push_back(receiver.nanosecondsOf([&] { thread.FindDevice(); }));
        settle([&] { return thread.IsProcedureInProgress(); });
        bareTimes.push_back(receiver.nanosecondsOf([&] { bare.start(); }));
        settle([&] { return bare.thread() != bare.home; });
        state.SetIterationTime(double(threadTimes.back()) / 1e9);
    }
    const double ours = double(median(threadTimes));
    const double theirs = double(median(bareTimes));
    state.counters["median_us"] = ours / 1e3;
    state.counters["bare_qt_median_us"] = theirs / 1e3;
    state.counters["ratio"] = ours / theirs;
}

BENCHMARK(requestToCompletion)
    ->Name("request/UtilsUniProgThread")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(3000);

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    return runBenchmarks(argc, argv);
}

#include "bench_utilsuniprogthread.moc"
