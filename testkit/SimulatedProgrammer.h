#ifndef SIMULATEDPROGRAMMER_H
#define SIMULATEDPROGRAMMER_H

#include <UniProgInterface.h>

#include "uniprogtestkit_export.h"

#include <QList>
#include <QObject>
#include <QStringList>

#include <memory>

/// A programmer with a target, a power module and two bootloaders, all of them simulated: the driver to give the
/// library where there is no hardware, in tests, demonstrations and benchmarks.
///
/// It behaves as the real thing does: flash has to be erased before it is written, operations take time and report
/// progress, an operation out of order is refused, a WiFi link asks for its password. What goes wrong is planned with
/// addFault(). For a driver whose every answer is dictated by the test, see ScriptedDriver.
///
/// Any member may be called from any thread. The operations of UniProgInterface block and run one at a time: a second
/// one that starts meanwhile is refused with Busy. Signals are emitted on the thread that runs the operation, with no
/// lock held. The object owns everything it simulates; destroying it aborts a running operation and waits for its end,
/// so nobody may start another one then.
///
///     SimulatedProgrammer programmer;
///     programmer.setTimeScale(0); // no waiting
///     programmer.addFault(QStringLiteral("write@block=3:5")); // the third block fails with status 5
///
///     UtilsUniProgThread thread(&programmer, nullptr);
///     QSignalSpy completed(&thread, &UtilsUniProgThread::SignalProcedureCompleted);
///     thread.WriteTarget(&image);
///     QVERIFY(completed.wait());
///     QCOMPARE(completed.first().first().toInt(), 5);
///     QCOMPARE(programmer.refusals(), QStringList()); // the order of the operations was kept
///
/// What is needed for what: everything but Connect(), ConnectSelectedDevice() and SetWiFiLinkPassword() needs the
/// connection to the device. The connection to the target comes in the steps SetTargetInterfaceInUse(true),
/// SetTargetClock(), ConnectToTarget(); the operations on the target and SwoEnable() need it. The programmer keeps it
/// when the device is disconnected, or SWO data could not be fetched later. Releasing the interface ends it.
/// DisconnectFromTarget() and releasing the interface succeed also when there is nothing to undo. Both bootloaders stay
/// active over a disconnection too; meanwhile the device, or the power module, offers its bootloader only.
class UNIPROGTESTKIT_EXPORT SimulatedProgrammer : public QObject, public UniProgInterface
{
    Q_OBJECT

public:
    /// What operations return. The numbers below 100 are those the library gives a meaning to.
    enum Status {
        Success = 0,
        WiFiAuthenticationFailed = 4, ///< see setWiFiRefusalNamesLink()
        UnsupportedVendor = 8, ///< setVendorSupported(false)
        WrongVoltage = 10, ///< the target has no suitable supply, or a voltage nobody offers was asked for
        PoweredExternally = 11, ///< the supply pin is driven from outside
        FirmwareTooOld = 12, ///< setFirmwareTooOld(true)
        ConfigurationLinkAuthenticationFailed = 13,
        DebugLinkAuthenticationFailed = 14,
        NoSelectedDevice = 38, ///< no such device, or it is not plugged in
        ChipNotRecognised = 51, ///< the chip found is not the chip selected
        NotConnected = 100, ///< no connection to the device
        OutOfOrder = 101, ///< something has to come first, or was done already
        Busy = 102, ///< another operation is running
        InvalidArgument = 103, ///< null pointer, negative length, unknown channel or mode
        AddressError = 104, ///< outside of the flash, or not at the start of a block
        NotErased = 105, ///< a bit would have to rise from 0 to 1
        LinkLost = 106, ///< the link to the device broke down
        ConnectError = 107,
        InterfaceInUse = 108, ///< another application holds the interface to the target
        ClockError = 109,
        TargetNotResponding = 110,
        DisconnectError = 111,
        EraseError = 112,
        WriteError = 113,
        ReadError = 114,
        VerifyError = 115,
        FirmwareInvalid = 116, ///< a bootloader holds no verified firmware to start
        DeviceError = 117 ///< any other failure
    };
    Q_ENUM(Status)

    /// The operations of the driver, named as its functions.
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

    /// What happens when a fault strikes.
    enum class Effect {
        Fail, ///< the operation ends with the status of the fault
        LoseLink, ///< as loseLink()
        Hang, ///< the operation stands still until releaseHang(), and goes on then
        Delay, ///< the operation stands still for the time of the fault, and goes on then
        Corrupt ///< one bit of a byte of the block comes out wrong: in the memory, or in what is read from it
    };
    Q_ENUM(Effect)

