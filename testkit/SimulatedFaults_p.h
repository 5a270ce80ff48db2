#ifndef SIMULATEDFAULTS_P_H
#define SIMULATEDFAULTS_P_H

#include "SimulatedProgrammer.h"

/// What is fixed about an operation of the driver.
struct SimulatedOperation
{
    SimulatedProgrammer::Operation operation;
    const char *functionName;
    const char *faultName; ///< operations of the same name share their faults; null: it cannot fail
    int faultStatus; ///< what a fault without a status gives
    int milliseconds; ///< the time it takes apart from its blocks
    bool hasBlocks;

    static const SimulatedOperation &of(SimulatedProgrammer::Operation operation);
};

/// The planned failures.
class SimulatedFaults
{
public:
    static constexpr int MaximumSlowness = 1000;

    void add(const SimulatedProgrammer::Fault &fault);
    /// See SimulatedProgrammer::addFault(). Returns what is wrong with \a text, nothing when it was added.
    QString add(const QString &text);
    void clear();
    static QStringList names();

    /// A call of \a operation begins: the faults that may hit it.
    QList<SimulatedProgrammer::Fault> takeCall(SimulatedProgrammer::Operation operation);
    /// The factor by which every operation takes longer.
    int slowness() const;

private:
    struct Entry
    {
        SimulatedProgrammer::Fault fault;
        int calls = 0; ///< seen since the fault was added
    };

    QList<Entry> entries;
    int slowFactor = 1;
};

#endif // SIMULATEDFAULTS_P_H
