#ifndef GDBMEMORYMAP_H
#define GDBMEMORYMAP_H

#include <QList>

class QByteArray;

/// A stretch of flash of one sector size.
struct GdbFlashRegion
{
    quint32 start = 0;
    quint32 size = 0;
    quint32 sectorSize = 0;
};

/// Where a target has flash.
namespace GdbMemoryMap {

constexpr qint64 MaximumFlashSize = 64 * 1024 * 1024; ///< bytes; a larger one is not believed
constexpr int MaximumRegionCount = 256;
constexpr qint64 MaximumSectorCount = 65536; ///< of all regions

/// The flash regions of the memory map that a GDB server offers as XML; none for a target without flash. False for a
/// map that is damaged or makes no sense: sectors that do not divide their region, regions past 32 bits or larger than
/// any microcontroller's. @p regions is empty then.
bool parse(const QByteArray &xml, QList<GdbFlashRegion> *regions);

/// The flash of an nRF51 or nRF52, whose factory information tells these sizes. None for sizes they do not have.
QList<GdbFlashRegion> ofNordicChip(quint32 pageSize, quint32 pageCount);

/// The region that holds @p address, or null.
const GdbFlashRegion *find(const QList<GdbFlashRegion> &regions, quint32 address);

} // namespace GdbMemoryMap

#endif // GDBMEMORYMAP_H
