#include "ExpectedLog.h"

#include "ProcedureRig.h"

#include <UtilsConstants.h>

#include <QMetaEnum>

namespace {

constexpr int SupplyChannel = 13;
constexpr int SectorErase = 2;

QString operationName(SimulatedProgrammer::Operation operation)
{
    return QString::fromLatin1(QMetaEnum::fromType<SimulatedProgrammer::Operation>().valueToKey(int(operation)));
}

QString connectText(int status)
{
    switch (status) {
    case 4:
        return QStringLiteral("WiFi link authentication failed! \nPlease enter correct WiFi link password");
    case 14:
        return QStringLiteral("WiFi link-debug authentication failed! \nPlease enter correct WiFi link password");
    case 13:
        return QStringLiteral("WiFi link-config authentication failed! \nPlease enter correct WiFi link password");
    case 12:
        return UtilsConstants::WARNING_INVALID_FIRMWARE_VERSION;
    case 38:
        return UtilsConstants::WARNING_NO_SELECTED_DEVICE;
    default:
        return QStringLiteral("Connecting to device failed.");
    }
}

QString targetText(int status)
{
    switch (status) {
    case 8:
        return QStringLiteral("Your board doesn't support selected vendor.");
    case 51:
        return QStringLiteral("Selected chip not recognized.");
    default:
        return QStringLiteral("Operation failed.");
    }
}

QString controlText(int status)
{
    switch (status) {
    case 10:
        return QStringLiteral("Wrong target voltage.\nCheck power settings.");
    case 11:
        return QStringLiteral("Power supplied externally. Can't apply voltage.");
    default:
        return QStringLiteral("Operation failed.");
    }
}

} // namespace

ExpectedLog::ExpectedLog(Request made, const Options &treatment, const QList<DriverCall> &driverCalls)
    : request(made)
    , options(treatment)
    , calls(driverCalls)
{
    line(QStringLiteral("Starting operation..."));
    QString message;
    int status = take(Operation::Connect);
    if (status != 0) {
        message = connectText(status);
        error(message);
    } else {
        status = isTargetRequest() ? runTarget(&message) : runControl(&message);
        take(Operation::Disconnect);
    }
    log += {ProcedureLog::completed(status, message), QStringLiteral("finished")};
    for (const DriverCall &call : std::as_const(calls))
        wrong.append(QStringLiteral("one too many: ") + operationName(call.operation));
}

QStringList ExpectedLog::events() const
{
    return log;
}

QStringList ExpectedLog::wrongCalls() const
{
    return wrong;
}

bool ExpectedLog::isTargetRequest() const
{
    return request <= Request::ResetTarget;
}

int ExpectedLog::take(Operation operation, bool *answer)
{
    if (calls.isEmpty() || calls.constFirst().operation != operation) {
        wrong.append(QStringLiteral("missing: ") + operationName(operation));
        return 0;
    }
    const DriverCall call = calls.takeFirst();
    for (const int percent : call.progress)
        log.append(ProcedureLog::progress(percent));
    if (answer)
        *answer = call.answer;
    return call.status;
}

void ExpectedLog::line(const QString &text)
{
    log.append(ProcedureLog::line(text));
}

void ExpectedLog::success(const QString &text)
{
    log.append(ProcedureLog::line(text, LOGGER_MESSAGE_SUCCESS));
}

void ExpectedLog::error(const QString &text)
{
    log.append(ProcedureLog::line(text, LOGGER_MESSAGE_ERROR));
}

void ExpectedLog::busy()
{
    log.append(ProcedureLog::progress(-1));
}

int ExpectedLog::runTarget(QString *message)
{
    line(QStringLiteral("Connecting to target MCU..."));
    int status = connectToTarget(message);
    if (status == 0) {
        status = targetProcedure();
        if (status != 0) {
            *message = targetText(status);
            error(*message);
        }
    }
    const int disconnectStatus = disconnectFromTarget(message);
    return status != 0 ? status : disconnectStatus;
}

int ExpectedLog::runControl(QString *message)
{
    const int status = controlProcedure();
    if (status != 0) {
        *message = controlText(status);
        error(*message);
    }
    return status;
}

int ExpectedLog::targetProcedure()
{
    bool answer = false;
    switch (request) {
    case Request::WriteTarget:
        return write();
    case Request::ReadTarget:
        line(QStringLiteral("Reading MCU..."));
        return single(Operation::ReadTarget, "Read operation done.");
    case Request::VerifyTarget:
        return verify();
    case Request::CheckTargetBlank:
        return checkBlank();
    case Request::DetectTarget: {
        const int status = take(Operation::DetectTarget, &answer);
        if (status == 0 && answer)
            success(QStringLiteral("Target is detected."));
        else if (status == 0)
            error(QStringLiteral("Target is not detected."));
        return status;
    }
    case Request::EraseTargetMass:
        line(QStringLiteral("Erasing MCU..."));
        busy();
        return single(Operation::EraseTargetMass, "Erase operation done.");
    default:
        return single(Operation::ResetTarget, "Reset operation done.");
    }
}

