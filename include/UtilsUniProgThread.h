#ifndef UTILSUNIPROGTHREAD_H
#define UTILSUNIPROGTHREAD_H

#include "UtilsLoggerMessageType.h"
#include "uniprogutils_export.h"

#include <UniProgInterface.h>

#include <QByteArray>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QPointer>
#include <QSharedPointer>
#include <QString>

#include <atomic>

class PowerModuleImage;
class ProgressRelay;
class QThread;
class UtilsBootloader;

/// Runs operations on the programmer without blocking the caller: one request at a time, each on a worker thread of
/// its own, reported through signals.
///
/// Use it for everything an application wants from the device. A request stores its arguments, returns 0 at once and
/// ends with exactly one SignalProcedureCompleted(), or with none when it does not get its turn at the device (see
/// mutexAccessThread). The log lines and the progress of a UtilsDialogProcessing come from here.
///
///     UsbDriver driver;
///     UtilsUniProgThread programmer(&driver, nullptr);
///     connect(&programmer, &UtilsUniProgThread::SignalOperationLogMessage, this,
///             [](const QString &line, LOGGER_MESSAGE_TYPE) { qInfo() << line; });
///     connect(&programmer, &UtilsUniProgThread::SignalProcedureCompleted, this,
///             [](int status, const QString &message) { qInfo() << status << message; });
///     programmer.WriteTarget(&image);
///
/// Threads: create it anywhere; it lives in its home thread (see the constructor), whose event loop has to run, because
/// workers are started and ended there. While a procedure runs the object lives in the worker and comes home
/// afterwards. Requests may be made from any thread, also inside a slot of SignalProcedureCompleted(), but not while
/// IsProcedureInProgress() is true for another reason: the class does not refuse it, and the later arguments replace
/// the earlier ones under the running procedure. Procedures of all objects in the process take turns: one has the
/// device from its connect to its completion signal.
///
/// A connection without a type does the right thing for receivers in the GUI thread: the signals come from the worker
/// and arrive queued.
///
/// Ownership: the driver, and everything a request is given a pointer to, stay the caller's. They have to exist until
/// SignalProcedureCompleted(); the driver as long as requests are made. The object has no parent. Delete it in its home
/// thread, or with deleteLater(); a procedure that runs is waited for and ends first. That holds in slots of its
/// signals as well: in a slot that a direct connection calls on the worker, only deleteLater() is allowed. Delete it
/// with deleteLater() wherever its signals have blocking queued connections: it would wait for a slot that waits for
/// it.
///
/// Status: 0 is success; every other number comes from the driver (or is 1 for a bad firmware image) and is reported
/// with a text:
///
/// | Status | Where | Text |
/// |---|---|---|
/// | 4, 13, 14 | device connect | "WiFi link authentication failed! \n...", of the config (13) or the debug (14) link |
/// | 12 | device connect | UtilsConstants::WARNING_INVALID_FIRMWARE_VERSION |
/// | 38 | device connect | UtilsConstants::WARNING_NO_SELECTED_DEVICE |
/// | other | device connect | "Connecting to device failed." |
/// | 10, 11, other | target connect | "Connecting to target failed." and, for 10 and 11, the reason |
/// | 8, 51, other | target procedure | the board lacks the vendor, the chip is unknown, "Operation failed." |
/// | 10, 11, other | control procedure | wrong target voltage, supplied externally, "Operation failed." |
///
/// The texts are fixed English and are not translated.
class UNIPROGUTILS_EXPORT UtilsUniProgThread : public QObject
{
    Q_OBJECT

public:
    /// \a uniProg is the driver, which is a QObject too and declares `void SignalUpdateProgress(int)`; its target
    /// descriptor is taken here, as a weak reference. A null driver is allowed, and refuses every request like a device
    /// that is not selected (38).
    /// \a thread becomes the home thread, and the object moves there; null keeps the current thread as home. The home
    /// thread has to outlive the object.
    UtilsUniProgThread(UniProgInterface *uniProg, QThread *thread);
    /// Waits for a procedure that runs. The driver is not touched and may be gone already.
    ~UtilsUniProgThread() override;

