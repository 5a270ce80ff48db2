#include "SimulatedCalls.h"

using Operation = SimulatedProgrammer::Operation;

static constexpr int LoaderBlockSize = SimulatedProgrammer::BootloaderBlockSize;

int callOf(SimulatedProgrammer &p, Operation operation)
{
    TSelectedDevice device = p.devices().constFirst();
    TConfiguration configuration;
    TPowerInfo powerInfo;
    TPowerSupplyState supply;
    unsigned char bytes[4] = {};
    unsigned short size = sizeof bytes;
    bool flag = false;
    QByteArray info;
    MemoryManager memory;
    memory.write(0, "data");
    const QByteArray block(LoaderBlockSize, '\x55');
    switch (operation) {
    case Operation::Connect:
        return p.Connect(OPERATION_TYPE_DEBUG);
    case Operation::ConnectSelectedDevice:
        return p.ConnectSelectedDevice(&device, OPERATION_TYPE_DEBUG);
    case Operation::Disconnect:
        return p.Disconnect();
    case Operation::CommitConfiguration:
        return p.CommitConfiguration();
    case Operation::WiFiServerStart:
        return p.WiFiServerStart();
    case Operation::FindDevice:
        return p.FindDevice();
    case Operation::GetDeviceConfiguration:
        return p.GetDeviceConfiguration(&configuration);
    case Operation::SetDeviceConfiguration:
        return p.SetDeviceConfiguration(&configuration);
    case Operation::ConnectToTarget:
        return p.ConnectToTarget(1);
    case Operation::SetTargetClock:
        return p.SetTargetClock();
    case Operation::DisconnectFromTarget:
        return p.DisconnectFromTarget();
    case Operation::SetTargetInterfaceInUse:
        return p.SetTargetInterfaceInUse(true);
    case Operation::SetWiFiLinkPassword:
        return p.SetWiFiLinkPassword(QString(), true);
    case Operation::ResetTarget:
        return p.ResetTarget(0);
    case Operation::SwoGetData:
        return p.SwoGetData(bytes, &size);
    case Operation::SwoEnable:
        return p.SwoEnable(0);
    case Operation::ReadTarget:
        return p.ReadTarget(&memory);
    case Operation::DetectTarget:
        return p.DetectTarget(&flag);
    case Operation::VerifyTarget:
        return p.VerifyTarget(&memory, &flag, 0);
    case Operation::WriteTarget:
        return p.WriteTarget(&memory, 0);
    case Operation::EraseTargetMass:
        return p.EraseTargetMass();
    case Operation::EraseTarget:
        return p.EraseTarget(&memory);
    case Operation::CheckTargetBlank:
        return p.CheckTargetBlank(&flag, false);
    case Operation::BootloaderEnter:
        return p.BootloaderEnter();
    case Operation::BootloaderErase:
        return p.BootloaderErase(SimulatedProgrammer::BootloaderStart, 1);
    case Operation::BootloaderWrite:
        return p.BootloaderWrite(SimulatedProgrammer::BootloaderStart, LoaderBlockSize, block.constData());
    case Operation::BootloaderVerify:
        return p.BootloaderVerify(SimulatedProgrammer::crc32(block), LoaderBlockSize);
    case Operation::BootloaderGetInfo:
        return p.BootloaderGetInfo(&info);
    case Operation::BootloaderExit:
        return p.BootloaderExit();
    case Operation::PowerSwitch:
        return p.PowerSwitch(0, 1);
    case Operation::PowerSetVoltage:
        return p.PowerSetVoltage(0, 3.0F);
    case Operation::PowerSetBatteryOptions:
        return p.PowerSetBatteryOptions(1);
    case Operation::PowerGetReadings:
        return p.PowerGetReadings(bytes, sizeof bytes);
    case Operation::PowerGetInfo:
        return p.PowerGetInfo(&powerInfo);
    case Operation::PowerSaveConfiguration:
        return p.PowerSaveConfiguration();
    case Operation::PowerGetSupplyState:
        return p.PowerGetSupplyState(&supply);
    case Operation::PowerBootloaderActivate:
        return p.PowerBootloaderActivate();
    case Operation::PowerBootloaderReset:
        return p.PowerBootloaderReset();
    case Operation::PowerBootloaderErase:
        return p.PowerBootloaderErase(1);
    case Operation::PowerBootloaderWrite:
        return p.PowerBootloaderWrite(SimulatedProgrammer::PowerBootloaderStart, LoaderBlockSize, block.constData());
    case Operation::PowerBootloaderVerify:
        return p.PowerBootloaderVerify(SimulatedProgrammer::crc32(block), LoaderBlockSize, &flag);
    case Operation::PowerBootloaderGetInfo:
        return p.PowerBootloaderGetInfo();
    }
    return -1;
}
