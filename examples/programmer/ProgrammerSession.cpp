#include "ProgrammerSession.h"

#include "FirmwareFile.h"

#include <UtilsBootloader.h>

#include <QtEndian>

#include <algorithm>

namespace {

/// What the bootloader says of itself, little-endian: device id (4 bytes), version (2) and sector size (2).
constexpr qsizetype DeviceIdOffset = 0;
constexpr qsizetype SectorSizeOffset = 6;
constexpr qsizetype InfoSize = 8;

} // namespace

const QList<ProgrammerSession::Description> &ProgrammerSession::descriptions()
{
    static const QList<Description> all{
        {Operation::Write, "write", QT_TRANSLATE_NOOP("MainWindow", "Write"),
         QT_TRANSLATE_NOOP("MainWindow", "Writing the image to the target"), Subject::Target, true},
        {Operation::Read, "read", QT_TRANSLATE_NOOP("MainWindow", "Read"),
         QT_TRANSLATE_NOOP("MainWindow", "Reading the target"), Subject::Target, false},
        {Operation::Verify, "verify", QT_TRANSLATE_NOOP("MainWindow", "Verify"),
         QT_TRANSLATE_NOOP("MainWindow", "Comparing the target with the image"), Subject::Target, true},
        {Operation::BlankCheck, "blank", QT_TRANSLATE_NOOP("MainWindow", "Blank check"),
         QT_TRANSLATE_NOOP("MainWindow", "Looking for data in the target"), Subject::Target, false},
        {Operation::Detect, "detect", QT_TRANSLATE_NOOP("MainWindow", "Detect"),
         QT_TRANSLATE_NOOP("MainWindow", "Looking for the target"), Subject::Target, false},
        {Operation::Erase, "erase", QT_TRANSLATE_NOOP("MainWindow", "Erase"),
         QT_TRANSLATE_NOOP("MainWindow", "Erasing the target"), Subject::Target, false},
        {Operation::Reset, "reset", QT_TRANSLATE_NOOP("MainWindow", "Reset"),
         QT_TRANSLATE_NOOP("MainWindow", "Resetting the target"), Subject::Target, false},
        {Operation::EnterBootloader, "bootloader-enter", QT_TRANSLATE_NOOP("MainWindow", "Enter bootloader"),
         QT_TRANSLATE_NOOP("MainWindow", "Starting the bootloader of the device"), Subject::Device, false},
        {Operation::WriteDeviceFirmware, "bootloader-write", QT_TRANSLATE_NOOP("MainWindow", "Write firmware"),
         QT_TRANSLATE_NOOP("MainWindow", "Writing the firmware of the device"), Subject::Device, true},
        {Operation::ExitBootloader, "bootloader-exit", QT_TRANSLATE_NOOP("MainWindow", "Exit bootloader"),
         QT_TRANSLATE_NOOP("MainWindow", "Starting the firmware of the device"), Subject::Device, false},
        {Operation::ActivatePowerBootloader, "power-activate", QT_TRANSLATE_NOOP("MainWindow", "Activate bootloader"),
         QT_TRANSLATE_NOOP("MainWindow", "Starting the bootloader of the power module"), Subject::PowerModule, false},
        {Operation::ShowPowerBootloader, "power-info", QT_TRANSLATE_NOOP("MainWindow", "Check bootloader"),
         QT_TRANSLATE_NOOP("MainWindow", "Asking the bootloader of the power module"), Subject::PowerModule, false},
        {Operation::WritePowerFirmware, "power-write", QT_TRANSLATE_NOOP("MainWindow", "Write and reset"),
         QT_TRANSLATE_NOOP("MainWindow", "Writing the firmware of the power module"), Subject::PowerModule, false},
        {Operation::ResetPowerModule, "power-reset", QT_TRANSLATE_NOOP("MainWindow", "Reset module"),
         QT_TRANSLATE_NOOP("MainWindow", "Resetting the power module"), Subject::PowerModule, false},
    };
    return all;
}

const ProgrammerSession::Description &ProgrammerSession::describe(Operation operation)
{
    const QList<Description> &all = descriptions();
    return *std::find_if(all.cbegin(), all.cend(), [=](const Description &d) { return d.operation == operation; });
}

ProgrammerSession::ProgrammerSession(Driver kind, std::unique_ptr<UniProgInterface> externalDriver, QObject *parent)
    : QObject(parent)
    , driverKind(kind)
    , selectedDevice(device.devices().constFirst())
    , external(std::move(externalDriver))
    , target(external ? external->GetTargetDescriptor() : device.GetTargetDescriptor())
    , operationThread(driver(), nullptr)
{
    operationThread.setObjectName(QStringLiteral("programmer"));
    connect(&operationThread, &UtilsUniProgThread::SignalProcedureCompleted, this,
            &ProgrammerSession::procedureCompleted);
}

