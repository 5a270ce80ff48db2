// The procedures that the frames of UtilsUniProgThread run on the worker. A procedure leaves the driver's status in
// `status` and logs its own success; the frame logs the failure.

#include "UtilsUniProgThread.h"

#include "DeviceStatus_p.h"
#include "DriverValues_p.h"

#include <QThread>

using namespace DriverValues;

namespace {

/// What the target needs after a write before it answers again.
constexpr int SettleAfterWriteMs = 500;

} // namespace

void UtilsUniProgThread::Operation_Connect(int &status, QString &message, OPERATION_TYPE type)
{
    if (!uniProg)
        status = DeviceStatus::NoSelectedDevice;
    else
        status = useSelectedDevice ? uniProg->ConnectSelectedDevice(&selectedDevice, type) : uniProg->Connect(type);
    if (status != DeviceStatus::Success) {
        message = DeviceStatus::deviceConnectText(status);
        Log(message, LOGGER_MESSAGE_ERROR);
    }
}

void UtilsUniProgThread::Operation_ConnectToTarget(int &status, QString &message)
{
    status = uniProg->SetTargetInterfaceInUse(true);
    if (status != DeviceStatus::Success) {
        message = QStringLiteral("Interface to target currently being used.");
        Log(message, LOGGER_MESSAGE_ERROR);
        return;
    }
    status = uniProg->SetTargetClock();
    if (status != DeviceStatus::Success) {
        message = QStringLiteral("Set swd/jtag clock failed.");
        Log(message, LOGGER_MESSAGE_ERROR);
        return;
    }
    status = uniProg->ConnectToTarget(targetConnectFlag);
    if (status != DeviceStatus::Success) {
        message = DeviceStatus::targetConnectText(status);
        Log(message, LOGGER_MESSAGE_ERROR);
    }
}

void UtilsUniProgThread::Operation_DisconnectFromTarget(int &status, QString &message)
{
    status = uniProg->DisconnectFromTarget();
    if (status != DeviceStatus::Success) {
        message = QStringLiteral("Disconnecting from target failed.");
        Log(message, LOGGER_MESSAGE_ERROR);
    } else {
        Log(QStringLiteral("Disconnected from target."));
    }
    uniProg->SetTargetInterfaceInUse(false);
}

void UtilsUniProgThread::Operation_Disconnect()
{
    uniProg->Disconnect();
    useSelectedDevice = false;
}

/// A courtesy after another procedure: its status is never passed on.
void UtilsUniProgThread::Operation_ResetHaltTarget()
{
    if (uniProg->ResetTarget(ResetMode) != DeviceStatus::Success)
        return;
    const bool halted = ConnectionOption(HaltAfterResetOption) != 0;
    Log(halted ? QStringLiteral("Chip is halted.") : QStringLiteral("Chip is running."));
}

void UtilsUniProgThread::Operation_WriteTarget(int &status)
{
    Log(QStringLiteral("Erasing MCU..."));
    Q_EMIT SignalOperationProgress(BusyProgress);
    const int eraseMode = OperationOption(EraseModeOption);
    const int leaveRunning = OperationOption(LeaveRunningOption);
    const int verifyAfterWrite = OperationOption(VerifyAfterWriteOption);
    status = eraseMode == EraseWhatIsWritten ? uniProg->EraseTarget(memoryManager) : uniProg->EraseTargetMass();
    if (status != DeviceStatus::Success)
        return;

    Log(QStringLiteral("Writing MCU..."));
    status = uniProg->WriteTarget(memoryManager, WriteMode);
    QThread::msleep(SettleAfterWriteMs); // a failed write leaves the target just as busy
    if (status == DeviceStatus::Success && verifyAfterWrite != 0) {
        Log(QStringLiteral("Verifying..."));
        Q_EMIT SignalOperationProgress(BusyProgress);
        bool verified = false;
        status = uniProg->VerifyTarget(memoryManager, &verified, leaveRunning);
        // A mismatch is an error in the log only: what was asked for, the write, has been done.
        if (status != DeviceStatus::Success || !verified)
            Log(QStringLiteral("Verification failed."), LOGGER_MESSAGE_ERROR);
        else
            Log(QStringLiteral("Write operation done and verified."), LOGGER_MESSAGE_SUCCESS);
    } else if (status == DeviceStatus::Success) {
        Log(QStringLiteral("Write operation done."), LOGGER_MESSAGE_SUCCESS);
    }
    Operation_ResetHaltTarget();
}