    /// A planned failure. Connect() and ConnectSelectedDevice() share their faults, and so do EraseTargetMass() and
    /// EraseTarget(). Taking the interface to the target can fail, releasing it cannot; nor can SetWiFiLinkPassword().
    struct Fault
    {
        Operation operation = Operation::Connect;
        Effect effect = Effect::Fail;
        int status = DeviceError; ///< for Effect::Fail; 0 is no failure, the operation goes on
        /// Which call is hit, counted from 1 and from the moment the fault was added; 0: every call.
        int call = 0;
        /// Which block of the operation is hit, counted from 1; 0: the operation as a whole, before its first block.
        /// Erasing counts sectors, other operations on the target count blocks of ProgramBlockSize bytes, the writes
        /// of the bootloaders count blocks of BootloaderBlockSize bytes from the start of their flash.
        int block = 0;
        /// The fault strikes when so many bytes are done and more are to come; -1: see block. The writes of the
        /// bootloaders count from the start of their flash.
        qint64 bytes = -1;
        int delay = 0; ///< milliseconds, for Effect::Delay; the time scale does not change it
    };

    /// A piece of the target's memory. The sector size divides the size.
    struct FlashRegion
    {
        quint32 base = 0;
        quint32 size = 0;
        quint32 sectorSize = 0;
    };

    static constexpr qint64 LargestFlash = 64LL * 1024 * 1024; ///< bytes of all regions together
    static constexpr int ProgramBlockSize = 256; ///< bytes of target memory moved at a time
    static constexpr int BootloaderBlockSize = 992; ///< the only length a bootloader writes
    static constexpr int BootloaderSectorSize = 4096;
    static constexpr quint32 BootloaderStart = 0x8000;
    static constexpr quint32 PowerBootloaderStart = 0x10008000;
    static constexpr int PowerChannelCount = 16;
    static constexpr int SupplyChannel = 13; ///< the channel of the target's supply pin
    /// Milliseconds of real time between two progress signals of an operation: a progress bar that plays each step
    /// for that long keeps up with them.
    static constexpr int ProgressIntervalMs = 100;

    /// Plugged in, disconnected, with a blank target that runs and is supplied with 3.3 V by the programmer.
    explicit SimulatedProgrammer(QObject *parent = nullptr);
    ~SimulatedProgrammer() override;

    /// How long operations take: 1 (the default) as long as the real ones, 0 no time at all. Values outside 0 to 1000,
    /// and what is not a number, are ignored. Takes effect also on the running operation.
    void setTimeScale(double scale);
    double timeScale() const;

    // --- Faults -----------------------------------------------------------------------------------------------------

    /// Plans \a fault. Faults add up; of several that fit, the one added first strikes first.
    void addFault(const Fault &fault);

    /// Plans a fault given as text, as on a command line. Returns false, and a sentence in \a error if it is not null,
    /// when the text is not understood; nothing is planned then.
    ///
    ///     NAME                            every call fails with a status of its own kind
    ///     NAME=OUTCOME                    every call
    ///     NAME@CONDITION[,CONDITION][:OUTCOME]
    ///
    /// NAME is one of faultNames(); OUTCOME is a status number, "link-lost", "hang", "corrupt", or a time like "250ms";
    /// CONDITION is "call=N", "block=N" or "byte=N", see Fault. Some names stand for a whole fault: "verify-mismatch"
    /// for "verify=corrupt", "power-bootloader-mismatch" for "power-bootloader-verify=corrupt"; and "slow=N" makes
    /// every operation take N times as long (1 to 1000).
    ///
    ///     device-connect=38   erase=7   write@block=3:5   write@call=2,byte=5000:link-lost   verify-mismatch
    bool addFault(const QString &text, QString *error = nullptr);

    /// Every NAME that addFault() knows, for help texts.
    static QStringList faultNames();

    /// Forgets all faults and slowness. A call that is under way keeps its faults, but no longer hangs.
    void clearFaults();

    /// Whether an operation stands still because of Effect::Hang.
    bool isHanging() const;
    /// Lets a hanging operation go on.
    void releaseHang();

    // --- The device and its links -----------------------------------------------------------------------------------

    /// The devices that can be connected, and the one Connect() goes to: the first. By default one programmer, reached
    /// by USB (first) and by WiFi.
    void setDevices(const QList<TSelectedDevice> &devices);
    QList<TSelectedDevice> devices() const;

