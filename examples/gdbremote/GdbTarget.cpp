#include "GdbTarget.h"

#include <MemoryManager.h>

#include <QDeadlineTimer>
#include <QtEndian>

#include <algorithm>

namespace {

constexpr int FlashTimeout = 60000; // ms: a server programs all it was sent at once

constexpr qsizetype DefaultPacketSize = 400; // what every server takes
constexpr qsizetype SmallestPacketSize = 64;
constexpr qsizetype PacketOverhead = 32; // command, address, size and marks
constexpr qsizetype LargestBlock = 1024; // bytes: progress comes often enough
constexpr qsizetype Alignment = 4;
constexpr qsizetype MaximumMapSize = 64LL * 1024; // bytes of XML
constexpr int MaximumMapPieces = 256;

// The factory information of the nRF51 and nRF52.
constexpr quint32 NordicPageSizeRegister = 0x10000010;
constexpr quint32 NordicPageCountRegister = 0x10000014;

QByteArray hex(quint64 number)
{
    return QByteArray::number(number, 16);
}

/// Two digits or a text; memory contents may start with the same letter.
bool isError(const QByteArray &answer)
{
    constexpr qsizetype NumberedErrorSize = 3;
    return answer.startsWith("E.") || (answer.startsWith('E') && answer.size() == NumberedErrorSize);
}

/// What the server or the target prints, which may come before any answer.
bool isConsoleOutput(const QByteArray &answer)
{
    return answer.startsWith('O') && answer != "OK";
}

/// Whether the target has stopped, after a command that waits for that.
bool isStop(const QByteArray &answer)
{
    return answer.startsWith('S') || answer.startsWith('T');
}

int statusOf(GdbConnection::Result result)
{
    switch (result) {
    case GdbConnection::Result::Done:
        return GdbTarget::Success;
    case GdbConnection::Result::Unreachable:
        return GdbTarget::ServerUnreachable;
    case GdbConnection::Result::Closed:
        return GdbTarget::ServerClosed;
    case GdbConnection::Result::NoAnswer:
        return GdbTarget::ServerSilent;
    case GdbConnection::Result::Garbage:
        break;
    }
    return GdbTarget::ServerUnintelligible;
}

} // namespace

GdbTarget::GdbTarget(const QString &serverHost, quint16 serverPort)
    : host(serverHost)
    , port(serverPort)
{ }

GdbTarget::~GdbTarget() = default;

void GdbTarget::setAnswerTimeout(int milliseconds)
{
    answerTimeout = std::max(1, milliseconds);
}

int GdbTarget::open()
{
    close();
    int status = statusOf(connection.open(host, port, answerTimeout));
    if (status == Success)
        status = readFeatures();
    if (status != Success)
        close(); // nobody disconnects what has not connected, and the next attempt may come from another thread
    return status;
}

void GdbTarget::close()
{
    connection.close();
    packetSize = DefaultPacketSize;
    flashRegions.clear();
    hasFlashCommands = false;
    flashUnfinished = false;
    running = false;
}

bool GdbTarget::isOpen() const
{
    return connection.isOpen();
}

int GdbTarget::attach()
{
    QByteArray answer;
    const int status = ask("?", &answer);
    if (status != Success)
        return status;
    if (!isStop(answer))
        return ServerUnintelligible;
    return flashRegions.isEmpty() ? findNordicFlash() : int(Success);
}

int GdbTarget::halt()
{
    if (!running)
        return Success;
    const QDeadlineTimer deadline(answerTimeout);
    QByteArray answer;
    int status = statusOf(connection.interrupt(deadline));
    if (status == Success)
        status = receive(&answer, deadline);
    if (status != Success)
        return status;
    running = false;
    return isStop(answer) ? Success : ServerUnintelligible;
}

int GdbTarget::resume()
{
    // The answer comes when the target stops, for which nobody waits.
    const int status = statusOf(connection.send("c", QDeadlineTimer(answerTimeout)));
    running = status == Success;
    return status;
}

bool GdbTarget::isRunning() const
{
    return running;
}

int GdbTarget::resetHalted()
{
    // Servers for boards share one command; the emulator, which is the server without flash commands, has another, and
    // keeps its target halted.
    const QByteArray command = hasFlashCommands ? "reset halt" : "system_reset";
    return order("qRcmd," + command.toHex());
}

const QList<GdbFlashRegion> &GdbTarget::flash() const
{
    return flashRegions;
}

/// As many bytes as fit in a packet in every encoding, with two characters for each.
quint32 GdbTarget::blockSize() const
{
    const qsizetype room = (packetSize - PacketOverhead) / 2;
    return quint32(std::min(room, LargestBlock) / Alignment * Alignment);
}

int GdbTarget::read(quint32 address, quint32 size, QByteArray *data)
{
    QByteArray answer;
    const int status = ask('m' + hex(address) + ',' + hex(size), &answer);
    if (status != Success)
        return status;
    *data = QByteArray::fromHex(answer);
    // A longer answer, or one with other characters in it, is not taken in parts.
    return data->size() == qsizetype(size) && answer.size() == data->size() * 2 ? Success : ServerUnintelligible;
}

