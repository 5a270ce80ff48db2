#include "PeFileBuilder.h"

#include <QtEndian>

static constexpr quint32 Subdirectory = 0x80000000U;

QByteArray PeFileBuilder::utf16(const char *text)
{
    QByteArray bytes;
    for (; *text != '\0'; ++text)
        bytes.append(*text).append('\0');
    return bytes.append(2, '\0');
}

void PeFileBuilder::put16(QByteArray &bytes, qsizetype offset, quint16 value)
{
    qToLittleEndian(value, bytes.data() + offset);
}

void PeFileBuilder::put32(QByteArray &bytes, qsizetype offset, quint32 value)
{
    qToLittleEndian(value, bytes.data() + offset);
}

static void append16(QByteArray &bytes, quint16 value)
{
    bytes.append(2, '\0');
    PeFileBuilder::put16(bytes, bytes.size() - 2, value);
}

static void append32(QByteArray &bytes, quint32 value)
{
    bytes.append(4, '\0');
    PeFileBuilder::put32(bytes, bytes.size() - 4, value);
}

static QByteArray directory(const QList<QPair<quint32, quint32>> &entries)
{
    QByteArray bytes(12, '\0');
    append16(bytes, 0);
    append16(bytes, quint16(entries.size()));
    for (const auto &[id, target] : entries) {
        append32(bytes, id);
        append32(bytes, target);
    }
    return bytes;
}

QByteArray PeFileBuilder::versionInfo(quint32 most, quint32 least) const
{
    QByteArray bytes(2, '\0');
    append16(bytes, valueLength);
    append16(bytes, 0);
    bytes.append(key);
    while (bytes.size() % 4 != 0)
        bytes.append('\0');
    append32(bytes, signature);
    append32(bytes, 0x10000);
    append32(bytes, most);
    append32(bytes, least);
    append32(bytes, 0x00090009); // the product version, which nobody asks for
    append32(bytes, 0x00090009);
    bytes.append(28, '\0');
    put16(bytes, 0, quint16(bytes.size()));
    return bytes;
}

QByteArray PeFileBuilder::resources() const
{
    const int count = int(namesBefore.size()) + 1;
    const QByteArray info = versionInfo(versionMost, versionLeast);
    const quint32 names = 32;
    const quint32 languages = names + 16 + quint32(count) * 8;
    const quint32 dataEntries = languages + quint32(count) * 24;
    const quint32 infos = dataEntries + quint32(count) * 16;

    QByteArray bytes = directory({{3, names | Subdirectory}, {versionType, names | Subdirectory}});
    QList<QPair<quint32, quint32>> nameEntries;
    for (int i = 0; i < count; ++i)
        nameEntries.append({namesBefore.value(i, versionName), (languages + quint32(i) * 24) | Subdirectory});
    bytes.append(directory(nameEntries));
    for (int i = 0; i < count; ++i)
        bytes.append(directory({{0x0409, dataEntries + quint32(i) * 16}}));
    for (int i = 0; i < count; ++i) {
        append32(bytes, ResourceAddress + infos + quint32(i * info.size()));
        append32(bytes, quint32(info.size()));
        append32(bytes, 0);
        append32(bytes, 0);
    }
    for (int i = 1; i < count; ++i)
        bytes.append(versionInfo(quint32(i), 0));
    return bytes.append(info);
}

QByteArray PeFileBuilder::build() const
{
    const QByteArray resourceBytes = resources();
    QByteArray file(ResourcePosition, '\0');
    file.replace(DosHeader, 2, "MZ");
    put32(file, NtHeaderPosition, quint32(NtHeader));
    file.replace(NtHeader, 2, "PE");
    put16(file, NtHeader + 4, is64Bit ? 0x8664 : 0x014C);
    put16(file, SectionCount, 2);
    put16(file, OptionalHeaderSize, is64Bit ? 240 : 224);
    put16(file, OptionalHeader, is64Bit ? 0x020B : 0x010B);
    put32(file, directoryCountPlace(), directoryCount);
    put32(file, resourceDirectoryPlace(), ResourceAddress);
    put32(file, resourceDirectoryPlace() + 4, quint32(resourceBytes.size()));

    const auto putSection = [&file](qsizetype at, const char *name, quint32 address, quint32 size, qsizetype position) {
        file.replace(at, qsizetype(qstrlen(name)), name);
        put32(file, at + 8, size);
        put32(file, at + 12, address);
        put32(file, at + 16, size);
        put32(file, at + 20, quint32(position));
    };
    putSection(sectionTable(), ".text", CodeAddress, quint32(ResourcePosition - CodePosition), CodePosition);
    putSection(resourceSection(), ".rsrc", ResourceAddress, quint32(resourceBytes.size()), ResourcePosition);
    return file + resourceBytes;
}
