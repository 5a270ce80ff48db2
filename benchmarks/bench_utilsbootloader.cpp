// A whole firmware update of the device with a driver that costs nothing, beside bare Qt reading the file and cutting
// it into the same blocks. The counter "peak_per_payload" is the memory that the process needed at its height beyond
// what it had before, divided by the size of the payload: 1 is the payload held once.

#include "BenchmarkMain.h"

#include <ScriptedDriver.h>
#include <UtilsUniProgThread.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

namespace {

constexpr int PayloadSize = 64 * 1024 * 1024;
constexpr int BlockSize = 992;
constexpr int HeaderSize = 8;

qint64 peakBytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return qint64(usage.ru_maxrss) * 1024;
}

class FreeDriver : public ScriptedDriver
{
public:
    int ConnectSelectedDevice(TSelectedDevice *, OPERATION_TYPE) override
    {
        return 0;
    }
    int BootloaderErase(unsigned int, int) override
    {
        return 0;
    }
    int BootloaderWrite(unsigned int, int, const char *data) override
    {
        benchmark::DoNotOptimize(*data);
        return 0;
    }
    int BootloaderVerify(unsigned int, int) override
    {
        return 0;
    }
    int Disconnect() override
    {
        return 0;
    }
};

/// The image file; written in pieces, so that it never stood in memory.
QString imagePath()
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("image.bin"));
    QFile file(path);
    if (file.exists() || !file.open(QIODevice::WriteOnly))
        return path;
    file.write(QByteArray(HeaderSize, '\0'));
    const QByteArray piece(64 * 1024, 'p');
    for (int written = 0; written < PayloadSize; written += int(piece.size()))
        file.write(piece);
    return path;
}

void update(benchmark::State &state)
{
    const QString path = imagePath();
    FreeDriver driver;
    UtilsUniProgThread thread(&driver, nullptr);
    QEventLoop loop;
    QObject::connect(&thread, &UtilsUniProgThread::finished, &loop, &QEventLoop::quit);
    const qint64 before = peakBytes();
    for (auto _ : state) {
        thread.BootloaderProcess(TSelectedDevice(), path, 0x1002, 4096);
        loop.exec();
        while (thread.IsProcedureInProgress())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    state.SetBytesProcessed(state.iterations() * qint64(PayloadSize));
    state.counters["peak_per_payload"] = double(peakBytes() - before) / PayloadSize;
}

void bareQt(benchmark::State &state)
{
    const QString path = imagePath();
    for (auto _ : state) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            state.SkipWithError("The image cannot be read.");
        const QByteArray bytes = file.readAll();
        for (qsizetype offset = HeaderSize; offset < bytes.size(); offset += BlockSize) {
            const QByteArray block = bytes.mid(offset, BlockSize);
            benchmark::DoNotOptimize(*block.constData());
        }
    }
    state.SetBytesProcessed(state.iterations() * qint64(PayloadSize));
}

// First, and with few iterations: the height of memory is kept for the whole process.
BENCHMARK(update)->Name("update/UtilsBootloader")->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(10);
BENCHMARK(bareQt)->Name("update/Qt")->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(10);

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    return runBenchmarks(argc, argv);
}