void UtilsUniProgThread::Operation_ReadTarget(int &status)
{
    Log(QStringLiteral("Reading MCU..."));
    status = uniProg->ReadTarget(memoryManager);
    if (status == DeviceStatus::Success)
        Log(QStringLiteral("Read operation done."), LOGGER_MESSAGE_SUCCESS);
}

void UtilsUniProgThread::Operation_VerifyTarget(int &status)
{
    Log(QStringLiteral("Verifying..."));
    Q_EMIT SignalOperationProgress(BusyProgress);
    const int leaveRunning = OperationOption(LeaveRunningOption);
    bool substitute = false;
    bool *const verified = ResultFlag(substitute);
    status = uniProg->VerifyTarget(memoryManager, verified, leaveRunning);
    if (status == DeviceStatus::Success) {
        if (*verified)
            Log(QStringLiteral("File is verified."), LOGGER_MESSAGE_SUCCESS);
        else
            Log(QStringLiteral("File not verified."), LOGGER_MESSAGE_ERROR);
    }
    if (leaveRunning == 0)
        Operation_ResetHaltTarget();
}

void UtilsUniProgThread::Operation_CheckTargetBlank(int &status)
{
    Log(QStringLiteral("Checking if MCU is blank..."));
    Q_EMIT SignalOperationProgress(BusyProgress);
    const bool leaveRunning = OperationOption(LeaveRunningOption) != 0;
    bool substitute = false;
    bool *const blank = ResultFlag(substitute);
    status = uniProg->CheckTargetBlank(blank, leaveRunning);
    if (status == DeviceStatus::Success) {
        if (*blank) {
            Log(QStringLiteral("Chip is blank."), LOGGER_MESSAGE_SUCCESS);
        } else if (leaveRunning) {
            // The place of an address; the device reports none, so the line always ends in 0x0.
            Log(QStringLiteral("Chip is not blank at 0x%1.").arg(status, 0, 16), LOGGER_MESSAGE_ERROR);
        } else {
            Log(QStringLiteral("Chip is not blank."), LOGGER_MESSAGE_ERROR);
        }
    }
    if (!leaveRunning)
        Operation_ResetHaltTarget();
}

void UtilsUniProgThread::Operation_DetectTarget(int &status)
{
    bool substitute = false;
    bool *const detected = ResultFlag(substitute);
    status = uniProg->DetectTarget(detected);
    if (status != DeviceStatus::Success)
        return;
    if (*detected)
        Log(QStringLiteral("Target is detected."), LOGGER_MESSAGE_SUCCESS);
    else
        Log(QStringLiteral("Target is not detected."), LOGGER_MESSAGE_ERROR);
}

void UtilsUniProgThread::Operation_EraseTargetMass(int &status)
{
    Log(QStringLiteral("Erasing MCU..."));
    Q_EMIT SignalOperationProgress(BusyProgress);
    status = uniProg->EraseTargetMass();
    if (status == DeviceStatus::Success)
        Log(QStringLiteral("Erase operation done."), LOGGER_MESSAGE_SUCCESS);
}

void UtilsUniProgThread::Operation_ResetTarget(int &status)
{
    status = uniProg->ResetTarget(ResetMode);
    if (status == DeviceStatus::Success)
        Log(QStringLiteral("Reset operation done."), LOGGER_MESSAGE_SUCCESS);
}

void UtilsUniProgThread::Operation_FindDevice(int &status)
{
    status = uniProg->FindDevice();
    if (status == DeviceStatus::Success)
        Log(QStringLiteral("My device signaled."), LOGGER_MESSAGE_SUCCESS);
}

void UtilsUniProgThread::Operation_GetDeviceConfiguration(int &status)
{
    status = uniProg->GetDeviceConfiguration(configuration);
    if (status == DeviceStatus::Success)
        Log(QStringLiteral("Getting device config done."), LOGGER_MESSAGE_SUCCESS);
}

