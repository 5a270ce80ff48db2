#include "SimulatedProgrammer_p.h"

#include <QtEndian>

#include <algorithm>

namespace {

constexpr double MaximumTimeScale = 1000.0;

// Numbers that are free for everybody's tests.
constexpr quint16 VendorId = 0x1209;
constexpr quint16 ProductId = 0x0001;
constexpr quint16 WiFiPort = 5555;
constexpr char WiFiAddress[] = "192.0.2.10";

constexpr quint32 BootloaderDeviceId = 0x1002;
constexpr quint16 BootloaderVersion = 0x0100;

constexpr float DefaultSupply = 3.3F;
constexpr float HighestExternalSupply = 60.0F; // a reading has 16 bits for millivolts

TSelectedDevice defaultDevice(TSelectedDevice::Link link)
{
    TSelectedDevice device;
    device.link = link;
    device.name = QStringLiteral("Simulated programmer");
    device.serialNumber = QStringLiteral("SIM-0001");
    device.firmwareVersion = QStringLiteral("1.0");
    device.hardwareRevision = QStringLiteral("A");
    if (link == TSelectedDevice::Usb) {
        device.vendorId = VendorId;
        device.productId = ProductId;
        device.path = QStringLiteral("simulated-usb");
    } else {
        device.port = WiFiPort;
        device.address = QString::fromLatin1(WiFiAddress);
    }
    return device;
}

QByteArray defaultBootloaderInfo()
{
    QByteArray info(8, '\0');
    qToLittleEndian(BootloaderDeviceId, info.data());
    qToLittleEndian(BootloaderVersion, info.data() + 4);
    qToLittleEndian(quint16(SimulatedProgrammer::BootloaderSectorSize), info.data() + 6);
    return info;
}

} // namespace

SimulatedProgrammer::State::State(SimulatedProgrammer *owner)
    : q(owner)
    , devices{defaultDevice(TSelectedDevice::Usb), defaultDevice(TSelectedDevice::WiFi)}
    , descriptor(QSharedPointer<TargetDescriptor>::create())
    , swoStream("Hello from the simulated target\r\n")
    , bootloaderInfo(defaultBootloaderInfo())
{
    configuration.deviceName = devices.constFirst().name;
    configuration.debugClock = 1000000;
    power.channels.at(SupplyChannel) = {true, DefaultSupply};
    savedPower = power;
    powerInfo.firmwareVersion = BootloaderVersion;
    powerInfo.channelCount = PowerChannelCount;
}

SimulatedProgrammer::SimulatedProgrammer(QObject *parent)
    : QObject(parent)
    , state(std::make_unique<State>(this))
{ }

SimulatedProgrammer::~SimulatedProgrammer()
{
    std::unique_lock<std::mutex> lock(state->mutex);
    state->loseLink();
    state->changed.wait(lock, [this] { return !state->running; });
}

// --- Time and faults ------------------------------------------------------------------------------------------------

void SimulatedProgrammer::setTimeScale(double scale)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    // Also false for what is not a number.
    if (scale >= 0.0 && scale <= MaximumTimeScale)
        state->timeScale = scale;
}

double SimulatedProgrammer::timeScale() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->timeScale;
}

void SimulatedProgrammer::addFault(const Fault &fault)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->faults.add(fault);
}

bool SimulatedProgrammer::addFault(const QString &text, QString *error)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    const QString problem = state->faults.add(text);
    if (error)
        *error = problem;
    return problem.isEmpty();
}

QStringList SimulatedProgrammer::faultNames()
{
    return SimulatedFaults::names();
}

void SimulatedProgrammer::clearFaults()
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->faults.clear();
    ++state->releases;
    state->changed.notify_all();
}

bool SimulatedProgrammer::isHanging() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->hanging;
}

void SimulatedProgrammer::releaseHang()
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    ++state->releases;
    state->changed.notify_all();
}

// --- The device and its links ---------------------------------------------------------------------------------------

void SimulatedProgrammer::setDevices(const QList<TSelectedDevice> &devices)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->devices = devices;
    state->currentDevice = 0;
}

QList<TSelectedDevice> SimulatedProgrammer::devices() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->devices;
}

bool SimulatedProgrammer::selectDevice(const TSelectedDevice &device)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    const int index = state->indexOf(device);
    if (index >= 0)
        state->currentDevice = index;
    return index >= 0;
}

void SimulatedProgrammer::setPluggedIn(bool pluggedIn)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->pluggedIn = pluggedIn;
    if (!pluggedIn)
        state->loseLink();
}

void SimulatedProgrammer::loseLink()
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->loseLink();
}

void SimulatedProgrammer::setFirmwareTooOld(bool tooOld)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->firmwareTooOld = tooOld;
}

void SimulatedProgrammer::setWiFiPassword(OPERATION_TYPE link, const QString &password)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->wifiPasswords.insert(link, password);
}

