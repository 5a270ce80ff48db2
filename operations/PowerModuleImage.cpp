#include "PowerModuleImage_p.h"

#include <QFile>
#include <QtEndian>

// In a static library the resource is not registered before someone asks for it. Outside of any namespace, as the macro
// needs it.
static void registerPowerModuleImage()
{
    Q_INIT_RESOURCE(uniprogutils_firmware);
}

namespace {

constexpr qint64 LengthOffset = 4;
constexpr qint64 VersionOffset = 8;

} // namespace

PowerModuleImage PowerModuleImage::load()
{
    registerPowerModuleImage();
    PowerModuleImage image;
    QFile resource(QStringLiteral("://bin/pm_enc"));
    if (!resource.open(QIODevice::ReadOnly))
        return image;
    image.file = resource.readAll();
    if (image.file.size() < VersionOffset)
        return image;

    image.storedCrc = qFromLittleEndian<quint32>(image.file.constData());
    image.payloadStart = VersionOffset + qFromLittleEndian<quint32>(image.file.constData() + LengthOffset);
    const qint64 payloadSize = image.file.size() - image.payloadStart;
    image.valid = payloadSize >= 0 && payloadSize % WriteBlockSize == 0;
    return image;
}

bool PowerModuleImage::isValid() const
{
    return valid;
}

quint32 PowerModuleImage::crc() const
{
    return storedCrc;
}

int PowerModuleImage::size() const
{
    return valid ? int(file.size() - payloadStart) : 0;
}

const char *PowerModuleImage::data(int offset) const
{
    return file.constData() + payloadStart + offset;
}

int PowerModuleImage::blockCount() const
{
    return size() / WriteBlockSize;
}

unsigned int PowerModuleImage::sectorCount() const
{
    return (unsigned(size()) + EraseSectorSize - 1) / EraseSectorSize;
}
