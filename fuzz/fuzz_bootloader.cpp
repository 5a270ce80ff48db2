// Firmware image files: any bytes are loaded, described and cut into blocks, and what comes out agrees with itself.

#include <UtilsBootloader.h>

#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

// In memory where the system has such a place: millions of small files are written.
QString imagePath()
{
    static const QTemporaryDir folder(QFile::exists(QStringLiteral("/dev/shm")) ? QStringLiteral("/dev/shm/fuzz-XXXXXX")
                                                                                : QStringLiteral("fuzz-XXXXXX"));
    return folder.filePath(QStringLiteral("image.bin"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QFile file(imagePath());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        return -1;
    file.close();

    // The first bytes choose the arguments too, so that the fuzzer varies them.
    const unsigned int device = size > 0 && data[0] % 2 == 0 ? 0x1002 : 1;
    const auto sectorSize = static_cast<unsigned short>(size > 1 ? data[0] + 256 * data[1] : 0);
    UtilsBootloader image(file.fileName(), UtilsBootloader::BOOTLOADER_IMAGE_DEVICE, device, sectorSize);
    require(image.openFile());

    const QByteArray payload = image.getImageBuffer();
    require(payload.size() == image.getImageBufferSize());
    require(bytes.endsWith(payload));
    require(payload.size() <= qMax<qsizetype>(bytes.size() - 8, 0));
    require(image.getNumberOfSectorsToErase() >= 1);

    QByteArray written;
    const int blockSize = image.getWriteBlockSize();
    for (qsizetype offset = 0; offset < payload.size(); offset += blockSize) {
        const QByteArray block = image.getDataBlock(unsigned(offset), blockSize);
        require(block.size() == blockSize);
        written += block;
    }
    require(written.left(payload.size()) == payload);
    require(written.mid(payload.size()).count('\xFF') == written.size() - payload.size());

    const auto anyOffset = size > 5 ? unsigned(image.getCrc()) : 0U;
    const int anySize = size > 7 ? static_cast<signed char>(data[6]) * static_cast<signed char>(data[7]) : 0;
    require(image.getDataBlock(anyOffset, anySize).size() == qMax(anySize, 0));
    return 0;
}
