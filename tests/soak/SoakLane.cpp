#include "SoakLane.h"

using Operation = SimulatedProgrammer::Operation;
using Effect = SimulatedProgrammer::Effect;

namespace {

constexpr int Percent = 100;
constexpr int MaximumFaults = 12; // most of which meet an operation that the request has no use for
constexpr int WriteChance = 1; // a write sleeps for half a second
constexpr int SectorSize = 1024;
constexpr int FlashSize = 8 * SectorSize;
constexpr int BufferSize = 64;
constexpr int LongestDelay = 3; // milliseconds

constexpr Operation FaultyOperations[] = {Operation::Connect,
                                          Operation::Disconnect,
                                          Operation::FindDevice,
                                          Operation::GetDeviceConfiguration,
                                          Operation::CommitConfiguration,
                                          Operation::SetDeviceConfiguration,
                                          Operation::WiFiServerStart,
                                          Operation::SetTargetInterfaceInUse,
                                          Operation::SetTargetClock,
                                          Operation::ConnectToTarget,
                                          Operation::DisconnectFromTarget,
                                          Operation::ResetTarget,
                                          Operation::SwoEnable,
                                          Operation::SwoGetData,
                                          Operation::ReadTarget,
                                          Operation::VerifyTarget,
                                          Operation::WriteTarget,
                                          Operation::EraseTargetMass,
                                          Operation::CheckTargetBlank,
                                          Operation::DetectTarget,
                                          Operation::PowerSwitch,
                                          Operation::PowerSetVoltage,
                                          Operation::PowerSetBatteryOptions,
                                          Operation::PowerGetReadings,
                                          Operation::PowerGetInfo,
                                          Operation::PowerSaveConfiguration,
                                          Operation::PowerGetSupplyState};

/// All that the library has a text for, and one that it has none for.
constexpr int Statuses[] = {4, 8, 10, 11, 12, 13, 14, 38, 51, 117};

constexpr Effect Effects[]
    = {Effect::Fail, Effect::Fail, Effect::Fail, Effect::LoseLink, Effect::Delay, Effect::Corrupt};

} // namespace

SoakLane::SoakLane(quint32 seed)
    : generator(seed)
    , operations(&programmer, nullptr)
    , log(&operations)
    , buffer(BufferSize, '\0')
{
    programmer.setTimeScale(0);
    programmer.setFlashRegions({{0, FlashSize, SectorSize}});
}

int SoakLane::random(int end)
{
    return generator.bounded(end);
}

void SoakLane::planFault()
{
    SimulatedProgrammer::Fault fault;
    fault.operation = FaultyOperations[random(int(std::size(FaultyOperations)))];
    fault.effect = Effects[random(int(std::size(Effects)))];
    fault.status = Statuses[random(int(std::size(Statuses)))];
    fault.call = random(2);
    fault.block = random(3);
    fault.delay = random(LongestDelay + 1);
    programmer.addFault(fault);
    plannedFaults.append(QStringLiteral("operation %1, effect %2, status %3, call %4, block %5")
                             .arg(int(fault.operation))
                             .arg(int(fault.effect))
                             .arg(fault.status)
                             .arg(fault.call)
                             .arg(fault.block));
}

