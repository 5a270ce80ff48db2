#include "GdbPacket.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr char PacketMark = '$';
constexpr char NotificationMark = '%';
constexpr char ChecksumMark = '#';
constexpr char Accepted = '+';
constexpr char Rejected = '-';
constexpr char EscapeMark = '}';
constexpr char RepeatMark = '*';
constexpr char EscapeBit = 0x20;

// A repeat count is a printable character: 29 and the number of further copies.
constexpr int RepeatBase = 29;
constexpr int LowestRepeat = ' ';
constexpr int HighestRepeat = '~';

constexpr int ChecksumDigits = 2;

QByteArray checksum(const QByteArray &wireBody)
{
    const unsigned int sum = std::accumulate(wireBody.cbegin(), wireBody.cend(), 0U, [](unsigned int total, char byte) {
        return total + static_cast<unsigned char>(byte);
    });
    return QByteArray::number(sum % 256, 16).rightJustified(ChecksumDigits, '0');
}

bool isSpecial(char byte)
{
    return byte == PacketMark || byte == ChecksumMark || byte == EscapeMark || byte == RepeatMark;
}

bool startsSomething(char byte)
{
    return byte == PacketMark || byte == NotificationMark || byte == Accepted || byte == Rejected;
}

bool endsBody(char byte)
{
    return byte == ChecksumMark || byte == PacketMark;
}

/// Where the first byte is of which @p is holds; the size of @p bytes when there is none.
template <typename Predicate>
qsizetype find(const QByteArray &bytes, qsizetype from, Predicate is)
{
    return std::find_if(bytes.cbegin() + from, bytes.cend(), is) - bytes.cbegin();
}

} // namespace

QByteArray GdbPacket::frame(const QByteArray &body)
{
    return PacketMark + body + ChecksumMark + checksum(body);
}

QByteArray GdbPacket::escape(const QByteArray &data)
{
    QByteArray escaped;
    escaped.reserve(data.size() * 2);
    for (const char byte : data) {
        if (isSpecial(byte)) {
            escaped += EscapeMark;
            escaped += char(byte ^ EscapeBit);
        } else {
            escaped += byte;
        }
    }
    return escaped;
}

bool GdbPacket::expand(const QByteArray &wireBody, QByteArray *body)
{
    body->clear();
    for (qsizetype i = 0; i < wireBody.size(); ++i) {
        const char byte = wireBody.at(i);
        if (byte != EscapeMark && byte != RepeatMark) {
            *body += byte;
        } else if (++i == wireBody.size()) {
            return false;
        } else if (byte == EscapeMark) {
            *body += char(wireBody.at(i) ^ EscapeBit);
        } else {
            const int count = static_cast<unsigned char>(wireBody.at(i));
            if (body->isEmpty() || count < LowestRepeat || count > HighestRepeat)
                return false;
            *body += QByteArray(count - RepeatBase, body->back());
        }
        if (body->size() > MaximumSize)
            return false;
    }
    return true;
}

GdbPacket::Kind GdbPacket::take(QByteArray *received, QByteArray *body)
{
    for (;;) {
        received->remove(0, find(*received, 0, startsSomething));
        if (received->isEmpty())
            return Kind::Nothing;
        const char mark = received->front();
        if (mark == Accepted || mark == Rejected) {
            received->remove(0, 1);
            return mark == Accepted ? Kind::Acknowledgement : Kind::Rejection;
        }
        const qsizetype end = find(*received, 1, endsBody);
        if (end < received->size() && received->at(end) == PacketMark) {
            received->remove(0, end); // a packet starts before this one has ended: the server begins again
            continue;
        }
        if (received->size() <= end + ChecksumDigits)
            return Kind::Nothing;
        const QByteArray wireBody = received->mid(1, end - 1);
        const bool intact = received->mid(end + 1, ChecksumDigits).toLower() == checksum(wireBody);
        received->remove(0, end + 1 + ChecksumDigits);
        if (mark == NotificationMark)
            continue;
        if (!intact)
            return Kind::DamagedAnswer;
        return wireBody.size() <= MaximumSize && expand(wireBody, body) ? Kind::Answer : Kind::Nonsense;
    }
}
