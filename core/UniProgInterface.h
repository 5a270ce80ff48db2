#ifndef UNIPROGINTERFACE_H
#define UNIPROGINTERFACE_H

#include "MemoryManager.h"
#include "TargetDescriptor.h"
#include "UniProgRecords.h"
#include "uniprogcore_export.h"

#include <QByteArray>
#include <QSharedPointer>
#include <QString>

/// The driver of a programmer: everything the suite asks of the device.
///
/// Every operation blocks until the device has answered and returns a status, 0 for success. The numbers this library
/// gives a meaning to are described in UtilsUniProgThread.h. Operations are called on worker threads, one at a time,
/// but for GetTargetDescriptor() and SetWiFiLinkPassword(): those come from the application's thread, at any time.
///
/// A driver derives from QObject and from this class, in this order, and declares the signal
/// `void SignalUpdateProgress(int percent)`, which it may emit from any thread while an operation runs:
///
///     class UsbDriver : public QObject, public UniProgInterface
///     {
///         Q_OBJECT
///     Q_SIGNALS:
///         void SignalUpdateProgress(int percent);
///     public:
///         int Connect(OPERATION_TYPE type) override;
///         ...
///     };
///
/// The order of the operations is part of the interface; append new ones at the end.
class UNIPROGCORE_EXPORT UniProgInterface
{
public:
    virtual ~UniProgInterface();

    /// Opens the link to the device that was selected last. A failure leaves nothing to disconnect.
    virtual int Connect(OPERATION_TYPE type) = 0;
    /// As Connect(), to \a device; the record may be gone after the call.
    virtual int ConnectSelectedDevice(TSelectedDevice *device, OPERATION_TYPE type) = 0;
    /// Closes the link of a successful connect. The status is ignored.
    virtual int Disconnect() = 0;
    /// Makes the device use the configuration that was just set. The status is ignored.
    virtual int CommitConfiguration() = 0;
    /// Starts the WiFi server of the device.
    virtual int WiFiServerStart() = 0;
    /// Lets the device signal its user: it blinks or beeps.
    virtual int FindDevice() = 0;
    /// Fills \a configuration with what is stored in the device.
    virtual int GetDeviceConfiguration(TConfiguration *configuration) = 0;
    /// Stores \a configuration in the device; CommitConfiguration() follows a success.
    virtual int SetDeviceConfiguration(TConfiguration *configuration) = 0;

    /// \a flag 1: connect with a reset of the target; 0: leave it running.
    virtual int ConnectToTarget(int flag) = 0;
    /// Sets the SWD or JTAG clock of the target descriptor, before ConnectToTarget().
    virtual int SetTargetClock() = 0;
    /// Called after every attempt to reach the target, even when the interface to it could not be taken; a capture of
    /// trace data calls it when it is switched off.
    virtual int DisconnectFromTarget() = 0;
    /// \a inUse true takes the interface to the target, false releases it. Taking fails while somebody else has it;
    /// releasing comes then all the same, and must not take it from them.
    virtual int SetTargetInterfaceInUse(bool inUse) = 0;
    /// The descriptor of the selected target; null when there is none.
    virtual QSharedPointer<TargetDescriptor> GetTargetDescriptor() = 0;
    /// The password that the next connects use on the debug link or on the configuration link. It is a secret: a driver
    /// never logs it.
    virtual int SetWiFiLinkPassword(QString password, bool debugLink) = 0;
    /// Resets the target; the descriptor's connection options say whether it halts. \a mode is always 0.
    virtual int ResetTarget(int mode) = 0;

    /// Fetches trace data. \a size: capacity of \a data in, bytes read out.
    virtual int SwoGetData(unsigned char *data, unsigned short *size) = 0;
    /// Starts the capture of trace data; \a parameter is the application's word.
    virtual int SwoEnable(unsigned int parameter) = 0;

    /// Fills the segments of \a memory, or the whole target when it has none.
    virtual int ReadTarget(MemoryManager *memory) = 0;
    /// Tells in \a detected whether the target is the selected chip. A status other than 0 means it could not be asked.
    virtual int DetectTarget(bool *detected) = 0;
    /// Compares the target with \a memory and tells in \a verified whether they are the same; a difference is no
    /// failure.
    /// \a leaveRunning: the option TargetOptionsOperation::LeaveRunning.
    virtual int VerifyTarget(MemoryManager *memory, bool *verified, int leaveRunning) = 0;
    /// Writes \a memory to flash that was erased before. \a mode is always 0.
    virtual int WriteTarget(MemoryManager *memory, int mode) = 0;
    /// Erases the whole target.
    virtual int EraseTargetMass() = 0;
    /// Erases what the segments of \a memory touch.
    virtual int EraseTarget(MemoryManager *memory) = 0;
    /// Tells in \a blank whether the whole target is erased. \a leaveRunning: as in VerifyTarget().
    virtual int CheckTargetBlank(bool *blank, bool leaveRunning) = 0;

    /// Lets the device restart in its bootloader.
    virtual int BootloaderEnter() = 0;
    /// Erases \a sectorCount sectors of the device's flash from \a startAddress.
    virtual int BootloaderErase(unsigned int startAddress, int sectorCount) = 0;
    /// Writes \a length bytes of firmware to \a address.
    virtual int BootloaderWrite(unsigned int address, int length, const char *data) = 0;
    /// Lets the device compare \a imageSize bytes of its flash with \a crc; a difference is a failure.
    virtual int BootloaderVerify(unsigned int crc, int imageSize) = 0;
    /// Fills \a info with what the bootloader says of itself.
    virtual int BootloaderGetInfo(QByteArray *info) = 0;
    /// Lets the device restart with its firmware.
    virtual int BootloaderExit() = 0;

    /// Switches the power \a channel to \a state.
    virtual int PowerSwitch(unsigned char channel, unsigned char state) = 0;
    /// Sets the voltage of the power \a channel.
    virtual int PowerSetVoltage(unsigned char channel, float volts) = 0;
    /// Sets the battery option word.
    virtual int PowerSetBatteryOptions(unsigned int options) = 0;
    /// Fills \a readings with at most \a size bytes of measurements.
    virtual int PowerGetReadings(unsigned char *readings, int size) = 0;
    /// Fills \a info with what the power module says of itself.
    virtual int PowerGetInfo(TPowerInfo *info) = 0;
    /// Keeps the power settings over a restart. The status is ignored when another setting was just made.
    virtual int PowerSaveConfiguration() = 0;
    /// Fills \a state with what is measured at the supply pin of the target.
    virtual int PowerGetSupplyState(TPowerSupplyState *state) = 0;
    /// Lets the power module restart in its bootloader.
    virtual int PowerBootloaderActivate() = 0;
    /// Lets the power module restart with its firmware.
    virtual int PowerBootloaderReset() = 0;
    /// Erases \a sectorCount sectors, of 4096 bytes each, of the power module's flash.
    virtual int PowerBootloaderErase(unsigned int sectorCount) = 0;
    /// Writes \a length bytes of enciphered firmware to \a address.
    virtual int PowerBootloaderWrite(unsigned int address, int length, const char *data) = 0;
    /// Lets the power module compare \a size bytes of its flash with \a crc. Unlike with BootloaderVerify(), a
    /// difference is told in \a mismatch and is no failure.
    virtual int PowerBootloaderVerify(unsigned int crc, int size, bool *mismatch) = 0;
    /// Asks the power module's bootloader whether it answers.
    virtual int PowerBootloaderGetInfo() = 0;
};

#endif // UNIPROGINTERFACE_H
