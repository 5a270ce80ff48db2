#ifndef EXPECTEDLOG_H
#define EXPECTEDLOG_H

#include "WitnessedProgrammer.h"

#include <QStringList>

/// The requests of UtilsUniProgThread that the soak makes.
enum class Request {
    WriteTarget,
    ReadTarget,
    VerifyTarget,
    CheckTargetBlank,
    DetectTarget,
    EraseTargetMass,
    ResetTarget,
    FindDevice,
    GetDeviceConfiguration,
    SetDeviceConfiguration,
    WiFiServerStart,
    SwoEnable,
    SwoDisable,
    SwoGetData,
    PowerSwitch,
    PowerSetVoltage,
    PowerSetBatteryOptions,
    PowerGetReadings,
    PowerGetInfo,
    PowerSaveConfiguration,
    Count
};

/// What a request says, worked out from what the driver returned: lines, progress and end, as ProcedureLog writes them.
class ExpectedLog
{
public:
    /// How the target is to be treated.
    struct Options
    {
        int eraseMode = 0;
        int leaveRunning = 0;
        int verifyAfterWrite = 0;
        int haltAfterReset = 0;
        int powerChannel = 0;
    };

    ExpectedLog(Request request, const Options &options, const QList<DriverCall> &calls);

    QStringList events() const;
    /// Empty when the driver was called as it should have been.
    QStringList wrongCalls() const;

private:
    using Operation = SimulatedProgrammer::Operation;

    bool isTargetRequest() const;
    int take(Operation operation, bool *answer = nullptr);
    void line(const QString &text);
    void success(const QString &text);
    void error(const QString &text);
    void busy();

    int runTarget(QString *message);
    int runControl(QString *message);
    int targetProcedure();
    int controlProcedure();
    int write();
    int verify();
    int checkBlank();
    int powerSwitch();
    int powerSetVoltage();
    int connectToTarget(QString *message);
    int disconnectFromTarget(QString *message);
    void resetHalt();
    int single(Operation operation, const char *successText = nullptr);
    int thenSave(int status);

    const Request request;
    const Options options;
    QList<DriverCall> calls;
    QStringList log;
    QStringList wrong;
};

#endif // EXPECTEDLOG_H
