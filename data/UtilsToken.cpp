#include "UtilsToken.h"

namespace {

constexpr qsizetype HeaderSize = 4; // the declared total length
constexpr qsizetype GroupHeaderSize = 2; // identifier and item count
constexpr int ItemBase = 16;
constexpr QChar Separator = u'-';

bool isBinaryIdentifier(qint8 identifier)
{
    return identifier >= HwTokenGroup1 && identifier <= HwTokenGroup4;
}

// Bytes of the format are signed, whatever the signedness of char on this platform.
qint8 signedAt(const QByteArray &data, qsizetype position)
{
    return qint8(data.at(position));
}

} // namespace

// The declared length in the header is deliberately not compared with the size: devices are known by their groups, and
// a wrong length must not cost them.
UtilsToken::UtilsToken(QByteArray data)
    : m_raw(data)
{
    const qsizetype size = data.size();
    qsizetype position = HeaderSize;
    while (position + 1 < size) {
        const qint8 identifier = signedAt(data, position);
        if (!isBinaryIdentifier(identifier))
            return;
        const qint8 count = signedAt(data, position + 1);
        // Measured against the whole array, not against what remains of it: such a count makes the token invalid.
        if (count > size) {
            m_groups.clear();
            return;
        }
        const qsizetype firstItem = position + GroupHeaderSize;
        const qsizetype next = firstItem + count;
        if (next > size)
            return;

        QList<QString> items;
        for (qsizetype item = firstItem; item < next; ++item)
            items.append(QString::number(signedAt(data, item), ItemBase));
        m_groups.insert(HwTokenGroup(identifier), items);

        // A negative count steps back or stays; the parse would never end.
        if (next <= position)
            return;
        position = next;
    }
}

UtilsToken::UtilsToken(QString text)
{
    const QList<QString> pieces = text.split(Separator);
    qsizetype next = 0;
    while (next + 1 < pieces.size()) {
        const HwTokenGroup group = HwTokenGroup(pieces.at(next).toInt());
        const qsizetype announced = pieces.at(next + 1).toInt();
        next += 2;
        const qsizetype count = qBound<qsizetype>(0, announced, pieces.size() - next);
        m_groups.insert(group, pieces.mid(next, count));
        next += count;
    }
}

QList<QString> UtilsToken::getTokenGroup(HwTokenGroup group)
{
    return m_groups[group];
}

QList<unsigned char> UtilsToken::getTokenGroupVector(HwTokenGroup group)
{
    QList<unsigned char> bytes;
    const QList<QString> items = getTokenGroup(group);
    bytes.reserve(items.size());
    // The conversion's success is deliberately not examined: what is no unsigned number is 0.
    for (const QString &item : items)
        bytes.append(static_cast<unsigned char>(item.toUInt(nullptr, ItemBase)));
    return bytes;
}
