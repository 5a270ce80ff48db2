#include "MemoryManager.h"

#include <algorithm>

namespace {

constexpr qint64 AddressSpace = qint64(1) << 32;

} // namespace

MemoryManager::MemoryManager() = default;
MemoryManager::MemoryManager(const MemoryManager &other) = default;
MemoryManager::MemoryManager(MemoryManager &&other) noexcept = default;
MemoryManager &MemoryManager::operator=(const MemoryManager &other) = default;
MemoryManager &MemoryManager::operator=(MemoryManager &&other) noexcept = default;
MemoryManager::~MemoryManager() = default;

bool MemoryManager::write(quint32 address, const QByteArray &data)
{
    const qint64 start = address;
    const qint64 end = start + data.size();
    if (end > AddressSpace)
        return false;
    if (data.isEmpty())
        return true;

    // The segment that holds or touches the start takes the data; whatever else the data reaches is drawn into it.
    auto target = memory.upperBound(address);
    if (target != memory.begin() && qint64(std::prev(target).key()) + std::prev(target)->size() >= start)
        --target;
    else
        target = memory.insert(address, QByteArray());

    const qint64 offset = start - target.key();
    if (offset == target->size())
        target->append(data);
    else
        target->replace(offset, std::min<qint64>(data.size(), target->size() - offset), data);

    auto next = std::next(target);
    while (next != memory.end() && next.key() <= end) {
        const qint64 overlap = end - next.key();
        if (overlap < next->size())
            target->append(next->constData() + overlap, next->size() - overlap);
        next = memory.erase(next);
    }
    return true;
}

QByteArray MemoryManager::read(quint32 address, qsizetype size, char fill) const
{
    QByteArray result(std::max<qsizetype>(size, 0), fill);
    const qint64 start = address;
    const qint64 end = start + result.size();
    auto segment = memory.upperBound(address);
    if (segment != memory.begin())
        --segment;
    for (; segment != memory.end() && segment.key() < end; ++segment) {
        const qint64 from = std::max<qint64>(start, segment.key());
        const qint64 to = std::min<qint64>(end, qint64(segment.key()) + segment->size());
        if (from < to)
            std::copy_n(segment->constData() + (from - segment.key()), to - from, result.data() + (from - start));
    }
    return result;
}

bool MemoryManager::contains(quint32 address, qsizetype size) const
{
    if (size <= 0)
        return true;
    auto segment = memory.upperBound(address);
    if (segment == memory.begin())
        return false;
    --segment;
    return qint64(address) + size <= qint64(segment.key()) + segment->size();
}

void MemoryManager::remove(quint32 address, qsizetype size)
{
    if (size <= 0)
        return;
    const qint64 start = address;
    const qint64 end = std::min<qint64>(start + size, AddressSpace);
    auto segment = memory.upperBound(address);
    if (segment != memory.begin())
        --segment;
    while (segment != memory.end() && segment.key() < end) {
        const qint64 segmentStart = segment.key();
        const qint64 segmentEnd = segmentStart + segment->size();
        if (segmentEnd <= start) {
            ++segment;
            continue;
        }
        const QByteArray tail = segmentEnd > end ? segment->right(segmentEnd - end) : QByteArray();
        if (segmentStart < start) {
            segment->truncate(start - segmentStart);
            ++segment;
        } else {
            segment = memory.erase(segment);
        }
        if (!tail.isEmpty())
            segment = std::next(memory.insert(quint32(end), tail));
    }
}

void MemoryManager::clear()
{
    memory.clear();
}

bool MemoryManager::isEmpty() const
{
    return memory.isEmpty();
}

qint64 MemoryManager::size() const
{
    qint64 total = 0;
    for (const QByteArray &data : memory)
        total += data.size();
    return total;
}

quint32 MemoryManager::firstAddress() const
{
    return memory.isEmpty() ? 0 : memory.firstKey();
}

quint32 MemoryManager::lastAddress() const
{
    return memory.isEmpty() ? 0 : quint32(memory.lastKey() + memory.last().size() - 1);
}

int MemoryManager::segmentCount() const
{
    return int(memory.size());
}

QList<MemoryManager::Segment> MemoryManager::segments() const
{
    QList<Segment> result;
    result.reserve(memory.size());
    for (auto segment = memory.cbegin(); segment != memory.cend(); ++segment)
        result.append({segment.key(), segment.value()});
    return result;
}

bool operator==(const MemoryManager &a, const MemoryManager &b)
{
    return a.memory == b.memory;
}

bool operator!=(const MemoryManager &a, const MemoryManager &b)
{
    return !(a == b);
}
