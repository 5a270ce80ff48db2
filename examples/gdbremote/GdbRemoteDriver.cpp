#include "GdbRemoteDriver.h"

#include <MemoryManager.h>

#include <algorithm>
#include <iterator>

namespace {

constexpr int ConnectWithReset = 1;

constexpr quint32 CpuIdRegister = 0xE000ED00;
constexpr quint32 CpuIdMask = 0xFF0F0000; // implementer and architecture
constexpr quint32 CpuIdCortexM0 = 0x410C0000; // Arm, ARMv6-M
constexpr quint32 CpuIdCortexM3 = 0x410F0000; // Arm, ARMv7-M and later

} // namespace

GdbRemoteDriver::GdbRemoteDriver(const QString &host, quint16 port, QObject *parent)
    : QObject(parent)
    , target(host, port)
    , descriptor(QSharedPointer<TargetDescriptor>::create())
{ }

GdbRemoteDriver::~GdbRemoteDriver() = default;

void GdbRemoteDriver::setAnswerTimeout(int milliseconds)
{
    target.setAnswerTimeout(milliseconds);
}

int GdbRemoteDriver::Connect(OPERATION_TYPE /*type*/)
{
    targetConnected = false;
    return target.open();
}

int GdbRemoteDriver::ConnectSelectedDevice(TSelectedDevice * /*device*/, OPERATION_TYPE type)
{
    return Connect(type);
}

int GdbRemoteDriver::Disconnect()
{
    targetConnected = false;
    target.close();
    return Status::Success;
}

int GdbRemoteDriver::SetTargetClock()
{
    return Status::Success;
}

int GdbRemoteDriver::SetTargetInterfaceInUse(bool /*inUse*/)
{
    return Status::Success;
}

QSharedPointer<TargetDescriptor> GdbRemoteDriver::GetTargetDescriptor()
{
    return descriptor;
}

int GdbRemoteDriver::ConnectToTarget(int flag)
{
    if (flag != 0 && flag != ConnectWithReset)
        return Status::WrongArgument;
    leaveRunning = flag == 0;
    int status = target.attach();
    if (status == Status::Success && flag == ConnectWithReset)
        status = target.resetHalted();
    targetConnected = status == Status::Success;
    return status;
}

int GdbRemoteDriver::DisconnectFromTarget()
{
    // A server that is gone has no target to be released: that is told by the operation that found it gone.
    const bool resumes = targetConnected && target.isOpen() && leaveRunning && !target.isRunning();
    targetConnected = false;
    return resumes ? target.resume() : int(Status::Success);
}

int GdbRemoteDriver::ResetTarget(int mode)
{
    if (mode != 0)
        return Status::WrongArgument;
    if (const int status = needTarget())
        return status;
    const int status = target.resetHalted();
    const bool staysHalted
        = descriptor->getConnectionOptions()->getIntValue(TargetOptionsConnection::HaltAfterReset) != 0;
    leaveRunning = !staysHalted;
    return status == Status::Success && !staysHalted ? target.resume() : status;
}

int GdbRemoteDriver::ReadTarget(MemoryManager *memory)
{
    if (!memory)
        return Status::WrongArgument;
    if (const int status = needTarget())
        return status;
    if (memory->isEmpty() && target.flash().isEmpty())
        return Status::ChipNotRecognised;
    return forEach(memory->isEmpty() ? flashBlocks() : imageBlocks(*memory), [&](const Block &block) {
        QByteArray data;
        const int status = target.read(block.address, block.size, &data);
        if (status == Status::Success)
            memory->write(block.address, data);
        return status;
    });
}

int GdbRemoteDriver::DetectTarget(bool *detected)
{
    if (!detected)
        return Status::WrongArgument;
    *detected = false;
    if (const int status = needTarget())
        return status;
    quint32 id = 0;
    const int status = target.readWord(CpuIdRegister, &id);
    if (status == Status::ServerRefused)
        return Status::Success; // a chip that has no such register is another chip
    *detected = (id & CpuIdMask) == CpuIdCortexM0 || (id & CpuIdMask) == CpuIdCortexM3;
    return status;
}

int GdbRemoteDriver::VerifyTarget(MemoryManager *memory, bool *verified, int /*leaveRunning*/)
{
    if (!memory || !verified)
        return Status::WrongArgument;
    *verified = false;
    if (const int status = needTarget())
        return status;
    bool equal = true;
    const int status = forEach(imageBlocks(*memory), [&](const Block &block) {
        QByteArray data;
        const int blockStatus = target.read(block.address, block.size, &data);
        equal = equal && data == memory->read(block.address, block.size);
        return blockStatus;
    });
    *verified = status == Status::Success && equal;
    return status;
}

