#include "SimulatedBootloader_p.h"

#include <algorithm>

namespace {

constexpr int FlashSize = 480 * 1024;
constexpr int BlockSize = SimulatedProgrammer::BootloaderBlockSize;
constexpr int SectorSize = SimulatedProgrammer::BootloaderSectorSize;
constexpr char ErasedByte = MemoryManager::ErasedByte;
/// What stands for the firmware before the first update; no block can be written over it.
constexpr char FactoryByte = '\0';

} // namespace

SimulatedBootloader::SimulatedBootloader(quint32 start)
    : startAddress(start)
    , cells(FlashSize, FactoryByte)
{ }

bool SimulatedBootloader::isActive() const
{
    return active;
}

void SimulatedBootloader::activate()
{
    if (!active)
        erased = false;
    active = true;
}

bool SimulatedBootloader::start()
{
    active = !firmwareValid;
    return firmwareValid;
}

qint64 SimulatedBootloader::offsetOf(quint32 address) const
{
    return qint64(address) - startAddress;
}

int SimulatedBootloader::checkErase(quint32 address, qint64 sectorCount) const
{
    if (sectorCount < 0)
        return SimulatedProgrammer::InvalidArgument;
    const qint64 offset = offsetOf(address);
    const bool fits = offset >= 0 && offset % SectorSize == 0 && sectorCount <= (FlashSize - offset) / SectorSize;
    return fits ? SimulatedProgrammer::Success : SimulatedProgrammer::AddressError;
}

void SimulatedBootloader::eraseSector(quint32 address, int index)
{
    const auto first = cells.begin() + offsetOf(address) + qsizetype(index) * SectorSize;
    std::fill_n(first, SectorSize, ErasedByte);
    firmwareValid = false;
}

void SimulatedBootloader::noteErase()
{
    erased = true;
}

int SimulatedBootloader::checkWrite(quint32 address, const QByteArray &block) const
{
    const qint64 offset = offsetOf(address);
    if (offset < 0 || offset % BlockSize != 0 || offset + BlockSize > FlashSize)
        return SimulatedProgrammer::AddressError;
    if (!erased)
        return SimulatedProgrammer::OutOfOrder;
    const bool writable = std::equal(block.cbegin(), block.cend(), cells.cbegin() + offset,
                                     [](char byte, char cell) { return byte == ErasedByte || (cell & byte) == byte; });
    return writable ? SimulatedProgrammer::Success : SimulatedProgrammer::NotErased;
}

void SimulatedBootloader::write(quint32 address, const QByteArray &data)
{
    const auto first = cells.begin() + offsetOf(address);
    std::transform(data.cbegin(), data.cend(), first, first, [](char byte, char cell) { return char(cell & byte); });
}

int SimulatedBootloader::checkVerify(int size) const
{
    if (size < 0)
        return SimulatedProgrammer::InvalidArgument;
    return size <= FlashSize ? SimulatedProgrammer::Success : SimulatedProgrammer::AddressError;
}

bool SimulatedBootloader::verify(quint32 crc, int size)
{
    const bool matches = SimulatedProgrammer::crc32(firmware(size)) == crc;
    firmwareValid = firmwareValid || matches;
    return matches;
}

void SimulatedBootloader::flipBit(qint64 offset)
{
    char &cell = cells[offset];
    cell = char(cell ^ 1);
}

QByteArray SimulatedBootloader::firmware(int size) const
{
    return cells.left(std::max(size, 0));
}
