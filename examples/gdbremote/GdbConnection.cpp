#include "GdbConnection.h"

#include "GdbPacket.h"

#include <QDeadlineTimer>
#include <QTcpSocket>

namespace {

constexpr int MaximumAttempts = 3; ///< for a packet that was damaged
constexpr char InterruptByte = '\x03';
constexpr qsizetype ChecksumSize = 3; ///< the mark and two digits

int remaining(const QDeadlineTimer &deadline)
{
    return int(deadline.remainingTime());
}

} // namespace

GdbConnection::GdbConnection() = default;

GdbConnection::~GdbConnection() = default;

GdbConnection::Result GdbConnection::open(const QString &host, quint16 port, int timeout)
{
    close();
    socket = std::make_unique<QTcpSocket>();
    socket->setReadBufferSize(GdbPacket::MaximumSize);
    socket->connectToHost(host, port);
    if (!socket->waitForConnected(timeout))
        return fail(Result::Unreachable);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // small packets take turns
    return Result::Done;
}

void GdbConnection::close()
{
    // An orderly end would wait for a server that no longer reads.
    if (socket)
        socket->abort();
    socket.reset();
    received.clear();
}

bool GdbConnection::isOpen() const
{
    return socket != nullptr;
}

GdbConnection::Result GdbConnection::exchange(const QByteArray &command, QByteArray *answer, int timeout)
{
    const QDeadlineTimer deadline(timeout);
    const Result result = send(command, deadline);
    return result == Result::Done ? receive(answer, deadline) : result;
}

GdbConnection::Result GdbConnection::receive(QByteArray *answer, const QDeadlineTimer &deadline)
{
    for (int attempt = 0; attempt < MaximumAttempts; ++attempt) {
        QByteArray wireBody;
        QByteArray digits;
        Result result = takePacket(&wireBody, &digits, deadline);
        if (result != Result::Done)
            return result;
        const bool intact = GdbPacket::isChecksum(digits, wireBody);
        result = transmit(intact ? "+" : "-", deadline);
        if (result != Result::Done)
            return result;
        if (intact)
            return GdbPacket::expand(wireBody, answer) ? Result::Done : fail(Result::Garbage);
    }
    return fail(Result::Garbage);
}

GdbConnection::Result GdbConnection::send(const QByteArray &command, const QDeadlineTimer &deadline)
{
    const QByteArray packet = GdbPacket::frame(command);
    for (int attempt = 0; attempt < MaximumAttempts; ++attempt) {
        Result result = transmit(packet, deadline);
        bool accepted = false;
        if (result == Result::Done)
            result = awaitAcknowledgement(&accepted, deadline);
        if (result != Result::Done || accepted)
            return result;
    }
    return fail(Result::Garbage);
}

GdbConnection::Result GdbConnection::interrupt(QByteArray *answer, int timeout)
{
    const QDeadlineTimer deadline(timeout);
    const Result result = transmit(QByteArray(1, InterruptByte), deadline);
    return result == Result::Done ? receive(answer, deadline) : result;
}

GdbConnection::Result GdbConnection::transmit(const QByteArray &bytes, const QDeadlineTimer &deadline)
{
    if (!socket)
        return Result::Closed;
    if (socket->write(bytes) != bytes.size())
        return fail(Result::Closed);
    while (socket->bytesToWrite() > 0) {
        if (!socket->waitForBytesWritten(remaining(deadline)))
            return fail(socket->state() == QAbstractSocket::ConnectedState ? Result::NoAnswer : Result::Closed);
    }
    return Result::Done;
}

/// Waits until there are unused bytes.
GdbConnection::Result GdbConnection::waitForBytes(const QDeadlineTimer &deadline)
{
    if (!socket)
        return Result::Closed;
    // A server that never stops sending what is of no use has to come to an end, too.
    if (deadline.hasExpired())
        return fail(Result::NoAnswer);
    if (socket->bytesAvailable() == 0 && !socket->waitForReadyRead(remaining(deadline)))
        return fail(socket->state() == QAbstractSocket::ConnectedState ? Result::NoAnswer : Result::Closed);
    received += socket->readAll();
    return Result::Done;
}

/// Skips to the acknowledgement of what was sent.
GdbConnection::Result GdbConnection::awaitAcknowledgement(bool *accepted, const QDeadlineTimer &deadline)
{
    for (qsizetype skipped = 0; skipped <= GdbPacket::MaximumSize;) {
        while (received.isEmpty()) {
            const Result result = waitForBytes(deadline);
            if (result != Result::Done)
                return result;
        }
        const char byte = received.front();
        received.remove(0, 1);
        ++skipped;
        if (byte == '+' || byte == '-') {
            *accepted = byte == '+';
            return Result::Done;
        }
    }
    return fail(Result::Garbage);
}

/// Takes the next packet out of what the server sends; what stands before it is skipped.
GdbConnection::Result GdbConnection::takePacket(QByteArray *wireBody, QByteArray *digits,
                                                const QDeadlineTimer &deadline)
{
    for (;;) {
        const qsizetype start = received.indexOf('$');
        const qsizetype end = start < 0 ? -1 : received.indexOf('#', start);
        if (end >= 0 && received.size() >= end + ChecksumSize) {
            *wireBody = received.mid(start + 1, end - start - 1);
            *digits = received.mid(end + 1, ChecksumSize - 1);
            received.remove(0, end + ChecksumSize);
            return wireBody->size() <= GdbPacket::MaximumSize ? Result::Done : fail(Result::Garbage);
        }
        if (received.size() > GdbPacket::MaximumSize)
            return fail(Result::Garbage);
        const Result result = waitForBytes(deadline);
        if (result != Result::Done)
            return result;
    }
}

/// After @p result nobody knows what the server's next bytes belong to.
GdbConnection::Result GdbConnection::fail(Result result)
{
    close();
    return result;
}
