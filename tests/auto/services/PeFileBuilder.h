#ifndef PEFILEBUILDER_H
#define PEFILEBUILDER_H

#include <QByteArray>
#include <QList>

/// Builds a Windows executable byte by byte: headers, a code section and a resource section that ends with the version
/// resource and the file. Every number that a test wants wrong is a member; the places of others are named offsets.
class PeFileBuilder
{
public:
    bool is64Bit = false;
    quint32 versionMost = (2U << 16) | 10U;
    quint32 versionLeast = 3U << 16;

    quint32 directoryCount = 16; ///< data directories that the optional header claims
    quint32 versionType = 16; ///< RT_VERSION
    quint32 versionName = 1;
    QList<quint32> namesBefore; ///< names that stand before the version's, with other versions
    QByteArray key = utf16("VS_VERSION_INFO");
    quint16 valueLength = 52;
    quint32 signature = 0xFEEF04BDU;

    QByteArray build() const;

    static QByteArray utf16(const char *text);
    static void put16(QByteArray &bytes, qsizetype offset, quint16 value);
    static void put32(QByteArray &bytes, qsizetype offset, quint32 value);

    // Places in the file.
    static constexpr qsizetype DosHeader = 0;
    static constexpr qsizetype NtHeaderPosition = 60;
    static constexpr qsizetype NtHeader = 0x80;
    static constexpr qsizetype SectionCount = NtHeader + 6;
    static constexpr qsizetype OptionalHeaderSize = NtHeader + 20;
    static constexpr qsizetype OptionalHeader = NtHeader + 24;
    static constexpr qsizetype CodePosition = 0x300;
    static constexpr qsizetype ResourcePosition = 0x400;
    static constexpr quint32 CodeAddress = 0x1000;
    static constexpr quint32 ResourceAddress = 0x2000;
    // Places in the resources of a file with one version.
    static constexpr qsizetype Types = ResourcePosition; ///< two entries: icons, versions
    static constexpr qsizetype Names = Types + 32;
    static constexpr qsizetype Languages = Names + 24;
    static constexpr qsizetype DataEntry = Languages + 24;
    static constexpr qsizetype VersionInfo = DataEntry + 16;

    qsizetype directoryCountPlace() const
    {
        return OptionalHeader + (is64Bit ? 108 : 92);
    }
    qsizetype resourceDirectoryPlace() const
    {
        return directoryCountPlace() + 4 + 2 * 8;
    }
    qsizetype sectionTable() const
    {
        return OptionalHeader + (is64Bit ? 240 : 224);
    }
    qsizetype resourceSection() const
    {
        return sectionTable() + 40;
    }

private:
    QByteArray versionInfo(quint32 most, quint32 least) const;
    QByteArray resources() const;
};

#endif // PEFILEBUILDER_H