void SimulatedProgrammer::setWiFiRefusalNamesLink(bool namesLink)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->refusalNamesLink = namesLink;
}

bool SimulatedProgrammer::isWiFiServerRunning() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->wifiServerRunning;
}

bool SimulatedProgrammer::isConnected() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->link == State::Link::Up;
}

OPERATION_TYPE SimulatedProgrammer::connectionType() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->linkType;
}

TConfiguration SimulatedProgrammer::configuration() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->configuration;
}

void SimulatedProgrammer::setConfiguration(const TConfiguration &configuration)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->configuration = configuration;
}

int SimulatedProgrammer::Connect(OPERATION_TYPE type)
{
    return state->run(Operation::Connect, NeedNothing, true,
                      [=](State::Call &call) { return state->connect(state->currentDevice, type, call); });
}

int SimulatedProgrammer::ConnectSelectedDevice(TSelectedDevice *device, OPERATION_TYPE type)
{
    return state->run(Operation::ConnectSelectedDevice, NeedNothing, true, [=](State::Call &call) {
        return state->connect(device ? state->indexOf(*device) : -1, type, call);
    });
}

int SimulatedProgrammer::Disconnect()
{
    return state->run(Operation::Disconnect, NeedConnection, true, [this](State::Call &) {
        state->uncommittedConfiguration.reset();
        state->link = State::Link::Down;
        return Success;
    });
}

int SimulatedProgrammer::CommitConfiguration()
{
    return state->run(Operation::CommitConfiguration, DeviceOperation, true, [this](State::Call &call) {
        if (!state->uncommittedConfiguration)
            return call.refuse(OutOfOrder, "no configuration was set");
        state->configuration = *state->uncommittedConfiguration;
        state->uncommittedConfiguration.reset();
        return int(Success);
    });
}

int SimulatedProgrammer::WiFiServerStart()
{
    return state->run(Operation::WiFiServerStart, DeviceOperation, true, [this](State::Call &) {
        state->wifiServerRunning = true;
        return Success;
    });
}

int SimulatedProgrammer::FindDevice()
{
    return state->run(Operation::FindDevice, DeviceOperation, true, [](State::Call &) { return Success; });
}

int SimulatedProgrammer::GetDeviceConfiguration(TConfiguration *configuration)
{
    const bool valid = configuration != nullptr;
    return state->run(Operation::GetDeviceConfiguration, DeviceOperation, valid, [=](State::Call &) {
        *configuration = state->uncommittedConfiguration.value_or(state->configuration);
        return Success;
    });
}

int SimulatedProgrammer::SetDeviceConfiguration(TConfiguration *configuration)
{
    const bool valid = configuration != nullptr;
    return state->run(Operation::SetDeviceConfiguration, DeviceOperation, valid, [=](State::Call &) {
        state->uncommittedConfiguration = *configuration;
        return Success;
    });
}

int SimulatedProgrammer::SetWiFiLinkPassword(QString password, bool debugLink)
{
    // Nothing is sent before the next connection, so this may come at any time, also during an operation.
    const std::lock_guard<std::mutex> lock(state->mutex);
    ++state->calls[Operation::SetWiFiLinkPassword];
    ++state->successes[Operation::SetWiFiLinkPassword];
    state->enteredPasswords.insert(debugLink ? OPERATION_TYPE_DEBUG : OPERATION_TYPE_CONFIGURATION, password);
    return Success;
}

int SimulatedProgrammer::State::connect(int device, OPERATION_TYPE type, Call &call)
{
    if (link == Link::Up)
        return call.refuse(OutOfOrder, "the device is connected already");
    if (!pluggedIn || device < 0 || device >= devices.size())
        return NoSelectedDevice;
    const bool overWiFi = devices.at(device).link == TSelectedDevice::WiFi;
    if (overWiFi && wifiPasswords.value(type) != enteredPasswords.value(type)) {
        if (!refusalNamesLink)
            return WiFiAuthenticationFailed;
        return type == OPERATION_TYPE_DEBUG ? DebugLinkAuthenticationFailed : ConfigurationLinkAuthenticationFailed;
    }
    if (firmwareTooOld)
        return FirmwareTooOld;
    currentDevice = device;
    linkType = type;
    link = Link::Up;
    return Success;
}

int SimulatedProgrammer::State::indexOf(const TSelectedDevice &wanted) const
{
    const auto differs = [](const auto &a, const auto &b) { return a != std::decay_t<decltype(a)>() && a != b; };
    const auto matches = [&](const TSelectedDevice &device) {
        return wanted.link == device.link && !differs(wanted.serialNumber, device.serialNumber)
            && !differs(wanted.name, device.name) && !differs(wanted.vendorId, device.vendorId)
            && !differs(wanted.productId, device.productId) && !differs(wanted.path, device.path)
            && !differs(wanted.address, device.address) && !differs(wanted.port, device.port);
    };
    const bool saysSomething = !wanted.serialNumber.isEmpty() || !wanted.name.isEmpty() || wanted.vendorId != 0
        || wanted.productId != 0 || !wanted.path.isEmpty() || !wanted.address.isEmpty() || wanted.port != 0;
    const auto found = std::find_if(devices.cbegin(), devices.cend(), matches);
    return saysSomething && found != devices.cend() ? int(found - devices.cbegin()) : -1;
}