    /// Whether a request has been accepted whose worker has not ended yet. True as soon as the request returns; still
    /// true inside slots of SignalProcedureCompleted(). Stays true after a request that never got its turn (see
    /// SlotProcedureTargetRelated()), until a later request has ended. May be called from any thread.
    bool IsProcedureInProgress() const;

    /// \name Target
    /// These connect to the device and to the target. How they treat the target is told by its TargetDescriptor:
    /// operation option 0 (2: erase only what the image needs), option 1 (0: connect with a reset, and reset
    /// afterwards) and option 2 (not 0: verify what was written); connection option 5 (not 0: stay halted after a
    /// reset). Without a descriptor every option reads as 0. All return 0.
    /// \{

    /// Erases the target, writes the image, verifies it if option 2 says so, and resets the target, also after a
    /// failed write but not after a failed erase. A mismatch found by the verification is logged as an error, and the
    /// procedure completes with status 0 all the same.
    int WriteTarget(MemoryManager *argMemoryManager);
    /// Reads the target into the image.
    int ReadTarget(MemoryManager *argMemoryManager);
    /// Compares the target with the image; \a argResult tells whether they match.
    int VerifyTarget(MemoryManager *argMemoryManager, bool *argResult);
    /// Looks for data in the target; \a argResult tells whether it is blank.
    int CheckTargetBlank(bool *argResult);
    /// Looks for a target; \a argResult tells whether there is one.
    int DetectTarget(bool *argResult);
    /// Erases the whole target.
    int EraseTargetMass();
    /// Resets the target.
    int ResetTarget();
    /// \}

    /// \name Device
    /// These connect to the device only. All return 0.
    /// \{

    /// Makes the device signal, so that the user finds it among others.
    int FindDevice();
    /// Fills the caller's record with the configuration of the device.
    int GetDeviceConfiguration(TConfiguration *argConfiguration);
    /// Sends the configuration and has the device store it.
    int SetDeviceConfiguration(TConfiguration *argConfiguration);
    /// Starts the WiFi server of the device.
    int WiFiServerStart();
    /// \}

    /// \name SWO capture
    /// All return 0.
    /// \{

    /// Connects to the running target and starts the capture; \a argSwoParameter is the driver's to understand. The
    /// device is reached over the link that the previous request used. The connection to the target stays until
    /// SwoDisable(), after a failure too: make no other request on the target before.
    int SwoEnable(unsigned int argSwoParameter);
    /// Ends the capture and disconnects from the target; over the link of the previous request, which is the debug link
    /// after SwoEnable().
    int SwoDisable();
    /// Fetches captured bytes. \a argSwoDataSize is the size of the buffer before and the number of bytes read after.
    int SwoGetData(unsigned char *argSwoData, unsigned short *argSwoDataSize);
    /// \}

    /// \name Power module
    /// Successful changes of a switch, a voltage or the battery options are stored in the device. All return 0.
    /// \{

    /// Channels and states are the power module's. Channel 13 is the target's supply: while it is powered from outside
    /// (at least 1.0 V), nothing is switched and the request completes with status 11.
    int PowerSwitch(unsigned char argPowerChannel, unsigned char argPowerState);
    /// \a argPowerVoltage in volts. A supply from outside does not keep a voltage from being set.
    int PowerSetVoltage(unsigned char argPowerChannel, float argPowerVoltage);
    /// Sets the battery option word.
    int PowerSetBatteryOptions(unsigned int argBatteryOptions);
    /// Fills the caller's buffer, of \a argPowerReadingsSize bytes, with measurements.
    int PowerGetReadings(unsigned char *argPowerReadings, int argPowerReadingsSize);
    /// Fills the caller's record with what the power module says of itself.
    int PowerGetInfo(TPowerInfo *argPowerInfo);
    /// Stores the settings of the power module in the device.
    int PowerSaveConfiguration();
    /// Has the power module enter its bootloader.
    int PowerBootloaderActivate();
    /// Asks whether the bootloader of the power module answers.
    int PowerBootloaderGetInfo();
    /// Has the power module leave its bootloader.
    int PowerBootloaderReset();
    /// Updates the firmware of the power module with the image of the resource "://bin/pm_enc". A block that fails is
    /// tried again, but the number of attempts is that of the blocks; the module is reset also after a failed check,
    /// and the status is that of the reset. An image that is not valid completes with status 1 before anything is
    /// erased.
    ///
    /// The image that comes with this library is a placeholder; a build replaces it through the CMake variable
    /// UNIPROG_POWER_MODULE_IMAGE.
    int PowerBootloaderWrite();
    /// \}

