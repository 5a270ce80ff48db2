#ifndef NOTIFICATIONPANEL_H
#define NOTIFICATIONPANEL_H

#include <QList>
#include <QWidget>

class QHBoxLayout;
class QToolButton;

/// Shows what is pending in UtilsNotifications, one button each; a click acts on the notification. A number tells how
/// often it was raised.
class NotificationPanel : public QWidget
{
    Q_OBJECT

public:
    explicit NotificationPanel(QWidget *parent);

private:
    void refresh();

    QHBoxLayout *row;
    QList<QToolButton *> buttons;
};

#endif // NOTIFICATIONPANEL_H
