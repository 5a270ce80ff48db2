#include "SoakLane.h"

#include <UtilsDialogProcessing.h>
#include <UtilsLogger.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>
#include <fstream>
#include <memory>
#include <vector>

#include <malloc.h>
#include <unistd.h>

// Many random requests on several thread objects side by side, with random faults, and dialogs and a log beside some of
// them: each one has to end with exactly the signals it should, and the memory in use has to stay as it is.

namespace {

constexpr int Lanes = 4;
constexpr int RoundsPerMinute = 60; // a user who makes a request a second, in each lane
constexpr int RoundsPerDialog = 20;
constexpr int MaximumDialogs = 2;
constexpr int RoundsPerLog = 50; // the log is emptied then: lines that leave at its limit leave an item each
constexpr int WarmUpShare = 5; // the first fifth of the rounds
constexpr int Samples = 10;
constexpr qint64 MaximumHeapGrowth = 256 * 1024; // bytes
constexpr qint64 MaximumResidentGrowth = 16 * 1024 * 1024;
constexpr int LogLineDuration = 10; // milliseconds

struct Memory
{
    qint64 heap = 0;
    qint64 resident = 0;

    static Memory now()
    {
        malloc_trim(0);
        std::ifstream file("/proc/self/statm");
        qint64 total = 0;
        qint64 pages = 0;
        file >> total >> pages;
        return {qint64(mallinfo2().uordblks + mallinfo2().hblkhd), pages * sysconf(_SC_PAGESIZE)};
    }
};

class Soak
{
public:
    Soak(quint32 seed, int numberOfRounds)
        : rounds(numberOfRounds)
        , logger(nullptr, LogLineDuration)
    {
        for (quint32 i = 0; i < Lanes; ++i)
            lanes.push_back(std::make_unique<SoakLane>(seed + i));
        QObject::connect(lanes.front()->thread(), &UtilsUniProgThread::SignalOperationLogMessage, &logger,
                         &UtilsLogger::addMessage);
        logger.show();
    }

    bool run()
    {
        const int warmUp = rounds / WarmUpShare;
        const int stretch = qMax(1, (rounds - warmUp) / Samples);
        for (int round = 0; round < rounds; ++round) {
            if (!runRound(round))
                return false;
            if (round == warmUp)
                first = sample(round);
            else if (round > warmUp && ((round - warmUp) % stretch == 0 || round == rounds - 1))
                last = sample(round);
        }
        return isMemoryFlat();
    }

private:
    bool runRound(int round)
    {
        if (round % RoundsPerDialog == 0 && dialogs.size() < MaximumDialogs)
            openDialog(lanes[size_t(round / RoundsPerDialog) % Lanes]->thread());
        if (round % RoundsPerLog == 0)
            logger.clear();
        for (const auto &lane : lanes)
            lane->begin();
        const bool ended = spinUntil([this] {
            return std::all_of(lanes.begin(), lanes.end(), [](const auto &lane) { return lane->isAtRest(); });
        });
        for (const auto &lane : lanes) {
            const QString complaint = ended || lane->isAtRest() ? lane->complaint() : QStringLiteral("does not end");
            if (!complaint.isEmpty()) {
                std::fprintf(stderr, "Round %d: %s\n", round, qPrintable(complaint));
                return false;
            }
        }
        return true;
    }

    /// For the next request of \a thread. A failure is read for a moment, and the dialog closed.
    void openDialog(UtilsUniProgThread *thread)
    {
        auto *dialog = new UtilsDialogProcessing;
        dialogs.append(dialog);
        QObject::connect(dialog, &QObject::destroyed, &logger, [this, dialog] { dialogs.removeAll(dialog); });
        QObject::connect(thread, &UtilsUniProgThread::SignalOperationLogMessage, dialog,
                         &UtilsDialogProcessing::slotUpdateLog);
        QObject::connect(thread, &UtilsUniProgThread::SignalOperationProgress, dialog,
                         &UtilsDialogProcessing::slotUpdateProgressbar);
        QObject::connect(thread, &UtilsUniProgThread::SignalProcedureCompleted, dialog,
                         &UtilsDialogProcessing::slotProcedureCompleted);
        QObject::connect(thread, &UtilsUniProgThread::SignalProcedureCompleted, dialog, [dialog, thread](int status) {
            thread->disconnect(dialog);
            if (status != 0)
                QTimer::singleShot(0, dialog, &UtilsDialogProcessing::slotClose);
        });
        dialog->show();
    }

    /// With nothing else alive than at any other time.
    Memory sample(int round)
    {
        spinUntil([this] { return dialogs.isEmpty(); });
        logger.clear();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        const Memory memory = Memory::now();
        std::printf("%8d requests: heap %9.1f KiB, resident %9.1f KiB\n", (round + 1) * Lanes,
                    double(memory.heap) / 1024, double(memory.resident) / 1024);
        std::fflush(stdout);
        return memory;
    }

    bool isMemoryFlat() const
    {
        int failures = 0;
        for (const auto &lane : lanes)
            failures += lane->failures();
        std::printf("%d of %d requests failed, each as it should.\n", failures, rounds * Lanes);
        const qint64 heap = last.heap - first.heap;
        const qint64 resident = last.resident - first.resident;
        std::printf("Growth since the first figure: heap %.1f KiB (at most %.1f), resident %.1f KiB (at most %.1f)\n",
                    double(heap) / 1024, double(MaximumHeapGrowth) / 1024, double(resident) / 1024,
                    double(MaximumResidentGrowth) / 1024);
        return heap <= MaximumHeapGrowth && resident <= MaximumResidentGrowth;
    }

    const int rounds;
    UtilsLogger logger;
    std::vector<std::unique_ptr<SoakLane>> lanes;
    QList<const QObject *> dialogs;
    Memory first;
    Memory last;
};

} // namespace

int main(int argc, char **argv)
{
    UniProgTest::prepareProcess();
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);

    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption minutesOption("minutes", "Simulated minutes, a request a second in each lane.", "N", "1");
    const QCommandLineOption seedOption("seed", "Makes the same requests with the same faults again.", "N");
    parser.addOptions({minutesOption, seedOption});
    parser.process(application);
    const int minutes = parser.value(minutesOption).toInt();
    bool isSeedGiven = false;
    quint32 seed = parser.value(seedOption).toUInt(&isSeedGiven);
    if (!isSeedGiven)
        seed = QRandomGenerator::global()->generate();
    if (minutes < 1)
        parser.showHelp(2);

    std::printf("%d simulated minutes with %d thread objects, --seed %u\n", minutes, Lanes, seed);
    QElapsedTimer timer;
    timer.start();
    const bool passed = Soak(seed, minutes * RoundsPerMinute).run();
    std::printf("%s after %.1f s\n", passed ? "Passed" : "FAILED", double(timer.elapsed()) / 1000);
    return passed ? 0 : 1;
}
