#include "DeviceStatus_p.h"

#include "UtilsConstants.h"

namespace {

QString operationFailed()
{
    return QStringLiteral("Operation failed.");
}

} // namespace

QString DeviceStatus::deviceConnectText(int status)
{
    // The blank before the line break belongs to the texts: applications compare them.
    switch (status) {
    case WifiAuthenticationFailed:
        return QStringLiteral("WiFi link authentication failed! \nPlease enter correct WiFi link password");
    case WifiDebugAuthenticationFailed:
        return QStringLiteral("WiFi link-debug authentication failed! \nPlease enter correct WiFi link password");
    case WifiConfigAuthenticationFailed:
        return QStringLiteral("WiFi link-config authentication failed! \nPlease enter correct WiFi link password");
    case FirmwareTooOld:
        return UtilsConstants::WARNING_INVALID_FIRMWARE_VERSION;
    case NoSelectedDevice:
        return UtilsConstants::WARNING_NO_SELECTED_DEVICE;
    default:
        return QStringLiteral("Connecting to device failed.");
    }
}

QString DeviceStatus::targetConnectText(int status)
{
    QString failed = QStringLiteral("Connecting to target failed.");
    switch (status) {
    case WrongTargetVoltage:
        return failed + QStringLiteral("\nWrong target voltage.\nCheck power settings.");
    case SuppliedExternally:
        return failed + QStringLiteral("\nVpp first entry mode not available.\nPower supplied externally.");
    default:
        return failed;
    }
}

QString DeviceStatus::targetProcedureText(int status)
{
    switch (status) {
    case VendorNotSupported:
        return QStringLiteral("Your board doesn't support selected vendor.");
    case ChipNotRecognized:
        return QStringLiteral("Selected chip not recognized.");
    default:
        return operationFailed();
    }
}

QString DeviceStatus::controlProcedureText(int status)
{
    switch (status) {
    case WrongTargetVoltage:
        return QStringLiteral("Wrong target voltage.\nCheck power settings.");
    case SuppliedExternally:
        return QStringLiteral("Power supplied externally. Can't apply voltage.");
    default:
        return operationFailed();
    }
}
