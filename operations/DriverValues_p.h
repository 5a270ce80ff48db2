#ifndef DRIVERVALUES_P_H
#define DRIVERVALUES_P_H

#include <UniProgInterface.h>

/// Numbers that the driver and the target descriptor give a meaning to. They stand here by value because the names in
/// the core library belong to that library, which an application may replace.
namespace DriverValues {

constexpr auto ConfigurationLink = static_cast<OPERATION_TYPE>(0);
constexpr auto DebugLink = static_cast<OPERATION_TYPE>(1);

// How to connect to the target.
constexpr int ConnectLeavingRunning = 0;
constexpr int ConnectWithReset = 1;

// Operation options of the target descriptor.
constexpr int EraseModeOption = 0;
constexpr int LeaveRunningOption = 1; ///< 0: connect with a reset, and reset afterwards
constexpr int VerifyAfterWriteOption = 2; ///< not 0: verify what was written
/// Value of the erase mode that erases only what the image needs.
constexpr int EraseWhatIsWritten = 2;

/// Connection option of the target descriptor; not 0: the target stays halted after a reset.
constexpr int HaltAfterResetOption = 5;

/// Progress without a percentage.
constexpr int BusyProgress = -1;

constexpr int ResetMode = 0;
constexpr int WriteMode = 0;

/// The power channel that supplies the target.
constexpr unsigned char TargetSupplyChannel = 13;
constexpr qint32 SuppliedFromOutside = 1;
/// From this level on the supply pin counts as powered, in volts.
constexpr float PoweredLevel = 1.0F;

} // namespace DriverValues

#endif // DRIVERVALUES_P_H
