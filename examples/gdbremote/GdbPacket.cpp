#include "GdbPacket.h"

#include <numeric>

namespace {

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
    return byte == '$' || byte == '#' || byte == EscapeMark || byte == RepeatMark;
}

} // namespace

QByteArray GdbPacket::frame(const QByteArray &body)
{
    return '$' + body + '#' + checksum(body);
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

bool GdbPacket::isChecksum(const QByteArray &digits, const QByteArray &wireBody)
{
    return digits.toLower() == checksum(wireBody);
}
