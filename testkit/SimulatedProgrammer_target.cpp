#include "SimulatedProgrammer_p.h"

using namespace std::chrono_literals;
using Span = SimulatedFlash::Span;

namespace {

// The times of a small flash chip behind a debug interface of 1 MHz. Checking is quick: the chip compares by itself.
constexpr SimulatedPace SectorErasing{12ms, 0ns, true};
constexpr SimulatedPace MassErasing{1ms, 0ns, false};
constexpr SimulatedPace Writing{0ns, 20us, true};
constexpr SimulatedPace Reading{0ns, 8us, true};
constexpr SimulatedPace Checking{0ns, 4us, true};

constexpr float LowestTargetVoltage = 1.7F;
constexpr float HighestTargetVoltage = 3.6F;

constexpr int ConnectWithReset = 1;

QByteArray flipped(QByteArray data)
{
    if (!data.isEmpty())
        data[0] = char(data.at(0) ^ 1);
    return data;
}

} // namespace

int SimulatedProgrammer::SetTargetInterfaceInUse(bool inUse)
{
    State::Call call(*state, Operation::SetTargetInterfaceInUse);
    int status = call.begin(DeviceOperation, true, inUse);
    if (status == Success && inUse && state->interfaceElsewhere)
        status = InterfaceInUse;
    if (status == Success) {
        if (inUse)
            state->interfaceTaken = true;
        else
            state->leaveInterface();
    }
    return call.finish(status);
}

int SimulatedProgrammer::SetTargetClock()
{
    return state->run(Operation::SetTargetClock, DeviceOperation | NeedInterface, true, [this](State::Call &) {
        state->clockSet = true;
        return Success;
    });
}

int SimulatedProgrammer::ConnectToTarget(int flag)
{
    const bool known = flag == 0 || flag == ConnectWithReset;
    return state->run(Operation::ConnectToTarget, DeviceOperation | NeedInterface, known, [=](State::Call &call) {
        if (!state->clockSet)
            return call.refuse(OutOfOrder, "the clock of the interface is not set");
        if (state->targetConnected)
            return call.refuse(OutOfOrder, "the target is connected already");
        const float volts = state->voltageOf(SupplyChannel);
        if (volts < LowestTargetVoltage || volts > HighestTargetVoltage)
            return int(WrongVoltage);
        if (!state->targetPresent)
            return int(TargetNotResponding);
        state->targetConnected = true;
        if (flag == ConnectWithReset)
            state->targetRunning = false;
        return int(Success);
    });
}

int SimulatedProgrammer::DisconnectFromTarget()
{
    return state->run(Operation::DisconnectFromTarget, DeviceOperation, true, [this](State::Call &) {
        state->leaveTarget();
        return Success;
    });
}

QSharedPointer<TargetDescriptor> SimulatedProgrammer::GetTargetDescriptor()
{
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->descriptor;
}

int SimulatedProgrammer::ResetTarget(int mode)
{
    return state->run(Operation::ResetTarget, TargetOperation, mode == 0, [this](State::Call &) {
        if (!state->targetPresent)
            return TargetNotResponding;
        const bool halt = state->descriptor
            && state->descriptor->getConnectionOptions()->getIntValue(TargetOptionsConnection::HaltAfterReset) != 0;
        state->targetRunning = !halt;
        return Success;
    });
}

int SimulatedProgrammer::SwoEnable(unsigned int /*parameter*/)
{
    return state->run(Operation::SwoEnable, TargetOperation, true, [this](State::Call &) {
        state->swoEnabled = true;
        state->swoPosition = 0;
        return Success;
    });
}

int SimulatedProgrammer::SwoGetData(unsigned char *data, unsigned short *size)
{
    const bool valid = size && (data || *size == 0);
    return state->run(Operation::SwoGetData, DeviceOperation, valid, [=](State::Call &call) {
        if (!state->swoEnabled)
            return call.refuse(OutOfOrder, "SWO is not enabled");
        const QByteArray &stream = state->swoStream;
        unsigned short count = 0;
        for (; count < *size; ++count) {
            if (state->swoPosition == stream.size() && state->swoEndless)
                state->swoPosition = 0;
            if (state->swoPosition == stream.size())
                break;
            data[count] = static_cast<unsigned char>(stream.at(state->swoPosition++));
        }
        *size = count;
        return int(Success);
    });
}

int SimulatedProgrammer::DetectTarget(bool *detected)
{
    return state->run(Operation::DetectTarget, TargetOperation, detected != nullptr, [=](State::Call &) {
        *detected = state->targetPresent && state->chipId == state->selectedChipId;
        return Success;
    });
}

