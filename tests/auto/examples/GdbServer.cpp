#include "GdbServer.h"

#include <GdbPacket.h>

#include <QNetworkProxy>
#include <QTcpServer>
#include <QTcpSocket>

#include <utility>

namespace {

constexpr int PollTime = 20; // ms

void send(QTcpSocket &socket, const QByteArray &bytes)
{
    socket.write(bytes);
    while (socket.bytesToWrite() > 0 && socket.waitForBytesWritten(PollTime)) { }
}

} // namespace

GdbServer::GdbServer(Handler serverHandler, const QHostAddress &serverAddress)
    : handler(std::move(serverHandler))
    , listeningAddress(serverAddress)
    , flashBytes(FlashSize, '\0')
    , configurationBytes(PageSize, '\xFF')
{
    start();
    while (listeningPort == 0 && isRunning())
        yieldCurrentThread();
}

GdbServer::~GdbServer()
{
    requestInterruption();
    wait();
}

quint16 GdbServer::port() const
{
    return listeningPort;
}

qsizetype GdbServer::acknowledgements() const
{
    const QMutexLocker lock(&mutex);
    return acknowledgementCount;
}

QByteArrayList GdbServer::commands() const
{
    const QMutexLocker lock(&mutex);
    return received;
}

QByteArray GdbServer::flash() const
{
    const QMutexLocker lock(&mutex);
    return flashBytes;
}

GdbServer::Reply GdbServer::answer(const QByteArray &command)
{
    if (command == "c")
        return {"+"}; // the answer comes when the target stops
    Reply reply = packet(respond(command));
    if (command == Interrupt)
        reply.bytes.remove(0, 1); // which is no packet, and not acknowledged
    return reply;
}

GdbServer::Reply GdbServer::packet(const QByteArray &body)
{
    return {'+' + GdbPacket::frame(body), Then::Listen};
}

void GdbServer::run()
{
    QTcpServer server;
    server.setProxy(QNetworkProxy::NoProxy);
    if (!server.listen(listeningAddress))
        return;
    listeningPort = server.serverPort();
    while (!isInterruptionRequested()) {
        if (!server.waitForNewConnection(PollTime))
            continue;
        QTcpSocket *socket = server.nextPendingConnection();
        serve(*socket);
        delete socket;
    }
}

void GdbServer::serve(QTcpSocket &socket)
{
    QByteArray bytes;
    while (!isInterruptionRequested() && socket.state() == QAbstractSocket::ConnectedState) {
        if (socket.waitForReadyRead(PollTime))
            bytes += socket.readAll();
        for (QByteArray command = takeCommand(&bytes); !command.isNull(); command = takeCommand(&bytes)) {
            const Reply reply = handler ? handler(*this, command) : answer(command);
            send(socket, reply.bytes);
            while (reply.then == Then::Dribble && !isInterruptionRequested()
                   && socket.state() == QAbstractSocket::ConnectedState) {
                send(socket, "x");
                socket.waitForReadyRead(PollTime);
            }
            if (reply.then == Then::Close)
                return;
        }
    }
}

/// Null when none has come whole yet.
QByteArray GdbServer::takeCommand(QByteArray *bytes)
{
    const QMutexLocker lock(&mutex);
    while (bytes->startsWith('+') || bytes->startsWith('-')) {
        acknowledgementCount += bytes->startsWith('+') ? 1 : 0;
        bytes->remove(0, 1);
    }
    constexpr qsizetype ChecksumSize = 3; // with its mark
    const qsizetype end = bytes->indexOf('#');
    QByteArray command;
    if (bytes->startsWith(Interrupt)) {
        command = Interrupt;
        bytes->remove(0, 1);
    } else if (end >= 0 && bytes->size() >= end + ChecksumSize) {
        command = bytes->mid(1, end - 1);
        bytes->remove(0, end + ChecksumSize);
    }
    if (!command.isNull())
        received.append(command);
    return command;
}

QByteArray GdbServer::respond(const QByteArray &command)
{
    const QMutexLocker lock(&mutex);
    if (command.startsWith("qSupported"))
        return "PacketSize=200;multiprocess+";
    if (command == "?" || command == Interrupt)
        return "S05";
    if (command.startsWith("qRcmd,"))
        return "OK";
    const quint32 address = command.mid(1, command.indexOf(',') - 1).toUInt(nullptr, 16);
    const qsizetype colon = command.indexOf(':');
    if (command.startsWith('m'))
        return readMemory(address, command.mid(command.indexOf(',') + 1).toUInt(nullptr, 16)).toHex();
    if (!command.startsWith('M'))
        return {};
    const QByteArray data = QByteArray::fromHex(command.mid(colon + 1));
    const bool inFlash = address + data.size() <= FlashSize;
    if (!inFlash && (address < UserConfiguration || address + data.size() > UserConfiguration + PageSize))
        return "E14";
    if (inFlash)
        flashBytes.replace(address, data.size(), data);
    else
        configurationBytes.replace(address - UserConfiguration, data.size(), data);
    return "OK";
}

QByteArray GdbServer::readMemory(quint32 address, quint32 size) const
{
    if (address == 0xE000ED00)
        return QByteArray::fromHex("00c20c41");
    if (address == 0x10000010)
        return QByteArray::fromHex("00040000");
    if (address == 0x10000014)
        return QByteArray::fromHex("04000000");
    if (address + size <= FlashSize)
        return flashBytes.mid(address, size);
    if (address >= UserConfiguration && address + size <= UserConfiguration + PageSize)
        return configurationBytes.mid(address - UserConfiguration, size);
    return {};
}
