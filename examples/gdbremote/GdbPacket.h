#ifndef GDBPACKET_H
#define GDBPACKET_H

#include <QByteArray>

/// The wire form of the GDB remote serial protocol: $body#checksum, with escaped bytes and, in what a server sends,
/// run-length encoding.
namespace GdbPacket {

/// The most bytes of a packet, on the wire and expanded. A server that sends more is not believed.
constexpr qsizetype MaximumSize = 16 * 1024;

/// @p body with its marks and checksum. The body is escaped already where it needs to be.
QByteArray frame(const QByteArray &body);
/// @p data with the bytes that mean something to the protocol escaped, as the body of a packet takes binary data.
QByteArray escape(const QByteArray &data);
/// Undoes escapes and run-length encoding. False for what no server may send: a repeat count without a byte to repeat
/// or out of range, an escape at the very end, more than MaximumSize bytes.
bool expand(const QByteArray &wireBody, QByteArray *body);
/// Whether the two hexadecimal digits @p digits are the checksum of @p wireBody.
bool isChecksum(const QByteArray &digits, const QByteArray &wireBody);

} // namespace GdbPacket

#endif // GDBPACKET_H
