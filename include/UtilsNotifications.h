#ifndef UTILSNOTIFICATIONS_H
#define UTILSNOTIFICATIONS_H

#include "UtilsNotificatonsType.h"
#include "uniprogutils_export.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

class UtilsNotificationsListener;

/// The process-wide store of pending user notifications, such as the news of a newer version of the application.
///
/// Any part of the application raises a notification by its type; there is at most one pending notification a type,
/// with a counter of how often it was raised. A view shows the pending ones and executes the one that the user picks:
/// the centre then forgets it and tells every registered listener.
///
///     UtilsNotifications &centre = UtilsNotifications::getInstance();
///     centre.registerListener(&updater);
///     connect(&centre, &UtilsNotifications::signalNotificationsUpdated, view, &NotificationView::refresh);
///     centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
///     ...
///     centre.executeNotification(NOTIFICATION_NEW_SUITE_VERSION); // the user clicked it: the updater's slot runs
///
/// GUI thread only. Nothing is stored between two runs. Receivers of its signals may call back into the centre.
class UNIPROGUTILS_EXPORT UtilsNotifications : public QObject
{
    Q_OBJECT

public:
    /// A pending notification as getNotification() hands it out.
    struct UtilsNotificationItem
    {
        qint32 counter = -1; ///< times the type was raised since it became pending, from 1; -1 when it is not pending
        QString text; ///< the type's text; "" when it is not pending or has none
    };

    /// The centre, built by the first call and destroyed when the process ends.
    static UtilsNotifications &getInstance();
    ~UtilsNotifications() override;

    /// Raises a notification: it becomes pending with counter 1, or its counter grows by 1. A value without a name
    /// becomes pending with the text "". Returns the value of \a type, not the counter. Emits
    /// signalNotificationsUpdated().
    int addNotification(UtilsNotificatonsType type);
    /// Forgets the notification without telling the listeners. Emits signalNotificationsUpdated(), also when it was
    /// not pending.
    void removeNotification(UtilsNotificatonsType type);
    /// Removes the notification as removeNotification() does and then emits signalNotificationExecuted(). One that is
    /// not pending is ignored and nothing is emitted.
    void executeNotification(UtilsNotificatonsType type);
    /// Removes what is pending now, in ascending order, with one signalNotificationsUpdated() each. Nothing is emitted
    /// when nothing is pending. A notification that a receiver raises meanwhile stays.
    void clearAllNotifications();
    /// A copy of the pending notification, with \a found set to true. Otherwise \a found is set to false and the item
    /// has counter -1 and the text "".
    UtilsNotificationItem getNotification(UtilsNotificatonsType type, bool &found);
    /// The pending types in ascending order.
    QList<UtilsNotificatonsType> getNotificationTypes();

    /// From now on \a listener hears of every execution. Registering twice makes its slot run twice. A null listener
    /// gets Qt's warning and nothing else.
    void registerListener(UtilsNotificationsListener *listener);
    /// \a listener hears of no execution any more, however often it was registered. Other connections of it stay.
    void unRegisterListener(UtilsNotificationsListener *listener);

Q_SIGNALS:
    /// The user acts on the notification; it has been removed and signalNotificationsUpdated() has been emitted.
    void signalNotificationExecuted(UtilsNotificatonsType notificationType);
    /// Never emitted: signalNotificationsUpdated() tells of every change, and the counter is in getNotification().
    void signalNotificationAdded(UtilsNotificatonsType notificationType, int counter);
    /// Never emitted: signalNotificationsUpdated() tells of every change.
    void signalNotificationRemoved(UtilsNotificatonsType notificationType);
    /// What is pending may have changed: read it with getNotificationTypes() and getNotification().
    void signalNotificationsUpdated();

private:
    UtilsNotifications();
    Q_DISABLE_COPY_MOVE(UtilsNotifications)

    QMap<UtilsNotificatonsType, UtilsNotificationItem> pendingNotifications;
    QMap<UtilsNotificatonsType, QString> texts;
};

#endif // UTILSNOTIFICATIONS_H
