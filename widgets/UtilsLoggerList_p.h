#ifndef UTILSLOGGERLIST_P_H
#define UTILSLOGGERLIST_P_H

#include <QListWidget>
#include <QPointer>

/// The list of a UtilsLogger: a QListWidget that lays its rows out once for all lines that come in one turn of the
/// event loop, and then places the item widgets in sight only; the others are hidden. The base class does all of it for
/// every line, which makes a line the dearer the more there are. It has no meta-object of its own, so that a style
/// sheet finds the QListWidget it asks for.
class UtilsLoggerList : public QListWidget
{
public:
    explicit UtilsLoggerList(QWidget *parent);
    ~UtilsLoggerList() override;

    /// Does what setItemWidget() does, but leaves it to the layout to show the widget.
    void setLineWidget(QListWidgetItem *item, QWidget *widget);

    void doItemsLayout() override;

protected:
    void updateEditorGeometries() override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void placeWidgetsInSight();

    QList<QPointer<QWidget>> widgetsInSight;
    bool layingOut = false;
};

#endif // UTILSLOGGERLIST_P_H
