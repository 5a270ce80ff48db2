#include "ScriptedDriver.h"

#include <QCryptographicHash>
#include <QMetaEnum>
#include <QThread>

#include <algorithm>
#include <cstring>
#include <thread>

namespace {

using Operation = ScriptedDriver::Operation;
using Answer = ScriptedDriver::Answer;

QString operationName(Operation operation)
{
    return QString::fromLatin1(QMetaEnum::fromType<Operation>().valueToKey(int(operation)));
}

QVariant pointerArgument(void *pointer)
{
    return QVariant::fromValue(pointer);
}

QVariant bytesArgument(const char *data, int length)
{
    return data ? QByteArray(data, std::max(length, 0)) : QByteArray();
}

QByteArray digest(const QString &password)
{
    return QCryptographicHash::hash(password.toUtf8(), QCryptographicHash::Sha256);
}

QString argumentText(const QVariant &argument)
{
    switch (argument.typeId()) {
    case QMetaType::UInt:
        return QLatin1String("0x") + QString::number(argument.toUInt(), 16);
    case QMetaType::VoidStar:
        return argument.value<void *>() ? QStringLiteral("pointer") : QStringLiteral("null");
    case QMetaType::QByteArray:
        return QString::number(argument.toByteArray().size()) + QLatin1String(" bytes");
    default:
        break;
    }
    if (argument.canConvert<TSelectedDevice>())
        return argument.value<TSelectedDevice>().name;
    return argument.toString();
}

bool mayBeCalledAnyTime(Operation operation)
{
    return operation == Operation::GetTargetDescriptor || operation == Operation::SetWiFiLinkPassword;
}

/// Writes what was scripted; untold, a call that succeeds writes @p standard.
template <typename T>
void give(const Answer &answer, T *out, const T &standard)
{
    if (!out || !answer.writesResult)
        return;
    if (answer.result.isValid())
        *out = answer.result.value<T>();
    else if (answer.status == 0)
        *out = standard;
}

/// Writes what was scripted, and nothing untold.
template <typename T>
void giveScripted(const Answer &answer, T *out)
{
    if (out && answer.writesResult && answer.result.isValid())
        *out = answer.result.value<T>();
}

/// Copies scripted bytes into a buffer and returns how many there were.
int giveBytes(const Answer &answer, unsigned char *out, int capacity)
{
    if (!out || !answer.writesResult)
        return 0;
    const QByteArray bytes = answer.result.toByteArray();
    const int count = std::clamp(int(bytes.size()), 0, std::max(capacity, 0));
    if (count > 0)
        std::memcpy(out, bytes.constData(), size_t(count));
    return count;
}

} // namespace

void *ScriptedDriver::Call::pointer(int index) const
{
    return arguments.value(index).value<void *>();
}

QString ScriptedDriver::Call::toString() const
{
    QStringList texts;
    texts.reserve(arguments.size());
    for (const QVariant &argument : arguments)
        texts.append(argumentText(argument));
    return operationName(operation) + QLatin1Char('(') + texts.join(QLatin1String(", ")) + QLatin1Char(')');
}

ScriptedDriver::Answer::Answer(int argStatus)
    : status(argStatus)
{ }

ScriptedDriver::Answer &ScriptedDriver::Answer::after(std::chrono::milliseconds time)
{
    delay = time;
    return *this;
}

ScriptedDriver::Answer &ScriptedDriver::Answer::reporting(const QList<int> &values)
{
    progress = values;
    return *this;
}

ScriptedDriver::Answer &ScriptedDriver::Answer::giving(const QVariant &value)
{
    result = value;
    writesResult = true;
    return *this;
}

ScriptedDriver::Answer &ScriptedDriver::Answer::givingNothing()
{
    writesResult = false;
    return *this;
}

ScriptedDriver::Answer &ScriptedDriver::Answer::untilReleased()
{
    held = true;
    return *this;
}

ScriptedDriver::Answer &ScriptedDriver::Answer::calling(const std::function<void()> &function)
{
    hook = function;
    return *this;
}

ScriptedDriver::ScriptedDriver()
    : descriptor(QSharedPointer<TargetDescriptor>::create())
{ }

ScriptedDriver::~ScriptedDriver() = default;

