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
/// gives a meaning to are described in UtilsUniProgThread.h. Operations are called on worker threads, one at a time.
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

    virtual int Connect(OPERATION_TYPE type) = 0;
    virtual int ConnectSelectedDevice(TSelectedDevice *device, OPERATION_TYPE type) = 0;
    virtual int Disconnect() = 0;
    virtual int CommitConfiguration() = 0;
    virtual int WiFiServerStart() = 0;
    virtual int FindDevice() = 0;
    virtual int GetDeviceConfiguration(TConfiguration *configuration) = 0;
    virtual int SetDeviceConfiguration(TConfiguration *configuration) = 0;

    /// @p flag 1: connect with a reset of the target; 0: leave it running.
    virtual int ConnectToTarget(int flag) = 0;
    virtual int SetTargetClock() = 0;
    virtual int DisconnectFromTarget() = 0;
    /// @p inUse true takes the interface to the target, false releases it.
    virtual int SetTargetInterfaceInUse(bool inUse) = 0;
    /// The descriptor of the selected target; null when there is none.
    virtual QSharedPointer<TargetDescriptor> GetTargetDescriptor() = 0;
    /// The password is a secret: a driver never logs it.
    virtual int SetWiFiLinkPassword(QString password, bool debugLink) = 0;
    virtual int ResetTarget(int mode) = 0;

    /// @p size: capacity of @p data in, bytes read out.
    virtual int SwoGetData(unsigned char *data, unsigned short *size) = 0;
    virtual int SwoEnable(unsigned int parameter) = 0;

    /// Fills the segments of @p memory, or the whole target when it has none.
    virtual int ReadTarget(MemoryManager *memory) = 0;
    virtual int DetectTarget(bool *detected) = 0;
    virtual int VerifyTarget(MemoryManager *memory, bool *verified, int leaveRunning) = 0;
    virtual int WriteTarget(MemoryManager *memory, int mode) = 0;
    virtual int EraseTargetMass() = 0;
    /// Erases what the segments of @p memory touch.
    virtual int EraseTarget(MemoryManager *memory) = 0;
    virtual int CheckTargetBlank(bool *blank, bool leaveRunning) = 0;

    virtual int BootloaderEnter() = 0;
    virtual int BootloaderErase(unsigned int startAddress, int sectorCount) = 0;
    virtual int BootloaderWrite(unsigned int address, int length, const char *data) = 0;
    virtual int BootloaderVerify(unsigned int crc, int imageSize) = 0;
    virtual int BootloaderGetInfo(QByteArray *info) = 0;
    virtual int BootloaderExit() = 0;

    virtual int PowerSwitch(unsigned char channel, unsigned char state) = 0;
    virtual int PowerSetVoltage(unsigned char channel, float volts) = 0;
    virtual int PowerSetBatteryOptions(unsigned int options) = 0;
    virtual int PowerGetReadings(unsigned char *readings, int size) = 0;
    virtual int PowerGetInfo(TPowerInfo *info) = 0;
    virtual int PowerSaveConfiguration() = 0;
    virtual int PowerGetSupplyState(TPowerSupplyState *state) = 0;
    virtual int PowerBootloaderActivate() = 0;
    virtual int PowerBootloaderReset() = 0;
    virtual int PowerBootloaderErase(unsigned int sectorCount) = 0;
    virtual int PowerBootloaderWrite(unsigned int address, int length, const char *data) = 0;
    virtual int PowerBootloaderVerify(unsigned int crc, int size, bool *mismatch) = 0;
    virtual int PowerBootloaderGetInfo() = 0;
};

#endif // UNIPROGINTERFACE_H
