#include "GdbRemoteDriver.h"

#include "GdbPacket.h"

#include <MemoryManager.h>

#include <QDeadlineTimer>
#include <QtEndian>

#include <algorithm>

namespace {

constexpr int FlashTimeout = 60000; // ms: the server programs all it was sent at once
constexpr int ConnectWithReset = 1;

constexpr qsizetype DefaultPacketSize = 400; // what every server takes
constexpr qsizetype SmallestPacketSize = 64;
constexpr qsizetype PacketOverhead = 32; // command, address, size and marks
constexpr qsizetype LargestBlock = 1024; // bytes: progress comes often enough
constexpr qsizetype Alignment = 4;
constexpr qsizetype MaximumMapSize = 64 * 1024; // bytes of XML
constexpr int MaximumStepCount = 256; // pieces of one answer

constexpr quint32 CpuIdRegister = 0xE000ED00;
constexpr quint32 CpuIdMask = 0xFF0F0000; // implementer and architecture
constexpr quint32 CpuIdCortexM0 = 0x410C0000; // Arm, ARMv6-M
constexpr quint32 CpuIdCortexM3 = 0x410F0000; // Arm, ARMv7-M and later

// The nRF51 and nRF52 say in their factory information how much flash they have; the page of user configuration
// registers is flash, too.
constexpr quint32 NordicPageSizeRegister = 0x10000010;
constexpr quint32 NordicPageCountRegister = 0x10000014;
constexpr quint32 NordicUserConfiguration = 0x10001000;
constexpr quint32 NordicSmallestPage = 1024;
constexpr quint32 NordicLargestPage = 4096;
constexpr quint32 NordicLargestFlash = 2 * 1024 * 1024;

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

/// Whether the target has stopped, after a command that waits for that.
bool isStop(const QByteArray &answer)
{
    return answer.startsWith('S') || answer.startsWith('T');
}

int statusOf(GdbConnection::Result result)
{
    switch (result) {
    case GdbConnection::Result::Done:
        return GdbRemoteDriver::Success;
    case GdbConnection::Result::Unreachable:
        return GdbRemoteDriver::ServerUnreachable;
    case GdbConnection::Result::Closed:
        return GdbRemoteDriver::ServerClosed;
    case GdbConnection::Result::NoAnswer:
        return GdbRemoteDriver::ServerSilent;
    case GdbConnection::Result::Garbage:
        break;
    }
    return GdbRemoteDriver::ServerUnintelligible;
}

} // namespace

GdbRemoteDriver::GdbRemoteDriver(const QString &serverHost, quint16 serverPort, QObject *parent)
    : QObject(parent)
    , host(serverHost)
    , port(serverPort)
    , descriptor(QSharedPointer<TargetDescriptor>::create())
{ }

GdbRemoteDriver::~GdbRemoteDriver() = default;

void GdbRemoteDriver::setAnswerTimeout(int milliseconds)
{
    answerTimeout = std::max(1, milliseconds);
}

int GdbRemoteDriver::Connect(OPERATION_TYPE /*type*/)
{
    Disconnect();
    const GdbConnection::Result result = connection.open(host, port, answerTimeout);
    return result == GdbConnection::Result::Done ? readFeatures() : statusOf(result);
}

int GdbRemoteDriver::ConnectSelectedDevice(TSelectedDevice * /*device*/, OPERATION_TYPE type)
{
    return Connect(type);
}

int GdbRemoteDriver::Disconnect()
{
    connection.close();
    targetConnected = false;
    targetRunning = false;
    hasFlashCommands = false;
    flash.clear();
    packetSize = DefaultPacketSize;
    return Success;
}

int GdbRemoteDriver::SetTargetClock()
{
    return Success;
}

int GdbRemoteDriver::SetTargetInterfaceInUse(bool /*inUse*/)
{
    return Success;
}

QSharedPointer<TargetDescriptor> GdbRemoteDriver::GetTargetDescriptor()
{
    return descriptor;
}

int GdbRemoteDriver::ConnectToTarget(int flag)
{
    if (flag != 0 && flag != ConnectWithReset)
        return WrongArgument;
    leaveRunning = flag == 0;
    QByteArray answer;
    int status = ask("?", &answer);
    if (status == Success && !isStop(answer))
        status = ServerUnintelligible;
    if (status == Success && flag == ConnectWithReset)
        status = resetHalted();
    if (status == Success)
        status = findFlash();
    targetConnected = status == Success;
    return status;
}

int GdbRemoteDriver::DisconnectFromTarget()
{
    // A server that is gone has no target to be released: that is told by the operation that found it gone.
    const bool resumes = targetConnected && connection.isOpen() && leaveRunning && !targetRunning;
    targetConnected = false;
    return resumes ? resume() : int(Success);
}

