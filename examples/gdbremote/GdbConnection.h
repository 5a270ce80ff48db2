#ifndef GDBCONNECTION_H
#define GDBCONNECTION_H

#include "GdbPacket.h"

#include <QByteArray>
#include <QString>

#include <memory>

class QDeadlineTimer;
class QTcpSocket;

/// The TCP connection to a GDB server: sends packets and receives their answers, with acknowledgements.
///
/// Blocks, and needs no event loop: it is made for worker threads. open() to close() belong to one thread. What the
/// server sends is not trusted; every call ends by its deadline, however slowly bytes come, and whatever leaves the
/// connection in doubt closes it, so that later calls fail at once.
class GdbConnection
{
public:
    enum class Result {
        Done,
        Unreachable, ///< no server, or none in time
        Closed, ///< there is no connection, or the server ended it
        NoAnswer, ///< nothing of use came in time
        Garbage ///< what came is no packet
    };

    GdbConnection();
    /// Closes the connection.
    ~GdbConnection();

    /// Connects to the server, without a proxy, after closing the connection there may be. @p timeout, in ms, is for
    /// all of it: looking up a host name and trying its addresses one after another.
    Result open(const QString &host, quint16 port, int timeout);
    void close();
    bool isOpen() const;

    /// Whether packets are acknowledged, in both directions. They are, after open(); a server may agree not to.
    void setAcknowledging(bool acknowledging);

    /// Sends @p command, again where the server asks for it, and waits for its acknowledgement.
    Result send(const QByteArray &command, const QDeadlineTimer &deadline);
    /// Asks the server to halt the target.
    Result interrupt(const QDeadlineTimer &deadline);
    /// Waits for the next packet; there may be several for a command.
    Result receive(QByteArray *answer, const QDeadlineTimer &deadline);

private:
    Q_DISABLE_COPY_MOVE(GdbConnection)

    Result transmit(const QByteArray &bytes, const QDeadlineTimer &deadline);
    Result next(GdbPacket::Kind *kind, QByteArray *body, const QDeadlineTimer &deadline);
    Result waitForBytes(const QDeadlineTimer &deadline);
    Result fail(Result result);

    std::unique_ptr<QTcpSocket> socket;
    bool acknowledges = true;
    QByteArray received; ///< bytes that are not used yet
    qsizetype traffic = 0; ///< bytes received since the last command
};

#endif // GDBCONNECTION_H
