#include "NotificationPanel.h"

#include <UtilsNotifications.h>

#include <QHBoxLayout>
#include <QToolButton>

NotificationPanel::NotificationPanel(QWidget *parent)
    : QWidget(parent)
    , row(new QHBoxLayout(this))
{
    setObjectName(QStringLiteral("notifications"));
    row->setContentsMargins(0, 0, 0, 0);
    row->addStretch();
    connect(&UtilsNotifications::getInstance(), &UtilsNotifications::signalNotificationsUpdated, this,
            &NotificationPanel::refresh);
    refresh();
}

void NotificationPanel::refresh()
{
    for (QToolButton *button : std::as_const(buttons)) {
        row->removeWidget(button);
        button->hide();
        button->setObjectName(QString());
        button->deleteLater(); // it may be the one that was clicked
    }
    buttons.clear();
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    const QList<UtilsNotificatonsType> types = centre.getNotificationTypes();
    for (const UtilsNotificatonsType type : types) {
        bool found = false;
        const UtilsNotifications::UtilsNotificationItem item = centre.getNotification(type, found);
        auto *button = new QToolButton(this);
        button->setObjectName(QStringLiteral("notification%1").arg(int(type)));
        button->setText(item.counter > 1 ? tr("%1 (%2)").arg(item.text).arg(item.counter) : item.text);
        button->setFocusPolicy(Qt::StrongFocus);
        connect(button, &QToolButton::clicked, this,
                [type] { UtilsNotifications::getInstance().executeNotification(type); });
        row->insertWidget(row->count() - 1, button);
        buttons.append(button);
    }
}
