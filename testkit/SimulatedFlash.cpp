#include "SimulatedFlash_p.h"

#include <algorithm>

using FlashRegion = SimulatedProgrammer::FlashRegion;

namespace {

qint64 endOf(const FlashRegion &region)
{
    return qint64(region.base) + region.size;
}

} // namespace

SimulatedFlash::SimulatedFlash(const QList<FlashRegion> &places)
{
    for (const FlashRegion &place : places)
        regions.append({place, QByteArray(qsizetype(place.size), MemoryManager::ErasedByte)});
    std::sort(regions.begin(), regions.end(),
              [](const Region &a, const Region &b) { return a.place.base < b.place.base; });
}

bool SimulatedFlash::isValid(const QList<FlashRegion> &regions)
{
    constexpr qint64 AddressSpace = qint64(1) << 32;
    QList<FlashRegion> sorted = regions;
    std::sort(sorted.begin(), sorted.end(), [](const FlashRegion &a, const FlashRegion &b) { return a.base < b.base; });
    qint64 end = 0;
    qint64 size = 0;
    for (const FlashRegion &region : std::as_const(sorted)) {
        if (region.size == 0 || region.sectorSize == 0 || region.size % region.sectorSize != 0 || region.base < end)
            return false;
        end = endOf(region);
        size += region.size;
    }
    return end <= AddressSpace && size <= SimulatedProgrammer::LargestFlash;
}

const SimulatedFlash::Region *SimulatedFlash::find(qint64 address) const
{
    for (const Region &region : regions)
        if (address >= region.place.base && address < endOf(region.place))
            return &region;
    return nullptr;
}

char *SimulatedFlash::cell(quint32 address)
{
    for (Region &region : regions)
        if (address >= region.place.base && address < endOf(region.place))
            return region.cells.data() + (address - region.place.base);
    return nullptr;
}

bool SimulatedFlash::contains(quint32 address, qint64 size) const
{
    const qint64 end = address + size;
    for (qint64 at = address; at < end;) {
        const Region *region = find(at);
        if (!region)
            return false;
        at = endOf(region->place);
    }
    return true;
}

bool SimulatedFlash::contains(const MemoryManager &memory) const
{
    const auto segments = memory.segments();
    return std::all_of(segments.cbegin(), segments.cend(), [this](const MemoryManager::Segment &segment) {
        return contains(segment.address, segment.data.size());
    });
}

QList<SimulatedFlash::Span> SimulatedFlash::sectors() const
{
    return sectors(image());
}

QList<SimulatedFlash::Span> SimulatedFlash::sectors(const MemoryManager &memory) const
{
    QList<Span> result;
    const auto segments = memory.segments();
    for (const MemoryManager::Segment &segment : segments) {
        const qint64 end = segment.address + segment.data.size();
        for (qint64 at = segment.address; at < end;) {
            const FlashRegion &place = find(at)->place;
            const quint32 start = quint32(at - (at - place.base) % place.sectorSize);
            // Two segments may share a sector.
            if (result.isEmpty() || result.constLast().address != start)
                result.append({start, int(place.sectorSize)});
            at = qint64(start) + place.sectorSize;
        }
    }
    return result;
}

QList<SimulatedFlash::Span> SimulatedFlash::cut(quint32 address, qint64 size) const
{
    constexpr int BlockSize = SimulatedProgrammer::ProgramBlockSize;
    QList<Span> result;
    const qint64 end = address + size;
    for (qint64 at = address; at < end;) {
        const qint64 boundary = at - at % BlockSize + BlockSize;
        const qint64 to = std::min({end, boundary, endOf(find(at)->place)});
        result.append({quint32(at), int(to - at)});
        at = to;
    }
    return result;
}

QList<SimulatedFlash::Span> SimulatedFlash::blocks() const
{
    return blocks(image());
}

QList<SimulatedFlash::Span> SimulatedFlash::blocks(const MemoryManager &memory) const
{
    QList<Span> result;
    const auto segments = memory.segments();
    for (const MemoryManager::Segment &segment : segments)
        result += cut(segment.address, segment.data.size());
    return result;
}

QByteArray SimulatedFlash::read(quint32 address, int size) const
{
    QByteArray result;
    result.reserve(size);
    while (size > 0) {
        const Region *region = find(address);
        const int count = int(std::min<qint64>(size, endOf(region->place) - address));
        result += region->cells.mid(qsizetype(address - region->place.base), count);
        address += quint32(count);
        size -= count;
    }
    return result;
}

bool SimulatedFlash::program(quint32 address, const QByteArray &data)
{
    bool holds = true;
    for (const char byte : data) {
        char *target = cell(address++);
        *target = char(*target & byte);
        holds = holds && *target == byte;
    }
    return holds;
}

void SimulatedFlash::set(quint32 address, const QByteArray &data)
{
    for (const char byte : data)
        *cell(address++) = byte;
}

void SimulatedFlash::erase(const Span &span)
{
    set(span.address, QByteArray(span.size, MemoryManager::ErasedByte));
}

MemoryManager SimulatedFlash::image() const
{
    MemoryManager memory;
    for (const Region &region : regions)
        memory.write(region.place.base, region.cells);
    return memory;
}