void ScriptedDriver::always(Operation operation, const Answer &answer)
{
    const std::lock_guard<std::mutex> lock(mutex);
    scripts[operation].always = answer;
}

void ScriptedDriver::next(Operation operation, const Answer &answer, int count)
{
    const std::lock_guard<std::mutex> lock(mutex);
    for (int i = 0; i < count; ++i)
        scripts[operation].next.append(answer);
}

void ScriptedDriver::nth(Operation operation, int n, const Answer &answer)
{
    const std::lock_guard<std::mutex> lock(mutex);
    scripts[operation].nth.insert(n, answer);
}

void ScriptedDriver::reset()
{
    const std::lock_guard<std::mutex> lock(mutex);
    scripts.clear();
    recorded.clear();
    noticed.clear();
    passwordDigest.clear();
}

void ScriptedDriver::setTargetDescriptor(const QSharedPointer<TargetDescriptor> &argDescriptor)
{
    const std::lock_guard<std::mutex> lock(mutex);
    descriptor = argDescriptor;
}

QSharedPointer<TargetDescriptor> ScriptedDriver::targetDescriptor() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return descriptor;
}

QList<ScriptedDriver::Call> ScriptedDriver::calls() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return recorded;
}

QStringList ScriptedDriver::transcript() const
{
    QStringList lines;
    for (const Call &call : calls())
        lines.append(call.toString());
    return lines;
}

int ScriptedDriver::callCount(Operation operation) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return scripts.value(operation).count;
}

bool ScriptedDriver::waitForCall(Operation operation, int count, std::chrono::milliseconds timeout) const
{
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, timeout, [&] { return scripts.value(operation).count >= count; });
}

QStringList ScriptedDriver::interleavings() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return noticed;
}

bool ScriptedDriver::receivedWiFiLinkPassword(const QString &password) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return passwordDigest == digest(password);
}

void ScriptedDriver::setRecording(bool on)
{
    const std::lock_guard<std::mutex> lock(mutex);
    recording = on;
}

void ScriptedDriver::release()
{
    const std::lock_guard<std::mutex> lock(mutex);
    ++releases;
    changed.notify_all();
}

bool ScriptedDriver::waitUntilHeld(std::chrono::milliseconds timeout) const
{
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, timeout, [this] { return holding > 0; });
}

void ScriptedDriver::setHoldLimit(std::chrono::milliseconds limit)
{
    const std::lock_guard<std::mutex> lock(mutex);
    holdLimit = limit;
}

ScriptedDriver::Answer ScriptedDriver::perform(Operation operation, const QVariantList &arguments)
{
    Answer answer = enter(operation, arguments);
    if (answer.hook)
        answer.hook();
    if (answer.held)
        hold(operation);
    if (answer.delay.count() > 0)
        std::this_thread::sleep_for(answer.delay);
    for (const int percent : answer.progress)
        Q_EMIT SignalUpdateProgress(percent);
    leave(operation, answer);
    return answer;
}

ScriptedDriver::Answer ScriptedDriver::enter(Operation operation, const QVariantList &arguments)
{
    const std::lock_guard<std::mutex> lock(mutex);
    watch(operation);
    if (recording)
        recorded.append({operation, arguments, QThread::currentThread()});

    Script &script = scripts[operation];
    ++script.count;
    changed.notify_all();
    const auto numbered = script.nth.constFind(script.count);
    if (numbered != script.nth.constEnd())
        return *numbered;
    return script.next.isEmpty() ? script.always : script.next.takeFirst();
}

void ScriptedDriver::watch(Operation operation)
{
    if (mayBeCalledAnyTime(operation))
        return;
    if (running > 0)
        noticed.append(operationName(operation) + QLatin1String(" was called while another operation was running"));
    else if (deviceOwner && deviceOwner != QThread::currentThread())
        noticed.append(operationName(operation) + QLatin1String(" was called while another thread had the device"));
    ++running;
}

void ScriptedDriver::leave(Operation operation, const Answer &answer)
{
    if (mayBeCalledAnyTime(operation))
        return;
    const std::lock_guard<std::mutex> lock(mutex);
    --running;
    const bool connects = operation == Operation::Connect || operation == Operation::ConnectSelectedDevice;
    if (connects && answer.status == 0)
        deviceOwner = QThread::currentThread();
    else if (operation == Operation::Disconnect)
        deviceOwner = nullptr;
}

