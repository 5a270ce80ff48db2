#include "Crc32.h"

#include <array>

namespace {

constexpr quint32 ReflectedPolynomial = 0xEDB88320;
constexpr int ByteValues = 256;

constexpr std::array<quint32, ByteValues> makeTable()
{
    std::array<quint32, ByteValues> table{};
    for (quint32 byte = 0; byte < ByteValues; ++byte) {
        quint32 remainder = byte;
        for (int bit = 0; bit < 8; ++bit)
            remainder = (remainder & 1U) != 0 ? (remainder >> 1U) ^ ReflectedPolynomial : remainder >> 1U;
        table[byte] = remainder;
    }
    return table;
}

} // namespace

quint32 crc32(QByteArrayView bytes)
{
    static constexpr std::array<quint32, ByteValues> Table = makeTable();
    quint32 crc = 0xFFFFFFFF;
    for (const char byte : bytes)
        crc = Table[(crc ^ static_cast<unsigned char>(byte)) & 0xFFU] ^ (crc >> 8U);
    return ~crc;
}
