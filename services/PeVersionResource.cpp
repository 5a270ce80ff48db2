#include "PeVersionResource_p.h"

#include <QByteArray>
#include <QIODevice>
#include <QtEndian>

#include <optional>

namespace {

// Error numbers of Windows.
constexpr quint32 ErrorResourceDataNotFound = 1812;
constexpr quint32 ErrorResourceTypeNotFound = 1813;
constexpr quint32 ErrorResourceNameNotFound = 1814;
constexpr quint32 ErrorResourceLanguageNotFound = 1815;

constexpr qint64 WordSize = 2;
constexpr qint64 DoubleWordSize = 4;

// DOS header
constexpr qint64 DosHeaderSize = 64;
constexpr qint64 NtHeaderPositionOffset = 60;
constexpr quint16 DosSignature = 0x5A4D; // "MZ"

// NT headers: signature, file header, optional header
constexpr qint64 NtFixedSize = 24;
constexpr quint32 NtSignature = 0x00004550; // "PE"
constexpr qint64 SectionCountOffset = 6;
constexpr qint64 OptionalHeaderSizeOffset = 20;
constexpr quint16 Pe32Magic = 0x010B;
constexpr quint16 Pe32PlusMagic = 0x020B;
constexpr qint64 Pe32DirectoryCountOffset = 92;
constexpr qint64 Pe32PlusDirectoryCountOffset = 108;
constexpr qint64 DataDirectorySize = 8;
constexpr quint32 ResourceDirectoryIndex = 2;

// section table
constexpr qint64 SectionHeaderSize = 40;
constexpr qint64 SectionAddressOffset = 12;
constexpr qint64 SectionRawSizeOffset = 16;
constexpr qint64 SectionRawPositionOffset = 20;

// resource directories
constexpr qint64 DirectoryHeaderSize = 16;
constexpr qint64 NamedEntryCountOffset = 12;
constexpr qint64 IdEntryCountOffset = 14;
constexpr qint64 DirectoryEntrySize = 8;
constexpr qint64 DataEntrySize = 16;
constexpr quint32 SubdirectoryFlag = 0x80000000U;
constexpr quint32 VersionTypeId = 16; // RT_VERSION
constexpr quint32 VersionNameId = 1; // VS_VERSION_INFO
constexpr quint32 NeutralLanguage = 0;

// VS_VERSIONINFO: three words, its key, padding to four bytes, VS_FIXEDFILEINFO
constexpr qint64 ValueLengthOffset = 2;
constexpr qint64 KeyOffset = 6;
constexpr char VersionKey[] = "V\0S\0_\0V\0E\0R\0S\0I\0O\0N\0_\0I\0N\0F\0O\0\0"; // UTF-16, with its end
constexpr qint64 FixedInfoOffset = 40;
constexpr qint64 FixedInfoSize = 52;
constexpr quint32 FixedInfoSignature = 0xFEEF04BDU;
constexpr qint64 MostSignificantOffset = 8;
constexpr qint64 LeastSignificantOffset = 12;

quint16 wordAt(const QByteArray &bytes, qint64 offset)
{
    return qFromLittleEndian<quint16>(bytes.constData() + offset);
}

quint32 doubleWordAt(const QByteArray &bytes, qint64 offset)
{
    return qFromLittleEndian<quint32>(bytes.constData() + offset);
}

/// The resources of an executable, addressed as the loader would map them. They are read piece by piece and not
/// mapped, because a mapped file that shrinks while it is read kills the process.
class ResourceReader
{
public:
    explicit ResourceReader(QIODevice &executable)
        : device(executable)
    { }

    /// Finds the resource directory; false when the file is no executable or has no resources.
    bool open();

    enum Choice { Exactly, OrTheFirst };
    /// What the entry \a id of the directory at \a directory points to.
    std::optional<quint32> entry(quint32 directory, quint32 id, Choice choice);

    /// The first \a wanted bytes of the resource described at \a dataEntry, fewer when it is smaller.
    std::optional<QByteArray> data(quint32 dataEntry, qint64 wanted);

private:
    std::optional<QByteArray> bytesAt(qint64 position, qint64 size);
    std::optional<QByteArray> bytesAtAddress(qint64 address, qint64 size, qint64 wanted);

