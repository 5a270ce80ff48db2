#include "GdbServer.h"

#include <GdbPacket.h>

#include <QTcpServer>
#include <QTcpSocket>

#include <utility>

namespace {

constexpr int PollTime = 20; // ms

} // namespace

GdbServer::GdbServer(Handler serverHandler)
    : handler(std::move(serverHandler))
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
    return packet(respond(command));
}

GdbServer::Reply GdbServer::packet(const QByteArray &body)
{
    return {'+' + GdbPacket::frame(body), false};
}

void GdbServer::run()
{
    QTcpServer server;
    if (!server.listen(QHostAddress::LocalHost))
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
        for (qsizetype end = bytes.indexOf('#'); end >= 0 && bytes.size() >= end + 3; end = bytes.indexOf('#')) {
            const qsizetype start = bytes.indexOf('$');
            const QByteArray command = bytes.mid(start + 1, end - start - 1);
            bytes.remove(0, end + 3);
            int number = 0;
            {
                const QMutexLocker lock(&mutex);
                received.append(command);
                number = int(received.size());
            }
            const Reply reply = handler ? handler(command, number) : answer(command);
            socket.write(reply.bytes);
            while (socket.bytesToWrite() > 0 && socket.waitForBytesWritten(PollTime)) { }
            if (reply.close)
                return;
        }
    }
}

QByteArray GdbServer::respond(const QByteArray &command)
{
    const QMutexLocker lock(&mutex);
    if (command.startsWith("qSupported"))
        return "PacketSize=200;multiprocess+";
    if (command == "?")
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
