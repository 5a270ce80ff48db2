#ifndef GDBPACKET_H
#define GDBPACKET_H

#include <QByteArray>

/// The wire form of the GDB remote serial protocol: $body#checksum, with escaped bytes and, in what a server sends,
/// run-length encoding.
namespace GdbPacket {

/// The most bytes of a packet, on the wire and expanded. A server that sends more is not believed.
constexpr qsizetype MaximumSize = 16 * 1024;

/// What stands first in what a server has sent.
enum class Kind {
    Nothing, ///< nothing whole yet
    Acknowledgement,
    Rejection, ///< the server asks for the same packet again
    Answer,
    DamagedAnswer, ///< its checksum is wrong
    Nonsense ///< an intact packet that no server may send
};

/// @p body with its marks and checksum. The body is escaped already where it needs to be.
QByteArray frame(const QByteArray &body);
/// @p data with the bytes that mean something to the protocol escaped, as the body of a packet takes binary data.
QByteArray escape(const QByteArray &data);
/// Undoes escapes and run-length encoding. False for what no server may send: a repeat count without a byte to repeat
/// or out of range, an escape at the very end, more than MaximumSize bytes.
bool expand(const QByteArray &wireBody, QByteArray *body);
/// Removes what stands first in @p received and says what it was; @p body gets the expanded body of an answer.
/// Notifications, of which none are asked for, and bytes that belong to nothing are dropped. The rest of a packet that
/// has not come yet may follow in @p received.
Kind take(QByteArray *received, QByteArray *body);

} // namespace GdbPacket

#endif // GDBPACKET_H
