#include "UtilsLabel.h"

#include <QMouseEvent>
#include <QPointer>

UtilsLabel::UtilsLabel(QWidget *parent, Qt::WindowFlags f)
    : QLabel(parent, f)
{ }

UtilsLabel::~UtilsLabel() = default;

void UtilsLabel::enterEvent(QEnterEvent *event)
{
    QLabel::enterEvent(event);
    Q_EMIT signalEnter();
}

void UtilsLabel::leaveEvent(QEvent *event)
{
    QLabel::leaveEvent(event);
    Q_EMIT signalLeave();
}

void UtilsLabel::mousePressEvent(QMouseEvent *event)
{
    QLabel::mousePressEvent(event);
    const QPointer<UtilsLabel> self(this);
    Q_EMIT signalClicked();
    if (!self)
        event->accept(); // else it went on to the parent of a label that is gone
}