    QIODevice &device;
    QByteArray sections;
    qint64 resources = 0;
};

std::optional<QByteArray> ResourceReader::bytesAt(qint64 position, qint64 size)
{
    if (position > device.size() - size || !device.seek(position))
        return std::nullopt;
    const QByteArray bytes = device.read(size);
    if (bytes.size() != size)
        return std::nullopt;
    return bytes;
}

/// The first \a wanted of \a size bytes that all come from one section and from inside the file.
std::optional<QByteArray> ResourceReader::bytesAtAddress(qint64 address, qint64 size, qint64 wanted)
{
    for (qint64 section = 0; section < sections.size(); section += SectionHeaderSize) {
        const qint64 offset = address - doubleWordAt(sections, section + SectionAddressOffset);
        const qint64 rawSize = doubleWordAt(sections, section + SectionRawSizeOffset);
        if (offset < 0 || offset >= rawSize)
            continue;
        const qint64 position = doubleWordAt(sections, section + SectionRawPositionOffset) + offset;
        if (size > rawSize - offset || size > device.size() - position)
            return std::nullopt;
        return bytesAt(position, qMin(size, wanted));
    }
    return std::nullopt;
}

bool ResourceReader::open()
{
    const auto dosHeader = bytesAt(0, DosHeaderSize);
    if (!dosHeader || wordAt(*dosHeader, 0) != DosSignature)
        return false;

    const qint64 ntPosition = doubleWordAt(*dosHeader, NtHeaderPositionOffset);
    const auto ntHeader = bytesAt(ntPosition, NtFixedSize);
    if (!ntHeader || doubleWordAt(*ntHeader, 0) != NtSignature)
        return false;

    const qint64 optionalPosition = ntPosition + NtFixedSize;
    const qint64 optionalSize = wordAt(*ntHeader, OptionalHeaderSizeOffset);
    const auto optionalHeader = bytesAt(optionalPosition, optionalSize);
    if (!optionalHeader || optionalSize < WordSize)
        return false;
    const quint16 magic = wordAt(*optionalHeader, 0);
    if (magic != Pe32Magic && magic != Pe32PlusMagic)
        return false;
    const qint64 countOffset = magic == Pe32Magic ? Pe32DirectoryCountOffset : Pe32PlusDirectoryCountOffset;
    const qint64 directoryOffset = countOffset + DoubleWordSize + ResourceDirectoryIndex * DataDirectorySize;
    if (optionalSize < directoryOffset + DataDirectorySize
        || doubleWordAt(*optionalHeader, countOffset) <= ResourceDirectoryIndex)
        return false;

    resources = doubleWordAt(*optionalHeader, directoryOffset);
    const qint64 sectionCount = wordAt(*ntHeader, SectionCountOffset);
    sections = bytesAt(optionalPosition + optionalSize, sectionCount * SectionHeaderSize).value_or(QByteArray());
    return resources != 0 && !sections.isEmpty();
}

std::optional<quint32> ResourceReader::entry(quint32 directory, quint32 id, Choice choice)
{
    const qint64 address = resources + directory;
    const auto header = bytesAtAddress(address, DirectoryHeaderSize, DirectoryHeaderSize);
    if (!header)
        return std::nullopt;
    const qint64 count = qint64(wordAt(*header, NamedEntryCountOffset)) + wordAt(*header, IdEntryCountOffset);
    const qint64 size = count * DirectoryEntrySize;
    const auto entries = bytesAtAddress(address + DirectoryHeaderSize, size, size);
    if (!entries || entries->isEmpty())
        return std::nullopt;
    for (qint64 at = 0; at < size; at += DirectoryEntrySize) {
        if (doubleWordAt(*entries, at) == id)
            return doubleWordAt(*entries, at + DoubleWordSize);
    }
    if (choice == OrTheFirst)
        return doubleWordAt(*entries, DoubleWordSize);
    return std::nullopt;
}

std::optional<QByteArray> ResourceReader::data(quint32 dataEntry, qint64 wanted)
{
    const auto description = bytesAtAddress(resources + dataEntry, DataEntrySize, DataEntrySize);
    if (!description)
        return std::nullopt;
    return bytesAtAddress(doubleWordAt(*description, 0), doubleWordAt(*description, DoubleWordSize), wanted);
}

bool isDirectory(const std::optional<quint32> &target)
{
    return target && (*target & SubdirectoryFlag) != 0;
}

FileVersion noVersionInfo(quint32 error)
{
    return {FileVersion::NoVersionInfo, error, 0, 0};
}

FileVersion fixedVersion(const QByteArray &versionInfo)
{
    const QByteArray key = QByteArray::fromRawData(VersionKey, sizeof(VersionKey));
    if (versionInfo.size() < FixedInfoOffset + FixedInfoSize || versionInfo.mid(KeyOffset, key.size()) != key
        || wordAt(versionInfo, ValueLengthOffset) < FixedInfoSize
        || doubleWordAt(versionInfo, FixedInfoOffset) != FixedInfoSignature)
        return {FileVersion::NoRootBlock, 0, 0, 0};
    return {FileVersion::Found, 0, doubleWordAt(versionInfo, FixedInfoOffset + MostSignificantOffset),
            doubleWordAt(versionInfo, FixedInfoOffset + LeastSignificantOffset)};
}

} // namespace

FileVersion readPeVersionResource(QIODevice &device)
{
    ResourceReader reader(device);
    if (!reader.open())
        return noVersionInfo(ErrorResourceDataNotFound);

    // Three levels of directories and no more, so that directories which point to each other cannot hold us.
    const auto names = reader.entry(0, VersionTypeId, ResourceReader::Exactly);
    if (!isDirectory(names))
        return noVersionInfo(ErrorResourceTypeNotFound);
    const auto languages = reader.entry(*names & ~SubdirectoryFlag, VersionNameId, ResourceReader::OrTheFirst);
    if (!isDirectory(languages))
        return noVersionInfo(ErrorResourceNameNotFound);
    const auto dataEntry = reader.entry(*languages & ~SubdirectoryFlag, NeutralLanguage, ResourceReader::OrTheFirst);
    if (!dataEntry || isDirectory(dataEntry))
        return noVersionInfo(ErrorResourceLanguageNotFound);

    const auto versionInfo = reader.data(*dataEntry, FixedInfoOffset + FixedInfoSize);
    return versionInfo ? fixedVersion(*versionInfo) : noVersionInfo(ErrorResourceDataNotFound);
}
