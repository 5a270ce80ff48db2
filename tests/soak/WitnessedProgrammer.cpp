#include "WitnessedProgrammer.h"

#include <utility>

WitnessedProgrammer::WitnessedProgrammer()
{
    // Direct: on the thread of the operation, as the list of calls.
    connect(
        this, &SimulatedProgrammer::SignalUpdateProgress, this, [this](int percent) { progress.append(percent); },
        Qt::DirectConnection);
}

WitnessedProgrammer::~WitnessedProgrammer() = default;

QList<DriverCall> WitnessedProgrammer::takeCalls()
{
    return std::exchange(calls, {});
}

int WitnessedProgrammer::note(Operation operation, int status, bool answer)
{
    calls.append({operation, status, answer, std::exchange(progress, {})});
    return status;
}

int WitnessedProgrammer::Connect(OPERATION_TYPE type)
{
    return note(Operation::Connect, SimulatedProgrammer::Connect(type));
}

int WitnessedProgrammer::Disconnect()
{
    return note(Operation::Disconnect, SimulatedProgrammer::Disconnect());
}

int WitnessedProgrammer::CommitConfiguration()
{
    return note(Operation::CommitConfiguration, SimulatedProgrammer::CommitConfiguration());
}

int WitnessedProgrammer::WiFiServerStart()
{
    return note(Operation::WiFiServerStart, SimulatedProgrammer::WiFiServerStart());
}

int WitnessedProgrammer::FindDevice()
{
    return note(Operation::FindDevice, SimulatedProgrammer::FindDevice());
}

int WitnessedProgrammer::GetDeviceConfiguration(TConfiguration *configuration)
{
    return note(Operation::GetDeviceConfiguration, SimulatedProgrammer::GetDeviceConfiguration(configuration));
}

int WitnessedProgrammer::SetDeviceConfiguration(TConfiguration *configuration)
{
    return note(Operation::SetDeviceConfiguration, SimulatedProgrammer::SetDeviceConfiguration(configuration));
}

int WitnessedProgrammer::ConnectToTarget(int flag)
{
    return note(Operation::ConnectToTarget, SimulatedProgrammer::ConnectToTarget(flag));
}

int WitnessedProgrammer::SetTargetClock()
{
    return note(Operation::SetTargetClock, SimulatedProgrammer::SetTargetClock());
}

int WitnessedProgrammer::DisconnectFromTarget()
{
    return note(Operation::DisconnectFromTarget, SimulatedProgrammer::DisconnectFromTarget());
}

int WitnessedProgrammer::SetTargetInterfaceInUse(bool inUse)
{
    return note(Operation::SetTargetInterfaceInUse, SimulatedProgrammer::SetTargetInterfaceInUse(inUse));
}

int WitnessedProgrammer::ResetTarget(int mode)
{
    return note(Operation::ResetTarget, SimulatedProgrammer::ResetTarget(mode));
}

int WitnessedProgrammer::SwoGetData(unsigned char *data, unsigned short *size)
{
    return note(Operation::SwoGetData, SimulatedProgrammer::SwoGetData(data, size));
}

int WitnessedProgrammer::SwoEnable(unsigned int parameter)
{
    return note(Operation::SwoEnable, SimulatedProgrammer::SwoEnable(parameter));
}

int WitnessedProgrammer::ReadTarget(MemoryManager *memory)
{
    return note(Operation::ReadTarget, SimulatedProgrammer::ReadTarget(memory));
}

int WitnessedProgrammer::DetectTarget(bool *detected)
{
    const int status = SimulatedProgrammer::DetectTarget(detected);
    return note(Operation::DetectTarget, status, *detected);
}

int WitnessedProgrammer::VerifyTarget(MemoryManager *memory, bool *verified, int leaveRunning)
{
    const int status = SimulatedProgrammer::VerifyTarget(memory, verified, leaveRunning);
    return note(Operation::VerifyTarget, status, *verified);
}

int WitnessedProgrammer::WriteTarget(MemoryManager *memory, int mode)
{
    return note(Operation::WriteTarget, SimulatedProgrammer::WriteTarget(memory, mode));
}

int WitnessedProgrammer::EraseTargetMass()
{
    return note(Operation::EraseTargetMass, SimulatedProgrammer::EraseTargetMass());
}

int WitnessedProgrammer::EraseTarget(MemoryManager *memory)
{
    return note(Operation::EraseTarget, SimulatedProgrammer::EraseTarget(memory));
}

int WitnessedProgrammer::CheckTargetBlank(bool *blank, bool leaveRunning)
{
    const int status = SimulatedProgrammer::CheckTargetBlank(blank, leaveRunning);
    return note(Operation::CheckTargetBlank, status, *blank);
}

int WitnessedProgrammer::PowerSwitch(unsigned char channel, unsigned char on)
{
    return note(Operation::PowerSwitch, SimulatedProgrammer::PowerSwitch(channel, on));
}

int WitnessedProgrammer::PowerSetVoltage(unsigned char channel, float volts)
{
    return note(Operation::PowerSetVoltage, SimulatedProgrammer::PowerSetVoltage(channel, volts));
}

int WitnessedProgrammer::PowerSetBatteryOptions(unsigned int options)
{
    return note(Operation::PowerSetBatteryOptions, SimulatedProgrammer::PowerSetBatteryOptions(options));
}

int WitnessedProgrammer::PowerGetReadings(unsigned char *readings, int size)
{
    return note(Operation::PowerGetReadings, SimulatedProgrammer::PowerGetReadings(readings, size));
}

int WitnessedProgrammer::PowerGetInfo(TPowerInfo *info)
{
    return note(Operation::PowerGetInfo, SimulatedProgrammer::PowerGetInfo(info));
}

int WitnessedProgrammer::PowerSaveConfiguration()
{
    return note(Operation::PowerSaveConfiguration, SimulatedProgrammer::PowerSaveConfiguration());
}

int WitnessedProgrammer::PowerGetSupplyState(TPowerSupplyState *supply)
{
    const int status = SimulatedProgrammer::PowerGetSupplyState(supply);
    return note(Operation::PowerGetSupplyState, status, supply->state == 1 && supply->level >= 1.0F);
}
