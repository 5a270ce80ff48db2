#ifndef UTILSCONSTANTS_H
#define UTILSCONSTANTS_H

#include "uniprogutils_export.h"

#include <QString>

/// Texts for the commonest refusals, shown by the operation thread and by applications. They are fixed English texts
/// and are not translated. Read them from any thread.
///
///     if (!device.isSelected())
///         dialog->setMessage(UtilsConstants::WARNING_NO_SELECTED_DEVICE);
class UNIPROGUTILS_EXPORT UtilsConstants
{
public:
    UtilsConstants();

    static const QString WARNING_NO_SELECTED_DEVICE; ///< device status 38
    static const QString WARNING_EMPTY_CONFIG_REGISTRY;
    static const QString WARNING_INVALID_FIRMWARE_VERSION; ///< device status 12
    static const QString WARNING_NO_WIFI_FUNCTIONALITY;
};

#endif // UTILSCONSTANTS_H
