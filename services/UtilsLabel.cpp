#include "UtilsLabel.h"

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
    Q_EMIT signalClicked();
}