int GdbTarget::readWord(quint32 address, quint32 *word)
{
    QByteArray data;
    const int status = read(address, sizeof(quint32), &data);
    if (status == Success)
        *word = qFromLittleEndian<quint32>(data.constData());
    return status;
}

int GdbTarget::write(quint32 address, const QByteArray &data)
{
    if (!hasFlashCommands || !GdbMemoryMap::find(flashRegions, address))
        return writeMemory(address, data);
    flashUnfinished = true;
    return order("vFlashWrite:" + hex(address) + ':' + GdbPacket::escape(data), FlashTimeout);
}

int GdbTarget::finishWriting()
{
    if (!flashUnfinished)
        return Success;
    flashUnfinished = false;
    return order("vFlashDone", FlashTimeout);
}

/// The flash commands erase; where there are none, memory is overwritten with what erased flash holds.
int GdbTarget::eraseSector(quint32 address, quint32 size)
{
    if (hasFlashCommands)
        return order("vFlashErase:" + hex(address) + ',' + hex(size), FlashTimeout);
    int status = Success;
    for (quint32 offset = 0; offset < size && status == Success; offset += blockSize()) {
        const quint32 part = std::min(blockSize(), size - offset);
        status = writeMemory(address + offset, QByteArray(part, MemoryManager::ErasedByte));
    }
    return status;
}

/// Sends @p command; an answer that is an error, or empty because the server does not know the command, is a failure.
int GdbTarget::ask(const QByteArray &command, QByteArray *answer, int timeout)
{
    const QDeadlineTimer deadline(std::max(timeout, answerTimeout));
    int status = statusOf(connection.send(command, deadline));
    if (status == Success)
        status = receive(answer, deadline);
    if (status == Success && (answer->isEmpty() || isError(*answer)))
        return ServerRefused;
    return status;
}

/// As ask(), for a command that is answered with OK.
int GdbTarget::order(const QByteArray &command, int timeout)
{
    QByteArray answer;
    const int status = ask(command, &answer, timeout);
    return status == Success && answer != "OK" ? int(ServerUnintelligible) : status;
}

int GdbTarget::receive(QByteArray *answer, const QDeadlineTimer &deadline)
{
    GdbConnection::Result result = GdbConnection::Result::Done;
    do {
        result = connection.receive(answer, deadline);
    } while (result == GdbConnection::Result::Done && isConsoleOutput(*answer));
    return statusOf(result);
}

int GdbTarget::readFeatures()
{
    QByteArray answer;
    const int status = ask("qSupported", &answer);
    if (status == ServerRefused)
        return Success; // an older server, which offers nothing beyond the basics
    if (status != Success)
        return status;
    const QList<QByteArray> features = answer.split(';');
    for (const QByteArray &feature : features) {
        constexpr char SizeFeature[] = "PacketSize=";
        if (feature.startsWith(SizeFeature))
            packetSize = std::clamp(qsizetype(feature.mid(qsizetype(qstrlen(SizeFeature))).toUInt(nullptr, 16)),
                                    SmallestPacketSize, GdbPacket::MaximumSize);
    }
    if (features.contains("QStartNoAckMode+")) {
        const int agreed = order("QStartNoAckMode"); // TCP damages and loses nothing
        if (agreed != Success && agreed != ServerRefused)
            return agreed;
        connection.setAcknowledging(agreed != Success);
    }
    return features.contains("qXfer:memory-map:read+") ? readMemoryMap() : int(Success);
}

/// A map comes in pieces; the last one starts with l.
int GdbTarget::readMemoryMap()
{
    const QByteArray room = hex(quint64(packetSize - PacketOverhead));
    QByteArray map;
    for (int piece = 0; piece < MaximumMapPieces && map.size() <= MaximumMapSize; ++piece) {
        QByteArray answer;
        const int status = ask("qXfer:memory-map:read::" + hex(quint64(map.size())) + ',' + room, &answer);
        if (status != Success)
            return status == ServerRefused ? int(Success) : status; // offered, but this target has none
        map += answer.mid(1);
        if (answer.front() == 'l') {
            const bool valid = GdbMemoryMap::parse(map, &flashRegions);
            hasFlashCommands = !flashRegions.isEmpty();
            return valid ? Success : ServerUnintelligible;
        }
        if (answer.front() != 'm' || answer.size() == 1)
            break;
    }
    return ServerUnintelligible;
}

/// Where the server offers no memory map, the chip may know its flash.
int GdbTarget::findNordicFlash()
{
    quint32 pageSize = 0;
    quint32 pageCount = 0;
    int status = readWord(NordicPageSizeRegister, &pageSize);
    if (status == Success)
        status = readWord(NordicPageCountRegister, &pageCount);
    if (status == Success)
        flashRegions = GdbMemoryMap::ofNordicChip(pageSize, pageCount);
    return status == ServerRefused ? int(Success) : status; // no such register: another chip, whose flash stays unknown
}

int GdbTarget::writeMemory(quint32 address, const QByteArray &data)
{
    return order('M' + hex(address) + ',' + hex(quint64(data.size())) + ':' + data.toHex());
}
