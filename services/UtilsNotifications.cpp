#include "UtilsNotifications.h"

#include "UtilsNotificationsListener.h"

// In every operation the store is done with before a signal is emitted: a receiver may call back and change it.

UtilsNotifications::UtilsNotifications()
    : texts{{NOTIFICATION_NEW_SUITE_VERSION, QStringLiteral("New Suite version available")},
            {NOTIFICATION_NEW_FIRMWARE_VERSION, QStringLiteral("New firmware version available")}}
{ }

UtilsNotifications::~UtilsNotifications() = default;

UtilsNotifications &UtilsNotifications::getInstance()
{
    static UtilsNotifications instance;
    return instance;
}

int UtilsNotifications::addNotification(UtilsNotificatonsType type)
{
    if (pendingNotifications.contains(type))
        ++pendingNotifications[type].counter;
    else
        pendingNotifications.insert(type, {1, texts[type]});
    Q_EMIT signalNotificationsUpdated();
    return type;
}

void UtilsNotifications::removeNotification(UtilsNotificatonsType type)
{
    pendingNotifications.remove(type);
    Q_EMIT signalNotificationsUpdated();
}

void UtilsNotifications::executeNotification(UtilsNotificatonsType type)
{
    if (!pendingNotifications.contains(type))
        return;
    // Views forget the entry before the listeners act on it.
    removeNotification(type);
    Q_EMIT signalNotificationExecuted(type);
}

void UtilsNotifications::clearAllNotifications()
{
    const QList<UtilsNotificatonsType> types = getNotificationTypes();
    for (const UtilsNotificatonsType type : types)
        removeNotification(type);
}

UtilsNotifications::UtilsNotificationItem UtilsNotifications::getNotification(UtilsNotificatonsType type, bool &found)
{
    found = pendingNotifications.contains(type);
    return pendingNotifications.value(type, {-1, QLatin1String("")});
}

QList<UtilsNotificatonsType> UtilsNotifications::getNotificationTypes()
{
    return pendingNotifications.keys();
}

void UtilsNotifications::registerListener(UtilsNotificationsListener *listener)
{
    connect(this, &UtilsNotifications::signalNotificationExecuted, listener,
            &UtilsNotificationsListener::slotNotificationExecuted);
}

void UtilsNotifications::unRegisterListener(UtilsNotificationsListener *listener)
{
    disconnect(this, &UtilsNotifications::signalNotificationExecuted, listener,
               &UtilsNotificationsListener::slotNotificationExecuted);
}
