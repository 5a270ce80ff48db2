#include "ProcedureRig.h"

#include <UtilsUniProgThread.h>

#include <UniProgTest.h>

#include <QApplication>

#include <algorithm>
#include <memory>
#include <vector>

using Operation = ScriptedDriver::Operation;

/// Many requests: nothing meets on the driver, nothing is lost, nothing is said twice.
class tst_UtilsUniProgThread_stress : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aThousandRequestsInARow();
    void fourObjectsSideBySide();
};

void tst_UtilsUniProgThread_stress::aThousandRequestsInARow()
{
    constexpr int Requests = 1000;
    ProcedureRig rig;
    connect(&rig.thread, &UtilsUniProgThread::SignalProcedureCompleted, &rig.log, [&] {
        if (rig.log.completions < Requests)
            rig.thread.FindDevice();
    });
    rig.thread.FindDevice();
    QVERIFY(rig.settle(Requests));
    QCoreApplication::processEvents();
    QCOMPARE(rig.log.completions, Requests);
    QCOMPARE(rig.log.ends, Requests);
    QCOMPARE(rig.driver.interleavings(), QStringList());

    const QStringList oneLog
        = ProcedureLog::controlRun({ProcedureLog::line("My device signaled.", LOGGER_MESSAGE_SUCCESS)});
    const QStringList oneTranscript{"Connect(1)", "FindDevice()", "Disconnect()"};
    const QStringList transcript = rig.driver.transcript();
    QCOMPARE(rig.log.events.size(), oneLog.size() * Requests);
    QCOMPARE(transcript.size(), oneTranscript.size() * Requests);
    for (int i = 0; i < Requests; ++i) {
        QCOMPARE(rig.log.events.mid(i * oneLog.size(), oneLog.size()), oneLog);
        QCOMPARE(transcript.mid(i * oneTranscript.size(), oneTranscript.size()), oneTranscript);
    }
}

void tst_UtilsUniProgThread_stress::fourObjectsSideBySide()
{
    constexpr int Objects = 4;
    constexpr int RequestsEach = 250;
    ScriptedDriver driver;
    driver.setRecording(false);
    std::vector<std::unique_ptr<UtilsUniProgThread>> threads;
    std::vector<std::unique_ptr<ProcedureLog>> logs;
    for (int i = 0; i < Objects; ++i) {
        threads.push_back(std::make_unique<UtilsUniProgThread>(&driver, nullptr));
        logs.push_back(std::make_unique<ProcedureLog>(threads.back().get()));
        UtilsUniProgThread *const thread = threads.back().get();
        ProcedureLog *const log = logs.back().get();
        connect(thread, &UtilsUniProgThread::SignalProcedureCompleted, log, [thread, log] {
            if (log->completions < RequestsEach)
                thread->ResetTarget();
        });
    }
    for (const auto &thread : threads)
        thread->ResetTarget();

    const auto allDone = [&] {
        return std::all_of(threads.begin(), threads.end(), [](const auto &t) { return !t->IsProcedureInProgress(); })
            && std::all_of(logs.begin(), logs.end(), [](const auto &log) { return log->ends == RequestsEach; });
    };
    QVERIFY(spinUntil(allDone));
    QCOMPARE(driver.callCount(Operation::ResetTarget), Objects * RequestsEach);
    QCOMPARE(driver.interleavings(), QStringList());
    const QStringList oneLog
        = ProcedureLog::targetRun({ProcedureLog::line("Reset operation done.", LOGGER_MESSAGE_SUCCESS)});
    for (const auto &log : logs) {
        QCOMPARE(log->completions, RequestsEach);
        for (int i = 0; i < RequestsEach; ++i)
            QCOMPARE(log->events.mid(i * oneLog.size(), oneLog.size()), oneLog);
    }
}

UNIPROG_TEST_MAIN(tst_UtilsUniProgThread_stress)
#include "tst_utilsuniprogthread_stress.moc"
