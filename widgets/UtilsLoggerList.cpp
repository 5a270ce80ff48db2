#include "UtilsLoggerList_p.h"

#include <QLayout>

#include <utility>

UtilsLoggerList::UtilsLoggerList(QWidget *parent)
    : QListWidget(parent)
{ }

UtilsLoggerList::~UtilsLoggerList() = default;

void UtilsLoggerList::setLineWidget(QListWidgetItem *item, QWidget *widget)
{
    // The base class shows the widget, and its layout would measure the text for that: the dearest part of a line.
    widget->layout()->setEnabled(false);
    setItemWidget(item, widget);
    widget->hide(); // it has no place yet
    widget->layout()->setEnabled(true);
}

void UtilsLoggerList::doItemsLayout()
{
    layingOut = true;
    QListWidget::doItemsLayout();
    layingOut = false;
    placeWidgetsInSight();
}

// The base class calls this for each row that comes or goes, and again from the layout.
void UtilsLoggerList::updateEditorGeometries()
{
    if (!layingOut)
        scheduleDelayedItemsLayout();
}

void UtilsLoggerList::scrollContentsBy(int dx, int dy)
{
    QListWidget::scrollContentsBy(dx, dy);
    if (!layingOut)
        placeWidgetsInSight();
}

void UtilsLoggerList::placeWidgetsInSight()
{
    const QList<QPointer<QWidget>> before = std::exchange(widgetsInSight, {});
    const int x = viewport()->width() / 2; // rows are as wide as the viewport
    int y = 0;
    while (y < viewport()->height()) {
        const QModelIndex index = indexAt(QPoint(x, y));
        if (!index.isValid()) { // between two rows, or below the last
            ++y;
            continue;
        }
        const QRect row = visualRect(index);
        if (QWidget *widget = indexWidget(index)) {
            widget->setGeometry(row); // all of it, whatever padding a style sheet gives to items
            widget->show();
            widgetsInSight.append(widget);
        }
        y = row.y() + gridSize().height();
    }
    for (QWidget *widget : before) {
        if (widget && !widgetsInSight.contains(widget))
            widget->hide();
    }
}
