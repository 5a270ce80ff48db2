#ifndef WITNESSEDPROGRAMMER_H
#define WITNESSEDPROGRAMMER_H

#include <SimulatedProgrammer.h>

/// What an operation of the driver did.
struct DriverCall
{
    SimulatedProgrammer::Operation operation;
    int status = 0;
    bool answer = false; ///< of the operations that find something out
    QList<int> progress; ///< what was signalled meanwhile
};

/// The simulated programmer, and a list of what its operations returned.
class WitnessedProgrammer : public SimulatedProgrammer
{
    Q_OBJECT

public:
    WitnessedProgrammer();
    ~WitnessedProgrammer() override;

    /// Those since the last time. Not while a procedure runs.
    QList<DriverCall> takeCalls();

    int Connect(OPERATION_TYPE type) override;
    int Disconnect() override;
    int CommitConfiguration() override;
    int WiFiServerStart() override;
    int FindDevice() override;
    int GetDeviceConfiguration(TConfiguration *configuration) override;
    int SetDeviceConfiguration(TConfiguration *configuration) override;
    int ConnectToTarget(int flag) override;
    int SetTargetClock() override;
    int DisconnectFromTarget() override;
    int SetTargetInterfaceInUse(bool inUse) override;
    int ResetTarget(int mode) override;
    int SwoGetData(unsigned char *data, unsigned short *size) override;
    int SwoEnable(unsigned int parameter) override;
    int ReadTarget(MemoryManager *memory) override;
    int DetectTarget(bool *detected) override;
    int VerifyTarget(MemoryManager *memory, bool *verified, int leaveRunning) override;
    int WriteTarget(MemoryManager *memory, int mode) override;
    int EraseTargetMass() override;
    int EraseTarget(MemoryManager *memory) override;
    int CheckTargetBlank(bool *blank, bool leaveRunning) override;
    int PowerSwitch(unsigned char channel, unsigned char on) override;
    int PowerSetVoltage(unsigned char channel, float volts) override;
    int PowerSetBatteryOptions(unsigned int options) override;
    int PowerGetReadings(unsigned char *readings, int size) override;
    int PowerGetInfo(TPowerInfo *info) override;
    int PowerSaveConfiguration() override;
    int PowerGetSupplyState(TPowerSupplyState *supply) override;

private:
    int note(Operation operation, int status, bool answer = false);

    QList<DriverCall> calls;
    QList<int> progress;
};

#endif // WITNESSEDPROGRAMMER_H
