// Writes a stand-in for the firmware image of the power module: make-pm-placeholder FILE
//
// The layout is that of a real image, little-endian: CRC-32 of the payload, length of the version text, version text,
// payload in whole blocks of 992 bytes. The payload means nothing to a power module; a simulated one checks its CRC and
// takes it. Plain C++, so that a build needs no further tool.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

namespace {

constexpr std::size_t BlockSize = 992;
constexpr std::size_t BlockCount = 5; // a little more than one erase sector

std::uint32_t crc32(const std::string &bytes)
{
    constexpr std::uint32_t ReflectedPolynomial = 0xEDB88320;
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1U) != 0 ? (crc >> 1U) ^ ReflectedPolynomial : crc >> 1U;
    }
    return ~crc;
}

std::string littleEndian(std::uint32_t number)
{
    std::string bytes;
    for (unsigned int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>((number >> shift) & 0xFFU);
    return bytes;
}

std::string makePayload()
{
    const std::string text = "Placeholder for the firmware of the power module. ";
    std::string payload;
    while (payload.size() < BlockSize * BlockCount)
        payload += text[payload.size() % text.size()];
    return payload;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("Usage: make-pm-placeholder FILE\n", stderr);
        return 2;
    }
    const std::string version = "placeholder";
    const std::string payload = makePayload();
    std::ofstream file(argv[1], std::ios::binary);
    file << littleEndian(crc32(payload)) << littleEndian(std::uint32_t(version.size())) << version << payload;
    file.close();
    if (!file) {
        std::fprintf(stderr, "%s could not be written.\n", argv[1]);
        return 1;
    }
    return 0;
}