int ExpectedLog::controlProcedure()
{
    QString unheard;
    switch (request) {
    case Request::FindDevice:
        return single(Operation::FindDevice, "My device signaled.");
    case Request::GetDeviceConfiguration:
        return single(Operation::GetDeviceConfiguration, "Getting device config done.");
    case Request::SetDeviceConfiguration: {
        const int status = take(Operation::SetDeviceConfiguration);
        if (status == 0) {
            take(Operation::CommitConfiguration);
            success(QStringLiteral("Setting device config done."));
        }
        return status;
    }
    case Request::WiFiServerStart:
        return single(Operation::WiFiServerStart, "WiFi is enabled.");
    case Request::SwoEnable: {
        const int status = connectToTarget(&unheard);
        return status != 0 ? status : take(Operation::SwoEnable);
    }
    case Request::SwoDisable:
        return disconnectFromTarget(&unheard);
    case Request::SwoGetData:
        return take(Operation::SwoGetData);
    case Request::PowerSwitch:
        return powerSwitch();
    case Request::PowerSetVoltage:
        return powerSetVoltage();
    case Request::PowerSetBatteryOptions:
        return thenSave(take(Operation::PowerSetBatteryOptions));
    case Request::PowerGetReadings:
        return take(Operation::PowerGetReadings);
    case Request::PowerGetInfo:
        return take(Operation::PowerGetInfo);
    default:
        return take(Operation::PowerSaveConfiguration);
    }
}

int ExpectedLog::write()
{
    line(QStringLiteral("Erasing MCU..."));
    busy();
    int status = take(options.eraseMode == SectorErase ? Operation::EraseTarget : Operation::EraseTargetMass);
    if (status != 0)
        return status;
    line(QStringLiteral("Writing MCU..."));
    status = take(Operation::WriteTarget);
    if (status == 0 && options.verifyAfterWrite != 0) {
        line(QStringLiteral("Verifying..."));
        busy();
        bool verified = false;
        status = take(Operation::VerifyTarget, &verified);
        if (status != 0 || !verified)
            error(QStringLiteral("Verification failed."));
        else
            success(QStringLiteral("Write operation done and verified."));
    } else if (status == 0) {
        success(QStringLiteral("Write operation done."));
    }
    resetHalt();
    return status;
}

int ExpectedLog::verify()
{
    line(QStringLiteral("Verifying..."));
    busy();
    bool verified = false;
    const int status = take(Operation::VerifyTarget, &verified);
    if (status == 0 && verified)
        success(QStringLiteral("File is verified."));
    else if (status == 0)
        error(QStringLiteral("File not verified."));
    if (options.leaveRunning == 0)
        resetHalt();
    return status;
}

int ExpectedLog::checkBlank()
{
    line(QStringLiteral("Checking if MCU is blank..."));
    busy();
    bool blank = false;
    const int status = take(Operation::CheckTargetBlank, &blank);
    if (status == 0 && blank)
        success(QStringLiteral("Chip is blank."));
    else if (status == 0 && options.leaveRunning != 0)
        error(QStringLiteral("Chip is not blank at 0x0."));
    else if (status == 0)
        error(QStringLiteral("Chip is not blank."));
    if (options.leaveRunning == 0)
        resetHalt();
    return status;
}

int ExpectedLog::powerSwitch()
{
    bool isSuppliedFromOutside = false;
    int status = 0;
    if (options.powerChannel == SupplyChannel)
        status = take(Operation::PowerGetSupplyState, &isSuppliedFromOutside);
    if (isSuppliedFromOutside)
        return SimulatedProgrammer::PoweredExternally;
    return status != 0 ? status : thenSave(take(Operation::PowerSwitch));
}

int ExpectedLog::powerSetVoltage()
{
    if (options.powerChannel == SupplyChannel)
        take(Operation::PowerGetSupplyState); // whose answer changes nothing
    return thenSave(take(Operation::PowerSetVoltage));
}

int ExpectedLog::connectToTarget(QString *message)
{
    int status = take(Operation::SetTargetInterfaceInUse);
    if (status != 0) {
        *message = QStringLiteral("Interface to target currently being used.");
    } else if ((status = take(Operation::SetTargetClock)) != 0) {
        *message = QStringLiteral("Set swd/jtag clock failed.");
    } else if ((status = take(Operation::ConnectToTarget)) != 0) {
        *message = QStringLiteral("Connecting to target failed.");
        if (status == SimulatedProgrammer::WrongVoltage)
            *message += QStringLiteral("\nWrong target voltage.\nCheck power settings.");
        else if (status == SimulatedProgrammer::PoweredExternally)
            *message += QStringLiteral("\nVpp first entry mode not available.\nPower supplied externally.");
    }
    if (status != 0)
        error(*message);
    return status;
}

int ExpectedLog::disconnectFromTarget(QString *message)
{
    const int status = take(Operation::DisconnectFromTarget);
    if (status != 0) {
        *message = QStringLiteral("Disconnecting from target failed.");
        error(*message);
    } else {
        line(QStringLiteral("Disconnected from target."));
    }
    take(Operation::SetTargetInterfaceInUse);
    return status;
}

void ExpectedLog::resetHalt()
{
    if (take(Operation::ResetTarget) == 0)
        line(options.haltAfterReset != 0 ? QStringLiteral("Chip is halted.") : QStringLiteral("Chip is running."));
}

int ExpectedLog::single(Operation operation, const char *successText)
{
    const int status = take(operation);
    if (status == 0 && successText)
        success(QLatin1String(successText));
    return status;
}

int ExpectedLog::thenSave(int status)
{
    if (status == 0)
        take(Operation::PowerSaveConfiguration);
    return status;
}
