#ifndef UTILSBOOTLOADER_H
#define UTILSBOOTLOADER_H

#include "uniprogutils_export.h"

#include <QByteArray>
#include <QString>

/// The image file of a programmer's firmware: loads it, describes it and cuts it into the blocks that the device's
/// bootloader takes. The payload goes to the device as it is; nothing is decoded and no checksum is computed.
///
/// A file consists of, in little-endian order:
///
/// | Offset | Size | Content |
/// |---|---|---|
/// | 0 | 4 | CRC of the payload, for the device to check |
/// | 4 | 4 | length L of the version text; only its first byte counts, as a signed number |
/// | 8 | L | version text, UTF-8 |
/// | 8 + L | the rest | payload |
///
/// UtilsUniProgThread::BootloaderProcess() uses it for an update. Applications use it to show what a file holds:
///
///     UtilsBootloader image(path, UtilsBootloader::BOOTLOADER_IMAGE_DEVICE, deviceId, sectorSize);
///     if (image.openFile())
///         label->setText(image.getFirmwareVersion());
///
/// A value: copy and move it freely; a copy shares the payload. Not for several threads at once.
class UNIPROGUTILS_EXPORT UtilsBootloader
{
public:
    /// Where an image goes. Other values leave the start address at 0.
    enum BootloaderImageFileType : int {
        BOOTLOADER_IMAGE_DEVICE = 0, ///< start address 0x8000
        BOOTLOADER_IMAGE_EXTERNAL = 1 ///< start address 0x10008000
    };

    /// Reads nothing yet. \a sectorSize is the size of an erase sector in bytes; the device 4098 (0x1002) has sectors
    /// of 4096 bytes whatever is given.
    UtilsBootloader(QString path, BootloaderImageFileType type, unsigned int deviceId, unsigned short sectorSize);

    /// Reads the file. False when it cannot be opened, a directory for example; then, and before the first call,
    /// everything read is empty or 0.
    ///
    /// The content is not checked. What a short file does not hold is empty or 0; a negative length means no version
    /// text, and one beyond the end means that no payload is left. A file whose payload is larger than 2147483647 bytes
    /// counts as empty and is not loaded, and so does that of a path that does not tell its size, such as a pipe.
    bool openFile();

    /// The CRC stored in the file.
    unsigned int getCrc() const;
    /// \a size payload bytes from \a offset. Beyond the end of the payload the block is filled with 0xFF, the byte of
    /// erased flash. Empty for a size of 0 or less.
    QByteArray getDataBlock(unsigned int offset, int size) const;
    /// The whole payload.
    QByteArray getImageBuffer() const;
    /// The size of the payload in bytes.
    int getImageBufferSize() const;
    /// The address in the device that the payload goes to, by the type of the image.
    unsigned int getImageStartAddress() const;
    /// 992 bytes.
    int getWriteBlockSize() const;
    /// In bytes; see the constructor.
    int getEraseSectorSize() const;
    /// Payload size / sector size + 1: one sector more than needed when the payload fills its sectors exactly, and 1
    /// when the sector size is 0.
    int getNumberOfSectorsToErase() const;
    /// The version text of the file.
    QString getFirmwareVersion() const;

private:
    QString filePath;
    unsigned int crc = 0;
    int imageBufferSize = 0;
    QString firmwareVersion;
    QByteArray imageBuffer;
    unsigned int imageStartAddress = 0;
    int writeBlockSize;
    int eraseSectorSize;
};

#endif // UTILSBOOTLOADER_H
