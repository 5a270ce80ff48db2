#ifndef SCRIPTEDDRIVER_H
#define SCRIPTEDDRIVER_H

#include <UniProgInterface.h>

#include "uniprogtestkit_export.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariant>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

class QThread;

/// A driver for tests: it touches no hardware, writes down every call and answers as it was told.
///
/// Untold, every operation succeeds at once: targets are detected, blank and verified, images match, the supply pin
/// is without voltage. What an operation answers is scripted per operation, for one call, for the next calls or for
/// all of them:
///
///     using Operation = ScriptedDriver::Operation;
///     using Answer = ScriptedDriver::Answer;
///
///     ScriptedDriver driver;
///     driver.always(Operation::ConnectToTarget, 10);              // wrong target voltage
///     driver.nth(Operation::BootloaderWrite, 3, 7);               // the third block fails
///     driver.next(Operation::ReadTarget, Answer().after(20ms).reporting({10, 50, 100}).giving(image));
///
///     UtilsUniProgThread thread(&driver, nullptr);
///     thread.ReadTarget(&memory);
///     ...
///     QCOMPARE(driver.transcript().first(), QStringLiteral("Connect(1)"));
///
/// Threads: every function may be called from any thread. The operations run on the thread that calls them, and that
/// is where they emit SignalUpdateProgress().
/// Ownership: the test owns the driver, and destroys it after the last operation has returned.
class UNIPROGTESTKIT_EXPORT ScriptedDriver : public QObject, public UniProgInterface
{
    Q_OBJECT

public:
    /// The operations of UniProgInterface, by their names and in their order.
    enum class Operation {
        Connect,
        ConnectSelectedDevice,
        Disconnect,
        CommitConfiguration,
        WiFiServerStart,
        FindDevice,
        GetDeviceConfiguration,
        SetDeviceConfiguration,
        ConnectToTarget,
        SetTargetClock,
        DisconnectFromTarget,
        SetTargetInterfaceInUse,
        GetTargetDescriptor,
        SetWiFiLinkPassword,
        ResetTarget,
        SwoGetData,
        SwoEnable,
        ReadTarget,
        DetectTarget,
        VerifyTarget,
        WriteTarget,
        EraseTargetMass,
        EraseTarget,
        CheckTargetBlank,
        BootloaderEnter,
        BootloaderErase,
        BootloaderWrite,
        BootloaderVerify,
        BootloaderGetInfo,
        BootloaderExit,
        PowerSwitch,
        PowerSetVoltage,
        PowerSetBatteryOptions,
        PowerGetReadings,
        PowerGetInfo,
        PowerSaveConfiguration,
        PowerGetSupplyState,
        PowerBootloaderActivate,
        PowerBootloaderReset,
        PowerBootloaderErase,
        PowerBootloaderWrite,
        PowerBootloaderVerify,
        PowerBootloaderGetInfo
    };
    Q_ENUM(Operation)

    /// One call as it arrived.
    ///
    /// Arguments: numbers and flags as they are (an `unsigned char` as int); TSelectedDevice as a copy; bytes to be
    /// written as a QByteArray copy; a QString as it is; other pointers as `void *`, so that a test can compare them
    /// (see pointer()). A password never stands here, only its length.
    struct UNIPROGTESTKIT_EXPORT Call
    {
        Operation operation = Operation::Connect;
        QVariantList arguments;
        QThread *thread = nullptr; ///< to compare, not to use: the thread may be gone

        /// The pointer given as argument \a index; null when that argument is none.
        void *pointer(int index) const;
        /// One line, as in `BootloaderWrite(0x8000, 992, 992 bytes)`: signed numbers decimal, unsigned ones
        /// hexadecimal, devices by name, pointers as `pointer` or `null`.
        QString toString() const;
    };

    /// What one call answers. Steps in their order: the hook runs, the call is held, the delay passes, the progress is
    /// emitted, the results are written, the status is returned.
    struct UNIPROGTESTKIT_EXPORT Answer
    {
        // cppcheck-suppress noExplicitConstructor ; a bare status is the commonest answer
        Answer(int status = 0);

        /// Takes \a time, at least.
        Answer &after(std::chrono::milliseconds time);
        /// Emits SignalUpdateProgress() with these values.
        Answer &reporting(const QList<int> &values);
        /// Writes \a value to the out-parameter, whatever the status: a bool (DetectTarget, VerifyTarget,
        /// CheckTargetBlank, the mismatch of PowerBootloaderVerify), a QByteArray (SwoGetData, PowerGetReadings,
        /// BootloaderGetInfo; cut to the size of the caller's buffer), or a TConfiguration, TPowerInfo,
        /// TPowerSupplyState or MemoryManager wrapped by QVariant::fromValue().
        Answer &giving(const QVariant &value);
        /// Leaves the out-parameters untouched.
        Answer &givingNothing();
        /// Blocks until release(), at most for the hold limit.
        Answer &untilReleased();
        /// Runs \a function on the calling thread.
        Answer &calling(const std::function<void()> &function);

        int status = 0;
        std::chrono::milliseconds delay{0};
        QList<int> progress;
        QVariant result; ///< not valid: the result of an untold operation, if the status is 0
        bool writesResult = true;
        bool held = false;
        std::function<void()> hook;
    };

    ScriptedDriver();
    ~ScriptedDriver() override;

    /// @name The script
    /// An answer for the nth call goes before one for the next calls, and that before the one for all calls.
    /// @{
    /// Answers every call, until told otherwise.
    void always(Operation operation, const Answer &answer);
    /// Answers the next \a count calls that no earlier next() answers.
    void next(Operation operation, const Answer &answer, int count = 1);
    /// Answers the call number \a n of this operation, counted from 1 since construction or reset().
    void nth(Operation operation, int n, const Answer &answer);
    /// Forgets the script, the calls and what was noticed; keeps the descriptor and the settings.
    void reset();
    /// @}

