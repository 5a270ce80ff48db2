#ifndef SOAKLANE_H
#define SOAKLANE_H

#include "ExpectedLog.h"
#include "ProcedureRig.h"
#include "WitnessedProgrammer.h"

#include <UtilsUniProgThread.h>

#include <QByteArray>
#include <QRandomGenerator>

/// A programmer, a thread object on it, and what it says to one random request after another.
class SoakLane
{
public:
    explicit SoakLane(quint32 seed);

    /// Plans faults and makes a request.
    void begin();
    bool isAtRest() const;
    /// After a request: empty when it said and did exactly what it should, else what and what not.
    QString complaint();

    UtilsUniProgThread *thread();
    int failures() const; ///< requests that ended with another status than 0

private:
    int random(int end);
    void planFault();
    void makeRequest();

    QRandomGenerator generator;
    WitnessedProgrammer programmer;
    UtilsUniProgThread operations;
    ProcedureLog log;
    int requestsMade = 0;
    int failedRequests = 0;

    Request request = Request::FindDevice;
    ExpectedLog::Options options;
    QStringList plannedFaults;
    MemoryManager memory;
    TConfiguration configuration;
    TPowerInfo powerInfo;
    QByteArray buffer;
    unsigned short bufferSize = 0;
    bool result = false;
};

#endif // SOAKLANE_H
