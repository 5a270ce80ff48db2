#ifndef UTILSSIDEBARLISTWIDGET_H
#define UTILSSIDEBARLISTWIDGET_H

#include "uniprogutils_export.h"

#include <QListWidget>

/// The list that holds the child buttons of a UtilsSidebarItem, 30 pixels a row, as high as its rows and closed at
/// first: it opens and closes through its maximum height, and it never scrolls. Assistive technology finds the buttons
/// in it while it is open.
///
/// GUI thread only; owned by its Qt parent.
class UNIPROGUTILS_EXPORT UtilsSidebarListWidget : public QListWidget
{
    Q_OBJECT

public:
    explicit UtilsSidebarListWidget(QWidget *parent = nullptr);
    ~UtilsSidebarListWidget() override;

    /// The height of all rows, whether open or not.
    QSize sizeHint() const override;

protected:
    /// Without height, the list shows nothing to assistive technology either.
    bool event(QEvent *event) override;
    /// Consumes the event, so that nothing behind the list scrolls either.
    void wheelEvent(QWheelEvent *event) override;

private:
    Q_DISABLE_COPY_MOVE(UtilsSidebarListWidget)

    class Accessible;
};

#endif // UTILSSIDEBARLISTWIDGET_H
