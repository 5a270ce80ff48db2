#ifndef MEMORYMANAGER_H
#define MEMORYMANAGER_H

#include "uniprogcore_export.h"

#include <QByteArray>
#include <QList>
#include <QMap>

/// A sparse image of 32-bit memory: the bytes of a firmware file or of a target, in segments that neither touch nor
/// overlap.
///
/// Bytes that were never written do not exist; reading them gives the fill byte of erased flash. A value type without
/// locks: whoever hands a pointer to a running operation leaves the image alone until the operation has completed.
///
///     MemoryManager image;
///     image.write(0x08000000, firmware);
///     for (const MemoryManager::Segment &segment : image.segments())
///         program(segment.address, segment.data);
class UNIPROGCORE_EXPORT MemoryManager
{
public:
    /// What an erased flash cell reads as.
    static constexpr char ErasedByte = '\xFF';

    struct Segment
    {
        quint32 address = 0;
        QByteArray data;
    };

    MemoryManager();
    MemoryManager(const MemoryManager &other);
    MemoryManager(MemoryManager &&other) noexcept;
    MemoryManager &operator=(const MemoryManager &other);
    MemoryManager &operator=(MemoryManager &&other) noexcept;
    ~MemoryManager();

    /// Puts \a data at \a address, over what is there, and joins segments that touch. Nothing happens and false is
    /// returned when the data would reach past 0xFFFFFFFF. Empty data is accepted and changes nothing.
    bool write(quint32 address, const QByteArray &data);

    /// \a size bytes from \a address; bytes that do not exist, also those past 0xFFFFFFFF, read as \a fill.
    /// A negative size gives an empty array.
    QByteArray read(quint32 address, qsizetype size, char fill = ErasedByte) const;

    /// Whether every one of the \a size bytes from \a address exists; true for a size of 0 or less.
    bool contains(quint32 address, qsizetype size = 1) const;

    /// Forgets \a size bytes from \a address; segments are cut where needed.
    void remove(quint32 address, qsizetype size);
    void clear();

    bool isEmpty() const;
    /// Number of bytes that exist.
    qint64 size() const;
    /// First existing address; 0 when the image is empty.
    quint32 firstAddress() const;
    /// Last existing address; 0 when the image is empty.
    quint32 lastAddress() const;

    int segmentCount() const;
    /// All segments by rising address.
    QList<Segment> segments() const;

private:
    friend UNIPROGCORE_EXPORT bool operator==(const MemoryManager &a, const MemoryManager &b);
    friend UNIPROGCORE_EXPORT bool operator!=(const MemoryManager &a, const MemoryManager &b);

    QMap<quint32, QByteArray> memory; ///< by start address; segments never touch
};

UNIPROGCORE_EXPORT bool operator==(const MemoryManager &a, const MemoryManager &b);
UNIPROGCORE_EXPORT bool operator!=(const MemoryManager &a, const MemoryManager &b);

#endif // MEMORYMANAGER_H
