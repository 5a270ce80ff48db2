#include "UtilsUniProgThread.h"

#include "DeviceStatus_p.h"
#include "DriverValues_p.h"
#include "ProgressRelay_p.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMutexLocker>
#include <QThread>

#include <utility>

using namespace DriverValues;

namespace {

// The frames, as the string connection of a worker's start names them.
constexpr const char *TargetFrame = "1SlotProcedureTargetRelated()";
constexpr const char *ControlFrame = "1SlotProcedureControlRelated()";

/// How long a procedure waits for its turn at the device.
constexpr int AccessTimeoutMs = 5000;

int connectFlag(int leaveRunning)
{
    return leaveRunning == 0 ? ConnectWithReset : ConnectLeavingRunning;
}

} // namespace

// Never deleted: a worker that is left behind at the end of the process may still hold it.
QMutex *const UtilsUniProgThread::mutexAccessThread = new QMutex;

UtilsUniProgThread::UtilsUniProgThread(UniProgInterface *argUniProg, QThread *thread)
    : uniProg(argUniProg)
    , homeThread(thread ? thread : this->thread())
{
    qRegisterMetaType<LOGGER_MESSAGE_TYPE>("LOGGER_MESSAGE_TYPE");
    if (uniProg)
        targetDescriptor = uniProg->GetTargetDescriptor();
    if (thread)
        moveToThread(thread);

    if (const auto *driver = dynamic_cast<QObject *>(uniProg))
        progressRelay = new ProgressRelay(driver, this);
}

UtilsUniProgThread::~UtilsUniProgThread()
{
    QMutexLocker locker(&lifecycleMutex);
    beingDestroyed = true;
    const bool idle = !frameRunning;
    const QList<QPointer<QThread>> ending = workers;
    locker.unlock();

    for (const QPointer<QThread> &worker : ending) {
        if (!worker)
            continue;
        // A procedure that runs is not disturbed, for the driver may wait in an event loop of its own; it quits its
        // worker when it has ended.
        if (idle)
            worker->quit();
        worker->wait();
        // The worker's deleteLater() needs an event loop, which may not run again.
        delete worker;
    }
    if (progressRelay)
        progressRelay->retire();
    locker.relock(); // what the workers did has happened before the fields go
}

bool UtilsUniProgThread::IsProcedureInProgress() const
{
    return procedureInProgress;
}

int UtilsUniProgThread::WriteTarget(MemoryManager *argMemoryManager)
{
    SelectOperation(&UtilsUniProgThread::Operation_WriteTarget);
    memoryManager = argMemoryManager;
    operationType = DebugLink;
    targetConnectFlag = ConnectWithReset;
    StartProcedure(TargetFrame);
    return 0;
}

int UtilsUniProgThread::ReadTarget(MemoryManager *argMemoryManager)
{
    SelectOperation(&UtilsUniProgThread::Operation_ReadTarget);
    memoryManager = argMemoryManager;
    operationType = DebugLink;
    targetConnectFlag = ConnectLeavingRunning;
    StartProcedure(TargetFrame);
    return 0;
}

int UtilsUniProgThread::VerifyTarget(MemoryManager *argMemoryManager, bool *argResult)
{
    SelectOperation(&UtilsUniProgThread::Operation_VerifyTarget);
    memoryManager = argMemoryManager;
    result = argResult;
    operationType = DebugLink;
    // Asked here for the connect, and by the procedure again: the option may change in between.
    targetConnectFlag = connectFlag(OperationOption(LeaveRunningOption));
    StartProcedure(TargetFrame);
    return 0;
}

int UtilsUniProgThread::CheckTargetBlank(bool *argResult)
{
    SelectOperation(&UtilsUniProgThread::Operation_CheckTargetBlank);
    result = argResult;
    operationType = DebugLink;
    targetConnectFlag = connectFlag(OperationOption(LeaveRunningOption));
    StartProcedure(TargetFrame);
    return 0;
}

int UtilsUniProgThread::DetectTarget(bool *argResult)
{
    SelectOperation(&UtilsUniProgThread::Operation_DetectTarget);
    result = argResult;
    operationType = DebugLink;
    targetConnectFlag = ConnectLeavingRunning;
    StartProcedure(TargetFrame);
    return 0;
}

int UtilsUniProgThread::EraseTargetMass()
{
    SelectOperation(&UtilsUniProgThread::Operation_EraseTargetMass);
    operationType = DebugLink;
    targetConnectFlag = ConnectWithReset;
    StartProcedure(TargetFrame);
    return 0;
}

