#ifndef SIMULATEDTEST_H
#define SIMULATEDTEST_H

#include <SimulatedProgrammer.h>

#include <QTest>

#include <functional>
#include <thread>

// What the tests of the simulated programmer share.

/// How long to wait for another thread.
inline constexpr int ThreadLimitMs = 30'000;

/// Runs a function on a thread of its own and is joined at the end of the scope. Not a QThread, which keeps it from
/// ThreadSanitizer that joining it orders what both threads do.
class Worker
{
public:
    explicit Worker(const std::function<void()> &function)
        : thread(function)
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

private:
    std::thread thread;
};

/// A connected device without a target, without waiting.
inline void connectDevice(SimulatedProgrammer &programmer)
{
    programmer.setTimeScale(0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_CONFIGURATION), 0);
}

/// From nothing to a connected target, without waiting.
inline void connectAll(SimulatedProgrammer &programmer, int flag = 1)
{
    programmer.setTimeScale(0);
    QCOMPARE(programmer.Connect(OPERATION_TYPE_DEBUG), 0);
    QCOMPARE(programmer.SetTargetInterfaceInUse(true), 0);
    QCOMPARE(programmer.SetTargetClock(), 0);
    QCOMPARE(programmer.ConnectToTarget(flag), 0);
}

inline MemoryManager imageOf(quint32 address, const QByteArray &data)
{
    MemoryManager image;
    image.write(address, data);
    return image;
}

#endif // SIMULATEDTEST_H
