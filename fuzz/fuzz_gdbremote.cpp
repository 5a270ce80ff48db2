// What a GDB server may send: any bytes as the stream of a connection and as a memory map.

#include <GdbMemoryMap.h>
#include <GdbPacket.h>

#include <cstdint>
#include <cstdlib>

static void check(bool holds)
{
    if (!holds)
        std::abort();
}

struct Sorted
{
    QList<GdbPacket::Kind> kinds;
    QByteArrayList bodies;
};

static void takeAll(QByteArray *received, Sorted *sorted)
{
    for (;;) {
        QByteArray body;
        const GdbPacket::Kind kind = GdbPacket::take(received, &body);
        if (kind == GdbPacket::Kind::Nothing)
            return;
        sorted->kinds.append(kind);
        if (kind != GdbPacket::Kind::Answer)
            continue;
        check(body.size() <= GdbPacket::MaximumSize);
        sorted->bodies.append(body);
    }
}

/// The first byte says where the stream is cut in two: that must not matter.
static void readStream(const QByteArray &bytes)
{
    Sorted whole;
    QByteArray rest = bytes;
    takeAll(&rest, &whole);
    check(whole.kinds.size() + rest.size() <= bytes.size());

    const qsizetype cut = bytes.isEmpty() ? 0 : static_cast<unsigned char>(bytes.front());
    Sorted pieces;
    QByteArray restOfPieces = bytes.left(cut);
    takeAll(&restOfPieces, &pieces);
    restOfPieces += bytes.mid(cut);
    takeAll(&restOfPieces, &pieces);
    check(pieces.kinds == whole.kinds && pieces.bodies == whole.bodies && restOfPieces == rest);
}

/// What is sent comes back the same.
static void send(const QByteArray &bytes)
{
    QByteArray received = GdbPacket::frame(GdbPacket::escape(bytes));
    QByteArray body;
    check(GdbPacket::take(&received, &body) == GdbPacket::Kind::Answer);
    check(body == bytes && received.isEmpty());
}

static void readMap(const QByteArray &bytes)
{
    QList<GdbFlashRegion> regions;
    check(GdbMemoryMap::parse(bytes, &regions) || regions.isEmpty());
    check(regions.size() <= GdbMemoryMap::MaximumRegionCount);
    qint64 total = 0;
    qint64 sectors = 0;
    for (const GdbFlashRegion &region : std::as_const(regions)) {
        check(region.size > 0 && region.sectorSize > 0 && region.size % region.sectorSize == 0);
        const quint32 last = region.start + (region.size - 1);
        check(last >= region.start);
        check(GdbMemoryMap::find(regions, last) != nullptr);
        total += region.size;
        sectors += region.size / region.sectorSize;
    }
    check(total <= GdbMemoryMap::MaximumFlashSize && sectors <= GdbMemoryMap::MaximumSectorCount);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    readStream(bytes);
    if (bytes.size() <= GdbPacket::MaximumSize / 2)
        send(bytes);
    readMap(bytes);
    return 0;
}
