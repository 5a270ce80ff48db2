#ifndef UTILSNOTIFICATONSTYPE_H
#define UTILSNOTIFICATONSTYPE_H

/// What a pending notification of UtilsNotifications is about.
///
/// The underlying type is fixed: an application may raise a value that has no name here, and every int is a valid
/// value then. The numbers are what UtilsNotifications::addNotification() returns.
enum UtilsNotificatonsType : int {
    NOTIFICATION_NEW_SUITE_VERSION = 0, ///< "New Suite version available"
    NOTIFICATION_NEW_FIRMWARE_VERSION = 1 ///< "New firmware version available"
};

#endif // UTILSNOTIFICATONSTYPE_H