int GdbRemoteDriver::ResetTarget(int mode)
{
    if (mode != 0)
        return WrongArgument;
    int status = needTarget();
    if (status == Success)
        status = halt();
    if (status == Success)
        status = resetHalted();
    const bool staysHalted
        = descriptor->getConnectionOptions()->getIntValue(TargetOptionsConnection::HaltAfterReset) != 0;
    leaveRunning = !staysHalted;
    return status == Success && !staysHalted ? resume() : status;
}

int GdbRemoteDriver::ReadTarget(MemoryManager *memory)
{
    if (!memory)
        return WrongArgument;
    if (const int status = needTarget())
        return status;
    if (memory->isEmpty() && flash.isEmpty())
        return ChipNotRecognised;
    return forEach(memory->isEmpty() ? flashBlocks() : imageBlocks(*memory), [=](const Block &block) {
        QByteArray data;
        const int status = readMemory(block, &data);
        if (status == Success)
            memory->write(block.address, data);
        return status;
    });
}

int GdbRemoteDriver::DetectTarget(bool *detected)
{
    if (!detected)
        return WrongArgument;
    *detected = false;
    if (const int status = needTarget())
        return status;
    quint32 id = 0;
    const int status = readWord(CpuIdRegister, &id);
    if (status == ServerRefused)
        return Success; // a chip that has no such register is another chip
    *detected = (id & CpuIdMask) == CpuIdCortexM0 || (id & CpuIdMask) == CpuIdCortexM3;
    return status;
}

int GdbRemoteDriver::VerifyTarget(MemoryManager *memory, bool *verified, int /*leaveRunning*/)
{
    if (!memory || !verified)
        return WrongArgument;
    *verified = false;
    if (const int status = needTarget())
        return status;
    bool equal = true;
    const int status = forEach(imageBlocks(*memory), [&](const Block &block) {
        QByteArray data;
        const int blockStatus = readMemory(block, &data);
        equal = equal && data == memory->read(block.address, block.size);
        return blockStatus;
    });
    *verified = status == Success && equal;
    return status;
}

int GdbRemoteDriver::WriteTarget(MemoryManager *memory, int /*mode*/)
{
    if (!memory)
        return WrongArgument;
    if (const int status = needTarget())
        return status;
    bool usedFlash = false;
    const int status = forEach(imageBlocks(*memory), [&](const Block &block) {
        const QByteArray data = memory->read(block.address, block.size);
        if (!hasFlashCommands || !GdbMemoryMap::find(flash, block.address))
            return writeMemory(block.address, data);
        usedFlash = true;
        return writeFlash(block.address, data);
    });
    return status == Success && usedFlash ? order("vFlashDone", FlashTimeout) : status;
}

int GdbRemoteDriver::EraseTargetMass()
{
    if (const int status = needTarget())
        return status;
    if (flash.isEmpty())
        return ChipNotRecognised;
    QList<Block> sectors;
    for (const GdbFlashRegion &region : std::as_const(flash)) {
        for (quint32 offset = 0; offset < region.size; offset += region.sectorSize)
            sectors.append({region.start + offset, region.sectorSize});
    }
    return eraseBlocks(sectors);
}

int GdbRemoteDriver::EraseTarget(MemoryManager *memory)
{
    if (!memory)
        return WrongArgument;
    if (const int status = needTarget())
        return status;
    if (flash.isEmpty())
        return ChipNotRecognised;
    return eraseBlocks(touchedSectors(*memory));
}

int GdbRemoteDriver::CheckTargetBlank(bool *blank, bool /*leaveRunning*/)
{
    if (!blank)
        return WrongArgument;
    *blank = false;
    if (const int status = needTarget())
        return status;
    if (flash.isEmpty())
        return ChipNotRecognised;
    bool erased = true;
    const int status = forEach(flashBlocks(), [&](const Block &block) {
        QByteArray data;
        const int blockStatus = readMemory(block, &data);
        erased = erased && data.count(MemoryManager::ErasedByte) == data.size();
        return blockStatus;
    });
    *blank = status == Success && erased;
    return status;
}

/// Sends @p command; an answer that is an error, or empty because the server does not know the command, is a failure.
int GdbRemoteDriver::ask(const QByteArray &command, QByteArray *answer, int timeout)
{
    const int status = statusOf(connection.exchange(command, answer, std::max(timeout, answerTimeout)));
    if (status == Success && (answer->isEmpty() || isError(*answer)))
        return ServerRefused;
    return status;
}