    /// \name Firmware of the device
    /// These connect to \a argSelectedDevice, and so does every later request until one has got as far as
    /// disconnecting: a failed connect keeps the choice. All return 0.
    /// \{

    /// Enters the bootloader; \a argBootloaderInfo receives what it says of itself, or is cleared if it says nothing.
    int BootloaderEnter(TSelectedDevice argSelectedDevice, QByteArray *argBootloaderInfo);
    /// Erases, writes and verifies the firmware with the image file \a argImageFilePath. \a argImageSectorSize is the
    /// size of an erase sector in bytes; device 4098 has its own (see UtilsBootloader). A file that cannot be opened
    /// logs an empty error line and completes with status 1.
    int BootloaderProcess(TSelectedDevice argSelectedDevice, QString argImageFilePath, unsigned int argImageDeviceId,
                          unsigned short argImageSectorSize);
    /// Leaves the bootloader.
    int BootloaderExit(TSelectedDevice argSelectedDevice);
    /// \}

    /// The turn at the device. A procedure holds it from its connect to its completion signal, so that those of all
    /// objects in the process never meet. An application that calls the driver itself locks it meanwhile; a request
    /// waits for at most 5000 ms (see SlotProcedureTargetRelated()). Not recursive: do not lock it in a slot that the
    /// worker calls. Exists until the process ends.
    static QMutex *const mutexAccessThread;

Q_SIGNALS:
    /// The last act of a procedure; it ends the worker. The device is free for other objects already.
    void finished();
    /// Once per request: the final status, 0 for success, and the text of the failure, empty on success. The device is
    /// still reserved while this is emitted. Withheld when the request did not get its turn.
    void SignalProcedureCompleted(int GetStatus, QString argErrorMessage);
    /// A line for the user, in the order of events.
    void SignalOperationLogMessage(QString message, LOGGER_MESSAGE_TYPE messageType);
    /// 0 to 100, or -1 for busy without a percentage. The driver's own progress is forwarded on the thread that
    /// emits it, by every object of that driver, whichever of them runs a procedure.
    void SignalOperationProgress(int percent);

public Q_SLOTS:
    /// Called by the worker as it ends, on the worker: brings the object home. Not for applications.
    void SlotProcedureFinished();
    /// The worker runs one of these two. Not for applications.
    ///
    /// Either waits at most 5000 ms for its turn at the device. A request that does not get it emits nothing at all,
    /// and its worker stays; the next request, or the destructor, ends that worker.
    void SlotProcedureTargetRelated();
    void SlotProcedureControlRelated();

protected:
    bool event(QEvent *event) override;
    void customEvent(QEvent *event) override;

private:
    Q_DISABLE_COPY_MOVE(UtilsUniProgThread)

    using Procedure = void (UtilsUniProgThread::*)(int &status);

    void SelectOperation(Procedure procedure);
    void StartProcedure(const char *slot);
    void PostStart();
    void StartNext();
    void StartWorker(const char *slot);
    bool IsOnWorker() const;

    bool BeginProcedure(int &status, QString &message);
    void RunOperation(int &status);
    void CompleteProcedure(int status, const QString &message);
    void LeaveWorker();