int UtilsUniProgThread::ResetTarget()
{
    SelectOperation(&UtilsUniProgThread::Operation_ResetTarget);
    operationType = DebugLink;
    targetConnectFlag = ConnectLeavingRunning;
    StartProcedure(TargetFrame);
    return 0;
}

int UtilsUniProgThread::FindDevice()
{
    SelectOperation(&UtilsUniProgThread::Operation_FindDevice);
    operationType = DebugLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::GetDeviceConfiguration(TConfiguration *argConfiguration)
{
    SelectOperation(&UtilsUniProgThread::Operation_GetDeviceConfiguration);
    configuration = argConfiguration;
    operationType = DebugLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::SetDeviceConfiguration(TConfiguration *argConfiguration)
{
    SelectOperation(&UtilsUniProgThread::Operation_SetDeviceConfiguration);
    configuration = argConfiguration;
    operationType = ConfigurationLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::WiFiServerStart()
{
    SelectOperation(&UtilsUniProgThread::Operation_WifiServerStart);
    operationType = ConfigurationLink;
    StartProcedure(ControlFrame);
    return 0;
}

// The two SWO switches connect over whatever link the previous request used: their procedures choose the debug link
// only once the device is connected, so the choice serves later requests.
int UtilsUniProgThread::SwoEnable(unsigned int argSwoParameter)
{
    SelectOperation(&UtilsUniProgThread::Operation_SwoEnable);
    swoParameter = argSwoParameter;
    targetConnectFlag = ConnectLeavingRunning;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::SwoDisable()
{
    SelectOperation(&UtilsUniProgThread::Operation_SwoDisable);
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::SwoGetData(unsigned char *argSwoData, unsigned short *argSwoDataSize)
{
    SelectOperation(&UtilsUniProgThread::Operation_SwoGetData);
    swoData = argSwoData;
    swoDataSize = argSwoDataSize;
    operationType = DebugLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::PowerSwitch(unsigned char argPowerChannel, unsigned char argPowerState)
{
    SelectOperation(&UtilsUniProgThread::Operation_PowerSwitch);
    powerChannel = argPowerChannel;
    powerState = argPowerState;
    operationType = DebugLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::PowerSetVoltage(unsigned char argPowerChannel, float argPowerVoltage)
{
    SelectOperation(&UtilsUniProgThread::Operation_PowerSetVoltage);
    powerChannel = argPowerChannel;
    powerVoltage = argPowerVoltage;
    operationType = DebugLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::PowerSetBatteryOptions(unsigned int argBatteryOptions)
{
    SelectOperation(&UtilsUniProgThread::Operation_PowerSetBatteryOptions);
    batteryOptions = argBatteryOptions;
    operationType = DebugLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::PowerGetReadings(unsigned char *argPowerReadings, int argPowerReadingsSize)
{
    SelectOperation(&UtilsUniProgThread::Operation_PowerGetReadings);
    powerReadings = argPowerReadings;
    powerReadingsSize = argPowerReadingsSize;
    operationType = DebugLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::PowerGetInfo(TPowerInfo *argPowerInfo)
{
    SelectOperation(&UtilsUniProgThread::Operation_PowerGetInfo);
    powerInfo = argPowerInfo;
    operationType = DebugLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::PowerSaveConfiguration()
{
    SelectOperation(&UtilsUniProgThread::Operation_PowerSaveConfiguration);
    operationType = ConfigurationLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::PowerBootloaderActivate()
{
    SelectOperation(&UtilsUniProgThread::Operation_PowerBootloaderActivate);
    operationType = ConfigurationLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::PowerBootloaderGetInfo()
{
    SelectOperation(&UtilsUniProgThread::Operation_PowerBootloaderGetInfo);
    operationType = DebugLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::PowerBootloaderReset()
{
    SelectOperation(&UtilsUniProgThread::Operation_PowerBootloaderReset);
    operationType = ConfigurationLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::PowerBootloaderWrite()
{
    SelectOperation(&UtilsUniProgThread::Operation_PowerBootloaderWrite);
    operationType = ConfigurationLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::BootloaderEnter(TSelectedDevice argSelectedDevice, QByteArray *argBootloaderInfo)
{
    SelectOperation(&UtilsUniProgThread::Operation_BootloaderEnter);
    selectedDevice = std::move(argSelectedDevice);
    bootloaderInfo = argBootloaderInfo;
    useSelectedDevice = true;
    operationType = ConfigurationLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::BootloaderProcess(TSelectedDevice argSelectedDevice, QString argImageFilePath,
                                          unsigned int argImageDeviceId, unsigned short argImageSectorSize)
{
    SelectOperation(&UtilsUniProgThread::Operation_BootloaderProcess);
    selectedDevice = std::move(argSelectedDevice);
    imageFilePath = std::move(argImageFilePath);
    imageDeviceId = argImageDeviceId;
    imageSectorSize = argImageSectorSize;
    useSelectedDevice = true;
    operationType = ConfigurationLink;
    StartProcedure(ControlFrame);
    return 0;
}

int UtilsUniProgThread::BootloaderExit(TSelectedDevice argSelectedDevice)
{
    SelectOperation(&UtilsUniProgThread::Operation_BootloaderExit);
    selectedDevice = std::move(argSelectedDevice);
    useSelectedDevice = true;
    operationType = ConfigurationLink;
    StartProcedure(ControlFrame);
    return 0;
}

/// The first act of a request. It passes through the mutex that the previous worker passed last: whatever that worker
/// read and wrote has happened before the request overwrites the fields.
void UtilsUniProgThread::SelectOperation(Procedure procedure)
{
    const QMutexLocker locker(&lifecycleMutex);
    operation = procedure;
}

/// The last act of a request. Only the thread that the object lives in may move it to a worker, so a request from
/// another thread hops there. While the last worker is still ending the object lives in that one, and the start has to
/// wait until it is home. Workers are created at home only, where the destructor looks for them.
void UtilsUniProgThread::StartProcedure(const char *slot)
{
    {
        const QMutexLocker locker(&lifecycleMutex);
        ++openRequests;
        procedureInProgress = true;
        waitingStarts.append(slot);
    }
    if (QThread::currentThread() == thread() && thread() == homeThread)
        StartNext();
    else
        PostStart();
}

/// An event follows the object from thread to thread until it is handled.
void UtilsUniProgThread::PostStart()
{
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

/// A deleteLater() may arrive on the worker, even in the middle of a procedure, whose driver may wait in an event loop
/// of its own. The object goes home first: only there can it wait for all that its workers still do with it.
bool UtilsUniProgThread::event(QEvent *event)
{
    if (event->type() != QEvent::DeferredDelete || !IsOnWorker())
        return QObject::event(event);
    const QMutexLocker locker(&lifecycleMutex);
    deletionIsOwed = true;
    if (!frameRunning)
        QThread::currentThread()->quit();
    return true;
}

/// Not looked at, so that nothing but the event itself crosses to the other thread: none but PostStart() sends one, and
/// one too many does no harm.
void UtilsUniProgThread::customEvent(QEvent *)
{
    QMutexLocker locker(&lifecycleMutex);
    const bool ends = deletionIsOwed && QThread::currentThread() == homeThread;
    locker.unlock();
    if (ends)
        delete this;
    else
        StartNext();
}

void UtilsUniProgThread::StartNext()
{
    if (QThread::currentThread() != homeThread && !IsOnWorker()) {
        moveToThread(homeThread); // the application has moved the object away
        PostStart();
        return;
    }
    QMutexLocker locker(&lifecycleMutex);
    if (waitingStarts.isEmpty())
        return; // an earlier call has done it
    if (QThread::currentThread() == homeThread) {
        const char *const slot = waitingStarts.takeFirst();
        locker.unlock();
        StartWorker(slot);
    } else if (!frameRunning) {
        // Also the way out for a worker that was left running because its procedure never got its turn.
        QThread::currentThread()->quit();
    }
}

bool UtilsUniProgThread::IsOnWorker() const
{
    const QMutexLocker locker(&lifecycleMutex);
    return workers.contains(QThread::currentThread());
}

void UtilsUniProgThread::StartWorker(const char *slot)
{
    auto *worker = new QThread;
    worker->setObjectName(objectName());
    {
        const QMutexLocker locker(&lifecycleMutex);
        workers.removeAll(QPointer<QThread>());
        workers.append(worker);
        frameRunning = true;
    }

    moveToThread(worker);
    // Automatic connections, all of them. The second one runs on the worker, where the object lives: it is lost there
    // if anyone else tries to move it. The third and the fourth run where the worker was created, at home.
    connect(worker, SIGNAL(started()), this, slot);
    connect(worker, SIGNAL(finished()), this, SLOT(SlotProcedureFinished()));
    connect(this, SIGNAL(finished()), worker, SLOT(quit()));
    connect(worker, SIGNAL(finished()), worker, SLOT(deleteLater()));
    worker->start(QThread::InheritPriority);
}

void UtilsUniProgThread::SlotProcedureFinished()
{
    // The news of an earlier worker, delivered late, must not take the object from the one it lives in now.
    if (QThread::currentThread() != thread() || (sender() && sender() != QThread::currentThread()))
        return;
    // Before the move: from then on the next worker may be started at home, and this one is not to come after it.
    const QMutexLocker locker(&lifecycleMutex);
    moveToThread(homeThread);
    openRequests = qMax(openRequests - 1, 0);
    procedureInProgress = openRequests > 0;
    if (deletionIsOwed || !waitingStarts.isEmpty())
        PostStart();
}

void UtilsUniProgThread::SlotProcedureTargetRelated()
{
    int status = DeviceStatus::Success;
    QString message;
    if (!BeginProcedure(status, message))
        return;
    if (status == DeviceStatus::Success) {
        Log(QStringLiteral("Connecting to target MCU..."));
        Operation_ConnectToTarget(status, message);
        if (status == DeviceStatus::Success) {
            RunOperation(status);
            if (status != DeviceStatus::Success) {
                message = DeviceStatus::targetProcedureText(status);
                Log(message, LOGGER_MESSAGE_ERROR);
            }
        }
        // When both fail, the status stays the procedure's while the text becomes that of the disconnect.
        int disconnectStatus = DeviceStatus::Success;
        Operation_DisconnectFromTarget(disconnectStatus, message);
        if (status == DeviceStatus::Success)
            status = disconnectStatus;
        Operation_Disconnect();
    }
    CompleteProcedure(status, message);
}

void UtilsUniProgThread::SlotProcedureControlRelated()
{
    int status = DeviceStatus::Success;
    QString message;
    if (!BeginProcedure(status, message))
        return;
    if (status == DeviceStatus::Success) {
        RunOperation(status);
        if (status != DeviceStatus::Success) {
            message = DeviceStatus::controlProcedureText(status);
            Log(message, LOGGER_MESSAGE_ERROR);
        }
        Operation_Disconnect();
    }
    CompleteProcedure(status, message);
}

/// Waits for the turn at the device and connects to it. Returns false when the turn did not come; that is silent and
/// leaves the worker running: its user sees a request that is still waiting, and may make another.
/// A failed connect is neither disconnected nor does it forget the selected device: the next request tries it again.
bool UtilsUniProgThread::BeginProcedure(int &status, QString &message)
{
    if (!mutexAccessThread->tryLock(AccessTimeoutMs)) {
        LeaveWorker();
        return false;
    }
    Log(QStringLiteral("Starting operation..."));
    Operation_Connect(status, message, operationType);
    return true;
}

void UtilsUniProgThread::RunOperation(int &status)
{
    if (operation)
        (this->*operation)(status);
}

void UtilsUniProgThread::CompleteProcedure(int status, const QString &message)
{
    {
        // Pairs with SelectOperation(): from the completion signal on, the fields belong to the next request.
        const QMutexLocker locker(&lifecycleMutex);
    }
    Q_EMIT SignalProcedureCompleted(status, message);
    ProgressRelay::deleteRetired();
    mutexAccessThread->unlock();
    Q_EMIT finished();
    LeaveWorker();
}

/// The procedure is over. The worker ends when home handles finished(), unless home waits for it or a request does.
void UtilsUniProgThread::LeaveWorker()
{
    const bool onWorker = IsOnWorker();
    const QMutexLocker locker(&lifecycleMutex);
    frameRunning = false;
    if (onWorker && (beingDestroyed || deletionIsOwed || !waitingStarts.isEmpty()))
        QThread::currentThread()->quit();
}

void UtilsUniProgThread::Log(const QString &message, LOGGER_MESSAGE_TYPE type)
{
    Q_EMIT SignalOperationLogMessage(message, type);
}

/// The descriptor may go at any time: it is held for the length of one query, and a lost one reads as 0.
int UtilsUniProgThread::OperationOption(int option) const
{
    const QSharedPointer<TargetDescriptor> descriptor = targetDescriptor.toStrongRef();
    return descriptor ? descriptor->getOperationOptions()->getIntValue(option) : 0;
}

int UtilsUniProgThread::ConnectionOption(int option) const
{
    const QSharedPointer<TargetDescriptor> descriptor = targetDescriptor.toStrongRef();
    return descriptor ? descriptor->getConnectionOptions()->getIntValue(option) : 0;
}

/// The caller's flag, or @p substitute for a caller that does not want to know.
bool *UtilsUniProgThread::ResultFlag(bool &substitute) const
{
    return result ? result : &substitute;
}
