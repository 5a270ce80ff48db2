#ifndef SIMULATEDPROGRAMMER_P_H
#define SIMULATEDPROGRAMMER_P_H

#include "SimulatedBootloader_p.h"
#include "SimulatedFaults_p.h"
#include "SimulatedFlash_p.h"
#include "SimulatedProgrammer.h"

#include <QHash>

#include <array>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>

/// What an operation needs before it may run.
enum SimulatedNeed {
    NeedNothing = 0,
    NeedConnection = 0x1,
    NeedFirmware = 0x2, ///< the device is not in its bootloader
    NeedBootloader = 0x4,
    NeedInterface = 0x8,
    NeedTarget = 0x10,
    NeedPowerFirmware = 0x20,
    NeedPowerBootloader = 0x40,

    DeviceOperation = NeedConnection | NeedFirmware,
    TargetOperation = DeviceOperation | NeedTarget,
    BootloaderOperation = NeedConnection | NeedBootloader,
    PowerOperation = DeviceOperation | NeedPowerFirmware,
    PowerBootloaderOperation = DeviceOperation | NeedPowerBootloader
};

/// How fast an operation gets on.
struct SimulatedPace
{
    std::chrono::nanoseconds perBlock;
    std::chrono::nanoseconds perByte;
    bool reportsProgress;
};

/// Everything the simulation knows; guarded by the mutex, which is held neither while time passes nor while a signal
/// is emitted.
struct SimulatedProgrammer::State
{
    class Call;

    static constexpr quint32 DefaultChipId = 0x0BB11477;

    enum class Link { Down, Up, Lost };

    struct Channel
    {
        bool on = false;
        float volts = 3.3F;
    };

    struct PowerSettings
    {
        std::array<Channel, PowerChannelCount> channels;
        unsigned int batteryOptions = 0;
    };

    explicit State(SimulatedProgrammer *owner);

    /// Runs an operation: counts it, refuses it or lets its time pass and its faults strike, and then runs \a body,
    /// a function that takes the Call and returns the status, with the mutex held.
    template <typename Body>
    int run(Operation operation, int needs, bool argumentsValid, Body body);

    void loseLink();
    /// The end of the connection to the target.
    void leaveTarget();
    /// The end of everything on the interface to the target.
    void leaveInterface();
    /// Connects to the device of that number; -1 is one there is not.
    int connect(int device, OPERATION_TYPE type, Call &call);
    /// The number of the known device that \a device means; -1 when there is none.
    int indexOf(const TSelectedDevice &device) const;
    /// Whether the target's memory, all of \a memory, can be reached: Success, or why not.
    int checkMemory(const MemoryManager &memory) const;
    /// Does \a work (a function of a Span and whether to corrupt it, that returns a status) for every one of \a spans:
    /// lets time pass, faults strike and progress be reported.
    template <typename Work>
    int forEach(const QList<SimulatedFlash::Span> &spans, const SimulatedPace &pace, Call &call, Work work);
    int erase(const QList<SimulatedFlash::Span> &sectors, const SimulatedPace &pace, Call &call);
    void flipBit(const SimulatedFlash::Span &span);
    /// The voltage at the pin of \a channel.
    float voltageOf(int channel) const;
    int eraseFirmware(SimulatedBootloader &loader, quint32 address, qint64 sectorCount, Call &call);
    int writeFirmware(SimulatedBootloader &loader, quint32 address, const QByteArray &data, Call &call);
    int verifyFirmware(SimulatedBootloader &loader, quint32 crc, int size, bool *mismatch, Call &call);

    SimulatedProgrammer *q;
    mutable std::mutex mutex;
    std::condition_variable changed; ///< something a waiting operation, or the destructor, should look at

    // The running operation
    bool running = false;
    bool aborted = false;
    bool hanging = false;
    quint64 releases = 0; ///< of hanging operations
    double timeScale = 1.0;
    SimulatedFaults faults;

