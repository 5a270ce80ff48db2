#include "ImageReport.h"

#include "Crc32.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QtEndian>

#include <algorithm>
#include <limits>

namespace {

constexpr qint64 LengthOffset = 4;
constexpr qint64 HeaderSize = 8; // CRC and length field
constexpr int PowerModuleSectorSize = 4096;
constexpr qint64 LongestVersionShown = 1024; // the power module's may be as long as the file
constexpr qint64 LargestPayload = std::numeric_limits<int>::max();

QString hexadecimal(quint32 number)
{
    return QStringLiteral("0x%1").arg(number, 8, 16, QLatin1Char('0'));
}

QString bytes(qint64 count)
{
    return QStringLiteral("%1 %2").arg(count).arg(count == 1 ? QLatin1String("byte") : QLatin1String("bytes"));
}

/// A version comes from outside: nothing in it must reach a terminal as a command or start a new line.
QString printable(const QString &text)
{
    QString result;
    for (const QChar c : text) {
        if (c.isPrint() || c.isSurrogate())
            result += c;
        else
            result += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
    }
    return result;
}

} // namespace

ImageReport::ImageReport(const QString &filePath, Reader as, unsigned int deviceId, unsigned short sectorSize)
    : path(filePath)
    , reader(as)
    , image(path,
            reader == DeviceUpdate ? UtilsBootloader::BOOTLOADER_IMAGE_DEVICE
                                   : UtilsBootloader::BOOTLOADER_IMAGE_EXTERNAL,
            deviceId, sectorSize)
{ }

bool ImageReport::read()
{
    if (!readHeader() || !readPayload())
        return false;
    findFaults();
    return true;
}

bool ImageReport::readHeader()
{
    // Before it is opened: a pipe would wait for a writer, and a device may have no end.
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        addError(Cause::CannotRead, info.isDir() ? "is a directory" : "is no regular file");
        return false;
    }
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        addError(Cause::CannotRead, path.isEmpty() ? QStringLiteral("no file name") : file.errorString());
        return false;
    }
    fileSize = file.size();
    const QByteArray header = file.read(HeaderSize);
    if (header.size() < HeaderSize) {
        addError(Cause::HeaderTooShort,
                 QStringLiteral("the header is incomplete: %1 of %2").arg(header.size()).arg(bytes(HeaderSize)));
        return false;
    }
    lengthField = qFromLittleEndian<quint32>(header.constData() + LengthOffset);
    return true;
}

bool ImageReport::readPayload()
{
    // The device's payload is never the shorter one of the two.
    const qint64 size = fileSize - HeaderSize - std::max(firstLengthByte(), 0);
    if (size > LargestPayload) {
        addError(Cause::PayloadTooLarge,
                 QStringLiteral("the payload of %1 is larger than %2").arg(bytes(size), bytes(LargestPayload)));
        return false;
    }
    if (!image.openFile()) {
        addError(Cause::CannotRead, QStringLiteral("cannot be opened"));
        return false;
    }
    if (reader == DeviceUpdate) {
        computedCrc = crc32(image.getImageBuffer());
        return true;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(HeaderSize)) {
        addError(Cause::CannotRead, file.errorString());
        return false;
    }
    powerModuleVersion = QString::fromUtf8(file.read(std::min(payloadOffset() - HeaderSize, LongestVersionShown)));
    file.seek(payloadOffset());
    computedCrc = crc32(file.read(payloadSize()));
    return true;
}

