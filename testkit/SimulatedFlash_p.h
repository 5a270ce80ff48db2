#ifndef SIMULATEDFLASH_P_H
#define SIMULATEDFLASH_P_H

#include "SimulatedProgrammer.h"

/// The memory of the simulated target: NOR flash in regions. Knows no time and no faults.
class SimulatedFlash
{
public:
    struct Span
    {
        quint32 address = 0;
        int size = 0;
    };

    explicit SimulatedFlash(const QList<SimulatedProgrammer::FlashRegion> &regions);

    static bool isValid(const QList<SimulatedProgrammer::FlashRegion> &regions);

    bool contains(quint32 address, qint64 size) const;
    bool contains(const MemoryManager &memory) const;

    /// Every sector.
    QList<Span> sectors() const;
    /// The sectors that the segments of \a memory touch, each once. All of it must be inside.
    QList<Span> sectors(const MemoryManager &memory) const;
    /// The memory in blocks.
    QList<Span> blocks() const;
    /// The segments of \a memory in blocks. All of it must be inside.
    QList<Span> blocks(const MemoryManager &memory) const;

    /// Reads what is there; the range must be inside.
    QByteArray read(quint32 address, int size) const;
    /// Clears bits. False when the memory does not hold \a data afterwards.
    bool program(quint32 address, const QByteArray &data);
    /// Puts \a data there, whatever the cells held.
    void set(quint32 address, const QByteArray &data);
    void erase(const Span &span);

    MemoryManager image() const;

private:
    struct Region
    {
        SimulatedProgrammer::FlashRegion place;
        QByteArray cells;
    };

    const Region *find(qint64 address) const; ///< null outside
    /// Cuts a range, all of it inside, at the boundaries of regions and of blocks.
    QList<Span> cut(quint32 address, qint64 size) const;
    char *cell(quint32 address);

    QList<Region> regions; ///< by rising address
};

#endif // SIMULATEDFLASH_P_H
