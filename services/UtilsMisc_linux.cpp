#include "FileVersion_p.h"
#include "PeVersionResource_p.h"

#include <QFile>
#include <QFileInfo>

// The error numbers are those of the Windows call, so that a log reads alike on both systems.
static constexpr quint32 ErrorFileNotFound = 2;
static constexpr quint32 ErrorAccessDenied = 5;

FileVersion queryFileVersion(const QString &filePath)
{
    const QFileInfo info(filePath);
    if (!info.exists())
        return {FileVersion::NoVersionInfo, ErrorFileNotFound, 0, 0};
    // Opening a pipe or a device may wait for ever.
    QFile file(filePath);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly))
        return {FileVersion::NoVersionInfo, ErrorAccessDenied, 0, 0};
    return readPeVersionResource(file);
}