    void Log(const QString &message, LOGGER_MESSAGE_TYPE type = LOGGER_MESSAGE_DEFAULT);
    int OperationOption(int option) const;
    int ConnectionOption(int option) const;
    bool *ResultFlag(bool &substitute) const;

    void Operation_Connect(int &status, QString &message, OPERATION_TYPE type);
    void Operation_ConnectToTarget(int &status, QString &message);
    void Operation_DisconnectFromTarget(int &status, QString &message);
    void Operation_Disconnect();
    void Operation_ResetHaltTarget();

    void Operation_WriteTarget(int &status);
    void Operation_ReadTarget(int &status);
    void Operation_VerifyTarget(int &status);
    void Operation_CheckTargetBlank(int &status);
    void Operation_DetectTarget(int &status);
    void Operation_EraseTargetMass(int &status);
    void Operation_ResetTarget(int &status);

    void Operation_FindDevice(int &status);
    void Operation_GetDeviceConfiguration(int &status);
    void Operation_SetDeviceConfiguration(int &status);
    void Operation_WifiServerStart(int &status);
    void Operation_SwoEnable(int &status);
    void Operation_SwoDisable(int &status);
    void Operation_SwoGetData(int &status);
    void Operation_PowerSwitch(int &status);
    void Operation_PowerSetVoltage(int &status);
    void Operation_PowerSetBatteryOptions(int &status);
    void Operation_PowerGetInfo(int &status);
    void Operation_PowerGetReadings(int &status);
    void Operation_PowerSaveConfiguration(int &status);
    void Operation_PowerBootloaderActivate(int &status);
    void Operation_PowerBootloaderGetInfo(int &status);
    void Operation_PowerBootloaderReset(int &status);
    void Operation_PowerBootloaderWrite(int &status);
    void Operation_BootloaderEnter(int &status);
    void Operation_BootloaderProcess(int &status);
    void Operation_BootloaderExit(int &status);

    void UpdateDevice(const UtilsBootloader &image, int &status, QString &failure);
    void WritePowerModule(const PowerModuleImage &image, int &status);

    UniProgInterface *uniProg;
    TConfiguration *configuration = nullptr;
    Procedure operation = nullptr;
    bool *result = nullptr;
    int targetConnectFlag = 0;
    OPERATION_TYPE operationType = static_cast<OPERATION_TYPE>(0);
    MemoryManager *memoryManager = nullptr;
    QThread *homeThread;
    unsigned char powerChannel = 0;
    unsigned char powerState = 0;
    float powerVoltage = 0.0F;
    unsigned char *powerReadings = nullptr;
    int powerReadingsSize = 0;
    unsigned int batteryOptions = 0;
    TPowerInfo *powerInfo = nullptr;
    unsigned char *swoData = nullptr;
    unsigned short *swoDataSize = nullptr;
    unsigned int swoParameter = 0;
    std::atomic<bool> procedureInProgress{false}; ///< atomic: read from any thread
    QWeakPointer<TargetDescriptor> targetDescriptor;
    QByteArray *bootloaderInfo = nullptr;
    QString imageFilePath;
    unsigned int imageDeviceId = 0;
    unsigned short imageSectorSize = 0;
    TSelectedDevice selectedDevice{};
    bool useSelectedDevice = false;

    ProgressRelay *progressRelay = nullptr; ///< null without a driver; deletes itself after retire()
    mutable QMutex lifecycleMutex; ///< guards the six below
    int openRequests = 0; ///< accepted, and their workers have not ended
    QList<const char *> waitingStarts; ///< frames of requests whose workers have not been started yet
    bool frameRunning = false; ///< from the start of a worker to the end of its procedure
    bool beingDestroyed = false;
    bool deletionIsOwed = false; ///< a deleteLater() reached the object on a worker
    QList<QPointer<QThread>> workers; ///< the current one last; earlier ones until they are deleted
};

#endif // UTILSUNIPROGTHREAD_H
