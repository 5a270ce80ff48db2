#ifndef GDBREMOTEDRIVER_H
#define GDBREMOTEDRIVER_H

#include "GdbTarget.h"

#include <UniProgInterface.h>

#include <QList>
#include <QObject>
#include <QSharedPointer>
#include <QString>

#include <functional>

/// The driver of a target behind a GDB server: an emulator such as QEMU, or OpenOCD with a real board.
///
/// The GDB server takes the place of the programmer, so that everything that belongs to a target works: connect, read,
/// write, erase, verify, blank check, detect and reset. What belongs to a programmer and not to a target (its
/// configuration, its bootloader, its power module, WiFi, SWO capture) ends with NotSupported.
///
/// Flash is written with the flash commands of the protocol where the server offers a memory map with flash, as OpenOCD
/// does, else as plain memory, as QEMU takes it; without a memory map the driver knows the flash of the nRF51 and nRF52
/// from the registers of those chips, and other chips end with ChipNotRecognised where all of the flash is meant.
///
/// Every operation blocks and ends within its time, whatever the server does. After a failure of the connection the
/// other operations end at once, until the next Connect(). Connect() to Disconnect() belong to one thread, as
/// UtilsUniProgThread calls them.
///
///     GdbRemoteDriver driver("localhost", 3333);
///     UtilsUniProgThread programmer(&driver, nullptr);
///     programmer.WriteTarget(&image);
class GdbRemoteDriver : public QObject, public UniProgInterface
{
    Q_OBJECT

public:
    using Status = GdbTarget::Status;

    GdbRemoteDriver(const QString &host, quint16 port, QObject *parent = nullptr);
    ~GdbRemoteDriver() override;

    /// How long the server has for an answer, GdbTarget::DefaultTimeout unless set. Erasing and programming get
    /// longer, as they take longer. For between two operations; from 1 ms.
    void setAnswerTimeout(int milliseconds);

    int Connect(OPERATION_TYPE type) override;
    /// Connects to the server this driver was made for; @p device is not looked at.
    int ConnectSelectedDevice(TSelectedDevice *device, OPERATION_TYPE type) override;
    int Disconnect() override;
    int CommitConfiguration() override;
    int WiFiServerStart() override;
    int FindDevice() override;
    int GetDeviceConfiguration(TConfiguration *configuration) override;
    int SetDeviceConfiguration(TConfiguration *configuration) override;

    int ConnectToTarget(int flag) override;
    /// Success without any effect: the clock of the debug interface is the server's to choose.
    int SetTargetClock() override;
    int DisconnectFromTarget() override;
    /// Success without any effect: the server serves one at a time.
    int SetTargetInterfaceInUse(bool inUse) override;
    QSharedPointer<TargetDescriptor> GetTargetDescriptor() override;
    int SetWiFiLinkPassword(QString password, bool debugLink) override;
    /// Resets the target and lets it run, or keeps it halted where connection option 5 says so.
    int ResetTarget(int mode) override;

    /// NotSupported: the protocol carries no trace data, and nothing is made up. @p size becomes 0.
    int SwoGetData(unsigned char *data, unsigned short *size) override;
    /// NotSupported, see SwoGetData().
    int SwoEnable(unsigned int parameter) override;

    int ReadTarget(MemoryManager *memory) override;
    /// Detected is a target whose identification register is one of an Arm Cortex-M core.
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
    /// After every block, when the percentage has changed. Comes from the thread of the operation.
    void SignalUpdateProgress(int percent);

private:
    struct Block
    {
        quint32 address = 0;
        quint32 size = 0;
    };
    using BlockWork = std::function<int(const Block &)>;

    int needTarget();
    QList<Block> flashBlocks() const;
    QList<Block> sectors() const;
    QList<Block> imageBlocks(const MemoryManager &image) const;
    int eraseSectors(const QList<Block> &sectors);
    int forEach(const QList<Block> &blocks, const BlockWork &work);

    GdbTarget target;
    QSharedPointer<TargetDescriptor> descriptor;
    bool targetConnected = false;
    bool leaveRunning = false; ///< the target is to run again after the operation
};

#endif // GDBREMOTEDRIVER_H
