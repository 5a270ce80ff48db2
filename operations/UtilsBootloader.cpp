#include "UtilsBootloader.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr unsigned int DeviceStartAddress = 0x8000;
constexpr unsigned int ExternalStartAddress = 0x10008000;

constexpr int WriteBlockSize = 0x3E0;

/// A device whose sectors are known, whatever its description says.
constexpr unsigned int DeviceWithKnownSectors = 0x1002;
constexpr int KnownSectorSize = 4096;

constexpr int CrcSize = 4;
constexpr int LengthSize = 4;

constexpr char ErasedByte = '\xFF';
constexpr qint64 LargestPayload = std::numeric_limits<int>::max();

} // namespace

UtilsBootloader::UtilsBootloader(QString path, BootloaderImageFileType type, unsigned int deviceId,
                                 unsigned short sectorSize)
    : filePath(std::move(path))
    , writeBlockSize(WriteBlockSize)
    , eraseSectorSize(deviceId == DeviceWithKnownSectors ? KnownSectorSize : sectorSize)
{
    if (type == BOOTLOADER_IMAGE_DEVICE)
        imageStartAddress = DeviceStartAddress;
    else if (type == BOOTLOADER_IMAGE_EXTERNAL)
        imageStartAddress = ExternalStartAddress;
}

bool UtilsBootloader::openFile()
{
    crc = 0;
    imageBufferSize = 0;
    firmwareVersion.clear();
    imageBuffer.clear();

    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    if (file.size() - CrcSize - LengthSize > LargestPayload + std::numeric_limits<signed char>::max())
        return true; // no version text is long enough to leave a payload whose size is an int

    const QByteArray storedCrc = file.read(CrcSize);
    if (storedCrc.size() == CrcSize)
        crc = qFromLittleEndian<quint32>(storedCrc.constData());
    const QByteArray storedLength = file.read(LengthSize);
    // Deliberately only the first byte of the field, as a signed number: a version is never longer than 127 bytes. The
    // power module's update reads the whole field.
    const int length = storedLength.size() == LengthSize ? static_cast<signed char>(storedLength.front()) : 0;
    firmwareVersion = QString::fromUtf8(file.read(std::max(length, 0)));

    // Exactly what there is, so that the payload is held once. A file that shrinks meanwhile gives less.
    const qint64 left = file.size() - file.pos();
    if (left <= LargestPayload)
        imageBuffer = file.read(std::max<qint64>(left, 0));
    imageBufferSize = int(imageBuffer.size());
    return true;
}

unsigned int UtilsBootloader::getCrc() const
{
    return crc;
}

QByteArray UtilsBootloader::getDataBlock(unsigned int offset, int size) const
{
    if (size <= 0)
        return QByteArray();
    QByteArray block;
    if (offset < unsigned(imageBufferSize)) // as an index of 32 bits, a larger one could be negative
        block = imageBuffer.mid(qsizetype(offset), size);
    block.append(size - block.size(), ErasedByte);
    return block;
}

QByteArray UtilsBootloader::getImageBuffer() const
{
    return imageBuffer;
}

int UtilsBootloader::getImageBufferSize() const
{
    return imageBufferSize;
}

unsigned int UtilsBootloader::getImageStartAddress() const
{
    return imageStartAddress;
}

int UtilsBootloader::getWriteBlockSize() const
{
    return writeBlockSize;
}

int UtilsBootloader::getEraseSectorSize() const
{
    return eraseSectorSize;
}

int UtilsBootloader::getNumberOfSectorsToErase() const
{
    if (eraseSectorSize == 0)
        return 1;
    // One more also for an exact multiple: the devices expect it so.
    return int(std::min<qint64>(qint64(imageBufferSize) / eraseSectorSize + 1, std::numeric_limits<int>::max()));
}

QString UtilsBootloader::getFirmwareVersion() const
{
    return firmwareVersion;
}
