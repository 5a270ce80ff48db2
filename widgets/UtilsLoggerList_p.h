#ifndef UTILSLOGGERLIST_P_H
#define UTILSLOGGERLIST_P_H

#include "UtilsLoggerLine.h"

#include <QListWidget>
#include <QPointer>

/// A line that shows only after the list has taken it in: what setItemWidget() shows has no place yet, and Qt would
/// measure its text and look through all the other lines for the one under the mouse.
class UtilsLoggerListLine final : public UtilsLoggerLine
{
public:
    using UtilsLoggerLine::UtilsLoggerLine;

    void setVisible(bool visible) override;

private:
    friend class UtilsLoggerList;
    bool isInList = false;
};

/// The list of a UtilsLogger: a QListWidget that lays its rows out once for all lines that come in one turn of the
/// event loop, and then places the item widgets in sight only; the others are hidden. The base class does all of it for
/// every line, which makes a line the dearer the more there are. It has no meta-object of its own, so that a style
/// sheet finds the QListWidget it asks for.
class UtilsLoggerList : public QListWidget
{
public:
    explicit UtilsLoggerList(QWidget *parent);
    ~UtilsLoggerList() override;

    /// Does what setItemWidget() does, but leaves it to the layout to show the line.
    void setLine(QListWidgetItem *item, UtilsLoggerListLine *line);

    /// Between these two, rows that are there get their lines and keep their places, so they are not laid out again,
    /// unless rowsChange() says that one comes, goes, shows or hides after all.
    void beginFilling();
    void rowsChange();
    void endFilling();

    void doItemsLayout() override;

protected:
    void updateEditorGeometries() override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void placeWidgetsInSight();

    QList<QPointer<QWidget>> widgetsInSight;
    bool layingOut = false;
    bool rowsKeepTheirPlaces = false;
};

#endif // UTILSLOGGERLIST_P_H
