#include "SimulatedFaults_p.h"

#include <algorithm>
#include <limits>

using Operation = SimulatedProgrammer::Operation;
using Fault = SimulatedProgrammer::Fault;
using Effect = SimulatedProgrammer::Effect;

namespace {

/// In the order of the enumeration. The times are those of a programmer on a full-speed USB link.
constexpr SimulatedOperation Operations[] = {
    {Operation::Connect, "Connect", "device-connect", SimulatedProgrammer::ConnectError, 150, false},
    {Operation::ConnectSelectedDevice, "ConnectSelectedDevice", "device-connect", SimulatedProgrammer::ConnectError,
     150, false},
    {Operation::Disconnect, "Disconnect", "device-disconnect", SimulatedProgrammer::DisconnectError, 10, false},
    {Operation::CommitConfiguration, "CommitConfiguration", "configuration-commit", SimulatedProgrammer::DeviceError,
     40, false},
    {Operation::WiFiServerStart, "WiFiServerStart", "wifi-start", SimulatedProgrammer::DeviceError, 500, false},
    {Operation::FindDevice, "FindDevice", "find-device", SimulatedProgrammer::DeviceError, 100, false},
    {Operation::GetDeviceConfiguration, "GetDeviceConfiguration", "configuration-get", SimulatedProgrammer::DeviceError,
     20, false},
    {Operation::SetDeviceConfiguration, "SetDeviceConfiguration", "configuration-set", SimulatedProgrammer::DeviceError,
     20, false},
    {Operation::ConnectToTarget, "ConnectToTarget", "target-connect", SimulatedProgrammer::TargetNotResponding, 100,
     false},
    {Operation::SetTargetClock, "SetTargetClock", "clock", SimulatedProgrammer::ClockError, 2, false},
    {Operation::DisconnectFromTarget, "DisconnectFromTarget", "target-disconnect", SimulatedProgrammer::DisconnectError,
     10, false},
    {Operation::SetTargetInterfaceInUse, "SetTargetInterfaceInUse", "interface-in-use",
     SimulatedProgrammer::InterfaceInUse, 2, false},
    {Operation::SetWiFiLinkPassword, "SetWiFiLinkPassword", nullptr, SimulatedProgrammer::DeviceError, 0, false},
    {Operation::ResetTarget, "ResetTarget", "reset", SimulatedProgrammer::TargetNotResponding, 20, false},
    {Operation::SwoGetData, "SwoGetData", "swo-data", SimulatedProgrammer::DeviceError, 2, false},
    {Operation::SwoEnable, "SwoEnable", "swo-enable", SimulatedProgrammer::DeviceError, 5, false},
    {Operation::ReadTarget, "ReadTarget", "read", SimulatedProgrammer::ReadError, 5, true},
    {Operation::DetectTarget, "DetectTarget", "detect", SimulatedProgrammer::TargetNotResponding, 10, false},
    {Operation::VerifyTarget, "VerifyTarget", "verify", SimulatedProgrammer::VerifyError, 5, true},
    {Operation::WriteTarget, "WriteTarget", "write", SimulatedProgrammer::WriteError, 5, true},
    {Operation::EraseTargetMass, "EraseTargetMass", "erase", SimulatedProgrammer::EraseError, 5, true},
    {Operation::EraseTarget, "EraseTarget", "erase", SimulatedProgrammer::EraseError, 5, true},
    {Operation::CheckTargetBlank, "CheckTargetBlank", "blank-check", SimulatedProgrammer::ReadError, 5, true},
    {Operation::BootloaderEnter, "BootloaderEnter", "bootloader-enter", SimulatedProgrammer::DeviceError, 300, false},
    {Operation::BootloaderErase, "BootloaderErase", "bootloader-erase", SimulatedProgrammer::EraseError, 5, true},
    {Operation::BootloaderWrite, "BootloaderWrite", "bootloader-write", SimulatedProgrammer::WriteError, 1, true},
    {Operation::BootloaderVerify, "BootloaderVerify", "bootloader-verify", SimulatedProgrammer::VerifyError, 5, true},
    {Operation::BootloaderGetInfo, "BootloaderGetInfo", "bootloader-info", SimulatedProgrammer::DeviceError, 5, false},
    {Operation::BootloaderExit, "BootloaderExit", "bootloader-exit", SimulatedProgrammer::DeviceError, 300, false},
    {Operation::PowerSwitch, "PowerSwitch", "power-switch", SimulatedProgrammer::DeviceError, 20, false},
    {Operation::PowerSetVoltage, "PowerSetVoltage", "power-voltage", SimulatedProgrammer::DeviceError, 20, false},
    {Operation::PowerSetBatteryOptions, "PowerSetBatteryOptions", "power-battery", SimulatedProgrammer::DeviceError, 20,
     false},
    {Operation::PowerGetReadings, "PowerGetReadings", "power-readings", SimulatedProgrammer::DeviceError, 10, false},
    {Operation::PowerGetInfo, "PowerGetInfo", "power-info", SimulatedProgrammer::DeviceError, 10, false},
    {Operation::PowerSaveConfiguration, "PowerSaveConfiguration", "power-save", SimulatedProgrammer::DeviceError, 40,
     false},
    {Operation::PowerGetSupplyState, "PowerGetSupplyState", "power-supply", SimulatedProgrammer::DeviceError, 10,
     false},
    {Operation::PowerBootloaderActivate, "PowerBootloaderActivate", "power-bootloader-activate",
     SimulatedProgrammer::DeviceError, 300, false},
    {Operation::PowerBootloaderReset, "PowerBootloaderReset", "power-bootloader-reset",
     SimulatedProgrammer::DeviceError, 300, false},
    {Operation::PowerBootloaderErase, "PowerBootloaderErase", "power-bootloader-erase", SimulatedProgrammer::EraseError,
     5, true},
    {Operation::PowerBootloaderWrite, "PowerBootloaderWrite", "power-bootloader-write", SimulatedProgrammer::WriteError,
     1, true},
    {Operation::PowerBootloaderVerify, "PowerBootloaderVerify", "power-bootloader-verify",
     SimulatedProgrammer::VerifyError, 5, true},
    {Operation::PowerBootloaderGetInfo, "PowerBootloaderGetInfo", "power-bootloader-info",
     SimulatedProgrammer::DeviceError, 5, false},
};

/// Names that stand for a whole fault.
constexpr struct
{
    const char *name;
    const char *fault;
} Abbreviations[] = {
    {"verify-mismatch", "verify=corrupt"},
    {"power-bootloader-mismatch", "power-bootloader-verify=corrupt"},
};

constexpr char SlowName[] = "slow";

const SimulatedOperation *operationOfFault(const QString &name)
{
    const auto *const found = std::find_if(std::begin(Operations), std::end(Operations), [&](const auto &candidate) {
        return candidate.faultName && name == QLatin1String(candidate.faultName);
    });
    return found == std::end(Operations) ? nullptr : found;
}

/// A number without sign or blanks; -1 when it is none, or more than @p largest.
qint64 numberOf(const QString &text, qint64 largest = std::numeric_limits<int>::max())
{
    bool ok = false;
    const qint64 number = text.toLongLong(&ok);
    const bool onlyDigits = std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    return ok && onlyDigits && number <= largest ? number : -1;
}

bool readOutcome(const QString &text, Fault *fault)
{
    const QString milliseconds = QStringLiteral("ms");
    if (text == QLatin1String("link-lost")) {
        fault->effect = Effect::LoseLink;
    } else if (text == QLatin1String("hang")) {
        fault->effect = Effect::Hang;
    } else if (text == QLatin1String("corrupt")) {
        fault->effect = Effect::Corrupt;
    } else if (text.endsWith(milliseconds)) {
        fault->effect = Effect::Delay;
        fault->delay = int(numberOf(text.chopped(milliseconds.size())));
        return fault->delay >= 0;
    } else {
        // A status is a signed number, and 0 is no failure.
        fault->status = text.toInt();
        return fault->status != 0;
    }
    return true;
}

bool readCondition(const QString &text, Fault *fault)
{
    const QString key = text.section(u'=', 0, 0);
    const qint64 number = numberOf(text.section(u'=', 1));
    if (key == QLatin1String("byte") && number >= 0)
        fault->bytes = number;
    else if (key == QLatin1String("call") && number > 0)
        fault->call = int(number);
    else if (key == QLatin1String("block") && number > 0)
        fault->block = int(number);
    else
        return false;
    return true;
}

} // namespace

