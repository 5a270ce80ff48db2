#ifndef CRC32_H
#define CRC32_H

#include <QByteArrayView>

/// The CRC that the bootloaders compute over a payload: CRC-32 as in zlib, PNG and Ethernet.
quint32 crc32(QByteArrayView bytes);

#endif // CRC32_H
