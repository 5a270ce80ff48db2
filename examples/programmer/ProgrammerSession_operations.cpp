// What the operations are, and how each one is requested.

#include "ProgrammerSession.h"

#include <algorithm>

namespace {

constexpr unsigned int CaptureParameter = 0; // the simulated target has nothing to choose
constexpr int CaptureBufferSize = 1024;

} // namespace

const QList<ProgrammerSession::Description> &ProgrammerSession::descriptions()
{
    static const QList<Description> all{
        {Operation::Write, "write", QT_TRANSLATE_NOOP("MainWindow", "Write"),
         QT_TRANSLATE_NOOP("MainWindow", "Writing the image to the target"), Subject::Target, true},
        {Operation::Read, "read", QT_TRANSLATE_NOOP("MainWindow", "Read"),
         QT_TRANSLATE_NOOP("MainWindow", "Reading the target"), Subject::Target},
        {Operation::Verify, "verify", QT_TRANSLATE_NOOP("MainWindow", "Verify"),
         QT_TRANSLATE_NOOP("MainWindow", "Comparing the target with the image"), Subject::Target, true},
        {Operation::BlankCheck, "blank", QT_TRANSLATE_NOOP("MainWindow", "Blank check"),
         QT_TRANSLATE_NOOP("MainWindow", "Looking for data in the target"), Subject::Target},
        {Operation::Detect, "detect", QT_TRANSLATE_NOOP("MainWindow", "Detect"),
         QT_TRANSLATE_NOOP("MainWindow", "Looking for the target"), Subject::Target},
        {Operation::Erase, "erase", QT_TRANSLATE_NOOP("MainWindow", "Erase"),
         QT_TRANSLATE_NOOP("MainWindow", "Erasing the target"), Subject::Target},
        {Operation::Reset, "reset", QT_TRANSLATE_NOOP("MainWindow", "Reset"),
         QT_TRANSLATE_NOOP("MainWindow", "Resetting the target"), Subject::Target},
        {Operation::EnterBootloader, "bootloader-enter", QT_TRANSLATE_NOOP("MainWindow", "Enter bootloader"),
         QT_TRANSLATE_NOOP("MainWindow", "Starting the bootloader of the device"), Subject::DeviceFirmware},
        {Operation::WriteDeviceFirmware, "bootloader-write", QT_TRANSLATE_NOOP("MainWindow", "Write firmware"),
         QT_TRANSLATE_NOOP("MainWindow", "Writing the firmware of the device"), Subject::DeviceFirmware, true},
        {Operation::ExitBootloader, "bootloader-exit", QT_TRANSLATE_NOOP("MainWindow", "Exit bootloader"),
         QT_TRANSLATE_NOOP("MainWindow", "Starting the firmware of the device"), Subject::DeviceFirmware},
        {Operation::ActivatePowerBootloader, "power-activate", QT_TRANSLATE_NOOP("MainWindow", "Activate bootloader"),
         QT_TRANSLATE_NOOP("MainWindow", "Starting the bootloader of the power module"), Subject::PowerModule},
        {Operation::ShowPowerBootloader, "power-info", QT_TRANSLATE_NOOP("MainWindow", "Check bootloader"),
         QT_TRANSLATE_NOOP("MainWindow", "Asking the bootloader of the power module"), Subject::PowerModule},
        {Operation::WritePowerFirmware, "power-write", QT_TRANSLATE_NOOP("MainWindow", "Write and reset"),
         QT_TRANSLATE_NOOP("MainWindow", "Writing the firmware of the power module"), Subject::PowerModule},
        {Operation::ResetPowerModule, "power-reset", QT_TRANSLATE_NOOP("MainWindow", "Reset module"),
         QT_TRANSLATE_NOOP("MainWindow", "Resetting the power module"), Subject::PowerModule},
        {Operation::FindDevice, "find-device", QT_TRANSLATE_NOOP("MainWindow", "Find device"),
         QT_TRANSLATE_NOOP("MainWindow", "Making the device signal"), Subject::Device},
        {Operation::ReadConfiguration, "read-configuration", QT_TRANSLATE_NOOP("MainWindow", "Read settings"),
         QT_TRANSLATE_NOOP("MainWindow", "Reading the settings of the device"), Subject::Configuration},
        {Operation::StoreConfiguration, "store-configuration", QT_TRANSLATE_NOOP("MainWindow", "Store settings"),
         QT_TRANSLATE_NOOP("MainWindow", "Storing the settings in the device"), Subject::Configuration},
        {Operation::StartWiFiServer, "start-wifi-server", QT_TRANSLATE_NOOP("MainWindow", "Start WiFi server"),
         QT_TRANSLATE_NOOP("MainWindow", "Starting the WiFi server of the device"), Subject::WiFiServer},
        {Operation::SwitchOn, "switch-on", QT_TRANSLATE_NOOP("MainWindow", "Switch on"),
         QT_TRANSLATE_NOOP("MainWindow", "Switching the channel on"), Subject::Supply},
        {Operation::SwitchOff, "switch-off", QT_TRANSLATE_NOOP("MainWindow", "Switch off"),
         QT_TRANSLATE_NOOP("MainWindow", "Switching the channel off"), Subject::Supply},
        {Operation::SetVoltage, "set-voltage", QT_TRANSLATE_NOOP("MainWindow", "Set voltage"),
         QT_TRANSLATE_NOOP("MainWindow", "Setting the voltage of the channel"), Subject::Supply},
        {Operation::ReadLevels, "read-levels", QT_TRANSLATE_NOOP("MainWindow", "Read levels"),
         QT_TRANSLATE_NOOP("MainWindow", "Reading voltages and currents"), Subject::Supply},
        {Operation::AskPowerModule, "ask-power-module", QT_TRANSLATE_NOOP("MainWindow", "Ask module"),
         QT_TRANSLATE_NOOP("MainWindow", "Asking the power module what it is"), Subject::PowerInfo},
        {Operation::StartCapture, "start-capture", QT_TRANSLATE_NOOP("MainWindow", "Start capture"), nullptr,
         Subject::Capture},
        {Operation::FetchCapture, "fetch-capture", QT_TRANSLATE_NOOP("MainWindow", "Capture"), nullptr,
         Subject::Capture},
        {Operation::StopCapture, "stop-capture", QT_TRANSLATE_NOOP("MainWindow", "Stop capture"), nullptr,
         Subject::Capture},
    };
    return all;
}

