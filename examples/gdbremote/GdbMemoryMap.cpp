#include "GdbMemoryMap.h"

#include <QByteArray>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

constexpr qint64 AddressSpace = Q_INT64_C(1) << 32;

constexpr quint32 NordicSmallPage = 1024; // nRF51
constexpr quint32 NordicLargePage = 4096; // nRF52
constexpr quint32 NordicLargestFlash = 2 * 1024 * 1024;
constexpr quint32 NordicUserConfiguration = 0x10001000; // a page of registers that is flash, too

quint64 number(const QString &text)
{
    return text.trimmed().toULongLong(nullptr, 0); // 0, which no size may be, for what is no number
}

/// Reads one memory element. False when it makes no sense.
bool readRegion(QXmlStreamReader &reader, QList<GdbFlashRegion> *regions)
{
    const QXmlStreamAttributes attributes = reader.attributes();
    const bool isFlash = attributes.value(QLatin1String("type")) == QLatin1String("flash");
    bool startOk = false;
    const quint64 start = attributes.value(QLatin1String("start")).toString().toULongLong(&startOk, 0);
    const quint64 size = number(attributes.value(QLatin1String("length")).toString());
    quint64 sectorSize = 0;
    while (reader.readNextStartElement()) {
        const bool isBlockSize = reader.attributes().value(QLatin1String("name")) == QLatin1String("blocksize");
        const QString text = reader.readElementText(QXmlStreamReader::SkipChildElements);
        if (isBlockSize)
            sectorSize = number(text);
    }
    if (!isFlash)
        return true;
    if (!startOk || size == 0 || size > GdbMemoryMap::MaximumFlashSize || start > AddressSpace - size || sectorSize == 0
        || size % sectorSize != 0)
        return false;
    regions->append({quint32(start), quint32(size), quint32(sectorSize)});
    return regions->size() <= GdbMemoryMap::MaximumRegionCount;
}

bool readRegions(QXmlStreamReader &reader, QList<GdbFlashRegion> *regions)
{
    if (!reader.readNextStartElement() || reader.name() != QLatin1String("memory-map"))
        return false;
    while (reader.readNextStartElement()) {
        if (reader.name() != QLatin1String("memory"))
            reader.skipCurrentElement();
        else if (!readRegion(reader, regions))
            return false;
    }
    return !reader.hasError();
}

} // namespace

bool GdbMemoryMap::parse(const QByteArray &xml, QList<GdbFlashRegion> *regions)
{
    regions->clear();
    QXmlStreamReader reader(xml);
    bool valid = readRegions(reader, regions);
    qint64 total = 0;
    qint64 sectorCount = 0;
    for (const GdbFlashRegion &region : std::as_const(*regions)) {
        total += region.size;
        sectorCount += region.size / region.sectorSize;
    }
    valid = valid && total <= MaximumFlashSize && sectorCount <= MaximumSectorCount;
    if (!valid)
        regions->clear();
    return valid;
}

QList<GdbFlashRegion> GdbMemoryMap::ofNordicChip(quint32 pageSize, quint32 pageCount)
{
    const bool known = (pageSize == NordicSmallPage || pageSize == NordicLargePage) && pageCount > 0
        && pageCount <= NordicLargestFlash / pageSize;
    if (!known)
        return {};
    return {{0, pageSize * pageCount, pageSize}, {NordicUserConfiguration, pageSize, pageSize}};
}

const GdbFlashRegion *GdbMemoryMap::find(const QList<GdbFlashRegion> &regions, quint32 address)
{
    const auto found = std::find_if(regions.cbegin(), regions.cend(), [=](const GdbFlashRegion &region) {
        return address >= region.start && address - region.start < region.size;
    });
    return found == regions.cend() ? nullptr : &*found;
}