void ScriptedDriver::hold(Operation operation)
{
    std::unique_lock<std::mutex> lock(mutex);
    const int earlier = releases;
    ++holding;
    changed.notify_all();
    const bool released = changed.wait_for(lock, holdLimit, [&] { return releases != earlier; });
    --holding;
    lock.unlock();
    if (!released)
        qWarning("ScriptedDriver: %s was held and never released", qUtf8Printable(operationName(operation)));
}

int ScriptedDriver::Connect(OPERATION_TYPE type)
{
    return perform(Operation::Connect, {int(type)}).status;
}

int ScriptedDriver::ConnectSelectedDevice(TSelectedDevice *device, OPERATION_TYPE type)
{
    const QVariant copy = device ? QVariant::fromValue(*device) : pointerArgument(nullptr);
    return perform(Operation::ConnectSelectedDevice, {copy, int(type)}).status;
}

int ScriptedDriver::Disconnect()
{
    return perform(Operation::Disconnect).status;
}

int ScriptedDriver::CommitConfiguration()
{
    return perform(Operation::CommitConfiguration).status;
}

int ScriptedDriver::WiFiServerStart()
{
    return perform(Operation::WiFiServerStart).status;
}

int ScriptedDriver::FindDevice()
{
    return perform(Operation::FindDevice).status;
}

int ScriptedDriver::GetDeviceConfiguration(TConfiguration *configuration)
{
    const Answer answer = perform(Operation::GetDeviceConfiguration, {pointerArgument(configuration)});
    giveScripted(answer, configuration);
    return answer.status;
}

int ScriptedDriver::SetDeviceConfiguration(TConfiguration *configuration)
{
    // The pointer only: the record holds the password of the network.
    return perform(Operation::SetDeviceConfiguration, {pointerArgument(configuration)}).status;
}

int ScriptedDriver::ConnectToTarget(int flag)
{
    return perform(Operation::ConnectToTarget, {flag}).status;
}

int ScriptedDriver::SetTargetClock()
{
    return perform(Operation::SetTargetClock).status;
}

int ScriptedDriver::DisconnectFromTarget()
{
    return perform(Operation::DisconnectFromTarget).status;
}

int ScriptedDriver::SetTargetInterfaceInUse(bool inUse)
{
    return perform(Operation::SetTargetInterfaceInUse, {inUse}).status;
}

QSharedPointer<TargetDescriptor> ScriptedDriver::GetTargetDescriptor()
{
    perform(Operation::GetTargetDescriptor);
    return targetDescriptor();
}

int ScriptedDriver::SetWiFiLinkPassword(QString password, bool debugLink)
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        passwordDigest = digest(password);
    }
    const QString placeholder = QStringLiteral("<%1 characters>").arg(password.size());
    return perform(Operation::SetWiFiLinkPassword, {placeholder, debugLink}).status;
}

int ScriptedDriver::ResetTarget(int mode)
{
    return perform(Operation::ResetTarget, {mode}).status;
}

int ScriptedDriver::SwoGetData(unsigned char *data, unsigned short *size)
{
    const Answer answer = perform(Operation::SwoGetData, {pointerArgument(data), pointerArgument(size)});
    if (size && answer.writesResult && (answer.status == 0 || answer.result.isValid()))
        *size = static_cast<unsigned short>(giveBytes(answer, data, *size));
    return answer.status;
}

int ScriptedDriver::SwoEnable(unsigned int parameter)
{
    return perform(Operation::SwoEnable, {parameter}).status;
}

int ScriptedDriver::ReadTarget(MemoryManager *memory)
{
    const Answer answer = perform(Operation::ReadTarget, {pointerArgument(memory)});
    giveScripted(answer, memory);
    return answer.status;
}

int ScriptedDriver::DetectTarget(bool *detected)
{
    const Answer answer = perform(Operation::DetectTarget, {pointerArgument(detected)});
    give(answer, detected, true);
    return answer.status;
}

int ScriptedDriver::VerifyTarget(MemoryManager *memory, bool *verified, int leaveRunning)
{
    const Answer answer
        = perform(Operation::VerifyTarget, {pointerArgument(memory), pointerArgument(verified), leaveRunning});
    give(answer, verified, true);
    return answer.status;
}