const ProgrammerSession::Description &ProgrammerSession::describe(Operation operation)
{
    const QList<Description> &all = descriptions();
    return *std::find_if(all.cbegin(), all.cend(), [=](const Description &d) { return d.operation == operation; });
}

void ProgrammerSession::start(Operation operation)
{
    if (!canStart(operation))
        return;
    running = true;
    current = operation;
    result = false;
    switch (describe(operation).subject) {
    case Subject::Target:
        startTargetOperation();
        break;
    case Subject::DeviceFirmware:
    case Subject::PowerModule:
        startFirmwareOperation();
        break;
    case Subject::Capture:
        startCaptureOperation();
        break;
    default:
        startDeviceOperation();
        break;
    }
}

void ProgrammerSession::startTargetOperation()
{
    switch (current) {
    case Operation::Write:
        operationThread.WriteTarget(&firmware);
        break;
    case Operation::Read:
        readMemory.clear(); // an empty image is filled with all of the target
        operationThread.ReadTarget(&readMemory);
        break;
    case Operation::Verify:
        operationThread.VerifyTarget(&firmware, &result);
        break;
    case Operation::BlankCheck:
        operationThread.CheckTargetBlank(&result);
        break;
    case Operation::Detect:
        operationThread.DetectTarget(&result);
        break;
    case Operation::Erase:
        operationThread.EraseTargetMass();
        break;
    case Operation::Reset:
        operationThread.ResetTarget();
        break;
    default:
        break;
    }
}

void ProgrammerSession::startFirmwareOperation()
{
    switch (current) {
    case Operation::EnterBootloader:
        operationThread.BootloaderEnter(selectedDevice, &deviceInfo);
        break;
    case Operation::WriteDeviceFirmware:
        operationThread.BootloaderProcess(selectedDevice, deviceFirmwarePath, bootloaderDeviceId(),
                                          bootloaderSectorSize());
        break;
    case Operation::ExitBootloader:
        operationThread.BootloaderExit(selectedDevice);
        break;
    case Operation::ActivatePowerBootloader:
        operationThread.PowerBootloaderActivate();
        break;
    case Operation::ShowPowerBootloader:
        operationThread.PowerBootloaderGetInfo();
        break;
    case Operation::WritePowerFirmware:
        operationThread.PowerBootloaderWrite();
        break;
    case Operation::ResetPowerModule:
        operationThread.PowerBootloaderReset();
        break;
    default:
        break;
    }
}

void ProgrammerSession::startDeviceOperation()
{
    switch (current) {
    case Operation::FindDevice:
        operationThread.FindDevice();
        break;
    case Operation::ReadConfiguration:
        operationThread.GetDeviceConfiguration(&deviceConfiguration);
        break;
    case Operation::StoreConfiguration:
        operationThread.SetDeviceConfiguration(&deviceConfiguration);
        break;
    case Operation::StartWiFiServer:
        operationThread.WiFiServerStart();
        break;
    case Operation::SwitchOn:
    case Operation::SwitchOff:
        operationThread.PowerSwitch(powerChannel, current == Operation::SwitchOn ? 1 : 0);
        break;
    case Operation::SetVoltage:
        operationThread.PowerSetVoltage(powerChannel, powerVoltage);
        break;
    case Operation::ReadLevels:
        levelsKnown = false;
        levels.fill('\0', SimulatedProgrammer::PowerChannelCount * BytesPerLevel);
        operationThread.PowerGetReadings(reinterpret_cast<unsigned char *>(levels.data()), int(levels.size()));
        break;
    case Operation::AskPowerModule:
        operationThread.PowerGetInfo(&moduleInfo);
        break;
    default:
        break;
    }
}

void ProgrammerSession::startCaptureOperation()
{
    switch (current) {
    case Operation::StartCapture:
        operationThread.SwoEnable(CaptureParameter);
        break;
    case Operation::FetchCapture:
        captureBuffer.resize(CaptureBufferSize);
        captureSize = quint16(captureBuffer.size());
        operationThread.SwoGetData(reinterpret_cast<unsigned char *>(captureBuffer.data()), &captureSize);
        break;
    case Operation::StopCapture:
        operationThread.SwoDisable();
        break;
    default:
        break;
    }
}