void SoakLane::begin()
{
    programmer.clearFaults();
    if (programmer.isConnected())
        programmer.loseLink(); // the device did not let go, and is plugged in anew
    programmer.takeCalls();
    programmer.clearRecord();
    plannedFaults.clear();
    log.events.clear();
    for (int count = random(MaximumFaults + 1); count > 0; --count)
        planFault();
    programmer.setExternalSupply(random(2) == 0 ? 0.0F : 3.3F);

    options.eraseMode = 2 * random(2);
    options.leaveRunning = random(2);
    options.verifyAfterWrite = random(2);
    options.haltAfterReset = random(2);
    options.powerChannel = random(SimulatedProgrammer::PowerChannelCount);
    const QSharedPointer<TargetDescriptor> target = programmer.GetTargetDescriptor();
    target->getOperationOptions()->setIntValue(TargetOptionsOperation::EraseMode, options.eraseMode);
    target->getOperationOptions()->setIntValue(TargetOptionsOperation::LeaveRunning, options.leaveRunning);
    target->getOperationOptions()->setIntValue(TargetOptionsOperation::VerifyAfterWrite, options.verifyAfterWrite);
    target->getConnectionOptions()->setIntValue(TargetOptionsConnection::HaltAfterReset, options.haltAfterReset);

    memory = MemoryManager();
    memory.write(quint32(SectorSize * random(4)), QByteArray(1 + random(2 * SectorSize), char(random(256))));
    bufferSize = BufferSize;
    request = Request(1 + random(int(Request::Count) - 1));
    if (random(Percent) < WriteChance)
        request = Request::WriteTarget;
    ++requestsMade;
    makeRequest();
}

void SoakLane::makeRequest()
{
    auto *const bytes = reinterpret_cast<unsigned char *>(buffer.data());
    const auto channel = static_cast<unsigned char>(options.powerChannel);
    switch (request) {
    case Request::WriteTarget:
        operations.WriteTarget(&memory);
        break;
    case Request::ReadTarget:
        operations.ReadTarget(&memory);
        break;
    case Request::VerifyTarget:
        operations.VerifyTarget(&memory, &result);
        break;
    case Request::CheckTargetBlank:
        operations.CheckTargetBlank(&result);
        break;
    case Request::DetectTarget:
        operations.DetectTarget(&result);
        break;
    case Request::EraseTargetMass:
        operations.EraseTargetMass();
        break;
    case Request::ResetTarget:
        operations.ResetTarget();
        break;
    case Request::FindDevice:
        operations.FindDevice();
        break;
    case Request::GetDeviceConfiguration:
        operations.GetDeviceConfiguration(&configuration);
        break;
    case Request::SetDeviceConfiguration:
        operations.SetDeviceConfiguration(&configuration);
        break;
    case Request::WiFiServerStart:
        operations.WiFiServerStart();
        break;
    case Request::SwoEnable:
        operations.SwoEnable(1);
        break;
    case Request::SwoDisable:
        operations.SwoDisable();
        break;
    case Request::SwoGetData:
        operations.SwoGetData(bytes, &bufferSize);
        break;
    case Request::PowerSwitch:
        operations.PowerSwitch(channel, static_cast<unsigned char>(random(2)));
        break;
    case Request::PowerSetVoltage:
        operations.PowerSetVoltage(channel, 3.3F);
        break;
    case Request::PowerSetBatteryOptions:
        operations.PowerSetBatteryOptions(1);
        break;
    case Request::PowerGetReadings:
        operations.PowerGetReadings(bytes, BufferSize);
        break;
    case Request::PowerGetInfo:
        operations.PowerGetInfo(&powerInfo);
        break;
    default:
        operations.PowerSaveConfiguration();
        break;
    }
}

bool SoakLane::isAtRest() const
{
    return log.ends >= requestsMade && !operations.IsProcedureInProgress();
}

QString SoakLane::complaint()
{
    if (log.lastStatus != 0)
        ++failedRequests;
    const ExpectedLog expected(request, options, programmer.takeCalls());
    if (expected.wrongCalls().isEmpty() && log.events == expected.events() && log.completions == requestsMade
        && log.ends == requestsMade) {
        return {};
    }
    return QStringLiteral("Request %1 (number %2, faults: %3)\nwrong calls:\n  %4\nexpected:\n  %5\nheard:\n  %6")
        .arg(int(request))
        .arg(requestsMade)
        .arg(plannedFaults.join(QStringLiteral("; ")), expected.wrongCalls().join(QStringLiteral("\n  ")),
             expected.events().join(QStringLiteral("\n  ")), log.events.join(QStringLiteral("\n  ")));
}

UtilsUniProgThread *SoakLane::thread()
{
    return &operations;
}

int SoakLane::failures() const
{
    return failedRequests;
}
