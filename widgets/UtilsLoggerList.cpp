#include "UtilsLoggerList_p.h"

#include <utility>

UtilsLoggerList::UtilsLoggerList(QWidget *parent)
    : QListWidget(parent)
{ }

UtilsLoggerList::~UtilsLoggerList() = default;

void UtilsLoggerListLine::setVisible(bool visible)
{
    if (isInList || !visible)
        UtilsLoggerLine::setVisible(visible);
}

void UtilsLoggerList::setLine(QListWidgetItem *item, UtilsLoggerListLine *line)
{
    setItemWidget(item, line);
    line->hide(); // else it would show with the list, wherever it is
    line->isInList = true;
}

void UtilsLoggerList::beginFilling()
{
    executeDelayedItemsLayout();
    rowsKeepTheirPlaces = true;
}

void UtilsLoggerList::rowsChange()
{
    rowsKeepTheirPlaces = false;
}

void UtilsLoggerList::endFilling()
{
    executeDelayedItemsLayout();
    rowsKeepTheirPlaces = false;
}

void UtilsLoggerList::doItemsLayout()
{
    if (!rowsKeepTheirPlaces) {
        layingOut = true;
        QListWidget::doItemsLayout();
        layingOut = false;
    }
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
        y = qMax(y + 1, row.y() + gridSize().height()); // an application may have taken the grid away
    }
    for (QWidget *widget : before) {
        if (widget && !widgetsInSight.contains(widget))
            widget->hide();
    }
}