int GdbRemoteDriver::WriteTarget(MemoryManager *memory, int /*mode*/)
{
    if (!memory)
        return Status::WrongArgument;
    if (const int status = needTarget())
        return status;
    const int status = forEach(imageBlocks(*memory), [&](const Block &block) {
        return target.write(block.address, memory->read(block.address, block.size));
    });
    return status == Status::Success ? target.finishWriting() : status;
}

int GdbRemoteDriver::EraseTargetMass()
{
    if (const int status = needTarget())
        return status;
    if (target.flash().isEmpty())
        return Status::ChipNotRecognised;
    return eraseSectors(sectors());
}

int GdbRemoteDriver::EraseTarget(MemoryManager *memory)
{
    if (!memory)
        return Status::WrongArgument;
    if (const int status = needTarget())
        return status;
    if (target.flash().isEmpty())
        return Status::ChipNotRecognised;
    QList<Block> touched;
    const QList<MemoryManager::Segment> segments = memory->segments();
    const QList<Block> all = sectors();
    std::copy_if(all.cbegin(), all.cend(), std::back_inserter(touched), [&](const Block &sector) {
        return std::any_of(segments.cbegin(), segments.cend(), [&](const MemoryManager::Segment &segment) {
            return segment.address < quint64(sector.address) + sector.size
                && quint64(segment.address) + quint64(segment.data.size()) > sector.address;
        });
    });
    return eraseSectors(touched);
}

int GdbRemoteDriver::CheckTargetBlank(bool *blank, bool /*leaveRunning*/)
{
    if (!blank)
        return Status::WrongArgument;
    *blank = false;
    if (const int status = needTarget())
        return status;
    if (target.flash().isEmpty())
        return Status::ChipNotRecognised;
    bool erased = true;
    const int status = forEach(flashBlocks(), [&](const Block &block) {
        QByteArray data;
        const int blockStatus = target.read(block.address, block.size, &data);
        erased = erased && data.count(MemoryManager::ErasedByte) == data.size();
        return blockStatus;
    });
    *blank = status == Status::Success && erased;
    return status;
}

/// Operations on a target need one, halted. A connection that failed says so before anything else.
int GdbRemoteDriver::needTarget()
{
    if (!target.isOpen())
        return Status::ServerClosed;
    return targetConnected ? target.halt() : int(Status::OutOfOrder);
}

QList<GdbRemoteDriver::Block> GdbRemoteDriver::flashBlocks() const
{
    QList<Block> blocks;
    for (const GdbFlashRegion &region : target.flash()) {
        for (quint32 offset = 0; offset < region.size; offset += target.blockSize())
            blocks.append({region.start + offset, std::min(target.blockSize(), region.size - offset)});
    }
    return blocks;
}

QList<GdbRemoteDriver::Block> GdbRemoteDriver::sectors() const
{
    QList<Block> all;
    for (const GdbFlashRegion &region : target.flash()) {
        for (quint32 offset = 0; offset < region.size; offset += region.sectorSize)
            all.append({region.start + offset, region.sectorSize});
    }
    return all;
}

/// The segments of @p image, cut where a region of flash starts or ends.
QList<GdbRemoteDriver::Block> GdbRemoteDriver::imageBlocks(const MemoryManager &image) const
{
    QList<Block> blocks;
    const QList<MemoryManager::Segment> segments = image.segments();
    for (const MemoryManager::Segment &segment : segments) {
        quint32 address = segment.address;
        for (quint64 left = quint64(segment.data.size()); left > 0;) {
            quint64 size = std::min<quint64>(left, target.blockSize());
            for (const GdbFlashRegion &region : target.flash()) {
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

int GdbRemoteDriver::eraseSectors(const QList<Block> &sectorList)
{
    return forEach(sectorList, [this](const Block &sector) { return target.eraseSector(sector.address, sector.size); });
}

/// Does @p work with every block until one fails, and tells the progress.
int GdbRemoteDriver::forEach(const QList<Block> &blocks, const BlockWork &work)
{
    int told = -1;
    for (qsizetype done = 0; done < blocks.size(); ++done) {
        if (const int status = work(blocks.at(done)))
            return status;
        const int percent = int((done + 1) * 100 / blocks.size());
        if (percent != told)
            Q_EMIT SignalUpdateProgress(percent);
        told = percent;
    }
    return Status::Success;
}