void UtilsUniProgThread::Operation_SetDeviceConfiguration(int &status)
{
    status = uniProg->SetDeviceConfiguration(configuration);
    if (status == DeviceStatus::Success) {
        uniProg->CommitConfiguration();
        Log(QStringLiteral("Setting device config done."), LOGGER_MESSAGE_SUCCESS);
    }
}

void UtilsUniProgThread::Operation_WifiServerStart(int &status)
{
    status = uniProg->WiFiServerStart();
    if (status == DeviceStatus::Success)
        Log(QStringLiteral("WiFi is enabled."), LOGGER_MESSAGE_SUCCESS);
}

void UtilsUniProgThread::Operation_SwoEnable(int &status)
{
    operationType = DebugLink;
    QString message; // logged where it arises; the frame reports the status in its own words
    Operation_ConnectToTarget(status, message);
    if (status == DeviceStatus::Success)
        status = uniProg->SwoEnable(swoParameter);
}

void UtilsUniProgThread::Operation_SwoDisable(int &status)
{
    operationType = DebugLink;
    QString message; // as for SwoEnable
    Operation_DisconnectFromTarget(status, message);
}

void UtilsUniProgThread::Operation_SwoGetData(int &status)
{
    status = uniProg->SwoGetData(swoData, swoDataSize);
}

void UtilsUniProgThread::Operation_PowerSwitch(int &status)
{
    status = DeviceStatus::Success;
    if (powerChannel == TargetSupplyChannel) {
        TPowerSupplyState supply{};
        status = uniProg->PowerGetSupplyState(&supply);
        // What the device measured counts before what it answered.
        if (supply.level >= PoweredLevel && supply.state == SuppliedFromOutside) {
            status = DeviceStatus::SuppliedExternally;
            return;
        }
        if (status != DeviceStatus::Success)
            return;
    }
    status = uniProg->PowerSwitch(powerChannel, powerState);
    if (status == DeviceStatus::Success)
        uniProg->PowerSaveConfiguration();
}

void UtilsUniProgThread::Operation_PowerSetVoltage(int &status)
{
    if (powerChannel == TargetSupplyChannel) {
        TPowerSupplyState supply{};
        status = uniProg->PowerGetSupplyState(&supply);
        if (supply.level >= PoweredLevel)
            status = DeviceStatus::SuppliedExternally;
        // Not the end: a voltage may be prepared while the target is powered from outside. The outcome is that of the
        // next call alone.
    }
    status = uniProg->PowerSetVoltage(powerChannel, powerVoltage);
    if (status == DeviceStatus::Success)
        uniProg->PowerSaveConfiguration();
}

void UtilsUniProgThread::Operation_PowerSetBatteryOptions(int &status)
{
    status = uniProg->PowerSetBatteryOptions(batteryOptions);
    if (status == DeviceStatus::Success)
        uniProg->PowerSaveConfiguration();
}

void UtilsUniProgThread::Operation_PowerGetInfo(int &status)
{
    status = uniProg->PowerGetInfo(powerInfo);
}

void UtilsUniProgThread::Operation_PowerGetReadings(int &status)
{
    status = uniProg->PowerGetReadings(powerReadings, powerReadingsSize);
}

void UtilsUniProgThread::Operation_PowerSaveConfiguration(int &status)
{
    status = uniProg->PowerSaveConfiguration();
}

void UtilsUniProgThread::Operation_PowerBootloaderActivate(int &status)
{
    status = uniProg->PowerBootloaderActivate();
}

void UtilsUniProgThread::Operation_PowerBootloaderGetInfo(int &status)
{
    status = uniProg->PowerBootloaderGetInfo();
}

void UtilsUniProgThread::Operation_PowerBootloaderReset(int &status)
{
    status = uniProg->PowerBootloaderReset();
}

void UtilsUniProgThread::Operation_BootloaderEnter(int &status)
{
    status = uniProg->BootloaderEnter();
    if (status != DeviceStatus::Success)
        return;
    status = uniProg->BootloaderGetInfo(bootloaderInfo);
    if (status != DeviceStatus::Success && bootloaderInfo)
        bootloaderInfo->clear();
}

void UtilsUniProgThread::Operation_BootloaderExit(int &status)
{
    status = uniProg->BootloaderExit();
}