    // The device
    Link link = Link::Down;
    OPERATION_TYPE linkType = OPERATION_TYPE_CONFIGURATION;
    QList<TSelectedDevice> devices;
    int currentDevice = 0;
    bool pluggedIn = true;
    bool firmwareTooOld = false;
    QHash<int, QString> wifiPasswords; ///< demanded, by link
    QHash<int, QString> enteredPasswords; ///< by link
    bool refusalNamesLink = true;
    bool wifiServerRunning = false;
    TConfiguration configuration;
    std::optional<TConfiguration> uncommittedConfiguration;

    // The target
    SimulatedFlash flash{defaultFlashRegions()};
    quint32 chipId = DefaultChipId;
    quint32 selectedChipId = DefaultChipId;
    bool vendorSupported = true;
    bool targetPresent = true;
    bool interfaceElsewhere = false;
    bool interfaceTaken = false;
    bool clockSet = false;
    bool targetConnected = false;
    bool targetRunning = true;
    QSharedPointer<TargetDescriptor> descriptor;
    bool swoEnabled = false;
    QByteArray swoStream;
    bool swoEndless = true;
    qsizetype swoPosition = 0;

    // The power module
    PowerSettings power;
    PowerSettings savedPower;
    TPowerInfo powerInfo;
    float externalSupply = 0.0F;

    // The bootloaders
    SimulatedBootloader bootloader{BootloaderStart};
    SimulatedBootloader powerBootloader{PowerBootloaderStart};
    QByteArray bootloaderInfo;

    // The record
    QHash<Operation, int> calls;
    QHash<Operation, int> successes;
    QStringList refusals;
    qint64 sectorsErased = 0;
    qint64 bytesWritten = 0;
};

/// One call of an operation, from its first to its last moment. Holds the mutex but for the moments when time passes or
/// a signal is emitted.
class SimulatedProgrammer::State::Call
{
public:
    /// What becomes of a block.
    struct Block
    {
        int status = Success; ///< not Success: the operation ends with it ...
        int bytes = 0; ///< ... after so many bytes of the block; all of them otherwise
        bool corrupt = false;
    };

    Call(State &programmer, Operation operation);
    ~Call();

    /// Counts the call and checks whether it may run. \a withFaults: whether planned faults apply.
    int begin(int needs, bool argumentsValid, bool withFaults = true);
    int finish(int status);
    /// Notes that the call was wrong.
    int refuse(int status, const char *reason);

    /// Lets the time of a block of \a bytes bytes pass, and its faults strike. Call it before the block is done.
    Block block(int bytes, std::chrono::nanoseconds duration);
    /// The next block is number \a block + 1, with \a bytes bytes done before it.
    void startAt(int block, qint64 bytes);
    /// Emits the progress signal if the percentage has grown.
    void reportProgress(qint64 done, qint64 total);

private:
    Q_DISABLE_COPY_MOVE(Call)

    using Clock = std::chrono::steady_clock;

    int check(int needs);
    int strike(const Fault &fault);
    int pass(std::chrono::nanoseconds duration);
    int standStill(std::chrono::milliseconds duration);

    State &s;
    Operation operation;
    std::unique_lock<std::mutex> lock;
    bool started = false; ///< this call is the running one
    QList<Fault> faults;
    int blocks = 0;
    qint64 bytesDone = 0;
    int progress = -1;
    Clock::time_point nextProgress; ///< earliest time of the next progress signal
    Clock::time_point due; ///< when the simulated time so far is over
};

template <typename Body>
int SimulatedProgrammer::State::run(Operation operation, int needs, bool argumentsValid, Body body)
{
    Call call(*this, operation);
    int status = call.begin(needs, argumentsValid);
    if (status == Success) {
        Q_ASSERT(argumentsValid); // others are refused
        status = body(call);
    }
    return call.finish(status);
}

#endif // SIMULATEDPROGRAMMER_P_H
