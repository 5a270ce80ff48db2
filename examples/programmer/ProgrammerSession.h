#ifndef PROGRAMMERSESSION_H
#define PROGRAMMERSESSION_H

#include <MemoryManager.h>
#include <SimulatedProgrammer.h>
#include <UtilsUniProgThread.h>

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

/// What the application works on: a programmer, the thread that runs its operations, the image and the options. The
/// window shows it, the command line drives it; both run every operation through start().
///
/// The programmer is a simulated one. An application for a real device has its driver in that place; nothing else here
/// would change.
class ProgrammerSession : public QObject
{
    Q_OBJECT

public:
    static constexpr float DefaultVoltage = 3.3F;

    enum class Operation {
        Write,
        Read,
        Verify,
        BlankCheck,
        Detect,
        Erase,
        Reset,
        EnterBootloader,
        WriteDeviceFirmware,
        ExitBootloader,
        ActivatePowerBootloader,
        ShowPowerBootloader,
        WritePowerFirmware,
        ResetPowerModule,
        FindDevice,
        ReadConfiguration,
        StoreConfiguration,
        StartWiFiServer,
        SwitchOn,
        SwitchOff,
        SetVoltage,
        ReadLevels,
        AskPowerModule,
        StartCapture,
        FetchCapture,
        StopCapture
    };
    /// What an operation works on. Target and the two kinds of firmware are offered by the command line as well.
    enum class Subject {
        Target,
        DeviceFirmware,
        PowerModule,
        Device,
        Configuration,
        WiFiServer,
        Supply,
        PowerInfo,
        Capture
    };

    /// How an operation is called: by the command line, on its button, and over its log.
    struct Description
    {
        Operation operation;
        const char *name;
        const char *caption;
        const char *message; ///< null: there is nothing to look at, it is over in a moment
        Subject subject;
        bool needsImage = false;
    };
    /// Voltage and current of a channel of the power module.
    struct PowerLevel
    {
        double volts;
        double amperes;
    };

    static const QList<Description> &descriptions();
    static const Description &describe(Operation operation);

    enum class Driver { Simulated, Missing };

    /// With a missing driver every operation is refused as by a device that is not selected. Operations use
    /// @p externalDriver, which the session takes over, in place of either, unless it is null.
    explicit ProgrammerSession(Driver kind = Driver::Simulated,
                               std::unique_ptr<UniProgInterface> externalDriver = nullptr, QObject *parent = nullptr);
    /// A running operation is cut short.
    ~ProgrammerSession() override;

    SimulatedProgrammer &programmer();
    /// What operations and dialogs are given: the programmer, or null when it is missing.
    UniProgInterface *driver();
    /// Whether the programmer is the simulated one.
    bool isSimulated() const;
    UtilsUniProgThread &thread();
    TargetOptionsOperation &operationOptions();
    TargetOptionsConnection &connectionOptions();

    const MemoryManager &image() const;
    QString imagePath() const;
    /// Loads the image. False and a sentence in @p error when the file cannot be used or an operation is running; the
    /// image loaded before stays.
    bool loadImage(const QString &path, quint32 binaryBase, QString *error);

    /// What the last read found; empty before.
    const MemoryManager &contents() const;
    /// Whether the last verify, blank check or detect found what it looked for.
    bool answer() const;

    /// Chooses the image for the device itself. False and a sentence in @p error when the file cannot be used or an
    /// operation is running; the choice made before stays.
    bool setDeviceImage(const QString &path, QString *error);
    QString deviceImagePath() const;
    /// What the bootloader of the device has said of itself; empty before.
    QByteArray bootloaderInfo() const;
    unsigned int bootloaderDeviceId() const;
    unsigned short bootloaderSectorSize() const;

    /// The stored settings of the device: as read last, or as given for the next store.
    const TConfiguration &configuration() const;
    /// Whether they have been read; they cannot be stored before, or what is not shown would be lost.
    bool hasConfiguration() const;
    void setConfiguration(const TConfiguration &configuration);

    /// What the next switch, or change of the voltage, is for.
    void setPowerChannel(int channel);
    void setPowerVoltage(double volts);
    /// What was read last of the channels; empty before.
    QList<PowerLevel> powerLevels() const;
    /// What the power module has said of itself; no channels before.
    TPowerInfo powerInfo() const;

    /// Whether the target's output is being captured. Nothing but the capture can be started then.
    bool isCapturing() const;
    /// What the last fetch brought.
    QByteArray captured() const;

    /// The link that operations use from now on: the first device of that link. False when there is none.
    bool selectLink(TSelectedDevice::Link link);
    TSelectedDevice::Link link() const;

    /// Plans a failure, see SimulatedProgrammer::addFault().
    bool addFault(const QString &text, QString *error);
    void clearFaults();
    QStringList faults() const;

    bool isRunning() const;
    /// False while an operation is running, when the image or the settings that @p operation needs are missing, and
    /// for what a capture excludes.
    bool canStart(Operation operation) const;
    /// Starts @p operation, if it can be started; its end is told by completed().
    void start(Operation operation);

Q_SIGNALS:
    void imageChanged();
    void deviceImageChanged();
    void linkChanged();
    void faultsChanged();
    /// @p status 0 is success; @p message is the text of the failure.
    void completed(ProgrammerSession::Operation operation, int status, const QString &message);

private:
    /// A level of a channel, little-endian: millivolts (2 bytes) and milliamperes (2).
    static constexpr qsizetype BytesPerLevel = 4;

    void startTargetOperation();
    void startFirmwareOperation();
    void startDeviceOperation();
    void startCaptureOperation();
    void procedureCompleted(int status, const QString &message);

    const Driver driverKind;
    SimulatedProgrammer device;
    TSelectedDevice selectedDevice;
    std::unique_ptr<UniProgInterface> external; ///< null: the simulated programmer is used
    QSharedPointer<TargetDescriptor> target;
    MemoryManager firmware;
    QString firmwarePath;
    QString deviceFirmwarePath;
    QByteArray deviceInfo;
    MemoryManager readMemory;
    bool result = false;
    TConfiguration deviceConfiguration;
    bool configurationKnown = false;
    unsigned char powerChannel = SimulatedProgrammer::SupplyChannel;
    float powerVoltage = DefaultVoltage;
    QByteArray levels; ///< BytesPerLevel a channel
    bool levelsKnown = false;
    TPowerInfo moduleInfo;
    bool capturing = false;
    QByteArray captureBuffer;
    quint16 captureSize = 0;
    QStringList plannedFaults;
    Operation current = Operation::Write;
    bool running = false;
    UtilsUniProgThread operationThread; ///< the last one: it waits for a procedure, which uses those above
};

#endif // PROGRAMMERSESSION_H
