#include "GdbConnection.h"

#include <QDeadlineTimer>
#include <QHostInfo>
#include <QNetworkProxy>
#include <QTcpSocket>
#include <QThreadPool>

#include <chrono>
#include <future>

namespace {

constexpr int MaximumAttempts = 3; // for a packet that was damaged
constexpr qsizetype MaximumTraffic = 4 * GdbPacket::MaximumSize; // bytes for one command, with all that is dropped
constexpr char InterruptByte = '\x03';

int remaining(const QDeadlineTimer &deadline)
{
    return int(deadline.remainingTime());
}

/// None when the system does not find any in time. It cannot be told to give up: its answer is then left alone.
QList<QHostAddress> lookUp(const QString &host, const QDeadlineTimer &deadline)
{
    const QHostAddress literal(host);
    if (!literal.isNull())
        return {literal};
    const auto promise = std::make_shared<std::promise<QList<QHostAddress>>>();
    std::future<QList<QHostAddress>> addresses = promise->get_future();
    QThreadPool::globalInstance()->start(
        [promise, host] { promise->set_value(QHostInfo::fromName(host).addresses()); });
    const auto time = std::chrono::milliseconds(remaining(deadline));
    return addresses.wait_for(time) == std::future_status::ready ? addresses.get() : QList<QHostAddress>();
}

} // namespace

GdbConnection::GdbConnection() = default;

GdbConnection::~GdbConnection() = default;

GdbConnection::Result GdbConnection::open(const QString &host, quint16 port, int timeout)
{
    close();
    const QDeadlineTimer deadline(timeout);
    const QList<QHostAddress> addresses = lookUp(host, deadline);
    for (const QHostAddress &address : addresses) {
        socket = std::make_unique<QTcpSocket>();
        socket->setProxy(QNetworkProxy::NoProxy); // servers are near; to ask for a proxy may take any time
        socket->setReadBufferSize(GdbPacket::MaximumSize);
        socket->connectToHost(address, port);
        if (!socket->waitForConnected(remaining(deadline)))
            continue;
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // small packets take turns
        return Result::Done;
    }
    return fail(Result::Unreachable);
}

void GdbConnection::close()
{
    // An orderly end would wait for a server that no longer reads.
    if (socket)
        socket->abort();
    socket.reset();
    received.clear();
    acknowledges = true;
}

bool GdbConnection::isOpen() const
{
    return socket != nullptr;
}

void GdbConnection::setAcknowledging(bool acknowledging)
{
    acknowledges = acknowledging;
}

GdbConnection::Result GdbConnection::send(const QByteArray &command, const QDeadlineTimer &deadline)
{
    traffic = 0;
    const QByteArray packet = GdbPacket::frame(command);
    Result result = transmit(packet, deadline);
    int attempts = 1;
    while (acknowledges && result == Result::Done) {
        GdbPacket::Kind kind = GdbPacket::Kind::Nothing;
        QByteArray stale;
        result = next(&kind, &stale, deadline);
        if (result != Result::Done || kind == GdbPacket::Kind::Acknowledgement)
            break;
        if (kind == GdbPacket::Kind::Answer)
            result = transmit("+", deadline); // sent before the command was known; it must not come again
        else if (kind == GdbPacket::Kind::Rejection)
            result = attempts++ < MaximumAttempts ? transmit(packet, deadline) : fail(Result::Garbage);
    }
    return result;
}

GdbConnection::Result GdbConnection::interrupt(const QDeadlineTimer &deadline)
{
    traffic = 0;
    return transmit(QByteArray(1, InterruptByte), deadline); // no packet, so nobody acknowledges it
}

GdbConnection::Result GdbConnection::receive(QByteArray *answer, const QDeadlineTimer &deadline)
{
    for (int damaged = 0; damaged < MaximumAttempts;) {
        GdbPacket::Kind kind = GdbPacket::Kind::Nothing;
        Result result = next(&kind, answer, deadline);
        if (result != Result::Done)
            return result;
        if (kind == GdbPacket::Kind::Answer)
            return acknowledges ? transmit("+", deadline) : Result::Done;
        // Without acknowledgements nothing is sent again.
        if (kind == GdbPacket::Kind::Nonsense || (kind == GdbPacket::Kind::DamagedAnswer && !acknowledges))
            break;
        if (kind != GdbPacket::Kind::DamagedAnswer)
            continue;
        ++damaged;
        result = transmit("-", deadline);
        if (result != Result::Done)
            return result;
    }
    return fail(Result::Garbage);
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

/// Waits for the next thing that means something.
GdbConnection::Result GdbConnection::next(GdbPacket::Kind *kind, QByteArray *body, const QDeadlineTimer &deadline)
{
    for (;;) {
        *kind = GdbPacket::take(&received, body);
        if (*kind != GdbPacket::Kind::Nothing)
            return Result::Done;
        if (received.size() > GdbPacket::MaximumSize || traffic > MaximumTraffic)
            return fail(Result::Garbage);
        const Result result = waitForBytes(deadline);
        if (result != Result::Done)
            return result;
    }
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
    const QByteArray bytes = socket->readAll();
    received += bytes;
    traffic += bytes.size();
    return Result::Done;
}

/// After @p result nobody knows what the server's next bytes belong to.
GdbConnection::Result GdbConnection::fail(Result result)
{
    close();
    return result;
}