    /// Makes \a device the one Connect() goes to, as if it had been connected last. False, and nothing changes, when it
    /// is unknown. A device is known by its link and by what else is filled in of serial number, name, USB ids and
    /// path, WiFi address and port; a record that says nothing of that is unknown.
    bool selectDevice(const TSelectedDevice &device);

    /// Unplugging is losing the link, and keeps every device from being connected (NoSelectedDevice).
    void setPluggedIn(bool pluggedIn);
    /// The link breaks down now: a running operation ends with LinkLost, and so does every other until the next
    /// Connect(). The interface to the target is released. Nothing happens when there is no connection.
    void loseLink();
    /// True refuses connections with FirmwareTooOld.
    void setFirmwareTooOld(bool tooOld);

    /// What a WiFi connection over \a link demands from SetWiFiLinkPassword(); empty (the default) demands nothing.
    void setWiFiPassword(OPERATION_TYPE link, const QString &password);
    /// Whether a connection without the right password gives ConfigurationLinkAuthenticationFailed or
    /// DebugLinkAuthenticationFailed (the default), or just WiFiAuthenticationFailed.
    void setWiFiRefusalNamesLink(bool namesLink);
    bool isWiFiServerRunning() const;

    bool isConnected() const;
    /// The link of the last successful connection.
    OPERATION_TYPE connectionType() const;

    /// What the device has stored. Changed by SetDeviceConfiguration() once CommitConfiguration() follows in the same
    /// connection.
    TConfiguration configuration() const;
    void setConfiguration(const TConfiguration &configuration);

    // --- The target -------------------------------------------------------------------------------------------------

    /// 256 KiB at 0 in sectors of 1 KiB, and a page of 256 bytes at 0x10001000: a small Cortex-M0.
    static QList<FlashRegion> defaultFlashRegions();
    /// Puts in another target, blank. False, and nothing changes, while an operation runs, and when a region is empty,
    /// overlaps another, reaches past the 32-bit address space, or is no multiple of its sectors, and when they are
    /// larger than LargestFlash together.
    bool setFlashRegions(const QList<FlashRegion> &regions);

    /// All of the target's memory: one segment per region, fewer where regions touch.
    MemoryManager flash() const;
    /// Changes the memory behind the programmer's back. False, and nothing changes, when it does not fit.
    bool setFlash(quint32 address, const QByteArray &data);

    /// What the chip says it is, and what was selected; DetectTarget() compares them, and operations on the memory
    /// refuse to touch another chip than the selected one (ChipNotRecognised). Equal by default.
    void setChipId(quint32 id);
    void setSelectedChipId(quint32 id);
    /// False: operations on the memory give UnsupportedVendor.
    void setVendorSupported(bool supported);
    /// False: nothing answers at the other end of the cable (TargetNotResponding).
    void setTargetPresent(bool present);
    /// True: another application holds the interface to the target.
    void setInterfaceInUseElsewhere(bool inUse);
    /// What GetTargetDescriptor() returns; by default a descriptor with all options at 0. May be null.
    void setTargetDescriptor(const QSharedPointer<TargetDescriptor> &descriptor);

    bool isInterfaceTaken() const;
    bool isTargetConnected() const;
    /// A connection with reset, and operations on the memory that are not told to leave the target running, halt it.
    /// ResetTarget() lets it run unless the connection option HaltAfterReset says otherwise.
    bool isTargetRunning() const;

    /// What the target sends while SWO is on, again and again or once. By default a line of text, endlessly.
    void setSwoStream(const QByteArray &bytes, bool endless = true);

    // --- The power module -------------------------------------------------------------------------------------------

    /// Supplies the target from outside; 0 ends it. Values outside 0 to 60 V and what is not a number are ignored.
    void setExternalSupply(float volts);
    void setPowerInfo(const TPowerInfo &info);
    /// False for a channel there is not.
    bool isPowerChannelOn(int channel) const;
    /// The voltage set for the channel, on or off; 0 for a channel there is not.
    float powerChannelVoltage(int channel) const;
    unsigned int batteryOptions() const;

    // --- The bootloaders --------------------------------------------------------------------------------------------

    /// CRC-32 (IEEE 802.3, as zlib computes it) of \a data: what the bootloaders compare, and what stands in the first
    /// four bytes of a firmware image.
    static quint32 crc32(const QByteArray &data);