void SimulatedProgrammer::State::loseLink()
{
    if (link == Link::Up) {
        leaveInterface();
        uncommittedConfiguration.reset();
    }
    if (link == Link::Up || running)
        link = Link::Lost;
    // Also a connection that is being made.
    aborted = true;
    changed.notify_all();
}

void SimulatedProgrammer::State::leaveTarget()
{
    targetConnected = false;
    swoEnabled = false;
}

void SimulatedProgrammer::State::leaveInterface()
{
    leaveTarget();
    interfaceTaken = false;
    clockSet = false;
}

// --- The target, the power module and the bootloaders, seen from outside --------------------------------------------

QList<SimulatedProgrammer::FlashRegion> SimulatedProgrammer::defaultFlashRegions()
{
    return {{0x00000000, 256 * 1024, 1024}, {0x10001000, 256, 256}};
}

bool SimulatedProgrammer::setFlashRegions(const QList<FlashRegion> &regions)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    if (state->running || !SimulatedFlash::isValid(regions))
        return false;
    state->flash = SimulatedFlash(regions);
    return true;
}

MemoryManager SimulatedProgrammer::flash() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->flash.image();
}

bool SimulatedProgrammer::setFlash(quint32 address, const QByteArray &data)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    if (!state->flash.contains(address, data.size()))
        return false;
    state->flash.set(address, data);
    return true;
}

void SimulatedProgrammer::setChipId(quint32 id)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->chipId = id;
}

void SimulatedProgrammer::setSelectedChipId(quint32 id)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->selectedChipId = id;
}

void SimulatedProgrammer::setVendorSupported(bool supported)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->vendorSupported = supported;
}

void SimulatedProgrammer::setTargetPresent(bool present)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->targetPresent = present;
}

void SimulatedProgrammer::setInterfaceInUseElsewhere(bool inUse)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->interfaceElsewhere = inUse;
}

void SimulatedProgrammer::setTargetDescriptor(const QSharedPointer<TargetDescriptor> &descriptor)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->descriptor = descriptor;
}

bool SimulatedProgrammer::isInterfaceTaken() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->interfaceTaken;
}

bool SimulatedProgrammer::isTargetConnected() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->targetConnected;
}

bool SimulatedProgrammer::isTargetRunning() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->targetRunning;
}

void SimulatedProgrammer::setSwoStream(const QByteArray &bytes, bool endless)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->swoStream = bytes;
    state->swoEndless = endless && !bytes.isEmpty();
    state->swoPosition = 0;
}

void SimulatedProgrammer::setExternalSupply(float volts)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    if (volts >= 0.0F && volts <= HighestExternalSupply)
        state->externalSupply = volts;
}

void SimulatedProgrammer::setPowerInfo(const TPowerInfo &info)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->powerInfo = info;
}

bool SimulatedProgrammer::isPowerChannelOn(int channel) const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return channel >= 0 && channel < PowerChannelCount && state->power.channels.at(size_t(channel)).on;
}

float SimulatedProgrammer::powerChannelVoltage(int channel) const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return channel >= 0 && channel < PowerChannelCount ? state->power.channels.at(size_t(channel)).volts : 0.0F;
}

unsigned int SimulatedProgrammer::batteryOptions() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->power.batteryOptions;
}

bool SimulatedProgrammer::isInBootloader() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->bootloader.isActive();
}

bool SimulatedProgrammer::isPowerModuleInBootloader() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->powerBootloader.isActive();
}

QByteArray SimulatedProgrammer::firmware(int size) const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->bootloader.firmware(size);
}

QByteArray SimulatedProgrammer::powerFirmware(int size) const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->powerBootloader.firmware(size);
}

void SimulatedProgrammer::setBootloaderInfo(const QByteArray &info)
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->bootloaderInfo = info;
}

// --- What happened --------------------------------------------------------------------------------------------------

int SimulatedProgrammer::callCount(Operation operation) const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->calls.value(operation);
}

int SimulatedProgrammer::successCount(Operation operation) const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->successes.value(operation);
}

QStringList SimulatedProgrammer::refusals() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->refusals;
}

qint64 SimulatedProgrammer::sectorsErased() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->sectorsErased;
}

qint64 SimulatedProgrammer::bytesWritten() const
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->bytesWritten;
}

void SimulatedProgrammer::clearRecord()
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->calls.clear();
    state->successes.clear();
    state->refusals.clear();
    state->sectorsErased = 0;
    state->bytesWritten = 0;
}
