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

constexpr double Thousand = 1000.0;

} // namespace

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

const TConfiguration &ProgrammerSession::configuration() const
{
    return deviceConfiguration;
}

bool ProgrammerSession::hasConfiguration() const
{
    return configurationKnown;
}

void ProgrammerSession::setConfiguration(const TConfiguration &configuration)
{
    if (!running)
        deviceConfiguration = configuration;
}

void ProgrammerSession::setPowerChannel(int channel)
{
    powerChannel = static_cast<unsigned char>(channel);
}

void ProgrammerSession::setPowerVoltage(double volts)
{
    powerVoltage = float(volts);
}

QList<ProgrammerSession::PowerLevel> ProgrammerSession::powerLevels() const
{
    QList<PowerLevel> all;
    if (!levelsKnown)
        return all;
    for (const char *level = levels.cbegin(); level != levels.cend(); level += BytesPerLevel)
        all.append({qFromLittleEndian<quint16>(level) / Thousand, qFromLittleEndian<quint16>(level + 2) / Thousand});
    return all;
}

TPowerInfo ProgrammerSession::powerInfo() const
{
    return moduleInfo;
}

bool ProgrammerSession::isCapturing() const
{
    return capturing;
}

QByteArray ProgrammerSession::captured() const
{
    return captureBuffer.left(captureSize);
}

bool ProgrammerSession::selectLink(TSelectedDevice::Link link)
{
    const QList<TSelectedDevice> devices = device.devices();
    const auto found = std::find_if(devices.cbegin(), devices.cend(),
                                    [=](const TSelectedDevice &candidate) { return candidate.link == link; });
    if (running || capturing || found == devices.cend() || !device.selectDevice(*found))
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
    if (running)
        return false;
    const Description &description = describe(operation);
    if (description.subject == Subject::Capture)
        return capturing == (operation != Operation::StartCapture);
    if (capturing || (operation == Operation::StoreConfiguration && !configurationKnown))
        return false;
    const bool hasImage
        = description.subject == Subject::DeviceFirmware ? !deviceFirmwarePath.isEmpty() : !firmware.isEmpty();
    return hasImage || !description.needsImage;
}

void ProgrammerSession::procedureCompleted(int status, const QString &message)
{
    running = false;
    const bool ok = status == 0;
    if (current == Operation::ReadConfiguration)
        configurationKnown = configurationKnown || ok;
    else if (current == Operation::ReadLevels)
        levelsKnown = ok;
    else if (current == Operation::StartCapture)
        capturing = ok;
    else if (current == Operation::StopCapture)
        capturing = false; // a device that does not answer captures nothing either
    else if (current == Operation::FetchCapture && !ok)
        captureSize = 0;
    Q_EMIT completed(current, status, message);
}
