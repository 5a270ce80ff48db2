#ifndef POWERMODULEIMAGE_P_H
#define POWERMODULEIMAGE_P_H

#include <QByteArray>

/// The firmware of the power module, as it is compiled into the library. The payload is enciphered for the module and
/// goes to it unread; only the header before it is parsed. The layout is that of UtilsBootloader, with the whole length
/// field counting.
class PowerModuleImage
{
public:
    static constexpr int WriteBlockSize = 992;
    static constexpr int EraseSectorSize = 4096;

    /// Reads the resource "://bin/pm_enc".
    static PowerModuleImage load();

    /// Whether there is an image: a whole header, and a payload of whole blocks. A payload may be empty.
    bool isValid() const;

    quint32 crc() const;
    int size() const;
    /// The payload from @p offset; valid as long as this object.
    const char *data(int offset) const;
    int blockCount() const;
    unsigned int sectorCount() const;

private:
    QByteArray file;
    quint32 storedCrc = 0;
    qint64 payloadStart = 0;
    bool valid = false;
};

#endif // POWERMODULEIMAGE_P_H