int ScriptedDriver::WriteTarget(MemoryManager *memory, int mode)
{
    return perform(Operation::WriteTarget, {pointerArgument(memory), mode}).status;
}

int ScriptedDriver::EraseTargetMass()
{
    return perform(Operation::EraseTargetMass).status;
}

int ScriptedDriver::EraseTarget(MemoryManager *memory)
{
    return perform(Operation::EraseTarget, {pointerArgument(memory)}).status;
}

int ScriptedDriver::CheckTargetBlank(bool *blank, bool leaveRunning)
{
    const Answer answer = perform(Operation::CheckTargetBlank, {pointerArgument(blank), leaveRunning});
    give(answer, blank, true);
    return answer.status;
}

int ScriptedDriver::BootloaderEnter()
{
    return perform(Operation::BootloaderEnter).status;
}

int ScriptedDriver::BootloaderErase(unsigned int startAddress, int sectorCount)
{
    return perform(Operation::BootloaderErase, {startAddress, sectorCount}).status;
}

int ScriptedDriver::BootloaderWrite(unsigned int address, int length, const char *data)
{
    return perform(Operation::BootloaderWrite, {address, length, bytesArgument(data, length)}).status;
}

int ScriptedDriver::BootloaderVerify(unsigned int crc, int imageSize)
{
    return perform(Operation::BootloaderVerify, {crc, imageSize}).status;
}

int ScriptedDriver::BootloaderGetInfo(QByteArray *info)
{
    const Answer answer = perform(Operation::BootloaderGetInfo, {pointerArgument(info)});
    giveScripted(answer, info);
    return answer.status;
}

int ScriptedDriver::BootloaderExit()
{
    return perform(Operation::BootloaderExit).status;
}

int ScriptedDriver::PowerSwitch(unsigned char channel, unsigned char state)
{
    return perform(Operation::PowerSwitch, {int(channel), int(state)}).status;
}

int ScriptedDriver::PowerSetVoltage(unsigned char channel, float volts)
{
    return perform(Operation::PowerSetVoltage, {int(channel), volts}).status;
}

int ScriptedDriver::PowerSetBatteryOptions(unsigned int options)
{
    return perform(Operation::PowerSetBatteryOptions, {options}).status;
}

int ScriptedDriver::PowerGetReadings(unsigned char *readings, int size)
{
    const Answer answer = perform(Operation::PowerGetReadings, {pointerArgument(readings), size});
    giveBytes(answer, readings, size);
    return answer.status;
}

int ScriptedDriver::PowerGetInfo(TPowerInfo *info)
{
    const Answer answer = perform(Operation::PowerGetInfo, {pointerArgument(info)});
    giveScripted(answer, info);
    return answer.status;
}

int ScriptedDriver::PowerSaveConfiguration()
{
    return perform(Operation::PowerSaveConfiguration).status;
}

int ScriptedDriver::PowerGetSupplyState(TPowerSupplyState *state)
{
    const Answer answer = perform(Operation::PowerGetSupplyState, {pointerArgument(state)});
    give(answer, state, TPowerSupplyState());
    return answer.status;
}

int ScriptedDriver::PowerBootloaderActivate()
{
    return perform(Operation::PowerBootloaderActivate).status;
}

int ScriptedDriver::PowerBootloaderReset()
{
    return perform(Operation::PowerBootloaderReset).status;
}

int ScriptedDriver::PowerBootloaderErase(unsigned int sectorCount)
{
    return perform(Operation::PowerBootloaderErase, {sectorCount}).status;
}

int ScriptedDriver::PowerBootloaderWrite(unsigned int address, int length, const char *data)
{
    return perform(Operation::PowerBootloaderWrite, {address, length, bytesArgument(data, length)}).status;
}

int ScriptedDriver::PowerBootloaderVerify(unsigned int crc, int size, bool *mismatch)
{
    const Answer answer = perform(Operation::PowerBootloaderVerify, {crc, size, pointerArgument(mismatch)});
    give(answer, mismatch, false);
    return answer.status;
}

int ScriptedDriver::PowerBootloaderGetInfo()
{
    return perform(Operation::PowerBootloaderGetInfo).status;
}
