#ifndef GDBCONNECTION_H
#define GDBCONNECTION_H

#include <QByteArray>
#include <QString>

#include <memory>

class QDeadlineTimer;
class QTcpSocket;

/// The TCP connection to a GDB server: sends packets and waits for their answers, with acknowledgements.
///
/// Blocks, and needs no event loop: it is made for worker threads. open() to close() belong to one thread. What the
/// server sends is not trusted; every call ends within its time, and whatever leaves the connection in doubt closes it,
/// so that later calls fail at once.
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

    static constexpr int DefaultTimeout = 5000; ///< ms, for a connection and for an answer

    GdbConnection();
    /// Closes the connection.
    ~GdbConnection();

    /// Connects to the server, after closing the connection there may be.
    Result open(const QString &host, quint16 port, int timeout = DefaultTimeout);
    void close();
    bool isOpen() const;

    /// Sends @p command and waits for the answer, for at most @p timeout ms altogether.
    Result exchange(const QByteArray &command, QByteArray *answer, int timeout = DefaultTimeout);
    /// Waits for one more packet; for answers that come in several.
    Result receive(QByteArray *answer, const QDeadlineTimer &deadline);
    /// Sends @p command, which has no answer yet, and waits for its acknowledgement.
    Result send(const QByteArray &command, const QDeadlineTimer &deadline);
    /// Asks the server to halt the target and waits for the answer.
    Result interrupt(QByteArray *answer, int timeout = DefaultTimeout);

private:
    Q_DISABLE_COPY_MOVE(GdbConnection)

    Result transmit(const QByteArray &bytes, const QDeadlineTimer &deadline);
    Result waitForBytes(const QDeadlineTimer &deadline);
    Result awaitAcknowledgement(bool *accepted, const QDeadlineTimer &deadline);
    Result takePacket(QByteArray *wireBody, QByteArray *digits, const QDeadlineTimer &deadline);
    Result fail(Result result);

    std::unique_ptr<QTcpSocket> socket;
    QByteArray received; ///< bytes that are not used yet
};

#endif // GDBCONNECTION_H
