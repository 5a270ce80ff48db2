#ifndef IMAGEREPORT_H
#define IMAGEREPORT_H

#include "Outcome.h"

#include <UtilsBootloader.h>

#include <QList>
#include <QString>

/// What a firmware image file holds, as one of its two readers sees it, and what is wrong with it.
///
/// UtilsBootloader reads the file. The report adds what that class does not tell: the whole length field, and the
/// payload of a reader that goes by it, as the update of the power module does.
class ImageReport
{
public:
    enum Reader {
        DeviceUpdate, ///< the first byte of the length field counts, as a signed number
        PowerModuleUpdate ///< the whole length field counts, as an unsigned number
    };

    ImageReport(const QString &filePath, Reader as, unsigned int deviceId, unsigned short sectorSize);

    /// Looks at the file. False when there is nothing to describe: only findings().
    bool read();

    /// One line a fact: "name: value".
    QString text() const;
    QList<Finding> findings() const;

private:
    bool readHeader();
    bool readPayload();
    void findFaults();
    void addError(Cause cause, const QString &message);

    int firstLengthByte() const;
    qint64 versionLength() const;
    qint64 payloadSize() const;
    qint64 payloadOffset() const;
    qint64 sectors() const;
    QString version() const;
    QString powerModuleVerdict() const;

    QString path;
    Reader reader;
    UtilsBootloader image;
    qint64 fileSize = 0;
    quint32 lengthField = 0;
    quint32 computedCrc = 0;
    QString powerModuleVersion;
    QList<Finding> found;
};

#endif // IMAGEREPORT_H
