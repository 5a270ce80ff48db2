#include "SimulatedProgrammer_p.h"

namespace {

constexpr int FullProgress = 100; // per cent

} // namespace

SimulatedProgrammer::State::Call::Call(State &programmer, Operation op)
    : s(programmer)
    , operation(op)
    , lock(programmer.mutex)
    , due(Clock::now())
{ }

SimulatedProgrammer::State::Call::~Call()
{
    if (!started)
        return;
    s.running = false;
    s.changed.notify_all();
}

int SimulatedProgrammer::State::Call::begin(int needs, bool argumentsValid, bool withFaults)
{
    ++s.calls[operation];
    if (s.running)
        return refuse(Busy, "another operation is running");
    s.running = true;
    s.aborted = false;
    started = true;
    if (!argumentsValid)
        return refuse(InvalidArgument, "invalid argument");
    if (const int status = check(needs))
        return status;
    if (withFaults)
        faults = s.faults.takeCall(operation);
    if (const int status = pass(std::chrono::milliseconds(SimulatedOperation::of(operation).milliseconds)))
        return status;
    for (const Fault &fault : std::as_const(faults))
        if (fault.block <= 0 && fault.bytes < 0)
            if (const int status = strike(fault))
                return status;
    return Success;
}

int SimulatedProgrammer::State::Call::finish(int status)
{
    if (status == Success)
        ++s.successes[operation];
    return status;
}

int SimulatedProgrammer::State::Call::refuse(int status, const char *reason)
{
    s.refusals.append(QStringLiteral("%1: %2").arg(QLatin1String(SimulatedOperation::of(operation).functionName),
                                                   QLatin1String(reason)));
    return status;
}

int SimulatedProgrammer::State::Call::check(int needs)
{
    if (needs & NeedConnection) {
        // A link that broke down is nobody's mistake.
        if (s.link == Link::Lost)
            return LinkLost;
        if (s.link == Link::Down)
            return refuse(NotConnected, "no connection to the device");
    }
    if (needs & NeedFirmware && s.bootloader.isActive())
        return refuse(OutOfOrder, "the device is in its bootloader");
    if (needs & NeedBootloader && !s.bootloader.isActive())
        return refuse(OutOfOrder, "the device is not in its bootloader");
    if (needs & NeedInterface && !s.interfaceTaken)
        return refuse(OutOfOrder, "the interface to the target is not taken");
    if (needs & NeedTarget && !s.targetConnected)
        return refuse(OutOfOrder, "no connection to the target");
    if (needs & NeedPowerFirmware && s.powerBootloader.isActive())
        return refuse(OutOfOrder, "the power module is in its bootloader");
    if (needs & NeedPowerBootloader && !s.powerBootloader.isActive())
        return refuse(OutOfOrder, "the power module is not in its bootloader");
    return Success;
}

int SimulatedProgrammer::State::Call::strike(const Fault &fault)
{
    switch (fault.effect) {
    case Effect::Fail:
        return fault.status;
    case Effect::LoseLink:
        s.loseLink();
        return LinkLost;
    case Effect::Delay:
        return standStill(std::chrono::milliseconds(fault.delay));
    case Effect::Hang: {
        const quint64 releasesBefore = s.releases;
        s.hanging = true;
        s.changed.wait(lock, [&] { return s.aborted || s.releases != releasesBefore; });
        s.hanging = false;
        due = Clock::now();
        return s.aborted ? LinkLost : Success;
    }
    case Effect::Corrupt:
        break;
    }
    return Success;
}

int SimulatedProgrammer::State::Call::pass(std::chrono::nanoseconds duration)
{
    // Times add up on the clock, so that many short ones are as long as one.
    const auto scaled = std::chrono::duration<double, std::nano>(duration) * (s.timeScale * s.faults.slowness());
    due += std::chrono::duration_cast<Clock::duration>(scaled);
    if (due > Clock::now())
        s.changed.wait_until(lock, due, [this] { return s.aborted; });
    return s.aborted ? LinkLost : Success;
}

int SimulatedProgrammer::State::Call::standStill(std::chrono::milliseconds duration)
{
    s.changed.wait_for(lock, duration, [this] { return s.aborted; });
    due = Clock::now();
    return s.aborted ? LinkLost : Success;
}

SimulatedProgrammer::State::Call::Block SimulatedProgrammer::State::Call::block(int bytes,
                                                                                std::chrono::nanoseconds duration)
{
    ++blocks;
    Block result;
    result.bytes = bytes;
    for (const Fault &fault : std::as_const(faults)) {
        const bool byBlock = fault.block > 0;
        const bool byBytes = fault.bytes >= 0;
        const bool hit = (byBlock || byBytes) && (!byBlock || fault.block == blocks)
            && (!byBytes || (fault.bytes >= bytesDone && fault.bytes < bytesDone + bytes));
        if (!hit)
            continue;
        if (const int status = strike(fault))
            return {status, byBytes ? int(fault.bytes - bytesDone) : 0, false};
        result.corrupt = result.corrupt || fault.effect == Effect::Corrupt;
    }
    if (const int status = pass(duration))
        return {status, 0, false};
    bytesDone += bytes;
    return result;
}

void SimulatedProgrammer::State::Call::startAt(int block, qint64 bytes)
{
    blocks = block;
    bytesDone = bytes;
}

void SimulatedProgrammer::State::Call::reportProgress(qint64 done, qint64 total)
{
    const int percent = total > 0 ? int(done * FullProgress / total) : FullProgress;
    if (percent <= progress)
        return;
    // Without any waiting there is no time to space them by, and every number is told, so that runs are alike.
    const auto now = Clock::now();
    if (s.timeScale > 0 && percent < FullProgress && now < nextProgress)
        return;
    nextProgress = now + std::chrono::milliseconds(ProgressIntervalMs);
    progress = percent;
    lock.unlock();
    Q_EMIT s.q->SignalUpdateProgress(percent);
    lock.lock();
}