ProgrammerSession::~ProgrammerSession()
{
    // The thread waits for a running procedure, so that one must not take long, or hang because a fault says so.
    device.clearFaults();
    device.setPluggedIn(false);
}

SimulatedProgrammer &ProgrammerSession::programmer()
{
    return device;
}

UniProgInterface *ProgrammerSession::driver()
{
    if (external)
        return external.get();
    return driverKind == Driver::Simulated ? &device : nullptr;
}

bool ProgrammerSession::isSimulated() const
{
    return external == nullptr;
}

UtilsUniProgThread &ProgrammerSession::thread()
{
    return operationThread;
}

TargetOptionsOperation &ProgrammerSession::operationOptions()
{
    return *target->getOperationOptions();
}

TargetOptionsConnection &ProgrammerSession::connectionOptions()
{
    return *target->getConnectionOptions();
}

const MemoryManager &ProgrammerSession::image() const
{
    return firmware;
}

QString ProgrammerSession::imagePath() const
{
    return firmwarePath;
}

bool ProgrammerSession::loadImage(const QString &path, quint32 binaryBase, QString *error)
{
    if (running) {
        *error = QStringLiteral("The image is in use. Please wait for the end of the operation.");
        return false;
    }
    if (!FirmwareFile::load(path, binaryBase, &firmware, error))
        return false;
    firmwarePath = path;
    Q_EMIT imageChanged();
    return true;
}

const MemoryManager &ProgrammerSession::contents() const
{
    return readMemory;
}

bool ProgrammerSession::answer() const
{
    return result;
}

bool ProgrammerSession::setDeviceImage(const QString &path, QString *error)
{
    if (running) {
        *error = QStringLiteral("The image is in use. Please wait for the end of the operation.");
        return false;
    }
    UtilsBootloader file(path, UtilsBootloader::BOOTLOADER_IMAGE_DEVICE, bootloaderDeviceId(), bootloaderSectorSize());
    if (!file.openFile()) {
        *error = QStringLiteral("The firmware %1 cannot be opened.").arg(path);
        return false;
    }
    if (file.getImageBufferSize() == 0) {
        *error = QStringLiteral("The firmware %1 is empty.").arg(path);
        return false;
    }
    deviceFirmwarePath = path;
    Q_EMIT deviceImageChanged();
    return true;
}

QString ProgrammerSession::deviceImagePath() const
{
    return deviceFirmwarePath;
}

QByteArray ProgrammerSession::bootloaderInfo() const
{
    return deviceInfo;
}

unsigned int ProgrammerSession::bootloaderDeviceId() const
{
    return deviceInfo.size() < InfoSize ? 0 : qFromLittleEndian<quint32>(deviceInfo.constData() + DeviceIdOffset);
}

unsigned short ProgrammerSession::bootloaderSectorSize() const
{
    return deviceInfo.size() < InfoSize ? SimulatedProgrammer::BootloaderSectorSize
                                        : qFromLittleEndian<quint16>(deviceInfo.constData() + SectorSizeOffset);
}

bool ProgrammerSession::selectLink(TSelectedDevice::Link link)
{
    const QList<TSelectedDevice> devices = device.devices();
    const auto found = std::find_if(devices.cbegin(), devices.cend(),
                                    [=](const TSelectedDevice &candidate) { return candidate.link == link; });
    if (running || found == devices.cend() || !device.selectDevice(*found))
        return false;
    selectedDevice = *found;
    Q_EMIT linkChanged();
    return true;
}

TSelectedDevice::Link ProgrammerSession::link() const
{
    return static_cast<TSelectedDevice::Link>(selectedDevice.link);
}

bool ProgrammerSession::addFault(const QString &text, QString *error)
{
    if (!device.addFault(text, error))
        return false;
    plannedFaults.append(text);
    Q_EMIT faultsChanged();
    return true;
}

void ProgrammerSession::clearFaults()
{
    device.clearFaults();
    plannedFaults.clear();
    Q_EMIT faultsChanged();
}

QStringList ProgrammerSession::faults() const
{
    return plannedFaults;
}

bool ProgrammerSession::isRunning() const
{
    return running;
}

bool ProgrammerSession::canStart(Operation operation) const
{
    const Description &description = describe(operation);
    const bool hasImage = description.subject == Subject::Device ? !deviceFirmwarePath.isEmpty() : !firmware.isEmpty();
    return !running && (hasImage || !description.needsImage);
}

void ProgrammerSession::start(Operation operation)
{
    if (!canStart(operation))
        return;
    running = true;
    current = operation;
    result = false;
    if (describe(operation).subject == Subject::Target)
        startTargetOperation();
    else
        startFirmwareOperation();
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

void ProgrammerSession::procedureCompleted(int status, const QString &message)
{
    running = false;
    Q_EMIT completed(current, status, message);
}