const SimulatedOperation &SimulatedOperation::of(Operation operation)
{
    static_assert(std::size(Operations) == size_t(Operation::PowerBootloaderGetInfo) + 1);
    return Operations[int(operation)];
}

void SimulatedFaults::add(const Fault &fault)
{
    Entry entry{fault};
    // Something has to be there to be corrupted: the first block.
    if (fault.effect == Effect::Corrupt && fault.block <= 0 && fault.bytes < 0)
        entry.fault.block = 1;
    entries.append(entry);
}

QString SimulatedFaults::add(const QString &text)
{
    for (const auto &abbreviation : Abbreviations)
        if (text == QLatin1String(abbreviation.name))
            return add(QString::fromLatin1(abbreviation.fault));

    // NAME, then either "=OUTCOME" or "@CONDITIONS" and perhaps ":OUTCOME".
    const qsizetype at = text.indexOf(u'@');
    const qsizetype split = text.indexOf(at < 0 ? u'=' : u':');
    const QString name = text.left(at < 0 ? split : at);
    const QString outcome = split < 0 ? QString() : text.mid(split + 1);

    if (at < 0 && name == QLatin1String(SlowName)) {
        const qint64 factor = numberOf(outcome, MaximumSlowness);
        if (factor < 1)
            return QStringLiteral("\"%1\": a number from 1 to %2 is needed").arg(text).arg(MaximumSlowness);
        slowFactor = int(factor);
        return {};
    }

    const SimulatedOperation *operation = operationOfFault(name);
    if (!operation)
        return QStringLiteral("\"%1\": there is no fault \"%2\"").arg(text, name);
    Fault fault;
    fault.operation = operation->operation;
    fault.status = operation->faultStatus;
    if (at >= 0) {
        const QString conditions = text.mid(at + 1, split < 0 ? -1 : split - at - 1);
        for (const QString &condition : conditions.split(u','))
            if (!readCondition(condition, &fault))
                return QStringLiteral("\"%1\": \"%2\" is no condition").arg(text, condition);
    }
    if (split >= 0 && !readOutcome(outcome, &fault))
        return QStringLiteral("\"%1\": \"%2\" is no outcome").arg(text, outcome);
    const bool needsBlocks = fault.block > 0 || fault.bytes >= 0 || fault.effect == Effect::Corrupt;
    if (needsBlocks && !operation->hasBlocks)
        return QStringLiteral("\"%1\": \"%2\" does not work in blocks").arg(text, name);
    add(fault);
    return {};
}

void SimulatedFaults::clear()
{
    entries.clear();
    slowFactor = 1;
}

QStringList SimulatedFaults::names()
{
    QStringList result;
    for (const SimulatedOperation &operation : Operations)
        if (operation.faultName && !result.contains(QLatin1String(operation.faultName)))
            result.append(QString::fromLatin1(operation.faultName));
    for (const auto &abbreviation : Abbreviations)
        result.append(QString::fromLatin1(abbreviation.name));
    result.append(QString::fromLatin1(SlowName));
    return result;
}

QList<Fault> SimulatedFaults::takeCall(Operation operation)
{
    const char *name = SimulatedOperation::of(operation).faultName;
    QList<Fault> result;
    for (Entry &entry : entries) {
        if (qstrcmp(SimulatedOperation::of(entry.fault.operation).faultName, name) != 0)
            continue;
        ++entry.calls;
        if (entry.fault.call <= 0 || entry.fault.call == entry.calls)
            result.append(entry.fault);
    }
    return result;
}

int SimulatedFaults::slowness() const
{
    return slowFactor;
}