void ImageReport::findFaults()
{
    const qint64 length = versionLength();
    if (length < 0)
        addError(Cause::NegativeLength, QStringLiteral("the length of the version text is negative: %1").arg(length));
    if (HeaderSize + length > fileSize)
        addError(Cause::LengthBeyondEnd,
                 QStringLiteral("the version text of %1 goes beyond the end of the file").arg(bytes(length)));
    if (reader == PowerModuleUpdate && payloadSize() % image.getWriteBlockSize() != 0)
        addError(Cause::PartOfABlock,
                 QStringLiteral("the payload of %1 is no multiple of %2")
                     .arg(bytes(payloadSize()), bytes(image.getWriteBlockSize())));
    if (computedCrc != image.getCrc())
        addError(Cause::WrongCrc,
                 QStringLiteral("the CRC of the payload is %1, not %2 as stored")
                     .arg(hexadecimal(computedCrc), hexadecimal(image.getCrc())));
    if (firstLengthByte() != qint64(lengthField))
        found.append({Cause::ReadersDisagree,
                      QStringLiteral("the length of the version text is %1 for the device (first byte) and %2 for the "
                                     "power module (whole field)")
                          .arg(firstLengthByte())
                          .arg(lengthField),
                      false});
}

QString ImageReport::text() const
{
    const qint64 size = payloadSize();
    const int blockSize = image.getWriteBlockSize();
    const qint64 blocks = (size + blockSize - 1) / blockSize;
    QStringList lines{
        QStringLiteral("file: %1").arg(bytes(fileSize)),
        QStringLiteral("read as: %1")
            .arg(reader == DeviceUpdate ? "firmware of the device" : "firmware of the power module"),
        QStringLiteral("stored CRC: %1").arg(hexadecimal(image.getCrc())),
        QStringLiteral("computed CRC: %1").arg(hexadecimal(computedCrc)),
        QStringLiteral("length field: %1 (version of %2)").arg(hexadecimal(lengthField), bytes(versionLength())),
        QStringLiteral("version: %1").arg(printable(version())),
        QStringLiteral("payload: %1 from offset %2").arg(bytes(size)).arg(payloadOffset()),
        QStringLiteral("start address: %1").arg(hexadecimal(image.getImageStartAddress())),
        QStringLiteral("blocks: %1 of %2").arg(blocks).arg(bytes(blockSize)),
        QStringLiteral("padding of the last block: %1").arg(bytes(blocks * blockSize - size)),
        QStringLiteral("sectors to erase: %1 of %2")
            .arg(sectors())
            .arg(bytes(reader == DeviceUpdate ? image.getEraseSectorSize() : PowerModuleSectorSize)),
        QStringLiteral("power module: %1").arg(powerModuleVerdict()),
    };
    return lines.join('\n') + '\n';
}

QList<Finding> ImageReport::findings() const
{
    return found;
}

void ImageReport::addError(Cause cause, const QString &message)
{
    found.append({cause, message, true});
}

int ImageReport::firstLengthByte() const
{
    return static_cast<signed char>(lengthField & 0xFFU);
}

qint64 ImageReport::versionLength() const
{
    if (reader == PowerModuleUpdate)
        return lengthField;
    return firstLengthByte();
}

qint64 ImageReport::payloadSize() const
{
    if (reader == PowerModuleUpdate)
        return std::max<qint64>(fileSize - HeaderSize - versionLength(), 0);
    return image.getImageBufferSize();
}

qint64 ImageReport::payloadOffset() const
{
    return fileSize - payloadSize();
}

qint64 ImageReport::sectors() const
{
    if (reader == DeviceUpdate)
        return image.getNumberOfSectorsToErase();
    return (payloadSize() + PowerModuleSectorSize - 1) / PowerModuleSectorSize;
}

QString ImageReport::version() const
{
    return reader == DeviceUpdate ? image.getFirmwareVersion() : powerModuleVersion;
}

/// What its update would say to this file, whichever reader was asked for.
QString ImageReport::powerModuleVerdict() const
{
    const qint64 size = fileSize - HeaderSize - qint64(lengthField);
    if (size < 0)
        return QStringLiteral("refuses it, the length field goes beyond the end of the file");
    if (size % image.getWriteBlockSize() != 0)
        return QStringLiteral("refuses it, its payload of %1 is no multiple of %2")
            .arg(bytes(size), bytes(image.getWriteBlockSize()));
    return QStringLiteral("accepts it");
}
