#ifndef DEVICESTATUS_P_H
#define DEVICESTATUS_P_H

#include <QString>

/// The driver's status codes that have a meaning here, and the texts a user reads for them. One code may mean different
/// things at different stages of a procedure. The texts are fixed English and are not translated.
namespace DeviceStatus {

enum Code : int {
    Success = 0,
    InvalidImage = 1, ///< ours: a firmware image that is missing or malformed
    WifiAuthenticationFailed = 4,
    VendorNotSupported = 8,
    WrongTargetVoltage = 10,
    SuppliedExternally = 11,
    FirmwareTooOld = 12,
    WifiConfigAuthenticationFailed = 13,
    WifiDebugAuthenticationFailed = 14,
    NoSelectedDevice = 38,
    ChipNotRecognized = 51
};

QString deviceConnectText(int status);
QString targetConnectText(int status);
QString targetProcedureText(int status);
QString controlProcedureText(int status);

} // namespace DeviceStatus

#endif // DEVICESTATUS_P_H
