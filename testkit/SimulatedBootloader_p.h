#ifndef SIMULATEDBOOTLOADER_P_H
#define SIMULATEDBOOTLOADER_P_H

#include "SimulatedProgrammer.h"

/// A bootloader and the flash it looks after: one in the device, one in the power module. Knows no time and no faults.
/// The functions that return a status return Success or what the driver is to answer.
class SimulatedBootloader
{
public:
    explicit SimulatedBootloader(quint32 start);

    bool isActive() const;
    void activate();
    /// Leaves the bootloader; false, and it stays active, when the firmware was erased and not verified since.
    bool start();

    /// Where \a address is, from the start of the flash.
    qint64 offsetOf(quint32 address) const;

    int checkErase(quint32 address, qint64 sectorCount) const;
    /// Erases sector \a index, counted from \a address.
    void eraseSector(quint32 address, int index);
    /// From now on blocks may be written; an erase of no sectors is one as well.
    void noteErase();

    int checkWrite(quint32 address, const QByteArray &block) const;
    void write(quint32 address, const QByteArray &data);

    int checkVerify(int size) const;
    /// Compares, and takes a firmware with the right CRC for valid.
    bool verify(quint32 crc, int size);

    void flipBit(qint64 offset);
    QByteArray firmware(int size) const;

private:
    quint32 startAddress;
    QByteArray cells;
    bool active = false;
    bool erased = false; ///< since the bootloader was activated
    bool firmwareValid = true;
};

#endif // SIMULATEDBOOTLOADER_P_H