    bool isInBootloader() const;
    bool isPowerModuleInBootloader() const;
    /// The first \a size bytes from BootloaderStart; fewer when the flash is smaller, none for a negative size.
    QByteArray firmware(int size) const;
    /// The first \a size bytes from PowerBootloaderStart, likewise.
    QByteArray powerFirmware(int size) const;
    /// What BootloaderGetInfo() gives: by default device id 0x1002 (4 bytes), version 0x0100 (2 bytes) and sector size
    /// (2 bytes), little-endian.
    void setBootloaderInfo(const QByteArray &info);

    // --- What happened ----------------------------------------------------------------------------------------------

    /// How often \a operation was called, refused calls included.
    int callCount(Operation operation) const;
    /// How often \a operation returned Success.
    int successCount(Operation operation) const;
    /// Calls that were refused because of their order or arguments, in words: "WriteTarget: no connection to the
    /// target". Losing the link makes no call wrong. Arguments are never quoted: some are secrets.
    QStringList refusals() const;
    qint64 sectorsErased() const;
    qint64 bytesWritten() const;
    /// Sets the counts to 0 and forgets the refusals.
    void clearRecord();

Q_SIGNALS:
    /// Progress of writing, reading, verifying, checking and erasing sectors: rising from 0 to 100, each number at most
    /// once. The mass erase is one command of the chip and reports none. Between two of an operation are at least
    /// ProgressIntervalMs, except before 100; with a time scale of 0 no number is left out.
    void SignalUpdateProgress(int percent);

public:
    int Connect(OPERATION_TYPE type) override;
    /// A null device is an unknown one.
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
    /// Remembers the password; whether it is right shows at the next connection.
    int SetWiFiLinkPassword(QString password, bool debugLink) override;
    /// \a mode: 0 only.
    int ResetTarget(int mode) override;
    int SwoGetData(unsigned char *data, unsigned short *size) override;
    int SwoEnable(unsigned int parameter) override;
    int ReadTarget(MemoryManager *memory) override;
    int DetectTarget(bool *detected) override;
    int VerifyTarget(MemoryManager *memory, bool *verified, int leaveRunning) override;
    /// Bits that are 0 stay 0: writing to a cell that is not erased leaves both values joined by AND, and ends the
    /// operation after that block with NotErased. An image that reaches out of the flash is refused before the first
    /// byte. \a mode: 0 only.
    int WriteTarget(MemoryManager *memory, int mode) override;
    int EraseTargetMass() override;
    int EraseTarget(MemoryManager *memory) override;
    int CheckTargetBlank(bool *blank, bool leaveRunning) override;

    int BootloaderEnter() override;
    /// \a startAddress: at the start of a sector.
    int BootloaderErase(unsigned int startAddress, int sectorCount) override;
    /// Only whole blocks, at a multiple of their size from the start of the flash, after an erase. A block that would
    /// raise a bit is refused with NotErased and changes nothing; bytes 0xFF raise none, so the padding of the last
    /// block may lie outside of the erased sectors.
    int BootloaderWrite(unsigned int address, int length, const char *data) override;
    /// VerifyError when the CRC of the first \a imageSize bytes is another one.
    int BootloaderVerify(unsigned int crc, int imageSize) override;
    int BootloaderGetInfo(QByteArray *info) override;
    /// FirmwareInvalid, and the bootloader stays active, when something was erased and not verified since.
    int BootloaderExit() override;

    int PowerSwitch(unsigned char channel, unsigned char state) override;
    /// \a volts: 1.2 to 5.5.
    int PowerSetVoltage(unsigned char channel, float volts) override;
    int PowerSetBatteryOptions(unsigned int options) override;
    /// For each channel millivolts and milliamperes, two bytes each, little-endian, as far as \a size goes. Bytes
    /// beyond are set to 0.
    int PowerGetReadings(unsigned char *readings, int size) override;
    int PowerGetInfo(TPowerInfo *info) override;
    int PowerSaveConfiguration() override;
    int PowerGetSupplyState(TPowerSupplyState *state) override;
    int PowerBootloaderActivate() override;
    /// Starts the firmware with the saved configuration; without a verified firmware the bootloader stays active.
    int PowerBootloaderReset() override;
    int PowerBootloaderErase(unsigned int sectorCount) override;
    /// As BootloaderWrite().
    int PowerBootloaderWrite(unsigned int address, int length, const char *data) override;
    int PowerBootloaderVerify(unsigned int crc, int size, bool *mismatch) override;
    int PowerBootloaderGetInfo() override;

private:
    struct State;

    Q_DISABLE_COPY_MOVE(SimulatedProgrammer)

    std::unique_ptr<State> state;
};

#endif // SIMULATEDPROGRAMMER_H