int SimulatedProgrammer::ReadTarget(MemoryManager *memory)
{
    return state->run(Operation::ReadTarget, TargetOperation, memory != nullptr, [=](State::Call &call) {
        if (const int status = state->checkMemory(*memory))
            return status;
        const QList<Span> blocks = memory->isEmpty() ? state->flash.blocks() : state->flash.blocks(*memory);
        return state->forEach(blocks, Reading, call, [=](const Span &span, bool corrupt) {
            const QByteArray data = state->flash.read(span.address, span.size);
            memory->write(span.address, corrupt ? flipped(data) : data);
            return Success;
        });
    });
}

int SimulatedProgrammer::VerifyTarget(MemoryManager *memory, bool *verified, int leaveRunning)
{
    const bool valid = memory && verified;
    return state->run(Operation::VerifyTarget, TargetOperation, valid, [=](State::Call &call) {
        *verified = false;
        if (const int status = state->checkMemory(*memory))
            return status;
        if (leaveRunning == 0)
            state->targetRunning = false;
        bool same = true;
        const int status
            = state->forEach(state->flash.blocks(*memory), Checking, call, [&](const Span &span, bool corrupt) {
                  if (corrupt)
                      state->flipBit(span);
                  same = same && state->flash.read(span.address, span.size) == memory->read(span.address, span.size);
                  return Success;
              });
        *verified = same && status == Success;
        return status;
    });
}

int SimulatedProgrammer::WriteTarget(MemoryManager *memory, int mode)
{
    const bool valid = memory && mode == 0;
    return state->run(Operation::WriteTarget, TargetOperation, valid, [=](State::Call &call) {
        if (const int status = state->checkMemory(*memory))
            return status;
        state->targetRunning = false;
        return state->forEach(state->flash.blocks(*memory), Writing, call, [=](const Span &span, bool corrupt) {
            const bool holds = state->flash.program(span.address, memory->read(span.address, span.size));
            state->bytesWritten += span.size;
            if (corrupt)
                state->flipBit(span);
            return holds ? Success : NotErased;
        });
    });
}

int SimulatedProgrammer::EraseTargetMass()
{
    return state->run(Operation::EraseTargetMass, TargetOperation, true, [=](State::Call &call) {
        if (const int status = state->checkMemory({}))
            return status;
        return state->erase(state->flash.sectors(), MassErasing, call);
    });
}

int SimulatedProgrammer::EraseTarget(MemoryManager *memory)
{
    return state->run(Operation::EraseTarget, TargetOperation, memory != nullptr, [=](State::Call &call) {
        if (const int status = state->checkMemory(*memory))
            return status;
        return state->erase(state->flash.sectors(*memory), SectorErasing, call);
    });
}

int SimulatedProgrammer::CheckTargetBlank(bool *blank, bool leaveRunning)
{
    return state->run(Operation::CheckTargetBlank, TargetOperation, blank != nullptr, [=](State::Call &call) {
        *blank = false;
        if (const int status = state->checkMemory({}))
            return status;
        if (!leaveRunning)
            state->targetRunning = false;
        bool allErased = true;
        const int status = state->forEach(state->flash.blocks(), Checking, call, [&](const Span &span, bool corrupt) {
            if (corrupt)
                state->flipBit(span);
            const QByteArray data = state->flash.read(span.address, span.size);
            allErased = allErased && data.count(MemoryManager::ErasedByte) == data.size();
            return Success;
        });
        *blank = allErased && status == Success;
        return status;
    });
}

template <typename Work>
int SimulatedProgrammer::State::forEach(const QList<Span> &spans, const SimulatedPace &pace, Call &call, Work work)
{
    qint64 total = 0;
    for (const Span &span : spans)
        total += span.size;

    qint64 done = 0;
    if (pace.reportsProgress)
        call.reportProgress(done, total);
    for (const Span &span : spans) {
        const auto [fault, bytes, corrupt] = call.block(span.size, pace.perBlock + span.size * pace.perByte);
        const int status = bytes > 0 ? work(Span{span.address, bytes}, corrupt) : Success;
        if (fault != Success || status != Success)
            return fault != Success ? fault : status;
        done += span.size;
        if (pace.reportsProgress)
            call.reportProgress(done, total);
    }
    return Success;
}

int SimulatedProgrammer::State::erase(const QList<Span> &sectors, const SimulatedPace &pace, Call &call)
{
    targetRunning = false;
    return forEach(sectors, pace, call, [this](const Span &sector, bool corrupt) {
        flash.erase(sector);
        ++sectorsErased;
        if (corrupt)
            flipBit(sector);
        return Success;
    });
}

int SimulatedProgrammer::State::checkMemory(const MemoryManager &memory) const
{
    if (!vendorSupported)
        return UnsupportedVendor;
    if (!targetPresent)
        return TargetNotResponding;
    if (chipId != selectedChipId)
        return ChipNotRecognised;
    return flash.contains(memory) ? Success : AddressError;
}

void SimulatedProgrammer::State::flipBit(const Span &span)
{
    flash.set(span.address, flipped(flash.read(span.address, 1)));
}
