// The two firmware updates: of the device, from a file, and of its power module, from the image in the library.

#include "UtilsUniProgThread.h"

#include "UtilsBootloader.h"

#include "DeviceStatus_p.h"
#include "DriverValues_p.h"
#include "PowerModuleImage_p.h"

using namespace DriverValues;

namespace {

constexpr int ProgressStep = 10;
constexpr unsigned int PowerModuleStartAddress = 0x10008000;

} // namespace

void UtilsUniProgThread::Operation_BootloaderProcess(int &status)
{
    status = DeviceStatus::InvalidImage;
    Log(QStringLiteral("Loading firmware..."));
    UtilsBootloader image(imageFilePath, UtilsBootloader::BOOTLOADER_IMAGE_DEVICE, imageDeviceId, imageSectorSize);
    QString failure; // stays empty, and is logged so, for a file that cannot be opened
    if (image.openFile())
        UpdateDevice(image, status, failure);
    if (status == DeviceStatus::Success) {
        Log(QStringLiteral("Bootloading successful.\nPlease restore link with your device."), LOGGER_MESSAGE_SUCCESS);
    } else {
        Log(failure, LOGGER_MESSAGE_ERROR);
    }
}

void UtilsUniProgThread::UpdateDevice(const UtilsBootloader &image, int &status, QString &failure)
{
    Log(QStringLiteral("Erasing flash..."));
    status = uniProg->BootloaderErase(image.getImageStartAddress(), image.getNumberOfSectorsToErase());
    if (status != DeviceStatus::Success) {
        failure = QStringLiteral("Flash erase error.");
        return;
    }

    Log(QStringLiteral("Writing firmware..."));
    const qint64 size = image.getImageBufferSize();
    const int blockSize = image.getWriteBlockSize();
    int mark = ProgressStep;
    for (qint64 offset = 0; offset < size;) {
        const QByteArray block = image.getDataBlock(unsigned(offset), blockSize);
        status
            = uniProg->BootloaderWrite(image.getImageStartAddress() + unsigned(offset), blockSize, block.constData());
        if (status != DeviceStatus::Success) {
            failure = QStringLiteral("Firmware write error.");
            return;
        }
        offset += blockSize;
        // One mark per block at most: a short image ends before it has reached the higher ones.
        if (offset * 100 / size >= mark) {
            Q_EMIT SignalOperationProgress(mark);
            mark += ProgressStep;
        }
    }

    Log(QStringLiteral("Verifying write..."));
    status = uniProg->BootloaderVerify(image.getCrc(), image.getImageBufferSize());
    if (status != DeviceStatus::Success)
        failure = QStringLiteral("File not verified.");
}

void UtilsUniProgThread::Operation_PowerBootloaderWrite(int &status)
{
    Log(QStringLiteral("Loading firmware..."));
    Q_EMIT SignalOperationProgress(BusyProgress);
    const PowerModuleImage image = PowerModuleImage::load();
    if (!image.isValid()) {
        Log(QStringLiteral("Firmware image not valid!"), LOGGER_MESSAGE_ERROR);
        status = DeviceStatus::InvalidImage;
        return;
    }

    Log(QStringLiteral("Erasing flash..."));
    status = uniProg->PowerBootloaderErase(image.sectorCount());
    if (status != DeviceStatus::Success) {
        Log(QStringLiteral("Firmware erase error."), LOGGER_MESSAGE_ERROR);
        return;
    }

    Log(QStringLiteral("Writing firmware..."));
    WritePowerModule(image, status);
    if (status != DeviceStatus::Success)
        return;

    Log(QStringLiteral("Verifying write..."));
    bool mismatch = false;
    status = uniProg->PowerBootloaderVerify(image.crc(), image.size(), &mismatch);
    if (status != DeviceStatus::Success)
        Log(QStringLiteral("Verification failed."), LOGGER_MESSAGE_ERROR);
    else if (mismatch)
        Log(QStringLiteral("File not verified."), LOGGER_MESSAGE_ERROR);
    else
        Log(QStringLiteral("Write operation done and verified."), LOGGER_MESSAGE_SUCCESS);

    // Whatever the check has found, the module has to leave its bootloader; how that went is the final status.
    status = uniProg->PowerBootloaderReset();
    if (status != DeviceStatus::Success)
        Log(QStringLiteral("Power module reset error."), LOGGER_MESSAGE_ERROR);
}

/// As many attempts as there are blocks. A block that failed is tried again by the next attempt, so that one failure
/// leaves the last block unwritten: the check of the CRC finds it. Only the last attempt's status counts.
void UtilsUniProgThread::WritePowerModule(const PowerModuleImage &image, int &status)
{
    int offset = 0;
    for (int attempt = 0; attempt < image.blockCount(); ++attempt) {
        status = uniProg->PowerBootloaderWrite(PowerModuleStartAddress + unsigned(offset),
                                               PowerModuleImage::WriteBlockSize, image.data(offset));
        if (status != DeviceStatus::Success) {
            Log(QStringLiteral("Firmware write error."), LOGGER_MESSAGE_ERROR);
            continue;
        }
        offset += PowerModuleImage::WriteBlockSize;
        Q_EMIT SignalOperationProgress(int(float(offset) / float(image.size()) * 100.0F));
    }
}
