#ifndef UTILSNOTIFICATIONSLISTENER_H
#define UTILSNOTIFICATIONSLISTENER_H

#include "UtilsNotificatonsType.h"
#include "uniprogutils_export.h"

#include <QObject>

/// Base of the objects that act when the user executes a notification, for example the updater. Derive from it,
/// implement the slot and register the object with UtilsNotifications::registerListener().
///
/// The centre does not own its listeners; a listener that is deleted is forgotten. The slot runs in the listener's
/// thread: directly when it is the GUI thread, queued otherwise.
///
///     class Updater : public UtilsNotificationsListener
///     {
///         void slotNotificationExecuted(UtilsNotificatonsType notificationType) override
///         {
///             if (notificationType == NOTIFICATION_NEW_SUITE_VERSION)
///                 startUpdate();
///         }
///     };
class UNIPROGUTILS_EXPORT UtilsNotificationsListener : public QObject
{
    Q_OBJECT

public:
    /// The object gets no parent.
    UtilsNotificationsListener();
    ~UtilsNotificationsListener() override;

public Q_SLOTS:
    /// The user acts on a notification of this type; it is no longer pending. Every listener hears of every type.
    virtual void slotNotificationExecuted(UtilsNotificatonsType notificationType) = 0;

private:
    Q_DISABLE_COPY_MOVE(UtilsNotificationsListener)
};

#endif // UTILSNOTIFICATIONSLISTENER_H
