#include "ImageMaker.h"

#include "Crc32.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QtEndian>

#include <limits>

namespace {

/// The device reads the first byte of the length field only, as a signed number.
constexpr qsizetype LongestVersion = std::numeric_limits<signed char>::max();
constexpr qint64 LargestPayload = std::numeric_limits<int>::max();

QByteArray littleEndian(quint32 number)
{
    QByteArray bytes(sizeof number, '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

} // namespace

Finding makeImage(const QString &payload, const QString &version, const QString &output)
{
    const QByteArray text = version.toUtf8();
    if (text.size() > LongestVersion)
        return {
            Cause::VersionTooLong,
            QStringLiteral("the version takes %1 bytes as UTF-8, more than %2").arg(text.size()).arg(LongestVersion)};

    if (QFileInfo::exists(payload) && !QFileInfo(payload).isFile())
        return {Cause::CannotRead, payload + ": is no regular file"};
    QFile source(payload);
    if (payload.isEmpty() || !source.open(QIODevice::ReadOnly))
        return {Cause::CannotRead, payload.isEmpty() ? "no file name" : payload + ": " + source.errorString()};
    if (source.size() > LargestPayload)
        return {Cause::PayloadTooLarge,
                QStringLiteral("%1: larger than %2 bytes").arg(payload, QString::number(LargestPayload))};
    const qint64 size = source.size();
    const QByteArray content = source.read(size);
    if (content.size() != size)
        return {Cause::CannotRead, payload + ": " + source.errorString()};

    if (output.isEmpty())
        return {Cause::CannotWrite, "no file name"};
    QSaveFile image(output);
    const bool isOpen = image.open(QIODevice::WriteOnly);
    if (isOpen) {
        image.write(littleEndian(crc32(content)));
        image.write(littleEndian(quint32(text.size())));
        image.write(text);
        image.write(content);
    }
    if (!isOpen || !image.commit())
        return {Cause::CannotWrite, output + ": " + image.errorString()};
    return {};
}