    /// The descriptor that GetTargetDescriptor() hands out; the driver starts with one of its own. A null pointer is
    /// allowed: whoever holds a weak reference sees it expire.
    void setTargetDescriptor(const QSharedPointer<TargetDescriptor> &descriptor);
    QSharedPointer<TargetDescriptor> targetDescriptor() const;

    /// @name What happened
    /// @{
    QList<Call> calls() const;
    /// Call::toString() of all calls.
    QStringList transcript() const;
    /// How often \a operation was called, recorded or not.
    int callCount(Operation operation) const;
    /// Blocks until \a operation has been called \a count times; false when that takes longer than \a timeout.
    bool waitForCall(Operation operation, int count = 1,
                     std::chrono::milliseconds timeout = std::chrono::seconds(30)) const;

    /// One line for each time that calls of two threads met: two operations at once, or an operation of one thread
    /// while another had the device, which is from a successful Connect to the end of Disconnect.
    /// GetTargetDescriptor and SetWiFiLinkPassword are free: they are meant for the application's thread.
    QStringList interleavings() const;

    /// Whether \a password is what the last SetWiFiLinkPassword() brought. The driver keeps a digest, never the
    /// password, so no log and no dump of a test shows it.
    bool receivedWiFiLinkPassword(const QString &password) const;

    /// Whether calls are written down; they are by default. Benchmarks and long runs switch it off. Counting, scripting
    /// and the watch for interleaving go on.
    void setRecording(bool on);
    /// @}

    /// @name Held calls
    /// @{
    /// Lets every call go on that is held now.
    void release();
    /// Blocks until a call is held; false when that takes longer than \a timeout.
    bool waitUntilHeld(std::chrono::milliseconds timeout = std::chrono::seconds(30)) const;
    /// How long a call is held at most; 30 s by default. A call that reaches the limit warns and goes on.
    void setHoldLimit(std::chrono::milliseconds limit);
    /// @}

    int Connect(OPERATION_TYPE type) override;
    int ConnectSelectedDevice(TSelectedDevice *device, OPERATION_TYPE type) override;
    int Disconnect() override;
    int CommitConfiguration() override;
    int WiFiServerStart() override;
    int FindDevice() override;
    int GetDeviceConfiguration(TConfiguration *configuration) override;
    int SetDeviceConfiguration(TConfiguration *configuration) override;
    int ConnectToTarget(int flag) override;
    int SetTargetClock() override;
    int DisconnectFromTarget() override;
    int SetTargetInterfaceInUse(bool inUse) override;
    QSharedPointer<TargetDescriptor> GetTargetDescriptor() override;
    int SetWiFiLinkPassword(QString password, bool debugLink) override;
    int ResetTarget(int mode) override;
    int SwoGetData(unsigned char *data, unsigned short *size) override;
    int SwoEnable(unsigned int parameter) override;
    int ReadTarget(MemoryManager *memory) override;
    int DetectTarget(bool *detected) override;
    int VerifyTarget(MemoryManager *memory, bool *verified, int leaveRunning) override;
    int WriteTarget(MemoryManager *memory, int mode) override;
    int EraseTargetMass() override;
    int EraseTarget(MemoryManager *memory) override;
    int CheckTargetBlank(bool *blank, bool leaveRunning) override;
    int BootloaderEnter() override;
    int BootloaderErase(unsigned int startAddress, int sectorCount) override;
    int BootloaderWrite(unsigned int address, int length, const char *data) override;
    int BootloaderVerify(unsigned int crc, int imageSize) override;
    int BootloaderGetInfo(QByteArray *info) override;
    int BootloaderExit() override;
    int PowerSwitch(unsigned char channel, unsigned char state) override;
    int PowerSetVoltage(unsigned char channel, float volts) override;
    int PowerSetBatteryOptions(unsigned int options) override;
    int PowerGetReadings(unsigned char *readings, int size) override;
    int PowerGetInfo(TPowerInfo *info) override;
    int PowerSaveConfiguration() override;
    int PowerGetSupplyState(TPowerSupplyState *state) override;
    int PowerBootloaderActivate() override;
    int PowerBootloaderReset() override;
    int PowerBootloaderErase(unsigned int sectorCount) override;
    int PowerBootloaderWrite(unsigned int address, int length, const char *data) override;
    int PowerBootloaderVerify(unsigned int crc, int size, bool *mismatch) override;
    int PowerBootloaderGetInfo() override;

Q_SIGNALS:
    /// Emitted on the thread that runs the operation.
    void SignalUpdateProgress(int percent);

private:
    Q_DISABLE_COPY_MOVE(ScriptedDriver)

    struct Script
    {
        int count = 0; ///< calls so far
        Answer always;
        QList<Answer> next;
        QHash<int, Answer> nth;
    };

    Answer perform(Operation operation, const QVariantList &arguments = {});
    Answer enter(Operation operation, const QVariantList &arguments);
    void leave(Operation operation, const Answer &answer);
    void hold(Operation operation);
    void watch(Operation operation);

    // The standard library's mutex, and not Qt's: ThreadSanitizer understands it on every path.
    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    QHash<Operation, Script> scripts;
    QSharedPointer<TargetDescriptor> descriptor;
    QList<Call> recorded;
    QStringList noticed;
    QByteArray passwordDigest;
    QThread *deviceOwner = nullptr; ///< has the device: connected and did not disconnect yet
    int running = 0; ///< operations under way
    int holding = 0; ///< operations that are held
    int releases = 0;
    std::chrono::milliseconds holdLimit{std::chrono::seconds(30)};
    bool recording = true;
};

#endif // SCRIPTEDDRIVER_H
