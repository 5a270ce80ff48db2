#ifndef FIRMWAREFILE_H
#define FIRMWAREFILE_H

#include <QString>

class MemoryManager;

/// Firmware images on disk: raw binary (.bin), Intel HEX (.hex, .ihex) and Motorola S-record (.s19, .s28, .s37, .srec,
/// .mot). The text formats are read and written by the programs srec_info and srec_cat of the srecord package, so that
/// they are understood as everywhere else.
///
/// Every function returns true, or false and a sentence for the user in @p error; the image is then left as it was.
/// They block until the file is done, which takes some milliseconds, and give up after half a minute.
namespace FirmwareFile {

constexpr qint64 MaximumFileSize = 64 * 1024 * 1024; ///< bytes on disk
constexpr qint64 MaximumImageSize = 16 * 1024 * 1024; ///< bytes of memory
constexpr int MaximumRangeCount = 256; ///< separate pieces of memory

/// Whether the file carries no addresses of its own, by its name.
bool isBinary(const QString &path);

/// Reads @p path. A binary file starts at @p binaryBase; the others know their addresses.
bool load(const QString &path, quint32 binaryBase, MemoryManager *image, QString *error);

/// Writes @p image in the format of the name. A binary file takes one piece of memory only: it has no room for gaps.
bool save(const QString &path, const MemoryManager &image, QString *error);

} // namespace FirmwareFile

#endif // FIRMWAREFILE_H