/// As ask(), for a command that is answered with OK.
int GdbRemoteDriver::order(const QByteArray &command, int timeout)
{
    QByteArray answer;
    const int status = ask(command, &answer, timeout);
    return status == Success && answer != "OK" ? int(ServerUnintelligible) : status;
}

/// Has the server run a command of its own. What it prints comes before the answer and is dropped.
int GdbRemoteDriver::monitor(const QByteArray &command)
{
    const QDeadlineTimer deadline(answerTimeout);
    QByteArray answer;
    GdbConnection::Result result = connection.send("qRcmd," + command.toHex(), deadline);
    do {
        if (result == GdbConnection::Result::Done)
            result = connection.receive(&answer, deadline);
    } while (result == GdbConnection::Result::Done && answer.startsWith('O') && answer != "OK");
    if (result != GdbConnection::Result::Done)
        return statusOf(result);
    if (answer == "OK")
        return Success;
    return answer.isEmpty() || isError(answer) ? ServerRefused : ServerUnintelligible;
}

int GdbRemoteDriver::readFeatures()
{
    QByteArray answer;
    const int status = ask("qSupported:qXfer:memory-map:read+", &answer);
    if (status == ServerRefused)
        return Success; // an older server, which offers nothing beyond the basics
    if (status != Success)
        return status;
    bool hasMemoryMap = false;
    const QList<QByteArray> features = answer.split(';');
    for (const QByteArray &feature : features) {
        constexpr char SizeFeature[] = "PacketSize=";
        if (feature.startsWith(SizeFeature))
            packetSize = std::clamp(qsizetype(feature.mid(qstrlen(SizeFeature)).toUInt(nullptr, 16)),
                                    SmallestPacketSize, GdbPacket::MaximumSize);
        hasMemoryMap = hasMemoryMap || feature == "qXfer:memory-map:read+";
    }
    return hasMemoryMap ? readMemoryMap() : int(Success);
}

/// A map comes in pieces; the last one starts with l.
int GdbRemoteDriver::readMemoryMap()
{
    QByteArray map;
    for (int step = 0; step < MaximumStepCount && map.size() <= MaximumMapSize; ++step) {
        QByteArray answer;
        const int status = ask("qXfer:memory-map:read::" + hex(quint64(map.size())) + ','
                                   + hex(quint64(packetSize - PacketOverhead)),
                               &answer);
        if (status != Success)
            return status == ServerRefused ? int(Success) : status; // offered, but this target has none
        const char kind = answer.front();
        map += answer.mid(1);
        if (kind == 'l') {
            flash = GdbMemoryMap::parse(map);
            hasFlashCommands = !flash.isEmpty();
            return Success;
        }
        if (kind != 'm' || answer.size() == 1)
            return ServerUnintelligible;
    }
    return ServerUnintelligible;
}

int GdbRemoteDriver::readMemory(const Block &block, QByteArray *data)
{
    QByteArray answer;
    const int status = ask('m' + hex(block.address) + ',' + hex(block.size), &answer);
    if (status != Success)
        return status;
    *data = QByteArray::fromHex(answer);
    // A longer answer, or one with other characters in it, is not taken in parts.
    return data->size() == qsizetype(block.size) && answer.size() == data->size() * 2 ? Success : ServerUnintelligible;
}

int GdbRemoteDriver::readWord(quint32 address, quint32 *word)
{
    QByteArray data;
    const int status = readMemory({address, sizeof(quint32)}, &data);
    if (status == Success)
        *word = qFromLittleEndian<quint32>(data.constData());
    return status;
}

int GdbRemoteDriver::writeMemory(quint32 address, const QByteArray &data)
{
    return order('M' + hex(address) + ',' + hex(quint64(data.size())) + ':' + data.toHex());
}

int GdbRemoteDriver::writeFlash(quint32 address, const QByteArray &data)
{
    return order("vFlashWrite:" + hex(address) + ':' + GdbPacket::escape(data));
}

int GdbRemoteDriver::halt()
{
    if (!targetRunning)
        return Success;
    QByteArray answer;
    const int status = statusOf(connection.interrupt(&answer, answerTimeout));
    if (status != Success)
        return status;
    targetRunning = false;
    return isStop(answer) ? Success : ServerUnintelligible;
}

int GdbRemoteDriver::resume()
{
    // The answer comes when the target stops, for which nobody waits.
    const int status = statusOf(connection.send("c", QDeadlineTimer(answerTimeout)));
    targetRunning = status == Success;
    return status;
}

/// There is no reset in the protocol. Servers for boards share one command; the emulator, which is the server without
/// flash commands, has another, and is halted while it is connected.
int GdbRemoteDriver::resetHalted()
{
    return monitor(hasFlashCommands ? "reset halt" : "system_reset");
}

