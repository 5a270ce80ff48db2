#include "UtilsConstants.h"

UtilsConstants::UtilsConstants() = default;

const QString UtilsConstants::WARNING_NO_SELECTED_DEVICE = QStringLiteral("There is no selected device.");
const QString UtilsConstants::WARNING_EMPTY_CONFIG_REGISTRY = QStringLiteral("Please reload configuration.");
const QString UtilsConstants::WARNING_INVALID_FIRMWARE_VERSION
    = QStringLiteral("Please update firmware of selected\nBRAMLOCK module to the latest version.");
const QString UtilsConstants::WARNING_NO_WIFI_FUNCTIONALITY
    = QStringLiteral("There is no WiFi module on selected device.");
