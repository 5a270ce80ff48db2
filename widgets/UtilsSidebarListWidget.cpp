#include "UtilsSidebarListWidget.h"

#include <QWheelEvent>

static constexpr QSize GridSize(0, 30);

UtilsSidebarListWidget::UtilsSidebarListWidget(QWidget *parent)
    : QListWidget(parent)
{
    setProperty("background-color", QStringLiteral("transparent"));
    setMaximumHeight(0);
    setDropIndicatorShown(false);
    setWrapping(false);
    setSpacing(0);
    setGridSize(GridSize);

    // It is as high as its rows: a frame would take their room, and scroll bars would flicker while it opens.
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAutoScroll(false);
    // The buttons in it take no focus, and a closed list would take it where nobody sees it.
    setFocusPolicy(Qt::NoFocus);
    setSelectionMode(QAbstractItemView::NoSelection);
}

UtilsSidebarListWidget::~UtilsSidebarListWidget() = default;

QSize UtilsSidebarListWidget::sizeHint() const
{
    return QSize(QListWidget::sizeHint().width(), count() * gridSize().height());
}

void UtilsSidebarListWidget::wheelEvent(QWheelEvent *event)
{
    event->accept();
}