/// Where the server offers no memory map, the chip may know its flash.
int GdbRemoteDriver::findFlash()
{
    if (!flash.isEmpty())
        return Success;
    quint32 pageSize = 0;
    quint32 pageCount = 0;
    int status = readWord(NordicPageSizeRegister, &pageSize);
    if (status == Success)
        status = readWord(NordicPageCountRegister, &pageCount);
    if (status == ServerRefused)
        return Success; // no such register: another chip, whose flash stays unknown
    if (status != Success)
        return status;
    const bool known = (pageSize == NordicSmallestPage || pageSize == NordicLargestPage) && pageCount > 0
        && pageCount <= NordicLargestFlash / pageSize;
    if (known)
        flash = {{0, pageSize * pageCount, pageSize}, {NordicUserConfiguration, pageSize, pageSize}};
    return Success;
}

/// The flash commands erase; where there are none, memory is overwritten with what erased flash holds.
int GdbRemoteDriver::eraseBlocks(const QList<Block> &sectors)
{
    return forEach(sectors, [this](const Block &sector) {
        if (hasFlashCommands)
            return order("vFlashErase:" + hex(sector.address) + ',' + hex(sector.size), FlashTimeout);
        int status = Success;
        for (quint32 offset = 0; offset < sector.size && status == Success; offset += blockSize()) {
            const quint32 size = std::min(blockSize(), sector.size - offset);
            status = writeMemory(sector.address + offset, QByteArray(size, MemoryManager::ErasedByte));
        }
        return status;
    });
}

/// Operations on a target need one. A connection that failed says so before anything else.
int GdbRemoteDriver::needTarget() const
{
    if (!connection.isOpen())
        return ServerClosed;
    return targetConnected ? Success : OutOfOrder;
}

/// The most bytes that fit in a packet in every encoding, two characters a byte.
quint32 GdbRemoteDriver::blockSize() const
{
    const qsizetype room = (packetSize - PacketOverhead) / 2;
    return quint32(std::min(room, LargestBlock) / Alignment * Alignment);
}

QList<GdbRemoteDriver::Block> GdbRemoteDriver::flashBlocks() const
{
    QList<Block> blocks;
    for (const GdbFlashRegion &region : flash) {
        for (quint32 offset = 0; offset < region.size; offset += blockSize())
            blocks.append({region.start + offset, std::min(blockSize(), region.size - offset)});
    }
    return blocks;
}

/// The segments of @p image, cut where a region of flash starts or ends.
QList<GdbRemoteDriver::Block> GdbRemoteDriver::imageBlocks(const MemoryManager &image) const
{
    QList<Block> blocks;
    const QList<MemoryManager::Segment> segments = image.segments();
    for (const MemoryManager::Segment &segment : segments) {
        quint32 address = segment.address;
        for (quint64 left = quint64(segment.data.size()); left > 0;) {
            quint64 size = std::min<quint64>(left, blockSize());
            for (const GdbFlashRegion &region : flash) {
                const quint64 end = quint64(region.start) + region.size;
                if (address < region.start)
                    size = std::min<quint64>(size, region.start - address);
                else if (address < end)
                    size = std::min<quint64>(size, end - address);
            }
            blocks.append({address, quint32(size)});
            address += quint32(size);
            left -= size;
        }
    }
    return blocks;
}

QList<GdbRemoteDriver::Block> GdbRemoteDriver::touchedSectors(const MemoryManager &image) const
{
    QList<Block> sectors;
    const QList<MemoryManager::Segment> segments = image.segments();
    for (const GdbFlashRegion &region : flash) {
        for (quint32 offset = 0; offset < region.size; offset += region.sectorSize) {
            const quint64 start = quint64(region.start) + offset;
            const bool touched = std::any_of(segments.cbegin(), segments.cend(), [&](const auto &segment) {
                return segment.address < start + region.sectorSize
                    && segment.address + quint64(segment.data.size()) > start;
            });
            if (touched)
                sectors.append({quint32(start), region.sectorSize});
        }
    }
    return sectors;
}

/// Does @p work with every block until one fails, and tells the progress.
int GdbRemoteDriver::forEach(const QList<Block> &blocks, const BlockWork &work)
{
    if (const int status = halt())
        return status;
    int told = -1;
    for (qsizetype done = 0; done < blocks.size(); ++done) {
        if (const int status = work(blocks.at(done)))
            return status;
        const int percent = int((done + 1) * 100 / blocks.size());
        if (percent != told)
            Q_EMIT SignalUpdateProgress(percent);
        told = percent;
    }
    return Success;
}
